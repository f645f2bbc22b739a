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

void makeNodesDatabase(const std::string& path, int n) {
  std::vector<int> labels(static_cast<std::size_t>(n));
  std::iota(labels.begin(), labels.end(), 1);
  std::vector<float> coordinates(3 * labels.size());
  std::iota(coordinates.begin(), coordinates.end(), 0.0f);
  odb_Odb& odb = Odb(("writing " + path).c_str(), "", "", path.c_str());
  odb_Part& part = odb.Part("P", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
  odb_embedded::addNodes(part, n, labels.data(), coordinates.data());
  odb.rootAssembly().Instance("P-1", part);
  odb.save();
  odb.close();
}

void shiftModificationTime(const std::string& path, int seconds) {
  namespace fs = std::filesystem;
  fs::last_write_time(path, fs::last_write_time(path) + std::chrono::seconds(seconds));
}

}  // namespace odbs::tests
