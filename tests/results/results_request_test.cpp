// SPDX-License-Identifier: BSD-3-Clause
// The arguments of results requests.
#include "results/results_request.h"

#include <gtest/gtest.h>

namespace odbs {
namespace {

TEST(PairRequests, ItemsAreNamesOrNumbersWithSectionPoints) {
  const struct {
    const char* item;
    bool named;
    PairItem expected;
  } rows[] = {{"S.INNER", true, {"S", 0, -1}},
              {"S.OUTER", true, {"S", 0, -2}},
              {"S.MINIMUM", true, {"S", 0, -3}},
              {"S.MAXIMUM", true, {"S", 0, -3}},
              {"S.-5", true, {"S", 0, 5}},
              {"S", true, {"S", 0, 0}},
              {"S.", true, {"S", 0, 0}},
              {"S.X", true, {"S", 0, 0}},
              {"A.7.INNER", true, {"A.7", 0, -1}},
              {"A.INNER.7", true, {"A", 0, -1}},
              {".2", true, {"", 0, 2}},
              {"A.OUTER.INNER", true, {"A.OUTER", 0, -1}},
              {"-4.2", false, {"", 4, 2}},
              {"-99999999999", false, {"", 2147483647, 0}}};
  for (const auto& row : rows) {
    const PairItem item = parsePairItem(row.item, row.named);
    EXPECT_EQ(row.expected.name, item.name) << row.item;
    EXPECT_EQ(row.expected.number, item.number) << row.item;
    EXPECT_EQ(row.expected.code, item.code) << row.item;
  }
  EXPECT_EQ(199u, parsePairItem(std::string(300, 'x'), true).name.size());
  const PairRequest pair = parsePairRequest(" S.INNER:T.3:C:\\p.odb rest", true);
  EXPECT_TRUE(pair.valid);
  EXPECT_EQ("S", pair.first.name);
  EXPECT_EQ("T", pair.second.name);
  EXPECT_EQ("C:\\p.odb", pair.path);
  for (const char* bad : {"S:E", "S", ""}) EXPECT_FALSE(parsePairRequest(bad, true).valid) << bad;
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
