// SPDX-License-Identifier: BSD-3-Clause
// Fields are read as the runtime's sscanf reads them.
#include "server/field_scanner.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace odbs {
namespace {

TEST(FieldScanner, ReadsIntegersAndWordsBetweenBlanks) {
  FieldScanner fields("  1 -2\t+3 MATRIX^Sqq rest");
  EXPECT_EQ(fields.nextInt(0), 1);
  EXPECT_EQ(fields.nextInt(0), -2);
  EXPECT_EQ(fields.nextInt(0), 3);
  EXPECT_EQ(fields.nextWord(), "MATRIX^Sqq");
  EXPECT_EQ(fields.nextWord(), "rest");
  EXPECT_EQ(fields.nextWord(), "");
}

TEST(FieldScanner, StopsForGoodAtTheFirstFieldThatDoesNotScan) {
  FieldScanner fields("7 x 8 S");
  EXPECT_EQ(fields.nextInt(0), 7);
  EXPECT_EQ(fields.nextInt(-9), -9);
  EXPECT_EQ(fields.nextInt(-9), -9);
  EXPECT_EQ(fields.nextWord(), "");
}

TEST(FieldScanner, EndsAnIntegerAtItsFirstOtherCharacter) {
  FieldScanner fields("12abc");
  EXPECT_EQ(fields.nextInt(0), 12);
  EXPECT_EQ(fields.nextWord(), "abc");
  FieldScanner signs("- 5");
  EXPECT_EQ(signs.nextInt(4), 4);
}

TEST(FieldScanner, ClampsIntegersBeyond32Bits) {
  FieldScanner fields("99999999999999999999 -99999999999999999999");
  EXPECT_EQ(fields.nextInt(0), INT_MAX);
  EXPECT_EQ(fields.nextInt(0), INT_MIN);
}

}  // namespace
}  // namespace odbs
