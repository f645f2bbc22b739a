// SPDX-License-Identifier: BSD-3-Clause
// Escapes for control characters and bytes that are not UTF-8.
#include "base/printable.h"

namespace odbs {

std::size_t utf8Length(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(at);
  const std::size_t n = first >= 0xF0 && first < 0xF5   ? 4
                        : first >= 0xE0 && first < 0xF0 ? 3
                        : first >= 0xC2 && first < 0xE0 ? 2
                                                        : 0;
  if (n == 0 || at + n > text.size()) return 0;
  for (std::size_t i = 1; i < n; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return 0;
  }
  // Overlong forms and surrogates are not UTF-8.
  if (first == 0xE0 && byte(at + 1) < 0xA0) return 0;
  if (first == 0xED && byte(at + 1) > 0x9F) return 0;
  if (first == 0xF0 && byte(at + 1) < 0x90) return 0;
  if (first == 0xF4 && byte(at + 1) > 0x8F) return 0;
  return n;
}

std::string hexByte(unsigned char byte) {
  static const char* const kDigits = "0123456789abcdef";
  return {kDigits[byte >> 4], kDigits[byte & 15]};
}

std::string printable(std::string_view text) {
  std::string result;
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = static_cast<unsigned char>(text[i]);
    std::size_t n = 1;
    if (byte >= 0x20 && byte < 0x7F) {
      result += text[i];
    } else if (byte == '\n') {
      result += "\\n";
    } else if (byte == '\t') {
      result += "\\t";
    } else if (byte >= 0x80 && (n = utf8Length(text, i)) > 0 &&
               !(byte == 0xC2 && static_cast<unsigned char>(text[i + 1]) < 0xA0)) {
      result += text.substr(i, n);  // but for the control characters U+0080 to U+009F
    } else {
      n = 1;
      result += "\\x" + hexByte(byte);
    }
    i += n;
  }
  return result;
}

}  // namespace odbs
