// SPDX-License-Identifier: BSD-3-Clause
// Strings, unions, sequences, repositories, iterators, and what writing refuses.
#include "tests/odb/sample_model.h"

#include <gtest/gtest.h>

namespace odbs::test {
namespace {

TEST(Strings, AppendNumbersAndTextsInAChain) {
  odb_String text("a");
  text.append(1).append(2.5f).append(0.25).append(true).append("z").append(odb_String("!"));
  EXPECT_STREQ(text.CStr(), "a12.50.25truez!");
  EXPECT_EQ(text.Find("true"), 9);
  EXPECT_EQ(text.Find("none"), text.Length());
  EXPECT_STREQ(("x" + (text + "y")).cStr(), "xa12.50.25truez!y");
  EXPECT_TRUE(odb_String().empty());
  EXPECT_TRUE("a" == odb_String("a") && odb_String("a") != "b" && odb_String("B") < "a");
}

TEST(Unions, KeepTheTypeTheyWereMadeWith) {
  EXPECT_EQ(odb_Union("text").type(), odb_UNION_STRING);
  EXPECT_EQ(odb_Union(true).type(), odb_UNION_BOOL);
  EXPECT_EQ(odb_Union(1.5f).type(), odb_UNION_FLOAT);
  EXPECT_EQ(odb_Union(2.7).getInt(), 2);
  EXPECT_THROW(odb_Union("text").getDouble(), odb_Exception);
  EXPECT_THROW(odb_Union(1).getString(), odb_Exception);
  EXPECT_THROW(odb_Union(1e30).getInt(), odb_Exception);
}

TEST(Sequences, WithASizeStartEmpty) {
  odb_SequenceInt numbers(5);
  EXPECT_EQ(numbers.size(), 0);
  numbers.append(3);
  EXPECT_TRUE(numbers.isMember(3));
  EXPECT_THROW(numbers[1], odb_Exception);
  EXPECT_THROW(numbers.constGet(-1), odb_Exception);
  odb_SequenceInt copy = numbers;
  copy[0] = 4;
  EXPECT_EQ(numbers[0], 3);
}

class Model : public testing::Test {
 protected:
  odb_Instance& instance(const char* name) { return odb_.rootAssembly().instances()[name]; }

