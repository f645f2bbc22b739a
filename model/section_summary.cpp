// SPDX-License-Identifier: BSD-3-Clause
// The records of the section summary of model/section_summary.h.
#include "model/section_summary.h"

#include <string>
#include <vector>

#include "lookup/instance_names.h"
#include "lookup/section_elements.h"
#include "model/put.h"
#include "model/section_names.h"
#include "server/core/entity_records.h"
#include "server/core/record.h"
#include "server/core/sdk_adapter.h"
#include "server/core/set_records.h"

namespace odbs {

namespace {

constexpr unsigned char kSectionTag = '$';  // Contract: the tag of the full section record

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
  putText(sentSectionName(name), 4);
  putU32(kindCode(section));
  appendRecord(outputFd);
}

// The elements of each section that has any among those of one owner, as `elementsOf(section)`
// gives them. With `groupName`, its name goes ahead of them and a marker follows.
template <typename ElementsOf>
void sendShares(const std::vector<std::string>& sectionNames, const std::string* groupName,
                ElementsOf elementsOf, int outputFd) {
  bool hasSections = false;
  for (const std::string& name : sectionNames) {
    const std::vector<int> labels = elementsOf(name);
    if (labels.empty()) continue;
    if (groupName && !hasSections) sendNameRecord(outputFd, *groupName);
    hasSections = true;
    sendSetHeader(outputFd, SetKind::kElements, sentSectionName(name));
    sendElementLabels(outputFd, labels.data(), static_cast<int>(labels.size()));
    sendEndOfSet(outputFd);
  }
  if (groupName && hasSections) sendMarker(outputFd);
}

void sendRegions(odb_Assembly& assembly, const std::vector<std::string>& sectionNames,
                 int outputFd) {
  const std::vector<std::string> instanceNames = sortedInstanceNames(assembly);
  const bool grouped = instanceNames.size() > 1;
  for (const std::string& instanceName : instanceNames) {
    const odb_Instance& instance = assembly.instances()[instanceName.c_str()];
    const auto own = [&](const std::string& section) {
      return elementsOfSection(assembly, instance, section);
    };
    sendShares(sectionNames, grouped ? &instanceName : nullptr, own, outputFd);
  }
  // As in the model: the assembly's own elements are sent only in models of several instances.
  if (!grouped) return;
  const std::string assemblyName = assembly.name().CStr();
  const auto own = [&](const std::string& section) { return elementsOfSection(assembly, section); };
  sendShares(sectionNames, &assemblyName, own, outputFd);
}

}  // namespace

void sendSectionSummary(odb_Odb& odb, int outputFd) {
  kseO_ApiExtension extension;
  odb.extendApi(odb_Enum::odb_SECTION, extension);
  const kseO_SectionContainer& sections = extension.sections();
  const SectionNumbers numbers = numberSections(sections);
  outputBuffer.fill = 0;
  std::vector<std::string> names;
  kseO_SectionContainerIT it(sections);
  for (it.first(); !it.isDone(); it.next()) {
    names.emplace_back(it.currentKey().CStr());
    sendSummary(it.currentValue(), names.back(), numbers, outputFd);
  }
  sendRegions(odb.rootAssembly(), names, outputFd);
  flushOutput(outputFd);
}

}  // namespace odbs
