// SPDX-License-Identifier: BSD-3-Clause
// Adding parts, instances, nodes and elements.
#include "odb/src/model/entity_write.h"
#include "odb/src/model/database.h"
#include "odb/src/storage/errors.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace odbs::engine {

namespace {

std::string text(const odb_String& s) {
  return s.CStr();
}

// Throws when one of the labels is there already, or stands twice in the list.
template <class Find>
void checkNewLabels(const int* labels, int n, const char* what, Find find) {
  for (int i = 0; i < n; ++i) {
    if (find(labels[i]) >= 0) {
      failUsage(std::string(what) + " " + std::to_string(labels[i]) + " exists already");
    }
  }
  if (std::is_sorted(labels, labels + n) && std::adjacent_find(labels, labels + n) == labels + n) {
    return;
  }
  std::vector<int> sorted(labels, labels + n);
  std::sort(sorted.begin(), sorted.end());
  const auto twice = std::adjacent_find(sorted.begin(), sorted.end());
  if (twice != sorted.end()) {
    failUsage(std::string(what) + " " + std::to_string(*twice) + " stands twice in the list");
  }
}

void checkRoom(std::int64_t count) {
  if (count > INT_MAX) failUsage("more numbers than a sequence can count");
}

EntityData& needOwnArrays(EntityData& entity) {
  entity.database->needWritable();
  if (entity.kind == EntityKind::kInstance) {
    failUsage("an instance takes no nodes or elements: add them to its part");
  }
  return entity;
}

}  // namespace

void appendNodes(EntityData& entity, int n, const int* labels, const float* coordinates) {
  needOwnArrays(entity);
  if (n <= 0) return;
  loadNodes(entity);
  checkRoom((entity.nodeTable.n + std::int64_t(n)) * 3);
  checkNewLabels(labels, n, "node", [&](int label) { return entity.nodeIndex.find(label); });
  Storage& storage = entity.database->storage;
  Buffer<int>& allLabels = entity.nodeLabels.edit(storage);
  Buffer<float>& allCoordinates = entity.coordinates.edit(storage);
  allLabels.insert(allLabels.end(), labels, labels + n);
  allCoordinates.insert(allCoordinates.end(), coordinates,
                        coordinates + static_cast<std::ptrdiff_t>(n) * 3);
  refreshNodes(entity);
  entity.database->touch();
}

// Writes which entity each connected node belongs to, once any of them is not the owner.
static void appendNodeEntities(EntityData& entity, int n, int nNodes,
                               const std::vector<EntityData*>* nodeOwners) {
  const bool mixed = nodeOwners != nullptr;
  if (!mixed && entity.nodeEntities.count() == 0) return;
  Storage& storage = entity.database->storage;
  Buffer<int>& rows = entity.nodeEntities.edit(storage);
  // Elements added before were all of the entity's own nodes.
  rows.resize(static_cast<std::size_t>(entity.connectivity.count()) -
                  static_cast<std::size_t>(n) * static_cast<std::size_t>(nNodes),
              entity.row);
  for (int i = 0; i < n; ++i) {
    for (int k = 0; k < nNodes; ++k) {
      rows.push_back(mixed ? (*nodeOwners)[static_cast<std::size_t>(k)]->row : entity.row);
    }
  }
}

void appendElements(EntityData& entity, int n, const int* labels, int nNodes,
                    const int* connectivity, const odb_String& type,
                    const odb_SectionCategory& category,
                    const std::vector<EntityData*>* nodeOwners) {
  needOwnArrays(entity);
  if (n <= 0) return;
  CategoryData* group = category.engineData();
  if (group && group->database != entity.database)
    failUsage("a section category of another database");
  loadElements(entity);
  checkRoom(entity.connectivity.count() + std::int64_t(n) * nNodes);
  checkNewLabels(labels, n, "element", [&](int label) { return entity.elementIndex.find(label); });
  for (std::int64_t i = 0; i < std::int64_t(n) * nNodes; ++i) {
    EntityData& owner = nodeOwners ? *(*nodeOwners)[static_cast<std::size_t>(i % nNodes)] : entity;
    if (findNode(owner, connectivity[i]) < 0) {
      failUsage("element " + std::to_string(labels[i / nNodes]) + ": " + text(owner.name) +
                " has no node " + std::to_string(connectivity[i]));
    }
  }
  Storage& storage = entity.database->storage;
  Buffer<int>& allLabels = entity.elementLabels.edit(storage);
  allLabels.insert(allLabels.end(), labels, labels + n);
  Buffer<int>& nodes = entity.connectivity.edit(storage);
  nodes.insert(nodes.end(), connectivity, connectivity + static_cast<std::ptrdiff_t>(n) * nNodes);
  appendNodeEntities(entity, n, nNodes, nodeOwners);
  const odb_String* typeName = &*entity.model->typeNames.insert(type).first;
  if (!entity.blocks.empty() && entity.blocks.back().type == typeName &&
      entity.blocks.back().category == group && entity.blocks.back().nNodes == nNodes) {
    entity.blocks.back().nElements += n;
  } else {
    entity.blocks.push_back({n, nNodes, typeName, group});
  }
  refreshElements(entity);
  entity.database->touch();
}

