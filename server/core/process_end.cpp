// SPDX-License-Identifier: BSD-3-Clause
// How the process ends, with the watchdog or without.
#include "server/core/process_end.h"

#include <atomic>

#include "server/core/cache_guard.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace odbs {

namespace {

constexpr int kParentGraceMs = 250;   // a dying parent's pipes close a little before it has ended
constexpr int kCleanUpWaitMs = 5000;  // the longest wait for the watchdog

// Who may use the open databases.
enum class Databases {
  kInUse,    // the main thread, which is at work
  kIdle,     // nobody: the main thread waits in its read
  kClosing,  // the watchdog, for good
};

std::atomic<Databases> databases{Databases::kInUse};
port::WatchedProcess watchedParent;  // set before the second thread starts
bool isWatched = false;              // likewise

bool companionsExist() {
  const std::string* path = cachePath();
  return path && (port::fileStatus(cacheTemporaryName(*path)).exists ||
                  port::fileStatus(cacheLockName(*path)).exists);
}

}  // namespace

void setWatchedParent(const port::WatchedProcess& parent) {
  watchedParent = parent;
  isWatched = true;
}

BlockingRead::BlockingRead() {
  databases.store(Databases::kIdle);
}

BlockingRead::~BlockingRead() {
  Databases expected = Databases::kIdle;
  if (databases.compare_exchange_strong(expected, Databases::kInUse)) return;
  port::sleepMs(kCleanUpWaitMs);  // the watchdog ends the process
  port::endProcess(0);
}

bool claimIdleDatabases() {
  Databases expected = Databases::kIdle;
  return databases.compare_exchange_strong(expected, Databases::kClosing);
}

void endServer() {
  if (isWatched && companionsExist()) {
    for (int waited = 0; waited < kParentGraceMs; waited += 5) {
      if (port::hasEnded(watchedParent)) {
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
