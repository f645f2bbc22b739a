// SPDX-License-Identifier: BSD-3-Clause
// Layups put together from section categories and sections.
#include "lookup/section_layups.h"

#include <odb_SectionTypes.h>

#include <limits>
#include <memory>

#include "lookup/category_names.h"
#include "lookup/section_materials.h"
#include "registry/database_caches.h"

namespace odbs {

namespace {

// The layer of that number, added when it is new; `places` has the positions of the known ones.
LayupLayer& layerOf(SectionLayup& layup, std::map<int, std::size_t>& places, int number,
                    const SectionMaterials& materials) {
  const auto [place, isNew] = places.try_emplace(number, layup.layers.size());
  if (!isNew) return layup.layers[place->second];
  LayupLayer layer;
  layer.number = number;
  layer.material = materials.whole;
  const auto at = static_cast<std::size_t>(number - 1);
  if (at < materials.layers.size()) {
    layer.material = materials.layers[at].material;
    layer.ply = materials.layers[at].ply;
  }
  layup.layers.push_back(std::move(layer));
  return layup.layers.back();
}

SectionLayup layupOf(const odb_SectionCategory& category, const kseO_SectionContainer& sections) {
  SectionLayup layup;
  const std::string categoryName = category.name().CStr();
  layup.section = sectionNameOfCategory(categoryName).value_or(categoryName);
  SectionMaterials materials;
  if (sections.isMember(layup.section.c_str())) {
    materials = materialsOf(sections[layup.section.c_str()]);
  }
  layup.material = materials.whole;
  const odb_SequenceSectionPoint& points = category.sectionPoints();
  const int n = points.size();
  std::map<int, std::size_t> places;
  for (int i = 0; i < n; ++i) {
    const odb_SectionPoint point = points[i];
    layup.points.push_back(point.number());
    const int layer = layerOfPoint(point.description().CStr(), std::numeric_limits<int>::max());
    if (layer == 0) continue;
    layerOf(layup, places, layer, materials).points.push_back(point.number());
  }
  // Points of a section of one layer need not name it.
  if (places.empty() && n > 0) layerOf(layup, places, 1, materials).points = layup.points;
  return layup;
}

DatabaseCache<std::unique_ptr<SectionLayups>> layupsByDatabase;

}  // namespace

bool SectionLayup::isNamed(std::string_view name) const {
  return isSectionNamed(section, name);
}

SectionLayups::SectionLayups(odb_Odb& odb) {
  kseO_ApiExtension api;
  odb.extendApi(odb_Enum::odb_SECTION, api);
  odb_SectionCategoryRepositoryIT it(odb.sectionCategories());
  for (it.first(); !it.isDone(); it.next()) {
    const odb_SectionCategory& category = it.currentValue();
    byCategory_[category.name().CStr()] = static_cast<int>(all_.size());
    all_.push_back(layupOf(category, api.sections()));
  }
}

const LabelTable& SectionLayups::ofElements(const odb_Instance& instance) {
  const std::string name = instance.name().CStr();
  const auto known = byInstance_.find(name);
  if (known != byInstance_.end()) return known->second;
  const auto indexOf = [this](const odb_SectionCategory& category) {
    const auto place = byCategory_.find(category.name().CStr());
    return place == byCategory_.end() ? -1 : place->second;
  };
  return byInstance_.emplace(name, LabelTable(instance, indexOf)).first->second;
}

SectionLayups& sectionLayupsOf(odb_Odb& odb) {
  std::unique_ptr<SectionLayups>& layups = layupsByDatabase.of(odb);
  if (!layups) layups = std::make_unique<SectionLayups>(odb);
  return *layups;
}

}  // namespace odbs
