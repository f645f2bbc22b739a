// SPDX-License-Identifier: BSD-3-Clause
// Looking instances and section points up in the selection set.
#include "server/core/selection_set.h"

#include <algorithm>

namespace odbs {

LabelSet SelectionSet::elementsAtAnyPoint(const std::string& instance) const {
  LabelSet all;
  const auto byPoint = elements_.find(instance);
  if (byPoint == elements_.end()) return all;
  for (const auto& [point, labels] : byPoint->second) all.add(labels);
  return all;
}

bool SelectionSet::empty() const {
  for (const auto& [instance, byPoint] : elements_) {
    for (const auto& [point, labels] : byPoint) {
      if (!labels.empty()) return false;
    }
  }
  return std::all_of(nodes_.begin(), nodes_.end(),
                     [](const auto& entry) { return entry.second.empty(); });
}

SelectedLabels SelectionSet::selectedElements(const std::string& instance, int sectionPoint) const {
  const auto byPoint = elements_.find(instance);
  if (byPoint == elements_.end()) return {nullptr, nullptr};
  const auto labelsAt = [&](int point) -> const LabelSet* {
    const auto labels = byPoint->second.find(point);
    return labels == byPoint->second.end() ? nullptr : &labels->second;
  };
  return {labelsAt(kAnyPoint), labelsAt(sectionPoint)};
}

SelectedLabels SelectionSet::selectedNodes(const std::string& instance) const {
  const auto labels = nodes_.find(instance);
  return {labels == nodes_.end() ? nullptr : &labels->second, nullptr};
}

}  // namespace odbs
