// SPDX-License-Identifier: BSD-3-Clause
// The part of ResultMesh for elements that the solver turned into solids: what stands for their
// nodes, and where their values come from.
#include <algorithm>
#include <cmath>

#include "importer/deck/element_types.h"
#include "importer/results/result_mesh.h"
#include "importer/results/solid_expansions.h"

namespace odbs::importer {

namespace {

constexpr std::uint32_t kLineMean = 4;
// Of those four, the one at each corner in the order of SectionCorner.
constexpr std::size_t kCornerPlaces[kCorners] = {1, 3, 0, 2};

void addOnce(std::vector<std::int32_t>& list, std::int32_t item) {
  if (std::find(list.begin(), list.end(), item) == list.end()) list.push_back(item);
}

// Shares of bottom, middle and top in the mean over the thickness, where there is a middle node
// (linear otherwise): the value varies like a parabola.
constexpr float kThroughThickness[3] = {1.f / 6, 2.f / 3, 1.f / 6};

// Axisymmetric elements become wedges of 2 degrees, and plane ones beside them a 180th of their
// thickness, but forces are those of the full circumference.
constexpr float kWedges = 180;

// Shells have values at both sides; membranes and surface elements do not.
bool hasSides(const ElementBlock& block) {
  return elementTypeOf(block.type).family == Family::shell && block.type[0] == 'S';
}

}  // namespace

ResultMesh::Stand* ResultMesh::standOf(std::int32_t deckNode) {
  const std::int32_t i = deckNodes_.find(deckNode);
  return i < 0 ? nullptr : &stands_[static_cast<std::size_t>(i)];
}

// What one element adds to what stands for its node number `node`.
void ResultMesh::standFor(std::int32_t deckNode, const Solids& solids, const Expansion& expansion,
                          int node, bool layered, float factor) {
  Stand* const stand = standOf(deckNode);
  if (stand == nullptr) return;
  const int bottom = expansion.bottom[node], middle = expansion.middle[node],
            top = expansion.top[node];
  const auto add = [&](std::size_t solid, int position, float weight) {
    stand->mean.nodes.push_back(nodeAt(solid, position));
    stand->mean.weights.push_back(weight);
  };
  stand->nElements += 1;
  if (middle < 0) {
    // Between the faces the solver's layers follow the whole element, which is curved there.
    add(solids.front(), bottom, 0.5f);
    add(solids.back(), top, 0.5f);
  } else {
    std::vector<float> heights;
    float height = 0;
    for (const std::size_t solid : solids) {
      const double* const x = index_.nodes.coordinates.data();
      const double* const a = x + 3 * static_cast<std::size_t>(nodeAt(solid, bottom));
      const double* const b = x + 3 * static_cast<std::size_t>(nodeAt(solid, top));
      heights.push_back(static_cast<float>(std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2])));
      height += heights.back();
    }
    for (std::size_t i = 0; i < solids.size(); ++i) {
      const float share = height > 0 ? heights[i] / height : 1 / static_cast<float>(solids.size());
      add(solids[i], bottom, share * kThroughThickness[0]);
      add(solids[i], middle, share * kThroughThickness[1]);
      add(solids[i], top, share * kThroughThickness[2]);
    }
  }
  // Forces on the nodes of layers are not calculated; zeros stand for them.
  if (layered) return;
  stand->factor = std::max(stand->factor, factor);
  for (const int position : {bottom, middle, top}) {
    if (position >= 0) addOnce(stand->sum, nodeAt(solids[0], position));
  }
}

void ResultMesh::takeLine(const ElementBlock& block, std::size_t at, std::size_t solid) {
  const std::size_t first = block.offsets[at];
  const int nDeckNodes = static_cast<int>(block.offsets[at + 1] - first);
  const LineExpansion& line = *lineExpansionOf(nDeckNodes, index_.elements.types[solid]);
  for (int i = 0; i < nDeckNodes; ++i) {
    Stand* const stand = standOf(block.nodes[first + static_cast<std::size_t>(i)]);
    if (stand == nullptr) continue;
    stand->nElements += 1;
    for (std::size_t k = 0; k < kMaxNodes && line.sections[i][k] >= 0; ++k) {
      const std::int32_t node = nodeAt(solid, line.sections[i][k]);
      addOnce(stand->sum, node);
      if (k >= kLineMean) continue;
      stand->mean.nodes.push_back(node);
      stand->mean.weights.push_back(1.f / kLineMean);
    }
  }
  used_[solid] = true;
  if (!addLine(block, at, solid)) ++nElementsWithout_;
}

