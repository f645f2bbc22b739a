// SPDX-License-Identifier: BSD-3-Clause
// Keywords that make nodes and elements from others: *NGEN, *NFILL, *NCOPY, *ELGEN, *ELCOPY.
// What they make is counted, so that a short deck cannot ask for more than memory holds.
#include <algorithm>
#include <cmath>
#include <limits>

#include "base/text.h"
#include "importer/deck/deck_parser.h"

namespace odbs::importer {

namespace {

std::int64_t fieldOr(const std::vector<std::string>& fields, std::size_t at, std::int64_t fallback,
                     const std::function<std::int64_t(std::string_view)>& read) {
  return at < fields.size() && !fields[at].empty() ? read(fields[at]) : fallback;
}

// Position of division k of n, 0 to 1, where each distance is `bias` times the next one.
double biased(std::int64_t k, std::int64_t n, double bias) {
  if (bias == 1) return static_cast<double>(k) / static_cast<double>(n);
  const double q = 1 / bias;
  return (1 - std::pow(q, static_cast<double>(k))) / (1 - std::pow(q, static_cast<double>(n)));
}

// A point on the arc about `center` from `a` to `b`, `t` of the way, the short way round.
Vec3 onArc(const Vec3& a, const Vec3& b, const Vec3& center, Vec3 normal, double t) {
  const Vec3 ra = a - center, rb = b - center;
  double angle = std::acos(std::clamp(dot(ra, rb) / (norm(ra) * norm(rb)), -1.0, 1.0));
  const Vec3 across = cross(ra, rb);
  if (norm(normal) == 0) {
    normal = across;
  } else if (dot(normal, across) < 0) {
    angle = 2 * 3.14159265358979323846 - angle;
  }
  return rotated(a, center, center + normal, t * angle * 180 / 3.14159265358979323846);
}

}  // namespace

Vec3 DeckParser::nodeAt(std::int64_t label) {
  DeckNodeTable& nodes = scope().nodes;
  const bool inRange = label >= 1 && label <= std::numeric_limits<std::int32_t>::max();
  const std::int64_t index = inRange ? nodes.find(static_cast<std::int32_t>(label)) : -1;
  if (index < 0) fail("node " + std::to_string(label) + " is not defined");
  const double* const at = &nodes.xyz[3 * static_cast<std::size_t>(index)];
  return {at[0], at[1], at[2]};
}

void DeckParser::generateNode(std::int64_t label, const Vec3& at, Set* nset) {
  if (label < 1 || label > std::numeric_limits<std::int32_t>::max()) {
    fail("a generated node would have the label " + std::to_string(label));
  }
  scope().nodes.add(static_cast<std::int32_t>(label), at.data());
  if (nset) nset->addLabel(kOwn, static_cast<std::int32_t>(label));
}

// Members of a set that exist so far: ascending, or in the deck's order for unsorted sets.
std::vector<std::int32_t> DeckParser::membersInOrder(const std::string& setName, bool elements) {
  Scope& content = scope();
  const auto found = (elements ? content.elementSets : content.nodeSets).find(setName);
  if (!found) fail("there is no set " + setName);
  Set set = *found;
  set.compact();
  std::vector<std::int32_t> labels;
  for (const Members& members : set.members) {
    for (const Range& range : members.ranges) {
      countGenerated((std::int64_t{range.last} - range.first) / range.step);
      for (std::int64_t label = range.first; label <= range.last; label += range.step) {
        const auto value = static_cast<std::int32_t>(label);
        const bool exists =
            elements ? content.elements.find(value).block >= 0 : content.nodes.find(value) >= 0;
        if (exists) labels.push_back(value);
      }
    }
  }
  if (!set.unsorted) {
    std::sort(labels.begin(), labels.end());
    labels.erase(std::unique(labels.begin(), labels.end()), labels.end());
  }
  return labels;
}

void DeckParser::readNgen(const Keyword& keyword) {
  const Parameter* nsetName = keyword.find("NSET");
  Set* nset = nsetName ? &scope().nodeSets.at(nsetName->value) : nullptr;
  const std::string& lineType = keyword.value("LINE");
  const char shape = lineType.empty() ? 'S' : lineType[0];
  const auto read = [this](std::string_view f) { return integerOf(f); };
  std::string_view line;
  while (lines_.dataLine(line)) {
    std::vector<std::string> fields;
    Fields source(line);
    for (std::string_view field; source.next(field);) fields.emplace_back(field);
    if (fields.size() < 2) fail("*NGEN needs two end nodes");
    const std::int64_t from = labelOf(fields[0]), to = labelOf(fields[1]);
    std::int64_t step = std::abs(fieldOr(fields, 2, 1, read));
    if (step == 0) step = 1;
    const std::int64_t n = std::abs(to - from) / step;
    if (std::abs(to - from) % step != 0)
      fail("the increment does not lead from the first end node to the second");
    countGenerated(n);
    const Vec3 a = nodeAt(from), b = nodeAt(to);
    const auto coordinate = [&](std::size_t i) {
      return i < fields.size() ? realOf(fields[i]) : 0.0;
    };
    Vec3 third{};
    if (shape != 'S') {
      const std::int64_t node = fieldOr(fields, 3, 0, read);
      third = node > 0 ? nodeAt(node) : Vec3{coordinate(4), coordinate(5), coordinate(6)};
    }
    const Vec3 normal{coordinate(7), coordinate(8), coordinate(9)};
    if (nset) nset->addLabel(kOwn, static_cast<std::int32_t>(from));
    for (std::int64_t k = 1; k < n; ++k) {
      const double t = static_cast<double>(k) / static_cast<double>(n);
      Vec3 p = a + t * (b - a);
      if (shape == 'C') p = onArc(a, b, third, normal, t);
      if (shape == 'P') {
        p = ((1 - t) * (1 - 2 * t)) * a + (4 * t * (1 - t)) * third + (t * (2 * t - 1)) * b;
      }
      generateNode(from + (to > from ? k * step : -k * step), p, nset);
    }
    if (nset) nset->addLabel(kOwn, static_cast<std::int32_t>(to));
  }
}

void DeckParser::readNfill(const Keyword& keyword) {
  const Parameter* nsetName = keyword.find("NSET");
  Set* nset = nsetName ? &scope().nodeSets.at(nsetName->value) : nullptr;
  const double bias = keyword.has("BIAS") ? realOf(keyword.value("BIAS")) : 1.0;
  if (!(bias > 0)) lines_.fail(keyword.place, "BIAS must be positive");
  const bool twoStep = keyword.has("TWOSTEP");
  const std::int64_t singular =
      keyword.has("SINGULAR") ? integerOf(required(keyword, "SINGULAR")) : 0;
  if (singular < 0 || singular > 2) lines_.fail(keyword.place, "SINGULAR must be 1 or 2");
  std::string_view line;
  while (lines_.dataLine(line)) {
    std::vector<std::string> fields;
    Fields source(line);
    for (std::string_view field; source.next(field);) fields.emplace_back(field);
    if (fields.size() < 2) fail("*NFILL needs two node sets");
    const auto first = membersInOrder(nameOf(fields[0]), false);
    const auto second = membersInOrder(nameOf(fields[1]), false);
    const std::int64_t n =
        fieldOr(fields, 2, 1, [this](std::string_view f) { return integerOf(f); });
    const std::int64_t step =
        fieldOr(fields, 3, 1, [this](std::string_view f) { return integerOf(f); });
    if (n < 1 || n > 1000000) fail("*NFILL cannot make " + std::to_string(n) + " intervals");
    if (std::abs(step) > std::numeric_limits<std::int32_t>::max())
      fail("the increment is too large");
    const std::size_t nPairs = std::min(first.size(), second.size());
    countGenerated(static_cast<std::int64_t>(nPairs) * n);
    for (std::size_t i = 0; i < nPairs; ++i) {
      const Vec3 a = nodeAt(first[i]), b = nodeAt(second[i]);
      if (nset) nset->addLabel(kOwn, first[i]);
      const auto position = [&](std::int64_t k) {
        // Two-step: the bias holds from corner to corner, middle nodes lie half way.
        return twoStep && n % 2 == 0
                   ? (biased(k / 2, n / 2, bias) + biased((k + 1) / 2, n / 2, bias)) / 2
                   : biased(k, n, bias);
      };
      for (std::int64_t k = 1; k < n; ++k) {
        double t = position(k);
        // Beside the crack tip, which is the first or the second set, middle nodes of quadratic
        // elements lie at a quarter.
        if (singular == 1 && k == 1) t = position(2) / 4;
        if (singular == 2 && k == n - 1) t = 1 - (1 - position(n - 2)) / 4;
        generateNode(first[i] + k * step, a + t * (b - a), nset);
      }
      if (nset) nset->addLabel(kOwn, second[i]);
    }
  }
}

void DeckParser::readNcopy(const Keyword& keyword) {
  const std::int64_t shift = integerOf(required(keyword, "CHANGENUMBER"));
  const std::string& oldSet = required(keyword, "OLDSET");
  const Parameter* newSet = keyword.find("NEWSET");
  const std::int64_t multiple = keyword.has("MULTIPLE") ? integerOf(keyword.value("MULTIPLE")) : 1;
  if (multiple < 1 || multiple > 1000000 || std::abs(shift) > std::int64_t{1} << 31) {
    lines_.fail(keyword.place, "MULTIPLE or CHANGE NUMBER is out of range");
  }
  const std::string& reflect = keyword.value("REFLECT");
  std::vector<double> values;
  std::string_view line;
  const bool isShift = keyword.has("SHIFT");
  for (std::size_t n = 0; lines_.dataLine(line); ++n) {
    // Shift: the translation's line may be short; the rotation's numbers follow on the next.
    const auto row = realsOf(line, 7);
    values.insert(values.end(), row.begin(), row.end());
    if (isShift && n == 0) values.resize(3, 0.0);
  }
  values.resize(std::max<std::size_t>(values.size(), 10), 0.0);
  const auto point = [&](std::size_t at) {
    return Vec3{values[at], values[at + 1], values[at + 2]};
  };
  const auto moved = [&](const Vec3& p) -> Vec3 {
    if (isShift) return rotated(p + point(0), point(3), point(6), values[9]);
    if (reflect == "LINE") return rotated(p, point(0), point(3), 180);
    if (reflect == "MIRROR") {
      const Vec3 normal = cross(point(3) - point(0), point(6) - point(0));
      if (norm(normal) == 0) fail("the points of the mirror span no plane");
      return p - (2 * dot(p - point(0), normal) / dot(normal, normal)) * normal;
    }
    if (keyword.has("POLE")) return 2.0 * p - point(0);
    return 2.0 * point(0) - p;
  };
  if (!isShift && reflect.empty() && !keyword.has("POLE")) {
    lines_.fail(keyword.place, "*NCOPY needs SHIFT, REFLECT or POLE");
  }
  const auto members = membersInOrder(oldSet, false);
  countGenerated(static_cast<std::int64_t>(members.size()) * multiple);
  Set* nset = newSet ? &scope().nodeSets.at(newSet->value) : nullptr;
  for (const std::int32_t label : members) {
    Vec3 p = nodeAt(label);
    for (std::int64_t k = 1; k <= multiple; ++k) {
      p = moved(p);
      generateNode(label + k * shift, p, nset);
    }
  }
}

void DeckParser::generateElement(std::int64_t label, ElementTable::Position master,
                                 std::int64_t nodeShift, bool mirrored, Set* elset) {
  constexpr std::int64_t kMax = std::numeric_limits<std::int32_t>::max();
  if (label < 1 || label > kMax) {
    fail("a generated element would have the label " + std::to_string(label));
  }
  ElementTable& elements = scope().elements;
  const auto at = static_cast<std::size_t>(master.block);
  const ElementBlock& block = elements.blocks[at];
  const auto begin = block.offsets[master.index], end = block.offsets[master.index + 1];
  std::vector<std::int32_t> nodes(block.nodes.begin() + begin, block.nodes.begin() + end);
  for (std::int32_t& node : nodes) {
    const std::int64_t shifted = node + nodeShift;
    if (shifted < 1 || shifted > kMax) {
      fail("a generated element would have the node " + std::to_string(shifted));
    }
    node = static_cast<std::int32_t>(shifted);
  }
  std::vector<std::int32_t> owners;
  if (!block.owners.empty()) {
    owners.assign(block.owners.begin() + begin, block.owners.begin() + end);
  }
  if (mirrored) {
    const auto order = mirroredOrder(elementTypeOf(block.type), nodes.size());
    if (order.empty()) fail("elements of type " + block.type + " cannot be reflected");
    const auto nodesBefore = nodes;
    const auto ownersBefore = owners;
    for (std::size_t i = 0; i < order.size(); ++i) {
      nodes[i] = nodesBefore[order[i]];
      if (!owners.empty()) owners[i] = ownersBefore[order[i]];
    }
  }
  elements.add(at, static_cast<std::int32_t>(label), nodes.data(),
               owners.empty() ? nullptr : owners.data(), nodes.size(), lines_.place());
  if (elset) elset->addLabel(kOwn, static_cast<std::int32_t>(label));
}

// Rows, rows of rows, layers: each of three directions has a count and the increments of node and
// element labels.
void DeckParser::readElgen(const Keyword& keyword) {
  const Parameter* elsetName = keyword.find("ELSET");
  Set* elset = elsetName ? &scope().elementSets.at(elsetName->value) : nullptr;
  std::string_view line;
  while (lines_.dataLine(line)) {
    std::vector<std::string> fields;
    Fields source(line);
    for (std::string_view field; source.next(field);) fields.emplace_back(field);
    const std::int32_t master = labelOf(fields.empty() ? std::string_view() : fields[0]);
    const ElementTable::Position at = scope().elements.find(master);
    if (at.block < 0) fail("element " + std::to_string(master) + " is not defined");
    std::int64_t count[3], nodeStep[3], elementStep[3], total = 1;
    for (std::size_t d = 0; d < 3; ++d) {
      const auto read = [this](std::string_view f) { return integerOf(f); };
      count[d] = std::max<std::int64_t>(fieldOr(fields, 1 + 3 * d, 1, read), 1);
      nodeStep[d] = fieldOr(fields, 2 + 3 * d, 1, read);
      elementStep[d] = fieldOr(fields, 3 + 3 * d, 1, read);
      const std::int64_t limit = std::int64_t{1} << 31;
      if (count[d] > limit || std::abs(nodeStep[d]) > limit || std::abs(elementStep[d]) > limit) {
        fail("a number of *ELGEN is too large");
      }
      countGenerated(count[d] - 1);
      total *= count[d];
      countGenerated(total - 1);
    }
    if (elset) elset->addLabel(kOwn, master);
    for (std::int64_t k = 0; k < count[2]; ++k) {
      for (std::int64_t j = 0; j < count[1]; ++j) {
        for (std::int64_t i = 0; i < count[0]; ++i) {
          if (i == 0 && j == 0 && k == 0) continue;
          generateElement(master + i * elementStep[0] + j * elementStep[1] + k * elementStep[2], at,
                          i * nodeStep[0] + j * nodeStep[1] + k * nodeStep[2], false, elset);
        }
      }
    }
  }
}

void DeckParser::readElcopy(const Keyword& keyword) {
  const std::int64_t shift = integerOf(required(keyword, "ELEMENTSHIFT"));
  const std::int64_t nodeShift = integerOf(required(keyword, "SHIFTNODES"));
  const std::int64_t limit = std::int64_t{1} << 31;
  if (std::abs(shift) > limit || std::abs(nodeShift) > limit) {
    lines_.fail(keyword.place, "a shift of *ELCOPY is too large");
  }
  const auto members = membersInOrder(required(keyword, "OLDSET"), true);
  const Parameter* newSet = keyword.find("NEWSET");
  Set* elset = newSet ? &scope().elementSets.at(newSet->value) : nullptr;
  countGenerated(static_cast<std::int64_t>(members.size()));
  for (const std::int32_t label : members) {
    generateElement(label + shift, scope().elements.find(label), nodeShift, keyword.has("REFLECT"),
                    elset);
  }
}

}  // namespace odbs::importer
