// SPDX-License-Identifier: BSD-3-Clause
// Random-response stresses as the server streams them.
#include <cmath>

#include "tests/results/result_fixture.h"

namespace odbs::tests {
namespace {

class ModalStresses : public ResultTest {
 protected:
  odb_Step& frequencyStep(const char* name) { return step(name, odb_Enum::MODAL, "*FREQUENCY"); }
  odb_Step& responseStep(const char* name = "Response") {
    return step(name, odb_Enum::FREQUENCY, "*RANDOM RESPONSE");
  }

  // One stress state at the centroid of element 10.
  void mode(odb_Step& step, int number, const std::vector<float>& stress) {
    odb_Frame frame = step.Frame(number, static_cast<float>(number));
    frame.FieldOutput("S", "", odb_Enum::TENSOR_3D_FULL)
        .addData(odb_Enum::CENTROID, instance(), ints({10}), floatRows({stress}));
  }

  // The same matrix under both names, in a separate frame.
  void matrix(odb_Step& step, int order, const std::vector<float>& packed) {
    odb_Frame frame = step.Frame(nFrames_++, 1.0F);
    for (const char* name : {"MATRIX Sqq", "MATRIX RSqq"}) {
      odb_FieldOutput& field = frame.SymmetricMatrixOutput(name, "", order);
      if (packed.empty()) continue;
      field.addData(odb_Enum::WHOLE_ELEMENT, instance(), ints({10}), floatRows({packed}));
    }
  }

  // The reply after title and analysis kind.
  Records values(int step, const char* variable, int frame = 0) {
    select(step, frame, kStored, variable);
    return ResultTest::values("rs ");
  }

  static Records oneValue(float value) {
    return {Payload('%').i32(2), Payload(0x1E).raw("C3D8    ").i32(1).i32(-1),
            Payload(0x1F).i32(10).i32(-1).i32(0).f32(value)};
  }

