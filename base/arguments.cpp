// SPDX-License-Identifier: BSD-3-Clause
// Reading options, and the texts for help, versions and wrong command lines.
#include "base/arguments.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <new>
#include <optional>

#include "base/printable.h"
#include "base/text.h"

namespace odbs {

namespace {

// The rule of an option as it was typed, or null.
const OptionRule* findRule(const std::vector<OptionRule>& rules, std::string_view typed) {
  for (const OptionRule& rule : rules) {
    if (typed == rule.name || (rule.letter != nullptr && typed == rule.letter)) return &rule;
  }
  return nullptr;
}

const OptionRule& ruleOf(const std::vector<OptionRule>& rules, std::string_view typed) {
  if (const OptionRule* rule = findRule(rules, typed)) return *rule;
  std::vector<std::string> names{"--help", "--version"};
  for (const OptionRule& rule : rules) names.emplace_back(rule.name);
  throw UsageError("there is no option " + std::string(typed) + didYouMean(typed, names));
}

// The number of letters to insert, delete or replace to make `b` of `a`, whatever their case.
std::size_t spellingDistance(std::string_view a, std::string_view b) {
  const std::string from = upperCase(a), to = upperCase(b);
  std::vector<std::size_t> row(to.size() + 1);
  for (std::size_t j = 0; j <= to.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= from.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t replaced = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row[to.size()];
}

void flush(std::ostream& out) {
  errno = 0;
  out.flush();
  if (!out || (&out == &std::cout && std::ferror(stdout) != 0)) throw OutputError(errno);
}

}  // namespace

OutputError::OutputError(int error)
    : std::runtime_error(std::string("cannot write the output") +
                         (error == 0 ? "" : std::string(": ") + std::strerror(error))),
      error_(error) {}

// Windows calls it an invalid argument.
bool OutputError::readerIsGone() const {
  return error_ == EPIPE || error_ == EINVAL;
}

bool Arguments::has(std::string_view name) const {
  return std::any_of(options.begin(), options.end(),
                     [&](const auto& option) { return option.first == name; });
}

std::string Arguments::value(std::string_view name, const std::string& otherwise) const {
  const std::vector<std::string> all = values(name);
  return all.empty() ? otherwise : all.back();
}

std::vector<std::string> Arguments::values(std::string_view name) const {
  std::vector<std::string> all;
  for (const auto& [given, value] : options) {
    if (given == name) all.push_back(value);
  }
  return all;
}

Arguments parseArguments(const std::vector<std::string>& texts,
                         const std::vector<OptionRule>& rules) {
  Arguments result;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    const std::string& text = texts[i];
    const std::size_t equals = startsWith(text, "--") ? text.find('=') : std::string::npos;
    if (text == "--") {
      result.words.insert(result.words.end(), texts.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                          texts.end());
      break;
    }
    if (text == "--help" || text == "-h") {
      result.help = true;
    } else if (text == "--version") {
      result.version = true;
    } else if (text.size() < 2 || text[0] != '-') {
      result.words.push_back(text);
    } else if (const OptionRule& rule = ruleOf(rules, text.substr(0, equals)); !rule.takesValue) {
      if (equals != std::string::npos) throw UsageError(std::string(rule.name) + " takes no value");
      result.options.emplace_back(rule.name, "");
    } else if (equals != std::string::npos) {
      result.options.emplace_back(rule.name, text.substr(equals + 1));
    } else if (i + 1 < texts.size()) {
      result.options.emplace_back(rule.name, texts[++i]);
    } else {
      throw UsageError(text + " wants a value");
    }
  }
  return result;
}

std::int64_t integerValue(const Arguments& arguments, const std::string& name,
                          std::int64_t otherwise, std::int64_t least, std::int64_t greatest) {
  if (!arguments.has(name)) return otherwise;
  const std::string text = arguments.value(name);
  const std::optional<std::int64_t> number = parseInt(text);
  if (number && *number >= least && *number <= greatest) return *number;
  throw UsageError(name + " wants an integer from " + std::to_string(least) + " to " +
                   std::to_string(greatest) + ", not \"" + text + "\"");
}

std::string didYouMean(std::string_view text, const std::vector<std::string>& candidates) {
  const std::string* best = nullptr;
  std::size_t least = text.size() / 2 + 1;  // half of the letters at most are wrong
  for (const std::string& candidate : candidates) {
    const std::size_t distance = spellingDistance(text, candidate);
    if (distance >= least || distance >= std::max(text.size(), candidate.size())) continue;
    least = distance;
    best = &candidate;
  }
  return best == nullptr ? std::string() : "; did you mean \"" + *best + "\"?";
}

int runProgram(const Program& program, const std::vector<std::string>& texts, std::ostream& out,
               std::ostream& err, const std::function<int(const Arguments&)>& body) {
  const auto fail = [&](const std::string& reason) -> std::ostream& {
    return err << program.name << ": " << printable(reason) << "\n";
  };
  try {
    const Arguments arguments = parseArguments(texts, program.options);
    int status = kDone;
    if (arguments.help) {
      out << program.help(arguments);
    } else if (arguments.version) {
      out << program.name << " " << ODBS_VERSION << "\n";
    } else {
      status = body(arguments);
    }
    flush(out);
    return status;
  } catch (const UsageError& error) {
    fail(error.what()) << "Try: " << program.name << " --help\n";
    return kUsage;
  } catch (const OutputError& error) {
    if (error.readerIsGone()) return kDone;
    fail(error.what());
  } catch (const std::bad_alloc&) {
    fail("there is not enough memory");
  } catch (const std::exception& error) {
    fail(error.what());
  }
  return kFailed;
}

}  // namespace odbs
