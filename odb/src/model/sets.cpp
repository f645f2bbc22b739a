// SPDX-License-Identifier: BSD-3-Clause
// Sets: views of their members, and the sets that instances take over from their parts.
#include "odb/src/model/database.h"
#include "odb/src/storage/errors.h"

#include <algorithm>
#include <functional>
#include <unordered_set>

namespace odbs::engine {

namespace {

SetData& emptySet() {
  static SetData none;
  return none;
}

// Segments of the set itself, or of the part's set that it shows.
const std::vector<std::unique_ptr<SetSegment>>& segmentsOf(const SetData& set) {
  return set.source ? set.source->segments : set.segments;
}

// The entity whose records a segment's members are, as the set shows them.
EntityData& shownEntity(const SetData& set, const SetSegment& segment) {
  return set.source ? *set.owner : *segment.entity;
}

void findIndices(SetSegment& segment) {
  if (segment.ready) return;
  EntityData& entity = *segment.entity;
  const Buffer<int>& labels = segment.labels.get(entity.database->storage);
  segment.indices.resize(labels.size());
  if (segment.ofElements) {
    loadElements(entity);
  } else {
    loadNodes(entity);
  }
  EntityData& arrays = arraysOf(entity);
  const LabelIndex& index = segment.ofElements ? arrays.elementIndex : arrays.nodeIndex;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    segment.indices[i] = index.find(labels[i]);
    if (segment.indices[i] < 0) {
      failDamaged(std::string("a set holds label ") + std::to_string(labels[i]) + ", which " +
                  entity.name.CStr() + " does not have");
    }
  }
  segment.ready = true;
}

template <class Sequence, class Table, class Record>
void appendMembers(Sequence& sequence, bool single, const Table& table,
                   const Buffer<int>& indices) {
  if (single && !indices.empty()) {
    sequence = Sequence(&table, indices.data(), static_cast<int>(indices.size()));
    return;
  }
  for (const int index : indices) sequence.append(Record(&table, index));
}

void appendFaces(odb_SequenceElementFace& faces, SetSegment& segment, Storage& storage) {
  const std::size_t n = segment.indices.size();
  const Buffer<int>& numbers = segment.faces.get(storage);
  for (std::size_t i = 0; i < n; ++i) {
    const int number = i < numbers.size() ? numbers[i] : 0;
    if (number < 0 || number > odb_Enum::DOUBLE_SIDED) failDamaged("a surface has no such face");
    faces.append(static_cast<odb_Enum::odb_ElementFaceEnum>(number));
  }
}

// Fills views with the segments of `only`, or with all of them.
void fillViews(SetViews& views, SetData& set, const odb_String* only) {
  views = SetViews();
  std::vector<SetSegment*> shown;
  for (const auto& segment : segmentsOf(set)) {
    EntityData& entity = shownEntity(set, *segment);
    // The assembly's own members go by the empty name; an instance may have the assembly's.
    const odb_String& name = entity.kind == EntityKind::kAssembly ? odb_String() : entity.name;
    if (!only || name == *only) shown.push_back(segment.get());
  }
  const bool single = shown.size() == 1;
  for (SetSegment* segment : shown) {
    EntityData& entity = shownEntity(set, *segment);
    findIndices(*segment);
    if (segment->ofElements) {
      loadElements(entity);
      appendMembers<odb_SequenceElement, ElementTable, odb_Element>(
          views.elements, single, entity.elementTable, segment->indices);
      if (set.type == odb_Enum::SURFACE_SET) {
        appendFaces(views.faces, *segment, entity.database->storage);
      }
    } else {
      loadNodes(entity);
      appendMembers<odb_SequenceNode, NodeTable, odb_Node>(views.nodes, single, entity.nodeTable,
                                                           segment->indices);
    }
  }
}

SetViews& allOf(SetData& set) {
  if (!set.all) {
    auto views = std::make_unique<SetViews>();
    fillViews(*views, set, nullptr);
    set.all = std::move(views);
  }
  return *set.all;
}

SetViews& oneOf(SetData& set, const odb_String& instance) {
  std::unique_ptr<SetViews>& slot = set.byInstance[instance];
  if (!slot) {
    auto views = std::make_unique<SetViews>();
    fillViews(*views, set, &instance);
    slot = std::move(views);
  }
  return *slot;
}

// Views that callers hold are filled anew in place.
void refillViews(SetData& set) {
  if (set.all) fillViews(*set.all, set, nullptr);
  for (auto& [instance, views] : set.byInstance) fillViews(*views, set, &instance);
}

// A node is once in a set, at its first place.
void appendNewLabels(Buffer<int>& all, const std::vector<int>& labels) {
  if (all.empty() &&
      std::adjacent_find(labels.begin(), labels.end(), std::greater_equal<int>()) == labels.end()) {
    all.assign(labels.begin(), labels.end());
    return;
  }
  std::unordered_set<int> known(all.begin(), all.end());
  for (const int label : labels) {
    if (known.insert(label).second) all.push_back(label);
  }
}

}  // namespace

odb_SetRepository& repositoryOf(EntityData& entity, odb_Enum::odb_SetTypeEnum type) {
  switch (type) {
    case odb_Enum::NODE_SET:
      return entity.nodeSets;
    case odb_Enum::ELEMENT_SET:
      return entity.elementSets;
    default:
      return entity.surfaces;
  }
}

