// SPDX-License-Identifier: BSD-3-Clause
// Opening, reopening and evicting databases.
#include "registry/open_database.h"

#include <cstdint>
#include <map>
#include <new>

#include "port/port.h"
#include "registry/canonical_path.h"
#include "registry/database_caches.h"
#include "registry/upgrade_check.h"
#include "server/core/allocation.h"

namespace odbs {

namespace {

constexpr int kMostOpen = 4;  // an open that reaches this number evicts

struct OpenFile {
  port::FileStatus status;  // when the database was opened
  std::uint32_t stamp = 0;  // the smallest is the least recently used
  bool flag = false;        // set by the parent; no command reads it
};

// By repository key.
std::map<std::string, OpenFile> openFiles;
std::uint32_t stampCounter = 1;

// At the file system's full resolution: a change within the same second must be noticed.
bool sameFileState(const port::FileStatus& a, const port::FileStatus& b) {
  return a.modificationTime == b.modificationTime && a.size == b.size;
}

// The least recently used database but the new one, or an empty key.
std::string evictionCandidate(sdk::Repository& repository, const std::string& newKey) {
  const std::uint16_t newInode = port::fileStatus(newKey).inode;
  std::string candidate;
  std::uint32_t least = stampCounter + 1;
  for (const std::string& key : sdk::openKeys(repository)) {
    // Contract: 16 bits of the inode number. Where a file system has none, all numbers are 0 and
    // nothing is ever evicted.
    if (key == newKey || port::fileStatus(key).inode == newInode) continue;
    const auto record = openFiles.find(key);
    if (record == openFiles.end() || record->second.stamp > least) continue;
    candidate = key;
    least = record->second.stamp;
  }
  return candidate;
}

// Closes one database when too many are open. Its failures are not the new database's.
void evict(sdk::Repository& repository, const std::string& newKey) {
  try {
    if (sdk::nOpen(repository) < kMostOpen) return;
    std::string candidate = evictionCandidate(repository, newKey);
    if (upgradeRequired(candidate)) candidate = upgradedCopyOf(candidate);
    if (!sdk::isOpen(repository, candidate)) return;
    closeDatabase(repository, candidate);
    forgetUpgradeCheck(candidate);
  } catch (const std::bad_alloc&) {
    reportAllocationFailure(kServerSourceName, __LINE__);
  } catch (...) {
  }
}

odb_Odb& openNew(sdk::Repository& repository, const std::string& key) {
  odb_Odb& odb = sdk::openReadOnly(repository, key);
  openFiles[key] = {port::fileStatus(key), ++stampCounter, false};
  evict(repository, key);
  return odb;
}

// The open database `key`, from now on the most recently used one.
odb_Odb& touch(sdk::Repository& repository, const std::string& key) {
  const auto found = openFiles.find(key);
  if (found != openFiles.end() && found->second.stamp != stampCounter) {
    found->second.stamp = ++stampCounter;
  }
  return sdk::database(repository, key);
}

// The path to open for `path`: itself, or its upgraded copy, which is made if need be.
std::string currentRelease(sdk::Repository& repository, const std::string& path, int outputFd) {
  if (!upgradeRequired(path)) return path;
  const std::string copy = upgradedCopyOf(path);
  if (announceUpgradedCopy(path, outputFd)) {
    if (sdk::isOpen(repository, copy)) {
      closeDatabase(repository, copy);
      forgetUpgradeCheck(path);
    }
    sdk::upgrade(path, copy);
  }
  return copy;
}

// The key under which `path` is open, or was until now, perhaps written in another way; or `path`.
std::string keyFor(sdk::Repository& repository, const std::string& path,
                   const std::vector<std::string>& justClosed) {
  if (sdk::isOpen(repository, path)) return path;
  const std::string canonical = canonicalPath(path);
  std::vector<std::string> keys = sdk::openKeys(repository);
  keys.insert(keys.end(), justClosed.begin(), justClosed.end());
  for (const std::string& key : keys) {
    if (canonicalPath(key) == canonical) return key;
  }
  return path;
}

}  // namespace

odb_Odb& openDatabase(sdk::Repository& repository, const std::string& path, int outputFd) {
  try {
    const std::vector<std::string> justClosed = closeChangedDatabases(repository);
    const std::string current = currentRelease(repository, path, outputFd);
    const std::string key = keyFor(repository, current, justClosed);
    return sdk::isOpen(repository, key) ? touch(repository, key) : openNew(repository, key);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    throw OpenError();
  }
}

void closeDatabase(sdk::Repository& repository, const std::string& key) {
  resetDatabaseCaches(key);
  sdk::close(repository, sdk::database(repository, key));
  openFiles.erase(key);
}

std::vector<std::string> closeChangedDatabases(sdk::Repository& repository) {
  std::vector<std::string> closed;
  for (const std::string& key : sdk::openKeys(repository)) {
    const auto record = openFiles.find(key);
    if (record == openFiles.end()) continue;
    if (sameFileState(port::fileStatus(key), record->second.status)) continue;
    closeDatabase(repository, key);
    forgetUpgradeCheck(key);
    closed.push_back(key);
  }
  return closed;
}

void setDatabaseFlag(const odb_Odb& odb, bool flag) {
  const auto record = openFiles.find(sdk::keyOf(odb));
  if (record != openFiles.end()) record->second.flag = flag;
}

bool databaseFlag(const odb_Odb& odb) {
  const auto record = openFiles.find(sdk::keyOf(odb));
  return record != openFiles.end() && record->second.flag;
}

}  // namespace odbs