  int nFrames_ = 0;
};

TEST_F(ModalStresses, AreSquaresTimesCovariancesAndTheRootsOfTheirSizes) {
  odb_Step& modes = frequencyStep("Modes");
  mode(modes, 1, {2, 0, 0, 1, 0, 0});
  mode(modes, 2, {2, 0, 0, 1, 0, 0});
  odb_Step& response = responseStep();
  matrix(response, 1, {3});
  matrix(response, 2, {1, -3, 1});  // not positive definite
  matrix(response, 3, {1, 1, 1, 1, 1, 1});
  EXPECT_EQ(oneValue(21), values(2, "MATRIX^Sqq"));
  EXPECT_EQ(oneValue(std::sqrt(21.0F)), values(2, "MATRIX^RSqq"));
  EXPECT_EQ(oneValue(-28), values(2, "MATRIX^Sqq", 1));
  EXPECT_EQ(oneValue(std::sqrt(28.0F)), values(2, "MATRIX^RSqq", 1));
  EXPECT_EQ(Records{}, values(2, "MATRIX^Sqq", 2)) << "more modes than there are";
}

TEST_F(ModalStresses, ComponentsAreFoundByLabelAndMissingShearsCountAsZero) {
  odb_SequenceString labels;
  for (const char* label : {"S12", "S33", "S11", "S22"}) labels.append(label);
  frequencyStep("Modes")
      .Frame(1, 1.0F)
      .FieldOutput("S", "", odb_Enum::TENSOR_3D_PLANAR, labels)
      .addData(odb_Enum::INTEGRATION_POINT, instance(), ints({10}),
               floatRows({{2, 0, 0, 0},
                          {0, 3, 0, 0},
                          {0, 0, 4, 1},
                          {0, 5, 5, 5},
                          {1, 0, 0, 0},
                          {0, 1, 0, 0},
                          {0, 0, 1, 0},
                          {0, 0, 0, 1}}));
  matrix(responseStep(), 1, {1});
  const Records records = values(2, "MATRIX^Sqq");
  const float expected[8] = {12, 9, 13, 0, 3, 1, 1, 1};
  ASSERT_EQ(10u, records.size());
  EXPECT_EQ(Payload('%').i32(4).operator std::string(), records[0]);
  for (int p = 1; p <= 8; ++p) {
    Payload value(p == 1 ? 0x1F : 0x17);
    if (p == 1) value.i32(10).i32(-1);
    value.i32(p).f32(expected[p - 1]);
    EXPECT_EQ(value.operator std::string(), records[static_cast<std::size_t>(p) + 1]) << p;
  }
}

TEST_F(ModalStresses, MembranesBesideSolidsHaveTheirShearThird) {
  odb_Instance& second = odb_->rootAssembly().Instance("J", odb_->parts()["P"]);
  odb_Step& modes = frequencyStep("Modes");
  mode(modes, 1, {2, 0, 0, 1, 0, 0});
  modes.frames()[0].fieldOutputs()["S"].addData(odb_Enum::CENTROID, second, ints({10}),
                                                floatRows({{4, 0, 1}}));
  matrix(responseStep(), 1, {1});
  EXPECT_EQ(Payload(0x15).f32(16 + 3).operator std::string(), values(2, "MATRIX^Sqq").back());
}

TEST_F(ModalStresses, TheModesAreThoseOfTheNearestEarlierFrequencyStep) {
  mode(frequencyStep("First"), 1, {1, 0, 0, 0, 0, 0});
  odb_Step& nearest = frequencyStep("Second");
  mode(nearest, 0, {7, 0, 0, 0, 0, 0});  // the base state
  odb_Frame plain = nearest.Frame(1, 1.0F);
  nodalScalar(plain, "NT11");
  mode(nearest, 2, {2, 0, 0, 0, 0, 0});
  step("Between");
  odb_Step& response = frequencyStep("Response");  // itself not examined
  mode(response, 1, {9, 0, 0, 0, 0, 0});
  nFrames_ = 2;
  matrix(response, 1, {1});
  EXPECT_EQ(oneValue(4), values(4, "MATRIX^Sqq", 1));
}

TEST_F(ModalStresses, WithoutModesTheReplyEndsBehindItsHead) {
  odb_Step& first = responseStep("Step-1");
  matrix(first, 1, {1});
  odb_Step& modes = frequencyStep("Modes");
  odb_Frame frame = modes.Frame(1, 1.0F);
  nodalScalar(frame, "NT11");  // no "S"
  odb_Step& last = responseStep("Step-3");
  nFrames_ = 0;
  matrix(last, 1, {1});
  matrix(last, 1, {});
  for (const auto& [number, index] : {std::pair(1, 0), {3, 0}, {3, 1}, {0, 0}}) {
    EXPECT_EQ(Records{}, values(number, "MATRIX^Sqq", index)) << number << index;
  }
}

TEST_F(ModalStresses, GatheredModesAreKeptByBlockUntilTheyAreFreed) {
  mode(frequencyStep("Modes-1"), 1, {1, 0, 0, 0, 0, 0});
  matrix(responseStep("Response-1"), 1, {1});
  odb_Step& modes = frequencyStep("Modes-2");
  mode(modes, 1, {3, 0, 0, 0, 0, 0});
  mode(modes, 2, {1, 0, 0, 0, 0, 0});
  odb_Step& response = responseStep("Response-2");
  nFrames_ = 0;
  matrix(response, 1, {2});
  matrix(response, 2, {1, 0, 1});
  EXPECT_EQ(oneValue(1), values(2, "MATRIX^Sqq"));
  EXPECT_EQ(oneValue(2), values(4, "MATRIX^Sqq"));  // stale modes, the new matrix
  server_->send("C");
  EXPECT_EQ(oneValue(18), values(4, "MATRIX^Sqq"));
  EXPECT_EQ(oneValue(10), values(4, "MATRIX^Sqq", 1));  // of another size: gathered anew
}

}  // namespace
}  // namespace odbs::tests
