// SPDX-License-Identifier: BSD-3-Clause
// A number for each element of an instance, looked up by label: an array over the labels where
// their range allows, a map otherwise.
#pragma once

#include <odb_API.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <unordered_map>
#include <vector>

namespace odbs {

class LabelTable {
 public:
  LabelTable() = default;

  // Numbers all elements of `instance`: `numberOf` is asked once for each run of neighbours that
  // share their section category.
  LabelTable(const odb_Instance& instance,
             const std::function<int(const odb_SectionCategory&)>& numberOf);

  // The element's number, -1 for one that is unknown.
  int find(int label) const {
    const std::int64_t at = std::int64_t{label} - firstLabel_;
    if (at >= 0 && at < static_cast<std::int64_t>(byLabel_.size())) {
      return byLabel_[static_cast<std::size_t>(at)];
    }
    return sparse_.empty() ? -1 : findSparse(label);
  }

 private:
  int findSparse(int label) const;

  int firstLabel_ = 0;
  std::vector<int> byLabel_;
  std::unordered_map<int, int> sparse_;
};

}  // namespace odbs
