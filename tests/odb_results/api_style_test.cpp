// SPDX-License-Identifier: BSD-3-Clause
// Programs as users of the API write them: loops over repositories, values and blocks, results by
// value and by reference, mixed const and non-const. What counts first is that they compile.
#include "tests/odb_results/results_model.h"

#include <gtest/gtest.h>
#include <odb_Enum.h>
#include <odb_FieldOutputRepositoryIT.h>
#include <odb_HistoryOutput.h>
#include <odb_SequenceFieldValue.h>

#include <algorithm>
#include <cmath>

namespace odbs::test {
namespace {

// The greatest Mises stress of the last frame, by values.
float maxMisesByValues(odb_Odb& odb, int& label) {
  float max = -1;
  odb_StepRepositoryIT stepIter(odb.steps());
  for (stepIter.first(); !stepIter.isDone(); stepIter.next()) {
    odb_Step& step = odb.steps()[stepIter.currentKey()];
    odb_SequenceFrame& frames = step.frames();
    odb_Frame& frame = frames[frames.size() - 1];
    odb_FieldOutputRepository& fieldOutputs = frame.fieldOutputs();
    if (!fieldOutputs.isMember("S")) continue;
    odb_FieldOutput& field = fieldOutputs["S"];
    const odb_SequenceInvariant& invariants = field.validInvariants();
    if (!invariants.isMember(odb_Enum::MISES)) continue;
    const odb_SequenceFieldValue& values = field.values();
    int n = values.size();
    for (int i = 0; i < n; i++) {
      const odb_FieldValue value = values[i];
      if (value.mises() > max) {
        max = value.mises();
        label = value.elementLabel();
      }
    }
  }
  return max;
}

// The same by blocks.
float maxMisesByBlocks(odb_Odb& odb) {
  float max = -1;
  const odb_Frame frame = odb.steps()["Step-1"].frames(0);
  const odb_FieldOutput field = frame.fieldOutputs().get("S");
  const odb_SequenceFieldBulkData& blocks = field.bulkDataBlocks();
  int nBlocks = blocks.size();
  for (int b = 0; b < nBlocks; b++) {
    const odb_FieldBulkData& block = blocks[b];
    float* mises = block.mises();
    for (int i = 0; mises && i < block.length(); i++) max = std::max(max, mises[i]);
    int nPoints = block.length() / block.numberOfElements();
    int* points = block.integrationPoints();
    for (int e = 0; e < block.numberOfElements(); e++) {
      EXPECT_EQ(block.elementLabels()[e * nPoints], block.elementLabels()[(e + 1) * nPoints - 1]);
      EXPECT_EQ(points[e * nPoints], 1);
    }
  }
  return max;
}

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
    odb_HistoryPoint point(instance.getNodeFromLabel(1));
    odb_HistoryRegion& region = step.HistoryRegion("Node P-1.1", "at node 1", point);
    odb_HistoryOutput& output = region.HistoryOutput("U1", "Displacement", odb_Enum::SCALAR);
    for (int i = 0; i < 5; i++) output.addData(0.1 * i, 2.0 * i);
    model_.reopen();
  }
  ResultsModel model_;
};

TEST_F(ApiStyle, MaximaByValuesAndByBlocksAgree) {
  int label = 0;
  const float byValues = maxMisesByValues(*model_.odb, label);
  EXPECT_GT(byValues, 0);
  EXPECT_EQ(label, 20);
  EXPECT_FLOAT_EQ(byValues, maxMisesByBlocks(*model_.odb));
}

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

TEST_F(ApiStyle, DifferencesOfFramesBecomeFieldsOfANewFrame) {
  model_.reopen(false);
  odb_Step& step = model_.step();
  const odb_FieldOutput first = step.frames(0).fieldOutputs()["U"];
  odb_FieldOutput& second = step.frames(1).fieldOutputs()["U"];
  odb_FieldOutput difference = second - first;
  odb_Frame frame = step.Frame(2, 1.0F);
  odb_FieldOutput& stored = frame.FieldOutput(difference, "DU", "Increment of displacement");
  EXPECT_STREQ(stored.componentLabels()[0].CStr(), "U1");
  odb_SequenceFieldOutput fields;
  fields.append(first);
  fields.append(second);
  odb_SequenceFieldOutput envelope = maxEnvelope(fields, "U1");
  EXPECT_FLOAT_EQ(envelope[1].values(0).data()[0], 1);
  model_.reopen();
  EXPECT_FLOAT_EQ(model_.step().frames(2).fieldOutputs()["DU"].values(1).data()[2], 10);
}

TEST_F(ApiStyle, HistoriesAreReadRowByRow) {
  odb_HistoryRegionRepository& regions = model_.step().historyRegions();
  odb_HistoryRegionRepositoryIT it(regions);
  int n = 0;
  for (it.first(); !it.isDone(); it.next()) {
    odb_HistoryRegion& region = regions[it.currentKey()];
    odb_HistoryOutputRepository& outputs = region.historyOutputs();
    odb_HistoryOutput& output = outputs["U1"];
    odb_SequenceSequenceFloat data = output.data();
    for (int i = 0; i < data.size(); i++) {
      odb_SequenceFloat row = data[i];
      EXPECT_FLOAT_EQ(row[1], 20 * data.constGet(i).constGet(0));
      n++;
    }
    odb_HistoryPoint point = region.historyPoint();
    EXPECT_EQ(point.node().label(), 1);
  }
  EXPECT_EQ(n, 5);
}

TEST_F(ApiStyle, MetadataAreScannedFrameByFrame) {
  const odb_Step& step = model_.step();
  const odb_SequenceFrame& frames = step.frames();
  int nFields = 0;
  for (int i = 0; i < frames.size(); i++) {
    const odb_Frame frame = frames.constGet(i);
    odb_FieldOutputRepositoryIT fields(frame.fieldOutputs());
    for (fields.first(); !fields.isDone(); fields.next()) {
      const odb_FieldOutput field = fields.currentValue();
      const odb_SequenceFieldLocation& locations = field.locations();
      for (int k = 0; k < locations.size(); k++) {
        const odb_FieldLocation& location = locations.constGet(k);
        odb_Enum::odb_ResultPositionEnum position = location.position();
        EXPECT_EQ(position, field.name() == "U" ? odb_Enum::NODAL : odb_Enum::INTEGRATION_POINT);
        const odb_SequenceSectionPoint& points = location.sectionPoint();
        EXPECT_EQ(points.size(), k);
      }
      nFields++;
    }
    frames.release(i);
  }
  EXPECT_EQ(nFields, 4);
}

}  // namespace
}  // namespace odbs::test
