// SPDX-License-Identifier: BSD-3-Clause
// The files of tests/support/temporary_folder.h.
#include "tests/support/temporary_folder.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <iterator>

#include "port/port.h"

namespace odbs::tests {

TemporaryFolder::TemporaryFolder(const std::string& prefix) {
  static std::atomic<int> counter{0};
  const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
  path_ = std::filesystem::temp_directory_path() /
          (prefix + "_" + std::to_string(port::currentProcessId()) + "_" +
           std::to_string(now % 1000000000) + "_" + std::to_string(counter++));
  std::filesystem::create_directories(path_);
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& bytes) const {
  const std::filesystem::path path = path_ / name;
  std::filesystem::create_directories(path.parent_path());
  // A fresh file: some file systems flush a file that is cut and written again.
  std::filesystem::remove(path);
  writeFile(path.string(), bytes);
  return path.string();
}

void writeFile(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<long>(bytes.size()));
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace odbs::tests
