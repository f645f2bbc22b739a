// SPDX-License-Identifier: BSD-3-Clause
// Elements by section assignment.
#include "lookup/section_elements.h"

#include <algorithm>
#include <utility>

namespace odbs {

namespace {

// Adds the elements of the assignments of a section, `elementsOf` giving those of one region.
template <typename Assignments, typename ElementsOf>
void collectLabels(const Assignments& assignments, const std::string& sectionName,
                   ElementsOf elementsOf, std::vector<int>& labels) {
  for (int i = 0; i < assignments.size(); ++i) {
    odb_SectionAssignment assignment = assignments[i];
    if (sectionName != assignment.sectionName().CStr()) continue;
    const odb_Set region = assignment.region();
    const odb_SequenceElement& elements = elementsOf(region);
    for (int k = 0; k < elements.size(); ++k) labels.push_back(elements[k].label());
  }
}

// Sorted, each once.
std::vector<int> ascending(std::vector<int> labels) {
  std::sort(labels.begin(), labels.end());
  labels.erase(std::unique(labels.begin(), labels.end()), labels.end());
  return labels;
}

}  // namespace

std::vector<int> elementsOfSection(odb_Assembly& assembly, const odb_Instance& instance,
                                   const std::string& sectionName) {
  std::vector<int> labels;
  const odb_String name = instance.name();
  const auto own = [](const odb_Set& region) -> const odb_SequenceElement& {
    return region.elements();
  };
  const auto within = [&](const odb_Set& region) -> const odb_SequenceElement& {
    return region.elements(name);
  };
  collectLabels(instance.sectionAssignments(), sectionName, own, labels);
  collectLabels(assembly.sectionAssignments(), sectionName, within, labels);
  return ascending(std::move(labels));
}

std::vector<int> elementsOfSection(odb_Assembly& assembly, const std::string& sectionName) {
  std::vector<int> labels;
  const odb_String none;
  const auto own = [&](const odb_Set& region) -> const odb_SequenceElement& {
    return region.elements(none);
  };
  collectLabels(assembly.sectionAssignments(), sectionName, own, labels);
  return ascending(std::move(labels));
}

}  // namespace odbs
