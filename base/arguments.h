// SPDX-License-Identifier: BSD-3-Clause
// What the command lines of all programs have in common: options, --help, --version, exit statuses,
// and how a failure is reported.
#pragma once

#include <cstdint>
#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace odbs {

// Exit statuses.
constexpr int kDone = 0;    // what was asked for is done
constexpr int kFailed = 1;  // it is not; the reason is on standard error
constexpr int kUsage = 2;   // the command line was not understood

// The arguments make no sense; ends a program with kUsage.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A stream could not be written to.
class OutputError : public std::runtime_error {
 public:
  // `error`: an errno value, 0 when it is not known.
  explicit OutputError(int error);
  // The reader closed its end of the pipe, as `head` does when it has seen enough.
  bool readerIsGone() const;

 private:
  int error_;
};

struct OptionRule {
  const char* name;              // "--quiet"
  bool takesValue = true;        //
  const char* letter = nullptr;  // "-q", when there is one
};

struct Arguments {
  std::vector<std::string> words;                            // what is no option
  std::vector<std::pair<std::string, std::string>> options;  // long names and values, as given
  bool help = false, version = false;

  bool has(std::string_view name) const;
  // The value that was given last, or `otherwise`.
  std::string value(std::string_view name, const std::string& otherwise = {}) const;
  // All values that were given.
  std::vector<std::string> values(std::string_view name) const;
};

// Reads a command line without the program's name. Options may be anywhere, as "--name value",
// "--name=value" or by their letter; --help, -h and --version are always understood; after "--"
// nothing is an option. Throws UsageError.
Arguments parseArguments(const std::vector<std::string>& texts,
                         const std::vector<OptionRule>& rules);

// The option's value as an integer from `least` to `greatest`. Throws UsageError.
std::int64_t integerValue(const Arguments& arguments, const std::string& name,
                          std::int64_t otherwise, std::int64_t least, std::int64_t greatest);

// "; did you mean \"X\"?" with the candidate X that is spelled most like `text`, or an empty text
// when none is like it.
std::string didYouMean(std::string_view text, const std::vector<std::string>& candidates);

struct Program {
  const char* name;
  std::function<std::string(const Arguments&)> help;  // the text that --help prints
  std::vector<OptionRule> options;
};

// Runs a program on its arguments and returns the exit status: the body's, or that of the exception
// that left it, with a message "NAME: reason" on `err`. Answers --help and --version. What `out`
// (std::cout for standard output, also when it is written by <cstdio>) still holds is written;
// failing to is a failure of the program, but for a reader that closed its pipe: that ends it
// silently with kDone.
int runProgram(const Program& program, const std::vector<std::string>& texts, std::ostream& out,
               std::ostream& err, const std::function<int(const Arguments&)>& body);

}  // namespace odbs
