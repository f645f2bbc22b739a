// SPDX-License-Identifier: BSD-3-Clause
// The end of the process, and the little that the main thread and the parent watchdog share: the
// catalogue cache path, the open cache stream and the guard over both, and who may use the open
// databases.
//
// The watchdog takes the guard when the parent has ended and keeps it to the end of the process.
// So what the main thread does while it holds the guard happens either wholly before the clean-up
// or not at all: no companion file can appear behind the watchdog's back.
#pragma once

#include <string>

#include "port/port.h"

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
// clear. These three take the guard themselves.
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

// The process that the watchdog waits for. Set once, before the watchdog starts.
void setWatchedParent(const port::WatchedProcess& parent);

// What the watchdog does with the cache: takes the guard for good and deletes the companions of
// the cache path, if one is set.
void removeCacheCompanions();

// Lives around the main thread's blocking read, in which nobody uses the open databases. When the
// watchdog has claimed them meanwhile, its end never returns: the process is about to end.
class BlockingRead {
 public:
  BlockingRead();
  ~BlockingRead();
  BlockingRead(const BlockingRead&) = delete;
  BlockingRead& operator=(const BlockingRead&) = delete;
};

// The watchdog's: takes the open databases for good if the main thread waits in its read. Returns
// false when that thread is at work, which may be in the middle of the database library.
bool claimIdleDatabases();

// Ends the process with status 0: no flush, no static destructors. While cache companions
// exist and the parent has ended, or ends within a moment, the watchdog's clean-up is let finish.
[[noreturn]] void endServer();

}  // namespace odbs
