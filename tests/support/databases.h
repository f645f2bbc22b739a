// SPDX-License-Identifier: BSD-3-Clause
// Small databases for tests, written through the database library's own write side.
#pragma once

#include <string>

namespace odbs::tests {

// Writes an empty database of the current release, with this title. Replaces an older one.
void makeDatabase(const std::string& path, const std::string& title = "title");

// The same in the layout of the old release, which has to be upgraded before it opens.
void makeOldDatabase(const std::string& path, const std::string& title = "title");

// The same of a release that does not exist yet.
void makeFutureDatabase(const std::string& path);

// Writes a database with one instance of `n` nodes, labels 1 to n, in a row.
void makeNodesDatabase(const std::string& path, int n);

// Writes a database with one step of `n` frames, each with the temperature of one node.
void makeFramesDatabase(const std::string& path, int n);

// Moves the file's modification time by this many seconds.
void shiftModificationTime(const std::string& path, int seconds);

}  // namespace odbs::tests
