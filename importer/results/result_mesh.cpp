// SPDX-License-Identifier: BSD-3-Clause
// Matching by labels and coordinates, and what it comes to in the end.
#include "importer/results/result_mesh.h"

#include <algorithm>
#include <cmath>

#include "base/text.h"
#include "importer/deck/element_types.h"

namespace odbs::importer {

namespace {

bool isAxisymmetric(const ElementBlock& block) {
  return startsWith(block.type, "CAX");
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

std::int32_t ResultMesh::nodeAt(std::size_t element, int position) const {
  return indexOf(nodesOf(element)[position]);
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
