// SPDX-License-Identifier: BSD-3-Clause
// Everything that the sample model holds, as written, after a save, after an upgrade from the old
// layout, and compressed: the text is the same, and says what was put in.
#include "tests/odb/read_everything.h"
#include "tests/odb/sample_model.h"

#include <gtest/gtest.h>

#include <sstream>

namespace odbs::test {
namespace {

std::string text(const odb_String& s) {
  return s.CStr();
}

enum class Way { kAsWritten, kSaved, kSavedTwice, kCompressed, kUpgraded };

class SampleModel : public testing::TestWithParam<Way> {
 protected:
  void SetUp() override { start(makeSampleModel); }

  // Makes the model and takes it the way of the parameter.
  void start(odb_Odb& (*make)(const std::string& name, const std::string& path)) {
    odb_finalizeAPI();
    odb_Odb& made = make("made", folder_.file("model.odb"));
    odb_ = &made;
    made_ = readEverything(made);
    if (GetParam() == Way::kAsWritten) return;
    if (GetParam() == Way::kCompressed) odb_embedded::setCompression(made, true);
    std::string path = folder_.file("model.odb");
    if (GetParam() == Way::kUpgraded) {
      odb_embedded::saveInOldLayout(made, folder_.file("old.odb").c_str());
      upgradeOdb(folder_.file("old.odb").c_str(), path.c_str());
    } else {
      made.save();
    }
    made.close();
    if (GetParam() == Way::kSavedTwice) {
      odb_Odb& again = openOdb(path.c_str());
      odb_embedded::setTitle(again, "A title", "A description");
      again.save();
      again.close();
    }
    odb_ = &openOdb(path.c_str(), true);
  }

  odb_Odb& odb() { return *odb_; }

  // The text is that of the model as it was made, and has these lines.
  void expectLines(const char* expected) {
    const std::string all = readEverything(odb());
    EXPECT_EQ(all, made_);
    std::istringstream lines(expected);
    for (std::string line; std::getline(lines, line);) {
      if (!line.empty()) {
        EXPECT_NE(all.find(line + " \n"), std::string::npos) << line;
      }
    }
  }

