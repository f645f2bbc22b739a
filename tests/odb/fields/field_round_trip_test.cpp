// SPDX-License-Identifier: BSD-3-Clause
// Fields of every kind, written, saved, and read back as blocks and as values.
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
  // A new frame with stresses at the 16 points of the hexahedra and the 2 of the wedge.
  void addStresses() {
    odb_SequenceInvariant mises;
    mises.append(E::MISES);
    addFrame()
        .FieldOutput("S", "Stress", E::TENSOR_3D_FULL, odb_SequenceString(), mises)
        .addData(E::INTEGRATION_POINT, model_.instance(), ints({10, 20, 30}), counted(18, 6));
  }
  ResultsModel model_;
  int nFrames_ = 0;
};

TEST_F(FieldRoundTrip, NodalVectorsKeepLabelsValuesAndDescription) {
  odb_SequenceInvariant magnitude;
  magnitude.append(E::MAGNITUDE);
  odb_FieldOutput& u = addFrame().FieldOutput("U", "Spatial displacement", E::VECTOR,
                                              odb_SequenceString(), magnitude);
  u.addData(E::NODAL, model_.instance(), ints({2, 5, 9}), counted(3, 3));
  model_.reopen();
  const odb_FieldOutput f = field("U");
  EXPECT_STREQ(f.description().CStr(), "Spatial displacement");
  EXPECT_EQ(f.type(), E::VECTOR);
  EXPECT_EQ(f.dim(), 3);
  EXPECT_FALSE(f.isComplex());
  EXPECT_TRUE(f.validInvariants().isMember(E::MAGNITUDE));
  EXPECT_FALSE(f.validInvariants().isMember(E::MISES));
  EXPECT_STREQ(f.componentLabels()[2].CStr(), "U3");
  EXPECT_EQ(f.locations(0).position(), E::NODAL);
  ASSERT_EQ(f.bulkDataBlocks().size(), 1);
  const odb_FieldBulkData& block = f.bulkDataBlocks(0);
  EXPECT_EQ(labels(block.nodeLabels(), block.length()), (std::vector<int>{2, 5, 9}));
  EXPECT_EQ(numbers(block.data(), 9), (std::vector<float>{0, 1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_FALSE(block.elementLabels() || block.integrationPoints() || block.faces());
  EXPECT_FALSE(block.conjugateData() || block.localCoordSystem() || block.mises());
  EXPECT_EQ(block.numberOfElements(), 0);
  EXPECT_EQ(block.numberOfNodes(), 3);
  EXPECT_EQ(block.sectionPoint().number(), -1);
  EXPECT_STREQ(block.instance().name().CStr(), "P-1");
  EXPECT_EQ(block.precision(), E::SINGLE_PRECISION);
  EXPECT_THROW(block.dataDouble(), odb_Exception);
}

TEST_F(FieldRoundTrip, ElementsOfSeveralTypesBecomeBlocksByType) {
  addStresses();
  model_.reopen();
  const odb_FieldOutput f = field("S");
  ASSERT_EQ(f.bulkDataBlocks().size(), 2);
  const odb_FieldBulkData& hexahedra = f.bulkDataBlocks(0);
  const odb_FieldBulkData& wedges = f.bulkDataBlocks(1);
  EXPECT_STREQ(hexahedra.baseElementType().CStr(), "C3D8");
  EXPECT_EQ(hexahedra.length(), 16);
  EXPECT_EQ(hexahedra.numberOfElements(), 2);
  EXPECT_EQ(hexahedra.valuesPerElement(), 8);
  EXPECT_EQ(hexahedra.elementLabels()[7], 10);
  EXPECT_EQ(hexahedra.elementLabels()[8], 20);
  EXPECT_EQ(hexahedra.integrationPoints()[0], 1);
  EXPECT_EQ(hexahedra.integrationPoints()[15], 8);
  EXPECT_EQ(hexahedra.nodeLabels(), nullptr);
  EXPECT_STREQ(wedges.baseElementType().CStr(), "C3D6");
  EXPECT_EQ(labels(wedges.elementLabels(), wedges.length()), (std::vector<int>{30, 30}));
  EXPECT_FLOAT_EQ(wedges.data()[0], 16 * 6);
  ASSERT_NE(hexahedra.mises(), nullptr);
  EXPECT_FLOAT_EQ(hexahedra.mises()[3], f.values(3).mises());
  EXPECT_EQ(f.values().size(), 18);
  EXPECT_EQ(f.baseElementTypes().size(), 2);
}

TEST_F(FieldRoundTrip, SectionPointsMakeBlocksAndPlanarTensorsOfTheirOwn) {
  odb_FieldOutput& s = addFrame().FieldOutput("S", "Stress", E::TENSOR_3D_FULL);
  s.addData(E::INTEGRATION_POINT, model_.instance(), ints({10}), counted(8, 6));
  s.addData(E::INTEGRATION_POINT, model_.instance(), ints({40, 50}), counted(2, 4),
            model_.point(1));
  s.addData(E::INTEGRATION_POINT, model_.instance(), ints({40, 50}), counted(2, 4, 100),
            model_.point(5));
  model_.reopen();
  const odb_FieldOutput f = field("S");
  ASSERT_EQ(f.bulkDataBlocks().size(), 3);
  EXPECT_EQ(f.bulkDataBlocks(0).type(), E::TENSOR_3D_FULL);
  EXPECT_EQ(f.bulkDataBlocks(1).type(), E::TENSOR_3D_PLANAR);
  EXPECT_EQ(f.bulkDataBlocks(1).sectionPoint().number(), 1);
  EXPECT_EQ(f.bulkDataBlocks(2).sectionPoint().number(), 5);
  EXPECT_FLOAT_EQ(f.bulkDataBlocks(2).data()[0], 100);
  EXPECT_EQ(f.bulkDataBlocks(1).componentLabels().size(), 4);
  ASSERT_EQ(f.locations().size(), 2);
  EXPECT_EQ(f.locations(1).sectionPoint().size(), 2);
}

TEST_F(FieldRoundTrip, ElementNodalValuesGetTheNodesOfTheConnectivity) {
  odb_FieldOutput& s = addFrame().FieldOutput("NFORC", "Nodal force", E::SCALAR);
  s.addData(E::ELEMENT_NODAL, model_.instance(), ints({20, 30}), counted(14, 1));
  model_.reopen();
  const odb_FieldBulkData block = field("NFORC").bulkDataBlocks(0);
  EXPECT_EQ(labels(block.nodeLabels(), block.length()),
            (std::vector<int>{5, 6, 7, 8, 9, 10, 11, 12}));
  EXPECT_EQ(block.elementLabels()[7], 20);
  EXPECT_EQ(field("NFORC").bulkDataBlocks(1).numberOfNodes(), 6);
  EXPECT_EQ(field("NFORC").values(8).nodeLabel(), 2);
}

TEST_F(FieldRoundTrip, EveryPositionOfElementsComesBack) {
  odb_Frame frame = addFrame();
  const auto scalar = [&](const char* name) -> odb_FieldOutput& {
    return frame.FieldOutput(name, "", E::SCALAR);
  };
  const odb_Instance& p = model_.instance();
  const odb_Set& ends = p.surfaces()["ENDS"];
  scalar("C").addData(E::CENTROID, p, ints({10, 20}), counted(2, 1));
  scalar("W").addData(E::WHOLE_ELEMENT, p, ints({10, 20}), counted(2, 1));
  scalar("F").addData(E::ELEMENT_FACE, ends, counted(2, 1));
  scalar("FI").addData(E::ELEMENT_FACE_INTEGRATION_POINT, ends, counted(8, 1));
  scalar("SI").addData(E::SURFACE_INTEGRATION_POINT, ends, counted(8, 1));
  scalar("I").addData(E::WHOLE_PART_INSTANCE, p, odb_SequenceInt(), counted(1, 1, 7));
  model_.reopen();
  EXPECT_EQ(field("C").locations(0).position(), E::CENTROID);
  EXPECT_EQ(field("W").bulkDataBlocks(0).elementLabels()[1], 20);
  const odb_FieldBulkData faces = field("F").bulkDataBlocks(0);
  ASSERT_NE(faces.faces(), nullptr);
  EXPECT_EQ(faces.faces()[0], E::FACE1);
  EXPECT_EQ(faces.faces()[1], E::FACE2);
  EXPECT_EQ(field("F").values(1).face(), E::FACE2);
  EXPECT_EQ(field("FI").bulkDataBlocks(0).elementLabels()[3], 10);
  EXPECT_EQ(field("FI").bulkDataBlocks(0).faces(), nullptr);
  EXPECT_EQ(field("SI").bulkDataBlocks(0).length(), 8);
  EXPECT_FLOAT_EQ(field("I").values(0).data()[0], 7);
  EXPECT_EQ(field("I").values(0).elementLabel(), -1);
}

TEST_F(FieldRoundTrip, ComplexValuesHaveConjugateParts) {
  odb_FieldOutput& u = addFrame().FieldOutput("U", "", E::VECTOR);
  u.addData(E::NODAL, model_.instance(), ints({1, 2}), counted(2, 3), odb_SectionPoint(),
            odb_SequenceSequenceFloat(), counted(2, 3, 50));
  model_.reopen();
  const odb_FieldOutput f = field("U");
  EXPECT_TRUE(f.isComplex());
  int n = 0;
  EXPECT_FLOAT_EQ(f.values(1).conjugateData(n)[0], 53);
  EXPECT_EQ(n, 3);
  EXPECT_FLOAT_EQ(f.bulkDataBlocks(0).conjugateData()[5], 55);
}

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

TEST_F(FieldRoundTrip, WideVectorsAndMatricesKeepTheirSizes) {
  odb_Frame frame = addFrame();
  frame.VectorOutput("GU", "Generalised displacement", 5)
      .addData(E::NODAL, model_.instance(), ints({1}), counted(1, 5));
  frame.MatrixOutput("M", "", 2, 3)
      .addData(E::WHOLE_MODEL, model_.instance(), odb_SequenceInt(), counted(1, 6));
  frame.SymmetricMatrixOutput("MATRIX Sqq", "", 4)
      .addData(E::WHOLE_MODEL, model_.instance(), odb_SequenceInt(), counted(1, 10));
  EXPECT_THROW(frame.MatrixOutput("X", "", 0, 3), odb_Exception);
  model_.reopen();
  EXPECT_EQ(field("GU").dim(), 5);
  EXPECT_EQ(field("M").type(), E::MATRIX);
  EXPECT_EQ(field("M").dim(), 2);
  EXPECT_EQ(field("M").dim2(), 3);
  EXPECT_EQ(field("MATRIX Sqq").bulkDataBlocks(0).width(), 10);
}

TEST_F(FieldRoundTrip, ValuesOfOneKindAddedInPiecesBecomeOneBlock) {
  odb_FieldOutput u = addVectors();
  ASSERT_EQ(u.values().size(), 2);
  u.addData(E::NODAL, model_.instance(), ints({7}), counted(1, 3, 90));
  u.addData(E::NODAL, model_.instance("P-2"), ints({1}), counted(1, 3, 70));
  EXPECT_EQ(u.values().size(), 4);
  model_.reopen();
  ASSERT_EQ(field("U").bulkDataBlocks().size(), 2);
  EXPECT_EQ(labels(field("U").bulkDataBlocks(0).nodeLabels(), 3), (std::vector<int>{1, 2, 7}));
  EXPECT_FLOAT_EQ(field("U").bulkDataBlocks(0).data()[6], 90);
  EXPECT_STREQ(field("U").bulkDataBlocks(1).instance().name().CStr(), "P-2");
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

TEST_F(FieldRoundTrip, CompressedAndUpgradedDatabasesKeepTheirFields) {
  odb_embedded::setCompression(*model_.odb, true);
  addStresses();
  const std::string old = model_.folder.file("old.odb"), upgraded = model_.folder.file("new.odb");
  odb_embedded::saveInOldLayout(*model_.odb, old.c_str());
  upgradeOdb(old.c_str(), upgraded.c_str());
  model_.reopen();
  for (odb_Odb* odb : {model_.odb, &openOdb(upgraded.c_str(), true)}) {
    const odb_FieldOutput f = odb->steps()["Step-1"].frames(0).fieldOutputs()["S"];
    EXPECT_FLOAT_EQ(f.values(17).data()[5], 107);
    EXPECT_EQ(f.values(17).elementLabel(), 30);
    EXPECT_EQ(f.getSubset(E::ELEMENT_NODAL).values().size(), 22);
  }
  closeOdb(openOdb(upgraded.c_str(), true));
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
  EXPECT_EQ(u.values().size(), 0);
  EXPECT_EQ(u.bulkDataBlocks().size(), 0);
  u.addData(E::NODAL, p, ints({1}), counted(1, 3));
  model_.reopen();
  EXPECT_EQ(field("U").values().size(), 1);
  EXPECT_EQ(field("NT11").bulkDataBlocks().size(), 0);
  EXPECT_THROW(field("U").addData(E::NODAL, model_.instance(), ints({1}), counted(1, 3)),
               odb_Exception);
}

}  // namespace
}  // namespace odbs::test
