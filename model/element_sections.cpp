// SPDX-License-Identifier: BSD-3-Clause
// Element label tables of model/element_sections.h.
#include "model/element_sections.h"

#include <algorithm>

namespace odbs {

namespace {

// The array may hold this many entries per element, and as many as this in any case.
constexpr std::size_t kEntriesPerElement = 8;
constexpr std::size_t kSmallArray = 65536;

}  // namespace

ElementSections::ElementSections(int nElements)
    : nElements_(static_cast<std::size_t>(std::max(nElements, 0))) {}

void ElementSections::enter(const odb_SequenceElement& elements, std::int32_t number) {
  const int n = elements.size();
  if (n == 0) return;
  // Labels mostly ascend, so that the ends give the range; a label beyond it is merely slower.
  const int largest = std::max(elements[0].label(), elements[n - 1].label());
  const std::size_t nProportion = std::max(nElements_, static_cast<std::size_t>(n));
  const std::size_t nWanted = static_cast<std::size_t>(std::max(largest, -1) + std::int64_t{1});
  if (nWanted > byLabel_.size() && nWanted <= kEntriesPerElement * nProportion + kSmallArray) {
    byLabel_.resize(nWanted, 0);
  }
  std::int32_t* const byLabel = byLabel_.data();
  const std::size_t nByLabel = byLabel_.size();
  for (int i = 0; i < n; ++i) {
    const int label = elements[i].label();
    const auto at = static_cast<std::size_t>(static_cast<unsigned>(label));
    if (at < nByLabel) {
      byLabel[at] = number;
    } else {
      sparse_[label] = number;
    }
  }
}

std::int32_t ElementSections::findSparse(int label) const {
  const auto found = sparse_.find(label);
  return found == sparse_.end() ? 0 : found->second;
}

std::int32_t CategorySections::find(const odb_Element& element) {
  const odb_SectionCategory& category = element.sectionCategory();
  const odb_String& categoryName = category.name();
  if (hasLast_ && lastName_ == categoryName.CStr()) return lastNumber_;
  lastName_ = categoryName.CStr();
  const auto found = numbers_.find(sectionNameOfCategory(lastName_).value_or(lastName_));
  lastNumber_ = found == numbers_.end() ? 0 : found->second;
  hasLast_ = true;
  return lastNumber_;
}

}  // namespace odbs
