// SPDX-License-Identifier: BSD-3-Clause
// Small databases for tests.
#include "tests/support/databases.h"

#include <odb_API.h>
#include <odb_embedded.h>

#include <chrono>
#include <filesystem>
#include <numeric>
#include <vector>

namespace odbs::tests {

void makeDatabase(const std::string& path, const std::string& title) {
  const std::string key = "writing " + path;  // not the key under which it will be read
  odb_Odb& odb = Odb(key.c_str(), title.c_str(), "", path.c_str());
  odb.save();
  odb.close();
}

void makeOldDatabase(const std::string& path, const std::string& title) {
  odb_Odb& odb = Odb("old", title.c_str());
  odb_embedded::saveInOldLayout(odb, path.c_str());
  odb.close();
}

void makeFutureDatabase(const std::string& path) {
  makeDatabase(path);
  odb_embedded::stampRelease(path.c_str(), odb_embedded::kCurrentRelease + 1);
}

namespace {

// A database under construction with one instance of `n` nodes, labels 1 to n, in a row.
odb_Odb& nodesDatabase(const std::string& path, int n) {
  std::vector<int> labels(static_cast<std::size_t>(n));
  std::iota(labels.begin(), labels.end(), 1);
  std::vector<float> coordinates(3 * labels.size());
  std::iota(coordinates.begin(), coordinates.end(), 0.0f);
  odb_Odb& odb = Odb(("writing " + path).c_str(), "", "", path.c_str());
  odb_Part& part = odb.Part("P", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
  odb_embedded::addNodes(part, n, labels.data(), coordinates.data());
  odb.rootAssembly().Instance("P-1", part);
  return odb;
}

}  // namespace

void makeNodesDatabase(const std::string& path, int n) {
  odb_Odb& odb = nodesDatabase(path, n);
  odb.save();
  odb.close();
}

void makeFramesDatabase(const std::string& path, int n) {
  odb_Odb& odb = nodesDatabase(path, 1);
  odb_SequenceInt labels;
  labels.append(1);
  odb_SequenceFloat value;
  value.append(20.0F);
  odb_SequenceSequenceFloat values;
  values.append(value);
  odb_Step& step = odb.Step("S", "", odb_Enum::TIME, 1.0);
  for (int i = 0; i < n; ++i) {
    odb_Frame frame = step.Frame(i, static_cast<float>(i), "frame");
    odb_FieldOutput& field = frame.FieldOutput("NT11", "temperature", odb_Enum::SCALAR);
    field.addData(odb_Enum::NODAL, odb.rootAssembly().instances()["P-1"], labels, values);
  }
  odb.save();
  odb.close();
}

void shiftModificationTime(const std::string& path, int seconds) {
  namespace fs = std::filesystem;
  fs::last_write_time(path, fs::last_write_time(path) + std::chrono::seconds(seconds));
}

}  // namespace odbs::tests
