// SPDX-License-Identifier: BSD-3-Clause
// *ORIENTATION, and *DISTRIBUTION, which gives an orientation's axes element by element.
//
// Source: CalculiX CrunchiX User's Manual, keywords *ORIENTATION and *DISTRIBUTION. Checked by
// solving decks whose values are printed both in the local systems and in the global one.
#include <map>

#include "base/text.h"
#include "importer/deck/deck_parser.h"

namespace odbs::importer {

namespace {

// Two points and an optional origin. Rectangular: a on the first axis, b in the plane of the first
// two. Cylindrical and spherical: the polar axis runs from a to b. Nothing for points that span no
// system.
std::optional<CoordinateSystem> axesByPoints(const Orientation& orientation,
                                             std::vector<double> v) {
  v.resize(9, 0.0);
  const Vec3 a{v[0], v[1], v[2]}, b{v[3], v[4], v[5]}, c{v[6], v[7], v[8]};
  const bool polar = orientation.system != "RECTANGULAR";
  Vec3 x = polar ? Vec3{1, 0, 0} : a - c;
  Vec3 z = polar ? b - a : cross(a - c, b - c);
  if (orientation.zFirst) {  // a on the third axis, b in the plane of the first and the third
    z = a - c;
    x = b - c;
  }
  if (!(norm(z) > 0 && norm(x) > 0)) return std::nullopt;
  z = (1 / norm(z)) * z;
  x = x - dot(x, z) * z;
  if (norm(x) < 1e-12) x = cross(Vec3{0, 1, 0}, z);
  if (norm(x) < 1e-12) x = Vec3{1, 0, 0};
  x = (1 / norm(x)) * x;
  return CoordinateSystem{polar ? a : c, x, cross(z, x), z};
}

}  // namespace

// The first line has the points or the name of a distribution, the second a further rotation.
void DeckParser::readOrientation(const Keyword& keyword) {
  Orientation orientation;
  orientation.name = required(keyword, "NAME");
  orientation.place = keyword.place;
  const std::string& system = keyword.value("SYSTEM");
  if (startsWith(system, "C")) orientation.system = "CYLINDRICAL";
  if (startsWith(system, "S")) orientation.system = "SPHERICAL";
  orientation.zFirst = startsWith(system, "Z");
  const std::string& definition = keyword.value("DEFINITION");
  std::string_view line;
  const bool any = lines_.dataLine(line);
  std::string_view first;
  if (!definition.empty() && definition != "COORDINATES") {
    warn(keyword.place, "orientation " + orientation.name +
                            " is taken as global: its axes depend on the nodes of the elements");
  } else if (any && Fields(line).next(first) && !first.empty() && !numberOf(first)) {
    orientation.distribution = nameOf(first);
  } else if (any) {
    if (const auto axes = axesByPoints(orientation, realsOf(line, 9))) {
      orientation.axes = *axes;
    } else {
      warn(keyword.place, "the points of orientation " + orientation.name + " span no system");
    }
  }
  if (any && lines_.dataLine(line)) {
    const auto values = realsOf(line, 2);
    if (values.size() == 2 && values[0] >= 1 && values[0] <= 3) {
      orientation.rotationAxis = static_cast<int>(values[0]);
      orientation.rotationAngle = values[1];
    }
  }
  scope().orientations[orientation.name] = orientation;
}

// Each line: an element or a set of elements, and numbers. A line without either is for the rest.
void DeckParser::readDistribution(const Keyword& keyword) {
  Distribution distribution;
  if (const Parameter* input = keyword.find("INPUT")) lines_.push(input->raw);
  std::map<std::vector<double>, std::size_t> indices;
  std::string_view line;
  while (lines_.dataLine(line)) {
    Fields fields(line);
    std::string_view first, field;
    if (!fields.next(first)) continue;
    std::vector<double> numbers;
    while (numbers.size() < Distribution::kMaxNumbers && fields.next(field)) {
      const auto number = field.empty() ? 0.0 : numberOf(field);
      if (!number) break;  // names of materials and the like: no orientation can use these
      numbers.push_back(*number);
    }
    if (first.empty()) {
      distribution.standard = numbers;
      continue;
    }
    const auto [at, isNew] = indices.emplace(numbers, distribution.different.size());
    if (isNew) distribution.different.push_back(numbers);
    distribution.rows.push_back({referenceOf(first), at->second});
  }
  scope().distributions[required(keyword, "NAME")] = std::move(distribution);
}

// What the columns of a distribution are, which its users know.
void DeckParser::readDistributionTable(const Keyword&) {
  std::string_view line;
  while (lines_.dataLine(line)) continue;
}

void DeckParser::finishOrientations(Scope& content) {
  std::map<std::string, bool> used;
  for (auto& [name, orientation] : content.orientations) {
    if (orientation.distribution.empty()) continue;
    const auto found = content.distributions.find(orientation.distribution);
    used[orientation.distribution] = true;
    if (found == content.distributions.end()) {
      warn(orientation.place, "orientation " + name + " is taken as global: its distribution " +
                                  orientation.distribution + " is not defined");
    } else if (!takeDistribution(found->second, orientation)) {
      warn(orientation.place, "orientation " + name +
                                  " is taken as global where its distribution " +
                                  orientation.distribution + " has no points that span a system");
    }
  }
  for (const auto& [name, distribution] : content.distributions) {
    if (!used[name]) ++deck_.ignoredKeywords["*DISTRIBUTION"];
  }
  content.distributions.clear();
}

// False when some elements keep the global system.
bool DeckParser::takeDistribution(const Distribution& distribution, Orientation& orientation) {
  bool complete = true;
  const auto axesOf = [&](const std::vector<double>& points) {
    const auto axes = points.size() >= 6 ? axesByPoints(orientation, points) : std::nullopt;
    complete = complete && axes.has_value();
    return axes.value_or(CoordinateSystem());
  };
  if (distribution.standard) orientation.axes = axesOf(*distribution.standard);
  for (const auto& points : distribution.different) orientation.systems.push_back(axesOf(points));
  for (const Distribution::Row& row : distribution.rows) {
    if (row.elements.label != 0) {
      orientation.elementSystems[row.elements.label] = row.numbers;
      continue;
    }
    const Set* const set = findSet(row.elements, true);
    if (set == nullptr) {
      lines_.fail(orientation.place, "distribution " + orientation.distribution +
                                         " names the element set " + row.elements.setName +
                                         ", which is not defined");
    }
    for (const Members& members : set->members) {
      for (const std::int32_t label : members.labels) {
        orientation.elementSystems[label] = row.numbers;
      }
    }
  }
  return complete;
}

}  // namespace odbs::importer
