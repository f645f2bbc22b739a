// SPDX-License-Identifier: BSD-3-Clause
// Result files made for a test: a temporary file of given bytes, and the blocks of a .frd file as
// text or as binary.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "base/bytes.h"

namespace odbs::importer {

// A file that lives as long as the object.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& bytes, const std::string& extension = ".frd") {
    static int number = 0;
    const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string("odbs_") + test->test_suite_name() + "_" + test->name() + "_" +
                       std::to_string(++number) + extension;
    std::replace(name.begin(), name.end(), '/', '_');  // of tests with parameters
    path_ = std::filesystem::temp_directory_path() / name;
    std::ofstream(path_, std::ios::binary) << bytes;
  }
  ~TemporaryFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  std::string path() const { return path_.string(); }
  std::string name() const { return path_.filename().string(); }

 private:
  std::filesystem::path path_;
};

inline std::string blockHead(const char* key, std::size_t count, int format) {
  char line[128];
  std::snprintf(line, sizeof line, "%5s%-18s %12zu%37s%1d\n", key, "C", count, "", format);
  std::string text = line;
  text.erase(text.find('C') + 1, 1);
  return text;
}

inline std::string resultHead(double value, std::size_t count, int analysis, int number,
                              const char* name, int format) {
  char line[128];
  std::snprintf(line, sizeof line, "  100CL  %3d%12.5E%12zu%20s%2d%5d%-10s%2d\n", 100 + number,
                value, count, "", analysis, number, name, format);
  return line;
}

inline std::string field(const char* name, const std::vector<std::string>& components,
                         bool withAll) {
  char line[128];
  std::snprintf(line, sizeof line, " -4  %-8s%5zu    1\n", name, components.size() + withAll);
  std::string text = line;
  int row = 0;
  for (const std::string& component : components) {
    std::snprintf(line, sizeof line, " -5  %-8s    1    2%5d    0\n", component.c_str(), ++row);
    text += line;
  }
  if (withAll) text += " -5  ALL         1    2    0    0    1ALL\n";
  return text;
}

inline std::string bytes32(std::int32_t value) {
  unsigned char bytes[4];
  putI32(bytes, value);
  return {reinterpret_cast<const char*>(bytes), sizeof bytes};
}

inline std::string bytesFloat(float value) {
  unsigned char bytes[4];
  putF32(bytes, value);
  return {reinterpret_cast<const char*>(bytes), sizeof bytes};
}

inline std::string bytesDouble(double value) {
  unsigned char bytes[8];
  putF64(bytes, value);
  return {reinterpret_cast<const char*>(bytes), sizeof bytes};
}

}  // namespace odbs::importer
