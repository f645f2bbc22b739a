// SPDX-License-Identifier: BSD-3-Clause
// Field values as the server streams them.
#include "tests/results/result_fixture.h"

namespace odbs::tests {
namespace {

constexpr int kCentroid = 0;  // positions as the parent sends them
constexpr int kElementNodal = 1;
constexpr int kStored = 2;

std::string block(const char* paddedType, int field, int number) {
  return Payload(0x1E).raw(paddedType).i32(field).i32(number);
}

std::string valueType(int flag) {
  return Payload('%').i32(flag);
}

class FieldValues : public ResultTest {
 protected:
  FieldValues() : frame_(step("Step-1").Frame(1, 1)) {}

  // The records after title and analysis kind.
  Records values(const std::string& head) {
    const Records records = ask(head);
    EXPECT_EQ(title("A title"), records.at(0));
    EXPECT_EQ(analysisKind(-1), records.at(1));
    return Records(records.begin() + 2, records.end());
  }

  // A scalar at the centroid of element 10, at each of these section points of a category that the
  // element has.
  void layeredScalar(const std::vector<int>& sectionPoints) {
    odb_SectionCategory& category = odb_->SectionCategory("shell", "");
    odb_FieldOutput& field = frame_.FieldOutput("SE", "", odb_Enum::SCALAR);
    for (const int number : sectionPoints) {
      const odb_SectionPoint& point = category.SectionPoint(number, "p");
      field.addData(odb_Enum::CENTROID, instance(), ints({10}),
                    floatRows({{static_cast<float>(number)}}), point);
    }
  }

  // Section-point numbers of the blocks in the reply.
  std::vector<int> pointsSent(const std::string& head) {
    std::vector<int> numbers;
    for (const std::string& record : withTag(ask(head), 0x1E)) {
      numbers.push_back(static_cast<signed char>(record[13]));
    }
    return numbers;
  }