SetData& addSet(EntityData& owner, odb_Enum::odb_SetTypeEnum type, const odb_String& name) {
  if (name.empty()) failUsage("a set wants a name");
  odb_SetRepository& repository = repositoryOf(owner, type);
  if (repository.isMember(name)) {
    failUsage(std::string("set ") + name.CStr() + " exists already in " + owner.name.CStr());
  }
  SetData& set = owner.sets.emplace_back();
  set.owner = &owner;
  set.name = name;
  set.type = type;
  repository.engineItems().add(name, odb_Set(&set));
  return set;
}

void addSegment(SetData& set, EntityData& entity, bool ofElements, const std::vector<int>& labels,
                const std::vector<int>& faces) {
  for (const int label : labels) {
    if ((ofElements ? findElement(entity, label) : findNode(entity, label)) < 0) {
      failUsage(std::string("set ") + set.name.CStr() + ": " + entity.name.CStr() + " has no " +
                (ofElements ? "element " : "node ") + std::to_string(label));
    }
  }
  Storage& storage = entity.database->storage;
  SetSegment* segment = nullptr;
  for (const auto& known : set.segments) {
    if (known->entity == &entity && known->ofElements == ofElements) segment = known.get();
  }
  if (!segment) {
    segment = set.segments.emplace_back(std::make_unique<SetSegment>()).get();
    segment->entity = &entity;
    segment->ofElements = ofElements;
  }
  Buffer<int>& all = segment->labels.edit(storage);
  if (set.type == odb_Enum::NODE_SET) {
    appendNewLabels(all, labels);
  } else {
    all.insert(all.end(), labels.begin(), labels.end());
  }
  Buffer<int>& allFaces = segment->faces.edit(storage);
  allFaces.insert(allFaces.end(), faces.begin(), faces.end());
  segment->ready = false;
  refillViews(set);
  for (EntityData& other : entity.model->entities) {
    if (!other.part || other.part != set.owner) continue;
    for (SetData& shown : other.sets) {
      if (shown.source == &set) refillViews(shown);
    }
  }
  entity.database->touch();
}

void inheritSets(EntityData& entity) {
  if (!entity.part) return;
  int& taken = entity.nInherited[0];
  for (; static_cast<std::size_t>(taken) < entity.part->sets.size(); ++taken) {
    SetData& source = entity.part->sets[static_cast<std::size_t>(taken)];
    odb_SetRepository& repository = repositoryOf(entity, source.type);
    if (repository.isMember(source.name)) continue;  // the instance's own set hides the part's
    SetData& set = entity.sets.emplace_back();
    set.owner = &entity;
    set.name = source.name;
    set.type = source.type;
    set.source = &source;
    repository.engineItems().add(set.name, odb_Set(&set));
  }
}

SetData* findSet(EntityData& entity, odb_Enum::odb_SetTypeEnum type, const odb_String& name) {
  inheritSets(entity);
  auto* entry = repositoryOf(entity, type).engineItems().find(name);
  return entry ? entry->value.engineData() : nullptr;
}

odb_Set seenFrom(EntityData& entity, const odb_Set& set) {
  const SetData* data = set.engineData();
  if (!data || !entity.part || data->owner != entity.part) return set;
  SetData* own = findSet(entity, data->type, data->name);
  return own ? odb_Set(own) : set;
}

odb_Set& handleOf(SetData& set) {
  return repositoryOf(*set.owner, set.type).engineItems().find(set.name)->value;
}

}  // namespace odbs::engine

using namespace odbs::engine;

namespace {
SetData& dataOf(SetData* data) {
  return data ? *data : emptySet();
}
}  // namespace

const odb_String& odb_Set::name() const {
  return dataOf(data_).name;
}
odb_Enum::odb_SetTypeEnum odb_Set::type() const {
  return dataOf(data_).type;
}

int odb_Set::size() const {
  std::int64_t n = 0;
  for (const auto& segment : segmentsOf(dataOf(data_))) n += segment->labels.count();
  return static_cast<int>(n);
}

odb_SequenceString odb_Set::instanceNames() const {
  SetData& set = dataOf(data_);
  odb_SequenceString names;
  for (const auto& segment : segmentsOf(set)) {
    const EntityData& entity = shownEntity(set, *segment);
    if (entity.kind == EntityKind::kPart) continue;
    names.append(entity.kind == EntityKind::kAssembly ? odb_String() : entity.name);
  }
  return names;
}

const odb_SequenceNode& odb_Set::nodes() const {
  return allOf(dataOf(data_)).nodes;
}
odb_Node odb_Set::nodes(int i) const {
  return nodes()[i];
}
const odb_SequenceNode& odb_Set::nodes(const odb_String& instance) const {
  return oneOf(dataOf(data_), instance).nodes;
}
const odb_SequenceElement& odb_Set::elements() const {
  return allOf(dataOf(data_)).elements;
}
odb_Element odb_Set::elements(int i) const {
  return elements()[i];
}
const odb_SequenceElement& odb_Set::elements(const odb_String& instance) const {
  return oneOf(dataOf(data_), instance).elements;
}
const odb_SequenceElementFace& odb_Set::faces() const {
  return allOf(dataOf(data_)).faces;
}
odb_Enum::odb_ElementFaceEnum odb_Set::faces(int i) const {
  return faces()[i];
}
const odb_SequenceElementFace& odb_Set::faces(const odb_String& instance) const {
  return oneOf(dataOf(data_), instance).faces;
}

odb_SetRepository& odb_DiscreteEntity::nodeSets() const {
  inheritSets(need());
  return need().nodeSets;
}
odb_SetRepository& odb_DiscreteEntity::elementSets() const {
  inheritSets(need());
  return need().elementSets;
}
odb_SetRepository& odb_DiscreteEntity::surfaces() const {
  inheritSets(need());
  return need().surfaces;
}
