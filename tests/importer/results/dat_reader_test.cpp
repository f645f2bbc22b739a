// SPDX-License-Identifier: BSD-3-Clause
// The reader of .dat files on one table of each shape that the solver prints, and on broken ones.
#include "importer/results/dat_reader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "tests/importer/results/result_text.h"

namespace odbs::importer {
namespace {

// A table in one line: "rows QUANTITY [set[/master] ][@time ](columns)", then "; keys: values note"
// of each row.
std::string described(const DatTable& table) {
  constexpr const char* kRows[] = {"nodes",  "elements",   "points", "faces",         "facePoints",
                                   "totals", "statistics", "modes",  "diameterModes", "modeTotals"};
  std::ostringstream text;
  text.precision(7);
  text << kRows[static_cast<int>(table.rows)] << ' ' << table.quantity << ' ';
  if (!table.set.empty()) text << table.set << ' ';
  if (!table.masterSet.empty()) text << "/ " << table.masterSet << ' ';
  if (table.hasTime) text << '@' << table.time << ' ';
  if (table.mode > 0) text << "mode " << table.mode << ' ';
  text << '(';
  for (const std::string& name : table.columns)
    text << (&name == &table.columns[0] ? "" : " ") << name;
  text << ')';
  const auto nKeys = static_cast<std::size_t>(table.nKeys);
  for (std::size_t row = 0; row < table.nRows(); ++row) {
    text << ';';
    for (std::size_t i = 0; i < nKeys; ++i) text << ' ' << table.keys[row * nKeys + i];
    text << (nKeys > 0 ? ":" : "");
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
      const double value = table.values[row * table.columns.size() + i];
      text << ' ' << (std::isnan(value) ? std::fabs(value) : value);
    }
    if (row < table.notes.size() && !table.notes[row].empty()) text << ' ' << table.notes[row];
  }
  return text.str();
}

// The tables of a print file, one a line.
std::string tablesOf(const std::string& text, std::vector<std::string>* unknown = nullptr) {
  const TemporaryFile file(text, ".dat");
  DatReader reader(file.path());
  std::string lines;
  while (reader.next()) lines += described(reader.table()) + "\n";
  if (unknown != nullptr) *unknown = reader.unknownHeadings();
  return lines;
}

TEST(DatReader, ReadsATableOfEachShape) {
  const struct {
    const char *text, *tables;
  } cases[] = {
      {"\n displacements (vx,vy,vz) for set SET1 and time  0.5000000E+00\n\n"
       "         1  0.000000E+00 -1.000000-103  1.500000E+00\n"
       "        12           NaN  2.000000E+00 -3.000000E+00 L\n\n"
       " total force (fx,fy,fz) for set FIX and time  0.1000000E+01\n\n"
       "       -8.963941E-12 -9.000000E+00  7.586765E-12\n\n"
       " total contact spring energy for time  0.5000000E+00\n\n        8.494439E-02\n",
       "nodes U SET1 @0.5 (1 2 3); 1: 0 -1e-103 1.5; 12: nan 2 -3 L\n"
       "totals RF FIX @1 (1 2 3); -8.963941e-12 -9 7.586765e-12\n"
       "totals CELS @0.5 (); 0.08494439\n"},
      {" stresses (elem, integ.pnt.,sxx,syy,szz,sxy,sxz,syz) for set SET2 and time  0.1000000E+01\n"
       "\n         1   1 -2.600167E+00 -2.600167E+00  3.625318E+00  3.062590E+00  1.358358E+00"
       "  1.358358E+00\n"
       "         1   2 -5.200285E+00  5.231693E+00  3.297180E+00  2.988195E+00 -1.315433E+01"
       "  4.019350E+00 _shell_0000000029   \n\n"
       " heat flux (elem, integ.pnt.,qx,qy,qz) for setEALL and time  0.1000000E+01\n\n\n"
       " strains (elem, integ.pnt.,exx,eyy,ezz,exy,exz,eyz) forset A_set and time  "
       "0.2000000E+01\n\n"
       " internal state variables (elem, integ.pnt.,values) for set EALL and time  "
       "0.7200000E+02\n\n"
       "         1   1 -4.359431E-03 -4.359431E-03\n         2   1  1.000000E+00  2.000000E+00\n",
       "points S SET2 @1 (11 22 33 12 13 23); 1 1: -2.600167 -2.600167 3.625318 3.06259 1.358358 "
       "1.358358"
       "; 1 2: -5.200285 5.231693 3.29718 2.988195 -13.15433 4.01935 _shell_0000000029\n"
       "points HFL EALL @1 (1 2 3)\n"
       "points E A_set @2 (11 22 33 12 13 23)\n"
       "points SDV EALL @72 (1 2); 1 1: -0.004359431 -0.004359431; 2 1: 1 2\n"},
      {" mass (element, mass) and mass moment of itertia(xx,yy,zz,xy,xz,yz) for set EALL and time "
       " 0.5000000E+00\n\n"
       "         1  7.8E-09  2.6E-09  2.6E-09  2.6E-09  1.9E-09  1.9E-09  1.9E-09\n\n"
       " contact stress (slave element+face,press,tang1,tang2) for all contact elements and time "
       "0.1000000E+01\n\n"
       "        10          4  5.415709E+00  0.000000E+00  0.000000E+00\n"
       "        10          4  5.524685E+00  0.000000E+00  0.000000E+00\n",
       "elements EMAS EALL @0.5 (MASS XX YY ZZ XY XZ YZ); 1: 7.8e-09 2.6e-09 2.6e-09 2.6e-09 "
       "1.9e-09"
       " 1.9e-09 1.9e-09\n"
       "faces CSTR @1 (PRESS SHEAR1 SHEAR2); 10 4: 5.415709 0 0; 10 4: 5.524685 0 0\n"},
      {" statistics for slave set SL, master set MA and time  0.5000000E+00\n\n"
       "   total surface force (fx,fy,fz) and moment about the origin (mx,my,mz)\n\n"
       "    1.000000E+00  2.000000E+00  3.000000E+00  4.000000E+00  5.000000E+00  6.000000E+00\n\n"
       "   area,  normal force (+ = tension) and shear force (size)\n\n"
       "    7.000000E+00 -4.121757E+02  4.950427E-13\n\n"
       " displacements (vx,vy,vz) for set BOT and time  0.1000000E+01\n\n",
       "statistics STATISTICS SL / MA @0.5 (SOF1 SOF2 SOF3 SOM1 SOM2 SOM3 SOAREA SOFNORMAL "
       "SOFSHEAR);"
       " 1 2 3 4 5 6 7 -412.1757 4.950427e-13\n"
       "nodes U BOT @1 (1 2 3)\n"},
      {"     E I G E N V A L U E   O U T P U T\n\n"
       " MODE NO    EIGENVALUE                       FREQUENCY   \n"
       "                                     REAL PART            IMAGINARY PART\n\n"
       "      1   0.4456771E+04   0.6675905E+02   0.1062503E+02   0.0000000E+00\n\n"
       "     E F F E C T I V E   M O D A L   M A S S\n\nMODE NO.   X-COMPONENT\n\n"
       "      1   0.1E-16  -0.6E-17  -0.1E-04  -0.2E-04  -0.6E-05  -0.1E-17\n"
       "TOTAL     0.2042036E-09   0.1865561E-09\n\n"
       "     T O T A L   E F F E C T I V E   M A S S\n\nMODE NO.   X-COMPONENT\n\n"
       "          0.2E-09   0.2E-09   0.2E-09   0.1E-09   0.9E-11   0.9E-10\n\n"
       "                    E I G E N V A L U E    N U M B E R     2\n\n"
       " temperatures for set NALL and time  0.1000000E+01\n\n         1  2.000000E+00\n\n"
       "     E I G E N M O D E   T U R N I N G   D I R E C T I O N\n\n"
       "    Axis reference direction:  0.1000E+01  0.0000E+00  0.0000E+00\n\n"
       "  NODAL   MODE NO     TURNING DIRECTION (F=FORWARD,B=BACKWARD)\n DIAMETER\n\n"
       "    0          1          B\n    0          2          F\n\n"
       "     B U C K L I N G   F A C T O R   O U T P U T\n\n MODE NO       BUCKLING\n\n"
       "      1   0.5353338E+02\n\n     E I G E N V A L U E   O U T P U T\n\n"
       "  NODAL   MODE NO                           FREQUENCY\n DIAMETER\n\n"
       "    3          1   0.2731360E+07   0.4347095E+06  -0.1951916E+03\n",
       "modes EIGENVALUES (EIGENVALUE OMEGA FREQUENCY IMAGINARY OMEGA); 1: 4456.771 66.75905 "
       "10.62503 "
       "0\n"
       "modes EFFECTIVE MASS (X Y Z RX RY RZ); 1: 1e-17 -6e-18 -1e-05 -2e-05 -6e-06 -1e-18\n"
       "modeTotals TOTAL EFFECTIVE MASS (X Y Z RX RY RZ); 2e-10 2e-10 2e-10 1e-10 9e-12 9e-11\n"
       "nodes NT NALL @1 mode 2 (); 1: 2\n"
       "diameterModes TURNING DIRECTION mode 2 (); 0 1: B; 0 2: F\n"
       "modes BUCKLING mode 2 (FACTOR); 1: 53.53338\n"
       "diameterModes EIGENVALUES mode 2 (OMEGA FREQUENCY IMAGINARY OMEGA); 3 1: 2731360 434709.5"
       " -195.1916\n"},
  };
  for (const auto& c : cases) EXPECT_EQ(tablesOf(c.text), c.tables);
  std::vector<std::string> unknown;
  EXPECT_EQ(tablesOf("\nKNOT3\ntra         1  0.0000E+00  0.0000E+00\nexp        56 -0.5261E-08\n\n"
                     " velocities (vx,vy,vz) for set N and time  0.1000000E+01\n\n",
                     &unknown),
            "nodes V N @1 (1 2 3)\n");
  ASSERT_FALSE(unknown.empty());
  EXPECT_EQ(unknown[0], "KNOT3");
}

TEST(DatReader, NamesFileLineAndReasonOfABrokenTable) {
  const std::string head = " temperatures for set N and time  0.1000000E+01\n\n";
  const struct {
    std::string text;
    const char* error;
  } cases[] = {
      {"   12  1.0\n", ".dat:1: numbers without a heading"},
      {head + "   12\n", ".dat:3: 1 numbers expected after the labels, 0 found"},
      {head + "   1.5  2.0\n", ".dat:3: a label expected, found \"1.5\""},
      {head + "   99999999999  2.0\n", ".dat:3: a label expected, found \"99999999999\""},
      {" internal state variables (elem, integ.pnt.,values) for set E and time  1.0\n"
       "  1  1  1.0  2.0\n  1  2  1.0\n",
       ".dat:3: 2 numbers expected after the labels, 1 found"},
      {" displacements (vx,vy,vz) for set N and time  1.0\n  1 -1.087822 -06  0.0  0.0\n",
       ".dat:2: a number expected, found \"-06\""},
      {" displacements (vx,vy,vz) for set N and time  1.0\n  1  0.0  0.0 -1.087822 -06\n",
       ".dat:2: a number expected, found \"-06\""},
      {head + "  1  2.0  \x1b[2J\xff\n", ".dat:3: a number expected, found \"\\x1b[2J\\xff\""},
  };
  for (const auto& broken : cases) {
    try {
      tablesOf(broken.text);
      ADD_FAILURE() << "no error: " << broken.text;
    } catch (const ResultFileError& error) {
      EXPECT_NE(std::string(error.what()).find(broken.error), std::string::npos) << error.what();
    }
  }
}

}  // namespace
}  // namespace odbs::importer
