// SPDX-License-Identifier: BSD-3-Clause
// Named tables on a text stream, in one of three formats, so that each subcommand says what it
// found once:
//   table  aligned columns for people
//   csv    RFC 4180; each table brings its header; the first column is the table's name
//   jsonl  one JSON object a row, with "table" as its first member
// Texts from databases are untrusted: control characters are shown escaped, never sent to a
// terminal.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "client/describe.h"

namespace odbs::client {

enum class Format { kTable, kCsv, kJsonl };

// A value as text: reals with the fewest digits that give them back, lists separated by blanks.
std::string plainText(const Value& value);

// A value as JSON; numbers that JSON cannot express become null.
std::string jsonText(const Value& value);

// `text` with control characters as \n, \t, \xNN and bytes that are not UTF-8 as \xNN.
std::string printable(const std::string& text);

class Report {
 public:
  Report(std::ostream& out, Format format) : out_(out), format_(format) {}
  Report(const Report&) = delete;
  Report& operator=(const Report&) = delete;

  Format format() const { return format_; }

  // Opens a table. `name` in the singular, for it names one row in csv and jsonl.
  void begin(const std::string& name, const std::vector<std::string>& columns);

  // Adds a row of as many cells as there are columns. In the table format the first thousand rows
  // are held back for the widths of the columns.
  void row(std::vector<Value> cells);

  // Ends the table. A table without rows prints nothing for people, its header in csv.
  void end();

  // A table of one row; people get it upright, one cell a line.
  void facts(const std::string& name, const std::vector<std::string>& columns,
             std::vector<Value> cells);

  // A line for people only, such as the heading of the table that follows.
  void note(const std::string& line);

 private:
  void release();
  void writeAligned(const std::vector<std::string>& texts, const std::vector<bool>& toTheRight);

  std::ostream& out_;
  Format format_;
  std::string name_;
  std::vector<std::string> columns_;
  std::vector<std::vector<Value>> held_;
  std::vector<std::size_t> widths_;
  bool released_ = false;
  bool isFirst_ = true;  // no empty line is due ahead of the next table
};

}  // namespace odbs::client
