// SPDX-License-Identifier: BSD-3-Clause
// odb_String and odb_Union.
#include "odb/src/storage/errors.h"

#include <odb_Union.h>

#include <cstdio>

odb_String& odb_String::append(const odb_String& other) {
  text_ += other.text_;
  return *this;
}

odb_String& odb_String::append(const char* other) {
  if (other) text_ += other;
  return *this;
}

odb_String& odb_String::append(int value) {
  text_ += std::to_string(value);
  return *this;
}

odb_String& odb_String::append(float value) {
  return append(static_cast<double>(value));
}

odb_String& odb_String::append(double value) {
  char digits[40];
  std::snprintf(digits, sizeof digits, "%g", value);
  text_ += digits;
  return *this;
}

odb_String& odb_String::append(bool value) {
  return append(value ? "true" : "false");
}

int odb_String::Find(const char* part) const {
  const std::size_t at = part ? text_.find(part) : std::string::npos;
  return at == std::string::npos ? Length() : static_cast<int>(at);
}

double odb_Union::number() const {
  if (type_ == odb_UNION_STRING) odbs::engine::failUsage("the union holds a text, not a number");
  return number_;
}

int odb_Union::getInt() const {
  const double value = number();
  if (!(value > -2147483649.0 && value < 2147483648.0)) {
    odbs::engine::failUsage("the union's number fits no integer");
  }
  return static_cast<int>(value);
}
float odb_Union::getFloat() const {
  return static_cast<float>(number());
}
double odb_Union::getDouble() const {
  return number();
}
bool odb_Union::getBool() const {
  return number() != 0;
}

odb_String odb_Union::getString() const {
  if (type_ != odb_UNION_STRING) odbs::engine::failUsage("the union holds a number, not a text");
  return text_;
}
