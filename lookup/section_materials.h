// SPDX-License-Identifier: BSD-3-Clause
// The materials of sections, whatever the kind of section.
#pragma once

#include <odb_API.h>
#include <odb_SectionTypes.h>

#include <string>
#include <string_view>
#include <vector>

namespace odbs {

struct SectionMaterials {
  std::string name;   // full name of the section
  std::string whole;  // the material of a section without layers
  struct Layer {
    std::string material, ply;
  };
  std::vector<Layer> layers;  // layer 1 first; both halves of a symmetric layup

  bool uses(std::string_view material) const;
};

// Empty materials for a section of a kind that has none, such as a connector.
SectionMaterials materialsOf(const odb_Section& section);

// Those of every section, in container order.
std::vector<SectionMaterials> sectionMaterialsOf(odb_Odb& odb);

}  // namespace odbs
