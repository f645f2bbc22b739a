// SPDX-License-Identifier: BSD-3-Clause
// What region requests are answered with.
#include "tests/regions/layered_model.h"

namespace odbs::tests {
namespace {

const std::string kEndOfSet = "\x0B";

std::string region(int kind, int value, const char* name, int nElements, int nNodes) {
  return Payload('R').i32(kind).i32(value).text(name).i32(nElements).i32(nNodes);
}

std::string header(int tag, const char* name) {
  return Payload(tag).text(name);
}

std::string members(int tag, const std::vector<int>& labels) {
  Payload payload(tag);
  for (const int label : labels) payload.i32(label);
  return payload;
}

class Regions : public LayeredModel {
 protected:
  void SetUp() override {
    odb_Instance& a = instance();
    a.ElementSet("SHELLS AND MORE", ints({20, 12, 11}));
    a.NodeSet("BASE", ints({4, 1}));
    odb_SequenceElementFace faces;
    for (const auto face : {odb_Enum::FACE2, odb_Enum::FACE1, odb_Enum::FACE3}) faces.append(face);
    a.Surface("SKIN", ints({20, 11, 20}), faces);
  }
};

TEST_F(Regions, OfEveryKindAreCountedInOneRecordEach) {
  const struct {
    int kind, value;
    const char* name;
    int nElements, nNodes;
  } rows[] = {
      {1, 0, "SHELLS AND MORE", 3, 0},
      {2, 0, "BASE", 0, 2},
      {3, 0, "SKIN", 2, 0},
      {4, 0, "A", 3, 0},
      {5, 0, "LAY", 1, 0},
      {5, 2, "Section-LAY", 1, 0},
      {5, 0, "BODY", 1, 0},
      {6, 0, "STEEL", 2, 0},
      {6, 0, "GLASS", 1, 0},
      {7, 0, "S4R", 2, 0},
      {8, 2, "LAY", 1, 0},
      {8, 3, "LAY", 0, 0},
      {8, 0, "LAY", 1, 0},
      {1, 0, "A.LAYERED", 1, 0},
      {7, 0, "A.C3D8", 1, 0},
      {1, 0, "BASE", 0, 0},
      {4, 0, "B", 0, 0},
      {5, 0, "NONE", 0, 0},
      {6, 0, "NONE", 0, 0},
      {7, 0, "S4", 0, 0},
  };
  Records expected;
  for (const auto& row : rows) {
    tell("irc " + std::to_string(row.kind) + " " + std::to_string(row.value) + " " + row.name);
    expected.push_back(region(row.kind, row.value, row.name, row.nElements, row.nNodes));
  }
  EXPECT_EQ(expected, ask("irf "));
  EXPECT_EQ(Records{}, ask("irf ")) << "the list was emptied";
}

TEST_F(Regions, AsSetsOfOneInstanceHaveNoNames) {
  tell("irc 1 0 SHELLS AND MORE");
  tell("irc 2 0 BASE");
  tell("irc 3 0 SKIN");
  tell("irc 6 0 STEEL");
  tell("irc 2 0 NONE");
  const Records expected{header(6, "SHELLS AND MORE"),
                         members(9, {20, 12, 11}),
                         kEndOfSet,
                         header(5, "BASE"),
                         members(8, {4, 1}),
                         kEndOfSet,
                         header(7, "SKIN"),
                         members(10, {20, 12, 11, 11, 20, 13}),
                         kEndOfSet,
                         header(6, "STEEL"),
                         members(9, {12, 20}),
                         kEndOfSet,
                         header(5, "NONE"),
                         kEndOfSet};
  EXPECT_EQ(expected, ask("irs 0 "));
  EXPECT_EQ(expected, ask("irs 1 ")) << "the list is kept";
}

TEST_F(Regions, ASurfaceMadeOfNodesIsANodeSetAlsoWhereItHasNone) {
  addInstance();
  odb_SequenceString names;
  names.append("B");
  odb_embedded::addNodeSurface(odb_->rootAssembly(), "DOTS", names, rows({{2}}));
  tell("irc 3 0 DOTS");
  EXPECT_EQ((Records{header(5, "DOTS"), name("A"), kEndOfSet, kMarker, header(5, "DOTS"), name("B"),
                     members(8, {2}), kEndOfSet, kMarker}),
            ask("irs 0 "));
}

TEST_F(Regions, OfSeveralInstancesComeByInstance) {
  addInstance().ElementSet("OWN", ints({12}));
  odb_SequenceString names;
  names.append("A");
  names.append("B");
  odb_->rootAssembly().ElementSet("BOTH", names, rows({{11}, {20, 12}}));
  tell("irc 1 0 BOTH");
  tell("irc 1 0 B.BOTH");
  tell("irc 1 0 OWN");
  tell("irc 4 0 B");
  EXPECT_EQ((Records{header(6, "BOTH"),
                     name("A"),
                     members(9, {11}),
                     kEndOfSet,
                     kMarker,
                     header(6, "BOTH"),
                     name("B"),
                     members(9, {20, 12}),
                     kEndOfSet,
                     kMarker,
                     header(6, "B.BOTH"),
                     name("B"),
                     members(9, {20, 12}),
                     kEndOfSet,
                     kMarker,
                     header(6, "OWN"),
                     name("A"),
                     kEndOfSet,
                     kMarker,
                     header(6, "OWN"),
                     name("B"),
                     members(9, {12}),
                     kEndOfSet,
                     kMarker,
                     header(6, "B"),
                     name("B"),
                     members(9, {11, 12, 20}),
                     kEndOfSet,
                     kMarker}),
            ask("irs 0 "));
  EXPECT_EQ((Records{region(1, 0, "BOTH", 3, 0), region(1, 0, "B.BOTH", 2, 0),
                     region(1, 0, "OWN", 1, 0), region(4, 0, "B", 3, 0)}),
            ask("irf "));
}

TEST_F(Regions, ADatabaseThatDoesNotOpenKeepsTheList) {
  tell("irc 2 0 BASE");
  EXPECT_EQ(Records{}, recordsOf(*server_, "irf " + path_ + ".none"));
  EXPECT_EQ((Records{region(2, 0, "BASE", 0, 2)}), ask("irf "));
}

}  // namespace
}  // namespace odbs::tests
