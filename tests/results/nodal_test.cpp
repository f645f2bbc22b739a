// SPDX-License-Identifier: BSD-3-Clause
// Nodal results, rotations and failed elements as the server streams them.
#include "results/nodal_extractor.h"

#include "tests/results/result_fixture.h"

namespace odbs::tests {
namespace {

constexpr int kCentroid = 0;  // positions as the parent sends them
constexpr int kStored = 2;

TEST(ContactKeys, AreTriedByNameThenByBlanksThenByFirstWord) {
  const std::vector<std::string> keys{"CPRESS   A/B", "CPRESS  C/D", "CPRESS C/D", "CSLIP1  A/B"};
  const struct {
    const char* name;
    int key;
  } rows[] = {{"CPRESS C/D", 2}, {"CPRESS    C/D", 1}, {"CPRESS X/Y", 0},  {"CPRESS", 0},
              {"CSLIP1 Z", 3},   {"CSLIP", -1},        {"CPRESSX A/B", -1}};
  for (const auto& row : rows) {
    const std::string* const key = findContactKey(keys, row.name);
    EXPECT_EQ(row.key < 0 ? nullptr : &keys[static_cast<std::size_t>(row.key)], key) << row.name;
  }
  for (const char* name : {"COPEN", "CSTATUS", "FSLIPR", "CSHEAR1 A/B"}) {
    EXPECT_TRUE(isContactVariable(name)) << name;
  }
  for (const char* name : {"U", "PHILSM", "CFAILST", "COPE", ""}) {
    EXPECT_FALSE(isContactVariable(name)) << name;
  }
}

class NodalResults : public ResultTest {
 protected:
  NodalResults() : step_(step("Step-1")) {}

  void vectors(odb_Frame& frame, const char* name, const std::vector<std::vector<float>>& rows) {
    frame.FieldOutput(name, "", odb_Enum::VECTOR)
        .addData(odb_Enum::NODAL, instance(), ints({1, 2}), floatRows(rows));
  }

