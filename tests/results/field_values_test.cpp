// SPDX-License-Identifier: BSD-3-Clause
// Field values as the server streams them.
#include <map>

#include "base/bytes.h"
#include "tests/results/result_fixture.h"

namespace odbs::tests {
namespace {

std::string block(const char* paddedType, int field, int number) {
  return Payload(0x1E).raw(paddedType).i32(field).i32(number);
}

std::string valueType(int flag) {
  return Payload('%').i32(flag);
}

class FieldValues : public ResultTest {
 protected:
  FieldValues() : frame_(step("Step-1").Frame(1, 1)) {}

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

TEST_F(FieldValues, StressIsServedAtItsPointsAndAtTheCentroid) {
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
  select(1, 0, kCentroid, "S");
  Payload value(0x1F);
  value.i32(10).i32(-1).i32(0);
  for (int k = 0; k < 6; ++k) value.f32(45.0F + static_cast<float>(k));
  EXPECT_EQ((Records{valueType(2), block("C3D8    ", 1, -1), value}), values("rs "));
}

TEST_F(FieldValues, LabelsConjugatesAndPrecisionFollowTheKindOfField) {
  frame_.FieldOutput("E", "", odb_Enum::SCALAR)
      .addData(odb_Enum::ELEMENT_NODAL, instance(), ints({10}),
               floatRows({{1}, {2}, {3}, {4}, {5}, {6}, {7}, {8}}));
  frame_.FieldOutput("V", "", odb_Enum::SCALAR)
      .addData(odb_Enum::WHOLE_ELEMENT, instance(), ints({10}), floatRows({{3}}),
               odb_SectionPoint(), odb_SequenceSequenceFloat(), floatRows({{-4}}));
  nodalScalar(frame_, "NT11", 5);
  frame_.FieldOutput("D", "", odb_Enum::SCALAR)
      .addData(odb_Enum::NODAL, instance(), ints({4}), doubleRows({{0.1}}));
  const auto first = [](int label) { return Payload(0x1F).i32(label); };
  Records elementNodal{first(10).i32(1).i32(0).f32(1)};
  for (int k = 2; k <= 8; ++k) elementNodal.push_back(Payload(0x16).i32(k).f32(float(k)));
  const std::map<const char*, Records> expected{
      {"E", elementNodal},
      {"V", {first(10).i32(-1).i32(0).f32(3).f32(-4)}},
      {"NT11", {first(1).i32(-1).i32(0).f32(5), Payload(0x22).i32(2).f32(6)}},
      {"D", {first(4).i32(-1).i32(0).f32(0.1F)}}};
  for (const auto& [field, records] : expected) {
    select(1, 0, *field == 'E' ? kElementNodal : kStored, field);
    const Records sent = values("rs ");
    EXPECT_EQ(records, Records(sent.begin() + 2, sent.end())) << field;
  }
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

TEST_F(FieldValues, SectionPointsArePickedOrServedByForm) {
  odb_SectionCategory& category = odb_->SectionCategory("shell", "");
  odb_FieldOutput& field = frame_.FieldOutput("SE", "", odb_Enum::SCALAR);
  for (const int number : {1, 3, 5}) {
    field.addData(odb_Enum::CENTROID, instance(), ints({10}), floatRows({{1}}),
                  category.SectionPoint(number, "p"));
  }
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
  frame_.FieldOutput("S", "", odb_Enum::TENSOR_3D_FULL)
      .addData(odb_Enum::CENTROID, instance(), ints({10}), floatRows({{1, 2, 3, 4, 5, 6}}),
               odb_SectionPoint(), floatRows({{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}));
  select(1, 0, kStored, "S");
  EXPECT_EQ(0u, withTag(ask("rs "), '\'').size());
  const Records records = values("rS ");
  ASSERT_EQ(4u, records.size());
  ASSERT_EQ(25u, records[2].size());
  EXPECT_EQ('\'', records[2][0]);
  const float expected[] = {0, 0, 1, 1, 0, 0};  // the first two rows
  const auto* numbers = reinterpret_cast<const unsigned char*>(records[2].data()) + 1;
  for (int k = 0; k < 6; ++k) EXPECT_NEAR(expected[k], getF32(numbers + 4 * k), 1e-6) << k;
}

TEST_F(FieldValues, WhatIsNotThereEndsAfterTitleAndAnalysisKind) {
  stress(frame_);
  const struct {
    int step, frame;
    const char* field;
    int position = kStored;
  } rows[] = {{1, 0, "NONE"}, {0, 0, "S"},  {2, 0, "S"},
              {1, 7, "S"},    {1, -1, "S"}, {1, 0, "S", 111}};
  for (const auto& row : rows) {
    select(row.step, row.frame, row.position, row.field);
    EXPECT_EQ(Records{}, values("rs ")) << row.step << row.frame << row.field;
  }
  select(1, 0, kStored, "S");
  for (const char* head : {"rx ", "rD ", "rn A:", "rg 1:", "rl 1 2 "}) {
    EXPECT_EQ(Records{}, ask(head)) << head << "is no request";
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

// Elements with a section category of points 1, 2 and 3, and one without.
TEST_F(FieldValues, TopAndBottomAreThePointsOfEachElementItself) {
  odb_SectionCategory& category = odb_->SectionCategory("shell < elset = A >", "");
  odb_Part& part = odb_->Part("L", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
  part.addNodes(ints({1, 2, 3, 4}), floatRows({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}));
  std::vector<odb_SectionPoint> points;
  for (int number = 1; number <= 3; ++number) points.push_back(category.SectionPoint(number, "p"));
  part.addElements(ints({7}), rows({{1, 2, 3, 4}}), "S4R", "", category);
  part.addElements(ints({9}), rows({{1, 2, 3}}), "S3");
  odb_Instance& shells = odb_->rootAssembly().Instance("J", part);
  odb_FieldOutput& field = frame_.FieldOutput("PEEQ", "", odb_Enum::SCALAR);
  for (const odb_SectionPoint& point : points) {
    field.addData(odb_Enum::CENTROID, shells, ints({7}),
                  floatRows({{static_cast<float>(point.number())}}), point);
  }
  // Values without a section point, of an element that has some and of one that has none.
  field.addData(odb_Enum::CENTROID, shells, ints({7, 9}), floatRows({{70}, {90}}));
  select(1, 0, kStored, "PEEQ");
  const auto numbers = [&](const char* head) {
    std::vector<float> found;
    for (const std::string& record : values(head)) {
      if (record[0] != 0x1F && record[0] != 0x22 && record[0] != 0x15) continue;
      const char* last = record.data() + record.size() - 4;
      found.push_back(getF32(reinterpret_cast<const unsigned char*>(last)));
    }
    return found;
  };
  EXPECT_EQ((std::vector<float>{3, 90}), numbers("rt "));
  EXPECT_EQ((std::vector<float>{1, 90}), numbers("rb "));
  EXPECT_EQ((std::vector<float>{70, 90}), numbers("rs "));
}

}  // namespace
}  // namespace odbs::tests
