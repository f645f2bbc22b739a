// SPDX-License-Identifier: BSD-3-Clause
// The fixture of tests/model/model_fixture.h.
#include "tests/model/model_fixture.h"

namespace odbs::tests {

ModelTest::ModelTest() {
  path_ = folder_.file("model.odb");
  odb_ = &Odb("model", "A title", "", path_.c_str());
  odb_->extendApi(odb_Enum::odb_SECTION, sections_);
  odb_->extendApi(odb_Enum::odb_MATERIAL, materials_);
}

ModelTest::~ModelTest() {
  if (odb_ != nullptr) odb_->close();
}

odb_Part& ModelTest::part(const char* name, odb_Enum::odb_DimensionEnum space) {
  return odb_->Part(name, space, odb_Enum::DEFORMABLE_BODY);
}

odb_Instance& ModelTest::instance(const char* name, odb_Part& part) {
  return odb_->rootAssembly().Instance(name, part);
}

odb_Instance& ModelTest::cube(const char* instanceName, const char* categoryName) {
  odb_Part& body = part("P");
  body.addNodes(ints({1, 2, 3, 4, 5, 6, 7, 8}), floatRows({{0, 0, 0},
                                                           {1, 0, 0},
                                                           {1, 1, 0},
                                                           {0, 1, 0},
                                                           {0, 0, 1},
                                                           {1, 0, 1},
                                                           {1, 1, 1},
                                                           {0, 1, 1}}));
  body.addElements(ints({10}), rows({{1, 2, 3, 4, 5, 6, 7, 8}}), "C3D8R", "ALL",
                   odb_->SectionCategory(categoryName, ""));
  return instance(instanceName, body);
}

Records ModelTest::stream(char command) {
  return streamLine(std::string(1, command) + " ");
}

Records ModelTest::streamLine(const std::string& head) {
  odb_->save();
  return streamClosed(head);
}

Records ModelTest::streamClosed(const std::string& head) {
  odb_->close();
  odb_ = nullptr;
  ServerProcess server;
  return recordsOf(server, head + path_, &replyBytes_);
}

}  // namespace odbs::tests
