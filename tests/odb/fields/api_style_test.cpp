// SPDX-License-Identifier: BSD-3-Clause
// Programs as users of the API write them: loops over repositories, values and blocks, results by
// value and by reference, mixed const and non-const. What counts first is that they compile.
#include "tests/odb/fields/results_model.h"

#include <gtest/gtest.h>
#include <odb_Enum.h>
#include <odb_SequenceFieldValue.h>

#include <memory>

namespace odbs::test {
namespace {

class ApiStyle : public testing::Test {
 protected:
  ApiStyle() {
    odb_Odb& odb = *model_.odb;
    odb_Step& step = odb.steps()["Step-1"];
    odb_Instance& instance = odb.rootAssembly().instances()["P-1"];
    odb_SectionCategory& category = odb.sectionCategories()["shell"];
    const odb_SectionPoint& bottom = category.sectionPoints(0);
    for (int increment = 0; increment < 2; increment++) {
      odb_Frame frame = step.Frame(increment, 0.5F * static_cast<float>(increment), "Increment");
      odb_SequenceString componentLabels;
      for (const char* label : {"S11", "S22", "S33", "S12", "S13", "S23"}) {
        componentLabels.append(label);
      }
      odb_SequenceInvariant invariants;
      invariants.append(odb_Enum::MISES);
      odb_FieldOutput& stress =
          frame.FieldOutput("S", "Stress", odb_Enum::TENSOR_3D_FULL, componentLabels, invariants);
      stress.addData(odb_Enum::INTEGRATION_POINT, instance, ints({10, 20}), counted(16, 6));
      stress.addData(odb_Enum::INTEGRATION_POINT, instance, ints({40}), counted(1, 4), bottom);
      odb_SequenceSequenceFloat displacements = counted(2, 3, 10 * static_cast<float>(increment));
      odb_FieldOutput& field = frame.FieldOutput("U", "Spatial displacement", odb_Enum::VECTOR);
      field.addData(odb_Enum::NODAL, instance, ints({1, 2}), displacements);
    }
    model_.reopen();
  }
  ResultsModel model_;
};

TEST_F(ApiStyle, ValuesOfASetAreReadOneByOne) {
  odb_Set& lower = model_.odb->rootAssembly().instances()["P-1"].elementSets()["LOWER"];
  odb_FieldOutput& stress = model_.step().frames()[1].fieldOutputs()["S"];
  odb_FieldOutput field = stress.getSubset(lower);
  field = field.getSubset(odb_Enum::INTEGRATION_POINT);
  odb_SequenceFieldValue values = field.values();
  ASSERT_EQ(values.size(), 8);
  for (int i = 0; i < values.size(); i++) {
    odb_FieldValue& value = values[i];
    const odb_FieldValue& same = values.constGet(i);
    int nComponents = 0;
    const float* const data = value.data(nComponents);
    EXPECT_EQ(nComponents, 6);
    odb_SequenceFloat copy = same.data();
    EXPECT_FLOAT_EQ(copy[5], data[5]);
    EXPECT_EQ(value.elementLabel(), 10);
    EXPECT_EQ(value.nodeLabel(), -1);
    EXPECT_EQ(value.sectionPoint().number(), -1);
    EXPECT_STREQ(value.instance().name().CStr(), "P-1");
  }
}

TEST_F(ApiStyle, PointersIntoASubsetOutliveItUntilTheFrameIsReleased) {
  odb_Set& lower = model_.odb->rootAssembly().instances()["P-1"].elementSets()["LOWER"];
  const odb_SequenceFrame& frames = model_.step().frames();
  const float* data = nullptr;
  const float* fourth = nullptr;
  const int* elements = nullptr;
  std::weak_ptr<odbs::engine::FieldBlock> block;
  {
    odb_FieldOutput& stress = frames[0].fieldOutputs()["S"];
    const odb_FieldOutput subset = stress.getSubset(lower).getSubset(odb_Enum::INTEGRATION_POINT);
    data = subset.bulkDataBlocks()[0].data();
    elements = subset.bulkDataBlocks()[0].elementLabels();
    int n = 0;
    fourth = stress.getSubset(lower).values(3).data(n);
    block = subset.bulkDataBlocks()[0].engineBlock();
  }
  EXPECT_EQ(elements[7], 10);
  for (int i = 0; i < 8 * 6; i++) EXPECT_EQ(data[i], static_cast<float>(i));
  EXPECT_EQ(fourth[2], 20.0F);
  EXPECT_FALSE(block.expired());
  frames.release();
  EXPECT_TRUE(block.expired());
}

TEST_F(ApiStyle, SetsOfAReadOnlyDatabaseAreMadeInMemoryAndSelectValues) {
  odb_Instance& instance = model_.odb->rootAssembly().instances()["P-1"];
  odb_Set& nodes = instance.NodeSet("two", ints({2, 1, 2}));
  ASSERT_EQ(nodes.size(), 2);
  EXPECT_EQ(nodes.nodes(0).label(), 2);
  odb_Set& elements = instance.ElementSet("one", ints({10}));
  const odb_Frame frame = model_.step().frames(1);
  EXPECT_EQ(frame.fieldOutputs()["U"].getSubset(nodes).values().size(), 2);
  EXPECT_EQ(frame.fieldOutputs()["S"].getSubset(elements).values().size(), 8);
  EXPECT_THROW(model_.odb->save(), odb_Exception);
  EXPECT_EQ(model_.odb->parts()["P"].nodeSets()["BASE"].instanceNames().size(), 0);
}

TEST_F(ApiStyle, RecordedValuesAreTheFirstLocationAndScalarsHaveNoLabels) {
  model_.reopen(false);
  odb_Instance& instance = model_.odb->rootAssembly().instances()["P-1"];
  odb_SequenceString label;
  label.append("PEEQ");
  odb_Frame frame = model_.step().Frame(3, 1.0F);
  odb_FieldOutput& strain = frame.FieldOutput("PEEQ", "", odb_Enum::SCALAR, label);
  strain.addData(odb_Enum::ELEMENT_NODAL, instance, ints({10}), counted(8, 1));
  strain.addData(odb_Enum::INTEGRATION_POINT, instance, ints({10}), counted(8, 1));
  model_.reopen();
  const odb_FieldOutput& back = model_.step().frames(2).fieldOutputs()["PEEQ"];
  EXPECT_EQ(back.componentLabels().Length(), 0);
  ASSERT_EQ(back.locations().size(), 2);
  EXPECT_EQ(back.locations(0).position(), odb_Enum::INTEGRATION_POINT);
  odb_SequenceFieldOutput one;
  one.append(back);
  EXPECT_EQ(maxEnvelope(one)[0].values(5).data()[0], 5.0F);
}

}  // namespace
}  // namespace odbs::test
