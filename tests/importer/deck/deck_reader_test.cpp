// SPDX-License-Identifier: BSD-3-Clause
// Reading decks: syntax, mesh, sets, surfaces, sections, materials, structure, steps.
#include <tuple>

#include "tests/importer/deck_files.h"

namespace odbs::importer {
namespace {

using Labels = std::vector<std::int32_t>;

const Scope& mesh(const Deck& deck) {
  return deck.parts.front().content;
}

TEST_F(DeckTest, KeywordsAreReadWhateverTheirCaseBlanksAndLineBreaks) {
  const Deck deck = read(
      "\xEF\xBB\xBF** comment\n*hEading\r\n  A title \r\n more\r\n\r\n"
      "  * Node , Nset = \"Two Words\" \n** comment\n 1 , 1.5D+1, -2.e-1 ,1e-3.\n\n2,,3\n"
      "*element,\n** comment in between\n type=T3D2,\nelset=bars\n7,1,2\n*end\n");
  EXPECT_EQ("A title", deck.title);
  EXPECT_EQ((Labels{1, 2}), mesh(deck).nodes.labels);
  EXPECT_EQ((std::vector<double>{15, -0.2, 0.001, 0, 3, 0}), mesh(deck).nodes.xyz);
  EXPECT_EQ((Labels{1, 2}), nodeSet(deck, "Two Words"));
  EXPECT_EQ((Labels{7}), elementSet(deck, "BARS"));
  EXPECT_EQ(1, deck.ignoredKeywords.at("*END"));
}

TEST_F(DeckTest, UniqueBeginningsOfKeywordsAndParametersAreRead) {
  files_.write("nodes.inc", "*NODE, NS=ALL\n1\n2\n3\n4\n5\n6\n7\n8\n");
  const Deck deck = read(
      "*INCL, INP=nodes.inc\n*ELEM, TY=S4, ELS=E\n1,1,2,3,4\n*NSET, NSET=A, GEN\n1, 8, 1\n"
      "*MATER, NA=M\n*SHELL SEC, ELSET=E, MAT=M\n1.,7\n*MEMBRANE, ELSET=NONE\n"
      "*STEP, PERT\n*STAT\n*END ST\n*CONT, X\n*NODE PR, NSETT=ALL\n*NODE, S=R, NSTE=B\n9\n");
  EXPECT_EQ((Labels{1, 2, 3, 4, 5, 6, 7, 8}), nodeSet(deck, "A"));
  EXPECT_EQ((Labels{1}), elementSet(deck, "E"));
  ASSERT_EQ(1U, mesh(deck).sections.size());
  EXPECT_EQ("M", mesh(deck).sections[0].material);
  EXPECT_EQ(7, mesh(deck).sections[0].nPoints);
  EXPECT_TRUE(deck.steps.at(0).perturbation);
  EXPECT_EQ("*STATIC", deck.steps.at(0).procedure);
  std::string warnings;
  for (const std::string& warning : deck.warnings) {
    warnings += warning.substr(warning.find("model.inp") + 9) + "\n";
  }
  EXPECT_EQ(
      ":13: *CONT is left out: it may stand for CONTACT or CONTOUR INTEGRAL\n"
      ":14: parameter NSETT of *NODE PRINT is unknown and left out\n"
      ":15: parameter NSTE of *NODE is unknown and left out\n"
      ":9: the section is left out: its element set NONE is not defined\n",
      warnings);
}

TEST_F(DeckTest, ParametersAreEvaluatedAndReferencesReplaced) {
  const Deck deck = read(
      "*PARAMETER\n# sizes\nlength = 2*(3 + 4)**2 / 7.  # 14\nn = -7//2 + 7 % 5\n"
      "m = max(-n, 3) + -2**2\nroot=sqrt(length + 2)\nword = 'nset=odd'\nhalf = 1/2\n"
      "*NODE, <word>\n3, < length >, <n>, <root>\n5, <m>, <half>\n*NSET, NSET=<none>\n3\n");
  EXPECT_EQ((std::vector<double>{14, -2, 4, -1, 0.5, 0}), mesh(deck).nodes.xyz);
  EXPECT_EQ((Labels{3, 5}), nodeSet(deck, "ODD"));
  EXPECT_EQ((Labels{3}), nodeSet(deck, "<NONE>"));
  ASSERT_EQ(1U, deck.warnings.size());
  EXPECT_NE(std::string::npos, deck.warnings[0].find(":8: parameter half divides whole numbers"));
}

TEST_F(DeckTest, LabelsAreSortedAndTheLastDefinitionOfANodeStays) {
  const Deck deck = read("*NODE\n9,1\n3,2\n*NODE\n9,5,6,7\n*ELEMENT, TYPE=T3D2\n8,3,9\n4,9,3\n");
  EXPECT_EQ((Labels{4, 8}), mesh(deck).elements.blocks[0].labels);
  EXPECT_EQ((Labels{9, 3, 3, 9}), mesh(deck).elements.blocks[0].nodes);
  EXPECT_EQ((Labels{3, 9}), mesh(deck).nodes.labels);
  EXPECT_EQ((std::vector<double>{2, 0, 0, 5, 6, 7}), mesh(deck).nodes.xyz);
}

TEST_F(DeckTest, NodesInCylindricalCoordinatesAndInAMovedSystem) {
  const Deck deck = read(
      "*NODE, SYSTEM=C\n1,2.,90.,3.\n*SYSTEM\n10,0,0, 10,1,0\n9,0,0\n*NODE\n2,1,2,3\n"
      "*SYSTEM\n*NODE\n3,1,2,3\n");
  const auto& xyz = mesh(deck).nodes.xyz;
  const double expected[] = {0, 2, 3, 8, 1, 3, 1, 2, 3};
  for (std::size_t i = 0; i < 9; ++i) EXPECT_NEAR(expected[i], xyz[i], 1e-12) << i;
}

TEST_F(DeckTest, ElementsContinueUntilTheyHaveTheNodesOfTheirType) {
  std::string nodes = "*NODE\n";
  for (int i = 1; i <= 20; ++i) nodes += std::to_string(i) + "\n";
  const Deck deck =
      read(nodes +
           "*ELEMENT, TYPE=C3D20R\n1,1,2,3,4,5,6,7,8\n9,10,11,12,13,14,15,16,\n17,18,19,20,\n"
           "2,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,\n16,17,18,19,20\n"
           "*ELEMENT, TYPE=USER7\n5,1,2,3,\n4\n6,1\n"
           "*ELEMENT, TYPE=CONN3D2\n9,,3\n10,4,\n*ELEMENT, TYPE=B31\n7,1,2,20\n"
           "*ELEMENT, TYPE=D\n8,0,1,2\n");
  const auto& blocks = mesh(deck).elements.blocks;
  ASSERT_EQ(5U, blocks.size());
  EXPECT_EQ((Labels{1, 2}), blocks[0].labels);
  EXPECT_EQ((std::vector<std::uint32_t>{0, 20, 40}), blocks[0].offsets);
  EXPECT_EQ(20, blocks[0].nodes.back());
  EXPECT_EQ((std::vector<std::uint32_t>{0, 4, 5}), blocks[1].offsets);
  EXPECT_EQ((Labels{3, 3, 4, 4}), blocks[2].nodes) << "grounded connectors repeat their node";
  EXPECT_EQ((Labels{1, 2}), blocks[3].nodes) << "the orientation node of a beam is no corner";
  EXPECT_EQ((Labels{1, 2}), blocks[4].nodes) << "node 0 of a network element is the outside";
}

TEST_F(DeckTest, SetsTakeLabelsRangesAndOtherSets) {
  const Deck deck = read(kCube +
                         "*NSET, NSET=ODD, GENERATE\n1,7,2\n*NSET, NSET=MIX\nodd, 8\n2, 2, 99\n"
                         "*NSET, NSET=FAR, GENERATE\n1, 2147483647, 1\n"
                         "*NSET, NSET=EVERY, GENERATE\n2, 2000000000, 3\n"
                         "*NSET, NSET=RAW, UNSORTED\n8,1,8\n*NSET, NSET=OFE, ELSET=EALL\n"
                         "*NSET, NSET=EMPTY\n*ELSET, ELSET=\"e One\"\nEALL\n");
  EXPECT_EQ((Labels{1, 3, 5, 7}), nodeSet(deck, "ODD"));
  EXPECT_EQ((Labels{1, 2, 3, 5, 7, 8}), nodeSet(deck, "MIX"));
  EXPECT_EQ((Labels{1, 2, 3, 4, 5, 6, 7, 8}), nodeSet(deck, "FAR"));
  EXPECT_EQ((Labels{2, 5, 8}), nodeSet(deck, "EVERY"));
  EXPECT_EQ((Labels{8, 1, 8}), nodeSet(deck, "RAW"));
  EXPECT_EQ((Labels{1, 2, 3, 4, 5, 6, 7, 8}), nodeSet(deck, "OFE"));
  EXPECT_EQ((Labels{1}), elementSet(deck, "e One"));
  EXPECT_NE(nullptr, mesh(deck).nodeSets.find("EMPTY"));
  EXPECT_GT(deck.nUnknownMembers, 0);
}

TEST_F(DeckTest, AnalyticSurfacesHaveAProfileAndALocalSystem) {
  const Deck deck = read(
      "*SURFACE, TYPE=CYLINDER, NAME=ROLL, FILLET RADIUS=0.5\n1,2,3,4,5,6\n7,8,9\n"
      "START, 0., 1.\nCIRCL, 2., 3., 0., 0.\nLINE, 5, 5\n");
  const AnalyticSurface& roll = mesh(deck).analyticSurfaces.at(0);
  EXPECT_EQ("CYLINDER", roll.type);
  EXPECT_EQ(0.5, roll.filletRadius);
  EXPECT_EQ(9, roll.localPoints.at(2)[2]);
  EXPECT_EQ((std::vector<float>{2, 3, 0, 0}), roll.segments.at(1).values);
  EXPECT_EQ(3U, roll.segments.size());
}

TEST_F(DeckTest, WhatStandsOutsideOfPartsIsNoPart) {
  const Deck deck = read(
      "*ORIENTATION, NAME=O\n1,0,0,0,1,0\n*PART, NAME=PART-1\n*NODE\n1\n*END PART\n"
      "*ASSEMBLY, NAME=A\n*INSTANCE, NAME=I, PART=PART-1\n*END INSTANCE\n*END ASSEMBLY\n");
  ASSERT_EQ(2U, deck.parts.size());
  EXPECT_EQ("", deck.parts[0].name);
  EXPECT_EQ(1U, deck.parts[0].content.orientations.count("O"));
  EXPECT_EQ(1U, deck.instances[0].part);
}

TEST_F(DeckTest, OrientationsAreAxesByPointsElementByElementOrGlobal) {
  const Deck deck = read(kCube +
                         "*ORIENTATION, NAME=R\n0,2,0, -1,0,0, 0,0,0\n3, 30.\n"
                         "*ORIENTATION, NAME=C, SYSTEM=CYLINDRICAL\n1,0,0, 1,0,5\n"
                         "*ORIENTATION, NAME=T\nTable-1\n3, 0.\n"
                         "*ELEMENT, TYPE=C3D8\n2,1,2,3,4,5,6,7,8\n3,1,2,3,4,5,6,7,8\n"
                         "*ORIENTATION, NAME=D, SYSTEM=Z RECTANGULAR\nEach\n"
                         "*DISTRIBUTION TABLE, NAME=Points\nCOORD3D, COORD3D\n"
                         "*DISTRIBUTION, NAME=Each, LOCATION=ELEMENT, TABLE=Points\n"
                         ", 0,0,2, 3,0,0\n2, 2,0,0, 0,1,0\nPair, 0,5,0, 0,0,1\n"
                         "*ELSET, ELSET=Pair\n3, 9\n"
                         "*DISTRIBUTION, NAME=Other\n, 7850.\n");
  const auto& orientations = mesh(deck).orientations;
  EXPECT_EQ((std::array<double, 3>{0, 1, 0}), orientations.at("R").axes.xAxis);
  EXPECT_EQ((std::array<double, 3>{0, 0, 1}), orientations.at("R").axes.zAxis);
  EXPECT_EQ(30, orientations.at("R").rotationAngle);
  EXPECT_EQ((std::array<double, 3>{1, 0, 0}), orientations.at("C").axes.origin);
  EXPECT_EQ("CYLINDRICAL", orientations.at("C").system);
  EXPECT_EQ((std::array<double, 3>{1, 0, 0}), orientations.at("T").axes.xAxis);
  const Orientation& each = orientations.at("D");
  const std::array<double, 3> x{1, 0, 0}, y{0, 1, 0}, z{0, 0, 1};
  EXPECT_EQ(std::pair(x, z), std::pair(each.axesOf(1).xAxis, each.axesOf(1).zAxis));
  EXPECT_EQ(std::pair(y, x), std::pair(each.axesOf(2).xAxis, each.axesOf(2).zAxis));
  EXPECT_EQ(std::pair(z, y), std::pair(each.axesOf(3).xAxis, each.axesOf(3).zAxis));
  ASSERT_EQ(1U, deck.warnings.size()) << deck.warnings[1];
  EXPECT_NE(std::string::npos, deck.warnings[0].find("its distribution TABLE-1 is not defined"));
  EXPECT_EQ(1, deck.ignoredKeywords.at("*DISTRIBUTION")) << "the one that no orientation names";
}

TEST_F(DeckTest, SetsOfTheAssemblyGatherNodesOfInstancesAndItsOwn) {
  const Deck deck = read(
      "*PART, NAME=p\n*NODE\n1,1,0,0\n*END PART\n*ASSEMBLY, NAME=Assembly\n"
      "*INSTANCE, NAME=a, PART=P\n*END INSTANCE\n"
      "*NSET, NSET=ALL, INSTANCE=A\n1\n*NODE\n77, 1,2,3\n*NSET, NSET=ALL\na.1, 77\n*END ASSEMBLY\n"
      "*STEP\n*STATIC\n*NSET, NSET=LATE, INSTANCE=A\n1\n*END STEP\n");
  const Set* all = deck.assembly.nodeSets.find("ALL");
  ASSERT_NE(nullptr, all);
  ASSERT_EQ(2U, all->members.size());
  EXPECT_EQ(0, all->members[0].owner);
  EXPECT_EQ((Labels{1}), all->members[0].labels);
  EXPECT_EQ((Labels{77}), all->members[1].labels);
  EXPECT_NE(nullptr, deck.assembly.nodeSets.find("LATE"));
}

TEST_F(DeckTest, StepsKnowProcedureDomainAndPeriod) {
  const std::tuple<const char*, const char*, Domain, double> rows[] = {
      {"*STEP, NLGEOM\n*STATIC\n.1, 2.5\n", "*STATIC", Domain::time, 2.5},
      {"*STEP\n*STATIC\n", "*STATIC", Domain::time, 1},
      {"*STEP, PERTURBATION\n*STATIC\n", "*STATIC", Domain::time, 0},
      {"*STEP\n*STATIC, RIKS\n", "*STATIC, RIKS", Domain::arcLength, 0},
      {"*STEP\n*FREQUENCY, EIGENSOLVER=LANCZOS\n10\n", "*FREQUENCY", Domain::modal, 0},
      {"*STEP\n*BUCKLE\n3\n", "*BUCKLE", Domain::modal, 0},
      {"*STEP\n*STEADYSTATE DYNAMICS, DIRECT\n1,2,3\n", "*STEADY STATE DYNAMICS, DIRECT",
       Domain::frequency, 0},
      {"*STEP\n*DYNAMIC, EXPLICIT\n, .02\n", "*DYNAMIC, EXPLICIT", Domain::time, 0.02},
      {"*STEP\n*HEAT TRANSFER\n1., 30.\n", "*HEAT TRANSFER", Domain::time, 30},
  };
  for (const auto& [text, procedure, domain, period] : rows) {
    const Deck deck = read(kCube + text + "*CLOAD\n1,1,1.\n*END STEP\n");
    ASSERT_EQ(1U, deck.steps.size()) << text;
    EXPECT_EQ(procedure, deck.steps[0].procedure);
    EXPECT_EQ(domain, deck.steps[0].domain) << text;
    EXPECT_DOUBLE_EQ(period, deck.steps[0].timePeriod) << text;
  }
}

TEST_F(DeckTest, IncludesAreFoundBesideTheFileThatNamesThem) {
  files_.write("sub/mesh.inp", "*NODE\n1,0,0,0\n*INCLUDE, INPUT=more.inc\n3,2,0,0\n");
  files_.write("sub/more.inc", "2,1,0,0\n");
  files_.write("rows.txt", "5,1,2\n");
  const Deck deck =
      read("*INCLUDE, INPUT=\"sub/mesh.inp\"\n*ELEMENT, TYPE=T3D2, INPUT=rows.txt\n6,2,3\n");
  EXPECT_EQ((Labels{1, 2, 3}), mesh(deck).nodes.labels);
  ASSERT_EQ(1U, mesh(deck).elements.blocks.size());
  EXPECT_EQ((Labels{5, 6}), mesh(deck).elements.blocks[0].labels);
}

}  // namespace
}  // namespace odbs::importer
