// SPDX-License-Identifier: BSD-3-Clause
// Names and descriptions taken apart, for lookup/category_names.h.
#include "lookup/category_names.h"

#include "base/text.h"

namespace odbs {

namespace {

constexpr std::string_view kSectionPrefix = "Section-";
constexpr std::string_view kElementSetMark = "< elset = ";
constexpr std::string_view kConnectorCategory = "connector";
constexpr std::string_view kLayerMark = "Layer =";

}  // namespace

std::string_view sentSectionName(std::string_view name) {
  if (name.size() > kSectionPrefix.size() && startsWith(name, kSectionPrefix)) {
    name.remove_prefix(kSectionPrefix.size());
  }
  return name;
}

bool isSectionNamed(std::string_view section, std::string_view name) {
  return name == section || name == sentSectionName(section);
}

std::optional<std::string> sectionNameOfCategory(std::string_view categoryName) {
  const std::size_t mark = categoryName.find(kElementSetMark);
  if (mark == std::string_view::npos) return std::nullopt;
  std::string name(startsWith(categoryName, kConnectorCategory) ? "" : kSectionPrefix);
  name += categoryName.substr(mark + kElementSetMark.size());
  // Contract: cut at the first blank, also for a set whose own name holds blanks.
  return name.substr(0, name.find(' '));
}

int layerOfPoint(std::string_view description, int nLayers) {
  const std::size_t mark = description.find(kLayerMark);
  if (mark == std::string_view::npos) return 0;
  const int layer = toIntOrZero(description.substr(mark + kLayerMark.size()));
  return layer >= 1 && layer <= nLayers ? layer : 0;
}

}  // namespace odbs
