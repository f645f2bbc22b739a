// SPDX-License-Identifier: BSD-3-Clause
// Named tables on a text stream, in one of three formats, so that each subcommand defines what it
// found once:
//   table  aligned columns for people
//   csv    RFC 4180: one table with a header row; a list has a column for each of its items
//   jsonl  one JSON object a row, with "table" as its first member
// Texts from databases are untrusted: control characters are shown escaped, never sent to a
// terminal. Writing throws OutputError.
#pragma once

#include <map>
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

// Columns for the items of a list: "name_1" to "name_n".
std::vector<std::string> numbered(const std::string& name, std::size_t n);

class Report {
 public:
  Report(std::ostream& out, Format format) : out_(out), format_(format) {}
  Report(const Report&) = delete;
  Report& operator=(const Report&) = delete;

  Format format() const { return format_; }

  // In csv `mainTable` is the one table that is written.
  void setFormat(Format format, const std::string& mainTable = {});

  // Writes the table of this name alone.
  void only(const std::string& table);

  // Another main table; without effect after `only`.
  void setMainTable(const std::string& table);

  // Throws UsageError when there was no table of the name that `only` was given.
  void finish() const;

  // Opens a table. `name` in the singular, for it names one row in jsonl. The cells of the columns
  // in `lists` are lists of singles; csv gives their items the columns named there, and leaves a
  // column empty where there is no item, or one that is not a number.
  using Lists = std::map<std::string, std::vector<std::string>>;
  void begin(const std::string& name, const std::vector<std::string>& columns,
             const Lists& lists = {});

  // Adds a row of as many cells as there are columns. In the table format the first thousand rows
  // are held back for the widths of the columns.
  void row(std::vector<Value> cells);

  // Ends the table. A table without rows prints nothing for people.
  void end();

  // A table of one row; people get it upright, one cell a line.
  void facts(const std::string& name, const std::vector<std::string>& columns,
             std::vector<Value> cells, const Lists& lists = {});

  // A line for people only, such as the heading of the table that follows.
  void note(const std::string& line);

 private:
  bool isWanted() const { return only_.empty() || only_ == name_; }
  void writeLine(std::string line);
  void writeCsvRow(const std::vector<Value>& cells);
  void release();
  void writeAligned(const std::vector<std::string>& texts, const std::vector<bool>& toTheRight);

  std::ostream& out_;
  Format format_;
  std::string only_;  // the table to write; empty: all
  bool onlyWasAsked_ = false;
  std::vector<std::string> names_;  // of all tables so far
  std::string name_;
  std::vector<std::string> columns_;
  Lists lists_;
  std::vector<std::vector<Value>> held_;
  std::vector<std::size_t> widths_;
  bool released_ = false;
  bool isFirst_ = true;  // no empty line is due ahead of the next table
};

}  // namespace odbs::client
