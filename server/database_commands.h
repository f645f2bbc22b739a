// SPDX-License-Identifier: BSD-3-Clause
// The commands that work on a database: each finds its path at a fixed column, has the registry
// open it, and hands it to an exporter. They may throw; the dispatcher discards.
#pragma once

#include "server/command.h"

namespace odbs {

void sendNodesOnly(Call& call);            // G path
void sendModel(Call& call);                // g path
void sendSetsOnly(Call& call);             // S flag coupling path
void sendSetsAndSurfaces(Call& call);      // s flag coupling path
void closeOne(Call& call);                 // c path
void listNodal(Call& call);                // fd path
void listElement(Call& call);              // fs path
void listVectorTensor(Call& call);         // fv path
void listNothing(Call& call);              // fn path
void listHistory(Call& call);              // hi path
void sendHistoryValues(Call& call);        // hr step path
void resolveRegions(Call& call);           // irf path
void sendRegionSets(Call& call);           // irs flag path
void sendSectionSummary(Call& call);       // is path
void walkOpen(Call& call);                 // l
void openOne(Call& call);                  // o path
void sendValuesWithoutPoint(Call& call);   // rs path
void sendValuesAtPicks(Call& call);        // rl pick pick,path
void sendValuesAtEveryPoint(Call& call);   // rv path
void sendValuesAtTop(Call& call);          // rt path
void sendValuesAtBottom(Call& call);       // rb path
void sendValuesAsStored(Call& call);       // rm path
void sendValuesOfLayers(Call& call);       // rg item:item:path
void sendValuesOfNamedLayers(Call& call);  // rn item:item:path
void sendValuesAtNodes(Call& call);        // rd path
void openForResults(Call& call);           // r path
void checkUpgradeOf(Call& call);           // u path

}  // namespace odbs
