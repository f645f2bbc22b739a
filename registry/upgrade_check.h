// SPDX-License-Identifier: BSD-3-Clause
// Databases of older releases: which files need an upgrade, and where their upgraded copies are.
#pragma once

#include <string>

namespace odbs {

// True when the file at `path` was written by an older release. The answer is kept for as long as
// the file's modification time and size stay the same. Throws what the database library throws.
bool upgradeRequired(const std::string& path);

// Drops the answer kept for `path`.
void forgetUpgradeCheck(const std::string& path);

// Where the upgraded copy of the database at `path` is, or would be: the path with ".odb" appended,
// extension included.
std::string upgradedCopyOf(const std::string& path);

// True when the upgraded copy of `path` is missing or older than the file itself.
bool upgradedCopyIsStale(const std::string& path);

// Sends the parent, directly, whether the upgraded copy of `path` is found or has yet to be made.
// Returns the answer of `upgradedCopyIsStale`.
bool announceUpgradedCopy(const std::string& path, int outputFd);

}  // namespace odbs
