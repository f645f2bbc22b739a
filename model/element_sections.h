// SPDX-License-Identifier: BSD-3-Clause
// Which section an element has: tables from element label to section number, and indirectly,
// through the section category for elements that are in no table.
#pragma once

#include <odb_API.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "model/section_names.h"

namespace odbs {

// Element label -> section number of one instance (or of the root assembly). Labels are kept in an
// array indexed by label as long as that stays in proportion to the number of elements, and in a
// hash table otherwise.
class ElementSections {
 public:
  // `nElements` is the number of elements that the instance has; it bounds the array.
  explicit ElementSections(int nElements = 0);

  // Gives every element of `elements` the section `number`; an earlier number is replaced.
  void enter(const odb_SequenceElement& elements, std::int32_t number);

  // The section number of the element, 0 when it was never entered.
  std::int32_t find(int label) const {
    const auto at = static_cast<std::size_t>(static_cast<unsigned>(label));
    if (at < byLabel_.size() && byLabel_[at] != 0) return byLabel_[at];
    return sparse_.empty() ? 0 : findSparse(label);
  }

 private:
  std::int32_t findSparse(int label) const;

  std::size_t nElements_;
  std::vector<std::int32_t> byLabel_;
  std::unordered_map<int, std::int32_t> sparse_;
};

// What the section block prepares for the element records.
struct SectionTables {
  SectionNumbers numbers;                             // by full section name
  std::map<std::string, ElementSections> byInstance;  // instances that claim a section
  ElementSections unclaimed;                          // of assignments that no instance claims
};

// Section numbers by section category, for elements in no table. Remembers the last category:
// neighbouring elements mostly share theirs.
class CategorySections {
 public:
  explicit CategorySections(const SectionNumbers& numbers) : numbers_(numbers) {}

  // The number of the section that the category leads to, 0 when there is none.
  std::int32_t find(const odb_Element& element);

 private:
  const SectionNumbers& numbers_;
  bool hasLast_ = false;
  std::string lastName_;
  std::int32_t lastNumber_ = 0;
};

}  // namespace odbs