// Values of a truss (means over its cross-sections) or beam (at the corners of its cross-sections).
// False when their axes or corners are not known.
bool ResultMesh::addLine(const ElementBlock& block, std::size_t at, std::size_t solid) {
  const bool truss = isTruss(block.type);
  const std::int32_t section = truss ? -1 : lines_.beamSection(block.labels[at]);
  if (!truss && section < 0) return false;
  const std::size_t n = block.offsets[at + 1] - block.offsets[at];
  const LineExpansion& line = *lineExpansionOf(static_cast<int>(n), index_.elements.types[solid]);
  std::vector<Axes> axes(n);
  for (std::size_t i = 0; i < n; ++i) {
    const double xi = 2 * static_cast<double>(i) / static_cast<double>(n - 1) - 1;
    if (!lines_.axesAt(block, at, xi, axes[i])) return false;
  }
  for (int corner = 0; corner < (truss ? 1 : kCorners); ++corner) {
    CornerShares shares = {{0, 0.25}, {1, 0.25}, {2, 0.25}, {3, 0.25}};
    if (!truss) shares = nodeShares(lines_.section(section), corner);
    const auto each = static_cast<std::uint32_t>(shares.size());
    ElementTargets& target =
        targets(block, truss ? Side::whole : Side::corner, corner, section, each);
    target.labels.push_back(block.labels[at]);
    target.axes.insert(target.axes.end(), axes.begin(), axes.end());
    for (std::size_t i = 0; i < n; ++i) {
      for (const auto& [of, share] : shares) {
        target.sources.nodes.push_back(nodeAt(solid, line.sections[i][kCornerPlaces[of]]));
        if (each > 1) target.sources.weights.push_back(static_cast<float>(share));
      }
    }
  }
  return true;
}

void ResultMesh::takeExpanded(const ElementBlock& block, std::size_t at, const Solids& solids) {
  const std::size_t first = block.offsets[at];
  const int nDeckNodes = static_cast<int>(block.offsets[at + 1] - first);
  if (block.offsets[1] - block.offsets[0] != block.offsets[at + 1] - first) return;
  const int frdType = index_.elements.types[solids[0]];
  for (const std::size_t solid : solids) {
    if (index_.elements.types[solid] != frdType) return;
    for (int i = 0; i < frdNodesPerElement(frdType); ++i) {
      if (nodeAt(solid, i) < 0) return;
    }
  }
  const Family family = elementTypeOf(block.type).family;
  if (family == Family::line && lineExpansionOf(nDeckNodes, frdType) != nullptr) {
    return takeLine(block, at, solids[0]);
  }
  const Expansion* const expansion = expansionOf(nDeckNodes, frdType);
  if (expansion == nullptr) return;
  const bool layered = firstLayer_.count(block.labels[at]) != 0;
  const float factor = options_.axisymmetric && family == Family::planar ? kWedges : 1;
  for (int i = 0; i < nDeckNodes; ++i) {
    standFor(block.nodes[first + static_cast<std::size_t>(i)], solids, *expansion, i, layered,
             factor);
  }
  const auto section = sectionOf_.find(block.labels[at]);
  const bool sides = hasSides(block) && section != sectionOf_.end();
  for (std::size_t layer = 0; layer < solids.size(); ++layer) {
    used_[solids[layer]] = true;
    if (sides) {
      addSide(block, at, solids[layer], Side::bottom, static_cast<int>(layer), section->second);
      addSide(block, at, solids[layer], Side::top, static_cast<int>(layer), section->second);
    } else {
      addWhole(block, at, solids[layer], static_cast<int>(layer));
    }
  }
}

// Values of one side of a shell's layer.
void ResultMesh::addSide(const ElementBlock& block, std::size_t at, std::size_t solid, Side side,
                         int layer, std::int32_t section) {
  const std::size_t n = block.offsets[at + 1] - block.offsets[at];
  const Expansion& expansion = *expansionOf(static_cast<int>(n), index_.elements.types[solid]);
  ElementTargets& target = targets(block, side, layer, section, 1);
  target.labels.push_back(block.labels[at]);
  for (std::size_t i = 0; i < n; ++i) {
    target.sources.nodes.push_back(
        nodeAt(solid, side == Side::top ? expansion.top[i] : expansion.bottom[i]));
  }
}

// Means over the thickness.
void ResultMesh::addWhole(const ElementBlock& block, std::size_t at, std::size_t solid, int layer) {
  const std::size_t n = block.offsets[at + 1] - block.offsets[at];
  const Expansion& expansion = *expansionOf(static_cast<int>(n), index_.elements.types[solid]);
  const bool quadratic = expansion.middle[0] >= 0;
  ElementTargets& target = targets(block, Side::whole, layer, -1, quadratic ? 3 : 2);
  target.labels.push_back(block.labels[at]);
  const auto add = [&](int position, float weight) {
    target.sources.nodes.push_back(nodeAt(solid, position));
    target.sources.weights.push_back(weight);
  };
  for (std::size_t i = 0; i < n; ++i) {
    const bool middle = expansion.middle[i] >= 0;
    add(expansion.bottom[i], middle ? kThroughThickness[0] : 0.5f);
    add(expansion.top[i], middle ? kThroughThickness[2] : 0.5f);
    // Every row has as many sources as the others.
    if (quadratic) {
      add(middle ? expansion.middle[i] : expansion.top[i], middle ? kThroughThickness[1] : 0);
    }
  }
}

}  // namespace odbs::importer
