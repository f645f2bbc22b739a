// SPDX-License-Identifier: BSD-3-Clause
// odb_client history: what histories there are, or the values of some.
#include "client/histories.h"

#include <algorithm>

#include "client/cli/explain.h"
#include "client/model.h"

namespace odbs::client {

namespace {

void reportOverview(const History& history, Report& report) {
  report.setMainTable("region");
  report.begin("step", {"step", "name", "description", "total_time", "regions"});
  for (const HistoryStep& step : history.steps) {
    report.row({std::int64_t{step.number}, step.name, step.description, step.totalTime,
                static_cast<std::int64_t>(step.regions.size())});
  }
  report.end();
  report.begin("region",
               {"step", "region", "set", "numbers", "outputs", "complex", "descriptions"});
  for (const HistoryStep& step : history.steps) {
    for (const HistoryRegion& region : step.regions) {
      std::vector<std::string> names, descriptions;
      bool isComplex = false;
      for (const HistoryOutput& output : region.outputs) {
        names.push_back(output.name);
        isComplex = isComplex || output.isComplex;
        if (descriptions.empty() || descriptions.back() != output.description) {
          descriptions.push_back(output.description);
        }
      }
      report.row({std::int64_t{step.number}, region.name, region.set,
                  std::vector<std::int64_t>(region.numbers, region.numbers + 3), names,
                  std::int64_t{isComplex}, descriptions});
    }
  }
  report.end();
}

void reportValues(const History& history, Report& report) {
  report.begin("history", {"step", "region", "output", "time", "value", "conjugate"});
  for (const HistoryStep& step : history.steps) {
    for (const HistoryRegion& region : step.regions) {
      for (const HistoryOutput& output : region.outputs) {
        for (std::size_t i = 0; i < output.values.size(); ++i) {
          const Value conjugate =
              output.isComplex ? Value(output.conjugates[i]) : Value(std::string());
          report.row({std::int64_t{step.number}, region.name, output.name, output.times[i],
                      output.values[i], conjugate});
        }
      }
    }
  }
  report.end();
}

std::vector<std::string> allRegions(const History& overview) {
  std::vector<std::string> names;
  for (const HistoryStep& step : overview.steps) {
    for (const HistoryRegion& region : step.regions) {
      if (std::find(names.begin(), names.end(), region.name) == names.end()) {
        names.push_back(region.name);
      }
    }
  }
  return names;
}

}  // namespace

void runHistory(const Call& call) {
  const auto step =
      static_cast<std::int32_t>(integerValue(call.arguments, "--step", 0, 0, INT32_MAX));
  std::vector<std::string> names = call.arguments.values("--region");
  const std::string& path = call.path();
  const std::unique_ptr<Connection> server = call.connect();
  const History overview = readHistoryOverview(*server, path);
  if (overview.steps.empty()) {
    readModel(*server, path, ModelScope::kNodesOnly);  // throws when the database does not open
    throw Error(path + " has no steps");
  }
  requireStep(*server, path, step);
  reportMessages(overview.messages, call.report);
  if (names.empty()) return reportOverview(overview, call.report);
  const std::vector<std::string> all = allRegions(overview);
  if (names.size() == 1 && names[0] == "all") names = all;
  for (const std::string& name : names) {
    if (std::find(all.begin(), all.end(), name) != all.end()) continue;
    throw Error("there is no history region \"" + name + "\"" + didYouMean(name, all) +
                " (without --region they are listed)");
  }
  reportValues(readHistory(*server, path, step, names), call.report);
}

}  // namespace odbs::client
