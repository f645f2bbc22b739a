// SPDX-License-Identifier: BSD-3-Clause
// A table of a CalculiX print file (.dat) and the list of the tables that the solver prints.
//
// Source: CalculiX CrunchiX User's Manual, keywords *NODE PRINT, *EL PRINT, *CONTACT PRINT,
// *SECTION PRINT (*FACE PRINT), *FREQUENCY, *BUCKLE, *COMPLEX FREQUENCY, *STEADY STATE DYNAMICS;
// headings as the solver prints them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace odbs::importer {

// What the rows of a table belong to, which is also what their keys are.
enum class DatRows {
  nodes,          // keys: node
  elements,       // keys: element
  points,         // keys: element, integration point
  faces,          // keys: element, face; several rows a face (its contact points)
  facePoints,     // keys: element, face, integration point
  totals,         // no keys, one row
  statistics,     // no keys, one row: forces through a surface
  modes,          // keys: mode
  diameterModes,  // keys: nodal diameter, mode
  modeTotals,     // no keys, one row
  other           // a heading that is not known; its rows are skipped
};

struct DatTable {
  DatRows rows = DatRows::other;
  std::string quantity;   // as requested in the deck ("U", "S", "ELSE", ...), or see kDat... below
  std::string title;      // the heading's text before "for set", or the whole heading
  std::string set;        // "" when the table is for no set; the slave surface of a contact pair
  std::string masterSet;  // of a contact pair's statistics
  bool hasTime = false;
  double time = 0;  // total time, or the frequency of a steady-state calculation
  int mode = 0;     // of the last heading "eigenvalue number N", 0 when there was none; tables
                    // of a later step without such headings still carry it
  int nKeys = 0;    // keys a row
  std::vector<std::string> columns;  // names of the values of a row
  std::vector<std::int32_t> keys;    // nKeys a row
  std::vector<double> values;        // columns.size() a row
  // The name after a row's values: the local system of the row, or the turning direction ("F",
  // "B"). One a row up to the last row that has one.
  std::vector<std::string> notes;

  std::size_t nRows() const {
    if (nKeys > 0) return keys.size() / static_cast<std::size_t>(nKeys);
    return columns.empty() ? 0 : values.size() / columns.size();
  }
};

// Quantities of the tables that no print request names.
inline constexpr std::string_view kDatEigenvalues = "EIGENVALUES";
inline constexpr std::string_view kDatBuckling = "BUCKLING";
inline constexpr std::string_view kDatParticipation = "PARTICIPATION";
inline constexpr std::string_view kDatEffectiveMass = "EFFECTIVE MASS";
inline constexpr std::string_view kDatTotalEffectiveMass = "TOTAL EFFECTIVE MASS";
inline constexpr std::string_view kDatHarmonic = "HARMONIC PARTICIPATION";
inline constexpr std::string_view kDatTurning = "TURNING DIRECTION";
inline constexpr std::string_view kDatStatistics = "STATISTICS";
inline constexpr std::string_view kDatContactElements = "CNUM";

// A kind of table.
struct DatKind {
  std::string_view heading;   // how the heading begins, leading blanks removed
  DatRows rows;               //
  std::string_view quantity;  //
  std::string_view columns;   // names, separated by blanks; "NAME*": as many as the first row has
};

// The kind of the heading `text` (leading blanks removed), or null.
const DatKind* findDatKind(std::string_view text);

// Names of the values below a sub-heading of a table of statistics; empty for an unknown one.
std::string_view statisticsColumns(std::string_view subheading);

// Keys of a row.
int nDatKeys(DatRows rows);

}  // namespace odbs::importer
