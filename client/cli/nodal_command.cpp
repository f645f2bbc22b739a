// SPDX-License-Identifier: BSD-3-Clause
// odb_client nodal: one variable at its nodes, rotations and failed elements.
#include <algorithm>

#include "base/text.h"
#include "client/cli/explain.h"
#include "client/nodal_results.h"

namespace odbs::client {

namespace {

// Labels with commas or blanks between them.
void takeLabels(std::string text, std::vector<std::int32_t>& labels) {
  for (char& c : text) {
    if (c == ',') c = ' ';
  }
  const std::size_t nBefore = labels.size();
  for (const std::string_view word : split(text, ' ')) {
    if (word.empty()) continue;
    const std::optional<std::int64_t> label = parseInt(word);
    if (!label || *label < INT32_MIN || *label > INT32_MAX) {
      throw UsageError("--labels wants element labels, not \"" + std::string(word) + "\"");
    }
    labels.push_back(static_cast<std::int32_t>(*label));
  }
  if (labels.size() == nBefore) throw UsageError("--labels wants at least one element label");
}

NodalRequest requestOf(const Call& call) {
  auto request = requestFor<NodalRequest>(fieldChoice(call, "centroid"));
  for (const std::string& text : call.arguments.values("--labels")) {
    takeLabels(text, request.labels);
  }
  return request;
}

// The most components that a block has.
std::size_t mostComponents(const NodalResults& results, bool onlyComplex) {
  std::size_t most = 0;
  for (const NodalBlock& block : results.blocks) {
    if (block.isComplex || !onlyComplex) most = std::max<std::size_t>(most, block.nComponents);
  }
  return most;
}

void reportValues(const NodalResults& results, Report& report) {
  report.begin("value", {"instance", "quantity", "node", "components", "conjugates"},
               {{"components", numbered("component", mostComponents(results, false))},
                {"conjugates", numbered("conjugate", mostComponents(results, true))}});
  for (const NodalBlock& block : results.blocks) {
    const auto valueAt = [&block](const std::vector<float>& all, std::size_t first, std::size_t i) {
      const auto begin = all.begin() + static_cast<std::ptrdiff_t>(first + i * block.nComponents);
      return std::vector<float>(begin, begin + block.nComponents);
    };
    for (std::size_t i = 0; i < block.nValues; ++i) {
      std::vector<float> conjugates;
      if (block.isComplex) conjugates = valueAt(results.conjugates, block.firstConjugate, i);
      report.row({block.instance, block.quantity,
                  std::int64_t{results.nodeLabels[block.firstValue + i]},
                  valueAt(results.components, block.firstComponent, i), conjugates});
    }
  }
  report.end();
}

void reportFailed(const NodalResults& results, Report& report) {
  report.begin("failed", {"instance", "element"});
  for (const FailedElements& one : results.failed) {
    for (const std::int32_t label : one.labels) report.row({one.instance, std::int64_t{label}});
  }
  report.end();
}

}  // namespace

void runNodal(const Call& call) {
  const NodalRequest request = requestOf(call);
  const std::string& path = call.path();
  const auto server = call.connect();
  const NodalResults results = readNodalResults(*server, path, request);
  if (results.blocks.empty() && results.failed.empty()) {
    requireField(*server, path, {request.step, request.frame, request.field, 0});
    throw Error("the field \"" + request.field + "\" has no values at nodes (odb_client values)");
  }
  std::size_t nFailed = 0;
  for (const FailedElements& one : results.failed) nFailed += one.labels.size();
  call.report.facts(
      "nodal", {"path", "step", "frame", "field", "blocks", "values", "failed"},
      {path, std::int64_t{request.step}, std::int64_t{request.frame}, request.field,
       static_cast<std::int64_t>(results.blocks.size()),
       static_cast<std::int64_t>(results.nodeLabels.size()), static_cast<std::int64_t>(nFailed)});
  reportMessages(results.messages, call.report);
  reportValues(results, call.report);
  reportFailed(results, call.report);
}

}  // namespace odbs::client
