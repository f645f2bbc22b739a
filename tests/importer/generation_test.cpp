// SPDX-License-Identifier: BSD-3-Clause
// Nodes and elements made from others.
#include <cmath>

#include "tests/importer/deck_files.h"

namespace odbs::importer {
namespace {

class GenerationTest : public DeckTest {
 protected:
  // Coordinates of a node of the first part.
  std::array<double, 3> at(Deck& deck, std::int32_t label) {
    NodeTable& nodes = deck.parts.front().content.nodes;
    const std::int64_t i = nodes.find(label);
    if (i < 0) return {NAN, NAN, NAN};
    const double* const p = &nodes.xyz[3 * static_cast<std::size_t>(i)];
    return {p[0], p[1], p[2]};
  }
  void expectAt(Deck& deck, std::int32_t label, double x, double y, double z) {
    const auto p = at(deck, label);
    EXPECT_NEAR(x, p[0], 1e-12) << "node " << label;
    EXPECT_NEAR(y, p[1], 1e-12) << "node " << label;
    EXPECT_NEAR(z, p[2], 1e-12) << "node " << label;
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
