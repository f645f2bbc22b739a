// SPDX-License-Identifier: BSD-3-Clause
// The queries that find out why a selection has no values.
#include "client/cli/explain.h"

#include <algorithm>
#include <set>

#include "base/text.h"
#include "client/histories.h"
#include "client/model.h"
#include "client/result_catalogue.h"
#include "client/sets.h"

namespace odbs::client {

namespace {

using Names = std::set<std::string>;

std::string quoted(const std::string& text) {
  return "\"" + text + "\"";
}

// The nearest spelling and the first names: `; did you mean "A"? (there are "A", "B")`.
std::string whatExists(const std::string& text, const std::vector<std::string>& names,
                       const std::string& intro) {
  constexpr std::size_t kMost = 20;
  std::string result = didYouMean(text, names);
  if (names.empty()) return result;
  result += " (" + intro + " ";
  for (std::size_t i = 0; i < std::min(names.size(), kMost); ++i) {
    result += (i == 0 ? "" : ", ") + quoted(names[i]);
  }
  return result + (names.size() > kMost ? ", ...)" : ")");
}

std::string whatExists(const std::string& text, const Names& names, const std::string& intro) {
  return whatExists(text, std::vector<std::string>(names.begin(), names.end()), intro);
}

// "0 to 4", "3", "1, 5 to 7".
std::string ranges(const std::set<std::int32_t>& numbers) {
  std::string text;
  for (auto first = numbers.begin(); first != numbers.end();) {
    auto last = first;
    while (std::next(last) != numbers.end() && *std::next(last) == *last + 1) ++last;
    text += (text.empty() ? "" : ", ") + std::to_string(*first);
    if (last != first) text += " to " + std::to_string(*last);
    first = std::next(last);
  }
  return text;
}

// In which frames the fields of a step are.
struct StepFields {
  std::set<std::int32_t> frames;
  Names inFrame;                           // the fields of the frame that was asked for
  std::set<std::int32_t> framesWithField;  // that was asked for
  Names elsewhere;                         // the fields of other frames
};

StepFields stepFields(Connection& server, const std::string& path, const FieldChoice& choice) {
  StepFields found;
  for (const Listing listing : {Listing::kNodal, Listing::kElement}) {
    const Catalogue catalogue = readCatalogue(server, path, {listing, true, ""});
    for (const CatalogueEntry& entry : catalogue.entries) {
      if (catalogue.steps[entry.step].number != choice.step) continue;
      const std::string& name = catalogue.fields[entry.field].name;
      found.frames.insert(entry.frameIndex);
      (entry.frameIndex == choice.frame ? found.inFrame : found.elsewhere).insert(name);
      if (name == choice.field) found.framesWithField.insert(entry.frameIndex);
    }
  }
  return found;
}

// The names that regions of a kind can have.
Names regionNames(Connection& server, const std::string& path, std::int32_t kind) {
  Names names;
  if (kind <= 3) {
    const SetKind wanted = kind == 1   ? SetKind::kElements
                           : kind == 2 ? SetKind::kNodes
                                       : SetKind::kSurface;
    for (const NamedSet& set : readSets(server, path, {}).sets) {
      if (set.kind == wanted) names.insert(set.name);
    }
    return names;
  }
  const Model model = readModel(server, path);
  for (const Instance& instance : model.instances) {
    if (kind == 4 && !instance.name.empty()) names.insert(instance.name);
  }
  for (const Section& section : model.sections) {
    if (kind == 5 || kind == 8) names.insert(section.name);
  }
  for (const Material& material : model.materials) {
    if (kind == 6) names.insert(material.name);
  }
  if (kind == 7) names.insert(model.elementTypes.begin(), model.elementTypes.end());
  return names;
}

// The section points at which the field has values, -1 for none.
std::set<std::int32_t> sectionPoints(const FieldValues& values) {
  std::set<std::int32_t> points;
  for (const ValueBlock& block : values.blocks) points.insert(block.head.sectionPoint);
  return points;
}

std::string sectionPointText(std::set<std::int32_t> points) {
  const bool hasNone = points.erase(-1) > 0;
  if (points.empty()) return "its values have no section points";
  return std::string("its values are ") + (hasNone ? "without and " : "") + "at section points " +
         ranges(points);
}

}  // namespace

FieldChoice fieldChoice(const Call& call, const char* position) {
  FieldChoice choice;
  choice.step = static_cast<std::int32_t>(integerValue(call.arguments, "--step", 1, 1, INT32_MAX));
  choice.frame =
      static_cast<std::int32_t>(integerValue(call.arguments, "--frame", 0, 0, INT32_MAX));
  choice.field = call.option("--field");
  if (choice.field.empty()) throw UsageError("--field is missing, the name of the field");
  const std::string text = call.option("--position", position);
  const char* const kNames[] = {"centroid", "element-node", "stored"};
  const auto* const named = std::find(std::begin(kNames), std::end(kNames), text);
  const std::optional<std::int64_t> code =
      named != std::end(kNames) ? named - std::begin(kNames) : parseInt(text);
  if (!code || *code < 0 || *code > 1000) {
    throw UsageError("--position wants stored, element-node, centroid or a code, not " +
                     quoted(text));
  }
  choice.position = static_cast<std::int32_t>(*code);
  return choice;
}

void requireStep(Connection& server, const std::string& path, std::int32_t step) {
  const History overview = readHistoryOverview(server, path);
  std::set<std::int32_t> numbers;
  for (const HistoryStep& one : overview.steps) numbers.insert(one.number);
  if (step == 0 || numbers.count(step) > 0) return;
  if (numbers.empty()) throw Error(path + " has no steps");
  throw Error(path + " has no step " + std::to_string(step) + "; its steps are " + ranges(numbers));
}

void requireField(Connection& server, const std::string& path, const FieldChoice& choice) {
  requireStep(server, path, choice.step);
  const StepFields found = stepFields(server, path, choice);
  const std::string step = "step " + std::to_string(choice.step);
  const std::string frame = "frame " + std::to_string(choice.frame);
  if (found.frames.empty()) throw Error(step + " has no fields");
  if (found.frames.count(choice.frame) == 0) {
    throw Error(step + " has no " + frame + " with fields; the frames with fields are " +
                ranges(found.frames));
  }
  if (found.inFrame.count(choice.field) > 0) return;
  if (!found.framesWithField.empty()) {
    throw Error(step + ", " + frame + " has no field " + quoted(choice.field) +
                "; the frames with it are " + ranges(found.framesWithField));
  }
  throw Error(step + ", " + frame + " has no field " + quoted(choice.field) +
              whatExists(choice.field, found.inFrame, "there are"));
}

void requireRegions(Connection& server, const std::string& path,
                    const std::vector<RegionQuery>& regions,
                    const std::vector<RegionCount>& counts) {
  for (std::size_t i = 0; i < std::min(regions.size(), counts.size()); ++i) {
    if (counts[i].nElements + counts[i].nNodes > 0) continue;
    const RegionQuery& query = regions[i];
    const Names names = regionNames(server, path, query.kind);
    const std::string kind = regionKindName(query.kind == 8 ? 5 : query.kind);
    if (names.count(query.name) == 0) {
      throw Error("there is no " + kind + " " + quoted(query.name) +
                  whatExists(query.name, names, "there are"));
    }
    throw Error("the " + kind + " " + quoted(query.name) +
                (query.value > 0 ? " has nothing at " + std::to_string(query.value)
                                 : " has no elements and no nodes"));
  }
}

void failWithoutValues(Connection& server, const std::string& path, const ValuesRequest& request) {
  const std::string field = "the field " + quoted(request.field);
  ValuesRequest all = request;
  all.letter = 'v';
  all.regions.clear();
  const FieldValues here = readFieldValues(server, path, all);
  if (here.blocks.empty()) {
    all.position = 2;
    const FieldValues stored = readFieldValues(server, path, all);
    if (stored.blocks.empty()) throw Error(field + " has no values");
    throw Error(field + " has no values at this position; --position stored has " +
                std::to_string(stored.elementLabels.size()));
  }
  if (std::string("nNgG").find(request.letter) != std::string::npos) {
    Names names = regionNames(server, path, 5);
    names.merge(regionNames(server, path, 6));
    const std::string& item = request.items[0];
    throw Error("there is nothing at " + quoted(item) + " nor at " + quoted(request.items[1]) +
                "; " + sectionPointText(sectionPoints(here)) +
                whatExists(item.substr(0, item.find('.')), names, "sections and materials are"));
  }
  ValuesRequest everywhere = request;
  everywhere.regions.clear();
  if (!request.regions.empty() &&
      !readFieldValues(server, path, everywhere).elementLabels.empty()) {
    throw Error(field + " has no values in the regions; it has some elsewhere");
  }
  throw Error(field + " has no values at the section points of --letter " + request.letter + "; " +
              sectionPointText(sectionPoints(here)) + " (--letter v has all)");
}

}  // namespace odbs::client
