// SPDX-License-Identifier: BSD-3-Clause
// Section numbers and section names of model/section_names.h.
#include "model/section_names.h"

#include <set>

#include "base/text.h"

namespace odbs {

namespace {

// The number that a section's name asks for, 0 when it asks for none.
std::int32_t ownNumber(std::string_view fullName) {
  const std::string_view name = sentSectionName(fullName);
  if (name.size() < 2 || (name[0] != 'P' && name[0] != 'p')) return 0;
  return toIntOrZero(name.substr(1));
}

}  // namespace

SectionNumbers numberSections(const std::vector<std::string>& names) {
  SectionNumbers numbers;
  std::set<std::int32_t> taken;
  for (const std::string& name : names) {
    std::int32_t number = ownNumber(name);
    if (number != 0 && !taken.insert(number).second) number = 0;
    numbers[name] = number;
  }
  std::int32_t smallestFree = 1;
  for (auto& [name, number] : numbers) {
    if (number != 0) continue;
    while (taken.count(smallestFree) != 0) ++smallestFree;
    number = smallestFree++;
  }
  return numbers;
}

SectionNumbers numberSections(const kseO_SectionContainer& sections) {
  std::vector<std::string> names;
  kseO_SectionContainerIT it(sections);
  for (it.first(); !it.isDone(); it.next()) {
    names.emplace_back(it.currentValue().name().CStr());
  }
  return numberSections(names);
}

SectionCategories categoriesOfSections(odb_Odb& odb, const kseO_SectionContainer& sections) {
  SectionCategories categories;
  odb_SectionCategoryRepositoryIT it(odb.sectionCategories());
  for (it.first(); !it.isDone(); it.next()) {
    const odb_SectionCategory& category = it.currentValue();
    const odb_String categoryName = category.name();
    const std::optional<std::string> name = sectionNameOfCategory(categoryName.CStr());
    if (name && sections.isMember(name->c_str())) categories[*name] = category;
  }
  return categories;
}

}  // namespace odbs
