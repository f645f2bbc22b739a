// SPDX-License-Identifier: BSD-3-Clause
// The commands that work on a database: each finds its path at a fixed column, has the registry
// open it, and hands it to an exporter. They may throw; the dispatcher discards.
#pragma once

#include "server/command.h"

namespace odbs {

void sendNodesOnly(Call& call);        // G path
void sendModel(Call& call);            // g path
void sendSetsOnly(Call& call);         // S flag coupling path
void sendSetsAndSurfaces(Call& call);  // s flag coupling path
void closeOne(Call& call);             // c path
void listResults(Call& call);          // f letter path
void listHistory(Call& call);          // hi path
void sendHistoryValues(Call& call);    // hr step path
void resolveRegions(Call& call);       // irf path
void sendRegionSets(Call& call);       // irs flag path
void sendSectionSummary(Call& call);   // is path
void walkOpen(Call& call);             // l
void openOne(Call& call);              // o path
void sendResults(Call& call);          // r letter ... path
void checkUpgradeOf(Call& call);       // u path

}  // namespace odbs
