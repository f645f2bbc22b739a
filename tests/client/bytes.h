// SPDX-License-Identifier: BSD-3-Clause
// Writes reply bytes by hand, independently of the server's own record writers.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>

#include "client/record_stream.h"

namespace odbs::client::test {

// A payload under construction: Bytes('H').text("PART-1").
class Bytes {
 public:
  Bytes() = default;
  explicit Bytes(int tag) : data_(1, static_cast<char>(tag)) {}

  Bytes& u32(std::uint32_t value) {
    for (int shift = 0; shift < 32; shift += 8) data_ += static_cast<char>(value >> shift & 0xFF);
    return *this;
  }
  Bytes& i32(std::int32_t value) { return u32(static_cast<std::uint32_t>(value)); }
  Bytes& f32(float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return u32(bits);
  }
  Bytes& raw(const std::string& bytes) {
    data_ += bytes;
    return *this;
  }
  Bytes& text(const std::string& text) {
    return u32(static_cast<std::uint32_t>(text.size())).raw(text);
  }
  const std::string& payload() const { return data_; }

  // The payload behind its length.
  std::string framed() const {
    const std::string length{static_cast<char>(data_.size() & 0xFF),
                             static_cast<char>(data_.size() >> 8)};
    return length + data_;
  }

 private:
  std::string data_;
};

// The payload as a record at stream position `offset`; it points into `payload`.
inline Record recordOf(const std::string& payload, std::uint64_t offset = 0) {
  Record record;
  record.tag = static_cast<unsigned char>(payload[0]);
  record.body = reinterpret_cast<const unsigned char*>(payload.data()) + 1;
  record.size = static_cast<std::uint32_t>(payload.size() - 1);
  record.offset = offset;
  return record;
}

}  // namespace odbs::client::test
