// SPDX-License-Identifier: BSD-3-Clause
// Files of a test: a new folder, and whole files as strings of bytes.
#pragma once

#include <filesystem>
#include <string>

namespace odbs::tests {

// A new folder, deleted with all that is in it.
class TemporaryFolder {
 public:
  // Its name begins with `prefix`.
  explicit TemporaryFolder(const std::string& prefix = "odbs");
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // The path of a file in it; nothing is created.
  std::string file(const std::string& name) const { return (path_ / name).string(); }
  // Writes a file in it, with the folders in its name, and returns its path.
  std::string write(const std::string& name, const std::string& bytes) const;

 private:
  std::filesystem::path path_;
};

// Replaces the file, if there is one.
void writeFile(const std::string& path, const std::string& bytes);
// All bytes of the file; empty when it cannot be read.
std::string readFile(const std::string& path);

}  // namespace odbs::tests
