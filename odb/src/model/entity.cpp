// SPDX-License-Identifier: BSD-3-Clause
// Nodes and elements of parts, instances and the assembly: tables, labels, getters.
#include "odb/src/model/database.h"
#include "odb/src/storage/errors.h"

#include <climits>
#include <cmath>

namespace odbs::engine {

namespace {

constexpr int kNoLabel[1] = {-1};
constexpr int kNoBlock[1] = {0};
constexpr float kOrigin[3] = {0, 0, 0};

const odb_SectionCategory& noCategory() {
  static const odb_SectionCategory none;
  return none;
}

const odb_String& noText() {
  static const odb_String none;
  return none;
}

}  // namespace

const NodeTable* emptyNodeTable() {
  static const NodeTable table{0, kNoLabel, kOrigin, nullptr};
  return &table;
}

const ElementTable* emptyElementTable() {
  static const ElementBlock block{0, 0, 0, &noText(), &noCategory()};
  static const ElementTable table{0, kNoLabel, kNoBlock, kNoLabel, nullptr, &block, nullptr};
  return &table;
}

EntityData& addEntity(Model& model, Database& database, EntityKind kind, const odb_String& name) {
  EntityData& entity = model.entities.emplace_back();
  entity.database = &database;
  entity.model = &model;
  entity.kind = kind;
  entity.name = name;
  entity.row = static_cast<int>(model.entities.size()) - 1;
  entity.nodeTable.owner = &entity;
  entity.elementTable.owner = &entity;
  entity.nodes = odb_SequenceNode(&entity.nodeTable);
  entity.elements = odb_SequenceElement(&entity.elementTable);
  return entity;
}

// An instance's nodes are its part's, rotated, then translated, in double and rounded once.
static void placeNodes(EntityData& instance) {
  const float* from = instance.part->nodeTable.coordinates;
  const int n = instance.nodeTable.n;
  instance.placedCoordinates.resize(static_cast<std::size_t>(n) * 3);
  float* to = instance.placedCoordinates.data();
  for (int i = 0; i < n; ++i, from += 3, to += 3) {
    for (int k = 0; k < 3; ++k) {
      double sum = instance.translation[k];
      for (int a = 0; a < 3; ++a) sum += static_cast<double>(from[a]) * instance.axes[a][k];
      to[k] = static_cast<float>(sum);
    }
  }
  instance.nodeTable.coordinates = instance.placedCoordinates.data();
}

void refreshNodes(EntityData& entity) {
  NodeTable& table = entity.nodeTable;
  if (entity.part) {
    const NodeTable& part = entity.part->nodeTable;
    table.n = part.n;
    table.labels = part.labels;
    table.coordinates = part.coordinates;
    if (entity.placed) placeNodes(entity);
    return;
  }
  Storage& storage = entity.database->storage;
  const Buffer<int>& labels = entity.nodeLabels.get(storage);
  table.labels = labels.data();
  table.coordinates = entity.coordinates.get(storage).data();
  table.n = static_cast<int>(labels.size());
  entity.nodeIndex.extend(labels.data(), table.n);
  for (EntityData& other : entity.model->entities) {
    if (other.part == &entity && other.nodesReady) refreshNodes(other);
  }
}

void refreshElements(EntityData& entity) {
  ElementTable& table = entity.elementTable;
  if (entity.part) {
    table = entity.part->elementTable;
    table.owner = &entity;
    return;
  }
  Storage& storage = entity.database->storage;
  const Buffer<int>& labels = entity.elementLabels.get(storage);
  const std::size_t n = labels.size();
  std::size_t at = entity.blockOf.size();
  entity.blockOf.resize(n);
  entity.elementBlocks.clear();
  int first = 0;
  std::int64_t connectivity = 0;
  for (const BlockData& block : entity.blocks) {
    const int number = static_cast<int>(entity.elementBlocks.size());
    entity.elementBlocks.push_back({first, block.nNodes, connectivity, block.type,
                                    block.category ? block.category->self : &noCategory()});
    first += block.nElements;
    connectivity += static_cast<std::int64_t>(block.nElements) * block.nNodes;
    for (; at < static_cast<std::size_t>(first); ++at) entity.blockOf[at] = number;
  }
  table.labels = labels.data();
  table.blockOf = entity.blockOf.data();
  table.connectivity = entity.connectivity.get(storage).data();
  table.connectivityInstance =
      entity.nodeEntities.count() > 0 ? entity.nodeEntities.get(storage).data() : nullptr;
  table.blocks = entity.elementBlocks.data();
  table.n = static_cast<int>(n);
  entity.elementIndex.extend(labels.data(), table.n);
  for (EntityData& other : entity.model->entities) {
    if (other.part == &entity && other.elementsReady) refreshElements(other);
  }
}

void loadNodes(EntityData& entity) {
  if (entity.nodesReady) return;
  if (entity.part) loadNodes(*entity.part);
  refreshNodes(entity);
  entity.nodesReady = true;
}

void loadElements(EntityData& entity) {
  if (entity.elementsReady) return;
  if (entity.part) {
    loadElements(*entity.part);
  } else if (entity.nodeEntities.count() > 0) {
    for (const int number : entity.nodeEntities.get(entity.database->storage)) {
      if (number < 0 || static_cast<std::size_t>(number) >= entity.model->entities.size()) {
        failDamaged("an element refers to a node of an entity that does not exist");
      }
    }
  }
  refreshElements(entity);
  entity.elementsReady = true;
}

int findNode(EntityData& entity, int label) {
  loadNodes(entity);
  return arraysOf(entity).nodeIndex.find(label);
}

int findElement(EntityData& entity, int label) {
  loadElements(entity);
  return arraysOf(entity).elementIndex.find(label);
}

}  // namespace odbs::engine

