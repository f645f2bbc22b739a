// SPDX-License-Identifier: BSD-3-Clause
// The order of the model stream: title, analysis kind, annotations, and what single and several
// instances send.
#include "tests/model/model_fixture.h"

namespace odbs::tests {
namespace {

class ModelStream : public ModelTest {
 protected:
  // A part with nodes 1 and 2 and truss 5, instances "B" and "A" of it, and an assembly node.
  void writeTwoInstances() {
    odb_Part& bar = part("BAR");
    bar.addNodes(ints({1, 2}), floatRows({{0, 0, 0}, {1, 0, 0}}));
    bar.addElements(ints({5}), rows({{1, 2}}), "T3D2");
    instance("B", bar);
    instance("A", bar);
    odb_->rootAssembly().addNodes(ints({100}), floatRows({{7, 8, 9}}));
    odb_embedded::setAssemblyName(*odb_, "ASM");
  }

  const std::string nodeOne_ = node(1, {0, 0, 0});
  const std::string nodeTwo_ = node(2, {1, 0, 0});
  const std::string truss_ = element("T3D2    ", 5, 0, {1, 2});
};

TEST_F(ModelStream, StartsWithTitleAndAnalysisCodeLessOne) {
  odb_embedded::JobData job;
  job.analysisCode = odb_Enum::ABAQUS_EXPLICIT;
  odb_embedded::setJobData(*odb_, job);
  EXPECT_EQ((Records{title("A title"), analysisKind(1)}), stream());
}

TEST_F(ModelStream, AnUnknownAnalysisCodeIsSentAsMinusOne) {
  EXPECT_EQ((Records{title("A title"), std::string("\x02\xff\xff\xff\xff")}), stream());
}

TEST_F(ModelStream, ASingleInstanceSendsNoNamesAndNoAssemblyNodes) {
  odb_Part& bar = part("BAR");
  bar.addNodes(ints({1, 2}), floatRows({{0, 0, 0}, {1, 0, 0}}));
  bar.addElements(ints({5}), rows({{1, 2}}), "T3D2");
  instance("A", bar);
  odb_->rootAssembly().addNodes(ints({100}), floatRows({{7, 8, 9}}));
  EXPECT_EQ((Records{title("A title"), analysisKind(-1), nodeOne_, nodeTwo_, truss_}), stream());
}

TEST_F(ModelStream, SeveralInstancesComeInNameOrderAndTheAssemblyLast) {
  writeTwoInstances();
  EXPECT_EQ((Records{title("A title"), analysisKind(-1),     //
                     name("A"), nodeOne_, nodeTwo_, truss_,  //
                     name("B"), nodeOne_, nodeTwo_, truss_,  //
                     name("ASM"), node(100, {7, 8, 9})}),
            stream());
}

TEST_F(ModelStream, TheLightVariantSendsNodesAlone) {
  writeTwoInstances();
  odb_embedded::setAnnotation(*odb_, "xml", "text");
  EXPECT_EQ((Records{title("A title"), analysisKind(-1),  //
                     name("A"), nodeOne_, nodeTwo_,       //
                     name("B"), nodeOne_, nodeTwo_,       //
                     name("ASM"), node(100, {7, 8, 9})}),
            stream('G'));
}

TEST_F(ModelStream, EveryRecordIsFramedByItsLength) {
  cube();
  stream();
  const std::string expected(
      "\x0c\x00\x01\x07\x00\x00\x00"
      "A title"
      "\x05\x00\x02\xff\xff\xff\xff"
      "\x11\x00\x03\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00",
      40);
  EXPECT_EQ(expected, replyBytes_.substr(0, 40));
  EXPECT_EQ(std::string("\x01\x00\x7e", 3), replyBytes_.substr(replyBytes_.size() - 3));
}

TEST_F(ModelStream, AnnotationsAreSentLineByLineBeforeTheModel) {
  cube();
  odb_embedded::setAnnotation(*odb_, "xml", "a\n\nb");
  const Records records = stream();
  const Records lines(records.begin() + 2, records.begin() + 5);
  EXPECT_EQ((Records{Payload(0x15).text("a\n"), Payload(0x15).text("\n"), Payload(0x15).text("b")}),
            lines);
  EXPECT_EQ(nodeOne_, records[5]);
}

TEST_F(ModelStream, AnAnnotationThatEndsInANewlineHasNoEmptyLastLine) {
  odb_embedded::setAnnotation(*odb_, "xml", "a\n");
  EXPECT_EQ((Records{Payload(0x15).text("a\n")}), streamed(0x15));
}

TEST_F(ModelStream, AnnotationsUnderOtherKeysAreNotSent) {
  odb_embedded::setAnnotation(*odb_, "XML", "a");
  EXPECT_EQ(Records{}, streamed(0x15));
}

TEST_F(ModelStream, AnAnnotationLineIsCutWhereARecordEnds) {
  odb_embedded::setAnnotation(*odb_, "xml", (std::string(20000, 'x') + "\nnext").c_str());
  EXPECT_EQ((Records{Payload(0x15).text(std::string(10235, 'x')), Payload(0x15).text("next")}),
            streamed(0x15));
}

TEST_F(ModelStream, AnEmptyModelSendsOnlyTheFirstTwoRecords) {
  EXPECT_EQ((Records{title("A title"), analysisKind(-1)}), stream());
}

}  // namespace
}  // namespace odbs::tests
