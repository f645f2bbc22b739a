// SPDX-License-Identifier: BSD-3-Clause
// *NODE, *ELEMENT and *SYSTEM: the keywords with most of a deck's lines. Their data lines are read
// in place; only what the quick path does not understand goes through the slower helpers.
#include <charconv>
#include <cmath>
#include <limits>

#include "base/text.h"
#include "importer/deck/deck_parser.h"

namespace odbs::importer {

namespace {

constexpr std::size_t kProgressEvery = 65536;  // lines
constexpr std::size_t kMaxElementNodes = 100000;
constexpr std::size_t kMaxTypes = 1000;

const char* skipBlanks(const char* at, const char* end) {
  while (at != end && (*at == ' ' || *at == '\t')) ++at;
  return at;
}

// Reads a number and the comma or line end after it. False when there is something else: then
// nothing is consumed.
template <typename T>
bool quick(const char*& at, const char* end, T& value) {
  const char* const begin = skipBlanks(at, end);
  const auto [after, error] = std::from_chars(begin, end, value);
  if (error != std::errc()) return false;
  const char* const stop = skipBlanks(after, end);
  if (stop != end && *stop != ',') return false;
  at = stop == end ? end : stop + 1;
  return true;
}

// The text up to the next comma; consumes it.
std::string_view slowField(const char*& at, const char* end) {
  const char* const begin = at;
  while (at != end && *at != ',') ++at;
  const std::string_view field(begin, static_cast<std::size_t>(at - begin));
  if (at != end) ++at;
  return trimmed(field);
}

double degreesToRadians(double degrees) {
  return degrees * 3.14159265358979323846 / 180;
}

// Coordinates in the system that *NODE's SYSTEM names, as rectangular ones.
Vec3 fromSystem(char system, const Vec3& p) {
  if (system == 'C') {
    const double t = degreesToRadians(p[1]);
    return {p[0] * std::cos(t), p[0] * std::sin(t), p[2]};
  }
  if (system == 'S') {
    const double t = degreesToRadians(p[1]), f = degreesToRadians(p[2]);
    return {p[0] * std::cos(t) * std::cos(f), p[0] * std::sin(t) * std::cos(f), p[0] * std::sin(f)};
  }
  return p;
}

}  // namespace

Vec3 DeckParser::toGlobal(const Vec3& point) const {
  if (!systemSet_) return point;
  return systemOrigin_ + point[0] * systemAxes_[0] + point[1] * systemAxes_[1] +
         point[2] * systemAxes_[2];
}

void DeckParser::readNode(const Keyword& keyword) {
  Scope& content = scope();
  const Parameter* nsetName = keyword.find("NSET");
  Set* nset =
      nsetName && !nsetName->value.empty() ? &content.nodeSets.at(nsetName->value) : nullptr;
  const std::string& systemText = keyword.value("SYSTEM");
  const char system = systemText.empty() ? 'R' : systemText[0];
  if (const Parameter* input = keyword.find("INPUT")) lines_.push(input->raw);

  std::string_view line;
  for (std::size_t n = 0; lines_.dataLine(line); ++n) {
    const char* at = line.data();
    const char* const end = at + line.size();
    std::int32_t label = 0;
    if (!quick(at, end, label) || label < 1) label = labelOf(slowField(at = line.data(), end));
    Vec3 p{};
    for (double& x : p) {
      if (at == end) break;
      if (!quick(at, end, x) || !std::isfinite(x)) {
        // A number that went wrong after its comma was consumed is looked at again as a whole.
        if (!std::isfinite(x)) fail("a coordinate is not a finite number");
        x = realOf(slowField(at, end));
      }
    }
    if (system != 'R') p = fromSystem(system, p);
    if (systemSet_) p = toGlobal(p);
    content.nodes.add(label, p.data());
    if (nset) nset->addLabel(kOwn, label);
    if (progress_ && n % kProgressEvery == kProgressEvery - 1) progress_(lines_.progress());
  }
}

void DeckParser::readElement(const Keyword& keyword) {
  Scope& content = scope();
  const std::string typeName = upperCase(required(keyword, "TYPE"));
  if (typeName.size() > 80) lines_.fail(keyword.place, "an element type of that length is unknown");
  const DeckElementType type = elementTypeOf(typeName);
  surplusWarned_ = false;
  const std::size_t block = content.elements.blockOf(typeName);
  if (block >= kMaxTypes) lines_.fail(keyword.place, "too many different element types");
  const Parameter* elsetName = keyword.find("ELSET");
  Set* elset =
      elsetName && !elsetName->value.empty() ? &content.elementSets.at(elsetName->value) : nullptr;
  if (const Parameter* input = keyword.find("INPUT")) lines_.push(input->raw);

  std::string_view line;
  for (std::size_t n = 0; lines_.dataLine(line); ++n) {
    addElementLine(line, block, type, elset);
    if (progress_ && n % kProgressEvery == kProgressEvery - 1) progress_(lines_.progress());
  }
}

// One element: its line and the lines that continue it. A type with a known number of nodes goes on
// until it has them, with or without a comma at the line's end; any other goes on after a comma.
void DeckParser::addElementLine(std::string_view line, std::size_t block,
                                const DeckElementType& type, Set* elset) {
  Scope& content = scope();
  const bool inAssembly = level_ == Level::assembly;
  const Place place = lines_.place();
  const auto wanted = static_cast<std::size_t>(type.nNodes);
  ElementInput& input = elementInput_;
  input.label = 0;
  input.nFields = 0;
  input.nodes.clear();
  input.owners.clear();
  for (;;) {
    takeElementFields(line, type);
    const bool comma = !line.empty() && line.back() == ',';
    const bool goesOn = wanted > 0 ? input.nFields < wanted && !type.grounded : comma;
    if (!goesOn || !lines_.dataLine(line)) break;
  }
  if (type.grounded && input.nodes.size() == 1) {
    // Databases repeat the node of a grounded connector; which end is grounded is lost there.
    input.nodes.push_back(input.nodes[0]);
    if (inAssembly) input.owners.push_back(input.owners[0]);
    input.nFields = wanted;
  }
  const bool complete = wanted == 0 || input.nFields == wanted;
  if (!complete || input.nodes.empty())
    checkNodeCount(place, type, content.elements.blocks[block].type);
  content.elements.add(block, input.label, input.nodes.data(),
                       inAssembly ? input.owners.data() : nullptr, input.nodes.size(), place);
  if (elset) elset->addLabel(kOwn, input.label);
}

// The numbers of one line: the label first when there is none yet, then nodes.
void DeckParser::takeElementFields(std::string_view line, const DeckElementType& type) {
  ElementInput& input = elementInput_;
  const bool inAssembly = level_ == Level::assembly;
  const auto wanted = static_cast<std::size_t>(type.nNodes);
  const char* at = line.data();
  const char* const end = at + line.size();
  while (skipBlanks(at, end) != end) {
    std::int32_t value = 0, owner = kOwn;
    const char* const begin = at;
    if (!quick(at, end, value) || value < 0) {
      at = begin;
      value = 0;
      const std::string_view field = slowField(at, end);
      if (inAssembly && input.label != 0 && !field.empty()) {
        const Reference node = referenceOf(field);
        value = node.label;
        owner = node.owner;
        if (value == 0) fail("\"" + std::string(field.substr(0, 40)) + "\" is not a node");
      } else if (!field.empty() || input.label == 0) {
        value = labelOf(field);
      }
    }
    if (input.label == 0) {
      if (value == 0) fail("an element cannot have the label 0");
      input.label = value;
      continue;
    }
    ++input.nFields;
    if (value == 0 && !type.zeroNodes && !type.grounded) {
      fail("a node of element " + std::to_string(input.label) + " is missing");
    }
    if (value == 0 || (wanted > 0 && input.nFields > wanted)) continue;
    input.nodes.push_back(value);
    if (inAssembly) input.owners.push_back(owner);
    if (input.nodes.size() > kMaxElementNodes) {
      fail("element " + std::to_string(input.label) + " has too many nodes");
    }
  }
}

// Called for an element that has not the number of nodes of its type.
void DeckParser::checkNodeCount(Place place, const DeckElementType& type,
                                const std::string& typeName) {
  const ElementInput& input = elementInput_;
  const auto wanted = static_cast<std::size_t>(type.nNodes);
  const std::string text = "element " + std::to_string(input.label) + " of type " + typeName;
  if (input.nFields < wanted) {
    lines_.fail(place, text + " has " + std::to_string(input.nFields) + " of " +
                           std::to_string(wanted) + " nodes");
  }
  if (input.nodes.empty()) lines_.fail(place, text + " has no nodes");
  // Solvers read as many as the type has; decks with a few too many are about.
  if (!type.extraNodes && !surplusWarned_) {
    surplusWarned_ = true;
    warn(place, text + " has " + std::to_string(input.nFields) + " nodes; the first " +
                    std::to_string(wanted) + " are taken");
  }
}

// *SYSTEM: origin, a point on the first axis, a point in the plane of the first two. Without data
// the coordinates are global again.
void DeckParser::readSystem(const Keyword&) {
  std::vector<double> values;
  std::string_view line;
  bool first = true;
  while (lines_.dataLine(line)) {
    const auto row = realsOf(line, first ? 6 : 3);
    values.insert(values.end(), row.begin(), row.end());
    if (first && values.size() > 3) values.resize(6, 0.0);
    if (first && values.size() <= 3) values.resize(3, 0.0);
    first = false;
  }
  systemSet_ = !values.empty();
  if (!systemSet_) return;
  systemOrigin_ = {values[0], values[1], values[2]};
  systemAxes_ = {Vec3{1, 0, 0}, Vec3{0, 1, 0}, Vec3{0, 0, 1}};
  if (values.size() < 6) return;
  const Vec3 x = Vec3{values[3], values[4], values[5]} - systemOrigin_;
  const bool third = values.size() >= 9;
  // Without a third point the second axis stays in the global plane of the first two.
  const Vec3 inPlane =
      third ? Vec3{values[6], values[7], values[8]} - systemOrigin_ : cross(Vec3{0, 0, 1}, x);
  const Vec3 z = cross(x, inPlane);
  if (norm(x) == 0 || norm(z) == 0) fail("the points of *SYSTEM span no system");
  systemAxes_[0] = (1 / norm(x)) * x;
  systemAxes_[2] = (1 / norm(z)) * z;
  systemAxes_[1] = cross(systemAxes_[2], systemAxes_[0]);
}

}  // namespace odbs::importer
