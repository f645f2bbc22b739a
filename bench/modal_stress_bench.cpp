// SPDX-License-Identifier: BSD-3-Clause
// Time and memory of random-response stresses. First the arithmetic alone: the product form over
// all values against the plain double sum, which is measured on a part of them and scaled. Then
// whole commands to a real server: the first one, which gathers the modes' stresses from the
// database, one that finds them gathered, one after they were freed; and the server's peak memory
// beside what the gathered stresses take.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "bench/bench_program.h"
#include "bench/hexahedral_model.h"
#include "bench/timed_server.h"
#include "results/modal_kernel.h"

namespace odbs::bench {
namespace {

namespace fs = std::filesystem;

constexpr int kComponents = 6;

struct Options {
  int nModes = 200;
  int nValues = 100000;
  int nRepeats = 3;
  std::string program;  // the server
};

template <typename Run>
double secondsOf(Run run) {
  const auto begin = std::chrono::steady_clock::now();
  run();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

double gatheredMegabytes(const Options& options, int nValues) {
  return 4e-6 * kComponents * options.nModes * static_cast<double>(nValues);
}

void measureKernel(const Options& options) {
  const int order = options.nModes, nValues = options.nValues;
  std::mt19937 random(3);
  std::uniform_real_distribution<float> number(-1, 1);
  const auto n = static_cast<std::size_t>(order);
  const auto v = static_cast<std::size_t>(nValues);
  std::vector<float> matrix(n * (n + 1) / 2), stresses(n * v * kComponents);
  for (float& x : matrix) x = number(random);
  for (float& x : stresses) x = number(random);

  ModeStresses modes{stresses.data(), nValues, kComponents, {{0, 1, 2, 3, 4, 5}}};
  std::vector<double> product(v), plain(v);
  double fast = 1e9;
  for (int i = 0; i < options.nRepeats; ++i) {
    fast = std::min(fast, secondsOf([&] {
                      expectedMisesSquaresByProduct({matrix.data(), order}, modes, product.data());
                    }));
  }
  // The plain form needs the modes of its values one after another.
  const int nPart = std::max(1, nValues / 20);
  std::vector<float> part;
  for (std::size_t m = 0; m < n; ++m) {
    const auto begin = stresses.begin() + static_cast<std::ptrdiff_t>(m * v * kComponents);
    part.insert(part.end(), begin, begin + std::ptrdiff_t{nPart} * kComponents);
  }
  modes.numbers = part.data();
  modes.nValues = nPart;
  const double slow = secondsOf([&] {
    expectedMisesSquaresPlain({matrix.data(), order}, modes, plain.data());
  });
  double difference = 0;
  for (int i = 0; i < nPart; ++i) {
    const auto at = static_cast<std::size_t>(i);
    difference = std::max(difference, std::abs(product[at] - plain[at]));
  }
  const double scaled = slow * nValues / nPart;
  std::printf("arithmetic alone, product form %8.3f s\n", fast);
  std::printf(
      "arithmetic alone, plain sum    %8.3f s, scaled from %.3f s of %d values; %.1f times "
      "as long\n",
      scaled, slow, nPart, scaled / fast);
  std::printf("largest difference of the two forms %.3g\n", difference);
}

void printMemory(const TimedServer& server, const char* when, double gathered) {
  const double peak = 1e-6 * static_cast<double>(server.peakMemory());
  std::printf("peak memory %8.1f MB %s", peak, when);
  if (gathered > 0) std::printf(", %.2f times the gathered stresses", peak / gathered);
  std::printf("\n");
}

void measureServer(const Options& options, const std::string& path, int nValues) {
  TimedServer server(options.program);
  server.untilAcknowledged("o " + path);
  const double gathered = gatheredMegabytes(options, nValues);
  printMemory(server, "just opened", 0);
  const auto timed = [&](const char* variable) {
    server.sendSilent(std::string("d 2 0 2 MATRIX^") + variable);
    return server.untilAcknowledged("rs " + path);
  };
  const Reply first = timed("Sqq");
  std::printf("rs of MATRIX Sqq, first        %8.3f s, %.1f MB of records\n", first.seconds,
              1e-6 * static_cast<double>(first.nBytes));
  double cached = 1e9, freed = 1e9;
  for (int i = 0; i < options.nRepeats; ++i) cached = std::min(cached, timed("RSqq").seconds);
  printMemory(server, "with the stresses gathered", gathered);
  // A hundredth of the elements, as a parent asks for that shows a part of the model.
  server.sendSilent("irc 1 0 PART");
  server.untilAcknowledged("irf " + path);
  double selected = 1e9;
  Reply part;
  for (int i = 0; i < options.nRepeats; ++i) {
    server.sendSilent("D 2 0 2 MATRIX^RSqq");
    part = server.untilAcknowledged("rs " + path);
    selected = std::min(selected, part.seconds);
  }
  for (int i = 0; i < options.nRepeats; ++i) {
    server.sendSilent("C");
    freed = std::min(freed, timed("Sqq").seconds);
  }
  std::printf("rs of MATRIX RSqq, gathered    %8.3f s\n", cached);
  std::printf("rs of a hundredth of it        %8.3f s, %.3f MB of records\n", selected,
              1e-6 * static_cast<double>(part.nBytes));
  std::printf("rs of MATRIX Sqq, after C      %8.3f s\n", freed);
  printMemory(server, "after gathering again", gathered);
  server.quit();
}

int run(const Arguments& arguments) {
  Options options;
  options.nModes = countOf(arguments, "--modes", options.nModes);
  options.nValues = countOf(arguments, "--values", options.nValues);
  options.nRepeats = countOf(arguments, "--repeats", options.nRepeats);
  options.program = serverProgram(arguments);
  std::printf("%d modes, %d values, gathered stresses %.0f MB\n", options.nModes, options.nValues,
              gatheredMegabytes(options, options.nValues));
  measureKernel(options);
  const RunFolder folder(arguments);
  const std::string path = folder.file("modes.odb");
  const int nValues = writeModes(path, options.nModes, options.nValues);
  std::printf("server: %d values, database of %.1f MB\n", nValues,
              1e-6 * static_cast<double>(fs::file_size(path)));
  measureServer(options, path, nValues);
  return kDone;
}

}  // namespace
}  // namespace odbs::bench

int main(int argc, char** argv) {
  return odbs::bench::runBench(
      argc, argv, "bench_modal_stress",
      "usage: bench_modal_stress [--modes N] [--values N] [--repeats N] [--server PROGRAM]\n"
      "                          [--folder FOLDER]\n"
      "modes (200), stress values (100000), repeats of each timing, of which the shortest is\n"
      "printed (3), the server (beside this program), folder of the database, kept (temporary).\n",
      {{"--modes"}, {"--values"}, {"--repeats"}, {"--server"}, {"--folder"}}, odbs::bench::run);
}
