// SPDX-License-Identifier: BSD-3-Clause
// The catalogue cache path and the open cache stream, which the main thread and the parent watchdog
// share, and the guard over both.
//
// The watchdog takes the guard when the parent has ended and keeps it to the end of the process.
// So what the main thread does while it holds the guard happens either completely before the
// clean-up or not at all: no companion file can appear after it.
#pragma once

#include <string>

namespace odbs {

// Holds the guard while it lives. Main thread only, for short work: setting the path, creating,
// closing, renaming and deleting cache files; never while writing to the parent. Never returns
// once the watchdog has it: the process is about to end. Does not nest.
class CacheGuard {
 public:
  CacheGuard();
  ~CacheGuard();
  CacheGuard(const CacheGuard&) = delete;
  CacheGuard& operator=(const CacheGuard&) = delete;
};

// The path of the catalogue cache that the parent named last. Without one, `cachePath()` is null;
// an empty path is a path. Set by the main thread; the pointer is valid until the next set or
// clear. These three take the guard themselves. Setting throws std::bad_alloc, and then none is
// named.
const std::string* cachePath();
void setCachePath(const char* path);
void clearCachePath();

// The companion files of a cache path.
std::string cacheTemporaryName(const std::string& path);  // while it is being written: "_tmp"
std::string cacheLockName(const std::string& path);       // a writer is at work: "_lock"

// The descriptor of the open cache stream, which the watchdog closes where the system refuses to
// delete an open file. Call both while a CacheGuard lives: register right after the opening of the
// temporary file, clear before the stream is closed, in the same guard as the opening or closing.
void registerCacheStream(int fd);
void clearCacheStream();

// What the watchdog does with the cache: takes the guard for good and deletes the companions of
// the cache path, if one is set.
void removeCacheCompanions();

}  // namespace odbs
