// SPDX-License-Identifier: BSD-3-Clause
// Sets, surfaces and the section summary.
#include "model/sets_stream.h"
#include "tests/model/model_fixture.h"
#include "tests/support/output_file.h"

#include <numeric>

namespace odbs::tests {
namespace {

const std::string kEndOfSet = "\x0B";

std::string header(int tag, const char* name) {
  return Payload(tag).text(name);
}

std::string members(int tag, const std::vector<int>& labels) {
  Payload payload(tag);
  for (const int label : labels) payload.i32(label);
  return payload;
}

class Sets : public ModelTest {
 protected:
  // A part of `n` collinear nodes 1 to n and n - 1 trusses 101 to 100 + n - 1.
  odb_Part& rod(const char* name, int n) {
    odb_Part& body = part(name);
    std::vector<std::vector<float>> coordinates;
    std::vector<std::vector<int>> ends;
    for (int i = 0; i < n; ++i) {
      coordinates.push_back({static_cast<float>(i), 0, 0});
      if (i > 0) ends.push_back({i, i + 1});
    }
    body.addNodes(ints(range(1, n)), floatRows(coordinates));
    body.addElements(ints(range(101, n - 1)), rows(ends), "T3D2");
    return body;
  }

  static std::vector<int> range(int first, int n) {
    std::vector<int> labels(static_cast<std::size_t>(n));
    std::iota(labels.begin(), labels.end(), first);
    return labels;
  }

