// SPDX-License-Identifier: BSD-3-Clause
// The region queries: what the collected region requests mean in a database.
#pragma once

#include <odb_API.h>

#include <vector>

#include "server/core/server_state.h"

namespace odbs {

// Answers one record for each request, in order, and makes the union of all of them `selection`,
// in place of what it was. Throws what the database library throws; the selection is then what it
// was.
void answerRegionRequests(odb_Odb& odb, int outputFd, const std::vector<RegionRequest>& requests,
                          SelectionSet& selection);

// Answers each request as a set: for each instance in question, also where nothing of the region is
// in it, the set's header, with several instances the instance's name, the members, the end of the
// set, and with several instances a marker. The assembly's own members come after the
// instances, where there are several of them and something of the region is in it.
void sendRegionsAsSets(odb_Odb& odb, int outputFd, const std::vector<RegionRequest>& requests);

}  // namespace odbs
