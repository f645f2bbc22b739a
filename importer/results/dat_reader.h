// SPDX-License-Identifier: BSD-3-Clause
// Reads a CalculiX print file (.dat) as a stream: one table in memory at a time.
//
//     DatReader reader("model.dat");
//     while (reader.next()) use(reader.table());
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "importer/results/dat_table.h"
#include "importer/results/result_input.h"

namespace odbs::importer {

class DatReader {
 public:
  // Opens the file. Throws ResultFileError, as next() does for a file that breaks the format.
  explicit DatReader(const std::string& path);

  // Reads the next table of a known kind, empty ones included, and drops the one before. Returns
  // false at the end of the file.
  bool next();

  // The table that next() has just read.
  DatTable& table() { return table_; }

  // Headings of no known kind so far, each once; their rows were skipped.
  const std::vector<std::string>& unknownHeadings() const { return unknownHeadings_; }

 private:
  bool findHeading();
  void startTable(const DatKind& kind, std::string_view text);
  void readRows();
  bool readSubheading(std::string_view text);
  void readRow(std::string_view text);
  void nameColumns(std::size_t nValues);
  void addUnknown(std::string_view text);

  ResultInput input_;
  DatTable table_;
  const DatKind* kind_ = nullptr;  // of the table being read
  bool atHeading_ = false;         // the current line is the heading of the next table
  int mode_ = 0;                   // of the last heading of an eigenvalue
  std::vector<std::string> unknownHeadings_;
};

}  // namespace odbs::importer