  static Records withoutTitle(const Records& records) {
    EXPECT_EQ(title("A title"), records.at(0));
    EXPECT_EQ(0x02, records.at(1)[0]);
    return Records(records.begin() + 2, records.end());
  }
};

TEST_F(Sets, OneInstanceSendsGroupsWithoutNames) {
  odb_Instance& i = instance("I", rod("P", 3));
  i.NodeSet("N", ints({3, 1}));
  i.ElementSet("E", ints({102}));
  odb_SequenceElementFace faces;
  faces.append(odb_Enum::END1);
  faces.append(odb_Enum::END2);
  i.Surface("F", ints({101, 102}), faces);
  const Records nodesAndElements{header(5, "N"), members(8, {3, 1}), kEndOfSet,
                                 header(6, "E"), members(9, {102}),  kEndOfSet};
  Records all = nodesAndElements;
  all.insert(all.end(), {header(7, "F"), members(10, {101, 1, 102, 2}), kEndOfSet});
  EXPECT_EQ(all, withoutTitle(streamLine("s 0 0 ")));
}

TEST_F(Sets, SurfacesStayAwayFromCapitalS) {
  odb_Instance& i = instance("I", rod("P", 2));
  odb_SequenceElementFace faces;
  faces.append(odb_Enum::END1);
  i.Surface("F", ints({101}), faces);
  i.ElementSet("E", ints({101}));
  EXPECT_EQ((Records{header(6, "E"), members(9, {101}), kEndOfSet}),
            withoutTitle(streamLine("S 0 0 ")));
}

TEST_F(Sets, ThirtyMembersFillARecord) {
  odb_Instance& i = instance("I", rod("P", 40));
  i.NodeSet("A", ints(range(1, 30)));
  i.NodeSet("B", ints(range(1, 31)));
  i.NodeSet("C", ints({}));
  EXPECT_EQ(
      (Records{header(5, "A"), members(8, range(1, 30)), kEndOfSet, header(5, "B"),
               members(8, range(1, 30)), members(8, {31}), kEndOfSet, header(5, "C"), kEndOfSet}),
      withoutTitle(streamLine("S 0 0 ")));
}

TEST_F(Sets, InternalAndCouplingSetsAreFiltered) {
  odb_Instance& i = instance("I", rod("P", 3));
  for (const char* name : {" ALL NODES", "ALL NODES", "COUPLING_1", "MY_COUPLING_X"}) {
    i.NodeSet(name, ints({1}));
  }
  for (const char* name : {" ALL ELEMENTS", "COUPLING_1"}) i.ElementSet(name, ints({101}));
  EXPECT_EQ((Records{header(5, "ALL NODES"), members(8, {1}), kEndOfSet, header(6, "COUPLING_1"),
                     members(9, {101}), kEndOfSet}),
            withoutTitle(streamLine("S 0 0 ")));
}

TEST_F(Sets, TheCouplingFlagLetsCouplingSetsThrough) {
  instance("I", rod("P", 3)).NodeSet("COUPLING_1", ints({2}));
  EXPECT_EQ((Records{header(5, "COUPLING_1"), members(8, {2}), kEndOfSet}),
            withoutTitle(streamLine("S 0 1 ")));
}

TEST_F(Sets, SeveralInstancesGroupTheirSetsByName) {
  odb_Part& body = rod("P", 3);
  instance("B", body).NodeSet("OWN", ints({2}));
  instance("A", body);
  odb_SequenceString names;
  names.append("A");
  names.append("B");
  odb_->rootAssembly().NodeSet("BOTH", names, rows({{1}, {2, 3}}));
  const auto group = [](const char* instance, const std::vector<int>& labels) {
    return Records{header(5, "BOTH"), name(instance), members(8, labels),
                   kEndOfSet,         kMarker,        name(instance)};
  };
  Records expected = group("A", {1});
  expected.insert(expected.end(), {kMarker, name("A"), kMarker});
  for (const std::string& record : group("B", {2, 3})) expected.push_back(record);
  expected.insert(expected.end(),
                  {header(5, "OWN"), members(8, {2}), kEndOfSet, kMarker, name("B"), kMarker});
  EXPECT_EQ(expected, withoutTitle(streamLine("S 1 0 ")));
}

TEST_F(Sets, AnInstanceNamedLikeTheAssemblyHasItsOwnMembersAlone) {
  odb_Part& body = rod("P", 2);
  odb_Assembly& assembly = odb_->rootAssembly();
  instance(assembly.name().CStr(), body);
  instance("Z", body);
  assembly.addNodes(ints({7}), floatRows({{0, 0, 0}}));
  odb_SequenceString names;
  for (const char* owner : {"", "Z", assembly.name().CStr()}) names.append(owner);
  assembly.NodeSet("N", names, rows({{7}, {1}, {2}}));
  EXPECT_EQ((Records{members(8, {2}), members(8, {1})}), withTag(streamLine("S 0 0 "), 8));
}

// Puts `after` in the place of the labels `before`, which stand in the file once.
void replaceLabels(const std::string& path, const std::vector<int>& before,
                   const std::vector<int>& after) {
  std::string bytes = readFile(path);
  const std::string from = members(0, before).substr(1), to = members(0, after).substr(1);
  const std::size_t at = bytes.find(from);
  ASSERT_NE(std::string::npos, at);
  ASSERT_EQ(std::string::npos, bytes.find(from, at + 1));
  bytes.replace(at, to.size(), to);
  writeFile(path, bytes);
}

TEST_F(Sets, MembersThatCannotBeReadEndTheirSetAlone) {
  odb_Part& body = rod("P", 5);
  instance("A", body).NodeSet("GOOD", ints({4, 2}));
  instance("B", body);
  odb_SequenceString names;
  names.append("A");
  names.append("B");
  odb_->rootAssembly().NodeSet("BOTH", names, rows({{5, 3, 1}, {2}}));
  odb_->save();
  replaceLabels(path_, {5, 3, 1}, {5, 3, 99});  // a node that the part lacks
  EXPECT_EQ((Records{header(5, "BOTH"), name("A"),          kEndOfSet, kMarker,         name("A"),
                     header(5, "GOOD"), members(8, {4, 2}), kEndOfSet, kMarker,         name("A"),
                     kMarker,           header(5, "BOTH"),  name("B"), members(8, {2}), kEndOfSet,
                     kMarker,           name("B"),          kMarker,   name("B"),       kMarker}),
            withoutTitle(streamClosed("S 0 0 ")));
}

// What a library does that reads its sets when they are asked for.
TEST_F(Sets, SetsOfTheAssemblyThatCannotBeLookedUpGiveAnErrorRecord) {
  odb_Part& body = rod("P", 3);
  instance("A", body).ElementSet("E", ints({101}));
  instance("B", body).NodeSet("N", ints({2}));
  SetLookUps lookUps = librarySets();
  const auto elementSets = lookUps.elementSets;
  const odb_String assembly = odb_->rootAssembly().name();
  lookUps.elementSets = [=](const odb_DiscreteEntity& owner) -> const odb_SetRepository& {
    if (owner.name() == assembly) throw odb_Exception("cannot be read");
    return elementSets(owner);
  };
  OutputFile output;
  sendSetsStream(*odb_, output.fd(), false, false, lookUps);
  const std::string error = Payload('|').text("Error in Sets definition");
  EXPECT_EQ((Records{name("A"), kMarker, kMarker, error, name("B"), header(5, "N"), members(8, {2}),
                     kEndOfSet, kMarker, kMarker, error}),
            withoutTitle(recordsIn(output.bytes())));
}

TEST_F(Sets, TheSectionSummaryGroupsTheElementsOfInstancesAndOfTheAssembly) {
  odb_Part& body = rod("P", 3);
  instance("A", body);
  odb_Instance& b = instance("B", body);
  materials_.Material("STEEL");
  b.assignSection(b.ElementSet("E", ints({102})), sections_.TrussSection("T", "STEEL"));
  odb_Assembly& assembly = odb_->rootAssembly();
  const std::string ownName = assembly.name().CStr();
  odb_SequenceString owners, own;
  for (const char* owner : {"A", "B"}) owners.append(owner);
  own.append("");
  assembly.addElements(ints({7}), rows({{1, 2}}), owners, "CONN3D2");
  assembly.SectionAssignment(assembly.ElementSet("X", own, rows({{7}})),
                             sections_.ConnectorSection("C"));
  const Records records = streamLine("is   ");
  EXPECT_EQ((Records{name("B"), header(6, "T"), members(9, {102}), kEndOfSet, kMarker,
                     name(ownName), header(6, "C"), members(9, {7}), kEndOfSet, kMarker}),
            Records(records.begin() + 2, records.end()))
      << "A has no section and gets no group";
}

TEST_F(Sets, TheSectionSummaryListsKindsAndElements) {
  odb_Instance& i = instance("I", rod("P", 4));
  materials_.Material("STEEL");
  sections_.HomogeneousSolidSection("Section-P1", "STEEL");
  sections_.MembraneSection("Section-", "STEEL");
  const odb_Section& truss = sections_.TrussSection("Section-P2", "STEEL");
  i.assignSection(i.ElementSet("E", ints({101, 103})), truss);
  const auto summary = [](int number, const char* name, int kind) -> std::string {
    return Payload('$').i32(number).text(name).i32(kind);
  };
  EXPECT_EQ((Records{summary(3, "Section-", 1), summary(1, "P1", 2), summary(2, "P2", 5),
                     header(6, "P2"), members(9, {101, 103}), kEndOfSet}),
            streamLine("is   "));
}

}  // namespace
}  // namespace odbs::tests
