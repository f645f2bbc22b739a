// SPDX-License-Identifier: BSD-3-Clause
// Damaged and foreign files: each ends in an exception of the library or in readable data, never in
// anything else. Run with sanitizers as well.
#include "odb/src/storage/layout.h"
#include "odb/src/storage/storage.h"
#include "tests/odb/read_everything.h"
#include "tests/odb/sample_model.h"

#include <gtest/gtest.h>
#include <hdf5.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

namespace odbs::test {
namespace {

using Bytes = std::string;
using tests::readFile;
using tests::writeFile;

// Runs `use`; true when it ran through, false when the library refused. Anything else escapes.
template <class Use>
bool survives(Use use) {
  try {
    use();
    return true;
  } catch (const odb_Exception& error) {
    EXPECT_NE(std::string(error.UserReport().CStr()), "");
    return false;
  }
}

struct Cell;

class DamagedFile : public testing::Test {
 protected:
  void SetUp() override {
    odb_Odb& odb = makeSampleModel("made", good_);
    odb.save();
    odb_embedded::saveInOldLayout(odb, old_.c_str());
    odb.close();
  }

  void TearDown() override {
    odb_finalizeAPI();
    EXPECT_EQ(H5Fget_obj_count(static_cast<hid_t>(H5F_OBJ_ALL), H5F_OBJ_ALL), 0)
        << "HDF5 objects were left open";
  }

  // Opens and reads the file, and closes it again.
  bool readable() {
    const bool good = survives([&] { readEverything(openOdb(bad_.c_str(), true)); });
    odb_finalizeAPI();
    return good;
  }

  // How many of `nRounds` single changes of these cells were refused.
  int refusedOf(const std::string& path, const std::vector<Cell>& cells, int nRounds);

