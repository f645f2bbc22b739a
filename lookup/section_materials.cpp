// SPDX-License-Identifier: BSD-3-Clause
// Materials read from each kind of section.
#include "lookup/section_materials.h"

#include <algorithm>

namespace odbs {

namespace {

// A symmetric layup gives its lower half; the upper one mirrors it.
template <typename Section>
void takeLayers(const Section& section, SectionMaterials& materials) {
  const kseO_SequenceSectionLayer& layup = section.layup();
  const int n = layup.size();
  const int nWhole = section.symmetric() ? 2 * n : n;
  for (int i = 0; i < nWhole; ++i) {
    const kseO_SectionLayer& layer = layup[i < n ? i : nWhole - 1 - i];
    materials.layers.push_back({layer.material().CStr(), layer.plyName().CStr()});
  }
}

template <typename Section>
void takeMaterial(const odb_Section& section, SectionMaterials& materials) {
  if (odb_isA(Section, section)) {
    materials.whole = odb_dynamicCast(Section, section).material().CStr();
  }
}

}  // namespace

bool SectionMaterials::uses(std::string_view material) const {
  return whole == material || std::any_of(layers.begin(), layers.end(), [&](const Layer& layer) {
           return layer.material == material;
         });
}

SectionMaterials materialsOf(const odb_Section& section) {
  SectionMaterials materials;
  materials.name = section.name().CStr();
  if (odb_isA(kseO_CompositeShellSection, section)) {
    takeLayers(odb_dynamicCast(kseO_CompositeShellSection, section), materials);
  } else if (odb_isA(kseO_CompositeSolidSection, section)) {
    takeLayers(odb_dynamicCast(kseO_CompositeSolidSection, section), materials);
  }
  takeMaterial<kseO_HomogeneousShellSection>(section, materials);
  takeMaterial<kseO_HomogeneousSolidSection>(section, materials);
  takeMaterial<kseO_TrussSection>(section, materials);
  takeMaterial<kseO_PEGSection>(section, materials);
  takeMaterial<kseO_MembraneSection>(section, materials);
  takeMaterial<kseO_GasketSection>(section, materials);
  takeMaterial<kseO_CohesiveSection>(section, materials);
  takeMaterial<kseO_BeamSection>(section, materials);
  return materials;
}

std::vector<SectionMaterials> sectionMaterialsOf(odb_Odb& odb) {
  kseO_ApiExtension api;
  odb.extendApi(odb_Enum::odb_SECTION, api);
  std::vector<SectionMaterials> materials;
  kseO_SectionContainerIT it(api.sections());
  for (it.first(); !it.isDone(); it.next()) materials.push_back(materialsOf(it.currentValue()));
  return materials;
}

}  // namespace odbs
