// SPDX-License-Identifier: BSD-3-Clause
// What section names mean: the number under which every reply refers to a section, the shortened
// name that is sent, and the section that a section category leads to. Shared by all replies that
// mention sections, so that their numbers agree.
#pragma once

#include <odb_API.h>
#include <odb_SectionTypes.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "lookup/category_names.h"

namespace odbs {

// Full section name -> section number, in byte order of the names.
using SectionNumbers = std::map<std::string, std::int32_t>;

// Full section name -> the section category that names it.
using SectionCategories = std::map<std::string, odb_SectionCategory>;

// Numbers the sections named `names`, given in container order. "Section-P7" and "p7" ask for 7,
// and get it when they are the first to ask; the others get the smallest free positive numbers in
// the order of their names. No number is 0; "P-3" gets -3.
SectionNumbers numberSections(const std::vector<std::string>& names);

// Numbers the sections of the container, as above.
SectionNumbers numberSections(const kseO_SectionContainer& sections);

// The category of each section of the container that one leads to; of several the last one.
SectionCategories categoriesOfSections(odb_Odb& odb, const kseO_SectionContainer& sections);

}  // namespace odbs
