// SPDX-License-Identifier: BSD-3-Clause
// odb_Union: a number, a truth value or a text, distinguished by its type.
#pragma once

#include <odb_String.h>

enum odb_UnionType {
  odb_UNION_INT,
  odb_UNION_FLOAT,
  odb_UNION_DOUBLE,
  odb_UNION_BOOL,
  odb_UNION_STRING
};

class odb_Union {
 public:
  odb_Union() = default;  // the integer 0
  odb_Union(int value) : type_(odb_UNION_INT), number_(value) {}
  odb_Union(float value) : type_(odb_UNION_FLOAT), number_(static_cast<double>(value)) {}
  odb_Union(double value) : type_(odb_UNION_DOUBLE), number_(value) {}
  odb_Union(bool value) : type_(odb_UNION_BOOL), number_(value ? 1 : 0) {}
  odb_Union(const char* value) : type_(odb_UNION_STRING), text_(value) {}
  odb_Union(const odb_String& value) : type_(odb_UNION_STRING), text_(value) {}

  odb_UnionType type() const { return type_; }
  // The value; numbers are converted to the type asked for (reals to integers towards zero). The
  // number getters throw odb_Exception for a text, getString for anything else.
  int getInt() const;
  float getFloat() const;
  double getDouble() const;
  bool getBool() const;
  odb_String getString() const;

  // For the library itself: the text, empty for numbers.
  const odb_String& engineText() const { return text_; }

 private:
  double number() const;

  odb_UnionType type_ = odb_UNION_INT;
  double number_ = 0;
  odb_String text_;
};
