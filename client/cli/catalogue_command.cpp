// SPDX-License-Identifier: BSD-3-Clause
// odb_client catalogue: steps, frames, and which fields they hold.
#include "client/result_catalogue.h"

#include <map>
#include <set>
#include <tuple>

#include "client/cli/cli.h"
#include "client/records/small_records.h"

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

std::vector<Listing> listingsOf(const std::string& name) {
  if (name == "all") return {Listing::kNodal, Listing::kElement};
  if (name == "nodal") return {Listing::kNodal};
  return {name == "element" ? Listing::kElement : Listing::kTensor};
}

// One listing and the server's answer to it.
struct Listed {
  bool isNodal;
  Catalogue catalogue;
};

// Steps and frames of all listings, each once.
void reportFrames(const std::vector<Listed>& listings, Report& report) {
  report.begin("step", {"step", "name", "procedure", "description", "total_time"});
  std::set<std::int32_t> steps;
  for (const Listed& listed : listings) {
    for (const CatalogueStep& step : listed.catalogue.steps) {
      if (!steps.insert(step.number).second) continue;
      report.row(
          {std::int64_t{step.number}, step.name, step.procedure, step.description, step.totalTime});
    }
  }
  report.end();
  report.begin("frame", {"step", "frame", "value", "domain", "mode", "frequency", "description"});
  std::set<std::pair<std::int32_t, std::int32_t>> frames;
  for (const Listed& listed : listings) {
    for (const CatalogueEntry& entry : listed.catalogue.entries) {
      const std::int32_t step = listed.catalogue.steps[entry.step].number;
      if (!frames.emplace(step, entry.frameIndex).second) continue;
      report.row({std::int64_t{step}, std::int64_t{entry.frameIndex}, entry.frameValue,
                  domainName(entry.domain), std::int64_t{entry.mode}, entry.frequency,
                  entry.frameDescription});
    }
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

void reportFieldsOf(const Listed& listed, Report& report) {
  const Catalogue& catalogue = listed.catalogue;
  for (const FieldUse& use : fieldUses(catalogue)) {
    const CatalogueEntry& entry = *use.first;
    const CatalogueField& field = catalogue.fields[entry.field];
    const std::string type = listed.isNodal ? (entry.isScalar ? "scalar" : "vector")
                                            : bitNames(entry.tensorKinds, kKinds);
    const std::string positions = listed.isNodal ? "node" : bitNames(entry.positions, kPositions);
    report.row({std::int64_t{catalogue.steps[entry.step].number}, field.name, use.nFrames,
                std::int64_t{use.firstFrame}, std::int64_t{use.lastFrame}, type, field.components,
                positions, bitNames(entry.invariants, kInvariants),
                std::int64_t{entry.hasSectionPoints}, std::int64_t{entry.isComplex},
                field.description});
  }
}

void reportFields(const std::vector<Listed>& listings, Report& report) {
  report.begin("field", {"step", "field", "frames", "first", "last", "type", "components",
                         "positions", "invariants", "section_points", "complex", "description"});
  for (const Listed& listed : listings) reportFieldsOf(listed, report);
  report.end();
}

}  // namespace

void runCatalogue(const Call& call) {
  const std::vector<Listing> wanted =
      listingsOf(call.choice("--listing", "all|nodal|element|tensor"));
  CatalogueRequest request;
  request.everyFrame = call.choice("--frames", "last|every") == "every";
  request.cachePath = call.option("--cache");
  // A cache file holds one listing and does not record which.
  if (!request.cachePath.empty() && wanted.size() > 1) {
    throw UsageError("--cache wants one listing: give --listing nodal, element or tensor");
  }
  const std::string& path = call.path();
  const auto connection = call.connect();
  std::vector<Listed> listings;
  for (const Listing listing : wanted) {
    request.listing = listing;
    listings.push_back({listing == Listing::kNodal, readCatalogue(*connection, path, request)});
  }
  const Catalogue& first = listings.front().catalogue;
  call.report.facts("database", {"path", "title", "analysis"},
                    {path, first.title, analysisKindName(first.analysisKind)});
  reportMessages(first.messages, call.report);
  reportFrames(listings, call.report);
  reportFields(listings, call.report);
}

}  // namespace odbs::client
