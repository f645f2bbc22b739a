// SPDX-License-Identifier: BSD-3-Clause
// Measures how much memory results add to an import, as a ratio to the largest block of the result
// file, and how long the import takes. The importer runs in separate processes, because a
// process knows only the largest memory that it ever had: with the deck alone, with the results of
// one frame, and with those of all frames. What results add must not grow with their number.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "bench/bench_program.h"
#include "bench/solver_files.h"
#include "importer/command_line.h"
#include "port/port.h"

namespace odbs::bench {
namespace {

namespace fs = std::filesystem;

constexpr double kMega = 1e6;
constexpr std::string_view kChild = "--as-child";

struct Import {
  std::int64_t peak = 0;  // bytes
  double seconds = 0;
};

// The child: imports, then writes the largest memory that it had.
int importAsChild(const std::vector<std::string>& arguments) {
  const int status = importer::runImport({arguments.begin() + 1, arguments.end()});
  const std::string answer = std::to_string(status == 0 ? port::peakMemory() : -1);
  port::writeAll(toIntOrZero(arguments[0]), answer.data(), answer.size());
  return status;
}

Import measure(const std::string& deck, const std::string& results, const std::string& output) {
  std::vector<std::string> arguments = {std::string(kChild), "{out}", deck, "-q", "-o", output};
  if (!results.empty()) arguments.insert(arguments.end(), {"--results", results});
  const auto start = std::chrono::steady_clock::now();
  port::Child child = port::startWithPipes(port::executablePath(), arguments);
  std::string answer;
  char part[64];
  for (long n = 1; n > 0;) {
    n = port::readOnce(child.fromChild, part, sizeof part);
    if (n > 0) answer.append(part, static_cast<std::size_t>(n));
  }
  const int status = port::waitForChild(child, -1);
  Import import;
  import.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  import.peak = parseInt(answer).value_or(-1);
  if (status != 0 || import.peak < 0) throw std::runtime_error("the import failed");
  return import;
}

void report(const char* what, const Import& import, const Import& base) {
  std::printf("%-16s %8.1f MB  %+8.1f MB  %6.2f s\n", what,
              static_cast<double>(import.peak) / kMega,
              static_cast<double>(import.peak - base.peak) / kMega, import.seconds);
}

int run(const Arguments& arguments) {
  const double mostRatio = realOf(arguments, "--most");
  CubeFiles cube;
  cube.nElementsPerEdge = countOf(arguments, "--edge", cube.nElementsPerEdge);
  cube.nFrames = countOf(arguments, "--frames", cube.nFrames);
  const std::string format = arguments.value("--format", "text");
  if (format != "text" && format != "binary") throw UsageError("--format wants text or binary");
  cube.binary = format == "binary";
  const RunFolder folder(arguments);
  const auto file = [&](const char* name) { return folder.file(name); };
  CubeFiles single = cube;
  single.nFrames = 1;
  writeCubeDeck(file("cube.inp"), cube);
  writeCubeResults(file("one.frd"), single);
  writeCubeResults(file("all.frd"), cube);

  const Import deck = measure(file("cube.inp"), "", file("deck.odb"));
  const Import one = measure(file("cube.inp"), file("one.frd"), file("one.odb"));
  const Import all = measure(file("cube.inp"), file("all.frd"), file("all.odb"));
  const std::int64_t block = largestFileBlock(cube);
  const std::int64_t added = std::max<std::int64_t>(0, std::max(one.peak, all.peak) - deck.peak);
  const double ratio = static_cast<double>(added) / static_cast<double>(block);
  std::printf("%lld hexahedra, %d frames, result file of %.1f MB\n",
              static_cast<long long>(cube.nElements()), cube.nFrames,
              static_cast<double>(fs::file_size(file("all.frd"))) / kMega);
  report("deck alone", deck, deck);
  report("and one frame", one, deck);
  report("and all frames", all, deck);
  std::printf("largest block    %8.1f MB in the result file, %.1f MB as values of a field\n",
              static_cast<double>(block) / kMega,
              static_cast<double>(largestValueBlock(cube)) / kMega);
  std::printf("results add      %8.2f times the file's largest block\n", ratio);
  return mostRatio > 0 && ratio > mostRatio ? kFailed : kDone;
}

}  // namespace
}  // namespace odbs::bench

int main(int argc, char** argv) {
  if (argc > 3 && argv[1] == odbs::bench::kChild) {
    return odbs::bench::importAsChild({argv + 2, argv + argc});
  }
  return odbs::bench::runBench(
      argc, argv, "bench_import",
      "usage: bench_import [--edge N] [--frames N] [--format text|binary] [--most RATIO]\n"
      "                    [--folder FOLDER]\n"
      "N^3 hexahedra (80), frames of three fields (4), format of the result file (text), "
      "largest\n"
      "ratio of added memory to the result file's largest block for exit status 0 (any), folder\n"
      "of the files, kept afterwards (temporary).\n",
      {{"--edge"}, {"--frames"}, {"--format"}, {"--most"}, {"--folder"}}, odbs::bench::run);
}
