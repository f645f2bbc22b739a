// SPDX-License-Identifier: BSD-3-Clause
// The parent watchdog.
#include "server/parent_watchdog.h"

#include "port/port.h"
#include "server/core/cache_guard.h"
#include "server/core/process_end.h"
#include "server/core/sdk_adapter.h"

namespace odbs {

namespace {

constexpr std::size_t kStackBytes = 4096;  // raised to the system's minimum where that is more

// The main thread keeps running while this does its work, so nothing here may free or change what
// that thread uses; the end of the process frees it all.
void watchParent(void* argument) {
  const auto* parent = static_cast<const port::WatchedProcess*>(argument);
  port::waitForEnd(*parent);
  // The companions first: they outlive us, the databases do not.
  removeCacheCompanions();
  closeIdleDatabases();
  port::endProcess(0);
}

}  // namespace

bool closeIdleDatabases() {
  const bool idle = claimIdleDatabases();
  if (idle) sdk::closeAllAtExit();
  return idle;
}

void startParentWatchdog(int parentId) {
  static port::WatchedProcess parent;
  parent = port::openProcess(parentId);
  setWatchedParent(parent);
  port::startThread(watchParent, &parent, kStackBytes);
}

}  // namespace odbs
