// SPDX-License-Identifier: BSD-3-Clause
// Measures how fast `rs` streams a large stress field, as a ratio to what the pipe and the reader
// carry at best (`M` with 40,950-byte writes), with the server's peak memory; how long a selection
// of 1,000 elements, and of all, takes against the values of all; and, for a step of very many
// frames, how soon the database opens and how much faster the catalogue comes from its cache.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/bench_program.h"
#include "bench/hexahedral_model.h"
#include "bench/timed_server.h"

namespace odbs::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kRawWrite = 40950;
constexpr std::int64_t kAckBytes = 3;
constexpr double kMega = 1e6;

struct Options {
  int nPerEdge = 101;   // nodes of the cube: one million elements
  int nFrames = 10000;  //
  int nFields = 50;     // in each frame
  int nRepeats = 5;
  std::string program;  // the server
};

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void measureValues(const Options& options, const std::string& path) {
  TimedServer server(options.program);
  server.untilAcknowledged("o " + path);
  const std::int64_t memoryBefore = server.peakMemory();
  server.sendSilent("d 1 0 2 S");
  const std::string command = "rs " + path;
  const Reply first = server.untilAcknowledged(command);
  const std::int64_t nRaw = std::max<std::int64_t>(first.nBytes / kRawWrite, 1);
  const std::string raw = "M " + std::to_string(nRaw) + " " + std::to_string(kRawWrite);
  std::vector<double> rawRates, valueRates, ratios;
  for (int i = 0; i < options.nRepeats; ++i) {
    rawRates.push_back(server.exactly(raw, nRaw * kRawWrite + kAckBytes).bytesPerSecond());
    valueRates.push_back(server.exactly(command, first.nBytes).bytesPerSecond());
    ratios.push_back(valueRates.back() / rawRates.back());
  }
  const std::int64_t memoryAfter = server.peakMemory();
  server.quit();
  std::printf("rs is %.1f MB of records\n", static_cast<double>(first.nBytes) / kMega);
  std::printf("M            %8.0f MB/s   ratio 1.00\n", median(rawRates) / kMega);
  std::printf("rs, first    %8.0f MB/s   ratio %.2f\n", first.bytesPerSecond() / kMega,
              first.bytesPerSecond() / median(rawRates));
  std::printf("rs, repeated %8.0f MB/s   ratio %.2f\n", median(valueRates) / kMega, median(ratios));
  std::printf("peak memory  %8.1f MB     %.1f MB when just opened\n",
              static_cast<double>(memoryAfter) / kMega, static_cast<double>(memoryBefore) / kMega);
}

// How long the walk takes when the values are restricted to a selection, against all values. The
// two take turns.
void measureSelection(const Options& options, const std::string& path) {
  TimedServer server(options.program);
  server.untilAcknowledged("o " + path);
  const std::string command = "rs " + path;
  for (const char* request : {"1 0 SPREAD", "7 0 C3D8"}) {
    server.sendSilent(std::string("irc ") + request);
    const double resolved = server.untilAcknowledged("irf " + path).seconds;
    std::vector<double> ratios;
    Reply selected;
    for (int i = 0; i <= options.nRepeats; ++i) {
      server.sendSilent("d 1 0 2 S");
      const Reply all = server.untilAcknowledged(command);
      server.sendSilent("D 1 0 2 S");
      selected = server.untilAcknowledged(command);
      if (i > 0) ratios.push_back(selected.seconds / all.seconds);  // the first reads the file
    }
    std::printf("rs of %-10s %8.1f MB, selected in %.0f ms, %.2f times the time of all values\n",
                request, static_cast<double>(selected.nBytes) / kMega, 1e3 * resolved,
                median(ratios));
  }
  server.quit();
}

// Seconds of one listing by a fresh server; with a cache path when `cache` is not empty.
Reply listing(const Options& options, const std::string& head, const std::string& path,
              const std::string& cache) {
  TimedServer server(options.program);
  server.untilAcknowledged("o " + path);
  if (!cache.empty()) server.untilAcknowledged("T " + cache);
  const Reply reply = server.untilAcknowledged(head + path);
  server.quit();
  return reply;
}

void measureCatalogue(const Options& options, const std::string& path, const std::string& cache) {
  double open = 1e9;
  for (int i = 0; i < 5; ++i) {
    TimedServer server(options.program);
    server.untilAcknowledged("p");
    open = std::min(open, server.untilAcknowledged("o " + path).seconds);
    server.quit();
  }
  std::printf("open         %8.2f ms\n", 1e3 * open);
  for (const char* head : {"fs ", "fS "}) {
    std::vector<double> plain, computed, replayed;
    std::int64_t nBytes = 0;
    for (int i = 0; i < options.nRepeats; ++i) {
      fs::remove(cache);
      plain.push_back(listing(options, head, path, "").seconds);
      computed.push_back(listing(options, head, path, cache).seconds);
      const Reply reply = listing(options, head, path, cache);
      replayed.push_back(reply.seconds);
      nBytes = reply.nBytes;
    }
    std::printf("%s%.1f MB: computed %.0f ms, computed and cached %.0f ms, replayed %.0f ms\n",
                head, static_cast<double>(nBytes) / kMega, 1e3 * median(plain),
                1e3 * median(computed), 1e3 * median(replayed));
    std::printf("%sreplayed %.1f times faster than computed and cached\n", head,
                median(computed) / median(replayed));
  }
}

int run(const Arguments& arguments) {
  Options options;
  options.nPerEdge = countOf(arguments, "--edge", options.nPerEdge, 2);
  options.nFrames = countOf(arguments, "--frames", options.nFrames);
  options.nFields = countOf(arguments, "--fields", options.nFields);
  options.nRepeats = countOf(arguments, "--repeats", options.nRepeats);
  options.program = serverProgram(arguments);
  const RunFolder folder(arguments);
  const std::string field = folder.file("stress" + std::to_string(options.nPerEdge) + ".odb");
  const std::string frames = folder.file("frames" + std::to_string(options.nFrames) + "x" +
                                         std::to_string(options.nFields) + ".odb");
  if (!fs::exists(field)) writeStressField(field, options.nPerEdge);
  std::printf("stress field of %d^3 elements, database of %.1f MB\n", options.nPerEdge - 1,
              static_cast<double>(fs::file_size(field)) / kMega);
  measureValues(options, field);
  measureSelection(options, field);
  if (!fs::exists(frames)) writeManyFrames(frames, options.nFrames, options.nFields);
  std::printf("step of %d frames with %d fields, database of %.1f MB\n", options.nFrames,
              options.nFields, static_cast<double>(fs::file_size(frames)) / kMega);
  measureCatalogue(options, frames, folder.file("catalogue_cache"));
  return kDone;
}

}  // namespace
}  // namespace odbs::bench

int main(int argc, char** argv) {
  return odbs::bench::runBench(
      argc, argv, "bench_results",
      "usage: bench_results [--edge N] [--frames N] [--fields N] [--repeats N] [--server PROGRAM]\n"
      "                     [--folder FOLDER]\n"
      "(N-1)^3 elements (101), frames of the long step (10000), fields in each (50), repeats of\n"
      "each timing (5), the server (beside this program), folder of the databases, kept for the\n"
      "next run (temporary). The server reports the totals of M on standard error.\n",
      {{"--edge"}, {"--frames"}, {"--fields"}, {"--repeats"}, {"--server"}, {"--folder"}},
      odbs::bench::run);
}
