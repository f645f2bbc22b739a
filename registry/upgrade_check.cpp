// SPDX-License-Identifier: BSD-3-Clause
// Databases of older releases. Contract: modification times are compared in whole seconds here, so
// that a copy counts as current that was made in the second of the file's last change.
#include "registry/upgrade_check.h"

#include <map>

#include "port/port.h"
#include "server/core/record.h"
#include "server/core/sdk_adapter.h"

namespace odbs {

namespace {

struct UpgradeCheck {
  port::FileStatus status;  // when the library was asked
  bool required = false;    // its answer
};

// By path, also of paths that are not open.
std::map<std::string, UpgradeCheck> upgradeChecks;

}  // namespace

bool upgradeRequired(const std::string& path) {
  const port::FileStatus status = port::fileStatus(path);
  const auto known = upgradeChecks.find(path);
  if (known == upgradeChecks.end()) {
    const bool required = sdk::isUpgradeRequired(path);
    upgradeChecks[path] = {status, required};
    return required;
  }
  UpgradeCheck& check = known->second;
  if (status.modificationSeconds != check.status.modificationSeconds ||
      status.size != check.status.size) {
    check.required = sdk::isUpgradeRequired(path);
    check.status = status;
  }
  return check.required;
}

void forgetUpgradeCheck(const std::string& path) {
  upgradeChecks.erase(path);
}

std::string upgradedCopyOf(const std::string& path) {
  return path + ".odb";
}

bool upgradedCopyIsStale(const std::string& path) {
  const port::FileStatus copy = port::fileStatus(upgradedCopyOf(path));
  return !copy.exists || port::fileStatus(path).modificationSeconds > copy.modificationSeconds;
}

bool announceUpgradedCopy(const std::string& path, int outputFd) {
  const bool stale = upgradedCopyIsStale(path);
  sendMessage(outputFd,
              (stale ? "odb upgrade to: " : "Found upgraded odb: ") + upgradedCopyOf(path));
  return stale;
}

}  // namespace odbs
