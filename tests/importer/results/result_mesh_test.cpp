// SPDX-License-Identifier: BSD-3-Clause
// Matching result files with decks, shown by coordinates: the mean of the nodes that stand for a
// node of the deck lies where that node lies.
#include "importer/results/result_mesh.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "importer/deck/deck_reader.h"
#include "tests/importer/results/result_text.h"

namespace odbs::importer {
namespace {

using Place = std::array<double, 3>;

struct Matched {
  Deck deck;
  FrdIndex index;
  std::unique_ptr<ResultMesh> mesh;

  const Scope& content() const { return deck.meshOf(deck.instances[0]); }

  // The place that comes out when target `i` of `sources` is made of the nodes' coordinates.
  Place place(const NodeSources& sources, std::size_t i) const {
    Place mean{};
    for (std::size_t s = sources.begin(i); s < sources.end(i); ++s) {
      const double weight = sources.weights.empty() ? 1 : static_cast<double>(sources.weights[s]);
      for (std::size_t k = 0; k < 3; ++k) {
        mean[k] +=
            weight * index.nodes.coordinates[3 * static_cast<std::size_t>(sources.nodes[s]) + k];
      }
    }
    return mean;
  }

  Place deckPlace(std::int32_t label) {
    const auto i = static_cast<std::size_t>(deck.parts[0].content.nodes.find(label));
    const std::vector<double>& xyz = deck.parts[0].content.nodes.xyz;
    return {xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]};
  }

  void expectNodesInPlace() {
    ASSERT_EQ(mesh->nodeLabels().size(), content().nodes.size());
    for (std::size_t i = 0; i < mesh->nodeLabels().size(); ++i) {
      const Place expected = deckPlace(mesh->nodeLabels()[i]);
      const Place found = place(mesh->means(), i);
      for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(found[k], expected[k], 1e-4);
    }
  }
};

Matched match(const std::string& deckPath, const std::string& frdPath) {
  Matched m;
  m.deck = readDeck(deckPath);
  FrdReader reader(frdPath);
  m.index = indexFrd(reader);
  MatchOptions options;
  include(m.content(), options);
  m.mesh = std::make_unique<ResultMesh>(m.content(), m.index, options);
  return m;
}

std::string nodeLine(int label, const Place& at) {
  char line[80];
  std::snprintf(line, sizeof line, " -1%10d%12.5E%12.5E%12.5E\n", label, at[0], at[1], at[2]);
  return line;
}

TEST(ResultMesh, FindsTheDoubleOfANodeByItsPlace) {
  const std::string deck =
      "*NODE\n1,0,0,0\n2,1,0,0\n3,0,1,0\n4,0,0,1\n*ELEMENT,TYPE=C3D4\n1,1,2,3,4\n"
      "*ELEMENT,TYPE=SPRINGA\n2,1,4\n";
  // At a pre-tension section the solid has node 5 where the deck has node 3.
  std::string frd = blockHead("2", 5, 1);
  const Place places[] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 1, 0}};
  for (int i = 0; i < 5; ++i) frd += nodeLine(i + 1, places[i]);
  frd += " -3\n" + blockHead("3", 2, 1) + " -1         1    3    0    1\n" +
         " -2         1         2         5         4\n -1         2   11    0    1\n" +
         " -2         1         4\n -3\n 9999\n";
  const TemporaryFile deckFile(deck, ".inp"), frdFile(frd);
  Matched m = match(deckFile.path(), frdFile.path());
  EXPECT_EQ(m.mesh->nUnusedElements(), 0u);
  ASSERT_EQ(m.mesh->elements().size(), 1u) << "springs have no stresses";
  EXPECT_EQ(m.mesh->elements()[0].sources.nodes, (std::vector<std::int32_t>{0, 1, 4, 3}));
  EXPECT_EQ(m.mesh->nodeLabels(), (std::vector<std::int32_t>{1, 2, 3, 4}));
}

// One element of the deck, the solid that the solver makes of it, and its twin in plane output.
struct Expanded {
  const char* name;
  const char* type;
  int nNodes;
  int frdType;
  Side side;  // of the element values that are expected; bottom stands for bottom and top
};

class ResultMeshOf : public testing::TestWithParam<Expanded> {};

// Nodes of plane elements in natural coordinates.
const std::vector<Place> kTriangle = {{0, 0}, {4, 0, 0}, {0, 4, 0}, {2, 0}, {2, 2, 0}, {0, 2, 0}};
const std::vector<Place> kSquare = {{0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 4, 0},
                                    {2, 0}, {4, 2, 0}, {2, 4, 0}, {0, 2, 0}};

