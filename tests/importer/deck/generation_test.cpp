// SPDX-License-Identifier: BSD-3-Clause
// Nodes and elements made from others.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <tuple>

#include "tests/importer/deck_files.h"

namespace odbs::importer {
namespace {

class GenerationTest : public DeckTest {
 protected:
  void expectAt(Deck& deck, std::int32_t label, double x, double y, double z) {
    DeckNodeTable& nodes = deck.parts.front().content.nodes;
    const std::int64_t i = nodes.find(label);
    ASSERT_GE(i, 0) << "node " << label;
    const double expected[3] = {x, y, z};
    for (std::size_t d = 0; d < 3; ++d) {
      EXPECT_NEAR(expected[d], nodes.xyz[3 * static_cast<std::size_t>(i) + d], 1e-12) << label;
    }
  }
};

TEST_F(GenerationTest, NgenDividesLinesArcsAndParabolas) {
  Deck deck = read(
      "*NODE\n1,0,0,0\n11,10,0,0\n21,1,0,0\n25,0,1,0\n31,0,0,0\n33,2,0,0\n34,1,1,0\n"
      "*NGEN, NSET=LINE\n1,11,5\n*NGEN, LINE=C\n21,25,1,,0,0,0\n*NGEN, LINE=P\n31,33,1,34\n");
  expectAt(deck, 6, 5, 0, 0);
  expectAt(deck, 23, std::sqrt(0.5), std::sqrt(0.5), 0);
  expectAt(deck, 32, 1, 1, 0);
  EXPECT_EQ((std::vector<std::int32_t>{1, 6, 11}), nodeSet(deck, "LINE"));
}

TEST_F(GenerationTest, NfillFillsBetweenSetsEvenlyOrBiased) {
  Deck deck = read(
      "*NODE\n1,0,0,0\n2,0,1,0\n11,7,0,0\n12,7,1,0\n*NSET, NSET=A\n1,2\n*NSET, NSET=B\n11,12\n"
      "*NFILL, NSET=ALL, BIAS=2.\nA,B,3,100\n");
  // Distances 4, 2, 1: each is twice the next one.
  expectAt(deck, 101, 4, 0, 0);
  expectAt(deck, 202, 6, 1, 0);
  EXPECT_EQ(8U, nodeSet(deck, "ALL").size());
}

TEST_F(GenerationTest, NfillSetsMiddleNodesBesideACrackTipToAQuarter) {
  for (const auto& [singular, first, last] :
       {std::tuple{"1", 1.0, 6.0}, std::tuple{"2", 2.0, 7.0}}) {
    Deck deck = read("*NODE, NSET=A\n1,0,0,0\n*NODE, NSET=B\n2,8,0,0\n*NFILL, SINGULAR=" +
                     std::string(singular) + "\nA,B,4,10\n");
    expectAt(deck, 11, first, 0, 0);
    expectAt(deck, 21, 4, 0, 0);
    expectAt(deck, 31, last, 0, 0);
  }
}

TEST_F(GenerationTest, ReflectedElementsGoRoundTheOtherWay) {
  const std::pair<const char*, const char*> rows[] = {
      {"C3D8", "1 4 3 2 5 8 7 6"},
      {"C3D20", "1 4 3 2 5 8 7 6 12 11 10 9 16 15 14 13 17 20 19 18"},
      {"C3D10", "1 3 2 4 7 6 5 8 10 9"},
      {"C3D15", "1 3 2 4 6 5 9 8 7 12 11 10 13 15 14"},
      {"C3D5", "1 4 3 2 5"},
      {"S8R", "1 4 3 2 8 7 6 5"},
      {"CPE6", "1 3 2 6 5 4"},
      {"B32", "1 2 3"}};
  for (const auto& [type, expected] : rows) {
    std::string nodes, label = "7";
    for (int i = 1; i <= 20; ++i) nodes += std::to_string(i) + "\n" + std::to_string(i + 50) + "\n";
    const auto n = std::count(expected, expected + std::strlen(expected), ' ') + 1;
    for (int i = 1; i <= n; ++i) label += "," + std::to_string(i);
    const Deck deck = read("*NODE\n" + nodes + "*ELEMENT, ELSET=E, TYPE=" + type + "\n" + label +
                           "\n*ELCOPY, OLD SET=E, ELEMENT SHIFT=1, SHIFT NODES=50, REFLECT\n");
    const auto& copied = deck.parts.front().content.elements.blocks[0].nodes;
    std::string order;
    for (auto at = copied.begin() + n; at != copied.end(); ++at) {
      order += (order.empty() ? "" : " ") + std::to_string(*at - 50);
    }
    EXPECT_EQ(expected, order) << type;
  }
}

TEST_F(GenerationTest, ImperfectionsMoveNodesAndWhatIsNotDoneIsSaid) {
  Deck deck = read(
      "*NODE, NSET=A\n1,1,0,0\n2,1,0,0\n*IMPERFECTION\n2, .5,, 1.\n*NMAP, NSET=A\n1,2\n"
      "*IMPERFECTION, FILE=buckle, STEP=1\n1,1.\n");
  expectAt(deck, 1, 1, 0, 0);
  expectAt(deck, 2, 1.5, 0, 1);
  ASSERT_EQ(2U, deck.warnings.size());
  EXPECT_NE(std::string::npos, deck.warnings[0].find(":6: *NMAP is not carried out"));
  EXPECT_NE(std::string::npos, deck.warnings[1].find(":8: the imperfection is left out"));
}

TEST_F(GenerationTest, NcopyShiftsTurnsAndMirrors) {
  Deck deck = read(
      "*NODE, NSET=OLD\n1,1,0,0\n"
      "*NCOPY, CHANGE NUMBER=10, OLD SET=OLD, SHIFT, MULTIPLE=2, NEW "
      "SET=NEW\n0,0,1\n0,0,0,0,0,1,90.\n"
      "*NCOPY, CHANGE NUMBER=100, OLD SET=OLD, REFLECT=MIRROR\n0,0,0,0,1,0\n0,0,1\n");
  expectAt(deck, 11, 0, 1, 1);
  expectAt(deck, 21, -1, 0, 2);
  expectAt(deck, 101, -1, 0, 0);
  EXPECT_EQ((std::vector<std::int32_t>{11, 21}), nodeSet(deck, "NEW"));
}

TEST_F(GenerationTest, ElgenAndElcopyRepeatElements) {
  std::string text = "*NODE\n";
  for (int i = 1; i <= 40; ++i) text += std::to_string(i) + "," + std::to_string(i) + "\n";
  const Deck deck = read(text +
                         "*ELEMENT, TYPE=CPS4\n1,1,2,12,11\n*ELGEN, ELSET=ALL\n1,3,1,1,2,10,10\n"
                         "*ELCOPY, ELEMENT SHIFT=100, OLD SET=ALL, SHIFT NODES=5, NEW SET=TWO\n");
  EXPECT_EQ((std::vector<std::int32_t>{1, 2, 3, 11, 12, 13}), elementSet(deck, "ALL"));
  EXPECT_EQ((std::vector<std::int32_t>{101, 102, 103, 111, 112, 113}), elementSet(deck, "TWO"));
  const ElementBlock& block = deck.parts.front().content.elements.blocks[0];
  ASSERT_EQ(12U, block.labels.size());
  EXPECT_EQ(13, block.nodes[4 * 5]) << "element 13 starts at 1 + 2 + 10";
  EXPECT_EQ(6, block.nodes[4 * 6]) << "element 101 starts at 1 + 5";
}

}  // namespace
}  // namespace odbs::importer
