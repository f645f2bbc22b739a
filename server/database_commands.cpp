// SPDX-License-Identifier: BSD-3-Clause
// The commands that work on a database. An exporter is a free function over the open database and
// the output descriptor; calling it here is all that it takes to give a command its work.
#include "server/database_commands.h"

#include <cstring>
#include <string>

#include "base/text.h"
#include "catalogue/catalogue.h"
#include "catalogue/history.h"
#include "model/model_stream.h"
#include "model/section_summary.h"
#include "model/sets_stream.h"
#include "regions/region_queries.h"
#include "registry/open_database.h"
#include "results/results_request.h"
#include "server/core/sdk_adapter.h"
#include "server/core/server_state.h"
#include "server/registry_commands.h"

namespace odbs {

namespace {

odb_Odb& open(const Call& call, const std::string& path) {
  return openDatabase(sdk::openDatabases(), path, call.outputFd);
}

odb_Odb& open(const Call& call) {
  return open(call, call.arguments);
}

// Contract: what the report of a failed allocation names for every results request.
constexpr int kResultsAllocationLine = 12243;

bool isSet(char flag) {
  return flag == '1';
}

// S and s: position 2 holds the per-database flag, position 4 says whether coupling sets are sent.
void sendSets(Call& call, bool withSurfaces) {
  odb_Odb& odb = open(call);
  setDatabaseFlag(odb, isSet(call.at(2)));
  sendSetsStream(odb, call.outputFd, withSurfaces, isSet(call.at(4)));
}

}  // namespace

void sendNodesOnly(Call& call) {
  sendModelStream(open(call), call.outputFd, true);
}

void sendModel(Call& call) {
  sendModelStream(open(call), call.outputFd, false);
}

void sendSetsOnly(Call& call) {
  sendSets(call, false);
}

void sendSetsAndSurfaces(Call& call) {
  sendSets(call, true);
}

void closeOne(Call& call) {
  closeCommand(sdk::openDatabases(), call.arguments, call.outputFd);
}

// The second letter names the listing, its capital form lists every frame. The database is opened,
// and the mode is set, whether or not a listing follows.
void listResults(Call& call) {
  odb_Odb& odb = open(call);
  const char letter = call.at(1);
  const bool everyFrame = letter >= 'A' && letter <= 'Z';
  const char lower = everyFrame ? static_cast<char>(letter - 'A' + 'a') : letter;
  if (lower == '\0' || !std::strchr("dsvn", lower)) return;
  serverState.catalogueMode = everyFrame ? CatalogueMode::kEveryFrame : CatalogueMode::kLastFrame;
  if (lower == 'd') sendCatalogue(odb, call.outputFd, CatalogueListing::kNodal);
  if (lower == 's') sendCatalogue(odb, call.outputFd, CatalogueListing::kElement);
  if (lower == 'v') sendCatalogue(odb, call.outputFd, CatalogueListing::kVectorTensor);
}

void listHistory(Call& call) {
  exportHistoryOverview(open(call), call.outputFd);
}

void sendHistoryValues(Call& call) {
  const char* blank = std::strchr(call.arguments, ' ');
  if (!blank) return;
  exportHistoryValues(open(call, blank + 1), call.outputFd, toIntOrZero(call.arguments));
}

void resolveRegions(Call& call) {
  answerRegionRequests(open(call), call.outputFd, serverState.regionRequests,
                       serverState.regionSelection);
  // Contract: kept when anything above failed.
  serverState.regionRequests.clear();
}

void sendRegionSets(Call& call) {
  odb_Odb& odb = open(call);
  setDatabaseFlag(odb, isSet(call.at(4)));
  sendRegionsAsSets(odb, call.outputFd, serverState.regionRequests);
}

void sendSectionSummary(Call& call) {
  sendSectionSummary(open(call), call.outputFd);
}

void walkOpen(Call&) {
  walkOpenDatabases(sdk::openDatabases());
}

void openOne(Call& call) {
  open(call);
}

void sendResults(Call& call) {
  call.allocationLine = kResultsAllocationLine;
  runResultsRequest(call.line.data(), call.outputFd);
}

void checkUpgradeOf(Call& call) {
  call.answered = checkUpgradeCommand(sdk::openDatabases(), call.arguments, call.outputFd);
}

}  // namespace odbs
