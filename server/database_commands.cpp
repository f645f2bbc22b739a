// SPDX-License-Identifier: BSD-3-Clause
// The commands that work on a database. An exporter is a free function over the open database and
// the output descriptor; calling it here is all that it takes to give a command its work.
#include "server/database_commands.h"

#include <cstring>
#include <string>

#include "catalogue/catalogue.h"
#include "catalogue/history.h"
#include "model/model_stream.h"
#include "model/section_summary.h"
#include "model/sets_stream.h"
#include "regions/region_queries.h"
#include "registry/open_database.h"
#include "results/results_request.h"
#include "server/core/field_scanner.h"
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

// True for a capital second letter, which asks `f` for every frame, `r` for local directions.
bool hasCapital(const Call& call) {
  return call.at(1) >= 'A' && call.at(1) <= 'Z';
}

odb_Odb& openForListing(const Call& call) {
  odb_Odb& odb = open(call);
  serverState.catalogueMode =
      hasCapital(call) ? CatalogueMode::kEveryFrame : CatalogueMode::kLastFrame;
  return odb;
}

void list(const Call& call, CatalogueListing listing) {
  sendCatalogue(openForListing(call), call.outputFd, listing);
}

void sendValues(Call& call, Extraction extraction) {
  call.allocationLine = kResultsAllocationLine;
  sendFieldValues(call.arguments, call.outputFd, extraction, hasCapital(call));
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

void listNodal(Call& call) {
  list(call, CatalogueListing::kNodal);
}

void listElement(Call& call) {
  list(call, CatalogueListing::kElement);
}

void listVectorTensor(Call& call) {
  list(call, CatalogueListing::kVectorTensor);
}

void listNothing(Call& call) {
  openForListing(call);
}

void listHistory(Call& call) {
  exportHistoryOverview(open(call), call.outputFd);
}

void sendHistoryValues(Call& call) {
  const char* blank = std::strchr(call.arguments, ' ');
  if (!blank) return;
  exportHistoryValues(open(call, blank + 1), call.outputFd,
                      FieldScanner(call.arguments).nextInt(0));
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

void sendValuesWithoutPoint(Call& call) {
  sendValues(call, Extraction::kPicked);
}

void sendValuesAtPicks(Call& call) {
  call.allocationLine = kResultsAllocationLine;
  sendPickedValues(call.arguments, call.outputFd, hasCapital(call));
}

void sendValuesAtEveryPoint(Call& call) {
  sendValues(call, Extraction::kEveryPoint);
}

void sendValuesAtTop(Call& call) {
  sendValues(call, Extraction::kTop);
}

void sendValuesAtBottom(Call& call) {
  sendValues(call, Extraction::kBottom);
}

void sendValuesAsStored(Call& call) {
  sendValues(call, Extraction::kAsStored);
}

void sendValuesOfLayers(Call& call) {
  call.allocationLine = kResultsAllocationLine;
  sendPairValues(call.arguments, call.outputFd, false, hasCapital(call));
}

void sendValuesOfNamedLayers(Call& call) {
  call.allocationLine = kResultsAllocationLine;
  sendPairValues(call.arguments, call.outputFd, true, hasCapital(call));
}

void sendValuesAtNodes(Call& call) {
  call.allocationLine = kResultsAllocationLine;
  sendNodalValues(call.arguments, call.outputFd);
}

void openForResults(Call& call) {
  call.allocationLine = kResultsAllocationLine;
  open(call);
}

void checkUpgradeOf(Call& call) {
  call.answered = checkUpgradeCommand(sdk::openDatabases(), call.arguments, call.outputFd);
}

}  // namespace odbs
