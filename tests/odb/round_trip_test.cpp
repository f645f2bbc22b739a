// SPDX-License-Identifier: BSD-3-Clause
// Everything that the sample model holds, as written, after a save, after an upgrade from the old
// layout, and compressed.
#include "tests/odb/sample_model.h"

#include <gtest/gtest.h>

#include <fstream>

namespace odbs::test {
namespace {

std::string text(const odb_String& s) {
  return s.CStr();
}

std::vector<int> labelsOf(const odb_SequenceNode& nodes) {
  std::vector<int> labels;
  for (int i = 0; i < nodes.size(); ++i) labels.push_back(nodes[i].label());
  return labels;
}

std::vector<int> labelsOf(const odb_SequenceElement& elements) {
  std::vector<int> labels;
  for (int i = 0; i < elements.size(); ++i) labels.push_back(elements[i].label());
  return labels;
}

std::vector<std::string> keysOf(const odb_SetRepository& sets) {
  std::vector<std::string> keys;
  odb_SetRepositoryIT it(sets);
  for (it.first(); !it.isDone(); it.next()) keys.push_back(text(it.currentKey()));
  return keys;
}

using Ints = std::vector<int>;
using Texts = std::vector<std::string>;

enum class Way { kAsWritten, kSaved, kSavedTwice, kCompressed, kUpgraded };

class SampleModel : public testing::TestWithParam<Way> {
 protected:
  void SetUp() override {
    odb_Odb& made = makeSampleModel("made", folder_.file("model.odb"));
    odb_ = &made;
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
  odb_Instance& instance(const char* name) { return odb().rootAssembly().instances()[name]; }

  TempFolder folder_;
  odb_Odb* odb_ = nullptr;
};

std::string nameOfWay(const testing::TestParamInfo<Way>& way) {
  const char* const names[] = {"AsWritten", "Saved", "SavedTwice", "Compressed", "Upgraded"};
  return names[static_cast<int>(way.param)];
}

INSTANTIATE_TEST_SUITE_P(Way, SampleModel,
                         testing::Values(Way::kAsWritten, Way::kSaved, Way::kSavedTwice,
                                         Way::kCompressed, Way::kUpgraded),
                         nameOfWay);

TEST_P(SampleModel, KeepsTitleAndJob) {
  EXPECT_EQ(text(odb().analysisTitle()), "A title");
  EXPECT_EQ(text(odb().description()), "A description");
  EXPECT_EQ(text(odb().rootAssembly().name()), "ROOT");
  const odb_JobData job = odb().jobData();
  EXPECT_EQ(job.analysisCode(), odb_Enum::ABAQUS_STANDARD);
  EXPECT_EQ(job.precision(), odb_Enum::DOUBLE_PRECISION);
  EXPECT_EQ(text(job.name()), "job-1");
  ASSERT_EQ(job.productAddOns().size(), 2);
  EXPECT_EQ(job.productAddOns()[0], odb_Enum::CEL);
  ASSERT_TRUE(odb().hasSectorDefinition());
  EXPECT_EQ(odb().sectorDefinition().numSectors(), 12);
  EXPECT_EQ(odb().sectorDefinition().symmetryAxis()[1][2], 1.0f);
}

TEST_P(SampleModel, KeepsNodesAndPlacesThem) {
  EXPECT_EQ(labelsOf(instance("A-1").nodes()), (Ints{1, 2, 3, 4, 11, 12, 13, 14, 100}));
  const float* inPlace = instance("A-1").getNodeFromLabel(100).coordinates();
  EXPECT_EQ((std::vector<float>(inPlace, inPlace + 3)), (std::vector<float>{5, 6, 7}));
  // x goes to y, y to -x, then the shift.
  const float* placed = instance("B-1").getNodeFromLabel(100).coordinates();
  EXPECT_EQ((std::vector<float>(placed, placed + 3)), (std::vector<float>{4, 25, 37}));
  const float* planar = instance("PLATE-1").nodes(0).coordinates();
  EXPECT_EQ((std::vector<float>(planar, planar + 3)), (std::vector<float>{0, -1, 0}));
  EXPECT_EQ(labelsOf(odb().rootAssembly().nodes()), (Ints{1, 2}));
  EXPECT_THROW(instance("A-1").getNodeFromLabel(5), odb_Exception);
  EXPECT_EQ(instance("PLATE-1").embeddedSpace(), odb_Enum::TWO_D_PLANAR);
}

TEST_P(SampleModel, KeepsElements) {
  const odb_SequenceElement& elements = instance("B-1").elements();
  EXPECT_EQ(labelsOf(elements), (Ints{7, 3, 9}));
  const odb_Element cube = elements[0];
  int n = 0;
  const int* nodes = cube.connectivity(n);
  EXPECT_EQ((Ints(nodes, nodes + n)), (Ints{1, 2, 3, 4, 11, 12, 13, 14}));
  EXPECT_EQ(text(cube.type()), "C3D8R");
  EXPECT_EQ(text(cube.sectionCategory().name()), "solid < elset = CUBE > < material = STEEL >");
  EXPECT_EQ(cube.sectionCategory().sectionPoints(1).number(), 5);
  EXPECT_EQ(text(cube.instanceName()), "B-1");
  EXPECT_EQ(text(elements[2].type()), "T3D2");
  EXPECT_TRUE(elements[2].sectionCategory().name().empty());
  EXPECT_EQ(elements[2].connectivity()[1], 100);
  EXPECT_EQ(elements[2].index(), 2);
}

TEST_P(SampleModel, KeepsElementsBetweenInstances) {
  const odb_Element link = odb().rootAssembly().elements(0);
  EXPECT_EQ(text(link.type()), "CONN3D2");
  EXPECT_EQ(link.connectivity()[0], 13);
  EXPECT_EQ(text(link.instanceNames()[0]), "A-1");
  EXPECT_EQ(text(link.instanceNames()[1]), "");
}

TEST_P(SampleModel, GivesInstancesTheSetsOfTheirPart) {
  EXPECT_EQ(keysOf(instance("A-1").nodeSets()), (Texts{"ALL", "BOTTOM", "OWN"}));
  EXPECT_EQ(keysOf(instance("B-1").nodeSets()), (Texts{"ALL", "BOTTOM"}));
  EXPECT_EQ(keysOf(instance("B-1").elementSets()), (Texts{"CUBE", "RODS"}));
  const odb_Set bottom = instance("B-1").nodeSets()["BOTTOM"];
  EXPECT_EQ(labelsOf(bottom.nodes()), (Ints{4, 3, 2, 1}));
  EXPECT_EQ(bottom.nodes()[3].coordinates()[0], 10.0f);
  EXPECT_EQ(labelsOf(bottom.nodes("B-1")), (Ints{4, 3, 2, 1}));
  EXPECT_EQ(bottom.nodes("A-1").size(), 0);
  EXPECT_EQ(text(bottom.instanceNames()[0]), "B-1");
  const odb_Set& floor = instance("A-1").surfaces()["FLOOR"];
  EXPECT_EQ(floor.type(), odb_Enum::SURFACE_SET);
  EXPECT_EQ(floor.faces()[0], odb_Enum::FACE1);
  EXPECT_EQ(floor.nodes().size(), 0);
}

TEST_P(SampleModel, KeepsSetsOverInstances) {
  odb_Assembly& root = odb().rootAssembly();
  EXPECT_EQ(keysOf(root.nodeSets()), (Texts{" ALL NODES", "TOPS"}));
  EXPECT_EQ(keysOf(root.surfaces()), (Texts{"CONTACT", "POINTS"}));
  const odb_Set& cubes = root.elementSets()["CUBES"];
  EXPECT_EQ(cubes.size(), 3);
  EXPECT_EQ(labelsOf(cubes.elements()), (Ints{7, 7, 3}));
  EXPECT_EQ(text(cubes.elements()[1].instanceName()), "B-1");
  EXPECT_EQ(labelsOf(cubes.elements("B-1")), (Ints{7, 3}));
  const odb_Set& contact = root.surfaces()["CONTACT"];
  EXPECT_EQ(contact.faces("B-1").size(), 1);
  EXPECT_EQ(contact.elements("B-1").size(), 1);
  const odb_Set& pointSurface = root.surfaces()["POINTS"];
  EXPECT_EQ(labelsOf(pointSurface.nodes()), (Ints{1, 2, 3}));
  EXPECT_EQ(pointSurface.elements().size(), 0);
  EXPECT_EQ(root.nodeSets()[" ALL NODES"].size(), 2 + 9 + 9 + 1);
}

TEST_P(SampleModel, KeepsAssignmentsAndOrientations) {
  const odb_SequenceSectionAssignment& assigned = instance("A-1").sectionAssignments();
  ASSERT_EQ(assigned.size(), 2);
  EXPECT_EQ(text(assigned[0].sectionName()), "Section-SOLID");
  EXPECT_EQ(labelsOf(assigned[0].region().elements("A-1")), (Ints{7}));
  EXPECT_EQ(text(assigned[1].section().name()), "ROD");
  EXPECT_EQ(instance("B-1").sectionAssignments().size(), 1);
  EXPECT_EQ(text(odb().rootAssembly().sectionAssignments(0).region().name()), "LINK");
  EXPECT_EQ(instance("B-1").beamOrientations()[0].vector()[2], -1.0f);
  const odb_MaterialOrientation& material = instance("A-1").materialOrientations()[0];
  EXPECT_EQ(material.angle(), 15.0f);
  EXPECT_EQ(material.stackDirection(), odb_Enum::STACK_2);
  EXPECT_EQ(material.axis(), odb_Enum::AXIS_3);
  EXPECT_EQ(instance("A-1").rebarOrientations()[0].angle(), -5.0f);
  const odb_ConnectorOrientation& link = odb().rootAssembly().connectorOrientations()[0];
  EXPECT_EQ(text(link.region().name()), "LINK");
  EXPECT_TRUE(link.hasCsys1());
  EXPECT_FALSE(link.hasCsys2());
  EXPECT_TRUE(link.csys2().name().empty());
  EXPECT_EQ(link.csys1().yAxis()[0], -1.0f);
  EXPECT_EQ(link.csys1().type(), odb_Enum::CYLINDRICAL);
}

TEST_P(SampleModel, KeepsRigidBodiesAndAnalyticSurfaces) {
  const odb_RigidBody body = instance("B-1").rigidBodies()[0];
  EXPECT_EQ(labelsOf(body.referenceNodeSet().nodes()), (Ints{4, 3, 2, 1}));
  EXPECT_EQ(body.referenceNode().nodes()[3].coordinates()[1], 20.0f);
  EXPECT_EQ(body.position(), odb_Enum::CENTER_OF_MASS);
  EXPECT_TRUE(body.isothermal());
  EXPECT_EQ(body.elements().size(), 1);
  EXPECT_THROW(body.pinNodes(), odb_Exception);
  EXPECT_FALSE(body.hasAnalyticSurface());
  EXPECT_THROW(body.analyticSurface(), odb_Exception);
  EXPECT_FALSE(instance("A-1").hasAnalyticSurface());
  ASSERT_TRUE(instance("PLATE-1").hasAnalyticSurface());
  const odb_AnalyticSurface& surface = instance("PLATE-1").analyticSurface();
  EXPECT_EQ(text(surface.type()), "SEGMENTS");
  EXPECT_EQ(surface.filletRadius(), 0.125);
  ASSERT_EQ(surface.segments().size(), 3);
  EXPECT_EQ(text(surface.segments()[2].type()), "CIRCLE");
  EXPECT_EQ(surface.segments()[2].data()[1][0], 1.0f);
  EXPECT_EQ(text(instance("PLATE-1").rigidBodies()[0].analyticSurface().name()), "FLAT");
}

TEST_P(SampleModel, KeepsSections) {
  odb_SectionApi api;
  odb().extendApi(odb_Enum::odb_SECTION, api);
  EXPECT_EQ(api.sections().size(), 13);
  const odb_Section& shell = api.sections()["Section-SHELL"];
  EXPECT_TRUE(odb_isA(odb_HomogeneousShellSection, shell));
  EXPECT_FALSE(odb_isA(kseO_ShellSection, shell));
  const auto& typed = odb_dynamicCast(kseO_HomogeneousShellSection, shell);
  EXPECT_EQ(typed.thickness(), 1.5);
  EXPECT_EQ(typed.numIntPts(), 7);
  EXPECT_EQ(text(typed.material()), "STEEL");
  EXPECT_EQ(text(typed.integrationRule()), "SIMPSON");
  EXPECT_THROW(odb_dynamicCast(odb_PointSection, shell), odb_BaseException);
  const auto& plies = odb_dynamicCast(odb_CompositeShellSection, api.sections()["Section-PLIES"]);
  ASSERT_EQ(plies.layup().size(), 2);
  EXPECT_EQ(plies.layup(0).orientAngle().getDouble(), 45.0);
  EXPECT_EQ(text(plies.layup(1).orientAngle().getString()), "ORI-1");
  EXPECT_EQ(plies.layup(1).numIntPts(), 5);
  EXPECT_EQ(text(plies.layup(1).material()), "WATER");
  EXPECT_TRUE(plies.symmetric());
  EXPECT_EQ(odb_dynamicCast(odb_PointSection, api.sections()["MASS"]).mass(), 2.5);
  EXPECT_EQ(text(odb_dynamicCast(odb_ConnectorSection, api.sections()["CONN"]).assembledType()),
            "BEAM");
  EXPECT_EQ(api.numProfiles(), 1);
}

TEST_P(SampleModel, KeepsMaterials) {
  odb_MaterialApi api;
  odb().extendApi(odb_Enum::odb_MATERIAL, api);
  const odb_Material& steel = api.materials()["STEEL"];
  EXPECT_EQ(steel.density().table()[0][0], 7.85e-9);
  const odb_Elastic elastic = steel.elastic();
  EXPECT_EQ(text(elastic.type()), "ISOTROPIC");
  EXPECT_TRUE(elastic.noTension());
  EXPECT_FALSE(elastic.noCompression());
  EXPECT_TRUE(elastic.temperatureDependency());
  const odb_SequenceSequenceFloat narrowed = elastic.table();
  EXPECT_EQ(narrowed[1][0], 200000.0f);
  EXPECT_EQ(elastic.failStress().table()[0][6], 7.0);
  EXPECT_EQ(elastic.failStrain().table()[0][1], 0.2);
  EXPECT_FALSE(steel.acousticMedium().hasValue());
  EXPECT_TRUE(api.materials()["WATER"].acousticMedium().hasValue());
  EXPECT_FALSE(api.materials()["WATER"].elastic().hasValue());
}

TEST_P(SampleModel, KeepsStepsInTheOrderOfTheAnalysis) {
  Texts names;
  odb_StepRepositoryIT it(odb().steps());
  for (it.first(); !it.isDone(); it.next()) names.push_back(text(it.currentKey()));
  EXPECT_EQ(names, (Texts{"Before", "Load", "After load", "Modes"}));
  const odb_Step& load = odb().steps()["Load"];
  EXPECT_EQ(load.number(), 2);
  EXPECT_EQ(text(load.previousStepName()), "Before");
  EXPECT_EQ(load.timePeriod(), 2.0f);
  EXPECT_EQ(load.mass(), 12.5);
  EXPECT_EQ(load.inertiaAboutOrigin()[5], 6.0);
  EXPECT_EQ(load.inertiaAboutCenter().size(), 0);
  EXPECT_EQ(text(odb().steps()["Before"].previousStepName()), "Initial");
  EXPECT_EQ(text(odb().steps().stepList().Get(3).name()), "Modes");
}

TEST_P(SampleModel, KeepsFrames) {
  const odb_Step& load = odb().steps()["Load"];
  ASSERT_EQ(load.frames().size(), 3);
  EXPECT_EQ(load.frames(1).frameValue(), 0.5f);
  EXPECT_EQ(load.frames(1).incrementNumber(), 1);
  EXPECT_EQ(text(load.frames(1).description()), "Increment 1");
  const odb_Frame mode = odb().steps()["Modes"].frames(1);
  EXPECT_EQ(mode.mode(), 1);
  EXPECT_EQ(mode.frequency(), 55.5f);
  EXPECT_EQ(mode.domain(), odb_Enum::MODAL);
  EXPECT_EQ(mode.associatedFrame().mode(), 2);
  EXPECT_THROW(mode.associatedFrame().associatedFrame(), odb_Exception);
  const odb_Step& before = odb().steps()["Before"];
  EXPECT_EQ(text(before.frames(0).loadCase().name()), "WIND");
  EXPECT_EQ(before.getFrame(before.loadCases()["WIND"]).frameIndex(), 0);
  EXPECT_TRUE(load.frames(0).loadCase().name().empty());
}

TEST_P(SampleModel, KeepsUserDataAndObjects) {
  EXPECT_EQ(text(odb().userData().annotationObjects()["xml"].text()), "<a>\n</a>");
  odb_SequenceSequenceFloat curve;
  odb().userData().xyDataObjects("CURVE").getData(curve);
  EXPECT_EQ(curve[1][1], 3.0f);
  EXPECT_EQ(text(odb().userData().xyDataObjects("CURVE").yAxisLabel()), "force");
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
