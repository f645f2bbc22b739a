// SPDX-License-Identifier: BSD-3-Clause
// A small model with one of everything, and a folder for the files of a test.
#pragma once

#include <odb_API.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>
#include <odb_embedded.h>

#include <filesystem>
#include <string>

namespace odbs::test {

// A folder that is removed at the end, with a blank in its name.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  std::string file(const std::string& name) const { return (path_ / name).string(); }
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};

odb_SequenceInt ints(std::initializer_list<int> numbers);
odb_SequenceFloat floats(std::initializer_list<float> numbers);
odb_SequenceSequenceInt rows(std::initializer_list<std::initializer_list<int>> lists);
odb_SequenceSequenceFloat points(std::initializer_list<std::initializer_list<float>> lists);
odb_SequenceSequenceDouble doubles(std::initializer_list<std::initializer_list<double>> lists);

// Two unit cubes of part BLOCK placed as instances A-1 (in place) and B-1 (turned by 90 degrees
// about z, then shifted), a planar rigid part, and one of everything else. Not saved.
odb_Odb& makeSampleModel(const std::string& name, const std::string& path);

}  // namespace odbs::test
