// SPDX-License-Identifier: BSD-3-Clause
// Top and bottom section points of elements.
#include "results/section_point_choice.h"

#include <algorithm>
#include <cstdint>

namespace odbs {

namespace {

// A dense table may take this many entries for each element before a map is smaller.
constexpr std::int64_t kSparsest = 16;

int chosenPoint(const odb_SectionCategory& category, bool top) {
  const odb_SequenceSectionPoint& points = category.sectionPoints();
  const int n = points.size();
  if (n == 0) return -1;
  return points[top ? n - 1 : 0].number();
}

}  // namespace

int SectionPointChoice::Table::pointOf(int elementLabel) const {
  if (!sparse_.empty()) {
    const auto place = sparse_.find(elementLabel);
    return place == sparse_.end() ? -1 : place->second;
  }
  const std::int64_t at = std::int64_t{elementLabel} - firstLabel_;
  const bool known = at >= 0 && at < static_cast<std::int64_t>(byLabel_.size());
  return known ? byLabel_[static_cast<std::size_t>(at)] : -1;
}

const SectionPointChoice::Table& SectionPointChoice::of(const odb_Instance& instance) {
  const auto [place, fresh] = tables_.try_emplace(instance.name().CStr());
  Table& table = place->second;
  if (!fresh) return table;
  const odb_SequenceElement& elements = instance.elements();
  const int n = elements.size();
  if (n == 0) return table;
  int least = elements[0].label();
  int greatest = least;
  for (int i = 1; i < n; ++i) {
    const int label = elements[i].label();
    least = std::min(least, label);
    greatest = std::max(greatest, label);
  }
  const std::int64_t range = std::int64_t{greatest} - least + 1;
  const bool dense = range <= kSparsest * n;
  table.firstLabel_ = least;
  if (dense) table.byLabel_.assign(static_cast<std::size_t>(range), -1);
  std::string categoryName;
  int point = -1;
  for (int i = 0; i < n; ++i) {
    const odb_Element& element = elements[i];
    const odb_SectionCategory& category = element.sectionCategory();
    const char* name = category.name().CStr();
    if (i == 0 || categoryName != name) {
      categoryName = name;
      point = chosenPoint(category, top_);
    }
    if (dense) {
      table.byLabel_[static_cast<std::size_t>(element.label() - least)] = point;
    } else {
      table.sparse_[element.label()] = point;
    }
  }
  return table;
}

}  // namespace odbs
