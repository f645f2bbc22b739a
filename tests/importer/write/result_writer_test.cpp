// SPDX-License-Identifier: BSD-3-Clause
// Results in the database, read back through the API: what the samples hold, and results that
// come in unusual ways.
#include <odb_API.h>

#include <array>
#include <cmath>

#include "importer/command_line.h"
#include "importer/results/line_axes.h"
#include "tests/importer/deck_files.h"
#include "tests/importer/results/result_text.h"

namespace odbs::importer {
namespace {

using Floats = std::vector<float>;

// Values by element (or -1), node (or -1), point (or -1).
Floats valuesAt(const odb_FieldBulkData& block, int element, int node, int point) {
  for (int i = 0; i < block.length(); ++i) {
    if (element >= 0 && block.elementLabels()[i] != element) continue;
    if (node >= 0 && block.nodeLabels()[i] != node) continue;
    if (point >= 0 && block.integrationPoints()[i] != point) continue;
    return Floats(block.data() + i * block.width(), block.data() + (i + 1) * block.width());
  }
  return {};
}

class ResultWriter : public testing::Test {
 protected:
  ~ResultWriter() override {
    if (odb_ != nullptr && !odb_->isClosed()) odb_->close();
  }

  int run(std::vector<std::string> arguments) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    arguments.insert(arguments.end(), {"-o", files_.file("model.odb")});
    const int status = runImport(arguments);
    out_ = testing::internal::GetCapturedStdout();
    err_ = testing::internal::GetCapturedStderr();
    return status;
  }

  void open(std::vector<std::string> arguments) {
    ASSERT_EQ(run(std::move(arguments)), 0) << err_;
    odb_ = &openOdb(files_.file("model.odb").c_str(), true);
  }

  void openSample(const std::string& name) {
    const std::string base = std::string(ODBS_SOURCE_DIR) + "/samples/" + name + "/" + name;
    open({base + ".inp", "--results", base + ".frd", "--data", base + ".dat"});
  }

  odb_Step& step(int i) { return odb_->steps().stepList().Get(i); }
  odb_FieldOutput field(int s, int frame, const char* name) {
    return step(s).frames()[frame].fieldOutputs()[name];
  }
  // The first block at a position, and at a section point when one is given.
  odb_FieldBulkData block(const odb_FieldOutput& of, odb_Enum::odb_ResultPositionEnum position,
                          int sectionPoint = -1) {
    for (int i = 0; i < of.bulkDataBlocks().size(); ++i) {
      const odb_FieldBulkData& b = of.bulkDataBlocks()[i];
      if (b.position() == position && b.sectionPoint().number() == sectionPoint) return b;
    }
    ADD_FAILURE() << "no such block";
    return of.bulkDataBlocks()[0];
  }
  const odb_HistoryOutput& history(int s, const char* region, const char* output) {
    return step(s).historyRegions()[region].historyOutputs()[output];
  }

