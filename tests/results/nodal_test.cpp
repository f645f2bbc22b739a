// SPDX-License-Identifier: BSD-3-Clause
// Nodal results, rotations and failed elements as the server streams them.
#include "tests/results/result_fixture.h"

namespace odbs::tests {
namespace {

class NodalResults : public ResultTest {
 protected:
  NodalResults() : step_(step("Step-1")) {}

  void vectors(odb_Frame& frame, const char* name, const std::vector<std::vector<float>>& rows) {
    frame.FieldOutput(name, "", odb_Enum::VECTOR)
        .addData(odb_Enum::NODAL, instance(), ints({1, 2}), floatRows(rows));
  }

  Records values(int frame, int position, const char* variable) {
    select(1, frame, position, variable);
    return ResultTest::values("rd ");
  }

  static std::string nodal(int tag, int label, const std::vector<float>& components) {
    Payload payload(tag);
    payload.i32(label);
    for (const float x : components) payload.f32(x);
    return payload;
  }
  static std::string failed(int label) { return Payload('"').i32(label).i32(0); }

  odb_Step& step_;
};

TEST_F(NodalResults, DisplacementsBringTheirRotations) {
  odb_Frame whole = step_.Frame(1, 1.0F), two = step_.Frame(2, 2.0F), three = step_.Frame(3, 3.0F);
  vectors(whole, "U", {{1, 2, 3}, {4, 5, 6}});
  vectors(whole, "UR", {{7, 8, 9}, {0, 0, 1}});
  nodalScalar(whole, "UR1");
  const Records rotations{nodal(19, 1, {7, 8, 9}), nodal(19, 2, {0, 0, 1})};
  Records expected{nodal(0x11, 1, {1, 2, 3}), nodal(0x11, 2, {4, 5, 6})};
  for (odb_Frame* frame : {&two, &three}) {
    vectors(*frame, "U", {{1, 2, 3}, {4, 5, 6}});
    nodalScalar(*frame, "UR1", 10);
    nodalScalar(*frame, "UR2", 20);
  }
  nodalScalar(three, "UR3", 30);
  EXPECT_EQ(expected, values(1, kStored, "U")) << "one of the three is missing";
  EXPECT_EQ((Records{nodal(0x11, 1, {7, 8, 9}), nodal(0x11, 2, {0, 0, 1})}),
            values(0, kStored, "UR"));
  Records single = expected;
  expected.insert(expected.end(), rotations.begin(), rotations.end());
  EXPECT_EQ(expected, values(0, kStored, "U"));
  single.insert(single.end(), {nodal(38, 1, {10}), nodal(38, 2, {11}), nodal(57, 1, {20}),
                               nodal(57, 2, {21}), nodal(76, 1, {30}), nodal(76, 2, {31})});
  EXPECT_EQ(single, values(2, kStored, "U"));
}

TEST_F(NodalResults, ComplexValuesHaveTheSecondTagAndTheirConjugates) {
  odb_Frame frame = step_.Frame(1, 1.0F);
  for (const char* name : {"U", "UR"}) {
    frame.FieldOutput(name, "", odb_Enum::VECTOR)
        .addData(odb_Enum::NODAL, instance(), ints({2}), floatRows({{1, 2, 3}}), odb_SectionPoint(),
                 odb_SequenceSequenceFloat(), floatRows({{-1, -2, -3}}));
  }
  EXPECT_EQ((Records{nodal(0x12, 2, {1, 2, 3, -1, -2, -3}), nodal(20, 2, {1, 2, 3, -1, -2, -3})}),
            values(0, kStored, "U"));
}

TEST_F(NodalResults, ContactVariablesAreFoundByNameBlanksOrFirstWordOthersByName) {
  odb_Frame frame = step_.Frame(1, 1.0F);
  const std::vector<const char*> keys{"CPRESS   A/B", "CPRESS  C/D", "CPRESS C/D",
                                      "CSLIP1  A/B",  "CSTATUS",     "PHILSM"};
  for (std::size_t i = 0; i < keys.size(); ++i) {
    nodalScalar(frame, keys[i], 10 * static_cast<float>(i + 1));
  }
  const struct {
    const char* name;
    float first;
  } rows[] = {{"CPRESS^C/D", 30},  {"CPRESS^^^^C/D", 20}, {"CPRESS^A/B", 10}, {"CPRESS^X/Y", 10},
              {"CPRESS", 10},      {"CSLIP1^Z", 40},      {"CSLIP", 0},       {"CPRESSX^A/B", 0},
              {"CSTATUS^A/B", 50}, {"PHILSM", 60},        {"PHIL", 0},        {"PHILSM^A/B", 0}};
  for (const auto& row : rows) {
    Records expected;
    if (row.first > 0) expected = {nodal(0x11, 1, {row.first}), nodal(0x11, 2, {row.first + 1})};
    EXPECT_EQ(expected, values(0, kStored, row.name)) << row.name;
  }
  EXPECT_EQ(Records{}, values(9, kStored, "PHILSM"));
  select(1, 0, kStored, "PHILSM");
  EXPECT_EQ(Records{}, ask("rD ")) << "lower case only";
}

// Two instances; elements 1 and 2 of "J" fail in the frames at 1 and 2, element 10 of "I" at 2.
class Failures : public NodalResults {
 protected:
  Failures() {
    const std::vector<int> cube{1, 2, 3, 4, 5, 6, 7, 8};
    odb_Part& more = odb_->Part("Q", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
    more.addNodes(ints(cube), floatRows(corners()));
    more.addElements(ints({1, 2}), rows({cube, cube}), "C3D8");
    odb_->rootAssembly().Instance("J", more);
    state(0, 1, 1, 1);
    state(1, 1, 0, 1);
    state(2, 0, 0, 0);
  }

  void state(int number, float s10, float s1, float s2) {
    odb_Frame frame = step_.Frame(number, static_cast<float>(number));
    vectors(frame, "U", {{1, 0, 0}, {2, 0, 0}});
    odb_FieldOutput& status = frame.FieldOutput("STATUS", "", odb_Enum::SCALAR);
    status.addData(odb_Enum::WHOLE_ELEMENT, instance(), ints({10}), floatRows({{s10}}));
    status.addData(odb_Enum::WHOLE_ELEMENT, odb_->rootAssembly().instances()["J"], ints({1, 2}),
                   floatRows({{s1}, {s2}}));
  }

  // The reply behind the two displacements and their instance's name.
  Records behindValues(int frame, int position) {
    const Records records = values(frame, position, "U");
    EXPECT_EQ((Records{name("I"), nodal(0x11, 1, {1, 0, 0}), nodal(0x11, 2, {2, 0, 0})}),
              Records(records.begin(), records.begin() + 3));
    return Records(records.begin() + 3, records.end());
  }
};

TEST_F(Failures, FailedElementsFollowDisplacementsUnderTheirInstance) {
  odb_SectionCategory& category = odb_->SectionCategory("shell", "");
  for (const int number : {3, 4, 5}) {
    odb_Frame frame = step_.Frame(number, static_cast<float>(number));
    vectors(frame, "U", {{1, 0, 0}, {2, 0, 0}});
    if (number == 4) nodalScalar(frame, "CFAILST");  // a failure criterion
    if (number != 5) continue;
    odb_FieldOutput& status = frame.FieldOutput("STATUS", "", odb_Enum::SCALAR);
    for (const int point : {1, 5}) {
      status.addData(odb_Enum::CENTROID, instance(), ints({10}), floatRows({{0}}),
                     category.SectionPoint(point, "p"));
    }
  }
  const Records all{failed(10), name("J"), failed(1), failed(2)};
  const Records times{failed(1), name("I"), failed(10), name("J"), failed(2)};
  Records allAndTimes = all, timesAlone{name("J")};
  allAndTimes.insert(allAndTimes.end(), times.begin(), times.end());
  timesAlone.insert(timesAlone.end(), times.begin(), times.end());
  const struct {
    int frame, position;
    Records behind;
  } rows[] = {{0, kStored, {}},
              {1, kStored, {name("J"), failed(1)}},
              {2, kStored, all},
              {3, kStored, {}},
              {5, kStored, {failed(10)}},
              {0, kCentroid, {}},
              {1, kCentroid, {name("J"), failed(1), failed(1)}},
              {2, kCentroid, allAndTimes},
              {3, kCentroid, timesAlone},
              {4, kCentroid, {}}};
  for (const auto& row : rows) {
    EXPECT_EQ(row.behind, behindValues(row.frame, row.position)) << row.frame << row.position;
  }
  recordsOf(*server_, "a 2");
  recordsOf(*server_, "b 2 77");
  EXPECT_EQ((Records{name("J"), failed(2), failed(2)}), behindValues(2, kCentroid));
}

TEST_F(Failures, RecordedTimesComeBeforeThoseOfTheFrames) {
  const odb_Instance& j = odb_->rootAssembly().instances()["J"];
  odb_embedded::addFailureTimes(step_, j, {1, 2}, {2.5F, 1.5F});
  odb_Frame frame = step_.Frame(3, 3.0F);
  vectors(frame, "U", {{1, 0, 0}, {2, 0, 0}});
  EXPECT_EQ((Records{name("J"), failed(1)}), behindValues(1, kCentroid));
  EXPECT_EQ((Records{name("J"), failed(2), name("I"), failed(10), name("J"), failed(1)}),
            behindValues(3, kCentroid));
}

}  // namespace
}  // namespace odbs::tests
