// SPDX-License-Identifier: BSD-3-Clause
// Records of the protocol in a notation for expectations, so that a test reads like the page:
//
//   record("$ 6 'LAM' 2 0.5f 45f")      a section: tag '$', i32 6, a text, i32 2, two f32
//
// The first word is the tag, a character or a number. Then: a number is 4 bytes; with f after it a
// single, with d a double; 'text' has its length ahead, <text> has not. Hexadecimal is 0x41.
// Written independently of the server's and the client's own encoding.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace odbs::tests {

inline std::string littleEndian(std::uint64_t value, int nBytes) {
  std::string bytes;
  for (int i = 0; i < nBytes; ++i) bytes += static_cast<char>(value >> 8 * i & 0xFF);
  return bytes;
}

inline std::string wordBytes(const std::string& word) {
  const bool isHex = word.size() > 1 && word[1] == 'x';
  const double real = std::strtod(word.c_str(), nullptr);
  std::uint64_t bits = 0;
  if (!isHex && word.back() == 'd') {
    std::memcpy(&bits, &real, 8);
    return littleEndian(bits, 8);
  }
  if (!isHex && word.back() == 'f') {
    const auto single = static_cast<float>(real);
    std::memcpy(&bits, &single, 4);
    return littleEndian(bits, 4);
  }
  return littleEndian(static_cast<std::uint64_t>(std::strtoll(word.c_str(), nullptr, 0)), 4);
}

// The payload: the tag and the body.
inline std::string record(const std::string& notation) {
  std::string bytes;
  for (std::size_t at = 0; at < notation.size(); ++at) {
    const char open = notation[at];
    if (open == ' ' || open == '\n') continue;
    const bool isText = !bytes.empty() && (open == '\'' || open == '<');
    const std::size_t end =
        std::min(isText ? notation.find(open == '<' ? '>' : '\'', at + 1) : notation.find(' ', at),
                 notation.size());
    const std::string word = notation.substr(at, end - at);
    if (isText) {
      if (open == '\'') bytes += littleEndian(word.size() - 1, 4);
      bytes += word.substr(1);
    } else if (bytes.empty()) {
      const bool isNumber = word.size() > 1;
      bytes += static_cast<char>(isNumber ? std::strtol(word.c_str(), nullptr, 0) : word[0]);
    } else {
      bytes += wordBytes(word);
    }
    at = end;
  }
  return bytes;
}

// The payload after its length.
inline std::string frame(const std::string& notation) {
  const std::string payload = record(notation);
  return littleEndian(payload.size(), 2) + payload;
}

}  // namespace odbs::tests
