// SPDX-License-Identifier: BSD-3-Clause
// Sequences of the database API made from lists in braces.
#pragma once

#include <odb_API.h>

#include <vector>

namespace odbs::tests {

template <class Sequence, class Value>
Sequence sequenceOf(const std::vector<Value>& values) {
  Sequence sequence;
  for (const Value& value : values) sequence.append(value);
  return sequence;
}

template <class Rows, class Row, class Value>
Rows rowsOf(const std::vector<std::vector<Value>>& values) {
  Rows result;
  for (const std::vector<Value>& row : values) result.append(sequenceOf<Row>(row));
  return result;
}

inline odb_SequenceInt ints(const std::vector<int>& values) {
  return sequenceOf<odb_SequenceInt>(values);
}

inline odb_SequenceFloat floats(const std::vector<float>& values) {
  return sequenceOf<odb_SequenceFloat>(values);
}

inline odb_SequenceSequenceInt rows(const std::vector<std::vector<int>>& values) {
  return rowsOf<odb_SequenceSequenceInt, odb_SequenceInt>(values);
}

inline odb_SequenceSequenceFloat floatRows(const std::vector<std::vector<float>>& values) {
  return rowsOf<odb_SequenceSequenceFloat, odb_SequenceFloat>(values);
}

inline odb_SequenceSequenceDouble doubleRows(const std::vector<std::vector<double>>& values) {
  return rowsOf<odb_SequenceSequenceDouble, odb_SequenceDouble>(values);
}

}  // namespace odbs::tests
