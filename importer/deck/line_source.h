// SPDX-License-Identifier: BSD-3-Clause
// The lines of a deck, across the files that it includes: keyword lines taken apart, data lines as
// they stand. Comments, blank lines and *INCLUDE never reach the caller.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "importer/deck/deck.h"
#include "importer/deck/keyword_table.h"

namespace odbs::importer {

struct Parameter {
  std::string name;   // squeezed; in full where the keyword's parameters are known
  std::string value;  // as databases show names: upper case unless quoted
  std::string raw;    // as it stands, without quotes
  bool hasValue = false;
  Spelling spelling;  // what the keyword's table has for it
};

struct Keyword {
  std::string name;     // squeezed, in full where it is known: "SOLIDSECTION"
  std::string text;     // as a person writes it: "*SOLID SECTION"
  std::string choices;  // of an ambiguous abbreviation: what it may stand for
  bool abbreviated = false;
  std::vector<Parameter> parameters;
  Place place = 0;

  // The parameter of that name, or null.
  const Parameter* find(std::string_view wanted) const;
  bool has(std::string_view wanted) const { return find(wanted) != nullptr; }
  // Its value, or an empty text.
  const std::string& value(std::string_view wanted) const;
};

class LineSource {
 public:
  // Reads the file. Throws DeckError when it is no readable text file.
  explicit LineSource(const std::string& path);
  ~LineSource();
  LineSource(const LineSource&) = delete;
  LineSource& operator=(const LineSource&) = delete;

  // The next data line, without its line end; false when a keyword or the end of the deck is next.
  // The view lives until the next call of any function here.
  bool dataLine(std::string_view& line);

  // The next keyword, passing over data lines that nobody read; false at the end of the deck.
  bool keyword(Keyword& keyword);

  // The lines of `file` come next (parameter INPUT of data keywords, *INCLUDE). It is looked for
  // beside the file that names it, then beside the deck.
  void push(const std::string& file);

  // From the next line on `<name>` stands for `value`.
  const std::map<std::string, std::string>& values() const { return values_; }
  void setValue(const std::string& name, const std::string& value) { values_[name] = value; }

  // Line of what was returned last.
  Place place() const { return place_; }
  // "file:line" of a place.
  std::string where(Place place) const;
  // Throws DeckError at the line returned last, or at another one.
  [[noreturn]] void fail(const std::string& reason) const { fail(place_, reason); }
  [[noreturn]] void fail(Place place, const std::string& reason) const;

  // How much of the files opened so far is read, 0 to 1.
  double progress() const;

 private:
  struct File;
  struct Segment {
    Place first;         // first place that belongs to it
    std::size_t file;    // index in names_
    std::uint32_t line;  // the file's line at that place, from 1
  };

  void open(const std::string& path);
  void close();
  bool rawLine(std::string_view& line);
  void unreadLine();
  bool anyLine(std::string_view& line);
  void parseKeyword(std::string_view line, Keyword& keyword);
  std::string gather(std::string_view line);
  std::string substituted(std::string_view line) const;

  std::vector<std::unique_ptr<File>> stack_;
  std::vector<std::string> names_;
  std::vector<Segment> segments_;
  std::map<std::string, std::string> values_;  // of parameters
  std::string substituted_;                    // the last line, where it refers to some
  std::size_t lineStart_ = 0;                  // offset of the last raw line in the topmost file
  Place place_ = 0, nextPlace_ = 1;
  std::size_t nOpened_ = 0;
  std::uint64_t nBytes_ = 0, nBytesDone_ = 0;
};

// The fields of a data line, separated by commas outside of quotes.
class Fields {
 public:
  explicit Fields(std::string_view line) : rest_(line) {}
  // The next field without surrounding blanks; false after the last one. A comma at the end of the
  // line opens no further field.
  bool next(std::string_view& field);

 private:
  std::string_view rest_;
};

// The whole of a field as a number: base's parseReal, and "1e-3." with a point at its end.
std::optional<double> numberOf(std::string_view field);

// A name as databases show it: without quotes and as it stands when quoted, else in upper case.
std::string nameOf(std::string_view text);

}  // namespace odbs::importer
