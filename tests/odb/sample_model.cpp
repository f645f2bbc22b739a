// SPDX-License-Identifier: BSD-3-Clause
// Builds the model part by part, with sections, sets and steps.
#include "tests/odb/sample_model.h"

namespace odbs::test {

namespace {

void addSectionsAndMaterials(odb_Odb& odb) {
  odb_MaterialApi materials;
  odb.extendApi(odb_Enum::odb_MATERIAL, materials);
  odb_Material& steel = materials.Material("STEEL");
  steel.Density(doubleRows({{7.85e-9}}));
  steel.Elastic(doubleRows({{210000, 0.3}, {200000, 0.3}}), "ISOTROPIC", false, true, true);
  steel.elastic().FailStress(doubleRows({{1, 2, 3, 4, 5, 6, 7}}));
  steel.elastic().FailStrain(doubleRows({{0.1, 0.2}}));
  materials.Material("WATER").AcousticMedium(doubleRows({{2200}}));
  odb_SectionApi sections;
  odb.extendApi(odb_Enum::odb_SECTION, sections);
  sections.HomogeneousSolidSection("Section-SOLID", "STEEL");
  sections.HomogeneousShellSection("Section-SHELL", 1.5, "STEEL", 7);
  odb_SequenceSectionLayer layup;
  layup.append(SectionLayer(0.5, "STEEL", 45.0, 3));
  layup.append(SectionLayer(0.25, "WATER", "ORI-1", 5, "AXIS_1", 2, "ROTATION_ANGLE"));
  sections.CompositeShellSection("Section-PLIES", layup, true, "LAYUP-1");
  sections.CompositeSolidSection("Section-BRICKS", layup);
  sections.ConnectorSection("CONN", "BEAM");
  sections.PointSection("MASS", 2.5);
  sections.CohesiveSection("GLUE", "STEEL");
  sections.TrussSection("ROD", "STEEL");
  sections.PEGSection("PEG", "STEEL");
  sections.MembraneSection("SKIN", "STEEL");
  sections.GasketSection("SEAL", "STEEL");
  sections.BeamSection("BEAM", "PROFILE-1", "STEEL");
  sections.ShellSection("STIFFNESS");
}

void addParts(odb_Odb& odb) {
  odb_SectionCategory& category =
      odb.SectionCategory("solid < elset = CUBE > < material = STEEL >", "solids");
  category.SectionPoint(1, "fraction = -1.0, Layer = 1");
  category.SectionPoint(5, "fraction = 1.0, Layer = 1");
  odb_Part& block = odb.Part("BLOCK", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
  block.addNodes(ints({1, 2, 3, 4, 11, 12, 13, 14, 100}),
                 floatRows({{0, 0, 0},
                            {1, 0, 0},
                            {1, 1, 0},
                            {0, 1, 0},
                            {0, 0, 1},
                            {1, 0, 1},
                            {1, 1, 1},
                            {0, 1, 1},
                            {5, 6, 7}}),
                 "ALL");
  block.addElements(ints({7}), rows({{1, 2, 3, 4, 11, 12, 13, 14}}), "C3D8R", "CUBE", category);
  block.addElements(ints({3, 9}), rows({{1, 100}, {2, 100}}), "T3D2", "RODS");
  block.NodeSet("BOTTOM", ints({4, 3, 2, 1}));
  odb_SequenceElementFace faces;
  faces.append(odb_Enum::FACE1);
  block.Surface("FLOOR", ints({7}), faces);
  odb_SectionApi sections;
  odb.extendApi(odb_Enum::odb_SECTION, sections);
  block.assignSection(block.elementSets()["CUBE"], sections.sections()["Section-SOLID"]);
  block.assignBeamOrientation(block.elementSets()["RODS"], odb_Enum::N1_COSINES,
                              floats({0, 0, -1}));
  odb_Part& plate = odb.Part("PLATE", odb_Enum::TWO_D_PLANAR, odb_Enum::ANALYTIC_RIGID_SURFACE);
  plate.addNodes(ints({1}), floatRows({{0, -1}}), "REF");
  odb_SequenceAnalyticSurfaceSegment profile;
  profile.append(odb_AnalyticSurfaceSegment("START", floatRows({{-1, 0}})));
  profile.append(odb_AnalyticSurfaceSegment("LINE", floatRows({{1, 0}})));
  profile.append(odb_AnalyticSurfaceSegment("CIRCLE", floatRows({{2, 1}, {1, 1}})));
  plate.AnalyticRigidSurf2DPlanar("FLAT", profile, 0.125);
}

void addAssembly(odb_Odb& odb) {
  odb_Assembly& root = odb.rootAssembly();
  odb_Part& block = odb.parts()["BLOCK"];
  odb_Instance& b =
      root.Instance("B-1", block, floatRows({{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {10, 20, 30}}));
  odb_Instance& a = root.Instance("A-1", block);
  odb_Instance& plate = root.Instance("PLATE-1", odb.parts()["PLATE"]);
  root.addNodes(ints({1, 2}), floatRows({{0, 0, 9}, {1, 0, 9}}));
  odb_SequenceString owners;
  owners.append("A-1");
  owners.append("");
  root.addElements(ints({1}), rows({{13, 2}}), owners, "CONN3D2", "LINK");
  odb_SequenceString both;
  both.append("A-1");
  both.append("B-1");
  root.NodeSet("TOPS", both, rows({{11, 12}, {14}}));
  root.ElementSet("CUBES", both, rows({{7}, {7, 3}}));
  odb_SequenceElementFace one;
  one.append(odb_Enum::FACE2);
  odb_SequenceSequenceElementFace faces;
  faces.append(one);
  faces.append(one);
  root.Surface("CONTACT", both, rows({{7}, {7}}), faces);
  odb_embedded::addNodeSurface(root, "POINTS", both, rows({{1, 2}, {3}}));
  a.NodeSet("OWN", ints({1}));
  b.RigidBody(b.nodeSets()["BOTTOM"], odb_Enum::CENTER_OF_MASS, true, b.elementSets()["CUBE"]);
  odb_embedded::addRigidBody(plate, plate.nodeSets()["REF"], plate);
  odb_DatumCsys& csys = root.DatumCsysByThreePoints(
      "CSYS-1", odb_Enum::CYLINDRICAL, floats({1, 2, 3}), floats({1, 4, 3}), floats({-3, 2, 3}));
  root.ConnectorOrientation(root.elementSets()["LINK"], csys, odb_Enum::AXIS_2, 30);
  odb_SectionApi sections;
  odb.extendApi(odb_Enum::odb_SECTION, sections);
  root.SectionAssignment(root.elementSets()["LINK"], sections.sections()["CONN"]);
  a.assignSection(a.elementSets()["RODS"], sections.sections()["ROD"]);
  a.assignMaterialOrientation(a.elementSets()["CUBE"], csys, odb_Enum::AXIS_3, 15,
                              odb_Enum::STACK_2);
  a.assignRebarOrientation(a.elementSets()["CUBE"], csys, odb_Enum::AXIS_1, -5);
  odb_embedded::addInternalSets(odb);
}

void addSteps(odb_Odb& odb) {
  odb_Step& load = odb.Step("Load", "static step", odb_Enum::TIME, 2.0, "", "*STATIC");
  load.Frame(0, 0.0f, "Increment 0");
  load.Frame(1, 0.5f, "Increment 1");
  load.Frame(2, 2.0f);
  odb_embedded::setMassData(load, {12.5, 0, {1, 2, 3}, {}, {1, 2, 3, 4, 5, 6}, {}});
  odb_Step& modes = odb.Step("Modes", "", odb_Enum::MODAL, 0, "Load", "*FREQUENCY");
  modes.Frame(0, 0.0f);
  odb_Frame first = modes.Frame(1, 55.5f, "Mode 1");
  odb_Frame second = modes.Frame(2, 77.0f, "Mode 2");
  odb_embedded::setAssociatedFrame(first, second);
  odb_Step& initial = odb.Step("Before", "", odb_Enum::TIME, 1.0, "Initial");
  initial.Frame(initial.LoadCase("WIND"), "wind");
  odb.Step("After load", "", odb_Enum::FREQUENCY, 1.0, "Load").Frame(1, 10.0f);
}

void addResults(odb_Odb& odb) {
  odb_Instance& a = odb.rootAssembly().instances()["A-1"];
  odb_Step& load = odb.steps()["Load"];
  const odb_SequenceInt nodes = ints({1, 2, 3, 4});
  for (int i = 0; i < load.frames().size(); ++i) {
    const float t = static_cast<float>(i);
    odb_Frame frame = load.frames(i);
    frame.FieldOutput("U", "displacement", odb_Enum::VECTOR)
        .addData(odb_Enum::NODAL, a, nodes,
                 floatRows({{t, 1, 0}, {t, 2, 0}, {t, 3, 0}, {t, 4, 0}}));
    odb_FieldOutput& stress = frame.FieldOutput("S", "stress", odb_Enum::TENSOR_3D_FULL);
    stress.addData(odb_Enum::INTEGRATION_POINT, a, ints({7}), floatRows({{t, 2, 3, 4, 5, 6}}));
    stress.addData(odb_Enum::INTEGRATION_POINT, odb.rootAssembly().instances()["B-1"], ints({7}),
                   floatRows({{t, 20, 30, 40, 50, 60}}));
  }
  odb_HistoryRegion& region =
      load.HistoryRegion("Node A-1.3", "a node", odb_HistoryPoint(a.getNodeFromLabel(3)));
  region.HistoryOutput("U1", "displacement", odb_Enum::SCALAR)
      .addData(floatRows({{0, 0}, {0.5, 1}, {2, 3}}));
}

void addUserData(odb_Odb& odb) {
  odb_embedded::JobData job;
  job.analysisCode = odb_Enum::ABAQUS_STANDARD;
  job.precision = odb_Enum::DOUBLE_PRECISION;
  job.name = "job-1";
  job.version = "1.0";
  job.machineName = "host";
  job.productAddOns = {odb_Enum::CEL, odb_Enum::AQUA};
  odb_embedded::setJobData(odb, job);
  odb_embedded::setAssemblyName(odb, "ROOT");
  odb_embedded::setAnnotation(odb, "xml", "<a>\n</a>");
  odb_embedded::Curve curve;
  curve.name = "CURVE";
  curve.yAxisLabel = "force";
  curve.points = floatRows({{0, 1}, {2, 3}});
  odb_embedded::addCurve(odb, curve);
  odb_embedded::setSectorDefinition(odb, 12, floatRows({{0, 0, 0}, {0, 0, 1}}));
}

void addObjects(odb_Odb& odb) {
  using namespace odb_embedded;
  odb_Assembly& root = odb.rootAssembly();
  const odb_Set& bottom = root.instances()["A-1"].nodeSets()["BOTTOM"];
  const odb_Set& contact = root.surfaces()["CONTACT"];
  const odb_Set& points = root.surfaces()["POINTS"];
  addConstraint(odb, {"odb_Coupling",
                      "TIE-1",
                      {{"couplingType", "KINEMATIC"}, {"influenceRadius", 3.5}, {"ur2", true}},
                      {{"refPoint", bottom}}});
  addConstraint(odb, {"odb_Tie",
                      "GLUED",
                      {{"adjust", true}, {"positionTolerance", 0.25}},
                      {{"master", contact}, {"slave", points}}});
  addConstraint(odb, {"odb_MPC", "PIN-1", {{"userType", 7}}, {{"controlPoint", bottom}}});
  addConstraint(odb, {"odb_DisplayBody", "SHOWN", {{"referenceNode3Label", 4}}});
  addProfile(odb, {"odb_Profile", "PROFILE-1", {{"a", 2.0}}});
  addInteractionProperty(
      odb, {"odb_ContactProperty",
            "RUBBING",
            {{"tangentialBehavior.formulation", "PENALTY"}, {"tangentialBehavior.dependencies", 1}},
            {},
            {{"tangentialBehavior.table", doubleRows({{0.3, 1}, {0.2}})}}});
  addInteractionProperty(odb, {"odb_ContactProperty", "SMOOTH"});
  addInteraction(odb, {"odb_SurfaceToSurfaceContactStd",
                       "PAIR-1",
                       {{"sliding", "SMALL"}, {"interactionProperty", "RUBBING"}, {"hcrit", 0.5}},
                       {{"master", contact}, {"adjustSet", bottom}}});
  addInteraction(odb, {"odb_SurfaceToSurfaceContactExp", "PAIR-2", {{"slaveNoThick", true}}});
  addAmplitude(odb, {"odb_TabularAmplitude",
                     "AMP-1",
                     {{"timeSpan", "TOTAL"}},
                     {},
                     {{"data", doubleRows({{0, 0}, {1, 2.5}})}}});
}

}  // namespace

odb_Odb& makeSampleModel(const std::string& name, const std::string& path) {
  odb_Odb& odb = Odb(name.c_str(), "A title", "A description", path.c_str());
  addSectionsAndMaterials(odb);
  addParts(odb);
  addAssembly(odb);
  addSteps(odb);
  addResults(odb);
  addUserData(odb);
  addObjects(odb);
  return odb;
}

}  // namespace odbs::test
