// SPDX-License-Identifier: BSD-3-Clause
// Constraints, contact pairs and their properties, amplitudes.
#include <odb_embedded.h>

#include "importer/write/model_writer.h"

namespace odbs::importer {

namespace {

odb_SequenceSequenceDouble rowsOf(const std::vector<std::vector<double>>& table) {
  odb_SequenceSequenceDouble rows;
  for (const auto& values : table) {
    odb_SequenceDouble row;
    for (const double value : values) row.append(value);
    rows.append(row);
  }
  return rows;
}

odb_Union unionOf(const NamedObject::Value& value) {
  if (const auto* string = std::get_if<std::string>(&value)) return odb_Union(text(*string));
  if (const auto* flag = std::get_if<bool>(&value)) return odb_Union(*flag);
  if (const auto* whole = std::get_if<int>(&value)) return odb_Union(*whole);
  return odb_Union(std::get<double>(value));
}

}  // namespace

// Contact names surfaces, and in their place sets of nodes. An absent set where there is neither.
odb_Set ModelWriter::regionOf(odb_DiscreteEntity& entity, const NamedObject& object,
                              const NamedObject::Region& region) {
  const Reference& reference = region.reference;
  if (!region.isSurface) return setOf(entity, reference, false);
  const odb_String name = text(reference.setName);
  const auto in = [&](auto& owner) {
    if (owner.surfaces().isMember(name)) return owner.surfaces()[name];
    if (owner.nodeSets().isMember(name)) return owner.nodeSets()[name];
    warn(region.getter + " of " + object.name + " is left out: there is no set of nodes or faces " +
         reference.setName);
    return odb_Set();
  };
  if (reference.owner == kOwn) return in(entity);
  const std::string& instance = deck_.instances[static_cast<std::size_t>(reference.owner)].name;
  return in(odb_.rootAssembly().instances()[text(instance)]);
}

void ModelWriter::writeObjects(odb_DiscreteEntity& entity, const Scope& content,
                               const std::string& owner) {
  for (const NamedObject& object : content.objects) writeObject(object, &entity, owner);
}

void ModelWriter::writeObject(const NamedObject& object, odb_DiscreteEntity* entity,
                              const std::string& owner) {
  if (object.isExplicit && *object.isExplicit != deck_.isExplicit) return;
  std::string name = object.name;
  if (!objectNames_.emplace(object.kind, name).second) {
    // What stands in a part is there once for each of its instances.
    name = owner + "_" + name;
    if (!objectNames_.emplace(object.kind, name).second) return;
  }
  odb_embedded::ObjectDescription description{text(object.type), text(name)};
  for (const auto& [getter, value] : object.values) {
    description.values.emplace_back(getter, unionOf(value));
  }
  for (const NamedObject::Region& region : object.regions) {
    const odb_Set set = regionOf(*entity, object, region);
    if (set.name().Length() > 0) description.sets.emplace_back(region.getter, set);
  }
  for (const auto& [getter, rows] : object.tables) {
    description.tables.emplace_back(getter, rowsOf(rows));
  }
  switch (object.kind) {
    case NamedObject::Kind::constraint:
      return odb_embedded::addConstraint(odb_, description);
    case NamedObject::Kind::interaction:
      return odb_embedded::addInteraction(odb_, description);
    case NamedObject::Kind::interactionProperty:
      return odb_embedded::addInteractionProperty(odb_, description);
    case NamedObject::Kind::amplitude:
      return odb_embedded::addAmplitude(odb_, description);
  }
}

}  // namespace odbs::importer