  DeckFolder files_;
  odb_Odb* odb_ = nullptr;
  std::string out_, err_;
};

void expectNear(const Floats& found, const Floats& expected) {
  ASSERT_EQ(found.size(), expected.size());
  for (std::size_t i = 0; i < found.size(); ++i) {
    EXPECT_NEAR(found[i], expected[i], 1e-5f * std::fabs(expected[i]) + 1e-9f) << "component " << i;
  }
}

TEST_F(ResultWriter, GivesEveryIncrementAFrameAtItsStepTime) {
  openSample("contact_block");
  ASSERT_EQ(step(0).frames().size(), 4);
  ASSERT_EQ(step(1).frames().size(), 2);
  const float times[] = {0.25f, 0.5f, 0.75f, 1, 0.5f, 1};
  for (int i = 0; i < 6; ++i) {
    const odb_Frame frame = i < 4 ? step(0).frames()[i] : step(1).frames()[i - 4];
    EXPECT_FLOAT_EQ(frame.frameValue(), times[i]);
    EXPECT_EQ(frame.incrementNumber(), i < 4 ? i + 1 : i - 3);
  }
}

// Values at integration points of one truss, and of a beam along x whose axial stress is 10 times
// the place along n2 (z) plus that along n1 (y), each 1 at the outer face.
TEST_F(ResultWriter, TurnsTrussesAndBeamsIntoTheirOwnAxes) {
  const float gauss = std::sqrt(1 / 3.f), ring = std::sqrt((1 + 0.64f) / 2), half = std::sqrt(0.5f);
  using Places = std::vector<std::array<float, 2>>;  // along n1 and n2, station after station
  Places square, wall, pipe;
  for (const float one : {-gauss, gauss}) {
    for (const float two : {gauss, -gauss}) square.insert(square.end(), 2, {one, two});
  }
  Places more = square;
  more.resize(50, {9, 9});
  for (int i = 0; i < 16; ++i) {
    const float angle = static_cast<float>(i % 8 - 2) * std::acos(0.f) / 2;
    pipe.push_back({ring * std::cos(angle), ring * std::sin(angle)});
  }
  const float corners[5][2] = {
      {0.9f, -0.8f}, {0.9f, 0.6f}, {-0.8f, 0.6f}, {-0.8f, -0.8f}, {0.9f, -0.8f}};
  for (int i = 0; i < 32; ++i) {
    const float part = static_cast<float>(i % 4) / 4;
    const float *const a = corners[i % 16 / 4], *const b = corners[i % 16 / 4 + 1];
    wall.push_back({a[0] + part * (b[0] - a[0]), a[1] + part * (b[1] - a[1])});
  }
  const struct {
    const char* section;
    Places places;
    float at;  // the corners' place along n1 and n2
  } cases[] = {{"RECT\n0.1,0.2", square, 1},
               {"RECT\n0.1,0.2", more, 1},
               {"PIPE\n0.1,0.02", pipe, half},
               {"BOX\n0.2,0.1,0.02,0.04,0.04,0.02", wall, 1}};
  const std::string heading =
      " stresses (elem, integ.pnt.,sxx,syy,szz,sxy,sxz,syz) for set E and time  0.1000000E+01\n\n";
  for (const auto& c : cases) {
    const std::string deck =
        "*NODE\n1,0,0,0\n2,1,0,1\n3,1,0,0\n*ELEMENT,TYPE=T3D2,ELSET=T\n1,1,2\n"
        "*ELEMENT,TYPE=B31,ELSET=B\n2,1,3\n*MATERIAL,NAME=M\n*ELASTIC\n1.,0.\n"
        "*SOLID SECTION,ELSET=T,MATERIAL=M\n1.\n*BEAM SECTION,ELSET=B,MATERIAL=M,SECTION=" +
        std::string(c.section) + "\n0.,1.,0.\n*STEP\n*STATIC\n1.,1.\n*END STEP\n";
    std::string rows;
    for (int i = 1; i <= 8; ++i) rows += " 1 " + std::to_string(i) + " 1. 0. 1. 0. 1. 0.\n";
    for (std::size_t i = 0; i < c.places.size(); ++i) {
      rows += " 2 " + std::to_string(i + 1) + " " +
              std::to_string(10 * c.places[i][1] + c.places[i][0]) + " 0. 0. 2. 3. 0.\n";
    }
    open({files_.write("lines.inp", deck), "--data", files_.write("lines.dat", heading + rows)});
    const odb_FieldOutput s = field(0, 0, "S");
    expectNear(valuesAt(block(s, odb_Enum::INTEGRATION_POINT), 1, -1, 2), {2, 0, 0, 0, 0, 0});
    const float axial[kCorners] = {-11, -9, 9, 11};
    for (int corner = 0; corner < kCorners; ++corner) {
      const odb_FieldBulkData beam = block(s, odb_Enum::INTEGRATION_POINT, corner + 1);
      EXPECT_EQ(beam.length(), 2);
      const Floats found = valuesAt(beam, 2, -1, 1);
      EXPECT_NEAR(found[0], c.at * axial[corner], 1e-4f) << c.section;
      expectNear({found[3], found[4]}, {2, 3});
    }
    odb_->close();
  }
}

// One bar in three steps: static, modes, static.
const std::string kDeck =
    "*NODE\n1,0\n2,1\n3,1,1\n4,0,1\n5,0,0,1\n6,1,0,1\n7,1,1,1\n8,0,1,1\n"
    "*ELEMENT,TYPE=C3D8,ELSET=E\n1,1,2,3,4,5,6,7,8\n"
    "*STEP\n*STATIC\n1.,2.\n*END STEP\n*STEP\n*FREQUENCY\n2\n*END STEP\n"
    "*STEP\n*STATIC\n1.,1.\n*END STEP\n";

std::string printed(const std::string& time, const std::string& u) {
  return " displacements (vx,vy,vz) for set N and time  " + time + "\n\n         1  " + u +
         "  0.000000E+00  0.000000E+00\n\n internal energy density (elem, integ.pnt.,energy) for"
         " set E and time  " +
         time + "\n\n         1   1  " + u + "\n\n";
}

TEST_F(ResultWriter, FindsStepsOfPrintedTablesByTimeAndHeading) {
  const std::string modes =
      "     E I G E N V A L U E   O U T P U T\n\n MODE NO    EIGENVALUE\n\n"
      "      1   0.1E+03   0.1E+02   0.7E+01   0.0E+00\n"
      "      2   0.2E+03   0.2E+02   0.9E+01   0.0E+00\n\n"
      "                    E I G E N V A L U E    N U M B E R     1\n\n" +
      printed("0.2000000E+01", "1.000000E+01") +
      "                    E I G E N V A L U E    N U M B E R     2\n\n" +
      printed("0.2000000E+01", "2.000000E+01");
  const std::string dat =
      printed("0.1000000E+01", "1.000000E+00") + printed("0.2000000E+01", "2.000000E+00") + modes +
      printed("0.2500000E+01", "3.000000E+00") + printed("0.3000000E+01", "4.000000E+00");
  open({files_.write("bar.inp", kDeck), "--data", files_.write("bar.dat", dat)});
  const Floats expected[3][2] = {{{1, 1}, {2, 2}}, {{1, 10}, {2, 20}}, {{0.5f, 3}, {1, 4}}};
  for (int s = 0; s < 3; ++s) {
    ASSERT_EQ(step(s).frames().size(), 2) << s;
    const odb_SequenceSequenceFloat& u = history(s, "Node PART-1-1.1", "U1").data();
    ASSERT_EQ(u.size(), 2) << s;
    for (int i = 0; i < 2; ++i) {
      EXPECT_EQ(u[i].engineItems(), expected[s][i]) << s;
      EXPECT_EQ(valuesAt(block(field(s, i, "ENER"), odb_Enum::INTEGRATION_POINT), 1, -1, 1),
                (Floats{expected[s][i][1]}));
    }
  }
  EXPECT_FLOAT_EQ(step(1).frames()[1].frequency(), 9);
}

TEST_F(ResultWriter, TakesOnePeriodOfASteadyStateAsTimes) {
  std::string deck = kDeck;
  const std::string procedure = "*STATIC\n1.,1.\n";
  deck.replace(deck.rfind(procedure), procedure.size(),
               "*STEADY STATE DYNAMICS,HARMONIC=NO\n1.,9.,1,1.,20,0.,5.\n");
  const std::string modes =
      "     E I G E N V A L U E   O U T P U T\n\n MODE NO    EIGENVALUE\n\n"
      "      1   0.1E+03   0.1E+02   0.7E+01   0.0E+00\n\n";
  open({files_.write("bar.inp", deck), "--data",
        files_.write("bar.dat", modes + printed("0.0000000E+00", "1.000000E+00") +
                                    printed("0.2500000E+01", "2.000000E+00"))});
  EXPECT_EQ(step(2).domain(), odb_Enum::TIME);
  EXPECT_FLOAT_EQ(step(2).timePeriod(), 5);
  const odb_SequenceSequenceFloat& u = history(2, "Node PART-1-1.1", "U1").data();
  ASSERT_EQ(u.size(), 2);
  EXPECT_EQ(u[0].engineItems(), (Floats{0, 1}));
  EXPECT_EQ(u[1].engineItems(), (Floats{2.5f, 2}));
  EXPECT_EQ(step(2).frames().size(), 2);
}

TEST_F(ResultWriter, StoresStrainsWithEngineeringShear) {
  const std::string dat =
      " strains (elem, integ.pnt.,exx,eyy,ezz,exy,exz,eyz) for set E and time  0.1000000E+01\n\n"
      "  1  1  1. 2. 3. 4. 5. 6.\n";
  open({files_.write("bar.inp", kDeck), "--data", files_.write("bar.dat", dat)});
  const odb_FieldOutput e = field(0, 0, "E");
  EXPECT_TRUE(e.isEngineeringTensor());
  const odb_FieldBulkData values = block(e, odb_Enum::INTEGRATION_POINT);
  expectNear(valuesAt(values, 1, -1, 1), {1, 2, 3, 8, 10, 12});
  // Of the tensor with half of that shear.
  EXPECT_NEAR(values.mises()[0], std::sqrt(3 + 3 * 77.f), 1e-4f);
}

TEST_F(ResultWriter, KeepsLocalSystemsWithTheirValues) {
  const std::string systems =
      "*ORIENTATION,NAME=OR1\nD\n*DISTRIBUTION,NAME=D\n,1.,0.,0.,0.,1.,0.\n"
      "1,0.,1.,0.,-1.,0.,0.\n*NSET,NSET=LOW\n1,2,3,4\n*TRANSFORM,NSET=LOW\n"
      "0.,1.,0.,-1.,0.,0.\n*STEP\n*STATIC\n1.,1.\n*NODE PRINT,NSET=LOW\nU\n*END STEP\n";
  const std::string dat =
      " displacements (vx,vy,vz) for set N and time  0.1000000E+01\n\n  1  1. 2. 3.\n  5  1. 2. "
      "3.\n"
      "\n stresses (elem, integ.pnt.,sxx,syy,szz,sxy,sxz,syz) for set E and time  0.1000000E+01\n\n"
      "  1  1  1. 2. 3. 4. 5. 6. OR1\n";
  const std::string mesh = kDeck.substr(0, kDeck.find("*STEP"));
  open({files_.write("bar.inp", mesh + systems), "--data", files_.write("bar.dat", dat)});
  const odb_FieldBulkData s = block(field(0, 0, "S"), odb_Enum::INTEGRATION_POINT);
  expectNear(valuesAt(s, 1, -1, 1), {1, 2, 3, 4, 5, 6});
  ASSERT_EQ(s.orientationWidth(), 4);
  // Axes y, -x, z: 90 degrees about z, as rows of the matrix backwards.
  const float half = std::sqrt(0.5f);
  expectNear(Floats(s.localCoordSystem(), s.localCoordSystem() + 4), {0, 0, -half, half});
  const std::string local = history(0, "Node PART-1-1.1", "U1").description().CStr();
  EXPECT_EQ(local, "Spatial displacement in the system of *TRANSFORM");
  const std::string global = history(0, "Node PART-1-1.5", "U1").description().CStr();
  EXPECT_EQ(global, "Spatial displacement");
}

TEST_F(ResultWriter, GivesFacesTurningsAndTotalsHistories) {
  const std::string dat =
      " contact stress (slave element+face,press,tang1,tang2) for all contact elements and time "
      "0.1000000E+01\n\n  1  2  4. 0. 0.\n  1  2  6. 0. 0.\n  1  3  1. 0. 0.\n\n"
      " contact print energy (slave element+face,energy)for all contact elements and time "
      "0.1000000E+01\n\n  1  2  4.\n  1  2  6.\n\n"
      "     E I G E N V A L U E   O U T P U T\n\n NODAL   MODE NO\n DIAMETER\n\n"
      "  3  1  0.1E+03  0.1E+02  0.7E+01  0.0E+00\n  3  2  0.2E+03  0.2E+02  0.9E+01  0.0E+00\n\n"
      "     E I G E N M O D E   T U R N I N G   D I R E C T I O N\n\n"
      "  NODAL   MODE NO\n DIAMETER\n\n    3          1          B\n    3          2          F\n\n"
      "     T O T A L   E F F E C T I V E   M A S S\n\nMODE NO.   X-COMPONENT\n\n"
      "          0.2E-09   0.2E-09   0.2E-09   0.1E-09   0.9E-11   0.9E-10\n\n"
      "     E I G E N V A L U E   O U T P U T\n\n NODAL   MODE NO\n DIAMETER\n\n"
      "  4  1  0.1E+03  0.1E+02  0.8E+01  0.0E+00\n\n"
      "     T O T A L   E F F E C T I V E   M A S S\n\nMODE NO.   X-COMPONENT\n\n"
      "          0.2E-09   0.2E-09   0.2E-09   0.1E-09   0.7E-11   0.9E-10\n";
  open({files_.write("bar.inp", kDeck), "--data", files_.write("bar.dat", dat)});
  EXPECT_EQ(err_.find("left out"), std::string::npos) << err_;
  const struct {
    int step;
    const char *region, *output;
    Floats last;
  } cases[] = {
      {0, "Element PART-1-1.1 face 2", "CPRESS", {1, 5}},
      {0, "Element PART-1-1.1 face 3", "CPRESS", {1, 1}},
      {0, "Element PART-1-1.1 face 2", "CELS", {1, 10}},
      {1, "Assembly ASSEMBLY nodal diameter 3", "TURN", {2, 1}},
      {1, "Assembly ASSEMBLY nodal diameter 3", "EMTOTAL5", {2, 0.9e-11f}},
      {1, "Assembly ASSEMBLY nodal diameter 4", "EIGFREQ", {1, 8}},
      {1, "Assembly ASSEMBLY nodal diameter 4", "EMTOTAL5", {1, 0.7e-11f}},
  };
  for (const auto& c : cases) {
    const odb_SequenceSequenceFloat& data = history(c.step, c.region, c.output).data();
    ASSERT_GT(data.size(), 0) << c.output;
    EXPECT_EQ(data[data.size() - 1].engineItems(), c.last) << c.output;
  }
  EXPECT_EQ(step(1).frames().size(), 0) << "modes without results have no frames";
}

TEST_F(ResultWriter, LeavesOutWhatTheDeckDoesNotHaveAndSaysSo) {
  std::string nodes = blockHead("2", 9, 1), values;
  for (int i = 1; i <= 9; ++i) {
    char line[80];
    std::snprintf(line, sizeof line, " -1%10d%12.5E%12.5E%12.5E\n", i,
                  i == 2 || i == 3 || i == 6 || i == 7 ? 1. : 0.,
                  i % 4 == 3 || i % 4 == 0 ? 1. : 0., i > 4 ? 1. : 0.);
    nodes += line;
    std::snprintf(line, sizeof line, " -1%10d%12.5E%12.5E%12.5E\n", i, 1. * i, 0., 0.);
    values += line;
  }
  const auto result = [&](int increment, int s) {
    char line[80];
    std::snprintf(line, sizeof line, "    1PSTEP%26d%12d%12d\n", 1, increment, s);
    return line + resultHead(increment, 9, 0, 1, "", 1) +
           importer::field("DISP", {"D1", "D2", "D3"}, true) + values + " -3\n";
  };
  const std::string frd = nodes + " -3\n" + result(1, 1) + result(1, 7);
  const std::string dat =
      " temperatures for set N and time  0.1000000E+01\n\n  1  5.0\n  77  6.0\n  2  7.0\n";
  open({files_.write("bar.inp", kDeck), "-q", "--results", files_.write("bar.frd", frd), "--data",
        files_.write("bar.dat", dat)});
  EXPECT_EQ(out_, "");
  EXPECT_NE(err_.find("rows left out, at labels that the deck does not have: temperatures (1)"),
            std::string::npos)
      << err_;
  EXPECT_FLOAT_EQ(history(0, "Node PART-1-1.2", "NT11").data()[0][1], 7);
  EXPECT_NE(err_.find("step 7 (1)"), std::string::npos) << err_;
  EXPECT_NE(err_.find("left out: 1 nodes and 0 elements"), std::string::npos) << err_;
  EXPECT_NE(err_.find("did not finish"), std::string::npos) << err_;
  EXPECT_EQ(block(ResultWriter::field(0, 0, "U"), odb_Enum::NODAL).length(), 8);
}

// The bar of kDeck in two parts; the second one, with other labels, is turned and moved.
TEST_F(ResultWriter, DistributesResultsOverInstancesByLabel) {
  const std::string deck =
      "*PART,NAME=P\n*NODE\n1,0,0,0\n2,1,0,0\n3,0,1,0\n4,0,0,1\n*ELEMENT,TYPE=C3D4\n1,1,2,3,4\n"
      "*END PART\n*PART,NAME=Q\n*NODE\n11,0,0,0\n12,1,0,0\n13,0,1,0\n14,0,0,1\n"
      "*ELEMENT,TYPE=C3D4\n11,11,12,13,14\n*END PART\n*ASSEMBLY,NAME=A\n*INSTANCE,NAME=I,PART=P\n"
      "*END INSTANCE\n*INSTANCE,NAME=J,PART=Q\n5.,0.,0.\n5.,0.,0.,5.,0.,1.,90.\n*END INSTANCE\n"
      "*END ASSEMBLY\n*STEP\n*STATIC\n1.,1.\n*END STEP\n";
  const int places[8][3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1},
                            {5, 0, 0}, {5, 1, 0}, {4, 0, 0}, {5, 0, 1}};
  const auto resultFile = [&](double shift) {
    std::string nodes = blockHead("2", 8, 1), values;
    for (int i = 0; i < 8; ++i) {
      char line[80];
      const int label = i < 4 ? i + 1 : i + 7;
      std::snprintf(line, sizeof line, " -1%10d%12.5E%12.5E%12.5E\n", label,
                    places[i][0] + (i < 4 ? 0 : shift), 1. * places[i][1], 1. * places[i][2]);
      nodes += line;
      std::snprintf(line, sizeof line, " -1%10d%12.5E%12.5E%12.5E\n", label, 1. * label, 0., 0.);
      values += line;
    }
    return nodes + " -3\n    1PSTEP                         1           1           1\n" +
           resultHead(1, 8, 0, 1, "", 1) + importer::field("DISP", {"D1", "D2", "D3"}, true) +
           values + " -3\n 9999\n";
  };
  const std::string path = files_.write("two.inp", deck);
  EXPECT_EQ(run({path, "--results", files_.write("elsewhere.frd", resultFile(3))}), 1);
  EXPECT_NE(err_.find("nodes of instance J are elsewhere"), std::string::npos) << err_;
  const std::string dat = files_.write(
      "two.dat", printed("0.1000000E+01", "2.000000E+00") +
                     " temperatures for set N and time  0.1000000E+01\n\n  13  7.\n\n");
  open({path, "--results", files_.write("two.frd", resultFile(0)), "--data", dat});
  EXPECT_FLOAT_EQ(history(0, "Node I.1", "U1").data()[0][1], 2);
  EXPECT_FLOAT_EQ(history(0, "Node J.13", "NT11").data()[0][1], 7);
  EXPECT_EQ(block(field(0, 0, "ENER"), odb_Enum::INTEGRATION_POINT).length(), 1);
  const odb_FieldOutput u = field(0, 0, "U");
  ASSERT_EQ(u.bulkDataBlocks().size(), 2);
  for (const int i : {0, 1}) {
    const odb_FieldBulkData& b = u.bulkDataBlocks()[i];
    EXPECT_EQ(std::string(b.instance().name().CStr()), i == 0 ? "I" : "J");
    EXPECT_EQ(b.length(), 4);
    expectNear(valuesAt(b, -1, i == 0 ? 3 : 13, -1), {i == 0 ? 3.f : 13.f, 0, 0});
  }
}