using odbs::engine::EntityData;
using odbs::engine::EntityKind;

namespace {

// Nodes and elements of the assembly itself belong to no instance.
const odb_String& ownerName(const EntityData* owner) {
  static const odb_String none;
  return !owner || owner->kind == EntityKind::kAssembly ? none : owner->name;
}

}  // namespace

const odb_String& odb_Node::instanceName() const {
  return ownerName(table_->owner);
}
const odb_String& odb_Element::instanceName() const {
  return ownerName(table_->owner);
}

odb_SequenceInt odb_Element::connectivity() const {
  int n = 0;
  const int* labels = connectivity(n);
  odb_SequenceInt list(n);
  for (int i = 0; i < n; ++i) list.append(labels[i]);
  return list;
}

odb_SequenceFloat odb_Node::coordinate() const {
  const EntityData* owner = table_->owner;
  const bool planar =
      owner && (owner->space == odb_Enum::TWO_D_PLANAR || owner->space == odb_Enum::AXISYMMETRIC);
  odb_SequenceFloat out(3);
  for (int i = 0; i < (planar ? 2 : 3); ++i) out.append(coordinates()[i]);
  return out;
}

odb_SequenceElement::odb_SequenceElement(const odb_Instance& instance)
    : RecordSequence(instance.elements()) {}

odb_SequenceString odb_Element::instanceNames() const {
  int n = 0;
  const int* labels = connectivity(n);
  odb_SequenceString names(n);
  for (int i = 0; i < n; ++i) {
    if (table_->connectivityInstance) {
      const std::int64_t place = labels - table_->connectivity + i;
      const int row = table_->connectivityInstance[place];
      names.append(ownerName(&table_->owner->model->entities[static_cast<std::size_t>(row)]));
    } else {
      names.append(instanceName());
    }
  }
  return names;
}

const odb_String& odb_DiscreteEntity::name() const {
  return need().name;
}
odb_Enum::odb_DimensionEnum odb_DiscreteEntity::embeddedSpace() const {
  return need().space;
}

odb_SequenceNode& odb_DiscreteEntity::nodes() const {
  loadNodes(need());
  return need().nodes;
}

odb_Node odb_DiscreteEntity::nodes(int i) const {
  const odb_SequenceNode& all = nodes();
  return all[i];
}

odb_SequenceElement& odb_DiscreteEntity::elements() const {
  loadElements(need());
  return need().elements;
}

odb_Element odb_DiscreteEntity::elements(int i) const {
  const odb_SequenceElement& all = elements();
  return all[i];
}

odb_Enum::odb_PartTypeEnum odb_PartEntity::type() const {
  return need().type;
}

odb_Node odb_PartEntity::getNodeFromLabel(int label) const {
  EntityData& entity = need();
  const int index = findNode(entity, label);
  if (index < 0) {
    odbs::engine::failAbsent(std::string(entity.name.CStr()) + " has no node " +
                             std::to_string(label));
  }
  return odb_Node(&entity.nodeTable, index);
}

odb_Element odb_PartEntity::getElementFromLabel(int label) const {
  EntityData& entity = need();
  const int index = findElement(entity, label);
  if (index < 0) {
    odbs::engine::failAbsent(std::string(entity.name.CStr()) + " has no element " +
                             std::to_string(label));
  }
  return odb_Element(&entity.elementTable, index);
}