  Records values(int frame, int position, const char* variable) {
    select(1, frame, position, variable);
    const Records records = ask("rd ");
    EXPECT_EQ(title("A title"), records.at(0));
    EXPECT_EQ(analysisKind(-1), records.at(1));
    return Records(records.begin() + 2, records.end());
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
  odb_Frame frame = step_.Frame(1, 1.0F);
  vectors(frame, "U", {{1, 2, 3}, {4, 5, 6}});
  vectors(frame, "UR", {{7, 8, 9}, {0, 0, 1}});
  nodalScalar(frame, "UR1");
  EXPECT_EQ((Records{nodal(0x11, 1, {1, 2, 3}), nodal(0x11, 2, {4, 5, 6}), nodal(19, 1, {7, 8, 9}),
                     nodal(19, 2, {0, 0, 1})}),
            values(0, kStored, "U"));
  EXPECT_EQ((Records{nodal(0x11, 1, {7, 8, 9}), nodal(0x11, 2, {0, 0, 1})}),
            values(0, kStored, "UR"));
}

TEST_F(NodalResults, SingleRotationsComeAllThreeOrNotAtAll) {
  odb_Frame two = step_.Frame(1, 1.0F);
  odb_Frame three = step_.Frame(2, 2.0F);
  for (odb_Frame& frame : std::vector<odb_Frame>{two, three}) {
    vectors(frame, "UT", {{1, 2, 3}, {4, 5, 6}});
    nodalScalar(frame, "UR1", 10);
    nodalScalar(frame, "UR2", 20);
  }
  nodalScalar(three, "UR3", 30);
  const Records values0 = values(0, kStored, "UT");
  EXPECT_EQ(2u, values0.size());
  const Records values1 = values(1, kStored, "UT");
  EXPECT_EQ((Records{nodal(38, 1, {10}), nodal(38, 2, {11}), nodal(57, 1, {20}), nodal(57, 2, {21}),
                     nodal(76, 1, {30}), nodal(76, 2, {31})}),
            Records(values1.begin() + 2, values1.end()));
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

TEST_F(NodalResults, ContactVariablesAreLookedUpAndOthersMustMatch) {
  odb_Frame frame = step_.Frame(1, 1.0F);
  nodalScalar(frame, "CPRESS   A/B", 5);
  nodalScalar(frame, "CSTATUS", 1);
  nodalScalar(frame, "PHILSM", 3);
  const Records pressures{nodal(0x11, 1, {5}), nodal(0x11, 2, {6})};
  EXPECT_EQ(pressures, values(0, kStored, "CPRESS^^^A/B"));
  EXPECT_EQ(pressures, values(0, kStored, "CPRESS^A/B"));
  EXPECT_EQ(pressures, values(0, kStored, "CPRESS"));
  EXPECT_EQ(Records{}, values(0, kStored, "CSLIP1"));
  EXPECT_EQ((Records{nodal(0x11, 1, {3}), nodal(0x11, 2, {4})}), values(0, kStored, "PHILSM"));
  EXPECT_EQ((Records{nodal(0x11, 1, {1}), nodal(0x11, 2, {2})}), values(0, kStored, "CSTATUS"));
  EXPECT_EQ(Records{}, values(0, kStored, "PHIL"));
  select(1, 0, kStored, "PHILSM");
  EXPECT_EQ(0u, ask("rD ").size());  // lower case only
  select(1, 9, kStored, "PHILSM");
  EXPECT_EQ(2u, ask("rd ").size());
}

// Two instances; elements 1 and 2 of "J" fail in the frames at 1 and 2, element 10 of "I" at 2.
class Failures : public NodalResults {
 protected:
  Failures() {
    odb_Part& more = odb_->Part("Q", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
    std::vector<std::vector<float>> corners;
    for (int i = 0; i < 8; ++i) {
      const auto bit = [i](int k) { return static_cast<float>(i >> k & 1); };
      corners.push_back({bit(0), bit(1), bit(2)});
    }
    more.addNodes(ints({1, 2, 3, 4, 5, 6, 7, 8}), floatRows(corners));
    more.addElements(ints({1, 2}), rows({{1, 2, 4, 3, 5, 6, 8, 7}, {1, 2, 4, 3, 5, 6, 8, 7}}),
                     "C3D8");
    odb_->rootAssembly().Instance("J", more);
    state(0, 1, 1, 1);
    state(1, 1, 0, 1);
    state(2, 0, 0, 0);
  }

  void state(int number, float s10, float s1, float s2) {
    odb_Frame frame = step_.Frame(number, static_cast<float>(number));
    vectors(frame, "U", {{1, 0, 0}, {2, 0, 0}});
    if (number < 0) return;
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
  EXPECT_EQ(Records{}, behindValues(0, kStored));
  EXPECT_EQ((Records{name("J"), failed(1)}), behindValues(1, kStored));
  EXPECT_EQ((Records{failed(10), name("J"), failed(1), failed(2)}), behindValues(2, kStored));
}

TEST_F(Failures, AtCentroidsTheFailureTimesAddTheirElements) {
  EXPECT_EQ(Records{}, behindValues(0, kCentroid));
  EXPECT_EQ((Records{name("J"), failed(1), failed(1)}), behindValues(1, kCentroid));
  EXPECT_EQ((Records{failed(10), name("J"), failed(1), failed(2), failed(1), name("I"), failed(10),
                     name("J"), failed(2)}),
            behindValues(2, kCentroid));
}

TEST_F(Failures, TimesServeFramesWithoutStatusUnlessTheyHaveFailureCriteria) {
  for (const int number : {3, 4}) {
    odb_Frame frame = step_.Frame(number, static_cast<float>(number));
    vectors(frame, "U", {{1, 0, 0}, {2, 0, 0}});
    if (number == 4) nodalScalar(frame, "CFAILST");
  }
  EXPECT_EQ((Records{name("J"), failed(1), name("I"), failed(10), name("J"), failed(2)}),
            behindValues(3, kCentroid));
  EXPECT_EQ(Records{}, behindValues(3, kStored));
  EXPECT_EQ(Records{}, behindValues(4, kCentroid));
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

TEST_F(Failures, AStatusAtSeveralSectionPointsIsSentOnce) {
  odb_SectionCategory& category = odb_->SectionCategory("shell", "");
  odb_Frame frame = step_.Frame(3, 3.0F);
  vectors(frame, "U", {{1, 0, 0}, {2, 0, 0}});
  odb_FieldOutput& status = frame.FieldOutput("STATUS", "", odb_Enum::SCALAR);
  for (const int point : {1, 5}) {
    status.addData(odb_Enum::CENTROID, instance(), ints({10}), floatRows({{0}}),
                   category.SectionPoint(point, "p"));
  }
  EXPECT_EQ(Records{failed(10)}, behindValues(3, kStored));
}

TEST_F(Failures, ALabelListRestrictsThem) {
  save();
  server_ = std::make_unique<ServerProcess>();
  recordsOf(*server_, "a 2");
  recordsOf(*server_, "b 2 77");
  EXPECT_EQ((Records{name("J"), failed(2), failed(2)}), behindValues(2, kCentroid));
}

}  // namespace
}  // namespace odbs::tests
