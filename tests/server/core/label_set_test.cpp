// SPDX-License-Identifier: BSD-3-Clause
// Sets of labels, and the selection made of them.
#include "server/core/selection_set.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <vector>

namespace odbs {
namespace {

TEST(LabelSets, HoldLabelsOfAnySize) {
  const std::vector<int> labels{0,
                                1,
                                63,
                                64,
                                4095,
                                4096,
                                1000000,
                                -1,
                                -4096,
                                123456,
                                8191,
                                8192,
                                std::numeric_limits<int>::max(),
                                std::numeric_limits<int>::min()};
  LabelSet set;
  for (const int label : labels) {
    EXPECT_FALSE(set.has(label)) << label;
    EXPECT_TRUE(set.add(label)) << label;
    EXPECT_FALSE(set.add(label)) << label;
  }
  const std::set<int> known(labels.begin(), labels.end());
  EXPECT_EQ(known.size(), set.size());
  for (const int label : labels) {
    for (const int near : {label ^ 1, label ^ 64, label ^ 4096}) {
      EXPECT_EQ(known.count(label), set.has(label)) << label;
      EXPECT_EQ(known.count(near) != 0, set.has(near)) << near;
    }
  }
  LabelSet other;
  other.add(5);
  other.add(set);
  EXPECT_EQ(known.size() + 1, other.size());
  for (const int label : labels) EXPECT_TRUE(other.has(label)) << label;
}

TEST(SelectionSets, AnElementMayBeSelectedAtSomePointsOrAtAny) {
  SelectionSet selection;
  selection.elements("A");
  selection.nodes("A");
  EXPECT_TRUE(selection.empty()) << "instances without members";
  selection.elements("A").add(1);
  selection.elements("A", 3).add(2);
  EXPECT_FALSE(selection.empty());
  EXPECT_TRUE(selection.selectedElements("A", 3).has(1));
  EXPECT_TRUE(selection.selectedElements("A", 3).has(2));
  EXPECT_TRUE(selection.selectedElements("A", -1).has(1));
  EXPECT_FALSE(selection.selectedElements("A", -1).has(2));
  EXPECT_TRUE(selection.selectedElements("B", 3).empty());
  EXPECT_TRUE(selection.selectedNodes("A").empty());
  EXPECT_EQ(2u, selection.elementsAtAnyPoint("A").size());
}

}  // namespace
}  // namespace odbs
