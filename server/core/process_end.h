// SPDX-License-Identifier: BSD-3-Clause
// The end of the process, and who may use the open databases while it comes: the main thread or the
// parent watchdog.
#pragma once

#include "port/port.h"

namespace odbs {

// The process that the watchdog waits for. Set once, before the watchdog starts.
void setWatchedParent(const port::WatchedProcess& parent);

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
// exist and the parent has ended, or ends within a moment, it waits for the watchdog's clean-up.
[[noreturn]] void endServer();

}  // namespace odbs
