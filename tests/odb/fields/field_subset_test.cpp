// SPDX-License-Identifier: BSD-3-Clause
// Subsets of stored fields, and values computed at element nodes and centroids.
#include "tests/odb/fields/results_model.h"

#include <gtest/gtest.h>

#include <cmath>

namespace odbs::test {
namespace {

using E = odb_Enum;

// Stresses at the points of hexahedra and wedge, shells at two section points, both instances.
class FieldSubset : public testing::Test {
 protected:
  FieldSubset() {
    odb_Frame frame = model_.step().Frame(1, 1.0F);
    odb_FieldOutput& s = frame.FieldOutput("S", "Stress", E::TENSOR_3D_FULL);
    for (const char* name : {"P-1", "P-2"}) {
      const odb_Instance& p = model_.instance(name);
      s.addData(E::INTEGRATION_POINT, p, ints({10, 20, 30}), counted(18, 6));
      for (int point : {1, 5}) {
        s.addData(E::INTEGRATION_POINT, p, ints({40, 50}), counted(2, 4, static_cast<float>(point)),
                  model_.point(point));
      }
    }
    frame.FieldOutput("U", "Displacement", E::VECTOR)
        .addData(E::NODAL, model_.instance(), ints({1, 2, 3, 4, 5}), counted(5, 3));
    model_.reopen();
    s_ = model_.step().frames(0).fieldOutputs()["S"];
    u_ = model_.step().frames(0).fieldOutputs()["U"];
  }
  static std::vector<int> elementsOf(const odb_FieldOutput& field) {
    std::vector<int> result;
    const odb_SequenceFieldValue values = field.values();
    for (int i = 0; i < values.size(); ++i) {
      const odb_FieldValue value = values[i];
      if (result.empty() || result.back() != value.elementLabel()) {
        result.push_back(value.elementLabel());
      }
    }
    return result;
  }
  ResultsModel model_;
  odb_FieldOutput s_, u_;
};

TEST_F(FieldSubset, OfAnInstanceHasItsBlocks) {
  const odb_FieldOutput subset = s_.getSubset(model_.instance("P-2"));
  ASSERT_EQ(subset.bulkDataBlocks().size(), 4);
  EXPECT_STREQ(subset.bulkDataBlocks(0).instance().name().CStr(), "P-2");
  EXPECT_EQ(u_.getSubset(model_.instance("P-2")).bulkDataBlocks().size(), 0);
}

TEST_F(FieldSubset, OfAnElementTypeOrSectionPointHasItsBlocks) {
  EXPECT_EQ(elementsOf(s_.getSubset("C3D6")), (std::vector<int>{30}));
  const odb_FieldOutput top = s_.getSubset(model_.point(5));
  ASSERT_EQ(top.bulkDataBlocks().size(), 2);
  EXPECT_FLOAT_EQ(top.bulkDataBlocks(0).data()[0], 5);
  const odb_FieldOutput none = s_.getSubset(odb_SectionPoint());
  EXPECT_EQ(none.bulkDataBlocks().size(), 4);
}

TEST_F(FieldSubset, OfALocationHasItsPositionAndSectionPoints) {
  odb_SequenceSectionPoint points;
  points.append(model_.point(1));
  EXPECT_EQ(s_.getSubset(odb_FieldLocation(E::INTEGRATION_POINT, points)).values().size(), 4);
  EXPECT_EQ(s_.getSubset(odb_FieldLocation(E::NODAL)).values().size(), 0);
}

TEST_F(FieldSubset, ItsLocationsMakeUpAField) {
  ASSERT_EQ(s_.locations().size(), 2);
  EXPECT_EQ(s_.locations(0).sectionPoint().size(), 0);
  EXPECT_EQ(elementsOf(s_.getSubset(s_.locations(0))), (std::vector<int>{10, 20, 30, 10, 20, 30}));
  EXPECT_EQ(s_.locations(1).sectionPoint().size(), 2);
  EXPECT_EQ(s_.getSubset(s_.locations(1)).values().size(), 8);
}

TEST_F(FieldSubset, OfAnElementOrNodeHasItsValues) {
  const odb_FieldOutput element = s_.getSubset(model_.instance().getElementFromLabel(20));
  ASSERT_EQ(element.values().size(), 8);
  EXPECT_EQ(element.values(3).integrationPoint(), 4);
  EXPECT_FLOAT_EQ(element.values(0).data()[0], 48);
  const odb_FieldOutput node = u_.getSubset(model_.instance().getNodeFromLabel(3));
  ASSERT_EQ(node.values().size(), 1);
  EXPECT_FLOAT_EQ(node.values(0).data()[1], 7);
}

TEST_F(FieldSubset, OfSetsHasTheMembersValues) {
  const odb_FieldOutput lower = s_.getSubset(model_.instance().elementSets()["LOWER"]);
  EXPECT_EQ(elementsOf(lower), (std::vector<int>{10, 30}));
  EXPECT_EQ(lower.values().size(), 10);
  const odb_FieldOutput base = u_.getSubset(model_.instance().nodeSets()["BASE"]);
  EXPECT_EQ(base.values().size(), 4);
  // At the elements' nodes 1 to 8, 13 and 14, of which 1 to 5 have values.
  EXPECT_EQ(u_.getSubset(model_.instance().elementSets()["LOWER"]).values().size(), 5);
  EXPECT_EQ(u_.getSubset(model_.instance().getElementFromLabel(50)).values().size(), 0);
  const odb_FieldOutput nodal =
      s_.getSubset(E::ELEMENT_NODAL).getSubset(model_.instance().nodeSets()["BASE"]);
  // Four nodes of element 10, two of the wedge, four of shell 40 at two points.
  EXPECT_EQ(nodal.values().size(), 4 + 2 + 8);
}

TEST_F(FieldSubset, OfSubsetsNarrowsFurther) {
  const odb_FieldOutput both = s_.getSubset(model_.instance("P-1"))
                                   .getSubset("C3D8")
                                   .getSubset(model_.instance().elementSets()["LOWER"]);
  EXPECT_EQ(elementsOf(both), (std::vector<int>{10}));
  both.bulkDataBlocks().clearAll();
  EXPECT_FLOAT_EQ(both.values(1).data()[0], 6);
}

TEST_F(FieldSubset, ByStoredPositionGivesTheSameBlocks) {
  EXPECT_EQ(s_.getSubset(E::INTEGRATION_POINT).values().size(), s_.values().size());
  EXPECT_EQ(s_.getSubset(E::NODAL).bulkDataBlocks().size(), 0);
  EXPECT_EQ(u_.getSubset(E::NODAL).values().size(), 5);
  EXPECT_EQ(u_.getSubset(E::ELEMENT_NODAL).values().size(), 0);
}

TEST_F(FieldSubset, AtElementNodesHasBlocksWithNodesAndNoPoints) {
  const odb_FieldOutput nodal = s_.getSubset(E::ELEMENT_NODAL);
  ASSERT_EQ(nodal.bulkDataBlocks().size(), 8);
  const odb_FieldBulkData& block = nodal.bulkDataBlocks(0);
  EXPECT_EQ(block.position(), E::ELEMENT_NODAL);
  EXPECT_EQ(block.length(), 16);
  EXPECT_EQ(block.valuesPerElement(), 8);
  EXPECT_EQ(block.numberOfElements(), 2);
  EXPECT_EQ(block.numberOfNodes(), 16);
  EXPECT_EQ(block.integrationPoints(), nullptr);
  EXPECT_EQ(labels(block.nodeLabels() + 8, 4), (std::vector<int>{5, 6, 7, 8}));
  EXPECT_EQ(block.elementLabels()[8], 20);
  // The points' values 0, 6, ..., 42 are linear, in three directions, about 21.
  EXPECT_NEAR(block.data()[0], 21 - 21 * std::sqrt(3.0), 1e-4);
  EXPECT_NEAR(block.data()[6 * 6], 21 + 21 * std::sqrt(3.0), 1e-4);
  EXPECT_EQ(nodal.locations(0).position(), E::ELEMENT_NODAL);
  const odb_FieldBulkData centroid = s_.getSubset(E::CENTROID).bulkDataBlocks(0);
  EXPECT_EQ(labels(centroid.elementLabels(), 2), (std::vector<int>{10, 20}));
  EXPECT_EQ(centroid.nodeLabels(), nullptr);
  // The mean of 0, 6, ..., 42.
  EXPECT_NEAR(centroid.data()[0], 21, 1e-4);
}

TEST(StoredCentroids, AreNotComputedAgain) {
  ResultsModel model;
  odb_FieldOutput& s = model.step().Frame(1, 1.0F).FieldOutput("S", "", E::SCALAR);
  s.addData(E::INTEGRATION_POINT, model.instance(), ints({10, 30}), counted(10, 1));
  s.addData(E::CENTROID, model.instance(), ints({10}), counted(1, 1, 1000));
  const odb_FieldOutput centroids = s.getSubset(E::CENTROID);
  ASSERT_EQ(centroids.values().size(), 2);
  EXPECT_FLOAT_EQ(centroids.values(0).data()[0], 1000);
  EXPECT_FLOAT_EQ(centroids.values(1).data()[0], 8.5F);
  EXPECT_EQ(centroids.values(1).elementLabel(), 30);
}

}  // namespace
}  // namespace odbs::test
