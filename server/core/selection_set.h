// SPDX-License-Identifier: BSD-3-Clause
// The selection set: elements, at any or at certain section points, and nodes, by instance. The
// region requests fill it; results requests ask it, once for a block and then once for a value.
#pragma once

#include <map>
#include <string>

#include "server/core/label_set.h"

namespace odbs {

// The labels that are selected among the values of one block.
class SelectedLabels {
 public:
  SelectedLabels(const LabelSet* first, const LabelSet* second) : first_(first), second_(second) {}
  bool has(int label) const {
    return (first_ && first_->has(label)) || (second_ && second_->has(label));
  }
  bool empty() const { return (!first_ || first_->empty()) && (!second_ || second_->empty()); }

 private:
  const LabelSet* first_;
  const LabelSet* second_;
};

class SelectionSet {
 public:
  static constexpr int kAnyPoint = -2;  // -1 is what blocks without section points say

  // Element labels, and node labels, of the instance; kept as long as this object.
  LabelSet& elements(const std::string& instance, int sectionPoint = kAnyPoint) {
    return elements_[instance][sectionPoint];
  }
  LabelSet& nodes(const std::string& instance) { return nodes_[instance]; }

  // The instance's elements that are selected at any or at certain section points.
  LabelSet elementsAtAnyPoint(const std::string& instance) const;

  // True while nothing was added.
  bool empty() const;

  // Which elements are selected at the section point, and which nodes. Valid until the set changes.
  SelectedLabels selectedElements(const std::string& instance, int sectionPoint) const;
  SelectedLabels selectedNodes(const std::string& instance) const;

 private:
  std::map<std::string, std::map<int, LabelSet>> elements_;  // by instance, section point
  std::map<std::string, LabelSet> nodes_;                    // by instance
};

}  // namespace odbs
