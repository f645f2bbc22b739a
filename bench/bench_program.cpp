// SPDX-License-Identifier: BSD-3-Clause
// Reading the common options, and the frame of main.
#include "bench/bench_program.h"

#include <climits>
#include <iostream>
#include <optional>

#include "base/text.h"
#include "port/port.h"

namespace odbs::bench {

namespace fs = std::filesystem;

RunFolder::RunFolder(const Arguments& arguments)
    : path_(arguments.value("--folder")), keep_(!path_.empty()) {
  if (!keep_) {
    path_ = fs::temp_directory_path() / ("odbs_bench_" + std::to_string(port::currentProcessId()));
  }
  fs::create_directories(path_);
}

RunFolder::~RunFolder() {
  std::error_code error;
  if (!keep_) fs::remove_all(path_, error);
}

std::string serverProgram(const Arguments& arguments) {
  const fs::path self(port::executablePath());
  return arguments.value("--server",
                         (self.parent_path() / "odb_server").string() + self.extension().string());
}

int countOf(const Arguments& arguments, const char* option, int otherwise, int least) {
  return static_cast<int>(integerValue(arguments, option, otherwise, least, INT_MAX));
}

double realOf(const Arguments& arguments, const char* option) {
  const std::string text = arguments.value(option, "0");
  const std::optional<double> number = parseReal(text);
  if (!number) throw UsageError(std::string(option) + " wants a number, not \"" + text + "\"");
  return *number;
}

int runBench(int argc, char** argv, const char* name, const char* help,
             const std::vector<OptionRule>& options,
             const std::function<int(const Arguments&)>& body) {
  const Program program{name, [help](const Arguments&) { return std::string(help); }, options};
  return runProgram(program, {argv + 1, argv + argc}, std::cout, std::cerr,
                    [&body](const Arguments& arguments) {
                      if (!arguments.words.empty()) {
                        throw UsageError("what is \"" + arguments.words.front() + "\"?");
                      }
                      return body(arguments);
                    });
}

}  // namespace odbs::bench
