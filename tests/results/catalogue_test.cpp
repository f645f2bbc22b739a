// SPDX-License-Identifier: BSD-3-Clause
// The result catalogue, record by record.
#include "tests/results/result_fixture.h"

namespace odbs::tests {
namespace {

std::string stepRecord(int number, double totalTime, const char* name) {
  return Payload(12).i32(number).f64(totalTime).text(std::string(name) + "\x01" + "about");
}

std::string procedureRecord(const char* text) {
  return Payload(13).text(text);
}

std::string fieldRecord(const char* name, const char* description) {
  return Payload(14).text(name).text(description);
}

// A frame record of a time-domain frame.
std::string frameRecord(int index, double value, const std::vector<int>& classification,
                        const char* description, int complex = 0) {
  Payload payload(15);
  payload.i32(index).i32(0).i32(0).f64(value).f64(0).i32(complex);
  for (const int number : classification) payload.i32(number);
  return payload.text(description);
}

std::vector<std::string> fieldNames(const Records& records) {
  std::vector<std::string> names;
  for (const std::string& record : withTag(records, 14)) {
    names.push_back(record.substr(5, static_cast<unsigned char>(record[1])));
  }
  return names;
}

using Names = std::vector<std::string>;

class Catalogue : public ResultTest {};

TEST_F(Catalogue, NodalEntriesTellScalarsFromVectors) {
  odb_Frame frame = step("Step-1").Frame(1, 0.5F, "first");
  nodalScalar(frame, "NT11");
  odb_FieldOutput& u = frame.FieldOutput("U", "Displacement", odb_Enum::VECTOR);
  u.addData(odb_Enum::NODAL, instance(), ints({1}), floatRows({{1, 2, 3}}));
  stress(frame);
  EXPECT_EQ((Records{title("A title"), analysisKind(-1), stepRecord(1, 0, "Step-1"),
                     procedureRecord("*STATIC"), fieldRecord("NT11", "a scalar"),
                     frameRecord(0, 0.5, {1}, "first"), stepRecord(1, 0, "Step-1"),
                     procedureRecord("*STATIC"), fieldRecord("U", "Displacement"),
                     frameRecord(0, 0.5, {0}, "first")}),
            ask("fd "));
}

TEST_F(Catalogue, ElementEntriesCarryLabelsAndMasks) {
  odb_Frame frame = step("Step-1").Frame(1, 0.5F, "first");
  stress(frame);
  Payload components(16);
  for (const char* label : {"S11", "S22", "S33", "S12", "S13", "S23"}) components.text(label);
  const Records entry{stepRecord(1, 0, "Step-1"), procedureRecord("*STATIC"),
                      fieldRecord("S", "Stress"), components,
                      frameRecord(0, 0.5, {4, 1 << 2 | 1 << 4, 2, 0}, "first")};
  Records expected{title("A title"), analysisKind(-1)};
  expected.insert(expected.end(), entry.begin(), entry.end());
  EXPECT_EQ(expected, ask("fs "));
  EXPECT_EQ(expected, ask("fv "));
}

TEST_F(Catalogue, TheVectorListingLeavesScalarsOut) {
  odb_Frame frame = step("Step-1").Frame(1, 0);
  odb_FieldOutput& energy = frame.FieldOutput("ELSE", "Energy", odb_Enum::SCALAR);
  energy.addData(odb_Enum::WHOLE_ELEMENT, instance(), ints({10}), floatRows({{7}}));
  EXPECT_EQ(Names{"ELSE"}, fieldNames(ask("fs ")));
  EXPECT_EQ(Names{}, fieldNames(ask("fv ")));
  EXPECT_EQ(Names{}, fieldNames(ask("fd ")));
}

TEST_F(Catalogue, TheLastFrameStandsForAllAndTheFirstAddsWhatItLacks) {
  odb_Step& only = step("Step-1");
  odb_Frame first = only.Frame(0, 0);
  nodalScalar(first, "A");
  odb_Frame middle = only.Frame(1, 0.5F);
  nodalScalar(middle, "M");
  odb_Frame last = only.Frame(2, 1);
  nodalScalar(last, "B");
  EXPECT_EQ((Names{"B", "A", "B", "A", "B", "A"}), fieldNames(ask("fd ")));
  EXPECT_EQ((Names{"A", "M", "B"}), fieldNames(ask("fD ")));
  EXPECT_EQ((Names{"A", "M", "B"}), fieldNames(ask("fD "))) << "from the memo";
}

TEST_F(Catalogue, StepsCountFromOneAndEmptyOnesListNothing) {
  step("A-empty");
  odb_Frame frame = step("B").Frame(1, 1);
  nodalScalar(frame, "T");
  const Records records = ask("fd ");
  ASSERT_EQ(6u, records.size());
  EXPECT_EQ(stepRecord(2, 1, "B"), records[2]);
}

TEST_F(Catalogue, ModalFramesCarryModeAndFrequency) {
  odb_Frame frame = step("Modes", odb_Enum::MODAL, "*FREQUENCY").Frame(3, 42.5F, "Mode 3");
  nodalScalar(frame, "T");
  const Records records = ask("fd ");
  EXPECT_EQ(Payload(15)
                .i32(0)
                .i32(odb_Enum::MODAL)
                .i32(3)
                .f64(static_cast<double>(42.5F))
                .f64(static_cast<double>(42.5F))
                .i32(0)
                .i32(1)
                .text("Mode 3")
                .
                operator std::string(),
            records.back());
}

TEST_F(Catalogue, ModalStressMeasuresAreListedAsScalarsWithTheirOwnDescription) {
  odb_Frame frame = step("Random").Frame(1, 1);
  frame.SymmetricMatrixOutput("MATRIX Sqq", "ignored", 2);
  frame.SymmetricMatrixOutput("MATRIX other", "ignored", 2);
  const Records records = ask("fs ");
  EXPECT_EQ(fieldRecord("MATRIX Sqq", "Mises equivalent stress"), records.at(4));
  EXPECT_EQ(Names{"MATRIX Sqq"}, fieldNames(records));
  EXPECT_EQ(frameRecord(0, 1, {8, 0, 1, 1}, ""), records.back());
}

TEST_F(Catalogue, ComplexFieldsAndSectionPointsAreFlagged) {
  odb_Frame frame = step("Step-1").Frame(1, 1);
  odb_SectionCategory& category = odb_->SectionCategory("shell", "");
  const odb_SectionPoint bottom = category.SectionPoint(1, "bottom");
  const odb_SectionPoint top = category.SectionPoint(5, "top");
  odb_FieldOutput& field = frame.FieldOutput("SE", "", odb_Enum::SCALAR);
  for (const odb_SectionPoint& point : {bottom, top}) {
    field.addData(odb_Enum::CENTROID, instance(), ints({10}), floatRows({{1}}), point,
                  odb_SequenceSequenceFloat(), floatRows({{2}}));
  }
  EXPECT_EQ(frameRecord(0, 1, {2, 0, 1, 1}, "", 1), ask("fs ").back());
}

TEST_F(Catalogue, OnePointInEachOfTwoSectionsIsNotFlagged) {
  odb_Frame frame = step("Step-1").Frame(1, 1);
  odb_FieldOutput& field = frame.FieldOutput("SE", "", odb_Enum::SCALAR);
  for (const char* name : {"membrane", "truss"}) {
    const odb_SectionPoint only = odb_->SectionCategory(name, "").SectionPoint(1, "");
    field.addData(odb_Enum::CENTROID, instance(), ints({10}), floatRows({{1}}), only);
  }
  EXPECT_EQ(frameRecord(0, 1, {2, 0, 1, 0}, ""), ask("fs ").back());
}

TEST_F(Catalogue, LongStepTextsAreCut) {
  odb_Frame frame =
      odb_->Step(std::string(150, 'n').c_str(), std::string(150, 'd').c_str(), odb_Enum::TIME)
          .Frame(1, 1);
  nodalScalar(frame, "T");
  const std::string expected = std::string(150, 'n') + "\x01" + std::string(48, 'd');
  EXPECT_EQ(Payload(12).i32(1).f64(0).text(expected).operator std::string(), ask("fd ").at(2));
}

TEST_F(Catalogue, OtherLettersListNothing) {
  odb_Frame frame = step("Step-1").Frame(1, 1);
  nodalScalar(frame, "T");
  for (const char* head : {"fn ", "fN ", "fx ", "f? "}) EXPECT_EQ(Records{}, ask(head)) << head;
  EXPECT_EQ(6u, ask("fd ").size());
}

}  // namespace
}  // namespace odbs::tests