TEST_P(ResultMeshOf, FollowsItsExpansion) {
  const Expanded& c = GetParam();
  const bool triangle = c.nNodes == 3 || c.nNodes == 6;
  const std::vector<Place>& all = triangle ? kTriangle : kSquare;
  const std::size_t nCorners = triangle ? 3 : 4;
  std::string deck = "*NODE\n";
  for (int i = 0; i < c.nNodes; ++i) {
    const Place& at = all[static_cast<std::size_t>(i)];
    deck +=
        std::to_string(i + 1) + "," + std::to_string(at[0]) + "," + std::to_string(at[1]) + "\n";
  }
  deck += std::string("*ELEMENT,TYPE=") + c.type + ",ELSET=ALL\n7";
  for (int i = 1; i <= c.nNodes; ++i) deck += "," + std::to_string(i);
  deck += "\n*MATERIAL,NAME=M\n*ELASTIC\n1.,0.\n*" +
          std::string(c.type[0] == 'S' ? "SHELL" : "SOLID") +
          " SECTION,ELSET=ALL,MATERIAL=M\n0.5\n";

  // Solid: corners below, corners above, edges below, between, above.
  std::vector<Place> solid;
  const bool quadratic = c.nNodes > 4;
  const auto addPlane = [&](std::size_t first, std::size_t last, double z) {
    for (std::size_t i = first; i < last; ++i) solid.push_back({all[i][0], all[i][1], z});
  };
  addPlane(0, nCorners, -0.25);
  addPlane(0, nCorners, 0.25);
  if (quadratic) {
    addPlane(nCorners, 2 * nCorners, -0.25);
    addPlane(0, nCorners, 0);
    addPlane(nCorners, 2 * nCorners, 0.25);
  }
  std::string frd = blockHead("2", solid.size(), 1);
  for (std::size_t i = 0; i < solid.size(); ++i) {
    frd += nodeLine(static_cast<int>(101 + i), solid[i]);
  }
  frd += " -3\n" + blockHead("3", 1, 1);
  char head[40];
  std::snprintf(head, sizeof head, " -1%10d%5d    0    1", 7, c.frdType);
  frd += head;
  for (std::size_t i = 0; i < solid.size(); ++i) {
    if (i % 10 == 0) frd += "\n -2";
    std::snprintf(head, sizeof head, "%10d", static_cast<int>(101 + i));
    frd += head;
  }
  frd += "\n -3\n 9999\n";

  const TemporaryFile deckFile(deck, ".inp"), frdFile(frd);
  Matched m = match(deckFile.path(), frdFile.path());
  m.expectNodesInPlace();
  EXPECT_EQ(m.mesh->nUnusedElements(), 0u);
  // Wedges of 2 degrees stand for the circumference; a corner counts its middle node for 4 of 6.
  EXPECT_EQ(m.mesh->sums().weights[0], std::string(c.type).rfind("CAX", 0) == 0 ? 180 : 1);
  EXPECT_FLOAT_EQ(m.mesh->means().weights[1], quadratic ? 4.f / 6 : 0.5f);
  ASSERT_EQ(m.mesh->elements().size(), c.side == Side::whole ? 1u : 2u);
  for (const ElementTargets& targets : m.mesh->elements()) {
    const double z = targets.side == Side::whole ? 0 : targets.side == Side::top ? 0.25 : -0.25;
    ASSERT_EQ(targets.sources.size(), static_cast<std::size_t>(c.nNodes));
    for (std::size_t row = 0; row < targets.sources.size(); ++row) {
      const Place found = m.place(targets.sources, row);
      const Place expected = {all[row][0], all[row][1], z};
      for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(found[k], expected[k], 1e-6) << row;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EachType, ResultMeshOf,
                         testing::Values(Expanded{"S3", "S3", 3, 2, Side::bottom},
                                         Expanded{"S4", "S4", 4, 1, Side::bottom},
                                         Expanded{"S6", "S6", 6, 5, Side::bottom},
                                         Expanded{"S8R", "S8R", 8, 4, Side::bottom},
                                         Expanded{"CPE4", "CPE4", 4, 1, Side::whole},
                                         Expanded{"CPS6", "CPS6", 6, 5, Side::whole},
                                         Expanded{"CAX8R", "CAX8R", 8, 4, Side::whole},
                                         Expanded{"M3D4", "M3D4", 4, 1, Side::whole}),
                         [](const testing::TestParamInfo<Expanded>& one) {
                           return std::string(one.param.name);
                         });

}  // namespace
}  // namespace odbs::importer
