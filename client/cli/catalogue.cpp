// SPDX-License-Identifier: BSD-3-Clause
// odb_client catalogue: steps, frames, and which fields they hold.
#include "client/catalogue.h"

#include <map>
#include <tuple>

#include "client/cli/cli.h"
#include "client/small_records.h"

namespace odbs::client {

namespace {

std::string domainName(std::int32_t domain) {
  static const char* const kNames[] = {"time", "frequency", "modal", "arc length"};
  if (domain < 0 || domain > 3) return "domain " + std::to_string(domain);
  return kNames[domain];
}

// The names of the bits that are set, joined by commas; bits without a name by their value.
struct BitName {
  std::int32_t bit;
  const char* name;
};
template <std::size_t n>
std::string bitNames(std::int32_t mask, const BitName (&names)[n]) {
  std::string text;
  for (const BitName& row : names) {
    if ((mask & row.bit) == 0) continue;
    text += (text.empty() ? "" : ",") + std::string(row.name);
    mask &= ~row.bit;
  }
  if (mask != 0) text += (text.empty() ? "" : ",") + std::to_string(mask);
  return text;
}

constexpr BitName kPositions[] = {
    {8, "element node"}, {4, "integration point"}, {2, "centroid or face"}, {16, "whole element"}};
constexpr BitName kKinds[] = {
    {1, "scalar"}, {16, "vector"}, {2, "tensor of 6"}, {4, "tensor of 4"}, {8, "tensor of 3"}};
constexpr BitName kInvariants[] = {
    {1 << 1, "magnitude"},     {1 << 2, "mises"},         {1 << 3, "tresca"},
    {1 << 4, "press"},         {1 << 5, "inv3"},          {1 << 6, "max principal"},
    {1 << 7, "mid principal"}, {1 << 8, "min principal"}, {1 << 9, "max in-plane"},
    {1 << 10, "min in-plane"}, {1 << 11, "out-of-plane"}};

Listing listingOf(const std::string& name) {
  if (name == "nodal") return Listing::kNodal;
  if (name == "element") return Listing::kElement;
  if (name == "tensor") return Listing::kTensor;
  throw UsageError("--listing wants nodal, element or tensor, not \"" + name + "\"");
}

bool everyFrameOf(const std::string& name) {
  if (name != "last" && name != "every") {
    throw UsageError("--frames wants last or every, not \"" + name + "\"");
  }
  return name == "every";
}

void reportFrames(const Catalogue& catalogue, Report& report) {
  report.begin("step", {"step", "name", "procedure", "description", "total_time"});
  for (const CatalogueStep& step : catalogue.steps) {
    report.row(
        {std::int64_t{step.number}, step.name, step.procedure, step.description, step.totalTime});
  }
  report.end();
  report.begin("frame", {"step", "frame", "value", "domain", "mode", "frequency", "description"});
  std::map<std::pair<std::size_t, std::int32_t>, bool> seen;
  for (const CatalogueEntry& entry : catalogue.entries) {
    if (!seen.emplace(std::make_pair(entry.step, entry.frameIndex), true).second) continue;
    report.row({std::int64_t{catalogue.steps[entry.step].number}, std::int64_t{entry.frameIndex},
                entry.frameValue, domainName(entry.domain), std::int64_t{entry.mode},
                entry.frequency, entry.frameDescription});
  }
  report.end();
}

// A field as the frames of one step have it alike.
struct FieldUse {
  const CatalogueEntry* first = nullptr;
  std::int32_t firstFrame = 0, lastFrame = 0;
  std::int64_t nFrames = 0;
};

std::vector<FieldUse> fieldUses(const Catalogue& catalogue) {
  using Key = std::tuple<std::size_t, std::size_t, bool, bool, std::int32_t, std::int32_t,
                         std::int32_t, bool>;
  std::map<Key, std::size_t> places;
  std::vector<FieldUse> uses;
  for (const CatalogueEntry& entry : catalogue.entries) {
    const Key key{entry.step,      entry.field,      entry.isComplex,   entry.isScalar,
                  entry.positions, entry.invariants, entry.tensorKinds, entry.hasSectionPoints};
    const auto [place, isNew] = places.emplace(key, uses.size());
    if (isNew) uses.push_back({&entry, entry.frameIndex, entry.frameIndex, 0});
    FieldUse& use = uses[place->second];
    use.firstFrame = std::min(use.firstFrame, entry.frameIndex);
    use.lastFrame = std::max(use.lastFrame, entry.frameIndex);
    ++use.nFrames;
  }
  return uses;
}

void reportFields(const Catalogue& catalogue, bool isNodal, Report& report) {
  report.begin("field", {"step", "field", "frames", "first", "last", "type", "components",
                         "positions", "invariants", "section_points", "complex", "description"});
  for (const FieldUse& use : fieldUses(catalogue)) {
    const CatalogueEntry& entry = *use.first;
    const CatalogueField& field = catalogue.fields[entry.field];
    const std::string type =
        isNodal ? (entry.isScalar ? "scalar" : "vector") : bitNames(entry.tensorKinds, kKinds);
    const std::string positions = isNodal ? "node" : bitNames(entry.positions, kPositions);
    report.row({std::int64_t{catalogue.steps[entry.step].number}, field.name, use.nFrames,
                std::int64_t{use.firstFrame}, std::int64_t{use.lastFrame}, type, field.components,
                positions, bitNames(entry.invariants, kInvariants),
                std::int64_t{entry.hasSectionPoints}, std::int64_t{entry.isComplex},
                field.description});
  }
  report.end();
}

}  // namespace

void runCatalogue(Call& call) {
  CatalogueRequest request;
  request.listing = listingOf(call.option("--listing", "element"));
  request.everyFrame = everyFrameOf(call.option("--frames", "last"));
  request.cachePath = call.option("--cache");
  const std::string& path = call.arguments.front();
  const Catalogue catalogue = readCatalogue(*call.connect(), path, request);
  call.report.facts("database", {"path", "title", "analysis"},
                    {path, catalogue.title, analysisKindName(catalogue.analysisKind)});
  reportMessages(catalogue.messages, call.report);
  reportFrames(catalogue, call.report);
  reportFields(catalogue, request.listing == Listing::kNodal, call.report);
}

}  // namespace odbs::client
