// SPDX-License-Identifier: BSD-3-Clause
// The arguments of results requests.
#include "results/results_request.h"

#include <gtest/gtest.h>

namespace odbs {
namespace {

TEST(PairItems, SuffixesGiveSectionPointCodes) {
  const struct {
    const char* item;
    const char* name;
    int code;
  } rows[] = {{"S.INNER", "S", -1},
              {"S.OUTER", "S", -2},
              {"S.MINIMUM", "S", -3},
              {"S.MAXIMUM", "S", -3},
              {"S.5", "S", 5},
              {"S.-5", "S", 5},
              {"S", "S", 0},
              {"S.", "S", 0},
              {"S.X", "S", 0},
              {"A.7.INNER", "A.7", -1},
              {"A.INNER.7", "A", -1},
              {".2", "", 2},
              {"A.OUTER.INNER", "A.OUTER", -1}};
  for (const auto& row : rows) {
    const PairItem item = parsePairItem(row.item, true);
    EXPECT_EQ(row.name, item.name) << row.item;
    EXPECT_EQ(row.code, item.code) << row.item;
    EXPECT_EQ(0, item.number) << row.item;
  }
}

TEST(PairItems, NumbersAreAbsoluteAndNamesAreCut) {
  const PairItem numbered = parsePairItem("-4.2", false);
  EXPECT_EQ(4, numbered.number);
  EXPECT_EQ(2, numbered.code);
  EXPECT_TRUE(numbered.name.empty());
  EXPECT_EQ(2147483647, parsePairItem("-99999999999", false).number);
  EXPECT_EQ(199u, parsePairItem(std::string(300, 'x'), true).name.size());
}

TEST(PairRequests, TwoColonsAreNeeded) {
  const PairRequest pair = parsePairRequest(" S.INNER:T.3:C:\\p.odb rest", true);
  ASSERT_TRUE(pair.valid);
  EXPECT_EQ("S", pair.first.name);
  EXPECT_EQ(-1, pair.first.code);
  EXPECT_EQ("T", pair.second.name);
  EXPECT_EQ(3, pair.second.code);
  EXPECT_EQ("C:\\p.odb", pair.path);
  EXPECT_FALSE(parsePairRequest("S:E", true).valid);
  EXPECT_FALSE(parsePairRequest("S", true).valid);
  EXPECT_FALSE(parsePairRequest("", true).valid);
  EXPECT_EQ(7, parsePairRequest("-4.2:7:/p.odb", false).second.number);
}

TEST(PickRequests, PicksDefaultToNoneAndThePathFollowsTheComma) {
  const PickRequest picks = parsePickRequest(" 3 7,/path/my job.odb");
  ASSERT_TRUE(picks.valid);
  EXPECT_EQ(3, picks.pick1);
  EXPECT_EQ(7, picks.pick2);
  EXPECT_EQ("/path/my job.odb", picks.path);
  EXPECT_EQ(-1, parsePickRequest(" 3,/p.odb").pick2);
  EXPECT_EQ(-1, parsePickRequest(",/p.odb").pick1);
  EXPECT_EQ("", parsePickRequest("1 2,").path);
  EXPECT_FALSE(parsePickRequest(" 3 7 /p.odb").valid);
}

}  // namespace
}  // namespace odbs
