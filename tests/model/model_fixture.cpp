// SPDX-License-Identifier: BSD-3-Clause
// The fixture of tests/model/model_fixture.h.
#include "tests/model/model_fixture.h"

#include <stdexcept>

namespace odbs::tests {

namespace {

template <class Sequence, class Value>
Sequence sequenceOf(const std::vector<Value>& values) {
  Sequence sequence;
  for (const Value value : values) sequence.append(value);
  return sequence;
}

template <class Rows, class Row, class Value>
Rows rowsOf(const std::vector<std::vector<Value>>& values) {
  Rows result;
  for (const std::vector<Value>& row : values) result.append(sequenceOf<Row>(row));
  return result;
}

}  // namespace

Records withTag(const Records& records, int tag) {
  Records found;
  for (const std::string& record : records) {
    if (record[0] == static_cast<char>(tag)) found.push_back(record);
  }
  return found;
}

odb_SequenceInt ints(const std::vector<int>& values) {
  return sequenceOf<odb_SequenceInt>(values);
}

odb_SequenceSequenceInt rows(const std::vector<std::vector<int>>& values) {
  return rowsOf<odb_SequenceSequenceInt, odb_SequenceInt>(values);
}

odb_SequenceSequenceFloat floatRows(const std::vector<std::vector<float>>& values) {
  return rowsOf<odb_SequenceSequenceFloat, odb_SequenceFloat>(values);
}

odb_SequenceSequenceDouble doubleRows(const std::vector<std::vector<double>>& values) {
  return rowsOf<odb_SequenceSequenceDouble, odb_SequenceDouble>(values);
}

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
  odb_->close();
  odb_ = nullptr;
  ServerProcess server;
  server.send(head + path_);
  Records records;
  replyBytes_.clear();
  for (;;) {
    const std::string length = server.read(2);
    if (length.size() < 2) throw std::runtime_error("the reply ended without acknowledgement");
    const auto low = static_cast<unsigned char>(length[0]);
    const auto high = static_cast<unsigned char>(length[1]);
    const std::string payload = server.read(static_cast<std::size_t>(low | high << 8));
    replyBytes_ += length + payload;
    if (payload == "~") return records;
    records.push_back(payload);
  }
}

}  // namespace odbs::tests
