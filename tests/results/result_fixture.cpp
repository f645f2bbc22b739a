// SPDX-License-Identifier: BSD-3-Clause
// The fixture of tests/results/result_fixture.h.
#include "tests/results/result_fixture.h"

namespace odbs::tests {

ResultTest::ResultTest() {
  path_ = folder_.file("results.odb");
  odb_ = &Odb("results", "A title", "", path_.c_str());
  odb_Part& body = odb_->Part("P", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
  body.addNodes(ints({1, 2, 3, 4, 5, 6, 7, 8}), floatRows(corners()));
  body.addElements(ints({10}), rows({{1, 2, 3, 4, 5, 6, 7, 8}}), "C3D8");
  odb_->rootAssembly().Instance("I", body);
}

ResultTest::~ResultTest() {
  if (odb_) odb_->close();
}

std::vector<std::vector<float>> ResultTest::corners() {
  return {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
}

odb_Step& ResultTest::step(const char* name, odb_Enum::odb_DomainEnum domain,
                           const char* procedure) {
  return odb_->Step(name, "about", domain, 1.0, "", procedure);
}

odb_FieldOutput& ResultTest::nodalScalar(odb_Frame& frame, const char* name, float first) {
  odb_FieldOutput& field = frame.FieldOutput(name, "a scalar", odb_Enum::SCALAR);
  field.addData(odb_Enum::NODAL, instance(), ints({1, 2}), floatRows({{first}, {first + 1}}));
  return field;
}

odb_FieldOutput& ResultTest::stress(odb_Frame& frame) {
  odb_SequenceInvariant invariants;
  invariants.append(odb_Enum::MISES);
  invariants.append(odb_Enum::PRESS);
  odb_FieldOutput& field =
      frame.FieldOutput("S", "Stress", odb_Enum::TENSOR_3D_FULL, odb_SequenceString(), invariants);
  std::vector<std::vector<float>> points;
  for (int p = 1; p <= 8; ++p) {
    points.emplace_back();
    for (int k = 0; k < 6; ++k) points.back().push_back(static_cast<float>(10 * p + k));
  }
  field.addData(odb_Enum::INTEGRATION_POINT, instance(), ints({10}), floatRows(points));
  return field;
}

void ResultTest::save() {
  if (!odb_) return;
  odb_->save();
  odb_->close();
  odb_ = nullptr;
}

Records ResultTest::ask(const std::string& head) {
  save();
  if (!server_) server_ = std::make_unique<ServerProcess>();
  return recordsOf(*server_, head + path_);
}

void ResultTest::select(int step, int frame, int position, const char* variable) {
  ask("o ");
  server_->send("d " + std::to_string(step) + " " + std::to_string(frame) + " " +
                std::to_string(position) + " " + variable);
}

Records ResultTest::values(const std::string& head) {
  const Records records = ask(head);
  EXPECT_EQ(title("A title"), records.at(0));
  EXPECT_EQ(analysisKind(-1), records.at(1));
  return Records(records.begin() + 2, records.end());
}

}  // namespace odbs::tests
