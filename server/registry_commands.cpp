// SPDX-License-Identifier: BSD-3-Clause
// The commands that manage open databases.
#include "server/registry_commands.h"

#include "registry/open_database.h"
#include "registry/upgrade_check.h"
#include "server/core/record.h"

namespace odbs {

namespace {

constexpr unsigned char kUpgradeNeededTag = '|';

// Upgrade-needed record, direct. Shares its tag with the message record.
//   offset  size  content
//   0       1     kUpgradeNeededTag
//   1       4     1
void sendUpgradeNeeded(int outputFd) {
  beginRecord(kUpgradeNeededTag);
  putU32(1);
  sendDirect(outputFd);
}

}  // namespace

void walkOpenDatabases(sdk::Repository& repository) {
  for (const std::string& key : sdk::openKeys(repository)) sdk::database(repository, key);
}

void closeCommand(sdk::Repository& repository, const std::string& path, int outputFd) {
  closeChangedDatabases(repository);
  std::string key = path;
  if (upgradeRequired(path)) {
    announceUpgradedCopy(path, outputFd);
    key = upgradedCopyOf(path);
  }
  if (!sdk::isOpen(repository, key)) return;
  closeDatabase(repository, key);
  forgetUpgradeCheck(path);
}

bool checkUpgradeCommand(sdk::Repository& repository, const std::string& path, int outputFd) {
  closeChangedDatabases(repository);
  if (!upgradeRequired(path)) return false;
  if (!upgradedCopyIsStale(path) && !upgradeRequired(upgradedCopyOf(path))) return false;
  sendUpgradeNeeded(outputFd);
  return true;
}

}  // namespace odbs