  TempFolder folder_;
  odb_Odb* odb_ = nullptr;
  std::string made_;  // all of it as text, before it went anywhere
};

std::string nameOfWay(const testing::TestParamInfo<Way>& way) {
  const char* const names[] = {"AsWritten", "Saved", "SavedTwice", "Compressed", "Upgraded"};
  return names[static_cast<int>(way.param)];
}

INSTANTIATE_TEST_SUITE_P(Way, SampleModel,
                         testing::Values(Way::kAsWritten, Way::kSaved, Way::kSavedTwice,
                                         Way::kCompressed, Way::kUpgraded),
                         nameOfWay);

TEST_P(SampleModel, IsTheSameTextAsBeforeAndSaysWhatWasPutIn) {
  expectLines(R"(
title "A title" "A description" 1 1 "job-1" [ 3 0 ]
sectors 12 [ [ 0 0 0 ] [ 0 0 1 ] ]
assembly "ROOT" 1
instance "PLATE-1" 2
node ( 2 1 0 9 "" )
node ( 100 5 6 7 "A-1" )
node ( 100 4 25 37 "B-1" )
node ( 1 0 -1 0 "PLATE-1" )
element ( 1 "CONN3D2" "" [ "A-1" "" ] ) 13 2
element ( 9 "T3D2" "" [ "B-1" "B-1" ] ) 2 100
set ( 1 "OWN" 1 [ "A-1" ] [ ( 1 0 0 0 "A-1" ) ] [ ] [ ] ) ( 1 0 [ ] )
set ( 3 "POINTS" 3 [ "A-1" "B-1" ] [ ( 1 0 0 0 "A-1" ) ( 2 1 0 0 "A-1" ) ( 3 9 21 30 "B-1" ) ] [ ] [ ] ) ( 2 0 [ ] ) ( 1 0 [ ] )
assigned ( ( 2 "LINK" 1 [ "" ] [ ] [ ( 1 "CONN3D2" "" [ "A-1" "" ] ) 13 2 ] [ ] ) ( 0 1 [ ] ) "CONN" )
connector ( "LINK" ( "CSYS-1" 1 ) 1 2 3 0 1 0 -1 0 0 0 -0 1 2 30 0 "" )
beam ( 1 "RODS" [ 0 0 -1 ] )
material ( "CUBE" ( "CSYS-1" 1 ) 1 2 3 0 1 0 -1 0 0 0 -0 1 3 15 2 )
rebar ( "CUBE" ( "CSYS-1" 1 ) 1 2 3 0 1 0 -1 0 0 0 -0 1 1 -5 )
rigid ( ( 1 "REF" 1 [ "PLATE-1" ] [ ( 1 0 -1 0 "PLATE-1" ) ] [ ] [ ] ) ( 1 0 [ ] ) 0 ) "FLAT"
surface ( "FLAT" "SEGMENTS" 0.125 [ ] [ ( "START" [ [ -1 0 ] ] ) ( "LINE" [ [ 1 0 ] ] ) ( "CIRCLE" [ [ 2 1 ] [ 1 1 ] ] ) ] )
shell 1.5 7 "STEEL" "SIMPSON"
plies [ ( 0.5 "STEEL" 3 ) 45 ( 0.25 "WATER" 5 ) "ORI-1" ] 1
mass 2.5
material "STEEL" [ [ 7.85e-09 ] ] 0 1
elastic "ISOTROPIC" 1 0 1 [ [ 210000 0.3 ] [ 200000 0.3 ] ] [ [ 1 2 3 4 5 6 7 ] ] [ [ 0.1 0.2 ] ]
curve "force" [ [ 0 1 ] [ 2 3 ] ]
step 2 "Load" "static step" 0 "Before" "*STATIC" 2 12.5 [ 1 2 3 4 5 6 ] [ ]
frame 0 0 0 0 "wind" "WIND"
frame 1 1 55.5 55.5 "Mode 1" ""
output "U1" "displacement" [ [ 0 0 ] [ 0.5 1 ] [ 2 3 ] ] [ ]
block ( "B-1" 3 "C3D8R" 1 6 ) ( 5 -1 1 0 1 6 ) elements 7 points 1 data 2 20 30 40 50 60
)");
}

TEST_P(SampleModel, KeepsFieldsAndHistoriesOfEveryKind) {
  start(makeResultsSample);
  expectLines(R"(
history "assembly" "" 11 ( -1 -1 0 -1 0 "" "" "ASSEMBLY" ) ""
history "corner" "" 2 ( 2 40 0 -1 0 "" "P-1" "" ) ""
history "face" "" 5 ( -1 40 0 -1 1001 "" "P-1" "" ) ""
history "instance" "" 10 ( -1 -1 0 -1 0 "" "P-2" "" ) ""
history "ip" "" 3 ( -1 40 1 5 0 "" "P-1" "" ) ""
history "node" "Output at node 2" 1 ( 2 -1 0 -1 0 "" "P-1" "" ) "LC1"
output "U1" "Displacement" [ [ 0.5 1.25 ] [ 1 3 ] [ 2 4 ] [ 3 9 ] ] [ [ 10 -2 ] [ 11 -3 ] ]
history "set" "" 9 ( -1 -1 0 -1 0 "BASE" "" "" ) ""
history "whole" "" 8 ( -1 40 0 -1 0 "" "P-1" "" ) ""
failure "P-1" 30 0.75
failure "P-2" 20 0.5
field "U" "Displacement" 3 3 1 [ "U1" "U2" "U3" ] [ 1 ] 0 0 [ ( 1 [ ] ) ] [ ]
block ( "P-1" 1 "" 3 3 ) ( 3 -1 0 3 0 3 ) nodes 2 5 9 data 0 1 2 3 4 5 90 91 92
block ( "P-2" 1 "" 1 3 ) ( 3 -1 0 1 0 3 ) nodes 1 data 70 71 72
field "COMPLEX" "" 3 3 1 [ "COMPLEX1" "COMPLEX2" "COMPLEX3" ] [ ] 1 0 [ ( 1 [ ] ) ] [ ]
block ( "P-1" 1 "" 2 3 ) ( 3 -1 0 2 0 3 ) nodes 1 2 data 0 1 2 3 4 5 conjugate 50 51 52 53 54 55
block ( "P-1" 1 "" 1 3 ) ( 3 -1 0 1 0 3 ) nodes 4 doubles 0.333333333333333 2 3
field "GU" "Generalised displacement" 3 5 1 [ "GU1" "GU2" "GU3" "GU4" "GU5" ] [ ] 0 0 [ ( 1 [ ] ) ] [ ]
field "M" "" 4 2 3 [ ] [ ] 0 0 [ ( 11 [ ] ) ] [ ]
block ( "P-1" 11 "" 1 10 ) ( 4 -1 0 0 0 0 ) data 0 1 2 3 4 5 6 7 8 9
block ( "P-1" 4 "C3D8" 2 1 ) ( 2 -1 2 0 1 0 ) elements 10 20 data 0 1
block ( "P-1" 8 "C3D8" 2 1 ) ( 2 -1 2 0 1 0 ) elements 10 20 data 0 1
block ( "P-1" 5 "C3D8" 2 1 ) ( 2 -1 2 0 1 0 ) elements 10 20 faces 11 12 data 0 1
value ( 20 -1 -1 12 0 0 )
block ( "P-1" 6 "C3D8" 8 1 ) ( 2 -1 2 0 4 0 ) elements 10 10 10 10 20 20 20 20 data 0 1 2 3 4 5 6 7
block ( "P-1" 7 "C3D8" 8 1 ) ( 2 -1 2 0 4 0 ) elements 10 10 10 10 20 20 20 20 data 0 1 2 3 4 5 6 7
block ( "P-1" 10 "" 1 1 ) ( 2 -1 0 0 0 0 ) data 7
block ( "P-1" 2 "C3D8" 8 1 ) ( 2 -1 1 8 8 0 ) elements 20 20 20 20 20 20 20 20 nodes 5 6 7 8 9 10 11 12 data 0 1 2 3 4 5 6 7
block ( "P-1" 2 "C3D6" 6 1 ) ( 2 -1 1 6 6 0 ) elements 30 30 30 30 30 30 nodes 2 13 3 6 14 7 data 8 9 10 11 12 13
field "S" "Stress" 5 6 1 [ "S11" "S22" "S33" "S12" "S13" "S23" ] [ 2 ] 0 1 [ ( 3 [ ] ) ( 3 [ ( 1 "fraction = -1.0, Layer = 1" ) ( 5 "fraction = 1.0, Layer = 1" ) ] ) ] [ "C3D8" "C3D6" "S4R" ]
block ( "P-1" 3 "C3D6" 2 6 ) ( 5 -1 1 0 2 6 ) elements 30 30 points 1 2 data 96 97 98 99 100 101 102 103 104 105 106 107 mises 300.015 318.014
block ( "P-1" 3 "S4R" 2 4 ) ( 6 1 2 0 1 4 ) elements 40 50 points 1 1 data 0 1 2 3 4 5 6 7 mises 5.47723 12.2474
block ( "P-1" 3 "S4R" 2 4 ) ( 6 5 2 0 1 4 ) elements 40 50 points 1 1 data 100 101 102 103 104 105 106 107 axes 0 0 0.707107 0.707107 0 0 0.707107 0.707107 mises 178.41 185.338
)");
}

TEST_P(SampleModel, AnswersForWhatItDoesNotHave) {
  odb_Assembly& root = odb().rootAssembly();
  odb_Instance& cube = root.instances()["A-1"];
  EXPECT_THROW(cube.getNodeFromLabel(5), odb_Exception);
  EXPECT_FALSE(cube.hasAnalyticSurface());
  EXPECT_EQ(root.instances()["B-1"].nodeSets()["BOTTOM"].nodes("A-1").size(), 0);
  const odb_RigidBody body = root.instances()["B-1"].rigidBodies()[0];
  EXPECT_EQ(body.position(), odb_Enum::CENTER_OF_MASS);
  EXPECT_THROW(body.pinNodes(), odb_Exception);
  EXPECT_THROW(body.analyticSurface(), odb_Exception);
  odb_SectionApi sections;
  odb().extendApi(odb_Enum::odb_SECTION, sections);
  const odb_Section& shell = sections.sections()["Section-SHELL"];
  EXPECT_FALSE(odb_isA(kseO_ShellSection, shell));
  EXPECT_THROW(odb_dynamicCast(odb_PointSection, shell), odb_BaseException);
  EXPECT_EQ(sections.numProfiles(), 1);
  const odb_Frame mode = odb().steps()["Modes"].frames(1);
  EXPECT_EQ(mode.associatedFrame().mode(), 2);
  EXPECT_THROW(mode.associatedFrame().associatedFrame(), odb_Exception);
  const odb_Step& before = odb().steps()["Before"];
  EXPECT_EQ(before.getFrame(before.loadCases()["WIND"]).frameIndex(), 0);
  EXPECT_EQ(text(odb().steps().stepList().Get(3).name()), "Modes");
}

TEST_P(SampleModel, KeepsConstraintsAsObjectsOfTheirClasses) {
  odb_ConstraintRepository& all = odb().constraints();
  const odb_Coupling& coupling = odb_dynamicCast(odb_Coupling, all["TIE-1"]);
  EXPECT_EQ(text(coupling.couplingType()), "KINEMATIC");
  EXPECT_EQ(coupling.influenceRadius(), 3.5);
  EXPECT_TRUE(coupling.ur2() && !coupling.u1());
  EXPECT_EQ(text(coupling.refPoint().instanceNames()[0]), "A-1");
  EXPECT_EQ(coupling.controlPoint(), coupling.refPoint());
  EXPECT_TRUE(coupling.surface().name().empty());
  const odb_Tie& tie = odb_dynamicCast(odb_Tie, all["GLUED"]);
  EXPECT_TRUE(tie.hasValue() && tie.adjust() && !tie.tieRotations());
  EXPECT_EQ(tie.positionTolerance(), 0.25);
  EXPECT_EQ(text(tie.master().name()) + text(tie.slave().name()), "CONTACTPOINTS");
  EXPECT_EQ(odb_dynamicCast(odb_MPC, all["PIN-1"]).userType(), 7);
  EXPECT_EQ(odb_dynamicCast(odb_DisplayBody, all["SHOWN"]).referenceNode3Label(), 4);
  EXPECT_FALSE(odb_isA(odb_Tie, all["PIN-1"]));
  EXPECT_FALSE(odb_ShellSolidCoupling().hasValue());
}

TEST_P(SampleModel, KeepsContactWithItsFrictionAndAmplitudes) {
  odb_InteractionRepository& all = odb().interactions();
  const auto& pair = odb_dynamicCast(odb_SurfaceToSurfaceContactStd, all["PAIR-1"]);
  EXPECT_EQ(text(pair.sliding()), "SMALL");
  EXPECT_EQ(pair.hcrit(), 0.5);
  EXPECT_EQ(text(pair.master().name()) + text(pair.adjustSet().name()), "CONTACTBOTTOM");
  EXPECT_TRUE(odb_dynamicCast(odb_SurfaceToSurfaceContactExp, all["PAIR-2"]).slaveNoThick());
  odb_IPRepository& properties = odb().interactionProperties();
  const odb_TangentialBehavior friction =
      odb_dynamicCast(odb_ContactProperty, properties[pair.interactionProperty()])
          .tangentialBehavior();
  ASSERT_TRUE(friction.hasValue());
  EXPECT_EQ(text(friction.formulation()), "PENALTY");
  EXPECT_EQ(friction.dependencies(), 1);
  ASSERT_EQ(friction.table().size(), 2);
  EXPECT_EQ(friction.table()[0][1], 1);
  EXPECT_EQ(friction.table()[1].size(), 1);
  const auto& smooth = odb_dynamicCast(odb_ContactProperty, properties["SMOOTH"]);
  EXPECT_FALSE(smooth.tangentialBehavior().hasValue());
  const auto& ramp = odb_dynamicCast(odb_TabularAmplitude, odb().amplitudes()["AMP-1"]);
  EXPECT_EQ(ramp.data()[1][1], 2.5);
  EXPECT_EQ(text(ramp.timeSpan()), "TOTAL");
  EXPECT_THROW(odb_embedded::addConstraint(odb(), {"odb_Tie", "T", {{"mastr", 1}}}), odb_Exception);
}

}  // namespace
}  // namespace odbs::test
