// SPDX-License-Identifier: BSD-3-Clause
// Small text helpers: blank padding, prefixes, case, trimming, and numbers read with tolerance.
// Nothing here depends on the locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace odbs {

// The first integer of `text`, as the runtime's `atoi` reads it: leading blanks skipped, an
// optional sign, digits up to the first other character; 0 when there is none. Values beyond 32
// bits are clamped to the nearest 32-bit integer (where `atoi` leaves the result open).
std::int32_t toIntOrZero(std::string_view text);

// The whole of `text` (surrounding blanks allowed) as an integer of at most 64 bits, or nothing.
std::optional<std::int64_t> parseInt(std::string_view text);

// The whole of `text` (surrounding blanks allowed) as a real, or nothing. Accepts the exponent
// letters of solver files, "1.5D-3", and exponents without a letter, "1.5-103" (three-digit
// exponents push the letter out of the column). "nan" and "inf" in any case are accepted.
std::optional<double> parseReal(std::string_view text);

// `text` without blanks, tabs, carriage returns and line feeds at both ends.
std::string_view trimmed(std::string_view text);

// `text` with ASCII letters in upper case.
std::string upperCase(std::string_view text);

// True when `a` and `b` are equal but for the case of ASCII letters.
bool equalNoCase(std::string_view a, std::string_view b);

inline bool startsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

inline bool endsWith(std::string_view text, std::string_view suffix) {
  return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

// The pieces of `text` between separators, empty ones included: "a,,b" gives three.
std::vector<std::string_view> split(std::string_view text, char separator);

}  // namespace odbs
