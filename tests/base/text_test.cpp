// SPDX-License-Identifier: BSD-3-Clause
// Tolerant numbers and small text helpers.
#include "base/text.h"

#include <gtest/gtest.h>

#include <cmath>

namespace odbs {
namespace {

TEST(Text, ToIntOrZeroReadsWhatAtoiReads) {
  EXPECT_EQ(42, toIntOrZero(" \t42xyz"));
  EXPECT_EQ(-7, toIntOrZero("-7"));
  EXPECT_EQ(8, toIntOrZero("+8 9"));
  EXPECT_EQ(0, toIntOrZero(""));
  EXPECT_EQ(0, toIntOrZero("- 5"));
  EXPECT_EQ(0, toIntOrZero("x5"));
}

TEST(Text, ToIntOrZeroClampsHugeNumbers) {
  EXPECT_EQ(2147483647, toIntOrZero("2147483647"));
  EXPECT_EQ(2147483647, toIntOrZero("99999999999999999999999"));
  EXPECT_EQ(-2147483647 - 1, toIntOrZero("-2147483648"));
  EXPECT_EQ(-2147483647 - 1, toIntOrZero("-99999999999999999999999"));
}

TEST(Text, ParseIntWantsTheWholeText) {
  EXPECT_EQ(12, parseInt(" +12 ").value());
  EXPECT_EQ(-3000000000LL, parseInt("-3000000000").value());
  for (const char* bad : {"", "1.0", "1 2", "x", "99999999999999999999", "+-1"}) {
    EXPECT_FALSE(parseInt(bad)) << bad;
  }
}

TEST(Text, ParseRealAcceptsTheExponentsOfSolverFiles) {
  EXPECT_DOUBLE_EQ(1.5e-3, parseReal("1.5D-3").value());
  EXPECT_DOUBLE_EQ(1.5e-103, parseReal("1.5-103").value());
  EXPECT_DOUBLE_EQ(-1.5e+103, parseReal("-1.5+103").value());
  EXPECT_DOUBLE_EQ(2e5, parseReal(" +2.d+5 ").value());
  EXPECT_DOUBLE_EQ(0.25, parseReal(".25").value());
  EXPECT_DOUBLE_EQ(7, parseReal("7.").value());
  EXPECT_EQ(0.0, parseReal("1.0E-400").value());
  EXPECT_TRUE(std::isnan(parseReal("NaN").value()));
  for (const char* bad : {"", "1.0x", "1,0", "e5", "1e400", "--1", "1.0 2.0", "1e5e5", "++1"}) {
    EXPECT_FALSE(parseReal(bad)) << bad;
  }
}

TEST(Text, SplitKeepsEmptyPieces) {
  const auto pieces = split("a,,b,", ',');
  ASSERT_EQ(4u, pieces.size());
  EXPECT_EQ("a", pieces[0]);
  EXPECT_EQ("", pieces[1]);
  EXPECT_EQ("b", pieces[2]);
  EXPECT_EQ("", pieces[3]);
}

TEST(Text, CaseAndEndsAreHandled) {
  EXPECT_TRUE(equalNoCase("*NoDe", "*NODE"));
  EXPECT_FALSE(equalNoCase("node", "nodes"));
  EXPECT_EQ("AB1 C", upperCase("aB1 c"));
  EXPECT_EQ("x y", trimmed(" \t x y\r\n"));
  EXPECT_TRUE(startsWith("Section-1", "Section-"));
  EXPECT_TRUE(endsWith("a.odb", ".odb"));
  EXPECT_FALSE(endsWith("db", ".odb"));
}

}  // namespace
}  // namespace odbs
