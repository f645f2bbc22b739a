// SPDX-License-Identifier: BSD-3-Clause
// Node and element records.
#include "tests/model/model_fixture.h"
#include "tests/support/record_text.h"

namespace odbs::tests {
namespace {

class Mesh : public ModelTest {};

TEST_F(Mesh, ANodeIsItsLabelAndThreeSingles) {
  odb_Part& bar = part("BAR");
  bar.addNodes(ints({66051}), floatRows({{1.0F, -2.5F, 0.1F}}));
  instance("A", bar);
  EXPECT_EQ((Records{std::string("\x03\x03\x02\x01\x00"
                                 "\x00\x00\x80\x3f\x00\x00\x20\xc0\xcd\xcc\xcc\x3d",
                                 17)}),
            streamed(0x03));
}

TEST_F(Mesh, NodesHaveTheCoordinatesOfTheirSpaceWhereTheInstancePutsThem) {
  odb_Part& plate = part("PLATE", odb_Enum::TWO_D_PLANAR);
  plate.addNodes(ints({1, 2}), floatRows({{1, 2}, {3, 4}}));
  odb_Part& ring = part("RING", odb_Enum::AXISYMMETRIC);
  ring.addNodes(ints({1}), floatRows({{5, 6}}));
  odb_Part& bar = part("BAR");
  bar.addNodes(ints({1}), floatRows({{1, 2, 3}}));
  instance("A", plate);
  instance("B", ring);
  instance("C", part("EMPTY"));
  odb_->rootAssembly().Instance("D", bar,
                                floatRows({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {10, 20, 30}}));
  EXPECT_EQ((Records{node(1, {1, 2}), node(2, {3, 4}), node(1, {5, 6}), node(1, {11, 22, 33})}),
            streamed(0x03));
}

TEST_F(Mesh, AnElementIsItsTypeLabelSectionAndNodes) {
  odb_Part& bar = part("BAR");
  bar.addNodes(ints({1, 2, 3}), floatRows({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}));
  const struct {
    const char* type;
    std::vector<int> nodes;
    const char* sent;  // in the notation of record_text.h
  } elements[] = {
      {"T3D2", {1, 2}, "4 <T3D2    > 1 0 1 2"},
      {"STRI3ABC", {1, 2, 3}, "4 <STRI3ABC> 2 0 1 2 3"},
      {"C3D8R_LONG_NAME", {1, 2, 3}, "4 <C3D8R_LONG_NAME> 3 0 1 2 3"},
      {"", {1, 2}, "4 <        > 4 0 1 2"},
      {"MASS", {}, ""},  // left out: it has no nodes
      // Connectors have a count, the nodes, and as many zeros. Seven characters make a connector.
      {"CONN3D2", {3, 1}, "4 <CONN3D2 > 6 0 2 3 1 0 0"},
      {"CONN3D2X", {3}, "4 <CONN3D2X> 7 0 1 3 0"}};
  Records expected;
  int label = 0;
  for (const auto& one : elements) {
    bar.addElements(ints({++label}), rows({one.nodes}), one.type);
    if (*one.sent) expected.push_back(record(std::string("0x0") + one.sent));
  }
  instance("A", bar);
  EXPECT_EQ(expected, streamed(0x04));
}

TEST_F(Mesh, RecordsAreNeverSplitAcrossBuffers) {
  // 5,000 nodes fill the output buffer more than twice.
  odb_Part& bar = part("BAR");
  std::vector<int> labels;
  std::vector<std::vector<float>> coordinates;
  Records expected;
  for (int i = 1; i <= 5000; ++i) {
    labels.push_back(3 * i);
    coordinates.push_back({static_cast<float>(i), 0.5F, -1});
    expected.push_back(node(labels.back(), coordinates.back()));
  }
  bar.addNodes(ints(labels), floatRows(coordinates));
  instance("A", bar);
  EXPECT_EQ(expected, streamed(0x03));
}

TEST_F(Mesh, AnElementWithMoreNodesThanARecordHoldsKeepsTheFirst) {
  odb_Part& bar = part("BAR");
  std::vector<int> labels;
  std::vector<std::vector<float>> coordinates;
  for (int i = 1; i <= 3000; ++i) {
    labels.push_back(i);
    coordinates.push_back({0, 0, 0});
  }
  bar.addNodes(ints(labels), floatRows(coordinates));
  bar.addElements(ints({1}), rows({labels}), "Z1");
  instance("A", bar);
  const std::vector<int> kept(labels.begin(), labels.begin() + 2555);
  EXPECT_EQ((Records{element("Z1      ", 1, 0, kept)}), streamed(0x04));
}

}  // namespace
}  // namespace odbs::tests