void addElementRows(EntityData& entity, const odb_SequenceInt& labels,
                    const odb_SequenceSequenceInt& connectivity, const odb_String& type,
                    const odb_SectionCategory& category,
                    const std::vector<EntityData*>* nodeOwners) {
  needOwnArrays(entity);
  if (connectivity.size() != labels.size()) {
    failUsage("addElements: " + std::to_string(labels.size()) + " labels, but " +
              std::to_string(connectivity.size()) + " rows of nodes");
  }
  // Elements with different numbers of nodes go in runs.
  std::vector<int> flat;
  const std::vector<int>& all = labels.engineItems();
  int first = 0;
  for (int i = 0; i < labels.size(); ++i) {
    const std::vector<int>& row = connectivity[i].engineItems();
    if (nodeOwners && row.size() > nodeOwners->size()) {
      failUsage("addElements: fewer instance names than nodes");
    }
    flat.insert(flat.end(), row.begin(), row.end());
    const bool last = i + 1 == labels.size();
    if (last || connectivity[i + 1].engineItems().size() != row.size()) {
      appendElements(entity, i + 1 - first, all.data() + first, static_cast<int>(row.size()),
                     flat.data(), type, category, nodeOwners);
      flat.clear();
      first = i + 1;
    }
  }
}

// Rows of points on the axes, then the translation.
static void placeInstance(EntityData& instance, const odb_SequenceSequenceFloat& rows) {
  if (rows.size() > 4) failUsage("a local coordinate system has at most four rows");
  for (int r = 0; r < rows.size(); ++r) {
    double v[3] = {0, 0, 0};
    if (rows[r].size() > 3) failUsage("a row of a local coordinate system has at most 3 numbers");
    for (int k = 0; k < rows[r].size(); ++k) v[k] = static_cast<double>(rows[r][k]);
    if (r == 3) {
      std::copy(v, v + 3, instance.translation);
      break;
    }
    const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    if (!(length > 0) || !std::isfinite(length)) failUsage("an axis without direction");
    for (int k = 0; k < 3; ++k) instance.axes[r][k] = v[k] / length;
  }
  instance.placed = rows.size() > 0;
}

EntityData& addInstance(EntityData& assembly, const odb_String& name, EntityData& part,
                        const odb_SequenceSequenceFloat& rows) {
  assembly.database->needWritable();
  Model& model = *assembly.model;
  if (part.model != &model || part.kind != EntityKind::kPart) {
    failUsage("an instance wants a part of the same database");
  }
  if (name.empty()) failUsage("an instance wants a name");
  if (model.instances.isMember(name)) failUsage("instance " + text(name) + " exists already");
  EntityData probe;
  placeInstance(probe, rows);
  EntityData& instance = addEntity(model, *assembly.database, EntityKind::kInstance, name);
  instance.part = &part;
  instance.space = part.space;
  instance.type = part.type;
  placeInstance(instance, rows);
  model.instances.engineItems().add(name, odb_Instance(&instance));
  assembly.database->touch();
  return instance;
}

}  // namespace odbs::engine

using namespace odbs::engine;

void odb_DiscreteEntity::addNodes(const odb_SequenceInt& labels,
                                  const odb_SequenceSequenceFloat& coordinates,
                                  const odb_String& nodeSetName) {
  EntityData& entity = need();
  if (coordinates.size() != labels.size()) {
    failUsage("addNodes: " + std::to_string(labels.size()) + " labels, but " +
              std::to_string(coordinates.size()) + " rows of coordinates");
  }
  std::vector<float> flat;
  flat.reserve(static_cast<std::size_t>(labels.size()) * 3);
  for (const odb_SequenceFloat& row : coordinates.engineItems()) {
    if (row.size() < 1 || row.size() > 3) failUsage("a node has one to three coordinates");
    for (int k = 0; k < 3; ++k) flat.push_back(k < row.size() ? row[k] : 0);
  }
  appendNodes(entity, labels.size(), labels.engineItems().data(), flat.data());
  if (!nodeSetName.empty()) {
    growSet(entity, odb_Enum::NODE_SET, nodeSetName, labels.engineItems());
  }
}

void odb_DiscreteEntity::addElements(const odb_SequenceInt& labels,
                                     const odb_SequenceSequenceInt& connectivity,
                                     const odb_String& type, const odb_String& elementSetName,
                                     const odb_SectionCategory& sectionCategory) {
  EntityData& entity = need();
  addElementRows(entity, labels, connectivity, type, sectionCategory, nullptr);
  if (!elementSetName.empty()) {
    growSet(entity, odb_Enum::ELEMENT_SET, elementSetName, labels.engineItems());
  }
}

void odb_Assembly::addElements(const odb_SequenceInt& labels,
                               const odb_SequenceSequenceInt& connectivity,
                               const odb_SequenceString& instanceNames, const odb_String& type,
                               const odb_String& elementSetName,
                               const odb_SectionCategory& sectionCategory) {
  EntityData& entity = need();
  std::vector<EntityData*> owners;
  for (const odb_String& name : instanceNames.engineItems()) {
    owners.push_back(&memberEntity(entity, name));
  }
  addElementRows(entity, labels, connectivity, type, sectionCategory, &owners);
  if (!elementSetName.empty()) {
    growSet(entity, odb_Enum::ELEMENT_SET, elementSetName, labels.engineItems());
  }
}

odb_Instance& odb_Assembly::Instance(const odb_String& name, const odb_Part& part,
                                     const odb_SequenceSequenceFloat& localCoordSystem) {
  EntityData& entity = need();
  if (!part.engineData()) failUsage("an instance wants a part");
  addInstance(entity, name, *part.engineData(), localCoordSystem);
  return entity.model->instances[name];
}
