// SPDX-License-Identifier: BSD-3-Clause
// Which elements of an instance have a section, by the section assignments.
#pragma once

#include <odb_API.h>

#include <string>
#include <vector>

namespace odbs {

// The labels of the instance's elements that its own assignments or the assembly's give the section
// of that full name: ascending, each once.
std::vector<int> elementsOfSection(odb_Assembly& assembly, const odb_Instance& instance,
                                   const std::string& sectionName);

// The same for the assembly's own elements.
std::vector<int> elementsOfSection(odb_Assembly& assembly, const std::string& sectionName);

}  // namespace odbs
