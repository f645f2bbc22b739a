// SPDX-License-Identifier: BSD-3-Clause
// The rows of a stored table, every number checked before it is used.
#pragma once

#include "odb/src/storage/storage.h"

#include <initializer_list>

namespace odbs::engine {

struct Range {
  std::int64_t first = 0;
  std::int64_t count = 0;
};

class Rows {
 public:
  Rows(FileReader& reader, const layout::TableSpec& shape)
      : reader_(reader), spec_(shape), table_(reader.readTable(shape)) {}
  Rows(FileReader& reader, const layout::TableSpec& shape, const Range& range)
      : reader_(reader), spec_(shape), table_(reader.readTable(shape, range.first, range.count)) {}

  std::int64_t size() const { return table_.nRows; }
  std::int64_t integer(std::int64_t row, int column) const { return table_.integer(row, column); }
  double real(std::int64_t row, int column) const { return table_.real(row, column); }
  const double* reals(std::int64_t row, int column) const {
    return &table_.reals[static_cast<std::size_t>(row * table_.nReals + column)];
  }
  odb_String text(std::int64_t row, int column) const {
    return reader_.text(table_.integer(row, column));
  }
  // An integer that fits an int.
  int number(std::int64_t row, int column) const;
  bool flag(std::int64_t row, int column) const { return number(row, column) != 0; }
  // A number in 0 .. limit - 1, or in -1 .. limit - 1.
  std::size_t index(std::int64_t row, int column, std::size_t limit) const;
  std::int64_t optionalIndex(std::int64_t row, int column, std::size_t limit) const;
  // An enumerator, one of those listed.
  template <class E>
  E choice(std::int64_t row, int column, std::initializer_list<E> allowed) const {
    const std::int64_t value = table_.integer(row, column);
    for (const E e : allowed) {
      if (static_cast<std::int64_t>(e) == value) return e;
    }
    bad(row, column);
  }
  // First row and number of rows, in this column and the next, of a table with `limit` rows.
  Range range(std::int64_t row, int column, std::int64_t limit) const;
  // Place and count, in this column and the next, of an array that exists.
  ArrayRef array(std::int64_t row, int column, layout::Kind kind, int file) const;
  // A small array, read at once.
  template <class T>
  std::vector<T> numbers(std::int64_t row, int column) const {
    const ArrayRef ref = array(row, column, kindOf<T>(), 0);
    std::vector<T> data(static_cast<std::size_t>(ref.count));
    reader_.readArray(kindOf<T>(), ref.start, ref.count, data.data());
    return data;
  }
  [[noreturn]] void bad(std::int64_t row, int column) const;

 private:
  FileReader& reader_;
  const layout::TableSpec& spec_;
  Table table_;
};

}  // namespace odbs::engine
