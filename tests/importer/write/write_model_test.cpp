// SPDX-License-Identifier: BSD-3-Clause
// What an imported deck looks like through the API.
#include <cmath>
#include <sstream>
#include <tuple>

#include "base/text.h"
#include "tests/importer/imported.h"

namespace odbs::importer {
namespace {

const std::string kSolidAndPlate =
    "*HEADING\nA cube\n"
    "*NODE, NSET=NALL\n1,0,0,0\n2,1,0,0\n3,1,1,0\n4,0,1,0\n5,0,0,1\n6,1,0,1\n7,1,1,1\n8,0,1,1\n"
    "*ELEMENT, TYPE=C3D8, ELSET=EALL\n1,1,2,3,4,5,6,7,8\n"
    "*ELEMENT, TYPE=S4R, ELSET=PLATE\n3,5,6,7,8\n2,1,2,3,4\n"
    "*MATERIAL, NAME=M\n*DENSITY\n2.5\n*ELASTIC\n100., .3\n";

TEST_F(ImportTest, FlatDecksAreOnePartWithOneInstance) {
  odb_Odb& odb = import(kSolidAndPlate);
  EXPECT_STREQ("A cube", odb.analysisTitle().CStr());
  EXPECT_STREQ("ASSEMBLY", odb.rootAssembly().name().CStr());
  EXPECT_EQ(1, odb.parts().size());
  ASSERT_EQ(1, odb.rootAssembly().instances().size());
  odb_Instance& cube = instance("PART-1-1");
  EXPECT_EQ(odb_Enum::THREE_D, cube.embeddedSpace());
  EXPECT_EQ((Ints{1, 2, 3, 4, 5, 6, 7, 8}), connectivityOf(cube.getElementFromLabel(1)));
  EXPECT_STREQ("S4R", cube.getElementFromLabel(2).type().CStr());
  EXPECT_EQ((Ints{2, 3}), labelsOf(cube.elementSets()["PLATE"].elements()));
  EXPECT_EQ(8, cube.nodeSets()["NALL"].size());
  EXPECT_TRUE(odb.rootAssembly().nodeSets().isMember(" ALL NODES"));
}

TEST_F(ImportTest, EverySectionKeywordGivesItsSectionClassAndCategory) {
  struct Row {
    const char *keyword, *category, *type;  // without a type: a category alone
  };
  const Row rows[] = {
      {"*SOLID SECTION, ELSET=EALL, MATERIAL=M\n2.", "solid", "odb_HomogeneousSolidSection"},
      {"*SOLIDSECTION, ELSET=EALL, COMPOSITE\n1,1,M", "solid", "odb_CompositeSolidSection"},
      {"*ELEMENT, TYPE=T3D2, ELSET=EALL\n1,1,2\n*SOLID SECTION, ELSET=EALL, MATERIAL=M", "truss",
       "odb_TrussSection"},
      {"*SHELL SECTION, ELSET=EALL, MATERIAL=M\n.1,7", "shell", "odb_HomogeneousShellSection"},
      {"*SHELL SECTION, ELSET=EALL, COMPOSITE\n1,,M", "shell", "odb_CompositeShellSection"},
      {"*SHELL GENERAL SECTION, ELSET=EALL\n1,2", "shell", "odb_ShellSection"},
      {"*MEMBRANE SECTION, ELSET=EALL, MATERIAL=M\n1", "membrane", "odb_MembraneSection"},
      {"*BEAM SECTION, ELSET=EALL, MATERIAL=M, SECTION=RECT\n1,2\n0,1,0", "beam",
       "odb_BeamSection"},
      {"*GASKET SECTION, ELSET=EALL, BEHAVIOR=M", "gasket", "odb_GasketSection"},
      {"*COHESIVE SECTION, ELSET=EALL, MATERIAL=M", "cohesive", "odb_CohesiveSection"},
      {"*MASS, ELSET=EALL\n2.5", "point", "odb_PointSection"},
      {"*SPRING, ELSET=EALL\n\n10.", "spring", ""},
  };
  for (const Row& row : rows) {
    const bool brings = startsWith(row.keyword, "*ELEMENT");
    odb_Odb& odb = import((brings ? "*NODE\n1\n2,1\n*MATERIAL, NAME=M\n" : kSolidAndPlate) +
                          std::string(row.keyword) + "\n");
    const odb_Element element = instance("PART-1-1").getElementFromLabel(1);
    EXPECT_EQ(row.category + std::string(" < elset = EALL >"),
              element.sectionCategory().name().CStr());
    odb_SectionApi api;
    odb.extendApi(odb_Enum::odb_SECTION, api);
    ASSERT_EQ(row.type[0] != 0, api.sections().isMember("Section-EALL")) << row.keyword;
    if (row.type[0] == 0) continue;
    const odb_Section& section = api.sections()["Section-EALL"];
    EXPECT_STREQ(row.type, section.subTypeIdentifier().engineName().CStr());
    odb_Set region = instance("PART-1-1").sectionAssignments(0).region();
    EXPECT_EQ((Ints{1}), labelsOf(region.elements())) << row.keyword;
  }
}

TEST_F(ImportTest, CompositeShellsKeepTheirLayersAndPoints) {
  odb_Odb& odb = import(kSolidAndPlate +
                        "*SHELL SECTION, ELSET=PLATE, COMPOSITE\n1.,,m,45.,ply-1\n3.,2,M,ORI,CORE\n"
                        "*SHELL SECTION, ELSET=EALL, COMPOSITE, SYMMETRIC\n1.,5,M\n2.,,M\n");
  odb_SectionApi api;
  odb.extendApi(odb_Enum::odb_SECTION, api);
  const auto& shell = odb_dynamicCast(odb_CompositeShellSection, api.sections()["Section-PLATE"]);
  ASSERT_EQ(2, shell.layup().size());
  EXPECT_EQ(1, shell.layup(0).thickness());
  EXPECT_EQ(45, shell.layup(0).orientAngle().getDouble());
  EXPECT_STREQ("PLY-1", shell.layup(0).plyName().CStr());
  EXPECT_STREQ("ORI", shell.layup(1).orientAngle().getString().CStr());
  EXPECT_STREQ("M", shell.layup(1).material().CStr());
  const auto& points = odb.sectionCategories()["shell < elset = PLATE >"].sectionPoints();
  ASSERT_EQ(5, points.size()) << "three by default";
  EXPECT_STREQ("fraction = -0.500000, Layer = 1", points[2].description().CStr());
  EXPECT_STREQ("fraction = -0.500000, Layer = 2", points[3].description().CStr());
  EXPECT_STREQ("fraction = 1.000000, Layer = 2", points[4].description().CStr());
  EXPECT_EQ(16, odb.sectionCategories()["shell < elset = EALL >"].sectionPoints().size());
}

TEST_F(ImportTest, MaterialsArriveWithAllTheirTables) {
  odb_Odb& odb =
      import(kSolidAndPlate +
             "*ELASTIC\n210000., .3, 20.\n200000., .3, 400.\n"
             "*MATERIAL, NAME=B\n*ELASTIC, TYPE=ENGINEERING CONSTANTS\n1,2,3,4,5,6,7,8\n9\n"
             "*FAIL STRESS\n1,2,3,4,5,.5,7\n*FAIL STRAIN\n1,2,3,4,5\n"
             "*MATERIAL, NAME=AIR\n*ACOUSTIC MEDIUM\n1.4E5\n*MATERIAL, NAME=C\n"
             "*ELASTIC, TYPE=ANISO\n1,2,3,4,5,6,7,8\n9,10,11,12,13,14,15,16\n"
             "17,18,19,20,21,100.\n");
  odb_MaterialApi api;
  odb.extendApi(odb_Enum::odb_MATERIAL, api);
  ASSERT_EQ(4, api.materials().size());
  const odb_Material& m = api.materials()["M"];
  EXPECT_EQ(2.5, m.density().table()[0][0]);
  EXPECT_FALSE(m.acousticMedium().hasValue());
  EXPECT_TRUE(api.materials()["AIR"].acousticMedium().hasValue());
  EXPECT_FALSE(api.materials()["AIR"].elastic().hasValue());
  for (const auto& [name, type, nRows, nColumns, last] :
       {std::tuple{"M", "ISOTROPIC", 2, 3, 400.}, std::tuple{"C", "ANISOTROPIC", 1, 22, 100.},
        std::tuple{"B", "ENGINEERING_CONSTANTS", 1, 9, 9.}}) {
    const odb_Elastic& elastic = api.materials()[name].elastic();
    EXPECT_STREQ(type, elastic.type().CStr());
    ASSERT_EQ(nRows, elastic.table().size()) << name;
    ASSERT_EQ(nColumns, elastic.table()[0].size()) << name;
    EXPECT_EQ(last, elastic.table()[nRows - 1][nColumns - 1]) << name;
    EXPECT_EQ(nColumns != 9, elastic.temperatureDependency()) << name;
  }
  EXPECT_EQ(7, api.materials()["B"].elastic().failStress().table()[0][6]);
  EXPECT_EQ(5, api.materials()["B"].elastic().failStrain().table()[0][4]);
}

TEST_F(ImportTest, ElementsWithAxesOfTheirOwnGetMaterialOrientations) {
  import(kSolidAndPlate +
         "*DISTRIBUTION, NAME=D\n, 1,0,0, 0,1,0\n3, 0,1,0, -1,0,0\n*ORIENTATION, NAME=O\nD\n"
         "*SHELL SECTION, ELSET=PLATE, MATERIAL=M, ORIENTATION=O\n.1\n");
  const auto& orientations = instance("PART-1-1").materialOrientations();
  ASSERT_EQ(2, orientations.size());
  EXPECT_EQ((Ints{2}), labelsOf(odb_Set(orientations[0].region()).elements()));
  EXPECT_NEAR(1, orientations[0].csys().xAxis()[0], 1e-6);
  EXPECT_EQ((Ints{3}), labelsOf(odb_Set(orientations[1].region()).elements()));
  EXPECT_STREQ("_PLATE_O-2", orientations[1].region().name().CStr());
  EXPECT_NEAR(1, orientations[1].csys().xAxis()[1], 1e-6);
}

TEST_F(ImportTest, SurfacesNameFacesBySolidOrShell) {
  import(kSolidAndPlate +
         "*SURFACE, NAME=A\nEALL, S4\nPLATE, SNEG\n1, s3\n*SURFACE, NAME=N, TYPE=NODE\nNALL, 1.\n"
         "*SURFACE, NAME=FREE\nEALL\n*SURFACE, NAME=BOTH, COMBINE=UNION\nA\n");
  odb_Instance& cube = instance("PART-1-1");
  for (const char* name : {"A", "BOTH"}) {
    const odb_Set a = cube.surfaces()[name];
    EXPECT_EQ((Ints{1, 2, 3, 1}), labelsOf(a.elements())) << name;
    EXPECT_EQ((Ints{odb_Enum::FACE4, odb_Enum::SIDE2, odb_Enum::SIDE2, odb_Enum::FACE3}),
              facesOf(a));
  }
  EXPECT_EQ(8, cube.surfaces()["N"].nodes().size());
  EXPECT_EQ(6, cube.surfaces()["FREE"].faces().size());
}

TEST_F(ImportTest, StepsStandInOrderWithNamesAndDescriptions) {
  EXPECT_EQ(1, import(kSolidAndPlate).jobData().analysisCode());
  odb_Odb& odb = import(kSolidAndPlate +
                        "*STEP, NAME=Pull-It, NLGEOM=YES\nfirst\nsecond\n*STATIC\n.1, 2.\n"
                        "*END STEP\n*STEP\n*DYNAMIC, EXPLICIT\n,1.\n*END STEP\n");
  EXPECT_EQ(2, odb.jobData().analysisCode()) << "explicit";
  odb_StepRepository steps = odb.steps();
  ASSERT_EQ(2, steps.size());
  const odb_Step& pull = steps.stepList().Get(0);
  EXPECT_STREQ("Pull-It", pull.name().CStr());
  EXPECT_STREQ("first second", pull.description().CStr());
  EXPECT_STREQ("*STATIC", pull.procedure().CStr());
  EXPECT_TRUE(pull.nlgeom());
  EXPECT_EQ(2, pull.timePeriod());
  EXPECT_EQ(0, pull.frames().size());
  EXPECT_TRUE(steps.isMember("Step-2"));
}

TEST_F(ImportTest, ElementsCarryTheCategoryOfTheirSection) {
  import(kSolidAndPlate +
         "*SOLID SECTION, ELSET=EALL, MATERIAL=M\n*SHELL SECTION, ELSET=PLATE, MATERIAL=M\n.5\n");
  odb_Instance& cube = instance("PART-1-1");
  EXPECT_STREQ("solid < elset = EALL >",
               cube.getElementFromLabel(1).sectionCategory().name().CStr());
  const odb_SectionCategory category = cube.getElementFromLabel(3).sectionCategory();
  EXPECT_STREQ("shell < elset = PLATE >", category.name().CStr());
  ASSERT_EQ(5, category.sectionPoints().size());
  EXPECT_EQ(1, category.sectionPoints(0).number());
  EXPECT_STREQ("fraction = -1.000000, Layer = 1", category.sectionPoints(0).description().CStr());
  EXPECT_STREQ("fraction = 0.000000, Layer = 1", category.sectionPoints(2).description().CStr());
}

TEST_F(ImportTest, FreeSurfacesLeaveFacesBetweenElementsOut) {
  import(
      "*NODE\n1,0,0\n2,1,0\n3,1,1\n4,0,1\n5,0,0,1\n6,1,0,1\n7,1,1,1\n8,0,1,1\n9,0,0,2\n10,1,0,2\n"
      "11,1,1,2\n12,0,1,2\n*ELEMENT, TYPE=C3D8, ELSET=E\n1,1,2,3,4,5,6,7,8\n"
      "2,5,6,7,8,9,10,11,12\n*SURFACE, NAME=S\nE\n");
  const odb_Set s = instance("PART-1-1").surfaces()["S"];
  EXPECT_EQ((Ints{1, 1, 1, 1, 1, 2, 2, 2, 2, 2}), labelsOf(s.elements()));
  const Ints faces = facesOf(s);
  EXPECT_EQ(0, std::count(faces.begin(), faces.begin() + 5, odb_Enum::FACE2));
  EXPECT_EQ(0, std::count(faces.begin() + 5, faces.end(), odb_Enum::FACE1));
}

TEST_F(ImportTest, PlaneAndAxisymmetricDecksHaveTheirSpace) {
  const std::string nodes = "*NODE\n1,0,0\n2,1,0\n3,1,1\n4,0,1\n";
  for (const auto& [type, space] :
       {std::pair{"CPS4", odb_Enum::TWO_D_PLANAR}, std::pair{"CPE4R", odb_Enum::TWO_D_PLANAR},
        std::pair{"CAX4", odb_Enum::AXISYMMETRIC}, std::pair{"S4", odb_Enum::THREE_D}}) {
    import(nodes + "*ELEMENT, TYPE=" + type + "\n1,1,2,3,4\n");
    EXPECT_EQ(space, instance("PART-1-1").embeddedSpace()) << type;
  }
  import(nodes + "5,0,0,1\n*ELEMENT, TYPE=CPS4\n1,1,2,3,4\n");
  EXPECT_EQ(odb_Enum::THREE_D, instance("PART-1-1").embeddedSpace()) << "z is not lost";
}

TEST_F(ImportTest, SectionsOfTheSameSetNameInTwoPartsAreToldApart) {
  const auto part = [](const char* name, const char* thickness) {
    return std::string("*PART, NAME=") + name +
           "\n*NODE\n1,0,0\n2,1,0\n3,1,1\n4,0,1\n*ELEMENT, TYPE=S4, ELSET=E\n1,1,2,3,4\n"
           "*SHELL SECTION, ELSET=E, MATERIAL=M\n" +
           thickness + "\n*END PART\n";
  };
  odb_Odb& odb = import(part("P", "1.") + part("Q", "2.") + part("R", "1.") +
                        "*ASSEMBLY, NAME=A\n*INSTANCE, NAME=P-1, PART=P\n*END INSTANCE\n"
                        "*INSTANCE, NAME=Q-1, PART=Q\n*END INSTANCE\n"
                        "*INSTANCE, NAME=R-1, PART=R\n*END INSTANCE\n*END ASSEMBLY\n"
                        "*MATERIAL, NAME=M\n*ELASTIC\n1,.3\n");
  EXPECT_STREQ("A", odb.rootAssembly().name().CStr());
  const auto sectionOf = [&](const char* name) {
    return std::string(instance(name).sectionAssignments(0).sectionName().CStr());
  };
  EXPECT_EQ("Section-E", sectionOf("P-1"));
  EXPECT_EQ("Section-Q_E", sectionOf("Q-1"));
  EXPECT_EQ("Section-E", sectionOf("R-1")) << "equal sections are one";
  EXPECT_STREQ("shell < elset = Q_E >",
               instance("Q-1").getElementFromLabel(1).sectionCategory().name().CStr());
}

TEST_F(ImportTest, InstancesMayBringTheirOwnMesh) {
  import(
      "*PART, NAME=P\n*END PART\n*ASSEMBLY, NAME=A\n"
      "*INSTANCE, NAME=P-1, PART=P\n0,0,5\n*NODE\n1,1,0,0\n2,2,0,0\n*ELEMENT, TYPE=T3D2, "
      "ELSET=E\n1,1,2\n"
      "*SOLID SECTION, ELSET=E, MATERIAL=M\n*END INSTANCE\n"
      "*INSTANCE, NAME=P-2, PART=P\n*NODE\n1,7,0,0\n*END INSTANCE\n"
      "*NSET, NSET=N, INSTANCE=P-1\n2\n*END ASSEMBLY\n*MATERIAL, NAME=M\n*ELASTIC\n1,.3\n");
  expectAt(instance("P-1"), 2, 2, 0, 5);
  expectAt(instance("P-2"), 1, 7, 0, 0);
  EXPECT_EQ(1, instance("P-1").sectionAssignments().size());
  EXPECT_EQ((Ints{2}), labelsOf(odb_->rootAssembly().nodeSets()["N"].nodes("P-1")));
}

TEST_F(ImportTest, TheAssemblyHasMassesGroundedConnectorsAndSurfacesOfItsOwn) {
  odb_Odb& odb = import(
      "*Part, name=\"Part one\"\n*Node\n1,0.,0.\n2,1.,0.\n3,1.,1.\n4,0.,1.\n"
      "*Element, type=CPS4R\n1,1,2,3,4\n*End Part\n*Assembly, name=Assembly\n"
      "*Instance, name=Part-1-1, part=\"Part one\"\n*End Instance\n"
      "*Node\n1,5.,0.,0.\n*Nset, nset=RP, internal\n1,\n"
      "*Element, type=MASS, elset=Heavy\n1, 1\n*Mass, elset=Heavy\n0.5,\n"
      "*Element, type=CONN2D2, elset=Wire\n2, , Part-1-1.2\n*Connector Section, "
      "elset=Wire\nAxial,\n"
      "*Elset, elset=_Side_S2, internal, instance=Part-1-1\n1,\n"
      "*Surface, type=ELEMENT, name=Side\n_Side_S2, S2\n*Rigid Body, ref node=RP, pin nset=RP\n"
      "*End Assembly\n");
  odb_Assembly& assembly = odb.rootAssembly();
  ASSERT_EQ(2, assembly.sectionAssignments().size());
  odb_SectionApi api;
  odb.extendApi(odb_Enum::odb_SECTION, api);
  EXPECT_EQ(0.5, odb_dynamicCast(odb_PointSection, api.sections()["Section-HEAVY"]).mass());
  const odb_Set wire = assembly.elementSets()["WIRE"];
  EXPECT_EQ((Ints{2, 2}), connectivityOf(wire.elements(0)));
  const odb_Set side = assembly.surfaces()["SIDE"];
  EXPECT_EQ((Ints{1}), labelsOf(side.elements("PART-1-1")));
  EXPECT_EQ(odb_Enum::FACE2, side.faces(0));
  ASSERT_EQ(1, assembly.rigidBodies().size());
  EXPECT_FALSE(assembly.rigidBodies()[0].hasAnalyticSurface());
  EXPECT_STREQ("RP", assembly.rigidBodies()[0].pinNodes().name().CStr());
}

TEST_F(ImportTest, ConstraintsContactAndAmplitudesArriveInTheirClasses) {
  odb_Odb& odb = import(
      kSolidAndPlate +
      "*SURFACE, NAME=LOW\nPLATE, SPOS\n*SURFACE, NAME=HIGH\nEALL, S2\n"
      "*TIE, NAME=GLUE, ADJUST=NO, POSITION TOLERANCE=.25, TYPE=SURFACE TO SURFACE\nLOW, HIGH\n"
      "*COUPLING, CONSTRAINT NAME=HUB, REF NODE=3, SURFACE=LOW\n*KINEMATIC\n1, 2\n6\n"
      "*COUPLING, REF NODE=NALL, SURFACE=LOW\n*DISTRIBUTING, COUPLING=STRUCTURAL\n"
      "*MPC\nBEAM, 1, 2\n*SURFACE INTERACTION, NAME=RUB\n*FRICTION, TAUMAX=7.\n.3, , 1.\n.2, , 2.\n"
      "*SURFACE INTERACTION, NAME=STICK\n*FRICTION\n.4, 5000.\n"
      "*CONTACT PAIR, INTERACTION=RUB, SMALL SLIDING, ADJUST=0.5\nLOW, HIGH\n"
      "*AMPLITUDE, NAME=RAMP, TIME=TOTAL TIME\n0,0,1,.5,\n2,1\n"
      "*AMPLITUDE, NAME=EVEN, DEFINITION=EQUALLY SPACED, FIXED INTERVAL=.5\n1,2\n");
  std::string found;
  const auto add = [&](const auto&... values) {
    std::ostringstream out;
    ((out << values << ' '), ...);
    found += out.str() + '\n';
  };
  const auto name = [](const odb_Set& set) { return set.name().CStr(); };
  const auto& tie = odb_dynamicCast(odb_Tie, odb.constraints()["GLUE"]);
  add("tie", name(tie.slave()), name(tie.master()), tie.adjust(), tie.tieRotations(),
      tie.positionToleranceMethod().CStr(), tie.positionTolerance(),
      tie.constraintEnforcement().CStr());
  for (const char* key : {"HUB", "COUPLING"}) {
    const auto& c = odb_dynamicCast(odb_Coupling, odb.constraints()[key]);
    add(c.couplingType().CStr(), name(c.refPoint()), labelsOf(c.refPoint().nodes())[0],
        name(c.surface()), c.u1(), c.u2(), c.u3(), c.ur1(), c.ur2(), c.ur3());
  }
  const auto& mpc = odb_dynamicCast(odb_MPC, odb.constraints()["MPC"]);
  add(mpc.mpcType().CStr(), name(mpc.surface()), labelsOf(mpc.controlPoint().nodes())[0]);
  for (const char* key : {"RUB", "STICK"}) {
    const auto& property = odb_dynamicCast(odb_ContactProperty, odb.interactionProperties()[key]);
    const odb_TangentialBehavior friction = property.tangentialBehavior();
    const auto& table = friction.table();
    add(friction.formulation().CStr(), friction.pressureDependency(), friction.slipRateDependency(),
        friction.shearStressLimit(), friction.elasticSlipStiffness(), table[table.size() - 1][0]);
  }
  const auto& pair = odb_dynamicCast(odb_SurfaceToSurfaceContactStd, odb.interactions()["INT"]);
  add(pair.interactionProperty().CStr(), pair.sliding().CStr(), pair.adjustMethod().CStr(),
      pair.adjustTolerance(), name(pair.slave()), name(pair.master()));
  for (const char* key : {"RAMP", "EVEN"}) {
    const auto& amplitude = odb_dynamicCast(odb_TabularAmplitude, odb.amplitudes()[key]);
    const auto& data = amplitude.data();
    add(amplitude.timeSpan().CStr(), data.size(), data[1][0], data[1][1]);
  }
  EXPECT_EQ(
      "tie LOW HIGH 0 1 SPECIFIED 0.25 SURFACE_TO_SURFACE \n"
      "KINEMATIC REFERENCE_NODE_3 3 LOW 1 1 0 0 0 1 \n"
      "DISTRIBUTING_STRUCTURAL NALL 1 LOW 1 1 1 1 1 1 \nBEAM REFERENCE_NODE_1 2 \n"
      "PENALTY 1 0 7 0 0.2 \nPENALTY 0 0 0 5000 0.4 \nRUB SMALL TOLERANCE 0.5 LOW HIGH \n"
      "TOTAL 3 1 0.5 \nSTEP 2 0.5 2 \n",
      found);
}

class SampleTest : public ImportTest {
 protected:
  void SetUp() override {
    importFile(std::string(ODBS_SOURCE_DIR) + "/samples/hinged_arms/hinged_arms.inp");
  }
};

TEST_F(SampleTest, InstancesStandWhereTheDeckPutsThem) {
  const double c = std::cos(std::acos(-1.0) / 6), s = 0.5;
  expectAt(instance("ARM-1"), 115, 40, 10, 5);
  expectAt(instance("ARM-2"), 5, 50 + 50 * c, 50 * s, 0);
  expectAt(instance("ARM-2"), 111, 50 + 10 * c - 10 * s, 10 * s + 10 * c, 5);
  expectAt(instance("ROLLER-1"), 1, 90, -10, 0);
}

TEST_F(SampleTest, SetsAndAssignmentsReachTheInstances) {
  for (const char* name : {"ARM-1", "ARM-2"}) {
    odb_Instance& arm = instance(name);
    EXPECT_EQ((Ints{1, 11, 101, 111}), labelsOf(arm.nodeSets()["LEFT"].nodes()));
    ASSERT_EQ(3, arm.sectionAssignments().size());
    odb_Set skin = arm.sectionAssignments(2).region();
    EXPECT_EQ((Ints{11, 12, 13, 14}), labelsOf(skin.elements()));
    EXPECT_STREQ("Section-SKIN", arm.sectionAssignments(2).sectionName().CStr());
    EXPECT_STREQ("truss < elset = ROD >",
                 arm.getElementFromLabel(21).sectionCategory().name().CStr());
  }
  const odb_Set bodies = odb_->rootAssembly().elementSets()["BODIES"];
  EXPECT_EQ((Ints{1, 2, 3, 4}), labelsOf(bodies.elements("ARM-2")));
  EXPECT_EQ((Ints{1, 11, 101, 111}),
            labelsOf(odb_->rootAssembly().nodeSets()["CLAMPED"].nodes("ARM-1")));
}

TEST_F(SampleTest, TheHingeIsAnElementOfTheAssembly) {
  odb_Assembly& assembly = odb_->rootAssembly();
  const odb_Element hinge = assembly.elements(0);
  EXPECT_EQ((Ints{5, 1}), connectivityOf(hinge));
  ASSERT_EQ(2, hinge.instanceNames().size());
  EXPECT_STREQ("ARM-2", hinge.instanceNames()[1].CStr());
  EXPECT_STREQ("connector < elset = HINGE >", hinge.sectionCategory().name().CStr());
  ASSERT_EQ(1, assembly.sectionAssignments().size());
  EXPECT_STREQ("HINGE", assembly.sectionAssignments(0).sectionName().CStr());
  ASSERT_EQ(1, assembly.connectorOrientations().size());
  const odb_ConnectorOrientation& axes = assembly.connectorOrientations()[0];
  EXPECT_STREQ("HINGE", axes.region().name().CStr());
  EXPECT_STREQ("HINGE-AXES", axes.csys1().name().CStr());
  EXPECT_NEAR(1, axes.csys2().xAxis()[2], 1e-6);
}

TEST_F(SampleTest, TheRollerIsAnAnalyticRigidBody) {
  ASSERT_EQ(1, odb_->rootAssembly().rigidBodies().size());
  const odb_RigidBody& body = odb_->rootAssembly().rigidBodies()[0];
  ASSERT_TRUE(instance("ROLLER-1").hasAnalyticSurface() && body.hasAnalyticSurface());
  const odb_AnalyticSurface& mantle = body.analyticSurface();
  EXPECT_STREQ("MANTLE", mantle.name().CStr());
  EXPECT_STREQ("CYLINDER", mantle.type().CStr());
  EXPECT_EQ(3, mantle.segments().size());
  EXPECT_EQ(3, mantle.localCoordData().size());
  EXPECT_EQ((Ints{1}), labelsOf(body.referenceNodeSet().nodes()));
}

}  // namespace
}  // namespace odbs::importer
