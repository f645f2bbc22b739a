// SPDX-License-Identifier: BSD-3-Clause
// odb_client values: the values of one field in one frame, and their range.
#include <cmath>

#include "base/text.h"
#include "client/cli/cli.h"
#include "client/field_values.h"
#include "client/small_records.h"

namespace odbs::client {

std::int32_t integerOf(const Call& call, const std::string& option, const char* otherwise) {
  const std::string text = call.option(option, otherwise);
  const std::optional<std::int64_t> value = parseInt(text);
  if (!value || *value < INT32_MIN || *value > INT32_MAX) {
    throw UsageError(option + " wants an integer, not \"" + text + "\"");
  }
  return static_cast<std::int32_t>(*value);
}

std::int32_t positionOf(const std::string& text) {
  if (text == "centroid") return 0;
  if (text == "element-node") return 1;
  if (text == "stored") return 2;
  const std::optional<std::int64_t> code = parseInt(text);
  if (!code || *code < 0 || *code > 1000) {
    throw UsageError("--position wants stored, element-node, centroid or a code, not \"" + text +
                     "\"");
  }
  return static_cast<std::int32_t>(*code);
}

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
  ValuesRequest request;
  request.step = integerOf(call, "--step", "1");
  request.frame = integerOf(call, "--frame", "0");
  request.field = call.option("--field");
  if (request.field.empty()) throw UsageError("--field is missing, the name of the field");
  request.position = positionOf(call.option("--position", "stored"));
  const std::string letter = call.option("--letter", "s");
  if (letter.size() != 1 || std::string("lsmvtbLSMVTB").find(letter) == std::string::npos) {
    throw UsageError("--letter wants one of l s m v t b or its upper case, not \"" + letter + "\"");
  }
  request.letter = letter[0];
  takePair(call, "--layers", 'g', request);
  takePair(call, "--plies", 'n', request);
  for (const auto& [option, text] : call.options) {
    if (option == "--region") request.regions.push_back(regionOf(text));
  }
  request.picks[0] = integerOf(call, "--pick1", "-1");
  request.picks[1] = integerOf(call, "--pick2", "-1");
  return request;
}

// Where a value stands.
struct Place {
  const ValueBlock* block = nullptr;
  std::size_t value = 0;  // position in the label arrays
};

// The least and greatest of one component over all blocks of one value type.
struct Range {
  std::uint32_t valueType = 0;
  std::uint32_t component = 0;
  std::int64_t nValues = 0;
  float least = 0, greatest = 0;
  Place leastAt, greatestAt;
};

Range& rangeFor(std::vector<Range>& ranges, std::uint32_t valueType, std::uint32_t component) {
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

// Blocks of values at nodes name no element type; the node's label stands in the element's place.
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

void reportRanges(const FieldValues& values, Report& report) {
  std::vector<Range> ranges;
  for (const ValueBlock& block : values.blocks) {
    for (std::uint32_t k = 0; k < block.nComponents; ++k) {
      widen(rangeFor(ranges, block.valueType, k), values, block, k);
    }
  }
  report.begin("range",
               {"type", "component", "values", "least", "least_at", "greatest", "greatest_at"});
  for (const Range& range : ranges) {
    report.row({valueTypeName(range.valueType), std::int64_t{range.component} + 1, range.nValues,
                range.least, placeText(values, range.leastAt), range.greatest,
                placeText(values, range.greatestAt)});
  }
  report.end();
}

void reportValues(const FieldValues& values, Report& report) {
  report.begin("value", {"instance", "type", "section_point", "element", "node_or_face", "point",
                         "components"});
  for (const ValueBlock& block : values.blocks) {
    for (std::size_t i = 0; i < block.nValues; ++i) {
      const std::size_t at = block.firstValue + i;
      const auto first = values.components.begin() +
                         static_cast<std::ptrdiff_t>(block.firstComponent + i * block.nComponents);
      const std::int64_t label = values.elementLabels[at];
      const std::int64_t third = values.thirdLabels[at];
      report.row({block.instance, block.head.elementType, std::int64_t{block.head.sectionPoint},
                  isNodal(block) ? -1 : label, isNodal(block) ? label : third,
                  std::int64_t{values.integrationPoints[at]},
                  std::vector<float>(first, first + block.nComponents)});
    }
  }
  report.end();
}

}  // namespace

void runValues(Call& call) {
  const ValuesRequest request = requestOf(call);
  const std::string show = call.option("--show", "both");
  if (show != "both" && show != "range" && show != "values") {
    throw UsageError("--show wants both, range or values, not \"" + show + "\"");
  }
  const std::string& path = call.arguments.front();
  const FieldValues values = readFieldValues(*call.connect(), path, request);
  if (values.blocks.empty()) {
    throw Error("no values of \"" + request.field + "\" in step " + std::to_string(request.step) +
                ", frame " + std::to_string(request.frame) +
                " at this position (odb_client catalogue lists what there is)");
  }
  call.report.facts("field", {"path", "step", "frame", "field", "blocks", "values"},
                    {path, std::int64_t{request.step}, std::int64_t{request.frame}, request.field,
                     static_cast<std::int64_t>(values.blocks.size()),
                     static_cast<std::int64_t>(values.elementLabels.size())});
  reportMessages(values.messages, call.report);
  if (show != "values") reportRanges(values, call.report);
  if (show != "range") reportValues(values, call.report);
}

}  // namespace odbs::client
