// SPDX-License-Identifier: BSD-3-Clause
// The commands that manage open databases. They throw what the database library throws, which the
// dispatcher discards whatever its type.
#pragma once

#include <string>

#include "server/core/sdk_adapter.h"

namespace odbs {

// `l`: fetches each open database once; sends nothing.
void walkOpenDatabases(sdk::Repository& repository);

// `c`: closes the database at `path`, or, for a file of an older release, its upgraded copy. Sends
// the same direct message about the copy as opening would, without making one.
void closeCommand(sdk::Repository& repository, const std::string& path, int outputFd);

// `u`: sends the direct upgrade-needed record and returns true when opening `path` would run an
// upgrade; otherwise sends nothing and returns false. Opens nothing.
bool checkUpgradeCommand(sdk::Repository& repository, const std::string& path, int outputFd);

}  // namespace odbs
