// SPDX-License-Identifier: BSD-3-Clause
// The end of the process and the state that the watchdog shares with the main thread.
#include "server/shutdown.h"

#include <atomic>
#include <memory>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace odbs {

namespace {

constexpr int kGuardWaitMs = 500;     // the watchdog's patience with the guard's holder
constexpr int kParentGraceMs = 250;   // a dying parent's pipes close a little before it has ended
constexpr int kCleanUpWaitMs = 5000;  // bound on waiting for the watchdog

// Who may use the open databases.
enum class Databases {
  kInUse,    // the main thread, which is at work
  kIdle,     // nobody: the main thread waits in its read
  kClosing,  // the watchdog, for good
};

struct Shared {
  std::atomic<Databases> databases{Databases::kInUse};
  std::atomic_flag taken = ATOMIC_FLAG_INIT;  // the guard
  std::atomic<bool> ending{false};            // the watchdog wants the guard, for good
  std::unique_ptr<std::string> cachePath;     // under the guard
  int cacheStreamFd = -1;                     // under the guard; -1: no stream is open
  port::WatchedProcess parent;                // set before the second thread starts
  bool watched = false;                       // likewise
};
// Never destroyed: the watchdog may look at it until the process is gone. Not on the heap either,
// which may be exhausted before there is anybody to say so.
alignas(Shared) unsigned char sharedBytes[sizeof(Shared)];
Shared& shared = *new (sharedBytes) Shared;

// The main thread's side. Never returns once the watchdog wants the guard.
void takeGuard() {
  while (shared.ending.load() || shared.taken.test_and_set(std::memory_order_acquire)) {
    port::sleepMs(1);
  }
}

// The watchdog's side: for good, and ahead of a main thread that comes back again and again.
bool takeGuardForGood() {
  shared.ending.store(true);
  for (int waited = 0; shared.taken.test_and_set(std::memory_order_acquire); ++waited) {
    if (waited >= kGuardWaitMs) return false;
    port::sleepMs(1);
  }
  return true;
}

// Deletes a file even when our own stream holds it open on a system that minds.
void removeCompanion(const std::string& name) {
  if (port::removeFile(name) || shared.cacheStreamFd < 0) return;
  if (!port::fileStatus(name).exists) return;
  port::closeDescriptor(shared.cacheStreamFd);
  shared.cacheStreamFd = -1;
  port::removeFile(name);
}

bool companionsExist() {
  const std::string* path = cachePath();
  return path && (port::fileStatus(cacheTemporaryName(*path)).exists ||
                  port::fileStatus(cacheLockName(*path)).exists);
}

}  // namespace

CacheGuard::CacheGuard() {
  takeGuard();
}

CacheGuard::~CacheGuard() {
  shared.taken.clear(std::memory_order_release);
}

const std::string* cachePath() {
  // The main thread alone changes the pointer, so it may read it without the guard.
  return shared.cachePath.get();
}

void setCachePath(const char* path) {
  auto fresh = std::make_unique<std::string>(path);
  {
    const CacheGuard guard;
    shared.cachePath.swap(fresh);
  }
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

void setWatchedParent(const port::WatchedProcess& parent) {
  shared.parent = parent;
  shared.watched = true;
}

void removeCacheCompanions() {
  // Whoever holds the guard does short work only; if the file system hangs, the process ends
  // without the clean-up rather than never.
  if (!takeGuardForGood() || !shared.cachePath) return;
  removeCompanion(cacheTemporaryName(*shared.cachePath));
  removeCompanion(cacheLockName(*shared.cachePath));
}

BlockingRead::BlockingRead() {
  shared.databases.store(Databases::kIdle);
}

BlockingRead::~BlockingRead() {
  Databases expected = Databases::kIdle;
  if (shared.databases.compare_exchange_strong(expected, Databases::kInUse)) return;
  port::sleepMs(kCleanUpWaitMs);  // the watchdog ends the process
  port::endProcess(0);
}

bool claimIdleDatabases() {
  Databases expected = Databases::kIdle;
  return shared.databases.compare_exchange_strong(expected, Databases::kClosing);
}

void endServer() {
  if (shared.watched && companionsExist()) {
    for (int waited = 0; waited < kParentGraceMs; waited += 5) {
      if (port::hasEnded(shared.parent)) {
        port::sleepMs(kCleanUpWaitMs);  // the watchdog is cleaning up: it ends the process
        break;
      }
      port::sleepMs(5);
    }
  }
#if defined(__SANITIZE_ADDRESS__)
  // The end below skips the leak check that would run at exit.
  if (__lsan_do_recoverable_leak_check()) port::endProcess(23);
#endif
  port::endProcess(0);
}

}  // namespace odbs
