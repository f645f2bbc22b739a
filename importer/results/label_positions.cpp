// SPDX-License-Identifier: BSD-3-Clause
// Positions of labels: by halving where they ascend, else through an order.
#include "importer/results/result_mesh.h"

#include <algorithm>
#include <numeric>

namespace odbs::importer {

LabelPositions::LabelPositions(const std::vector<std::int32_t>& labels) : labels_(&labels) {
  if (std::is_sorted(labels.begin(), labels.end())) return;
  order_.resize(labels.size());
  std::iota(order_.begin(), order_.end(), 0);
  std::stable_sort(order_.begin(), order_.end(), [&](std::int32_t a, std::int32_t b) {
    return labels[static_cast<std::size_t>(a)] < labels[static_cast<std::size_t>(b)];
  });
}

std::int32_t LabelPositions::find(std::int32_t label) const {
  const std::vector<std::int32_t>& labels = *labels_;
  if (order_.empty()) {
    const auto found = std::lower_bound(labels.begin(), labels.end(), label);
    const bool is = found != labels.end() && *found == label;
    return is ? static_cast<std::int32_t>(found - labels.begin()) : -1;
  }
  const auto found = std::lower_bound(
      order_.begin(), order_.end(), label,
      [&](std::int32_t i, std::int32_t l) { return labels[static_cast<std::size_t>(i)] < l; });
  const bool is = found != order_.end() && labels[static_cast<std::size_t>(*found)] == label;
  return is ? *found : -1;
}

}  // namespace odbs::importer
