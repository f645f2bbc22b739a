// SPDX-License-Identifier: BSD-3-Clause
// The commands that need no database: they set server state, test the channel, or end the process.
// Each is a row of the command table; `call.arguments` starts at the row's column.
#pragma once

#include "server/command.h"

namespace odbs {

void freeModeStresses(Call& call);         // C
void selectFlagged(Call& call);            // D step frame position variable
void selectPlain(Call& call);              // d, the same
void testRawThroughput(Call& call);        // M repetitions bytes
void testFramedThroughput(Call& call);     // m records integers
void nameCatalogueCache(Call& call);       // T path
void createLabelList(Call& call);          // a capacity
void appendLabels(Call& call);             // b label...
void createHistoryNames(Call& call);       // ho capacity
void appendHistoryName(Call& call);        // hb name
void appendRegionRequest(Call& call);      // irc kind value name
void ping(Call& call);                     // p
[[noreturn]] void quitServer(Call& call);  // q
void setVerbosity(Call& call);             // v level

}  // namespace odbs
