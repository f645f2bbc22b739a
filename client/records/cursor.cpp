// SPDX-License-Identifier: BSD-3-Clause
// The slow paths of the cursor: texts, counts and errors.
#include "client/records/cursor.h"

namespace odbs::client {

std::string_view Cursor::text() {
  const std::uint32_t n = u32();
  return {reinterpret_cast<const char*>(bytes(n, "a text")), n};
}

std::uint32_t Cursor::count(std::uint32_t itemBytes) {
  const std::uint32_t n = u32();
  if (n > left_ / itemBytes) {
    fail("a count of " + std::to_string(n) + " where " + std::to_string(left_) + " bytes are left");
  }
  return n;
}

void Cursor::expectEnd() const {
  if (left_ != 0) fail(std::to_string(left_) + " bytes too many");
}

void Cursor::fail(const std::string& reason) const {
  throw MalformedRecord(offset_, std::string(kind_) + ": " + reason);
}

void Cursor::failShort(std::size_t wanted, const char* what) const {
  fail(std::string(what) + " of " + std::to_string(wanted) + " bytes where " +
       std::to_string(left_) + " are left");
}

}  // namespace odbs::client
