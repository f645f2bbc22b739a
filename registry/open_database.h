// SPDX-License-Identifier: BSD-3-Clause
// From a path to an open database. All exporters get their database here.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "server/core/sdk_adapter.h"

namespace odbs {

// The one failure that the server raises itself.
class OpenError : public std::runtime_error {
 public:
  OpenError() : std::runtime_error("Error openOdb") {}
};

// The open database at `path`, opened read-only when it is not open yet under this path or an
// equivalent one. A file of an older release is replaced by its upgraded copy, which is made when
// it is missing or stale; direct message records on `outputFd` report it. A database whose file has
// changed is closed and opened again. Opening a fourth database closes the least recently used one.
// The reference is valid until the database is closed, at the latest by the next call of this.
// Throws OpenError on any failure but bad_alloc, which passes; messages already sent stay sent.
odb_Odb& openDatabase(sdk::Repository& repository, const std::string& path, int outputFd);

// Closes the database that is open under `key`, with its caches and its record.
void closeDatabase(sdk::Repository& repository, const std::string& key);

// Closes the databases whose files have changed, and returns their keys; what is asked for is
// opened again as a new file. To be called before a file is looked into: as long as one that was
// rewritten in place is open under another path, the library shows the old file's structure under
// every path.
std::vector<std::string> closeChangedDatabases(sdk::Repository& repository);

// A flag that the parent sets per open database with `S`, `s` and `irs`; false until set, and again
// after a reopening. Contract: it is kept with the database and changes no reply.
void setDatabaseFlag(const odb_Odb& odb, bool flag);
bool databaseFlag(const odb_Odb& odb);

}  // namespace odbs
