// SPDX-License-Identifier: BSD-3-Clause
// Measures how fast `g` streams a large hexahedral model, as a ratio to what the pipe and the
// reader carry at best (`M` with 40,950-byte writes), the server's peak memory, and how soon
// databases open.
//
// The first `g` of a server reads the database's arrays; the later ones find them in memory. Both
// rates are printed. M and g take turns, so that a slow moment of the machine hits both, and the
// ratio is the median of those of the turns.
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

constexpr std::int64_t kRawWrite = 40950;
constexpr std::int64_t kAckBytes = 3;
constexpr double kMega = 1e6;

struct Options {
  int nPerEdge = 100;     // nodes
  int nRepeats = 7;       // timed pairs of M and g
  double leastRatio = 0;  // exit status 1 below this
  std::string program;    // the server
};

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// Milliseconds until a fresh server acknowledges opening the database; the least of five, since
// everything above it is the machine's.
double openingTime(const Options& options, const std::string& path) {
  double least = 1e9;
  for (int i = 0; i < 5; ++i) {
    TimedServer server(options.program);
    server.untilAcknowledged("p");
    least = std::min(least, 1e3 * server.untilAcknowledged("o " + path).seconds);
    server.quit();
  }
  return least;
}

// The reply to the first `g` of a fresh server, the fastest of three.
Reply firstModel(const Options& options, const std::string& path) {
  Reply fastest;
  for (int i = 0; i < 3; ++i) {
    TimedServer server(options.program);
    server.untilAcknowledged("o " + path);
    const Reply reply = server.untilAcknowledged("g " + path);
    server.quit();
    if (i == 0 || reply.seconds < fastest.seconds) fastest = reply;
  }
  return fastest;
}

void printRate(const char* what, double rate, double ratio) {
  std::printf("%-12s %8.0f MB/s   ratio %.2f\n", what, rate / kMega, ratio);
}

// Prints the rates; returns the ratio of repeated g to M.
double streamRates(const Options& options, const std::string& path) {
  const Reply first = firstModel(options, path);
  TimedServer server(options.program);
  server.untilAcknowledged("o " + path);
  const std::int64_t memoryBefore = server.peakMemory();
  const std::string command = "g " + path;
  server.exactly(command, first.nBytes);

  const std::int64_t nRaw = std::max<std::int64_t>(first.nBytes / kRawWrite, 1);
  const std::string raw = "M " + std::to_string(nRaw) + " " + std::to_string(kRawWrite);
  std::vector<double> rawRates;
  std::vector<double> modelRates;
  std::vector<double> ratios;
  for (int i = 0; i < options.nRepeats; ++i) {
    rawRates.push_back(server.exactly(raw, nRaw * kRawWrite + kAckBytes).bytesPerSecond());
    modelRates.push_back(server.exactly(command, first.nBytes).bytesPerSecond());
    ratios.push_back(modelRates.back() / rawRates.back());
  }
  const std::int64_t memoryAfter = server.peakMemory();
  server.quit();

  const double rawRate = median(rawRates);
  std::printf("g is %.1f MB of records\n", static_cast<double>(first.nBytes) / kMega);
  printRate("M", rawRate, 1);
  printRate("g, first", first.bytesPerSecond(), first.bytesPerSecond() / rawRate);
  printRate("g, repeated", median(modelRates), median(ratios));
  std::printf("peak memory  %8.1f MB     %.1f MB when just opened\n",
              static_cast<double>(memoryAfter) / kMega, static_cast<double>(memoryBefore) / kMega);
  return median(ratios);
}

int run(const Arguments& arguments) {
  Options options;
  options.nPerEdge = countOf(arguments, "--edge", options.nPerEdge, 2);
  options.nRepeats = countOf(arguments, "--repeats", options.nRepeats);
  options.leastRatio = realOf(arguments, "--least");
  options.program = serverProgram(arguments);
  const RunFolder folder(arguments);
  const std::string large = folder.file("cube" + std::to_string(options.nPerEdge) + ".odb");
  const std::string small = folder.file("cube3.odb");
  if (!std::filesystem::exists(small)) writeHexahedralModel(small, 3);
  if (!std::filesystem::exists(large)) writeHexahedralModel(large, options.nPerEdge);

  std::printf("cube of %d^3 nodes, database of %.1f MB\n", options.nPerEdge,
              static_cast<double>(std::filesystem::file_size(large)) / kMega);
  const double ratio = streamRates(options, large);
  std::printf("open, small  %8.2f ms\n", openingTime(options, small));
  std::printf("open, large  %8.2f ms\n", openingTime(options, large));
  return ratio >= options.leastRatio ? kDone : kFailed;
}

}  // namespace
}  // namespace odbs::bench

int main(int argc, char** argv) {
  return odbs::bench::runBench(
      argc, argv, "bench_model_stream",
      "usage: bench_model_stream [--edge N] [--repeats N] [--least RATIO] [--server PROGRAM]\n"
      "                          [--folder FOLDER]\n"
      "N^3 nodes (100), pairs of M and g (7), least ratio for exit status 0 (0), the server\n"
      "(beside this program), folder of the databases, kept for the next run (temporary).\n"
      "The server reports the totals of M on standard error.\n",
      {{"--edge"}, {"--repeats"}, {"--least"}, {"--server"}, {"--folder"}}, odbs::bench::run);
}
