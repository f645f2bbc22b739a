// SPDX-License-Identifier: BSD-3-Clause
// The checks of the numbers in a row, and the messages that name table, row and column.
#include "odb/src/storage/rows.h"

#include "odb/src/storage/errors.h"

#include <limits>

namespace odbs::engine {

void Rows::bad(std::int64_t row, int column) const {
  failDamaged(reader_.path() + ": table " + spec_.name + ", row " +
              std::to_string(table_.firstRow + row) + ", column " + std::to_string(column) +
              ": impossible value " + std::to_string(table_.integer(row, column)));
}

int Rows::number(std::int64_t row, int column) const {
  const std::int64_t value = table_.integer(row, column);
  if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) {
    bad(row, column);
  }
  return static_cast<int>(value);
}

std::size_t Rows::index(std::int64_t row, int column, std::size_t limit) const {
  const std::int64_t value = table_.integer(row, column);
  if (value < 0 || value >= static_cast<std::int64_t>(limit)) bad(row, column);
  return static_cast<std::size_t>(value);
}

std::int64_t Rows::optionalIndex(std::int64_t row, int column, std::size_t limit) const {
  const std::int64_t value = table_.integer(row, column);
  if (value < -1 || value >= static_cast<std::int64_t>(limit)) bad(row, column);
  return value;
}

Range Rows::range(std::int64_t row, int column, std::int64_t limit) const {
  Range range;
  range.first = table_.integer(row, column);
  range.count = table_.integer(row, column + 1);
  if (range.count < 0 || range.count > limit) bad(row, column + 1);
  if (range.count == 0) return Range();
  if (range.first < 0 || range.first > limit - range.count) bad(row, column);
  return range;
}

ArrayRef Rows::array(std::int64_t row, int column, layout::Kind kind, int file) const {
  ArrayRef ref;
  ref.start = table_.integer(row, column);
  ref.count = table_.integer(row, column + 1);
  // More than that no sequence of the API can count.
  if (ref.count < 0 || ref.count > std::numeric_limits<int>::max()) bad(row, column + 1);
  if (ref.count == 0) return ArrayRef();
  reader_.checkArray(kind, ref.start, ref.count);
  ref.file = file;
  return ref;
}

}  // namespace odbs::engine
