// SPDX-License-Identifier: BSD-3-Clause
// Systems of shells from their nodes, and of orientations.
#include "importer/results/local_systems.h"

#include <cmath>

#include "base/text.h"
#include "importer/deck/element_types.h"

namespace odbs::importer {

namespace {

// Weights of the nodes for the two tangents in the middle of a shell: the derivatives of the shape
// functions there, but for a common factor.
struct Tangents {
  std::size_t nNodes;
  double u[8], v[8];
};

constexpr Tangents kTangents[] = {
    {3, {-1, 1, 0}, {-1, 0, 1}},
    {4, {-1, 1, 1, -1}, {-1, -1, 1, 1}},
    {6, {-1, 1, 0, 0, 4, -4}, {-1, 0, 1, -4, 4, 0}},
    {8, {0, 0, 0, 0, 0, 1, 0, -1}, {0, 0, 0, 0, -1, 0, 1, 0}},
};

}  // namespace

LocalSystems::LocalSystems(const Scope& mesh) : mesh_(mesh) {
  bool any = false;
  for (const ElementBlock& block : mesh.elements.blocks) {
    any = any || elementTypeOf(block.type).family == Family::shell;
  }
  for (std::size_t i = 0; any && i < mesh.nodes.size(); ++i) nodes_[mesh.nodes.labels[i]] = i;
}

std::optional<Axes> LocalSystems::axesOf(const std::string& name, const ElementBlock& block,
                                         std::size_t at) const {
  if (startsWith(name, "_shell_")) return shellAxes(block, at);
  const Family family = elementTypeOf(block.type).family;
  const auto found = mesh_.orientations.find(upperCase(name));
  if (found == mesh_.orientations.end() || family != Family::solid) return std::nullopt;
  const Orientation& orientation = found->second;
  if (orientation.system != "RECTANGULAR" || orientation.rotationAxis != 0) return std::nullopt;
  const CoordinateSystem& axes = orientation.axesOf(block.labels[at]);
  return Axes{axes.xAxis, axes.yAxis, axes.zAxis};
}

std::optional<Axes> LocalSystems::shellAxes(const ElementBlock& block, std::size_t at) const {
  const std::size_t first = block.offsets[at], n = block.offsets[at + 1] - first;
  Vector3 u{}, v{};
  for (const Tangents& tangents : kTangents) {
    if (tangents.nNodes != n) continue;
    for (std::size_t i = 0; i < n; ++i) {
      const auto node = nodes_.find(block.nodes[first + i]);
      if (node == nodes_.end()) return std::nullopt;
      for (std::size_t k = 0; k < 3; ++k) {
        u[k] += tangents.u[i] * mesh_.nodes.xyz[3 * node->second + k];
        v[k] += tangents.v[i] * mesh_.nodes.xyz[3 * node->second + k];
      }
    }
  }
  Vector3 normal = cross(u, v);
  if (!normalize(normal, 1e-3 * std::sqrt(dot(u, u) * dot(v, v)))) return std::nullopt;
  constexpr double kAlongX = 0.99999848;  // cosine of 0.1 degrees
  Vector3 x = {1, 0, 0};
  if (std::fabs(normal[0]) > kAlongX) x = {0, 0, 1};
  const double along = dot(x, normal);
  for (std::size_t k = 0; k < 3; ++k) x[k] -= along * normal[k];
  normalize(x, 0);
  return Axes{x, cross(normal, x), normal};
}

std::array<float, 4> quaternionOf(const Axes& axes) {
  // Of the four ways to the same quaternion the one with the largest divisor.
  const double x = axes[0][0], y = axes[1][1], z = axes[2][2];
  std::array<double, 4> q = {axes[2][1] - axes[1][2], axes[0][2] - axes[2][0],
                             axes[1][0] - axes[0][1], 1 + x + y + z};
  if (x + y + z <= 0) {
    const std::size_t i = x >= y && x >= z ? 0 : y >= z ? 1 : 2;
    const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
    q[3] = axes[k][j] - axes[j][k];
    q[i] = 1 + axes[i][i] - axes[j][j] - axes[k][k];
    q[j] = axes[i][j] + axes[j][i];
    q[k] = axes[i][k] + axes[k][i];
  }
  double length = 0;
  for (const double part : q) length += part * part;
  std::array<float, 4> unit{};
  for (std::size_t i = 0; i < 4; ++i) unit[i] = static_cast<float>(q[i] / std::sqrt(length));
  return unit;
}

}  // namespace odbs::importer
