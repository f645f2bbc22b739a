// SPDX-License-Identifier: BSD-3-Clause
// Reads the fields of one record in order and never past its end. Every failure is a
// MalformedRecord that names the record's kind and offset.
#pragma once

#include <string>
#include <string_view>

#include "client/records/record_stream.h"

namespace odbs::client {

class Cursor {
 public:
  // `kind` names the record in errors ("section record"); it must outlive the cursor.
  Cursor(const Record& record, const char* kind)
      : at_(record.body), left_(record.size), offset_(record.offset), kind_(kind) {}

  std::uint32_t u32() { return getU32(bytes(4, "an integer")); }
  std::int32_t i32() { return getI32(bytes(4, "an integer")); }
  float f32() { return getF32(bytes(4, "a real")); }
  double f64() { return getF64(bytes(8, "a double")); }

  // A text: a 32-bit byte count and the bytes, which belong to the record's stream.
  std::string_view text();

  // A list's 32-bit count, checked against what is left: each item takes at least `itemBytes`.
  std::uint32_t count(std::uint32_t itemBytes);

  // The next `n` bytes as they are; `what` names them in the error.
  const unsigned char* bytes(std::size_t n, const char* what) {
    if (n > left_) failShort(n, what);
    const unsigned char* here = at_;
    at_ += n;
    left_ -= static_cast<std::uint32_t>(n);
    return here;
  }

  std::uint32_t left() const { return left_; }

  // Throws unless the whole record has been read.
  void expectEnd() const;

  [[noreturn]] void fail(const std::string& reason) const;

 private:
  [[noreturn]] void failShort(std::size_t wanted, const char* what) const;

  const unsigned char* at_;
  std::uint32_t left_;
  std::uint64_t offset_;
  const char* kind_;
};

}  // namespace odbs::client
