// SPDX-License-Identifier: BSD-3-Clause
// Building and searching label tables.
#include "lookup/label_table.h"

#include <algorithm>
#include <string>

namespace odbs {

namespace {

// An array may take this many entries for each element before a map is smaller.
constexpr std::int64_t kSparsest = 16;

}  // namespace

LabelTable::LabelTable(const odb_Instance& instance,
                       const std::function<int(const odb_SectionCategory&)>& numberOf) {
  const odb_SequenceElement& elements = instance.elements();
  const int n = elements.size();
  if (n == 0) return;
  int least = elements[0].label();
  int greatest = least;
  for (int i = 1; i < n; ++i) {
    const int label = elements[i].label();
    least = std::min(least, label);
    greatest = std::max(greatest, label);
  }
  const std::int64_t range = std::int64_t{greatest} - least + 1;
  const bool dense = range <= kSparsest * n;
  firstLabel_ = least;
  if (dense) byLabel_.assign(static_cast<std::size_t>(range), -1);
  std::string categoryName;
  int number = -1;
  for (int i = 0; i < n; ++i) {
    const odb_Element& element = elements[i];
    const odb_SectionCategory& category = element.sectionCategory();
    const char* name = category.name().CStr();
    if (i == 0 || categoryName != name) {
      categoryName = name;
      number = numberOf(category);
    }
    if (dense) {
      byLabel_[static_cast<std::size_t>(std::int64_t{element.label()} - least)] = number;
    } else {
      sparse_[element.label()] = number;
    }
  }
}

int LabelTable::findSparse(int label) const {
  const auto place = sparse_.find(label);
  return place == sparse_.end() ? -1 : place->second;
}

}  // namespace odbs
