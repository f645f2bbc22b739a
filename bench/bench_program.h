// SPDX-License-Identifier: BSD-3-Clause
// What the benchmarks' command lines have in common: --server, --folder, numbers, exit status.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "base/arguments.h"

namespace odbs::bench {

// The folder of a run's files: that of --folder, which is kept, or a temporary one, which goes with
// this object.
class RunFolder {
 public:
  explicit RunFolder(const Arguments& arguments);
  ~RunFolder();
  RunFolder(const RunFolder&) = delete;
  RunFolder& operator=(const RunFolder&) = delete;

  std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
  bool keep_;
};

// The server program: that of --server, or odb_server beside this program.
std::string serverProgram(const Arguments& arguments);

// The option's value as an integer from `least` on. Throws UsageError.
int countOf(const Arguments& arguments, const char* option, int otherwise, int least = 1);

// The option's value as a real, 0 when it was not given. Throws UsageError.
double realOf(const Arguments& arguments, const char* option);

// The body of a benchmark's main function. `options` are its own and --folder; `body` returns the
// exit status.
int runBench(int argc, char** argv, const char* name, const char* help,
             const std::vector<OptionRule>& options,
             const std::function<int(const Arguments&)>& body);

}  // namespace odbs::bench
