// SPDX-License-Identifier: BSD-3-Clause
// odb_client values: the values of one field in one frame, and their range.
#include <algorithm>
#include <cmath>
#include <map>

#include "client/cli/explain.h"
#include "client/records/small_records.h"

namespace odbs::client {

namespace {

// Two items with a colon between them, as "1.INNER:1.OUTER".
void takePair(const Call& call, const std::string& option, char letter, ValuesRequest& request) {
  const std::string text = call.option(option);
  if (text.empty()) return;
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos) throw UsageError(option + " wants ITEM:ITEM");
  const bool upperCase = request.letter >= 'A' && request.letter <= 'Z';
  request.letter = upperCase ? static_cast<char>(letter - 'a' + 'A') : letter;
  request.items[0] = text.substr(0, colon);
  request.items[1] = text.substr(colon + 1);
}

ValuesRequest requestOf(const Call& call) {
  auto request = requestFor<ValuesRequest>(fieldChoice(call, "stored"));
  const std::string letter = call.option("--letter", "v");
  if (letter.size() != 1 || std::string("lsmvtbLSMVTB").find(letter) == std::string::npos) {
    throw UsageError("--letter wants one of l s m v t b or its upper case, not \"" + letter + "\"");
  }
  request.letter = letter[0];
  takePair(call, "--layers", 'g', request);
  takePair(call, "--plies", 'n', request);
  for (const std::string& text : call.arguments.values("--region")) {
    request.regions.push_back(regionOf(text));
  }
  const auto pick = [&call](const char* option) {
    return static_cast<std::int32_t>(integerValue(call.arguments, option, -1, -1, INT32_MAX));
  };
  request.picks[0] = pick("--pick1");
  request.picks[1] = pick("--pick2");
  return request;
}

// The location of a value.
struct Place {
  const ValueBlock* block = nullptr;
  std::size_t value = 0;  // position in the label arrays
};

// The least and greatest of one component over all blocks of one value type.
struct Range {
  std::uint32_t valueType = 0;
  std::string component;
  std::int64_t nValues = 0;
  float least = 0, greatest = 0;
  Place leastAt, greatestAt;
};

Range& rangeFor(std::vector<Range>& ranges, std::uint32_t valueType, const std::string& component) {
  for (Range& range : ranges) {
    if (range.valueType == valueType && range.component == component) return range;
  }
  ranges.emplace_back();
  ranges.back().valueType = valueType;
  ranges.back().component = component;
  return ranges.back();
}

void widen(Range& range, const FieldValues& values, const ValueBlock& block,
           std::uint32_t component) {
  for (std::size_t i = 0; i < block.nValues; ++i) {
    const float x = values.components[block.firstComponent + i * block.nComponents + component];
    if (std::isnan(x)) continue;
    const Place here{&block, block.firstValue + i};
    if (range.nValues == 0 || x < range.least) {
      range.least = x;
      range.leastAt = here;
    }
    if (range.nValues == 0 || x > range.greatest) {
      range.greatest = x;
      range.greatestAt = here;
    }
    ++range.nValues;
  }
}

// Blocks of values at nodes have no element type; the node's label is in the element column.
bool isNodal(const ValueBlock& block) {
  return block.head.elementType.empty();
}

std::string placeText(const FieldValues& values, const Place& place) {
  if (place.block == nullptr) return {};
  std::string text = place.block->instance.empty() ? "" : place.block->instance + " ";
  text += (isNodal(*place.block) ? "node " : "element ") +
          std::to_string(values.elementLabels[place.value]);
  if (values.thirdLabels[place.value] >= 0) {
    text += " node or face " + std::to_string(values.thirdLabels[place.value]);
  }
  if (values.integrationPoints[place.value] > 0) {
    text += " point " + std::to_string(values.integrationPoints[place.value]);
  }
  return text;
}

// Names of a value's components, "S11", "U1", ...; conjugates come after the others. Where the
// number does not fit the type, they are counted; the one number of "MATRIX Sqq" has its name.
std::vector<std::string> componentNames(const std::string& field, const ValueBlock& block) {
  static const std::map<std::uint32_t, std::vector<std::string>> kSuffixes{
      {1, {""}},
      {2, {"11", "22", "33", "12", "13", "23"}},
      {4, {"11", "22", "33", "12"}},
      {8, {"11", "22", "12"}},
      {16, {"1", "2", "3"}}};
  const std::size_t n = block.nComponents;
  const auto row = kSuffixes.find(block.valueType);
  std::size_t nReal = row == kSuffixes.end() ? 0 : row->second.size();
  if (block.valueType == 16) nReal = n <= 3 ? n : n / 2;  // a vector has one to three
  std::vector<std::string> names;
  if (nReal == 0 || (n != nReal && n != 2 * nReal) || nReal > row->second.size()) {
    return n == 1 ? std::vector<std::string>{field} : numbered(field, n);
  }
  for (std::size_t i = 0; i < n; ++i) {
    names.push_back(field + row->second[i % nReal] + (i < nReal ? "" : "_conjugate"));
  }
  return names;
}

void reportRanges(const std::string& field, const FieldValues& values, Report& report) {
  std::vector<Range> ranges;
  for (const ValueBlock& block : values.blocks) {
    const std::vector<std::string> names = componentNames(field, block);
    for (std::uint32_t k = 0; k < block.nComponents; ++k) {
      widen(rangeFor(ranges, block.valueType, names[k]), values, block, k);
    }
  }
  report.begin("range",
               {"type", "component", "values", "least", "least_at", "greatest", "greatest_at"});
  for (const Range& range : ranges) {
    report.row({valueTypeName(range.valueType), range.component, range.nValues, range.least,
                placeText(values, range.leastAt), range.greatest,
                placeText(values, range.greatestAt)});
  }
  report.end();
}

// The names of all blocks, each once.
std::vector<std::string> allComponentNames(const std::string& field, const FieldValues& values) {
  std::vector<std::string> all;
  for (const ValueBlock& block : values.blocks) {
    for (const std::string& name : componentNames(field, block)) {
      if (std::find(all.begin(), all.end(), name) == all.end()) all.push_back(name);
    }
  }
  return all;
}

// The csv columns of a block's components; in other formats they keep the order of the block.
std::vector<std::size_t> columnsOf(const std::string& field, const ValueBlock& block,
                                   const std::vector<std::string>& columns) {
  std::vector<std::size_t> places;
  for (const std::string& name : componentNames(field, block)) {
    places.push_back(static_cast<std::size_t>(std::find(columns.begin(), columns.end(), name) -
                                              columns.begin()));
  }
  return places;
}

void reportValues(const std::string& field, const FieldValues& values, Report& report) {
  const std::vector<std::string> names = allComponentNames(field, values);
  report.begin(
      "value",
      {"instance", "type", "section_point", "element", "node_or_face", "point", "components"},
      {{"components", names}});
  for (const ValueBlock& block : values.blocks) {
    const std::vector<std::size_t> places = columnsOf(field, block, names);
    const bool isSpread = report.format() == Format::kCsv && block.nComponents < names.size();
    for (std::size_t i = 0; i < block.nValues; ++i) {
      const std::size_t at = block.firstValue + i;
      const float* const first =
          values.components.data() + block.firstComponent + i * block.nComponents;
      std::vector<float> components(first, first + block.nComponents);
      if (isSpread) {
        components.assign(names.size(), std::nanf(""));
        for (std::size_t k = 0; k < places.size(); ++k) components[places[k]] = first[k];
      }
      const std::int64_t label = values.elementLabels[at];
      const std::int64_t third = values.thirdLabels[at];
      report.row({block.instance, block.head.elementType, std::int64_t{block.head.sectionPoint},
                  isNodal(block) ? -1 : label, isNodal(block) ? label : third,
                  std::int64_t{values.integrationPoints[at]}, components});
    }
  }
  report.end();
}

}  // namespace

void runValues(const Call& call) {
  const ValuesRequest request = requestOf(call);
  const std::string show = call.choice("--show", "both|range|values");
  if (show == "range") call.report.setMainTable("range");
  const auto server = call.connect();
  const FieldValues values = readFieldValues(*server, call.path(), request);
  if (values.elementLabels.empty()) {
    requireField(*server, call.path(), {request.step, request.frame, request.field, 0});
    requireRegions(*server, call.path(), request.regions,
                   readRegions(*server, call.path(), request.regions).counts);
    failWithoutValues(*server, call.path(), request);
  }
  call.report.facts("field", {"path", "step", "frame", "field", "blocks", "values"},
                    {call.path(), std::int64_t{request.step}, std::int64_t{request.frame},
                     request.field, static_cast<std::int64_t>(values.blocks.size()),
                     static_cast<std::int64_t>(values.elementLabels.size())});
  reportMessages(values.messages, call.report);
  if (show != "values") reportRanges(request.field, values, call.report);
  if (show != "range") reportValues(request.field, values, call.report);
}

}  // namespace odbs::client
