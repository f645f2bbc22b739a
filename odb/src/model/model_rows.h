// SPDX-License-Identifier: BSD-3-Clause
// Small pieces that several tables share: rows of numbers, named values, references to sets. The
// reading side takes checked rows, the writing side fills tables.
#pragma once

#include "odb/src/model/model_objects.h"
#include "odb/src/storage/rows.h"

namespace odbs::engine {

// ---- Reading ----

// Rows of numbers from an array of row lengths and one of the numbers, each of two columns.
template <class Sequence, class Row, class T>
Sequence readNumberRows(const Rows& rows, std::int64_t row, int lengths, int data) {
  const std::vector<int> counts = rows.numbers<int>(row, lengths);
  const std::vector<T> numbers = rows.numbers<T>(row, data);
  Sequence out(static_cast<int>(counts.size()));
  std::size_t at = 0;
  for (const int count : counts) {
    if (count < 0 || static_cast<std::size_t>(count) > numbers.size() - at) rows.bad(row, lengths);
    Row line(count);
    for (int k = 0; k < count; ++k) line.append(numbers[at++]);
    out.append(line);
  }
  if (at != numbers.size()) rows.bad(row, data);
  return out;
}

// What the reader of the model knows while it runs.
struct ModelReading {
  Database& database;
  Model& model;
  FileReader& reader;
  int file;
  std::vector<SetData*> sets;          // by row
  std::vector<SurfaceData*> surfaces;  // by row
  std::vector<CategoryData*> categories;
  std::unique_ptr<Rows> properties;

  // The set of columns viewer and set (the next one); absent for row -1.
  odb_Set set(const Rows& rows, std::int64_t row, int viewer);
  odb_DatumCsys csys(const Rows& rows, std::int64_t row, int column);
  Properties namedValues(const Rows& rows, std::int64_t row, int firstColumn);
};

// ---- Writing ----

template <class Sequence, class T>
void writeNumberRows(Saver& saver, Table& table, std::int64_t row, int lengths, int data,
                     const Sequence& sequence) {
  std::vector<int> counts;
  std::vector<T> numbers;
  for (int i = 0; i < sequence.size(); ++i) {
    counts.push_back(sequence[i].size());
    for (int k = 0; k < sequence[i].size(); ++k) numbers.push_back(sequence[i][k]);
  }
  saver.numbers(table, row, lengths, counts);
  saver.numbers(table, row, data, numbers);
}

// Fills columns viewer and set.
void writeSet(Table& table, std::int64_t row, int viewer, const odb_Set& set);
// Adds named values; fills columns first and count.
void writeNamedValues(Saver& saver, Table& table, std::int64_t row, int firstColumn,
                      const Properties& properties);

// Sections, materials, user data, and objects (property_store.cpp).
void loadProperties(ModelReading& reading);
void saveProperties(Model& model, Saver& saver);
// Named objects (object_store.cpp).
void loadObjects(ModelReading& reading);
void saveObjects(Model& model, Saver& saver);
// Sets, assignments, orientations, surfaces, rigid bodies (region_store.cpp).
void loadRegions(ModelReading& reading);
void saveRegions(Model& model, Saver& saver);

}  // namespace odbs::engine
