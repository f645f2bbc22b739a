// SPDX-License-Identifier: BSD-3-Clause
// The parent watchdog: the server lives no longer than the process that started it.
#pragma once

namespace odbs {

// Starts the thread that waits for the end of the process `parentId`. When it has ended, or does
// not exist, the thread deletes the companions of the catalogue cache, closes the open databases if
// the main thread waits for a command, and ends the process with status 0, whatever the main thread
// is doing. That the thread could not be started is not reported.
void startParentWatchdog(int parentId);

// What the watchdog does with the open databases: closes them if the main thread waits in its read,
// which then never returns; returns whether it did. Contract: a database that cannot be closed
// makes it throw, which ends the process abnormally.
bool closeIdleDatabases();

}  // namespace odbs
