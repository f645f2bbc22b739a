// SPDX-License-Identifier: BSD-3-Clause
// The upgrade check and the answers it keeps.
#include "registry/upgrade_check.h"

#include <gtest/gtest.h>
#include <odb_embedded.h>

#include <chrono>
#include <filesystem>

#include "tests/support/databases.h"
#include "tests/support/server_process.h"

namespace odbs {
namespace {

namespace fs = std::filesystem;

class UpgradeCheck : public testing::Test {
 protected:
  // Gives the file another release and leaves size and modification time as they were.
  void restamp(int release) {
    const fs::file_time_type time = fs::last_write_time(path);
    const auto size = fs::file_size(path);
    odb_embedded::stampRelease(path.c_str(), release);
    fs::last_write_time(path, time);
    ASSERT_EQ(fs::file_size(path), size);
  }
  tests::TemporaryFolder folder;
  const std::string path = folder.file("a.odb");
};

TEST_F(UpgradeCheck, KnowsTheOldReleaseFromTheCurrentOne) {
  tests::makeDatabase(path);
  EXPECT_FALSE(upgradeRequired(path));
  tests::makeOldDatabase(folder.file("old.odb"));
  EXPECT_TRUE(upgradeRequired(folder.file("old.odb")));
}

TEST_F(UpgradeCheck, KeepsItsAnswerWhileTheFileLooksUnchanged) {
  tests::makeDatabase(path);
  EXPECT_FALSE(upgradeRequired(path));
  restamp(odb_embedded::kOldRelease);
  EXPECT_FALSE(upgradeRequired(path));
  tests::shiftModificationTime(path, 2);
  EXPECT_TRUE(upgradeRequired(path));
}

TEST_F(UpgradeCheck, AsksAgainAfterItWasForgotten) {
  tests::makeDatabase(path);
  EXPECT_FALSE(upgradeRequired(path));
  restamp(odb_embedded::kOldRelease);
  forgetUpgradeCheck(path);
  EXPECT_TRUE(upgradeRequired(path));
}

TEST_F(UpgradeCheck, ComparesTheCopyWithTheFile) {
  tests::makeDatabase(path);
  EXPECT_TRUE(upgradedCopyIsStale(path));
  tests::makeDatabase(upgradedCopyOf(path));
  fs::last_write_time(upgradedCopyOf(path), fs::last_write_time(path));
  EXPECT_FALSE(upgradedCopyIsStale(path));
  const auto second = std::chrono::floor<std::chrono::seconds>(fs::last_write_time(path));
  fs::last_write_time(upgradedCopyOf(path), second);
  fs::last_write_time(path, second + std::chrono::milliseconds(900));
  EXPECT_FALSE(upgradedCopyIsStale(path)) << "made in the second of the last change";
  tests::shiftModificationTime(path, 2);
  EXPECT_TRUE(upgradedCopyIsStale(path));
}

}  // namespace
}  // namespace odbs
