// SPDX-License-Identifier: BSD-3-Clause
// odb_String: the text type of the API. Owns its bytes; any encoding; copies are independent.
#pragma once

#include <cstddef>
#include <string>

class odb_String {
 public:
  odb_String() = default;
  // A copy of the NUL-terminated `text`; a null pointer gives the empty text.
  odb_String(const char* text) : text_(text ? text : "") {}
  // The decimal form of a number.
  explicit odb_String(int value) : text_(std::to_string(value)) {}
  // A copy of `n` bytes at `text`.
  odb_String(const char* text, std::size_t n) : text_(text, n) {}

  // The bytes, NUL-terminated, valid until this object changes or dies.
  const char* CStr() const { return text_.c_str(); }
  const char* cStr() const { return text_.c_str(); }
  // Number of bytes.
  int Length() const { return static_cast<int>(text_.size()); }
  bool empty() const { return text_.empty(); }

  // Adds text, or the shortest common decimal form of a number ("%d", "%g"), or "true"/"false", at
  // the end. Chainable.
  odb_String& append(const odb_String& other);
  odb_String& append(const char* other);
  odb_String& append(int value);
  odb_String& append(float value);
  odb_String& append(double value);
  odb_String& append(bool value);
  odb_String& Append(const odb_String& other) { return append(other); }
  odb_String& operator+=(const odb_String& other) { return append(other); }

  // Index of the first byte of the first occurrence of `part`; Length() when there is none.
  int Find(const char* part) const;
  int Find(const odb_String& part) const { return Find(part.CStr()); }

  // Bytewise comparison.
  bool operator==(const odb_String& other) const { return text_ == other.text_; }
  bool operator!=(const odb_String& other) const { return text_ != other.text_; }
  bool operator==(const char* other) const { return text_ == (other ? other : ""); }
  bool operator!=(const char* other) const { return !(*this == other); }
  bool operator<(const odb_String& other) const { return text_ < other.text_; }
  bool operator>(const odb_String& other) const { return other < *this; }

 private:
  std::string text_;
};

inline bool operator==(const char* a, const odb_String& b) {
  return b == a;
}
inline bool operator!=(const char* a, const odb_String& b) {
  return b != a;
}

inline odb_String operator+(const odb_String& a, const odb_String& b) {
  odb_String sum(a);
  return sum.append(b);
}
inline odb_String operator+(const odb_String& a, const char* b) {
  odb_String sum(a);
  return sum.append(b);
}
inline odb_String operator+(const char* a, const odb_String& b) {
  odb_String sum(a);
  return sum.append(b);
}
