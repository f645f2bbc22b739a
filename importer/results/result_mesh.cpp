// SPDX-License-Identifier: BSD-3-Clause
// Matching by labels, coordinates and the known ways in which the solver expands elements.
#include "importer/results/result_mesh.h"

#include <algorithm>
#include <cmath>

#include "base/text.h"
#include "importer/deck/element_types.h"

namespace odbs::importer {

constexpr int kMaxNodes = 8;  // of an element that is expanded

// Nodes of a solid (positions from 0) that stand for the nodes of the element it was made from,
// in the order of that element; -1: none. The middle ones lie between bottom and top.
struct Expansion {
  int nDeckNodes;
  int frdType;
  int bottom[kMaxNodes], middle[kMaxNodes], top[kMaxNodes];
};

namespace {

// In .frd files quadratic solids list the edges from bottom to top before those of the top.
constexpr Expansion kExpansions[] = {
    {3, 2, {0, 1, 2}, {-1, -1, -1}, {3, 4, 5}},
    {4, 1, {0, 1, 2, 3}, {-1, -1, -1, -1}, {4, 5, 6, 7}},
    {6, 5, {0, 1, 2, 6, 7, 8}, {9, 10, 11, -1, -1, -1}, {3, 4, 5, 12, 13, 14}},
    {8,
     4,
     {0, 1, 2, 3, 8, 9, 10, 11},
     {12, 13, 14, 15, -1, -1, -1, -1},
     {4, 5, 6, 7, 16, 17, 18, 19}},
};

// Lines become solids whose cross-sections stand for their nodes, the first four of each section
// with their mean.
struct LineExpansion {
  int nDeckNodes;
  int frdType;
  int sections[3][kMaxNodes];  // -1: no more
};
constexpr std::uint32_t kLineMean = 4;
// Of those four, the one at each corner in the order of SectionCorner.
constexpr std::size_t kCornerPlaces[kCorners] = {1, 3, 0, 2};

constexpr LineExpansion kLineExpansions[] = {
    {2, 1, {{0, 3, 4, 7, -1}, {1, 2, 5, 6, -1}, {-1}}},
    {3, 4, {{0, 3, 4, 7, 11, 12, 15, 19}, {8, 10, 16, 18, -1}, {1, 2, 5, 6, 9, 13, 14, 17}}},
};

const Expansion* expansionOf(int nDeckNodes, int frdType) {
  for (const Expansion& expansion : kExpansions) {
    if (expansion.nDeckNodes == nDeckNodes && expansion.frdType == frdType) return &expansion;
  }
  return nullptr;
}

const LineExpansion* lineExpansionOf(int nDeckNodes, int frdType) {
  for (const LineExpansion& expansion : kLineExpansions) {
    if (expansion.nDeckNodes == nDeckNodes && expansion.frdType == frdType) return &expansion;
  }
  return nullptr;
}

void addOnce(std::vector<std::int32_t>& list, std::int32_t item) {
  if (std::find(list.begin(), list.end(), item) == list.end()) list.push_back(item);
}

// Shares of bottom, middle and top in the mean over the thickness, where there is a middle node
// (linear otherwise): the value varies like a parabola.
constexpr float kThroughThickness[3] = {1.f / 6, 2.f / 3, 1.f / 6};

// Axisymmetric elements become wedges of 2 degrees, and plane ones beside them a 180th of their
// thickness, but forces are those of the full circumference.
constexpr float kWedges = 180;

bool isAxisymmetric(const ElementBlock& block) {
  return startsWith(block.type, "CAX");
}

// Shells have values at both sides; membranes and surface elements do not.
bool hasSides(const ElementBlock& block) {
  return elementTypeOf(block.type).family == Family::shell && block.type[0] == 'S';
}

}  // namespace

int nLayers(const Section& section) {
  if (section.kind != SectionKind::compositeShell) return 1;
  return static_cast<int>(section.layers.size()) * (section.symmetric ? 2 : 1);
}

void include(const Scope& mesh, MatchOptions& options) {
  for (const ElementBlock& block : mesh.elements.blocks) {
    options.axisymmetric = options.axisymmetric || isAxisymmetric(block);
    if (!block.labels.empty()) {
      options.lastElement = std::max(options.lastElement, block.labels.back());
    }
  }
}

ResultMesh::ResultMesh(const Scope& mesh, const FrdIndex& index, const MatchOptions& options)
    : mesh_(mesh),
      index_(index),
      options_(options),
      frdNodes_(index.nodes.labels),
      frdElements_(index.elements.labels),
      deckNodes_(mesh.nodes.labels),
      lines_(mesh, options.userNormals) {
  const FrdElements& elements = index.elements;
  std::uint32_t at = 0;
  firstNode_.reserve(elements.labels.size());
  for (std::size_t i = 0; i < elements.labels.size(); ++i) {
    firstNode_.push_back(at);
    at += static_cast<std::uint32_t>(frdNodesPerElement(elements.types[i]));
  }
  used_.resize(elements.labels.size());
  matchEqualNodes();
  findLayers();
  for (const ElementBlock& block : mesh.elements.blocks) matchElements(block);
  finish();
}

const std::int32_t* ResultMesh::nodesOf(std::size_t element) const {
  return index_.elements.nodes.data() + firstNode_[element];
}

// Text keeps six digits of coordinates.
bool ResultMesh::isSamePlace(std::size_t deckNode, std::int32_t node) const {
  const double* const a = mesh_.nodes.xyz.data() + 3 * deckNode;
  const double* const b = index_.nodes.coordinates.data() + 3 * static_cast<std::size_t>(node);
  return std::fabs(a[0] - b[0]) <= tolerance_ && std::fabs(a[1] - b[1]) <= tolerance_ &&
         std::fabs(a[2] - b[2]) <= tolerance_;
}

// Nodes of one label at one place are one node.
void ResultMesh::matchEqualNodes() {
  double size = 0;
  for (const double x : mesh_.nodes.xyz) size = std::max(size, std::fabs(x));
  tolerance_ = 2e-5 * size;
  equalNode_.assign(mesh_.nodes.size(), -1);
  for (std::size_t i = 0; i < mesh_.nodes.size(); ++i) {
    const std::int32_t node = indexOf(mesh_.nodes.labels[i]);
    if (node < 0) continue;
    ++nLabels_;
    if (!isSamePlace(i, node)) continue;
    ++nInPlace_;
    equalNode_[i] = node;
  }
}

// The sections of shells, and the labels of the solids that composite ones become: one after
// another, element by element in ascending order, beyond all labels of the deck.
void ResultMesh::findLayers() {
  std::vector<std::int32_t> composite;
  for (std::size_t s = 0; s < mesh_.sections.size(); ++s) {
    const Section& section = mesh_.sections[s];
    const bool shell =
        section.kind == SectionKind::shell || section.kind == SectionKind::compositeShell;
    const Set* const set = shell ? mesh_.elementSets.find(section.elset) : nullptr;
    if (set == nullptr) continue;
    for (const Members& members : set->members) {
      for (const std::int32_t label : members.labels) {
        sectionOf_[label] = static_cast<std::int32_t>(s);
        if (section.kind == SectionKind::compositeShell) composite.push_back(label);
      }
    }
  }
  std::int32_t next = options_.lastElement;
  std::sort(composite.begin(), composite.end());
  composite.erase(std::unique(composite.begin(), composite.end()), composite.end());
  for (const std::int32_t label : composite) {
    firstLayer_[label] = next + 1;
    next += nLayers(mesh_.sections[static_cast<std::size_t>(sectionOf_.at(label))]);
  }
}

ResultMesh::Solids ResultMesh::solidsOf(std::int32_t label, std::int32_t section) const {
  Solids solids;
  const auto layered = firstLayer_.find(label);
  const bool isLayered = layered != firstLayer_.end();
  const int n = isLayered ? nLayers(mesh_.sections[static_cast<std::size_t>(section)]) : 1;
  for (int i = 0; i < n; ++i) {
    const std::int32_t found = frdElements_.find(isLayered ? layered->second + i : label);
    if (found < 0) return {};
    solids.push_back(static_cast<std::size_t>(found));
  }
  return solids;
}

void ResultMesh::matchElements(const ElementBlock& block) {
  for (std::size_t i = 0; i < block.labels.size(); ++i) {
    if (takeEqual(block, i)) continue;
    const auto section = sectionOf_.find(block.labels[i]);
    const Solids solids =
        solidsOf(block.labels[i], section == sectionOf_.end() ? -1 : section->second);
    if (!solids.empty()) takeExpanded(block, i, solids);
  }
}

ElementTargets& ResultMesh::targets(const ElementBlock& block, Side side, int layer,
                                    std::int32_t section, std::uint32_t each) {
  const std::size_t nNodes = block.offsets[1] - block.offsets[0];
  for (ElementTargets& t : elements_) {
    if (t.type == block.type && t.side == side && t.layer == layer && t.section == section &&
        t.nNodes == nNodes && t.sources.each == each) {
      return t;
    }
  }
  elements_.push_back({block.type, side, layer, section, {}, nNodes, {each, {}, {}, {}}, {}});
  // Mostly all elements of a block go the same way.
  elements_.back().labels.reserve(block.labels.size());
  elements_.back().sources.nodes.reserve(block.labels.size() * nNodes * each);
  return elements_.back();
}

// The node of a solid that a node of the same element is: the one of its label, else the one at its
// place. The solver splits the nodes of pre-tension sections in two.
std::int32_t ResultMesh::ownNode(std::size_t element, std::size_t nNodes,
                                 std::int32_t deckNode) const {
  const std::int32_t* const theirs = nodesOf(element);
  if (std::find(theirs, theirs + nNodes, deckNode) != theirs + nNodes) return indexOf(deckNode);
  const std::int32_t i = deckNodes_.find(deckNode);
  for (std::size_t k = 0; i >= 0 && k < nNodes; ++k) {
    const std::int32_t node = indexOf(theirs[k]);
    if (node >= 0 && isSamePlace(static_cast<std::size_t>(i), node)) return node;
  }
  return -1;
}

// An element that is in both with the same nodes.
bool ResultMesh::takeEqual(const ElementBlock& block, std::size_t at) {
  const std::int32_t found = frdElements_.find(block.labels[at]);
  if (found < 0) return false;
  const auto element = static_cast<std::size_t>(found);
  const std::size_t first = block.offsets[at], last = block.offsets[at + 1];
  const auto nFrdNodes =
      static_cast<std::size_t>(frdNodesPerElement(index_.elements.types[element]));
  if (last - first != nFrdNodes || block.offsets[1] - block.offsets[0] != nFrdNodes) return false;
  std::vector<std::int32_t> nodes;
  for (std::size_t i = first; i < last; ++i) {
    nodes.push_back(ownNode(element, nFrdNodes, block.nodes[i]));
    // A node that no block of nodes has: such a file has been cut.
    if (nodes.back() < 0) return false;
    if (index_.nodes.labels[static_cast<std::size_t>(nodes.back())] != block.nodes[i]) continue;
    // The solver moves nodes of contact surfaces onto each other, so that places can differ.
    const std::int32_t deckNode = deckNodes_.find(block.nodes[i]);
    if (deckNode >= 0) equalNode_[static_cast<std::size_t>(deckNode)] = nodes.back();
  }
  used_[element] = true;
  // Springs and dashpots have no stresses; what their nodes have is that of their neighbours.
  if (elementTypeOf(block.type).family == Family::connector) return true;
  // Plane results of shells are those of the middle surface.
  ElementTargets& target = targets(block, Side::whole, 0, -1, 1);
  target.labels.push_back(block.labels[at]);
  target.sources.nodes.insert(target.sources.nodes.end(), nodes.begin(), nodes.end());
  return true;
}

ResultMesh::Stand* ResultMesh::standOf(std::int32_t deckNode) {
  const std::int32_t i = deckNodes_.find(deckNode);
  return i < 0 ? nullptr : &stands_[static_cast<std::size_t>(i)];
}

std::int32_t ResultMesh::nodeAt(std::size_t element, int position) const {
  return indexOf(nodesOf(element)[position]);
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

void ResultMesh::finish() {
  std::vector<bool> taken(index_.nodes.labels.size());
  sumsDiffer_ = !stands_.empty();
  for (NodeSources* const sources : {&means_, &sums_}) {
    if (!sumsDiffer_) break;
    sources->each = 0;
    sources->offsets.push_back(0);
  }
  const auto add = [&](NodeSources& sources, std::int32_t node, float weight) {
    sources.nodes.push_back(node);
    if (sumsDiffer_) sources.weights.push_back(weight);
    taken[static_cast<std::size_t>(node)] = true;
  };
  const auto close = [](NodeSources& sources) {
    if (sources.each == 0) {
      sources.offsets.push_back(static_cast<std::uint32_t>(sources.nodes.size()));
    }
  };
  for (std::size_t i = 0; i < equalNode_.size(); ++i) {
    const std::int32_t equal = equalNode_[i];
    const auto found = stands_.find(i);
    if (equal < 0 && found == stands_.end()) continue;
    nodeLabels_.push_back(mesh_.nodes.labels[i]);
    // A node of solids that shells share is itself, but its force is what both have.
    if (equal >= 0) {
      add(means_, equal, 1);
    } else {
      const Stand& stand = found->second;
      for (std::size_t k = 0; k < stand.mean.nodes.size(); ++k) {
        add(means_, stand.mean.nodes[k], stand.mean.weights[k] / stand.nElements);
      }
    }
    close(means_);
    if (!sumsDiffer_) continue;
    if (equal >= 0) add(sums_, equal, 1);
    if (found != stands_.end()) {
      for (const std::int32_t node : found->second.sum) add(sums_, node, found->second.factor);
    }
    close(sums_);
  }
  for (std::size_t i = 0; i < used_.size(); ++i) {
    const int n = used_[i] ? frdNodesPerElement(index_.elements.types[i]) : 0;
    for (int k = 0; k < n; ++k) {
      const std::int32_t node = nodeAt(i, k);
      if (node >= 0) taken[static_cast<std::size_t>(node)] = true;
    }
  }
  nUnusedNodes_ = static_cast<std::size_t>(std::count(taken.begin(), taken.end(), false));
  nUnusedElements_ = static_cast<std::size_t>(std::count(used_.begin(), used_.end(), false));
  stands_.clear();
  std::vector<std::int32_t>().swap(equalNode_);
  std::vector<std::uint32_t>().swap(firstNode_);
}

}  // namespace odbs::importer
