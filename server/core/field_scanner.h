// SPDX-License-Identifier: BSD-3-Clause
// Reads the blank-separated fields of a command line the way the runtime's sscanf reads "%d" and
// "%s": blanks ahead of a field are skipped, an integer ends at the first character that is none of
// its digits, and after the first field that does not scan no later one does. Integers beyond 32
// bits are clamped, where sscanf leaves the result open.
#pragma once

#include <cstddef>
#include <string_view>

#include "base/text.h"

namespace odbs {

class FieldScanner {
 public:
  explicit FieldScanner(std::string_view text) : rest_(text) {}

  // The next integer, or `value` unchanged when the field is none or an earlier field failed.
  int nextInt(int value) {
    skipBlanks();
    const std::size_t sign = !rest_.empty() && (rest_[0] == '-' || rest_[0] == '+') ? 1 : 0;
    std::size_t end = sign;
    while (end < rest_.size() && rest_[end] >= '0' && rest_[end] <= '9') ++end;
    if (failed_ || end == sign) {
      failed_ = true;
      return value;
    }
    const int scanned = toIntOrZero(rest_.substr(0, end));
    rest_.remove_prefix(end);
    return scanned;
  }

  // The next word, or an empty text when there is none or an earlier field failed.
  std::string_view nextWord() {
    skipBlanks();
    if (failed_ || rest_.empty()) {
      failed_ = true;
      return {};
    }
    const std::string_view word = rest_.substr(0, rest_.find_first_of(kBlanks));
    rest_.remove_prefix(word.size());
    return word;
  }

 private:
  static constexpr std::string_view kBlanks = " \t\n\v\f\r";

  void skipBlanks() {
    const std::size_t first = rest_.find_first_not_of(kBlanks);
    rest_.remove_prefix(first == std::string_view::npos ? rest_.size() : first);
  }

  std::string_view rest_;
  bool failed_ = false;
};

}  // namespace odbs
