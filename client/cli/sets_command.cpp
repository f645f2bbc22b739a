// SPDX-License-Identifier: BSD-3-Clause
// odb_client sets, sections and regions.
#include "client/sets.h"

#include "client/cli/explain.h"
#include "client/model.h"
#include "client/records/small_records.h"

namespace odbs::client {

namespace {

bool isYes(const Call& call, const std::string& option, const char* words) {
  return call.choice(option, words) == "yes";
}

std::vector<std::int64_t> wide(const std::vector<std::int32_t>& values) {
  return {values.begin(), values.end()};
}

}  // namespace

void reportSets(const SetsReply& reply, bool showMembers, Report& report) {
  std::vector<std::string> columns{"kind", "set", "instance", "of_assembly", "members"};
  if (showMembers) columns.insert(columns.end(), {"labels", "faces"});
  report.begin("set", columns);
  for (const NamedSet& set : reply.sets) {
    std::vector<Value> cells{std::string(setKindName(set.kind)), set.name, set.instance,
                             std::int64_t{set.isOfAssembly},
                             static_cast<std::int64_t>(set.labels.size())};
    if (showMembers) {
      cells.emplace_back(wide(set.labels));
      cells.emplace_back(wide(set.faces));
    }
    report.row(std::move(cells));
  }
  report.end();
}

void runSets(const Call& call) {
  SetsRequest request;
  request.surfaces = isYes(call, "--surfaces", "yes|no");
  request.couplingSets = isYes(call, "--coupling", "no|yes");
  const bool showMembers = isYes(call, "--members", "no|yes");
  const std::string& path = call.path();
  const SetsReply reply = readSets(*call.connect(), path, request);
  call.report.facts("database", {"path", "title", "analysis"},
                    {path, reply.title, analysisKindName(reply.analysisKind)});
  reportMessages(reply.messages, call.report);
  reportSets(reply, showMembers, call.report);
}

void runSections(const Call& call) {
  const bool showMembers = isYes(call, "--members", "no|yes");
  const std::string& path = call.path();
  const std::unique_ptr<Connection> server = call.connect();
  const SetsReply reply = readSectionSummary(*server, path);
  if (reply.sections.empty()) {
    readModel(*server, path, ModelScope::kNodesOnly);  // throws when the database does not open
    throw Error(path + " has no sections with elements");
  }
  reportMessages(reply.messages, call.report);
  call.report.begin("section", {"section", "name", "kind"});
  for (const SectionSummary& section : reply.sections) {
    call.report.row({std::int64_t{section.number}, section.name, coarseKindName(section.kind)});
  }
  call.report.end();
  reportSets(reply, showMembers, call.report);
}

RegionQuery regionOf(const std::string& text) {
  try {
    return parseRegionQuery(text);
  } catch (const std::invalid_argument& error) {
    throw UsageError(error.what());
  }
}

void runRegions(const Call& call) {
  const bool showMembers = isYes(call, "--members", "no|yes");
  const std::string& path = call.path();
  std::vector<RegionQuery> queries;
  for (std::size_t i = 1; i < call.words.size(); ++i) queries.push_back(regionOf(call.words[i]));
  const auto server = call.connect();
  const RegionsReply reply = readRegions(*server, path, queries);
  requireRegions(*server, path, queries, reply.counts);
  reportMessages(reply.members.messages, call.report);
  call.report.begin("region", {"kind", "value", "name", "elements", "nodes"});
  for (const RegionCount& count : reply.counts) {
    call.report.row({regionKindName(count.query.kind), std::int64_t{count.query.value},
                     count.query.name, std::int64_t{count.nElements}, std::int64_t{count.nNodes}});
  }
  call.report.end();
  if (showMembers) reportSets(reply.members, true, call.report);
}

}  // namespace odbs::client
