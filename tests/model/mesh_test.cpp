// SPDX-License-Identifier: BSD-3-Clause
// Node and element records.
#include "tests/model/model_fixture.h"

namespace odbs::tests {
namespace {

class Mesh : public ModelTest {
 protected:
  // One element of that type on nodes 1 to 3, and the instance.
  void writeElement(const char* type, const std::vector<int>& nodeLabels) {
    odb_Part& bar = part("BAR");
    bar.addNodes(ints({1, 2, 3}), floatRows({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}));
    bar.addElements(ints({7}), rows({nodeLabels}), type);
    instance("A", bar);
  }
};

TEST_F(Mesh, ANodeIsItsLabelAndThreeSingles) {
  odb_Part& bar = part("BAR");
  bar.addNodes(ints({66051}), floatRows({{1.0F, -2.5F, 0.1F}}));
  instance("A", bar);
  EXPECT_EQ((Records{std::string("\x03\x03\x02\x01\x00"
                                 "\x00\x00\x80\x3f\x00\x00\x20\xc0\xcd\xcc\xcc\x3d",
                                 17)}),
            streamed(0x03));
}

TEST_F(Mesh, PlanarPartsSendTwoCoordinates) {
  odb_Part& plate = part("PLATE", odb_Enum::TWO_D_PLANAR);
  plate.addNodes(ints({1, 2}), floatRows({{1, 2}, {3, 4}}));
  instance("A", plate);
  EXPECT_EQ((Records{node(1, {1, 2}), node(2, {3, 4})}), streamed(0x03));
}

TEST_F(Mesh, AxisymmetricPartsSendTwoCoordinates) {
  odb_Part& ring = part("RING", odb_Enum::AXISYMMETRIC);
  ring.addNodes(ints({1}), floatRows({{1, 2}}));
  instance("A", ring);
  EXPECT_EQ((Records{node(1, {1, 2})}), streamed(0x03));
}

TEST_F(Mesh, APartWithoutNodesSendsNone) {
  instance("A", part("EMPTY"));
  EXPECT_EQ(Records{}, streamed(0x03));
}

TEST_F(Mesh, AnElementIsPaddedTypeLabelSectionAndNodes) {
  cube();
  EXPECT_EQ((Records{element("C3D8R   ", 10, 0, {1, 2, 3, 4, 5, 6, 7, 8})}), streamed(0x04));
}

TEST_F(Mesh, ATypeNameOfEightCharactersIsNotPadded) {
  writeElement("STRI3ABC", {1, 2, 3});
  EXPECT_EQ((Records{element("STRI3ABC", 7, 0, {1, 2, 3})}), streamed(0x04));
}

TEST_F(Mesh, ALongTypeNameIsNeverCut) {
  writeElement("C3D8R_LONG_NAME", {1, 2, 3});
  EXPECT_EQ((Records{element("C3D8R_LONG_NAME", 7, 0, {1, 2, 3})}), streamed(0x04));
}

TEST_F(Mesh, AnEmptyTypeNameIsEightBlanks) {
  writeElement("", {1, 2});
  EXPECT_EQ((Records{element("        ", 7, 0, {1, 2})}), streamed(0x04));
}

TEST_F(Mesh, AConnectorSendsACountItsNodesAndAsManyZeros) {
  writeElement("CONN3D2", {3, 1});
  EXPECT_EQ((Records{Payload(0x04).raw("CONN3D2 ").i32(7).i32(0).i32(2).i32(3).i32(1).zeros(2)}),
            streamed(0x04));
}

TEST_F(Mesh, AConnectorIsKnownByItsFirstSevenCharacters) {
  writeElement("CONN3D2X", {3});
  EXPECT_EQ((Records{Payload(0x04).raw("CONN3D2X").i32(7).i32(0).i32(1).i32(3).zeros(1)}),
            streamed(0x04));
}

TEST_F(Mesh, AnElementWithoutNodesIsLeftOut) {
  odb_Part& bar = part("BAR");
  bar.addNodes(ints({1, 2}), floatRows({{0, 0, 0}, {1, 0, 0}}));
  bar.addElements(ints({6}), rows({{}}), "MASS");
  bar.addElements(ints({7}), rows({{1, 2}}), "T3D2");
  instance("A", bar);
  EXPECT_EQ((Records{element("T3D2    ", 7, 0, {1, 2})}), streamed(0x04));
}

TEST_F(Mesh, NodesAreSentWhereTheInstancePutsThem) {
  odb_Part& bar = part("BAR");
  bar.addNodes(ints({1}), floatRows({{1, 2, 3}}));
  odb_->rootAssembly().Instance("A", bar,
                                floatRows({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {10, 20, 30}}));
  EXPECT_EQ((Records{node(1, {11, 22, 33})}), streamed(0x03));
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