  TempFolder folder_;
  std::string good_ = folder_.file("good.odb");
  std::string old_ = folder_.file("old.odb");
  std::string bad_ = folder_.file("bad.odb");
};

// One random damage: flipped bits, a cut, a run of zeros or ones, a moved piece.
Bytes damaged(Bytes bytes, std::mt19937& random) {
  const auto place = [&] { return random() % bytes.size(); };
  switch (random() % 6) {
    case 0:
    case 1:
      for (unsigned n = 1 + random() % 8; n > 0; --n) {
        char& byte = bytes[place()];
        byte = static_cast<char>(byte ^ (1 << random() % 8));
      }
      break;
    case 2:
      bytes.resize(place());
      break;
    case 3: {
      const std::size_t first = place();
      const char value = random() % 2 ? '\0' : '\xff';
      for (std::size_t i = first; i < bytes.size() && i < first + 64; ++i) bytes[i] = value;
      break;
    }
    case 4: {
      const std::size_t from = place();
      const std::size_t to = place();
      for (std::size_t i = 0; i < 200 && std::max(from, to) + i < bytes.size(); ++i) {
        bytes[to + i] = bytes[from + i];
      }
      break;
    }
    default:
      bytes.insert(bytes.end(), random() % 1000, 'x');
  }
  return bytes;
}

TEST_F(DamagedFile, EndsInAnExceptionOrReadableDataThreeHundredTimes) {
  const Bytes good = readFile(good_);
  std::mt19937 random(20240229);
  int nRefused = 0;
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE(round);
    writeFile(bad_, damaged(good, random));
    if (!readable()) ++nRefused;
  }
  // Most places of a file matter; the rest is padding and free texts.
  EXPECT_GT(nRefused, 90);
}

TEST_F(DamagedFile, OfTheOldLayoutIsUpgradedOrRefusedAHundredTimes) {
  const Bytes good = readFile(old_);
  std::mt19937 random(7);
  int nRefused = 0;
  for (int round = 0; round < 100; ++round) {
    SCOPED_TRACE(round);
    writeFile(folder_.file("bad old.odb"), damaged(good, random));
    std::filesystem::remove(bad_);
    const bool upgraded =
        survives([&] { upgradeOdb(folder_.file("bad old.odb").c_str(), bad_.c_str()); });
    if (upgraded) {
      readable();
    } else {
      ++nRefused;
      EXPECT_FALSE(std::filesystem::exists(bad_));
    }
  }
  EXPECT_GT(nRefused, 15);
}

// One number of one table, or of an array of labels.
struct Cell {
  std::string dataset;
  std::int64_t row = 0;
  std::size_t column = 0;
};

constexpr const char* kLabels = "arrays/int32.0";

engine::Hdf5File::Dataset opened(const engine::Hdf5File& file, const std::string& name) {
  return name == kLabels ? file.open(name, engine::Number::kInt32, 1)
                         : file.open(name, engine::Number::kInt64, 2);
}

std::vector<Cell> cellsOf(const std::string& path, const std::string& dataset) {
  const engine::Hdf5File file = engine::Hdf5File::openForReading(path);
  std::vector<Cell> cells;
  if (!file.has(dataset)) return cells;
  const auto dims = opened(file, dataset).dims;
  const std::int64_t width = dims.size() == 2 ? dims[1] : 1;
  for (std::int64_t i = 0; i < dims[0] * width; ++i) {
    cells.push_back({dataset, i / width, static_cast<std::size_t>(i % width)});
  }
  return cells;
}

// The cells of all tables whose names have one of these words.
std::vector<Cell> cellsOfTables(const std::string& path, const std::vector<std::string>& words) {
  std::vector<Cell> cells;
  for (const engine::layout::TableSpec* const shape : engine::layout::kAllTables) {
    const std::string name = shape->name;
    if (std::none_of(words.begin(), words.end(),
                     [&](const auto& word) { return name.find(word) != std::string::npos; })) {
      continue;
    }
    const std::vector<Cell> more = cellsOf(path, "tables/" + name + ".ints");
    cells.insert(cells.end(), more.begin(), more.end());
  }
  return cells;
}

// With checksums that fit.
template <class Number>
void setCell(const std::string& path, const Cell& cell, std::int64_t value) {
  engine::Hdf5File file = engine::Hdf5File::openForWriting(path, path);
  {
    const auto dataset = opened(file, cell.dataset);
    std::vector<Number> row(dataset.dims.size() == 2 ? static_cast<std::size_t>(dataset.dims[1])
                                                     : 1);
    file.read(dataset, cell.row, 1, row.data());
    row[cell.column] = static_cast<Number>(value);
    file.write(dataset, cell.row, 1, row.data());
  }
  file.finish();
}

int DamagedFile::refusedOf(const std::string& path, const std::vector<Cell>& cells, int nRounds) {
  const std::int64_t values[] = {
      -2, -1, 0, 1, 2, 3, 5, 7, 48, 1000, INT32_MAX, INT64_MAX, INT64_MIN, std::int64_t(1) << 32};
  const Bytes good = readFile(path);
  std::mt19937 random(1);
  int nRefused = 0;
  for (int round = 0; round < nRounds; ++round) {
    const Cell& cell = cells[random() % cells.size()];
    const std::int64_t value = values[random() % std::size(values)];
    SCOPED_TRACE(cell.dataset + " " + std::to_string(cell.row) + " " + std::to_string(cell.column) +
                 " = " + std::to_string(value));
    writeFile(bad_, good);
    (cell.dataset == kLabels ? setCell<std::int32_t> : setCell<std::int64_t>)(bad_, cell, value);
    if (!readable()) ++nRefused;
  }
  return nRefused;
}

TEST_F(DamagedFile, WithAnImpossibleNumberInAnyTableNeverCrashes) {
  const std::vector<Cell> cells = cellsOfTables(good_, {""});
  ASSERT_GT(cells.size(), 500u);
  EXPECT_GT(refusedOf(good_, cells, 300), 90);
}

TEST_F(DamagedFile, WithAnImpossibleNumberInItsResultsNeverCrashes) {
  const std::string path = folder_.file("results.odb");
  odb_Odb& odb = makeResultsSample("results", path);
  odb.save();
  odb.close();
  const std::vector<Cell> cells = cellsOfTables(path, {"field", "step_results", "history", "fail"});
  ASSERT_GT(cells.size(), 150u);
  EXPECT_GT(refusedOf(path, cells, 800), 250);
  refusedOf(path, cellsOf(path, kLabels), 200);
}

TEST_F(DamagedFile, ThatIsNoDatabaseCannotBeOpened) {
  const auto refused = [&](int number) {
    try {
      openOdb(bad_.c_str(), true);
    } catch (const odb_Exception& error) {
      EXPECT_FALSE(isUpgradeRequiredForOdb(bad_.c_str()));
      return error.ErrorNo() == number;
    }
    return false;
  };
  EXPECT_TRUE(refused(odb_ERROR_CANNOT_OPEN)) << "missing";
  writeFile(bad_, {});
  EXPECT_TRUE(refused(odb_ERROR_CANNOT_OPEN)) << "empty";
  writeFile(bad_, {'t', 'e', 'x', 't', '\n'});
  EXPECT_TRUE(refused(odb_ERROR_CANNOT_OPEN)) << "text";
  for (const H5F_libver_t version : {H5F_LIBVER_EARLIEST, H5F_LIBVER_LATEST}) {
    const hid_t access = H5Pcreate(H5P_FILE_ACCESS);
    H5Pset_libver_bounds(access, version, H5F_LIBVER_LATEST);
    H5Fclose(H5Fcreate(bad_.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, access));
    H5Pclose(access);
    EXPECT_TRUE(refused(odb_ERROR_CANNOT_OPEN)) << "another HDF5 file";
  }
  std::filesystem::remove(bad_);
  std::filesystem::create_directory(bad_);
  EXPECT_TRUE(refused(odb_ERROR_CANNOT_OPEN)) << "a folder";
}

TEST_F(DamagedFile, OfAnotherReleaseSaysWhatToDo) {
  const auto errorOf = [&](const std::string& path) {
    try {
      openOdb(path.c_str());
    } catch (const odb_Exception& error) {
      return error.ErrorNo();
    }
    return 0;
  };
  EXPECT_EQ(errorOf(old_), odb_ERROR_OLD_RELEASE);
  EXPECT_TRUE(isUpgradeRequiredForOdb(old_.c_str()));
  EXPECT_FALSE(isUpgradeRequiredForOdb(good_.c_str()));
  EXPECT_THROW(upgradeOdb(good_.c_str(), bad_.c_str()), odb_Exception);
  EXPECT_FALSE(std::filesystem::exists(bad_));
  odb_embedded::stampRelease(good_.c_str(), 3);
  EXPECT_EQ(odb_embedded::releaseOf(good_.c_str()), 3);
  EXPECT_EQ(errorOf(good_), odb_ERROR_NEW_RELEASE);
  EXPECT_FALSE(isUpgradeRequiredForOdb(good_.c_str()));
}

TEST_F(DamagedFile, CutWhileItIsOpenGivesNoZerosAndIsReadAgainWhenWhole) {
  const Bytes bytes = readFile(good_);
  odb_Odb& odb = openOdb(good_.c_str(), true);
  std::filesystem::resize_file(good_, bytes.size() / 2);
  EXPECT_FALSE(survives([&] { readEverything(odb); }));
  writeFile(good_, bytes);
  EXPECT_EQ(readEverything(odb), readEverything(openOdb("afresh", good_.c_str(), true)));
}

TEST_F(DamagedFile, UpgradeLeavesALogBesideTheCopy) {
  upgradeOdb(old_.c_str(), folder_.file("new.odb").c_str());
  const Bytes log = readFile(folder_.file("new.log"));
  EXPECT_NE(log.find("table sets: "), std::string::npos);
  EXPECT_NE(log.find("upgrade completed"), std::string::npos);
}

}  // namespace
}  // namespace odbs::test
