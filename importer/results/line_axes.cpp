// SPDX-License-Identifier: BSD-3-Clause
// Axes from the nodes of lines and the directions of their sections.
#include "importer/results/line_axes.h"

#include <array>
#include <cmath>

#include "base/text.h"
#include "importer/deck/element_types.h"

namespace odbs::importer {

namespace {

// Middle lines of a box's walls in halves of its thickness: at n1, n2, -n1, -n2, which is the order
// in which the section gives the walls.
std::array<double, 4> wallPlaces(const Section& section) {
  const std::vector<double>& d = section.dimensions;
  return {1 - d[2] / d[0], 1 - d[3] / d[1], d[4] / d[0] - 1, d[5] / d[1] - 1};
}

// Mean radius (of the squares) of a pipe's wall in outer radii.
double wallRadius(const Section& section) {
  const double inner = 1 - section.dimensions[1] / section.dimensions[0];
  return std::sqrt((1 + inner * inner) / 2);
}

}  // namespace

bool hasCorners(const Section& section) {
  const std::vector<double>& d = section.dimensions;
  if (section.kind != SectionKind::beam) return false;
  if (section.profile == "PIPE") return d.size() >= 2 && d[0] > 0;
  if (section.profile == "BOX") return d.size() >= 6 && d[0] > 0 && d[1] > 0;
  return startsWith(section.profile, "RECT") || section.profile == "CIRC";
}

CornerShares nodeShares(const Section& section, int corner) {
  if (section.profile != "PIPE") return {{static_cast<std::size_t>(corner), 1.}};
  const SectionCorner at = cornerOf(section, corner);
  CornerShares shares;
  for (int node = 0; node < kCorners; ++node) {
    const double one = node % 2 == 0 ? -1 : 1, two = node < 2 ? -1 : 1;
    shares.emplace_back(node, (1 + one * at.along1) * (1 + two * at.along2) / 4);
  }
  return shares;
}

CornerShares wallShares(const Section& section, int corner) {
  const SectionCorner at = cornerOf(section, corner);
  CornerShares shares;
  if (section.profile == "PIPE") {
    const double radius = wallRadius(section), square = radius * radius;
    for (std::size_t i = 0; i < kPipePoints; ++i) {
      const double angle = (static_cast<double>(i) - 2) * std::acos(-1.) / 4;
      const double one = radius * std::cos(angle), two = radius * std::sin(angle);
      shares.emplace_back(i, 1. / 8 + (one * at.along1 + two * at.along2) / (4 * square) +
                                 one * two * at.along1 * at.along2 / (square * square));
    }
  } else if (section.profile == "BOX") {
    const std::array<double, 4> wall = wallPlaces(section);
    const double u = (at.along1 - wall[2]) / (wall[0] - wall[2]);
    const double v = (at.along2 - wall[3]) / (wall[1] - wall[3]);
    shares = {{0, u * (1 - v)}, {4, u * v}, {8, (1 - u) * v}, {12, (1 - u) * (1 - v)}};
  }
  return shares;
}

SectionCorner cornerOf(const Section& section, int corner) {
  const bool round = section.profile == "CIRC" || section.profile == "PIPE";
  const double at = round ? std::sqrt(0.5) : 1;
  return {corner % 2 == 0 ? -at : at, corner < 2 ? -at : at};
}

bool hasUserNormals(const Deck& deck) {
  return deck.ignoredKeywords.count("*NORMAL") != 0;
}

bool isTruss(const std::string& type) {
  return type[0] == 'T' && elementTypeOf(type).family == Family::line;
}

LineAxes::LineAxes(const Scope& mesh, bool userNormals) : mesh_(mesh) {
  for (std::size_t s = 0; s < mesh.sections.size() && !userNormals; ++s) {
    const Section& section = mesh.sections[s];
    const Set* const set = hasCorners(section) ? mesh.elementSets.find(section.elset) : nullptr;
    if (set == nullptr) continue;
    for (const Members& members : set->members) {
      for (const std::int32_t label : members.labels) {
        sectionOf_[label] = static_cast<std::int32_t>(s);
      }
    }
  }
  std::unordered_map<std::int32_t, bool> needed;
  for (const ElementBlock& block : mesh.elements.blocks) {
    if (elementTypeOf(block.type).family != Family::line) continue;
    for (const std::int32_t node : block.nodes) needed[node] = true;
  }
  if (needed.empty()) return;
  for (std::size_t i = 0; i < mesh.nodes.size(); ++i) {
    if (needed.count(mesh.nodes.labels[i]) != 0) nodes_[mesh.nodes.labels[i]] = i;
  }
}

std::int32_t LineAxes::beamSection(std::int32_t label) const {
  const auto found = sectionOf_.find(label);
  return found == sectionOf_.end() ? -1 : found->second;
}

bool LineAxes::axesAt(const ElementBlock& block, std::size_t at, double xi, Axes& axes) const {
  const std::size_t first = block.offsets[at], n = block.offsets[at + 1] - first;
  // Derivatives of the shape functions.
  const double slopes[2][3] = {{-0.5, 0.5, 0}, {xi - 0.5, -2 * xi, xi + 0.5}};
  if (n != 2 && n != 3) return false;
  Vector3 t{};
  double size = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const auto node = nodes_.find(block.nodes[first + i]);
    if (node == nodes_.end()) return false;
    for (std::size_t k = 0; k < 3; ++k) {
      const double x = mesh_.nodes.xyz[3 * node->second + k];
      t[k] += slopes[n - 2][i] * x;
      size = std::max(size, std::fabs(x));
    }
  }
  if (!normalize(t, 1e-3 * size)) return false;
  Vector3 n1 = {0, 0, -1};
  const std::int32_t section = beamSection(block.labels[at]);
  if (section >= 0) {
    const std::vector<double>& given = mesh_.sections[static_cast<std::size_t>(section)].beamAxis;
    if (given.size() == 3) n1 = {given[0], given[1], given[2]};
  } else if (std::fabs(t[2]) > 0.99) {
    n1 = {1, 0, 0};  // trusses may have any
  }
  const double along = dot(n1, t), length = std::sqrt(dot(n1, n1));
  for (std::size_t k = 0; k < 3; ++k) n1[k] -= along * t[k];
  if (!normalize(n1, length)) return false;
  axes = {t, n1, cross(t, n1)};
  return true;
}

void turn(FieldShape shape, const Axes& axes, float* components) {
  if (shape == FieldShape::vector) {
    const Vector3 v = {components[0], components[1], components[2]};
    for (std::size_t i = 0; i < 3; ++i) components[i] = static_cast<float>(dot(axes[i], v));
  }
  if (shape != FieldShape::tensor && shape != FieldShape::strain) return;
  // Components 11, 22, 33, 12, 13, 23.
  constexpr std::size_t kRow[6] = {0, 1, 2, 0, 0, 1}, kColumn[6] = {0, 1, 2, 1, 2, 2};
  double full[3][3];
  for (std::size_t c = 0; c < 6; ++c) {
    full[kRow[c]][kColumn[c]] = full[kColumn[c]][kRow[c]] = static_cast<double>(components[c]);
  }
  for (std::size_t c = 0; c < 6; ++c) {
    double value = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t j = 0; j < 3; ++j) {
        value += axes[kRow[c]][i] * full[i][j] * axes[kColumn[c]][j];
      }
    }
    components[c] = static_cast<float>(value);
  }
}

}  // namespace odbs::importer
