// SPDX-License-Identifier: BSD-3-Clause
// The reader of .dat files on one table of each shape that the solver prints, and on broken ones.
#include "importer/dat_reader.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/importer_results/result_text.h"

namespace odbs::importer {
namespace {

using Doubles = std::vector<double>;
using Labels = std::vector<std::int32_t>;
using Names = std::vector<std::string>;

std::vector<DatTable> tablesOf(const std::string& text, Names* unknown = nullptr) {
  const TemporaryFile file(text, ".dat");
  DatReader reader(file.path());
  std::vector<DatTable> tables;
  while (reader.next()) tables.push_back(reader.table());
  if (unknown != nullptr) *unknown = reader.unknownHeadings();
  return tables;
}

TEST(DatReader, ReadsNodesAndTotals) {
  const auto tables = tablesOf(
      "\n displacements (vx,vy,vz) for set SET1 and time  0.5000000E+00\n\n"
      "         1  0.000000E+00 -1.000000-103  1.500000E+00\n"
      "        12           NaN  2.000000E+00 -3.000000E+00\n\n"
      " total force (fx,fy,fz) for set FIX and time  0.1000000E+01\n\n"
      "       -8.963941E-12 -9.000000E+00  7.586765E-12\n\n"
      " total contact spring energy for time  0.5000000E+00\n\n        8.494439E-02\n");
  ASSERT_EQ(tables.size(), 3u);
  EXPECT_EQ(tables[0].rows, DatRows::nodes);
  EXPECT_EQ(tables[0].quantity, "U");
  EXPECT_EQ(tables[0].set, "SET1");
  EXPECT_EQ(tables[0].time, 0.5);
  EXPECT_EQ(tables[0].keys, (Labels{1, 12}));
  EXPECT_EQ(tables[0].columns, (Names{"1", "2", "3"}));
  EXPECT_EQ(tables[0].values[1], -1e-103);
  EXPECT_TRUE(std::isnan(tables[0].values[3]));
  EXPECT_EQ(tables[1].rows, DatRows::totals);
  EXPECT_EQ(tables[1].values, (Doubles{-8.963941e-12, -9, 7.586765e-12}));
  EXPECT_EQ(tables[2].quantity, "CELS");
  EXPECT_EQ(tables[2].set, "");
  EXPECT_EQ(tables[2].time, 0.5);
}

TEST(DatReader, ReadsIntegrationPointsWithTheirLocalSystems) {
  const auto tables = tablesOf(
      " stresses (elem, integ.pnt.,sxx,syy,szz,sxy,sxz,syz) for set SET2 and time  0.1000000E+01\n"
      "\n         1   1 -2.600167E+00 -2.600167E+00  3.625318E+00  3.062590E+00  1.358358E+00"
      "  1.358358E+00\n"
      "         1   2 -5.200285E+00  5.231693E+00  3.297180E+00  2.988195E+00 -1.315433E+01"
      "  4.019350E+00 _shell_0000000029   \n\n"
      " heat flux (elem, integ.pnt.,qx,qy,qz) for setEALL and time  0.1000000E+01\n\n\n"
      " strains (elem, integ.pnt.,exx,eyy,ezz,exy,exz,eyz) forset A_set and time  0.2000000E+01\n\n"
      " internal state variables (elem, integ.pnt.,values) for set EALL and time  0.7200000E+02\n\n"
      "         1   1 -4.359431E-03 -4.359431E-03\n         2   1  1.000000E+00  2.000000E+00\n");
  ASSERT_EQ(tables.size(), 4u);
  EXPECT_EQ(tables[0].keys, (Labels{1, 1, 1, 2}));
  EXPECT_EQ(tables[0].columns, (Names{"11", "22", "33", "12", "13", "23"}));
  EXPECT_EQ(tables[0].values[11], 4.01935);
  EXPECT_EQ(tables[0].notes, (Names{"", "_shell_0000000029"}));
  EXPECT_EQ(tables[1].quantity, "HFL");
  EXPECT_EQ(tables[1].set, "EALL");
  EXPECT_EQ(tables[1].nRows(), 0u);
  EXPECT_EQ(tables[2].set, "A_set");
  EXPECT_EQ(tables[3].columns, (Names{"1", "2"}));
  EXPECT_EQ(tables[3].nRows(), 2u);
}

TEST(DatReader, ReadsElementsAndContactPoints) {
  const auto tables = tablesOf(
      " mass (element, mass) and mass moment of itertia(xx,yy,zz,xy,xz,yz) for set EALL and time "
      " 0.5000000E+00\n\n"
      "         1  7.8E-09  2.6E-09  2.6E-09  2.6E-09  1.9E-09  1.9E-09  1.9E-09\n\n"
      " contact stress (slave element+face,press,tang1,tang2) for all contact elements and time "
      "0.1000000E+01\n\n"
      "        10          4  5.415709E+00  0.000000E+00  0.000000E+00\n"
      "        10          4  5.524685E+00  0.000000E+00  0.000000E+00\n");
  ASSERT_EQ(tables.size(), 2u);
  EXPECT_EQ(tables[0].rows, DatRows::elements);
  EXPECT_EQ(tables[0].columns.front(), "MASS");
  EXPECT_EQ(tables[0].values.size(), 7u);
  EXPECT_EQ(tables[1].rows, DatRows::faces);
  EXPECT_EQ(tables[1].quantity, "CSTR");
  EXPECT_EQ(tables[1].keys, (Labels{10, 4, 10, 4}));
  EXPECT_EQ(tables[1].values[3], 5.524685);
}

TEST(DatReader, GathersTheStatisticsOfASurface) {
  const auto tables = tablesOf(
      " statistics for slave set SL, master set MA and time  0.5000000E+00\n\n"
      "   total surface force (fx,fy,fz) and moment about the origin (mx,my,mz)\n\n"
      "    1.000000E+00  2.000000E+00  3.000000E+00  4.000000E+00  5.000000E+00  6.000000E+00\n\n"
      "   center of gravity and mean normal\n\n"
      "    5.000000E-01  5.000000E-01  9.977939E-01  0.000000E+00 -5.521737E-19 -1.000000E+00\n\n"
      "   area,  normal force (+ = tension) and shear force (size)\n\n"
      "    7.000000E+00 -4.121757E+02  4.950427E-13\n\n"
      " displacements (vx,vy,vz) for set BOT and time  0.1000000E+01\n\n");
  ASSERT_EQ(tables.size(), 2u);
  EXPECT_EQ(tables[0].set, "SL");
  EXPECT_EQ(tables[0].masterSet, "MA");
  ASSERT_EQ(tables[0].columns.size(), 15u);
  EXPECT_EQ(tables[0].columns[12], "SOAREA");
  EXPECT_EQ(tables[0].values[12], 7);
  EXPECT_EQ(tables[0].nRows(), 1u);
}

TEST(DatReader, ReadsEigenvaluesAndWhatBelongsToModes) {
  const auto tables = tablesOf(
      "     E I G E N V A L U E   O U T P U T\n\n"
      " MODE NO    EIGENVALUE                       FREQUENCY   \n"
      "                                     REAL PART            IMAGINARY PART\n\n"
      "      1   0.4456771E+04   0.6675905E+02   0.1062503E+02   0.0000000E+00\n"
      "      2   0.4012393E+05   0.2003096E+03   0.3188026E+02   0.0000000E+00\n\n"
      "     P A R T I C I P A T I O N   F A C T O R S\n\n"
      "MODE NO.   X-COMPONENT     Y-COMPONENT     Z-COMPONENT     X-ROTATION\n\n"
      "      1   0.1E-16  -0.6E-17  -0.1E-04  -0.2E-04  -0.6E-05  -0.1E-17\n\n"
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
      "    3          1   0.2731360E+07   0.4347095E+06  -0.1951916E+03\n");
  ASSERT_EQ(tables.size(), 8u);
  EXPECT_EQ(tables[0].quantity, kDatEigenvalues);
  EXPECT_EQ(tables[0].columns, (Names{"EIGENVALUE", "OMEGA", "FREQUENCY", "IMAGINARY OMEGA"}));
  EXPECT_EQ(tables[0].values[6], 31.88026);
  EXPECT_EQ(tables[1].quantity, kDatParticipation);
  EXPECT_EQ(tables[2].nRows(), 1u);
  EXPECT_EQ(tables[3].rows, DatRows::modeTotals);
  EXPECT_EQ(tables[3].values[4], 0.9e-11);
  EXPECT_EQ(tables[4].mode, 2);
  EXPECT_EQ(tables[5].notes, (Names{"B", "F"}));
  EXPECT_EQ(tables[6].values, (Doubles{53.53338}));
  EXPECT_EQ(tables[7].rows, DatRows::diameterModes);
  EXPECT_EQ(tables[7].keys, (Labels{3, 1}));
  EXPECT_EQ(tables[7].columns[1], "FREQUENCY");
  EXPECT_EQ(tables[7].values[1], 0.4347095e6);
}

TEST(DatReader, NamesUnknownHeadingsAndSkipsTheirRows) {
  Names unknown;
  const auto tables = tablesOf(
      "\nKNOT3\ntra         1  0.0000E+00  0.0000E+00  0.0000E+00\nexp        56 -0.5261E-08\n\n"
      " Modal Assurance Criterium\n\n  0.1E-10  0.7E+00\n\n"
      " velocities (vx,vy,vz) for set N and time  0.1000000E+01\n\n",
      &unknown);
  EXPECT_EQ(tables.size(), 1u);
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
