// SPDX-License-Identifier: BSD-3-Clause
// The tables of a .dat file. Numbers are separated by blanks there, whatever their size: the
// solver leaves one column between fields that are wide enough for every value.
#include "importer/results/dat_reader.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "base/text.h"

namespace odbs::importer {

namespace {

constexpr std::string_view kModeHeading = "E I G E N V A L U E    N U M B E R";

std::vector<std::string_view> words(std::string_view text) {
  std::vector<std::string_view> found;
  std::size_t at = 0;
  while ((at = text.find_first_not_of(" \t", at)) != std::string_view::npos) {
    const std::size_t end = std::min(text.find_first_of(" \t", at), text.size());
    found.push_back(text.substr(at, end - at));
    at = end;
  }
  return found;
}

// True for a line of numbers, false for one of words. "NaN" begins no row: rows begin with a key,
// and totals that are no numbers come with a blank heading in between (see readRow).
bool isRow(std::string_view text) {
  const char c = text[0];
  if ((c >= '0' && c <= '9') || c == '.') return true;
  if (c != '-' && c != '+' && c != 'N' && c != 'I') return false;
  return parseReal(text.substr(0, text.find_first_of(" \t"))).has_value();
}

// A printed value. The solver prints all but counts with a point; a part of a number that a blank
// has broken in two has none.
std::optional<double> valueOf(std::string_view word, const DatTable& table) {
  const auto value = parseReal(word);
  const bool whole = value && std::isfinite(*value) && word.find('.') == std::string_view::npos;
  return whole && table.quantity != kDatContactElements ? std::nullopt : value;
}

// Fills set, master set and time from a heading such as
// "stresses (elem, integ.pnt.,sxx,...) for set EALL and time  0.1000000E+01".
void readHeading(std::string_view text, DatTable& table) {
  const std::size_t time = text.rfind("time");
  if (time != std::string_view::npos) {
    if (const auto value = parseReal(text.substr(time + 4))) {
      table.hasTime = true;
      table.time = *value;
      text = trimmed(text.substr(0, time));
      if (endsWith(text, "and")) text = trimmed(text.substr(0, text.size() - 3));
    }
  }
  const std::size_t master = text.find(", master set ");
  if (master != std::string_view::npos) {
    table.masterSet = std::string(trimmed(text.substr(master + 13)));
    text = text.substr(0, master);
  }
  // Blanks and letters around the word are missing in some headings: "for setEALL", "eneset EALL".
  const std::size_t set = text.find("set");
  const std::size_t all = text.find("for all contact elements");
  if (set != std::string_view::npos) {
    table.set = std::string(trimmed(text.substr(set + 3)));
    text = text.substr(0, set);
  } else if (all != std::string_view::npos) {
    text = text.substr(0, all);
  }
  text = trimmed(text);
  if (endsWith(text, "for")) text = trimmed(text.substr(0, text.size() - 3));
  table.title = std::string(text);
}

}  // namespace

DatReader::DatReader(const std::string& path) : input_(path) {}

bool DatReader::next() {
  table_ = {};
  if (!findHeading()) return false;
  readRows();
  return true;
}

// Moves to the heading of the next known table and starts that table.
bool DatReader::findHeading() {
  bool skipping = false;  // the rows of an unknown table
  while (atHeading_ || input_.nextLine()) {
    atHeading_ = false;
    const std::string_view text = trimmed(input_.line());
    if (text.empty()) continue;
    if (startsWith(text, kModeHeading)) {
      mode_ = toIntOrZero(text.substr(kModeHeading.size()));
      continue;
    }
    if (const DatKind* const kind = findDatKind(text)) {
      startTable(*kind, text);
      return true;
    }
    if (isRow(text) && !skipping) input_.fail("numbers without a heading");
    if (!isRow(text) && !skipping) addUnknown(text);
    skipping = true;
  }
  return false;
}

void DatReader::addUnknown(std::string_view text) {
  std::string heading(text);
  const auto known = std::find(unknownHeadings_.begin(), unknownHeadings_.end(), heading);
  if (known == unknownHeadings_.end()) unknownHeadings_.push_back(std::move(heading));
}

void DatReader::startTable(const DatKind& kind, std::string_view text) {
  kind_ = &kind;
  table_.rows = kind.rows;
  table_.quantity = std::string(kind.quantity);
  table_.mode = mode_;
  table_.nKeys = nDatKeys(kind.rows);
  readHeading(text, table_);
  if (kind.quantity == kDatHarmonic) {
    const auto parts = words(text);
    for (const std::string_view word : parts) {
      if (const auto value = parseReal(word)) table_.time = *value;
    }
    table_.hasTime = true;
  }
  for (const std::string_view name : words(kind.columns)) {
    if (name != "*") table_.columns.push_back(name == "-" ? "" : std::string(name));
  }
  if (kind.quantity == kDatEigenvalues || kind.quantity == kDatParticipation) mode_ = 0;
}

// Reads up to the next heading, or the end of the file.
void DatReader::readRows() {
  while (input_.nextLine()) {
    const std::string_view text = trimmed(input_.line());
    if (text.empty()) continue;
    const bool ofStatistics =
        table_.rows == DatRows::statistics && text.find(" for set ") == std::string_view::npos;
    const bool known = startsWith(text, kModeHeading) || findDatKind(text) != nullptr;
    if (known && !(ofStatistics && !statisticsColumns(text).empty())) {
      atHeading_ = true;
      return;
    }
    if (isRow(text)) {
      readRow(text);
    } else if (!readSubheading(text)) {
      atHeading_ = true;
      return;
    }
  }
}

// Takes a line of words inside a table. Returns false when it cannot belong to the table.
bool DatReader::readSubheading(std::string_view text) {
  if (table_.rows == DatRows::statistics) {
    const std::string_view names = statisticsColumns(text);
    if (names.empty()) addUnknown(text);
    for (const std::string_view name : words(names)) table_.columns.emplace_back(name);
    return true;
  }
  // The sums at the end of the effective modal masses: the next table repeats them.
  if (startsWith(text, "TOTAL ") && table_.quantity == kDatEffectiveMass) return true;
  if (table_.nRows() > 0) return false;
  if (startsWith(text, "NODAL") && table_.quantity == kDatEigenvalues) {
    table_.rows = DatRows::diameterModes;
    table_.nKeys = 2;
  }
  const bool ofColumns =
      !table_.hasTime || table_.quantity == kDatHarmonic || table_.rows == DatRows::facePoints;
  return ofColumns;
}

void DatReader::readRow(std::string_view text) {
  const auto parts = words(text);
  const std::size_t nKeys = static_cast<std::size_t>(table_.nKeys);
  const bool fixed = !table_.columns.empty() && table_.rows != DatRows::statistics;
  std::vector<double> values;
  std::size_t at = nKeys;
  while (at < parts.size() && !(fixed && values.size() == table_.columns.size())) {
    const auto value = valueOf(parts[at], table_);
    if (!value) break;
    values.push_back(*value);
    ++at;
  }
  if (parts.size() < nKeys) input_.fail("a row without its labels");
  // "L": a vector in the node's system of *TRANSFORM.
  const bool named = table_.rows == DatRows::points || table_.quantity == kDatTurning ||
                     (table_.rows == DatRows::nodes && at < parts.size() && parts[at] == "L");
  if (at < parts.size() && (!named || parseReal(parts[at]))) {
    input_.fail("a number expected, found \"" + std::string(parts[at]) + "\"");
  }
  for (std::size_t i = 0; i < nKeys; ++i) {
    const auto key = parseInt(parts[i]);
    if (!key || *key < 0 || *key > std::numeric_limits<std::int32_t>::max()) {
      input_.fail("a label expected, found \"" + std::string(parts[i]) + "\"");
    }
    table_.keys.push_back(static_cast<std::int32_t>(*key));
  }
  if (table_.rows == DatRows::statistics) {
    table_.values.insert(table_.values.end(), values.begin(), values.end());
    if (table_.values.size() > table_.columns.size()) nameColumns(table_.values.size());
    return;
  }
  if (table_.columns.empty() && table_.quantity != kDatTurning) nameColumns(values.size());
  if (values.size() != table_.columns.size()) {
    input_.fail(std::to_string(table_.columns.size()) + " numbers expected after the labels, " +
                std::to_string(values.size()) + " found");
  }
  table_.values.insert(table_.values.end(), values.begin(), values.end());
  if (at < parts.size()) {
    table_.notes.resize(table_.nRows());
    table_.notes.back() =
        std::string(trimmed(text.substr(static_cast<std::size_t>(parts[at].data() - text.data()))));
  }
}

// Names the columns of a table that prints as many numbers as there are.
void DatReader::nameColumns(std::size_t nValues) {
  if (table_.quantity == kDatEigenvalues) {
    table_.columns = {"EIGENVALUE", "OMEGA", "FREQUENCY", "IMAGINARY OMEGA"};
    // Complex frequencies come without the eigenvalue.
    if (nValues == 3) table_.columns.erase(table_.columns.begin());
    return;
  }
  while (table_.columns.size() < nValues) {
    table_.columns.push_back(std::to_string(table_.columns.size() + 1));
  }
}

}  // namespace odbs::importer
