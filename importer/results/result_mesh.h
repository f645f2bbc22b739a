// SPDX-License-Identifier: BSD-3-Clause
// Where the values of a result file go: its nodes and elements matched with those of the deck.
//
// The solver keeps the labels of solid meshes. It turns shells, membranes, plane and axisymmetric
// elements, beams and trusses into solids with new nodes (CalculiX CrunchiX User's Manual,
// chapter on element types), unless two-dimensional output was asked for; those elements keep
// their labels, except composite shells, which become one solid a layer with labels beyond the
// largest.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "importer/deck/deck.h"
#include "importer/results/frd_index.h"
#include "importer/results/line_axes.h"

namespace odbs::importer {

// For each of a number of targets the nodes of the result file that its value comes from, as
// indices in FrdIndex::nodes: those of target i are nodes[begin(i)] to nodes[end(i)]. The value is
// the sum of theirs, each times its weight.
struct NodeSources {
  std::uint32_t each = 1;  // nodes of every target; 0: offsets tell
  std::vector<std::uint32_t>
      offsets;  // one more than there are targets; empty when `each` is not 0
  std::vector<std::int32_t> nodes;
  std::vector<float> weights;  // parallel to nodes; empty: 1 for all

  std::size_t size() const { return each > 0 ? nodes.size() / each : offsets.size() - 1; }
  std::size_t begin(std::size_t i) const { return each > 0 ? i * each : offsets[i]; }
  std::size_t end(std::size_t i) const { return each > 0 ? (i + 1) * each : offsets[i + 1]; }
};

// Finds positions of labels in an array that stays where it is.
class LabelPositions {
 public:
  LabelPositions() = default;
  explicit LabelPositions(const std::vector<std::int32_t>& labels);
  // The position of the label (of its first occurrence), or -1.
  std::int32_t find(std::int32_t label) const;

 private:
  const std::vector<std::int32_t>* labels_ = nullptr;
  std::vector<std::int32_t> order_;  // positions by ascending label; empty when they ascend anyway
};

struct Expansion;  // how elements become solids, see solid_expansions.h

// Where through the thickness, or in the cross-section, element values belong.
enum class Side { whole, bottom, top, corner };

// Values at the nodes of some elements of one type: a row per element and node of its
// connectivity.
struct ElementTargets {
  std::string type;
  Side side = Side::whole;
  int layer = 0;                     // of a composite shell, from 0; of a beam, the corner
  std::int32_t section = -1;         // index in the mesh's sections, of shells and beams only
  std::vector<std::int32_t> labels;  // of the elements, ascending
  std::size_t nNodes = 0;            // of each
  NodeSources sources;               // of each row
  std::vector<Axes> axes;            // of each row, in trusses and beams; else the global ones
};

// What a mesh must know of the deck around it.
struct MatchOptions {
  bool userNormals = false;   // the deck gives normals (see LineAxes)
  bool axisymmetric = false;  // some element of the deck is axisymmetric
  // The largest element label of the deck: the solver counts on from there.
  std::int32_t lastElement = 0;
};
// Adds a mesh to them.
void include(const Scope& mesh, MatchOptions& options);

class ResultMesh {
 public:
  // Matches what `index` holds with a mesh of the deck; both must outlive this. Of `index`, only
  // nodes.labels are needed later.
  ResultMesh(const Scope& mesh, const FrdIndex& index, const MatchOptions& options);

  // The deck's nodes that have values, ascending, each with the nodes whose weighted mean is its
  // value, and those that make it up where values add up (forces): none for nodes of composite
  // shells. The mean is that of the solver's plane output: over the cross-section of shells, plane
  // and axisymmetric elements, over its four corners (or four edges) in beams. Where plane elements
  // stand for the full circumference, sums are those of the circumference.
  const std::vector<std::int32_t>& nodeLabels() const { return nodeLabels_; }
  const NodeSources& means() const { return means_; }
  const NodeSources& sums() const { return sumsDiffer_ ? sums_ : means_; }

