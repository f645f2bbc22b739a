// SPDX-License-Identifier: BSD-3-Clause
// Expected record payloads, written byte by byte and independently of the server's own encoding.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace odbs::tests {

class Payload {
 public:
  explicit Payload(int tag) : bytes_(1, static_cast<char>(tag)) {}

  Payload& i32(std::int64_t value) {
    for (int shift = 0; shift < 32; shift += 8) {
      bytes_ += static_cast<char>((static_cast<std::uint64_t>(value) >> shift) & 0xFF);
    }
    return *this;
  }
  Payload& f64(double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    i32(static_cast<std::int64_t>(bits & 0xFFFFFFFF));
    return i32(static_cast<std::int64_t>(bits >> 32));
  }
  Payload& f32(float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return i32(bits);
  }
  Payload& text(std::string_view characters) {
    i32(static_cast<std::int64_t>(characters.size()));
    return raw(characters);
  }
  Payload& raw(std::string_view characters) {
    bytes_ += characters;
    return *this;
  }
  Payload& zeros(int nWords) {
    bytes_.append(4 * static_cast<std::size_t>(nWords), '\0');
    return *this;
  }

  // NOLINTNEXTLINE: expectations mix payloads and strings.
  operator std::string() const { return bytes_; }

 private:
  std::string bytes_;
};

inline std::string node(int label, const std::vector<float>& coordinates) {
  Payload payload(0x03);
  payload.i32(label);
  for (const float x : coordinates) payload.f32(x);
  return payload;
}

// `type` with its padding.
inline std::string element(const char* type, int label, int section,
                           const std::vector<int>& nodeLabels) {
  Payload payload(0x04);
  payload.raw(type).i32(label).i32(section);
  for (const int nodeLabel : nodeLabels) payload.i32(nodeLabel);
  return payload;
}

inline std::string name(std::string_view text) {
  return Payload('H').text(text);
}

inline std::string title(std::string_view text) {
  return Payload(0x01).text(text);
}

inline std::string analysisKind(int codeLessOne) {
  return Payload(0x02).i32(codeLessOne);
}

inline const std::string kMarker = "I";

}  // namespace odbs::tests
