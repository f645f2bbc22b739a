// SPDX-License-Identifier: BSD-3-Clause
// The list of files under temporary names, for the handlers of interruptions on both platforms.
#pragma once

namespace odbs::port {

// Deletes all files on the list. Takes no lock and no memory, as signal handlers must.
void removeUnfinishedFiles();

}  // namespace odbs::port
