// SPDX-License-Identifier: BSD-3-Clause
// The records of the section summary of model/section_summary.h.
#include "model/section_summary.h"

#include <algorithm>
#include <string>
#include <vector>

#include "model/instance_names.h"
#include "model/put.h"
#include "model/section_names.h"
#include "server/entity_records.h"
#include "server/record.h"
#include "server/sdk_adapter.h"

namespace odbs {

namespace {

constexpr unsigned char kSectionTag = '$';  // Contract: the tag of the full section record
constexpr unsigned char kElementSetTag = 0x06;
constexpr unsigned char kEndOfSetTag = 0x0B;

// Contract: whatever has no row is reported as shell-like, homogeneous shells among them.
std::uint32_t kindCode(const odb_Section& section) {
  if (odb_isA(kseO_CompositeShellSection, section)) return 1;
  if (odb_isA(kseO_ShellSection, section)) return 1;
  if (odb_isA(kseO_CompositeSolidSection, section)) return 2;
  if (odb_isA(kseO_HomogeneousSolidSection, section)) return 2;
  if (odb_isA(kseO_BeamSection, section)) return 3;
  if (odb_isA(kseO_ConnectorSection, section)) return 6;
  if (odb_isA(kseO_PointSection, section)) return 4;
  if (odb_isA(kseO_TrussSection, section)) return 5;
  return 1;
}

// Section summary record, buffered.
//   offset  size  content
//   0       1     kSectionTag
//   1       4     section number
//   5       4+n   name as sent
//   9+n     4     kind code
void sendSummary(const odb_Section& section, const std::string& name, const SectionNumbers& numbers,
                 int outputFd) {
  const auto number = numbers.find(name);
  beginRecord(kSectionTag);
  putI32(number == numbers.end() ? 0 : number->second);
  putText(sentSectionName(name));
  putU32(kindCode(section));
  appendRecord(outputFd);
}

// Adds the elements of the assignments of a section, `labelsOf` giving those of one region.
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

// The labels of an instance's elements that have the section, ascending, each once.
std::vector<int> labelsOf(odb_Assembly& assembly, const odb_Instance& instance,
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
  std::sort(labels.begin(), labels.end());
  labels.erase(std::unique(labels.begin(), labels.end()), labels.end());
  return labels;
}

void sendRegions(odb_Assembly& assembly, const std::vector<std::string>& sectionNames,
                 int outputFd) {
  const std::vector<std::string> instanceNames = sortedInstanceNames(assembly);
  const bool grouped = instanceNames.size() > 1;
  for (const std::string& instanceName : instanceNames) {
    const odb_Instance& instance = assembly.instances()[instanceName.c_str()];
    if (grouped) sendNameRecord(outputFd, instanceName);
    for (const std::string& name : sectionNames) {
      const std::vector<int> labels = labelsOf(assembly, instance, name);
      if (labels.empty()) continue;
      sendTextRecord(outputFd, kElementSetTag, sentSectionName(name));
      sendElementLabels(outputFd, labels.data(), static_cast<int>(labels.size()));
      *reserveRecord(outputFd, 1) = kEndOfSetTag;
    }
    if (grouped) sendMarker(outputFd);
  }
}

}  // namespace

void sendSectionSummary(odb_Odb& odb, int outputFd) {
  kseO_ApiExtension extension;
  odb.extendApi(odb_Enum::odb_SECTION, extension);
  const odb_SectionContainer& sections = extension.sections();
  const SectionNumbers numbers = numberSections(sections);
  outputBuffer.fill = 0;
  std::vector<std::string> names;
  odb_SectionContainerIT it(sections);
  for (it.first(); !it.isDone(); it.next()) {
    names.emplace_back(it.currentKey().CStr());
    sendSummary(it.currentValue(), names.back(), numbers, outputFd);
  }
  sendRegions(odb.rootAssembly(), names, outputFd);
  flushOutput(outputFd);
}

}  // namespace odbs
