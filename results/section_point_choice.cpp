// SPDX-License-Identifier: BSD-3-Clause
// Top and bottom section points of elements.
#include "results/section_point_choice.h"

namespace odbs {

const LabelTable& SectionPointChoice::of(const odb_Instance& instance) {
  const std::string name = instance.name().CStr();
  const auto known = tables_.find(name);
  if (known != tables_.end()) return known->second;
  const auto chosenPoint = [this](const odb_SectionCategory& category) {
    const odb_SequenceSectionPoint& points = category.sectionPoints();
    const int n = points.size();
    return n == 0 ? -1 : points[top_ ? n - 1 : 0].number();
  };
  return tables_.emplace(name, LabelTable(instance, chosenPoint)).first->second;
}

}  // namespace odbs
