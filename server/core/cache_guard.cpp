// SPDX-License-Identifier: BSD-3-Clause
// The catalogue cache's path and stream under their guard.
#include "server/core/cache_guard.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <new>

#include "port/port.h"

namespace odbs {

namespace {

// How long the watchdog waits for the main thread to give the guard back.
constexpr std::chrono::milliseconds kGuardWait{500};

struct Shared {
  std::timed_mutex guard;
  std::atomic<bool> ending{false};         // the watchdog wants the guard, for good
  std::unique_ptr<std::string> cachePath;  // under the guard
  int cacheStreamFd = -1;                  // under the guard; -1: no stream is open
};
// Never destroyed: the watchdog may look at it until the process is gone. Not on the heap either,
// which may be exhausted before there is anybody to say so.
alignas(Shared) unsigned char sharedBytes[sizeof(Shared)];
Shared& shared = *new (sharedBytes) Shared;

// Deletes a file even when our own stream holds it open on a system that minds.
void removeCompanion(const std::string& name) {
  if (port::removeFile(name) || shared.cacheStreamFd < 0) return;
  if (!port::fileStatus(name).exists) return;
  port::closeDescriptor(shared.cacheStreamFd);
  shared.cacheStreamFd = -1;
  port::removeFile(name);
}

}  // namespace

CacheGuard::CacheGuard() {
  // A watchdog that waits comes before a main thread that takes the guard again and again.
  while (shared.ending.load()) port::sleepMs(1);
  shared.guard.lock();
}

CacheGuard::~CacheGuard() {
  shared.guard.unlock();
}

const std::string* cachePath() {
  // The main thread alone changes the pointer, so it may read it without the guard.
  return shared.cachePath.get();
}

void setCachePath(const char* path) {
  std::unique_ptr<std::string> fresh;
  try {
    fresh = std::make_unique<std::string>(path);
  } catch (const std::bad_alloc&) {
    clearCachePath();
    throw;
  }
  // In one step: a watchdog that found no path between two would leave companions behind.
  const CacheGuard guard;
  shared.cachePath.swap(fresh);
}

void clearCachePath() {
  std::unique_ptr<std::string> old;
  {
    const CacheGuard guard;
    shared.cachePath.swap(old);
  }
}

std::string cacheTemporaryName(const std::string& path) {
  return path + "_tmp";
}

std::string cacheLockName(const std::string& path) {
  return path + "_lock";
}

void registerCacheStream(int fd) {
  shared.cacheStreamFd = fd;
}

void clearCacheStream() {
  shared.cacheStreamFd = -1;
}

void removeCacheCompanions() {
  shared.ending.store(true);
  // Whoever holds the guard does short work only; if the file system hangs, the process ends
  // without the clean-up rather than never.
  if (!shared.guard.try_lock_for(kGuardWait) || !shared.cachePath) return;
  removeCompanion(cacheTemporaryName(*shared.cachePath));
  removeCompanion(cacheLockName(*shared.cachePath));
}

}  // namespace odbs