  TempFolder folder_;
  odb_Odb& odb_ = makeSampleModel("made", folder_.file("model.odb"));
};

TEST_F(Model, SequencesHandOutReferencesThatStay) {
  odb_SequenceNode& nodes = instance("A-1").nodes();
  odb_Node& first = nodes[0];
  odb_Node& last = nodes[8];
  EXPECT_EQ(first.label(), 1);
  EXPECT_EQ(last.label(), 100);
  EXPECT_THROW(nodes[9], odb_Exception);
  odb_SequenceNode own;
  own.append(last);
  own.append(first);
  EXPECT_EQ(own[0].label(), 100);
  EXPECT_TRUE(own.isMember(first));
  odb_SequenceNode grown = nodes;
  grown.append(instance("B-1").nodes(0));
  EXPECT_EQ(grown.size(), 10);
  EXPECT_EQ(nodes.size(), 9);
}

TEST_F(Model, SetsGrowWithTheirPartAndShowInInstances) {
  odb_Part& block = odb_.parts()["BLOCK"];
  const odb_SequenceNode& seen = instance("B-1").nodeSets()["ALL"].nodes();
  EXPECT_EQ(seen.size(), 9);
  block.addNodes(ints({200}), floatRows({{1, 0, 0}}), "ALL");
  EXPECT_EQ(seen.size(), 10);
  EXPECT_EQ(seen[9].coordinates()[1], 21.0f);
  EXPECT_EQ(instance("A-1").nodes().size(), 10);
}

TEST_F(Model, AbsentObjectsHaveEmptyNamesOrThrow) {
  const odb_Set none;
  EXPECT_TRUE(none.name().empty());
  EXPECT_EQ(none.nodes().size() + none.elements("A-1").size() + none.size(), 0);
  EXPECT_EQ(odb_Node().label(), -1);
  EXPECT_EQ(odb_Element().label(), -1);
  EXPECT_EQ(odb_SectionPoint().number(), -1);
  EXPECT_THROW(odb_Instance().nodes(), odb_Exception);
  EXPECT_THROW(odb_.steps()["none"], odb_Exception);
  EXPECT_THROW(odb_.steps()["Load"].getFrame(0.7, odb_Enum::EXACT), odb_Exception);
  odb_MaterialApi wrong;
  EXPECT_THROW(wrong.materials(), odb_Exception);
  EXPECT_THROW(odb_.extendApi(odb_Enum::odb_SECTION, wrong), odb_Exception);
}

TEST_F(Model, FramesAreFoundByValue) {
  const odb_Step& load = odb_.steps()["Load"];
  EXPECT_EQ(load.getFrame(0.4).frameIndex(), 1);
  EXPECT_EQ(load.getFrame(0.5, odb_Enum::EXACT).frameIndex(), 1);
  EXPECT_EQ(load.getFrame(0.5, odb_Enum::BEFORE).frameIndex(), 0);
  EXPECT_EQ(load.getFrame(0.5, odb_Enum::AFTER).frameIndex(), 2);
  EXPECT_THROW(load.getFrame(2.0, odb_Enum::AFTER), odb_Exception);
  EXPECT_STREQ(odb_.getFrame(55.5, odb_Enum::EXACT).description().CStr(), "Mode 1");
}

TEST_F(Model, RefusesWhatDoesNotFitAndStaysAsItWas) {
  odb_Part& block = odb_.parts()["BLOCK"];
  odb_Assembly& root = odb_.rootAssembly();
  EXPECT_THROW(block.addNodes(ints({1}), floatRows({{0, 0, 0}})), odb_Exception);
  EXPECT_THROW(block.addNodes(ints({300, 300}), floatRows({{0, 0, 0}, {1, 1, 1}})), odb_Exception);
  EXPECT_THROW(block.addNodes(ints({300}), floatRows({})), odb_Exception);
  EXPECT_THROW(block.addElements(ints({20}), rows({{1, 999}}), "T3D2"), odb_Exception);
  EXPECT_THROW(block.NodeSet("BAD", ints({999})), odb_Exception);
  EXPECT_FALSE(block.nodeSets().isMember("BAD"));
  EXPECT_THROW(block.NodeSet("ALL", ints({1})), odb_Exception);
  EXPECT_THROW(instance("A-1").addNodes(ints({300}), floatRows({{0, 0, 0}})), odb_Exception);
  EXPECT_THROW(root.Instance("A-1", block), odb_Exception);
  EXPECT_THROW(root.Instance("C-1", block, floatRows({{0, 0, 0}})), odb_Exception);
  EXPECT_THROW(odb_.Step("X", "", odb_Enum::TIME, 1, "none"), odb_Exception);
  EXPECT_THROW(block.AnalyticRigidSurf2DPlanar("S", {}), odb_Exception);
  EXPECT_THROW(block.RigidBody(block.elementSets()["CUBE"]), odb_Exception);
  odb_SectionApi sections;
  odb_.extendApi(odb_Enum::odb_SECTION, sections);
  EXPECT_THROW(sections.HomogeneousSolidSection("X", "NO MATERIAL"), odb_Exception);
  EXPECT_THROW(block.assignSection(block.nodeSets()["ALL"], sections.sections()["ROD"]),
               odb_Exception);
  EXPECT_EQ(block.nodes().size(), 9);
  EXPECT_EQ(block.elements().size(), 3);
  EXPECT_EQ(root.instances().size(), 3);
}

TEST_F(Model, KeepsLabelsThatAreNotInOrder) {
  odb_Part& part = odb_.Part("LOOSE", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
  part.addNodes(ints({50, 3, 1000000}), floatRows({{1, 0, 0}, {2, 0, 0}, {3, 0, 0}}));
  part.addNodes(ints({4, 51}), floatRows({{4, 0, 0}, {5, 0, 0}}));
  EXPECT_EQ(part.getNodeFromLabel(51).coordinates()[0], 5.0f);
  EXPECT_EQ(part.getNodeFromLabel(3).coordinates()[0], 2.0f);
  EXPECT_EQ(part.getNodeFromLabel(1000000).index(), 2);
  EXPECT_THROW(part.getNodeFromLabel(-50), odb_Exception);
}

TEST_F(Model, GivesTheNodesOfElementFaces) {
  const odb_SequenceInt face = instance("A-1").nodesLabelsFromNodeTypeFace(7, odb_Enum::FACE2);
  ASSERT_EQ(face.size(), 4);
  EXPECT_EQ(face[0], 11);
  EXPECT_EQ(face[1], 14);
}

}  // namespace
}  // namespace odbs::test
