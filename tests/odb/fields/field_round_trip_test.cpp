// SPDX-License-Identifier: BSD-3-Clause
// How fields are written, copied, released, saved again and refused. What fields of every kind hold
// after a save is compared as text in tests/odb/round_trip_test.cpp.
#include "tests/odb/fields/results_model.h"

#include <gtest/gtest.h>

#include <cmath>

#include "port/port.h"

namespace odbs::test {
namespace {

using E = odb_Enum;

class FieldRoundTrip : public testing::Test {
 protected:
  odb_Frame addFrame() {
    ++nFrames_;
    return model_.step().Frame(nFrames_, static_cast<float>(nFrames_), "Increment");
  }
  odb_FieldOutput field(const char* name, int frame = 0) {
    return model_.step().frames(frame).fieldOutputs()[name];
  }
  // A new frame with one field of nodal vectors, counted from `start`, at nodes 1 and 2.
  odb_FieldOutput addVectors(float start = 0) {
    odb_FieldOutput u = addFrame().FieldOutput("U", "", E::VECTOR);
    u.addData(E::NODAL, model_.instance(), ints({1, 2}), counted(2, 3, start));
    return u;
  }
  ResultsModel model_;
  int nFrames_ = 0;
};

TEST_F(FieldRoundTrip, DoublesStayDoubles) {
  odb_FieldOutput& u = addFrame().FieldOutput("U", "", E::VECTOR);
  const double third = 1.0 / 3;
  u.addData(E::NODAL, model_.instance(), ints({4}), doubleRows({{third, 2, 3}}));
  odb_embedded::FieldValues<double> values;
  const int element = 10;
  const double stress[] = {third, 0, 0, 0, 0, 0};
  values.position = E::CENTROID;
  values.instance = model_.instance();
  values.labels = &element;
  values.nLabels = values.nRows = 1;
  values.data = values.conjugate = stress;
  values.width = 6;
  odb_FieldOutput& s = model_.step().frames(0).FieldOutput("S", "", E::TENSOR_3D_FULL);
  odb_embedded::addData(s, values);
  model_.reopen();
  const odb_FieldBulkData block = field("U").bulkDataBlocks(0);
  EXPECT_EQ(block.precision(), E::DOUBLE_PRECISION);
  EXPECT_DOUBLE_EQ(block.dataDouble()[0], third);
  EXPECT_THROW(block.data(), odb_Exception);
  EXPECT_THROW(block.localCoordSystem(), odb_Exception);
  EXPECT_DOUBLE_EQ(field("S").values(0).conjugateDataDouble()[0], third);
  const odb_SequenceFloat narrowed = field("U").values(0).dataDouble();
  EXPECT_FLOAT_EQ(narrowed[0], 0.33333334F);
}

TEST_F(FieldRoundTrip, LocalSystemsComeBackAsQuaternionsOfTheTransposedRows) {
  odb_FieldOutput& s = addFrame().FieldOutput("S", "", E::TENSOR_3D_PLANAR);
  const auto quarterTurn = rows({{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}});
  s.addData(E::INTEGRATION_POINT, model_.instance(), ints({40}), counted(1, 4), model_.point(1),
            quarterTurn);
  odb_SequenceSequenceSequenceFloat systems;
  systems.append(quarterTurn);
  systems.append(rows({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}));
  odb_FieldOutput& e = model_.step().frames(0).FieldOutput("E", "", E::TENSOR_3D_PLANAR);
  e.addData(E::INTEGRATION_POINT, model_.instance(), ints({40, 50}), counted(2, 4), model_.point(1),
            systems);
  model_.reopen();
  EXPECT_TRUE(field("S").hasOrientation());
  const odb_FieldBulkData block = field("S").bulkDataBlocks(0);
  ASSERT_EQ(block.orientationWidth(), 4);
  const float* q = block.localCoordSystem();
  EXPECT_NEAR(std::fabs(q[2]), std::sqrt(0.5F), 1e-6);
  EXPECT_NEAR(q[2] * q[3], 0.5F, 1e-6);
  const odb_SequenceSequenceFloat axes = field("S").values(0).localCoordSystem();
  EXPECT_NEAR(axes[0][1], -1, 1e-6);
  EXPECT_NEAR(axes[1][0], 1, 1e-6);
  const odb_SequenceSequenceFloat second = field("E").values(1).localCoordSystem();
  EXPECT_NEAR(second[0][0], 1, 1e-6);
  EXPECT_EQ(field("E").getSubset(quarterTurn).values().size(), 1);
  EXPECT_EQ(field("E").getSubset(quarterTurn).values(0).elementLabel(), 40);
}

TEST_F(FieldRoundTrip, CopiesOfFieldsHaveTheSameValues) {
  odb_Frame frame = addFrame();
  odb_FieldOutput& s = frame.FieldOutput("S", "Stress", E::TENSOR_3D_FULL);
  s.addData(E::INTEGRATION_POINT, model_.instance(), ints({10}), counted(8, 6));
  odb_FieldOutput& copy = addFrame().FieldOutput(s, "SCOPY");
  odb_FieldOutput& subset = model_.step().frames(1).FieldOutput("SN", "", E::TENSOR_3D_FULL);
  subset.addData(s.getSubset(E::ELEMENT_NODAL));
  EXPECT_STREQ(copy.description().CStr(), "Stress");
  model_.reopen();
  EXPECT_EQ(numbers(field("SCOPY", 1).bulkDataBlocks(0).data(), 48),
            numbers(field("S").bulkDataBlocks(0).data(), 48));
  EXPECT_EQ(field("SCOPY", 1).bulkDataBlocks(0).integrationPoints()[7], 8);
  EXPECT_EQ(field("SN", 1).bulkDataBlocks(0).position(), E::ELEMENT_NODAL);
}

TEST_F(FieldRoundTrip, ReleasedAndClearedValuesComeBack) {
  for (int i = 0; i < 3; ++i) {
    addVectors(static_cast<float>(i));
    model_.step().frames().release(i);
  }
  const odb_FieldOutput kept = field("U", 1);
  model_.step().frames().release(1);
  EXPECT_FLOAT_EQ(kept.values(0).data()[0], 1);
  EXPECT_FLOAT_EQ(field("U", 1).values(0).data()[0], 1);
  model_.reopen();
  for (int i = 0; i < 3; ++i) {
    const odb_FieldOutput f = field("U", i);
    EXPECT_FLOAT_EQ(f.values(0).data()[0], static_cast<float>(i));
    f.bulkDataBlocks().clearAll();
    EXPECT_FLOAT_EQ(f.values(0).data()[0], static_cast<float>(i));
    model_.step().frames().release(i);
    EXPECT_TRUE(model_.step().frames(i).fieldOutputs().isMember("U"));
  }
}

TEST_F(FieldRoundTrip, SavedDatabasesTakeMoreFramesAndSavesAgain) {
  addVectors(0);
  model_.reopen(false);
  addVectors(20);
  model_.odb->save();
  EXPECT_FLOAT_EQ(field("U", 1).values(0).data()[0], 20);
  addVectors(40);
  model_.reopen();
  ASSERT_EQ(model_.step().frames().size(), 3);
  for (int i = 0; i < 3; ++i) {
    EXPECT_FLOAT_EQ(field("U", i).values(1).data()[2], static_cast<float>(20 * i + 5));
  }
}

TEST_F(FieldRoundTrip, UpdatedDatabasesShowNewFramesAndKeepOldValues) {
  addVectors(0);
  addVectors(10);
  model_.reopen(false);
  odb_Odb& reader = openOdb("reader", model_.path.c_str(), true);
  odb_Step& step = reader.steps()["Step-1"];
  const odb_FieldOutput before = step.frames(0).fieldOutputs()["U"];
  EXPECT_FALSE(reader.update());
  addVectors(20);
  model_.odb->save();
  ASSERT_TRUE(reader.update());
  ASSERT_EQ(step.frames().size(), 3);
  // Where an open file cannot be replaced, none is kept open: what was not read is gone with it,
  // until the frame is released and asked again.
  if (!port::openFilesCanBeReplaced()) step.frames().release(0);
  for (int i = 0; i < 3; ++i) {
    EXPECT_FLOAT_EQ(step.frames(i).fieldOutputs()["U"].values(1).data()[0],
                    static_cast<float>(10 * i + 3));
  }
  EXPECT_EQ(before.values().size(), 2);
  reader.close();
}

// Another database, whose section categories and points have other places.
class FieldCopy : public FieldRoundTrip {
 protected:
  FieldCopy() : other_(Odb("other", "", "", model_.folder.file("other.odb").c_str())) {
    other_.SectionCategory("before", "");
    odb_SectionCategory& shell = other_.SectionCategory("shell", "");
    shell.SectionPoint(7, "fraction = 0.5, Layer = 1");
    shell.SectionPoint(5, "fraction = 1.0, Layer = 1");
    odb_Part& part = other_.Part("P", E::THREE_D, E::DEFORMABLE_BODY);
    part.addNodes(ints({1, 2, 3, 4}), rows({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}));
    odb_SequenceSequenceInt nodes;
    nodes.append(ints({1, 2, 3, 4}));
    part.addElements(ints({40}), nodes, "S4R", "", shell);
    other_.rootAssembly().Instance("P-1", part);
    target_ =
        other_.Step("Step-1", "", E::TIME).Frame(1, 1.0F).FieldOutput("S", "", E::TENSOR_3D_PLANAR);
  }
  ~FieldCopy() override { other_.close(); }
  odb_FieldOutput shellField(int point) {
    odb_FieldOutput s = addFrame().FieldOutput("S", "", E::TENSOR_3D_PLANAR);
    s.addData(E::INTEGRATION_POINT, model_.instance(), ints({40}), rows({{1, 2, 3, 4}}),
              model_.point(point));
    return s;
  }
  odb_Odb& other_;
  odb_FieldOutput target_;
};

TEST_F(FieldCopy, FindsTheSectionPointOfTheOtherDatabase) {
  target_.addData(shellField(5));
  other_.save();
  ASSERT_EQ(target_.bulkDataBlocks().size(), 1);
  const odb_FieldBulkData& block = target_.bulkDataBlocks(0);
  EXPECT_STREQ(block.sectionPoint().description().CStr(), "fraction = 1.0, Layer = 1");
  EXPECT_EQ(numbers(block.data(), 4), (std::vector<float>{1, 2, 3, 4}));
}

TEST_F(FieldCopy, RefusesSectionPointsThatTheOtherDatabaseLacks) {
  const odb_FieldOutput source = shellField(1);
  EXPECT_THROW(target_.addData(source), odb_Exception);
  EXPECT_EQ(target_.bulkDataBlocks().size(), 0);
}

TEST_F(FieldRoundTrip, WhatDoesNotFitIsRefusedAndLeavesTheFieldAsItWas) {
  odb_Frame frame = addFrame();
  odb_FieldOutput& u = frame.FieldOutput("U", "", E::VECTOR);
  odb_FieldOutput& t = frame.FieldOutput("NT11", "", E::SCALAR);
  const odb_Instance& p = model_.instance();
  EXPECT_THROW(u.addData(E::NODAL, p, ints({1, 2}), counted(3, 3)), odb_Exception);
  EXPECT_THROW(u.addData(E::NODAL, p, ints({99}), counted(1, 3)), odb_Exception);
  EXPECT_THROW(u.addData(E::CENTROID, p, ints({99}), counted(1, 3)), odb_Exception);
  EXPECT_THROW(u.addData(E::NODAL, p, ints({1}), counted(1, 7)), odb_Exception);
  EXPECT_THROW(u.addData(E::NODAL, odb_Instance(), ints({1}), counted(1, 3)), odb_Exception);
  EXPECT_THROW(u.addData(E::NODAL, p, ints({1, 2}), rows({{1, 2, 3}, {1, 2}})), odb_Exception);
  EXPECT_THROW(u.addData(E::UNDEFINED_POSITION, p, ints({1}), counted(1, 3)), odb_Exception);
  EXPECT_THROW(u.addData(E::ELEMENT_NODAL, p, ints({10}), counted(7, 3)), odb_Exception);
  EXPECT_THROW(t.addData(E::NODAL, p, ints({1}), counted(1, 1), odb_SectionPoint(),
                         rows({{1, 0, 0}, {0, 1, 0}, {0, 0, 1}})),
               odb_Exception);
  EXPECT_THROW(frame.FieldOutput("U", "", E::VECTOR), odb_Exception);
  EXPECT_THROW(frame.FieldOutput("M", "", E::MATRIX), odb_Exception);
  EXPECT_THROW(frame.MatrixOutput("X", "", 0, 3), odb_Exception);
  EXPECT_EQ(u.values().size(), 0);
  EXPECT_EQ(u.bulkDataBlocks().size(), 0);
  u.addData(E::NODAL, p, ints({1}), counted(1, 3));
  EXPECT_EQ(u.values().size(), 1);
  EXPECT_THROW(u.bulkDataBlocks(0).dataDouble(), odb_Exception);
  model_.reopen();
  EXPECT_EQ(field("U").values().size(), 1);
  EXPECT_EQ(field("NT11").bulkDataBlocks().size(), 0);
  EXPECT_THROW(field("U").addData(E::NODAL, model_.instance(), ints({1}), counted(1, 3)),
               odb_Exception);
}

}  // namespace
}  // namespace odbs::test
