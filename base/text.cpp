// SPDX-License-Identifier: BSD-3-Clause
// Text helpers of base/text.h.
#include "base/text.h"

#include <charconv>
#include <limits>

namespace odbs {

namespace {

bool isBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

char upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

// `text` without a leading plus sign, which from_chars refuses; empty when another sign follows it.
std::string_view withoutPlus(std::string_view text) {
  if (text.empty() || text[0] != '+') return text;
  text.remove_prefix(1);
  return text.empty() || text[0] == '-' || text[0] == '+' ? std::string_view() : text;
}

}  // namespace

std::int32_t toIntOrZero(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size() && isBlank(text[at])) ++at;
  const bool negative = at < text.size() && text[at] == '-';
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) ++at;
  constexpr std::int64_t kLimit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + 1;
  std::int64_t value = 0;
  for (; at < text.size() && isDigit(text[at]); ++at) {
    value = value * 10 + (text[at] - '0');
    if (value > kLimit) value = kLimit;
  }
  if (negative) return static_cast<std::int32_t>(-value);
  return static_cast<std::int32_t>(value == kLimit ? kLimit - 1 : value);
}

std::optional<std::int64_t> parseInt(std::string_view text) {
  text = withoutPlus(trimmed(text));
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<double> parseReal(std::string_view text) {
  text = withoutPlus(trimmed(text));
  if (text.empty()) return std::nullopt;
  double value = 0;
  const char* const last = text.data() + text.size();
  auto [end, error] = std::from_chars(text.data(), last, value);
  if (error == std::errc() && end == last) return value;
  if (error != std::errc::result_out_of_range && error != std::errc()) return std::nullopt;
  // An exponent that from_chars stopped at: a FORTRAN letter, or a bare sign.
  std::string plain;
  plain.reserve(text.size() + 1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool exponentLetter = c == 'd' || c == 'D' || c == 'e' || c == 'E';
    const bool bareSign =
        (c == '-' || c == '+') && i > 0 && (isDigit(text[i - 1]) || text[i - 1] == '.');
    if (exponentLetter || bareSign) plain += 'e';
    if (!exponentLetter && c != '+') plain += c;
  }
  const auto reread = std::from_chars(plain.data(), plain.data() + plain.size(), value);
  end = reread.ptr;
  error = reread.ec;
  if (end != plain.data() + plain.size()) return std::nullopt;
  if (error == std::errc::result_out_of_range) {
    // Too small or too large for a double: a denormal tail counts as zero, anything else is
    // refused.
    return plain.find("e-") != std::string::npos ? std::optional<double>(0.0) : std::nullopt;
  }
  return error == std::errc() ? std::optional<double>(value) : std::nullopt;
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string upperCase(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = upper(c);
  return result;
}

bool equalNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (upper(a[i]) != upper(b[i])) return false;
  }
  return true;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  std::size_t begin = 0;
  for (;;) {
    const std::size_t end = text.find(separator, begin);
    pieces.push_back(text.substr(begin, end - begin));
    if (end == std::string_view::npos) return pieces;
    begin = end + 1;
  }
}

}  // namespace odbs
