// SPDX-License-Identifier: BSD-3-Clause
// From label to index: by subtraction when labels run without gaps, by a table when they are dense,
// by binary search otherwise.
#pragma once

#include <utility>
#include <vector>

namespace odbs::engine {

class LabelIndex {
 public:
  // Takes the first `n` of `labels`; those taken by an earlier call must still be the same. Of
  // equal labels the first counts.
  void extend(const int* labels, int n);
  // The index of a label, or -1.
  int find(int label) const {
    if (table_.empty() && sorted_.empty()) {
      const long long i = static_cast<long long>(label) - first_;
      return i >= 0 && i < n_ ? static_cast<int>(i) : -1;
    }
    return findSlow(label);
  }

 private:
  void buildTable(const int* labels, int n);
  int findSlow(int label) const;

  int n_ = 0;
  long long first_ = 0;                      // lowest label of the run or of the table
  std::vector<int> table_;                   // label - first_ to index or -1
  std::vector<std::pair<int, int>> sorted_;  // (label, index)
};

}  // namespace odbs::engine
