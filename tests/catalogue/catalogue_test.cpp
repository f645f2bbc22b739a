// SPDX-License-Identifier: BSD-3-Clause
// The result catalogue, record by record.
#include "catalogue/catalogue.h"

#include <map>

#include "catalogue/field_descriptor.h"
#include "server/core/record.h"
#include "tests/results/result_fixture.h"
#include "tests/support/failing_allocation.h"
#include "tests/support/output_file.h"

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

class Catalogue : public ResultTest {
 protected:
  // A scalar of element 10 at these section points.
  void layered(odb_Frame& frame, const char* name, const std::vector<odb_SectionPoint>& points,
               const odb_SequenceSequenceFloat& conjugate = odb_SequenceSequenceFloat()) {
    odb_FieldOutput& field = frame.FieldOutput(name, "layers", odb_Enum::SCALAR);
    for (const odb_SectionPoint& point : points) {
      field.addData(odb_Enum::CENTROID, instance(), ints({10}), floatRows({{1}}), point,
                    odb_SequenceSequenceFloat(), conjugate);
    }
  }
};

TEST_F(Catalogue, EntriesTellTypesPositionsInvariantsAndSectionPoints) {
  odb_Frame frame = step("Step-1").Frame(1, 0.5F, "first");
  nodalScalar(frame, "NT11");
  frame.FieldOutput("U", "Displacement", odb_Enum::VECTOR)
      .addData(odb_Enum::NODAL, instance(), ints({1}), floatRows({{1, 2, 3}}));
  stress(frame);
  frame.FieldOutput("ELSE", "Energy", odb_Enum::SCALAR)
      .addData(odb_Enum::WHOLE_ELEMENT, instance(), ints({10}), floatRows({{7}}));
  odb_SectionCategory& shell = odb_->SectionCategory("shell", "");
  const odb_SectionPoint bottom = shell.SectionPoint(1, "bottom");
  layered(frame, "SE1", {bottom, shell.SectionPoint(5, "top")}, floatRows({{2}}));
  layered(frame, "SE2", {bottom, odb_->SectionCategory("truss", "").SectionPoint(1, "")});
  frame.SymmetricMatrixOutput("MATRIX Sqq", "ignored", 2);
  frame.SymmetricMatrixOutput("MATRIX other", "ignored", 2);
  std::map<std::string, Payload> componentLabels;  // fields without any send no record
  odb_FieldOutputRepositoryIT it(frame.fieldOutputs());
  for (it.first(); !it.isDone(); it.next()) {
    const odb_SequenceString& labels = it.currentValue().componentLabels();
    Payload& record = componentLabels.emplace(it.currentKey().CStr(), 16).first->second;
    for (int i = 0; i < labels.size(); ++i) record.text(labels[i].CStr());
    if (labels.size() == 0) componentLabels.erase(it.currentKey().CStr());
  }
  const struct {
    const char *listings, *field, *description;
    std::vector<int> classification;
    int complex;
  } rows[] = {{"s", "ELSE", "Energy", {16, 0, 1, 0}, 0},
              {"s", "MATRIX Sqq", "Mises equivalent stress", {8, 0, 1, 1}, 0},
              {"d", "NT11", "a scalar", {1}, 0},
              {"sv", "S", "Stress", {4, 1 << 2 | 1 << 4, 2, 0}, 0},
              {"s", "SE1", "layers", {2, 0, 1, 1}, 1},
              {"s", "SE2", "layers", {2, 0, 1, 0}, 0},
              {"d", "U", "Displacement", {0}, 0}};
  for (const char listing : std::string("dsv")) {
    Records expected{title("A title"), analysisKind(-1)};
    for (const auto& row : rows) {
      if (!std::strchr(row.listings, listing)) continue;
      expected.insert(expected.end(), {stepRecord(1, 0, "Step-1"), procedureRecord("*STATIC"),
                                       fieldRecord(row.field, row.description)});
      const auto labels = componentLabels.find(row.field);
      if (listing != 'd' && labels != componentLabels.end()) expected.push_back(labels->second);
      expected.push_back(frameRecord(0, 0.5, row.classification, "first", row.complex));
    }
    EXPECT_EQ(expected, ask({'f', listing, ' '})) << listing;
  }
  for (const char* head : {"fn ", "fN ", "fx ", "f? "}) EXPECT_EQ(Records{}, ask(head)) << head;
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

TEST_F(Catalogue, EntriesRepeatTheNumbersAndTextsOfTheirStepAndFrame) {
  step("A-empty");
  odb_Frame mode = step("Modes", odb_Enum::MODAL, "*FREQUENCY").Frame(3, 42.5F, "Mode 3");
  nodalScalar(mode, "T");
  odb_Frame frame =
      odb_->Step(std::string(150, 'n').c_str(), std::string(150, 'd').c_str(), odb_Enum::TIME)
          .Frame(1, 1);
  nodalScalar(frame, "T");
  const Records records = ask("fd ");
  ASSERT_EQ(10u, records.size());
  EXPECT_EQ(stepRecord(2, 1, "Modes"), records[2]);
  Payload modal(15);
  modal.i32(0).i32(odb_Enum::MODAL).i32(3).f64(42.5).f64(42.5).i32(0).i32(1).text("Mode 3");
  EXPECT_EQ(std::string(modal), records[5]);
  const std::string cut = std::string(150, 'n') + "\x01" + std::string(48, 'd');
  EXPECT_EQ(std::string(Payload(12).i32(3).f64(2).text(cut)), records[6]);
}

// A command that failed may leave records in the buffer, here a marker.
TEST_F(Catalogue, RecordsLeaveAtOnceAndLeftoversOfAFailedCommandStay) {
  OutputFile out;
  sendMarker(out.fd());
  sendCatalogue(*odb_, out.fd(), CatalogueListing::kNodal);
  EXPECT_EQ("0c 00 01 07 00 00 00 41 20 74 69 74 6c 65 05 00 02 ff ff ff ff", hexOf(out.news()));
  odb_Frame frame = step("Step-1").Frame(1, 0.5F, "first");
  nodalScalar(frame, "T");
  sendCatalogue(*odb_, out.fd(), CatalogueListing::kNodal);
  EXPECT_EQ(21u + 31 + 14 + 20 + 48, out.news().size());
  flushOutput(out.fd());
  EXPECT_EQ("01 00 49", hexOf(out.news()));
}

// The memo is for good: a field that is left out once never comes back.
TEST_F(Catalogue, AFieldIsNotLeftOutBecauseMemoryRanOut) {
  odb_Frame frame = step("Step-1").Frame(1, 0.5F, "first");
  nodalScalar(frame, "NT11");
  stress(frame);
  int nFailures = 0;
  for (bool failed = true; failed; nFailures += failed) {
    const FailingAllocation failing(nFailures);
    try {
      EXPECT_EQ(2u, frameDescriptors("memory", 1, 0, frame).fields.size()) << nFailures;
      failed = false;
    } catch (const std::bad_alloc&) {
    }
  }
  EXPECT_GT(nFailures, 5);
}

}  // namespace
}  // namespace odbs::tests