TEST_F(ResultWriter, RefusesBrokenAndForeignResults) {
  const std::string deck = files_.write("bar.inp", kDeck);
  const std::string broken = files_.write("broken.frd", "    2C\n -1 x\n");
  EXPECT_EQ(run({deck, "--results", broken}), 1);
  EXPECT_NE(err_.find("broken.frd:2: "), std::string::npos) << err_;
  const std::string other =
      std::string(ODBS_SOURCE_DIR) + "/samples/composite_plate/composite_plate";
  EXPECT_EQ(run({deck, "--results", other + ".frd"}), 1);
  EXPECT_NE(err_.find("only 0 of the 8 nodes"), std::string::npos) << err_;
  EXPECT_EQ(run({deck, "--data", files_.file("absent.dat")}), 1);
  EXPECT_EQ(run({deck, "--results"}), 2);
  const std::string twice = files_.write(
      "twice.inp",
      "*PART,NAME=P\n*NODE\n1,0\n2,1\n*ELEMENT,TYPE=T3D2\n1,1,2\n*END PART\n*ASSEMBLY,NAME=A\n"
      "*INSTANCE,NAME=I,PART=P\n*END INSTANCE\n*INSTANCE,NAME=J,PART=P\n0.,1.,0.\n"
      "*END INSTANCE\n*END ASSEMBLY\n");
  EXPECT_EQ(run({twice, "--results", other + ".frd"}), 1);
  EXPECT_NE(err_.find("several instances"), std::string::npos) << err_;
  EXPECT_FALSE(std::filesystem::exists(files_.file("model.odb")));
}

}  // namespace
}  // namespace odbs::importer
