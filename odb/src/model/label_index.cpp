// SPDX-License-Identifier: BSD-3-Clause
// Building the index, and the choice between the three ways to search.
#include "odb/src/model/label_index.h"

#include <algorithm>

namespace odbs::engine {

void LabelIndex::extend(const int* labels, int n) {
  if (n <= n_) return;
  if (table_.empty() && sorted_.empty()) {
    if (n_ == 0) first_ = labels[0];
    int i = n_;
    while (i < n && labels[i] == first_ + i) ++i;
    if (i == n) {
      n_ = n;
      return;
    }
  }
  buildTable(labels, n);
}

void LabelIndex::buildTable(const int* labels, int n) {
  // A table that has room for the new labels takes them.
  int from = 0;
  if (!table_.empty()) {
    from = n_;
    const auto [low, high] = std::minmax_element(labels + n_, labels + n);
    if (*low < first_ || *high - first_ >= static_cast<long long>(table_.size())) from = 0;
  }
  if (from == 0) {
    const auto [low, high] = std::minmax_element(labels, labels + n);
    const long long range = static_cast<long long>(*high) - *low + 1;
    table_.clear();
    sorted_.clear();
    if (range > 4LL * n + 1024) {
      for (int i = 0; i < n; ++i) sorted_.emplace_back(labels[i], i);
      std::sort(sorted_.begin(), sorted_.end());
      n_ = n;
      return;
    }
    first_ = *low;
    // Room to grow, so that adding few labels at a time stays cheap.
    table_.assign(static_cast<std::size_t>(range + range / 2 + 64), -1);
  }
  for (int i = from; i < n; ++i) {
    int& place = table_[static_cast<std::size_t>(labels[i] - first_)];
    if (place < 0) place = i;
  }
  n_ = n;
}

int LabelIndex::findSlow(int label) const {
  if (!table_.empty()) {
    const long long i = static_cast<long long>(label) - first_;
    if (i < 0 || i >= static_cast<long long>(table_.size())) return -1;
    return table_[static_cast<std::size_t>(i)];
  }
  const auto at = std::lower_bound(sorted_.begin(), sorted_.end(), std::make_pair(label, -1));
  return at != sorted_.end() && at->first == label ? at->second : -1;
}

}  // namespace odbs::engine