  const std::vector<ElementTargets>& elements() const { return elements_; }

  // Index in FrdIndex::nodes of a node of the result file, or -1.
  std::int32_t indexOf(std::int32_t frdLabel) const { return frdNodes_.find(frdLabel); }

  // Of the labels that both have, whether most are at one place.
  bool isInPlace() const { return 2 * nInPlace_ >= nLabels_; }

  // Nodes and elements of the result file that nothing of the deck takes, and elements of the deck
  // whose nodes take values but which take none (some beams).
  std::size_t nUnusedNodes() const { return nUnusedNodes_; }
  std::size_t nUnusedElements() const { return nUnusedElements_; }
  std::size_t nElementsWithout() const { return nElementsWithout_; }

 private:
  // Nodes of the result file that stand for a node of the deck.
  struct Stand {
    NodeSources mean;  // every element that has the node adds its own, with weights that sum to 1
    float nElements = 0;
    std::vector<std::int32_t> sum;  // each once
    float factor = 1;               // of the sum
  };
  // The solids that an element of the deck became, as indices in FrdIndex::elements: one, or one a
  // layer, bottom first.
  using Solids = std::vector<std::size_t>;

  bool isSamePlace(std::size_t deckNode, std::int32_t node) const;
  void matchEqualNodes();
  void findLayers();
  Solids solidsOf(std::int32_t label, std::int32_t section) const;
  void matchElements(const ElementBlock& block);
  void takeExpanded(const ElementBlock& block, std::size_t at, const Solids& solids);
  void takeLine(const ElementBlock& block, std::size_t at, std::size_t solid);
  bool addLine(const ElementBlock& block, std::size_t at, std::size_t solid);
  void standFor(std::int32_t deckNode, const Solids& solids, const Expansion& expansion, int node,
                bool layered, float factor);
  Stand* standOf(std::int32_t deckNode);
  std::int32_t nodeAt(std::size_t element, int position) const;
  void addSide(const ElementBlock& block, std::size_t at, std::size_t solid, Side side, int layer,
               std::int32_t section);
  void addWhole(const ElementBlock& block, std::size_t at, std::size_t solid, int layer);
  std::int32_t ownNode(std::size_t element, std::size_t nNodes, std::int32_t deckNode) const;
  bool takeEqual(const ElementBlock& block, std::size_t at);
  ElementTargets& targets(const ElementBlock& block, Side side, int layer, std::int32_t section,
                          std::uint32_t each);
  const std::int32_t* nodesOf(std::size_t element) const;
  void finish();

  const Scope& mesh_;
  const FrdIndex& index_;
  MatchOptions options_;
  LabelPositions frdNodes_, frdElements_, deckNodes_;
  LineAxes lines_;
  std::vector<std::uint32_t> firstNode_;  // of each element of the result file
  double tolerance_ = 0;                  // of coordinates
  // Per node of the deck: the one that it is in the result file, or -1, and then perhaps others.
  std::vector<std::int32_t> equalNode_;
  std::unordered_map<std::size_t, Stand> stands_;
  std::unordered_map<std::int32_t, std::int32_t> sectionOf_;   // of shells, by element label
  std::unordered_map<std::int32_t, std::int32_t> firstLayer_;  // label of the lowest solid
  std::vector<bool> used_;                                     // per element of the result file
  std::vector<std::int32_t> nodeLabels_;
  NodeSources means_, sums_;
  bool sumsDiffer_ = false;
  std::size_t nLabels_ = 0, nInPlace_ = 0;  // of nodes in both
  std::vector<ElementTargets> elements_;
  std::size_t nUnusedNodes_ = 0, nUnusedElements_ = 0, nElementsWithout_ = 0;
};

// How many layers a composite section has; 1 for others.
int nLayers(const Section& section);

}  // namespace odbs::importer
