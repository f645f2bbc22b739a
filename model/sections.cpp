// SPDX-License-Identifier: BSD-3-Clause
// Section records of model/sections.h.
#include "model/sections.h"

#include <odb_SectionTypes.h>

#include "base/text.h"
#include "model/connectors.h"
#include "model/put.h"
#include "server/core/entity_records.h"
#include "server/core/record.h"

namespace odbs {

namespace {

constexpr unsigned char kSectionTag = '$';

// First value of the kind-specific data; composites start with their non-negative run count.
// -3, the connector's, is put by connectors.cpp.
constexpr std::int32_t kPointCode = -4;
constexpr std::int32_t kHomogeneousShellCode = -5;
constexpr std::int32_t kHomogeneousSolidCode = -6;
constexpr std::int32_t kTrussCode = -7;
constexpr std::int32_t kPegCode = -8;
constexpr std::int32_t kMembraneCode = -9;
constexpr std::int32_t kGasketCode = -10;
constexpr std::int32_t kCohesiveCode = -11;

// What a connector's data take when its texts are cut to nothing; no other kind needs more.
constexpr std::size_t kLeastKindData = 20;

// ---- Composite layers ----

// Consecutive section points of one layer.
struct LayerRun {
  int layer;  // 1 .. number of layers
  std::uint32_t nPoints;
};

std::vector<LayerRun> layerRuns(const odb_SequenceSectionPoint& points, int nLayers) {
  std::vector<LayerRun> runs;
  const int n = points.size();
  for (int i = 0; i < n; ++i) {
    const odb_String description = points[i].description();
    const int layer = layerOfPoint(description.CStr(), nLayers);
    if (layer == 0) continue;
    if (runs.empty() || runs.back().layer != layer) runs.push_back({layer, 0});
    ++runs.back().nPoints;
  }
  return runs;
}

// The angle where it is given as a number; a text names an orientation and counts as 0.
float angleOf(const odb_Union& angle) {
  switch (angle.type()) {
    case odb_UNION_INT:
      return static_cast<float>(angle.getInt());
    case odb_UNION_FLOAT:
      return angle.getFloat();
    case odb_UNION_DOUBLE:
      return static_cast<float>(angle.getDouble());
    default:
      return 0.0F;
  }
}

// Composite layer list.
//   size  content
//   4     number of runs
//   then per run:
//   4     layer number
//   4     number of section points
//   4+n   material name
//   4     0
//   4     thickness
//   4     orientation angle
void putLayers(const kseO_SequenceSectionLayer& layup, const odb_SectionCategory* category) {
  std::vector<LayerRun> runs;
  if (category != nullptr) runs = layerRuns(category->sectionPoints(), layup.size());
  // Contract: every run but the last describes the layer of the run after it.
  const auto describedLayer = [&](std::size_t i) -> const kseO_SectionLayer& {
    return layup[runs[i + 1 < runs.size() ? i + 1 : i].layer - 1];
  };
  // Runs past the end of the record are left out and not counted.
  std::size_t size = 4;
  std::size_t nSent = 0;
  for (; nSent < runs.size(); ++nSent) {
    size += 24 + static_cast<std::size_t>(describedLayer(nSent).material().Length());
    if (size > recordRoom()) break;
  }
  putU32(static_cast<std::uint32_t>(nSent));
  for (std::size_t i = 0; i < nSent; ++i) {
    const kseO_SectionLayer& layer = describedLayer(i);
    putI32(runs[i].layer);
    putU32(runs[i].nPoints);
    putString(layer.material());
    putU32(0);
    putF32(static_cast<float>(layer.thickness()));
    putF32(angleOf(layer.orientAngle()));
  }
}

// ---- Kinds of sections ----

// The section being sent and what its data may depend on.
struct SectionContext {
  const odb_Section& section;
  std::string name;  // full name
  odb_Assembly& assembly;
  const odb_SectionCategory* category;  // null when no category leads to the section
};

template <class Section>
void putCompositeSection(const SectionContext& context) {
  putLayers(odb_dynamicCast(Section, context.section).layup(), context.category);
}

// i32 code, material name, u32 0: the form of most homogeneous sections.
template <class Section, std::int32_t code>
void putMaterialSection(const SectionContext& context) {
  putI32(code);
  putString(odb_dynamicCast(Section, context.section).material(), 4);
  putU32(0);
}

void putHomogeneousShell(const SectionContext& context) {
  const kseO_HomogeneousShellSection& shell =
      odb_dynamicCast(kseO_HomogeneousShellSection, context.section);
  putI32(kHomogeneousShellCode);
  putF32(static_cast<float>(shell.thickness()));
  putString(shell.material(), 4);
  putU32(0);
}

void putPoint(const SectionContext& context) {
  const kseO_PointSection& point = odb_dynamicCast(kseO_PointSection, context.section);
  putI32(kPointCode);
  putF32(static_cast<float>(point.mass()));
  putU32(0);
}

void putConnector(const SectionContext& context) {
  putConnectorSection(context.assembly, context.name);
}

template <class Section>
bool isKind(const odb_Section& section) {
  return odb_isA(Section, section);
}

struct SectionKind {
  bool (*matches)(const odb_Section&);
  void (*put)(const SectionContext&);
};

constexpr SectionKind kSectionKinds[] = {
    {isKind<kseO_CompositeShellSection>, putCompositeSection<kseO_CompositeShellSection>},
    {isKind<kseO_CompositeSolidSection>, putCompositeSection<kseO_CompositeSolidSection>},
    {isKind<kseO_ConnectorSection>, putConnector},
    {isKind<kseO_PointSection>, putPoint},
    {isKind<kseO_HomogeneousShellSection>, putHomogeneousShell},
    {isKind<kseO_HomogeneousSolidSection>,
     putMaterialSection<kseO_HomogeneousSolidSection, kHomogeneousSolidCode>},
    {isKind<kseO_TrussSection>, putMaterialSection<kseO_TrussSection, kTrussCode>},
    {isKind<kseO_PEGSection>, putMaterialSection<kseO_PEGSection, kPegCode>},
    {isKind<kseO_MembraneSection>, putMaterialSection<kseO_MembraneSection, kMembraneCode>},
    {isKind<kseO_GasketSection>, putMaterialSection<kseO_GasketSection, kGasketCode>},
    {isKind<kseO_CohesiveSection>, putMaterialSection<kseO_CohesiveSection, kCohesiveCode>},
};

// Section record, buffered.
//   offset  size  content
//   0       1     kSectionTag
//   1       4     section number
//   5       4+n   name, shortened
//   9+n     ...   data of its kind; u32 0 for a kind that is not in the table
void sendSection(const SectionContext& context, std::int32_t number, int outputFd) {
  beginRecord(kSectionTag);
  putI32(number);
  putText(sentSectionName(context.name), kLeastKindData);
  void (*put)(const SectionContext&) = nullptr;
  for (const SectionKind& kind : kSectionKinds) {
    if (put == nullptr && kind.matches(context.section)) put = kind.put;
  }
  if (put != nullptr) {
    put(context);
  } else {
    putU32(0);
  }
  appendRecord(outputFd);
}

// ---- Assignments ----

// Where a section is used: the first region that an assignment gives it.
struct SectionUse {
  odb_Set region;
  bool claimed = false;      // by an instance's own assignment
  std::string instanceName;  // the first such instance
};

using SectionUses = std::map<std::string, SectionUse>;

// Contract: the first region of a section is kept, later ones under its name are dropped.
void collectUses(const odb_SequenceSectionAssignment& assignments, const std::string* instanceName,
                 SectionUses& uses) {
  const int n = assignments.size();
  for (int i = 0; i < n; ++i) {
    const odb_SectionAssignment& assignment = assignments[i];
    SectionUse use;
    use.region = assignment.region();
    use.claimed = instanceName != nullptr;
    if (use.claimed) use.instanceName = *instanceName;
    uses.emplace(assignment.sectionName().CStr(), use);
  }
}

SectionUses sectionUses(odb_Assembly& assembly, const std::vector<std::string>& instanceNames) {
  SectionUses uses;
  odb_InstanceRepository& instances = assembly.instances();
  for (const std::string& name : instanceNames) {
    collectUses(instances[name.c_str()].sectionAssignments(), &name, uses);
  }
  collectUses(assembly.sectionAssignments(), nullptr, uses);
  return uses;
}

// The table that the elements of the use are entered in, created when there is none yet.
ElementSections& tableOf(const SectionUse& use, odb_Assembly& assembly, SectionTables& tables) {
  if (!use.claimed) return tables.unclaimed;
  odb_Instance& instance = assembly.instances()[use.instanceName.c_str()];
  return tables.byInstance.try_emplace(use.instanceName, instance.elements().size()).first->second;
}

}  // namespace

SectionTables sendSections(odb_Odb& odb, const std::vector<std::string>& instanceNames,
                           int outputFd) {
  kseO_ApiExtension api;
  odb.extendApi(odb_Enum::odb_SECTION, api);
  const kseO_SectionContainer& sections = api.sections();
  odb_Assembly& assembly = odb.rootAssembly();

  const SectionCategories categories = categoriesOfSections(odb, sections);
  const SectionUses uses = sectionUses(assembly, instanceNames);
  SectionTables tables;
  tables.numbers = numberSections(sections);

  kseO_SectionContainerIT it(sections);
  for (it.first(); !it.isDone(); it.next()) {
    const odb_Section& section = it.currentValue();
    const std::string name = section.name().CStr();
    const auto use = uses.find(name);
    if (use == uses.end() || use->second.region.name().empty()) continue;
    const odb_SequenceElement& elements = use->second.region.elements();
    if (elements.size() == 0) continue;

    const bool grouped = instanceNames.size() > 1;
    if (grouped) {
      if (use->second.claimed) {
        sendNameRecord(outputFd, use->second.instanceName);
      } else {
        sendEntityName(outputFd, assembly);
      }
    }
    const auto category = categories.find(name);
    const std::int32_t number = tables.numbers.at(name);
    sendSection(
        {section, name, assembly, category == categories.end() ? nullptr : &category->second},
        number, outputFd);
    if (grouped) sendMarker(outputFd);
    tableOf(use->second, assembly, tables).enter(elements, number);
  }
  return tables;
}

}  // namespace odbs