  odb_Frame frame_;
};

TEST_F(FieldValues, IntegrationPointsOfAnElementRepeatNoElementLabel) {
  stress(frame_);
  select(1, 0, kStored, "S");
  Records expected{valueType(2), block("C3D8    ", 1, -1)};
  for (int p = 1; p <= 8; ++p) {
    Payload value(p == 1 ? 0x1F : 0x17);
    if (p == 1) value.i32(10).i32(-1);
    value.i32(p);
    for (int k = 0; k < 6; ++k) value.f32(static_cast<float>(10 * p + k));
    expected.push_back(value);
  }
  EXPECT_EQ(expected, values("rs "));
  EXPECT_EQ(expected, values("rm "));
}

TEST_F(FieldValues, TheCentroidOfAnElementIsOneValue) {
  stress(frame_);
  select(1, 0, kCentroid, "S");
  Payload value(0x1F);
  value.i32(10).i32(-1).i32(0);
  for (int k = 0; k < 6; ++k) value.f32(45.0F + static_cast<float>(k));
  EXPECT_EQ((Records{valueType(2), block("C3D8    ", 1, -1), value}), values("rs "));
}

TEST_F(FieldValues, ElementNodalValuesCarryTheNodeAsThirdLabel) {
  odb_FieldOutput& field = frame_.FieldOutput("E", "", odb_Enum::SCALAR);
  field.addData(odb_Enum::ELEMENT_NODAL, instance(), ints({10}),
                floatRows({{1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}}));
  select(1, 0, kElementNodal, "E");
  const Records records = values("rs ");
  ASSERT_EQ(10u, records.size());
  EXPECT_EQ(Payload(0x1F).i32(10).i32(1).i32(0).f32(1).operator std::string(), records[2]);
  EXPECT_EQ(Payload(0x16).i32(8).f32(8).operator std::string(), records[9]);
}

TEST_F(FieldValues, ComplexValuesAreFollowedByTheirConjugates) {
  odb_FieldOutput& field = frame_.FieldOutput("V", "", odb_Enum::SCALAR);
  field.addData(odb_Enum::WHOLE_ELEMENT, instance(), ints({10}), floatRows({{3}}),
                odb_SectionPoint(), odb_SequenceSequenceFloat(), floatRows({{-4}}));
  select(1, 0, kStored, "V");
  EXPECT_EQ(Payload(0x1F).i32(10).i32(-1).i32(0).f32(3).f32(-4).operator std::string(),
            values("rs ").back());
}

TEST_F(FieldValues, BlocksOfAComplexFieldWithoutConjugatesHaveZeros) {
  odb_Instance& second = odb_->rootAssembly().Instance("J", odb_->parts()["P"]);
  odb_FieldOutput& field = frame_.FieldOutput("U", "", odb_Enum::VECTOR);
  field.addData(odb_Enum::NODAL, instance(), ints({1}), floatRows({{1, 2}}), odb_SectionPoint(),
                odb_SequenceSequenceFloat(), floatRows({{-1, -2}}));
  field.addData(odb_Enum::NODAL, second, ints({1}), floatRows({{5, 6}}));
  field.addData(odb_Enum::CENTROID, second, ints({10}), floatRows({{7, 8}}));
  select(1, 0, kStored, "U");
  EXPECT_EQ((Records{Payload(0x15).f32(5).f32(6).zeros(2)}), withTag(values("rs "), 0x15));
  EXPECT_EQ((Records{Payload(0x12).i32(1).f32(1).f32(2).f32(-1).f32(-2),
                     Payload(0x12).i32(1).f32(5).f32(6).zeros(2)}),
            withTag(ask("rd "), 0x12));
  select(1, 0, kCentroid, "U");
  EXPECT_EQ(Payload(0x1F).i32(10).i32(-1).i32(0).f32(7).f32(8).zeros(2).operator std::string(),
            values("rs ").back())
      << "a subset has the form of its field";
}

TEST_F(FieldValues, NodalFieldsAsStoredNameTheirNodes) {
  nodalScalar(frame_, "NT11", 5);
  select(1, 0, kStored, "NT11");
  const Records records = values("rs ");
  EXPECT_EQ(Payload(0x1F).i32(1).i32(-1).i32(0).f32(5).operator std::string(), records.at(2));
  EXPECT_EQ(Payload(0x22).i32(2).f32(6).operator std::string(), records.at(3));
}

TEST_F(FieldValues, SectionPointsArePickedOrServedByForm) {
  layeredScalar({1, 3, 5});
  select(1, 0, kStored, "SE");
  EXPECT_EQ((std::vector<int>{1, 3, 5}), pointsSent("rv "));
  EXPECT_EQ((std::vector<int>{1, 3, 5}), pointsSent("rm "));
  EXPECT_EQ(std::vector<int>{}, pointsSent("rs "));
  EXPECT_EQ((std::vector<int>{1, 5}), pointsSent("rl 5 1,"));
  EXPECT_EQ(block("C3D8    ", 2, 1), withTag(ask("rl 5 1,"), 0x1E).at(0));
  EXPECT_EQ(block("C3D8    ", 1, 5), withTag(ask("rl 5 1,"), 0x1E).at(1));
  EXPECT_EQ(block("C3D8    ", 3, 3), withTag(ask("rv "), 0x1E).at(1));
}

TEST_F(FieldValues, LocalDirectionsGoAheadOfEachValueInTheCapitalForm) {
  odb_FieldOutput& field = frame_.FieldOutput("S", "", odb_Enum::TENSOR_3D_FULL);
  const auto quarterTurn = floatRows({{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}});
  field.addData(odb_Enum::CENTROID, instance(), ints({10}), floatRows({{1, 2, 3, 4, 5, 6}}),
                odb_SectionPoint(), quarterTurn);
  select(1, 0, kStored, "S");
  EXPECT_EQ(0u, withTag(ask("rs "), '\'').size());
  const Records records = values("rS ");
  ASSERT_EQ(4u, records.size());
  ASSERT_EQ(25u, records[2].size());
  EXPECT_EQ('\'', records[2][0]);
}

TEST_F(FieldValues, WhatIsNotThereEndsAfterTheHeader) {
  stress(frame_);
  select(1, 0, kStored, "NONE");
  EXPECT_EQ(Records{}, values("rs "));
  select(0, 0, kStored, "S");
  EXPECT_EQ(Records{}, values("rs "));
  select(2, 0, kStored, "S");
  EXPECT_EQ(Records{}, values("rs "));
  select(1, 7, kStored, "S");
  EXPECT_EQ(Records{}, values("rs "));
  select(1, -1, kStored, "S");
  EXPECT_EQ(Records{}, values("rs "));
}

TEST_F(FieldValues, UnknownLettersAndHalfPairsAreAcknowledgedOnly) {
  stress(frame_);
  select(1, 0, kStored, "S");
  for (const char* head : {"rx ", "rD ", "rn A:", "rg 1:", "rl 1 2 "}) {
    EXPECT_EQ(Records{}, ask(head)) << head;
  }
}

TEST_F(FieldValues, SeveralInstancesAreAnnounced) {
  odb_Instance& second = odb_->rootAssembly().Instance("J", odb_->parts()["P"]);
  odb_FieldOutput& field = frame_.FieldOutput("X", "", odb_Enum::SCALAR);
  field.addData(odb_Enum::WHOLE_ELEMENT, instance(), ints({10}), floatRows({{3}}));
  field.addData(odb_Enum::WHOLE_ELEMENT, second, ints({10}), floatRows({{4}}));
  select(1, 0, kStored, "X");
  EXPECT_EQ((Records{name("I"), valueType(1), block("C3D8    ", 1, -1),
                     Payload(0x1F).i32(10).i32(-1).i32(0).f32(3), name("J"),
                     block("C3D8    ", 1, -1), Payload(0x15).f32(4)}),
            values("rs "))
      << "labels are compared across blocks and instances";
}

TEST_F(FieldValues, DoublePrecisionIsNarrowed) {
  odb_FieldOutput& field = frame_.FieldOutput("D", "", odb_Enum::SCALAR);
  field.addData(odb_Enum::NODAL, instance(), ints({4}), doubleRows({{0.1}}));
  select(1, 0, kStored, "D");
  EXPECT_EQ(Payload(0x1F).i32(4).i32(-1).i32(0).f32(0.1F).operator std::string(),
            values("rs ").back());
}

// Elements with a section category of points 1, 2 and 3, and one without.
class TopAndBottom : public ::testing::Test {
 protected:
  TopAndBottom() {
    odb_Odb& odb = Odb("layers", "", "", path().c_str());
    odb_SectionCategory& category = odb.SectionCategory("shell < elset = A >", "");
    odb_Part& part = odb.Part("P", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
    part.addNodes(ints({1, 2, 3, 4}), floatRows({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}));
    std::vector<odb_SectionPoint> points;
    for (int number = 1; number <= 3; ++number) {
      points.push_back(category.SectionPoint(number, "p"));
    }
    part.addElements(ints({7}), rows({{1, 2, 3, 4}}), "S4R", "", category);
    part.addElements(ints({9}), rows({{1, 2, 3}}), "S3");
    odb_Instance& instance = odb.rootAssembly().Instance("I", part);
    odb_FieldOutput& field = odb.Step("Step-1", "", odb_Enum::TIME)
                                 .Frame(1, 1)
                                 .FieldOutput("PEEQ", "", odb_Enum::SCALAR);
    for (int number = 1; number <= 3; ++number) {
      field.addData(odb_Enum::CENTROID, instance, ints({7}),
                    floatRows({{static_cast<float>(number)}}),
                    points[static_cast<std::size_t>(number - 1)]);
    }
    field.addData(odb_Enum::CENTROID, instance, ints({9}), floatRows({{90}}));
    odb.save();
    odb.close();
  }

  std::string path() const { return folder_.file("layers.odb"); }

  // Element labels and values of the value records of a reply whose records all start a new element
  // or repeat everything.
  std::vector<float> valuesOf(const std::string& head) {
    server_.send("d 1 0 2 PEEQ");
    std::vector<float> values;
    for (const std::string& record : recordsOf(server_, head + path())) {
      const auto tag = static_cast<unsigned char>(record[0]);
      if (tag != 0x1F && tag != 0x22 && tag != 0x15) continue;
      float value;
      std::memcpy(&value, record.data() + record.size() - 4, 4);
      values.push_back(value);
    }
    return values;
  }

  TemporaryFolder folder_;
  ServerProcess server_;
};

TEST_F(TopAndBottom, EachElementKeepsItsOwnPoint) {
  EXPECT_EQ((std::vector<float>{3, 90}), valuesOf("rt "));
  EXPECT_EQ((std::vector<float>{1, 90}), valuesOf("rb "));
  EXPECT_EQ((std::vector<float>{90}), valuesOf("rs "));
}

}  // namespace
}  // namespace odbs::tests
