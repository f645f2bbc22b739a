// SPDX-License-Identifier: BSD-3-Clause
// Adding sets, surfaces, section assignments.
#include "odb/src/model/database.h"
#include "odb/src/model/entity_write.h"
#include "odb/src/storage/errors.h"

namespace odbs::engine {

EntityData& memberEntity(EntityData& assembly, const odb_String& name) {
  if (name.empty()) return assembly;
  auto* entry = assembly.model->instances.engineItems().find(name);
  if (!entry) failUsage(std::string("no instance ") + name.CStr());
  return *entry->value.engineData();
}

void growSet(EntityData& entity, odb_Enum::odb_SetTypeEnum type, const odb_String& name,
             const std::vector<int>& labels) {
  auto* known = repositoryOf(entity, type).engineItems().find(name);
  SetData& set = known ? *known->value.engineData() : addSet(entity, type, name);
  addSegment(set, entity, type == odb_Enum::ELEMENT_SET, labels, {});
}

namespace {

// One entity's share of a set to be made.
struct Share {
  EntityData* entity;
  std::vector<int> labels;
  std::vector<int> faces;
};

std::vector<int> numbersOf(const odb_SequenceElementFace& faces) {
  return std::vector<int>(faces.engineItems().begin(), faces.engineItems().end());
}

// Makes the set once all its labels are known to exist, so that a bad label leaves no set.
odb_Set& makeSet(EntityData& owner, odb_Enum::odb_SetTypeEnum type, bool ofElements,
                 const odb_String& name, const std::vector<Share>& shares) {
  for (const Share& share : shares) {
    if (type == odb_Enum::SURFACE_SET && ofElements && share.faces.size() != share.labels.size()) {
      failUsage(std::string("surface ") + name.CStr() + ": one face per element is wanted");
    }
    for (const int label : share.labels) {
      const int index =
          ofElements ? findElement(*share.entity, label) : findNode(*share.entity, label);
      if (index < 0) {
        failUsage(std::string("set ") + name.CStr() + ": " + share.entity->name.CStr() +
                  " has no " + (ofElements ? "element " : "node ") + std::to_string(label));
      }
    }
  }
  SetData& set = addSet(owner, type, name);
  for (const Share& share : shares) {
    addSegment(set, *share.entity, ofElements, share.labels, share.faces);
  }
  owner.database->touch();
  return handleOf(set);
}

// The members of a sequence by owner, in order of appearance.
template <class Sequence>
std::vector<Share> sharesOf(EntityData& owner, const Sequence& members,
                            const odb_SequenceElementFace* faces) {
  std::vector<Share> shares;
  if (faces && faces->size() != members.size()) failUsage("one face per element is wanted");
  for (int i = 0, n = members.size(); i < n; ++i) {
    const auto member = members[i];
    EntityData* entity = member.engineTable()->owner;
    // An own set of a part may be given records that were seen through one of its instances.
    if (entity && entity->part == &owner) entity = &owner;
    if (!entity || entity->model != owner.model ||
        (entity != &owner && owner.kind != EntityKind::kAssembly)) {
      failUsage("a set wants members of its own part or instance");
    }
    std::size_t at = 0;
    while (at < shares.size() && shares[at].entity != entity) ++at;
    if (at == shares.size()) shares.push_back({entity, {}, {}});
    shares[at].labels.push_back(member.label());
    if (faces) shares[at].faces.push_back((*faces)[i]);
  }
  return shares;
}

std::vector<Share> sharesOf(EntityData& assembly, const odb_SequenceString& instances,
                            const odb_SequenceSequenceInt& labels,
                            const odb_SequenceSequenceElementFace* faces) {
  if (instances.size() != labels.size() || (faces && faces->size() != labels.size())) {
    failUsage("one list of labels (and faces) per instance name is wanted");
  }
  std::vector<Share> shares;
  for (int i = 0; i < instances.size(); ++i) {
    shares.push_back({&memberEntity(assembly, instances[i]), labels[i].engineItems(), {}});
    if (faces) shares.back().faces = numbersOf((*faces)[i]);
  }
  return shares;
}

}  // namespace

odb_Set& addNodeSurface(EntityData& owner, const odb_String& name,
                        const odb_SequenceString& instances,
                        const odb_SequenceSequenceInt& labels) {
  owner.database->needWritable();
  return makeSet(owner, odb_Enum::SURFACE_SET, false, name,
                 sharesOf(owner, instances, labels, nullptr));
}

odb_Set& addNodeSurface(EntityData& owner, const odb_String& name, const odb_SequenceInt& labels) {
  owner.database->needWritable();
  return makeSet(owner, odb_Enum::SURFACE_SET, false, name, {{&owner, labels.engineItems(), {}}});
}

}  // namespace odbs::engine

using namespace odbs::engine;

odb_Set& odb_DiscreteEntity::NodeSet(const odb_String& name, const odb_SequenceInt& labels) {
  return makeSet(need(), odb_Enum::NODE_SET, false, name, {{&need(), labels.engineItems(), {}}});
}

odb_Set& odb_DiscreteEntity::NodeSet(const odb_String& name, const odb_SequenceNode& nodes) {
  return makeSet(need(), odb_Enum::NODE_SET, false, name, sharesOf(need(), nodes, nullptr));
}

odb_Set& odb_DiscreteEntity::ElementSet(const odb_String& name, const odb_SequenceInt& labels) {
  return makeSet(need(), odb_Enum::ELEMENT_SET, true, name, {{&need(), labels.engineItems(), {}}});
}

odb_Set& odb_DiscreteEntity::ElementSet(const odb_String& name,
                                        const odb_SequenceElement& elements) {
  return makeSet(need(), odb_Enum::ELEMENT_SET, true, name, sharesOf(need(), elements, nullptr));
}

odb_Set& odb_DiscreteEntity::Surface(const odb_String& name, const odb_SequenceInt& labels,
                                     const odb_SequenceElementFace& faces) {
  return makeSet(need(), odb_Enum::SURFACE_SET, true, name,
                 {{&need(), labels.engineItems(), numbersOf(faces)}});
}

odb_Set& odb_DiscreteEntity::Surface(const odb_String& name, const odb_SequenceElement& elements,
                                     const odb_SequenceElementFace& faces) {
  return makeSet(need(), odb_Enum::SURFACE_SET, true, name, sharesOf(need(), elements, &faces));
}

odb_Set& odb_Assembly::NodeSet(const odb_String& name, const odb_SequenceString& instanceNames,
                               const odb_SequenceSequenceInt& labels) {
  return makeSet(need(), odb_Enum::NODE_SET, false, name,
                 sharesOf(need(), instanceNames, labels, nullptr));
}

odb_Set& odb_Assembly::ElementSet(const odb_String& name, const odb_SequenceString& instanceNames,
                                  const odb_SequenceSequenceInt& labels) {
  return makeSet(need(), odb_Enum::ELEMENT_SET, true, name,
                 sharesOf(need(), instanceNames, labels, nullptr));
}

odb_Set& odb_Assembly::Surface(const odb_String& name, const odb_SequenceString& instanceNames,
                               const odb_SequenceSequenceInt& labels,
                               const odb_SequenceSequenceElementFace& faces) {
  return makeSet(need(), odb_Enum::SURFACE_SET, true, name,
                 sharesOf(need(), instanceNames, labels, &faces));
}

// ---- Section assignments ----

namespace odbs::engine {

void inheritAssignments(EntityData& entity) {
  if (!entity.part) return;
  int& taken = entity.nInheritedAssignments;
  for (; static_cast<std::size_t>(taken) < entity.part->assignments.size(); ++taken) {
    const AssignmentData& source = entity.part->assignments[static_cast<std::size_t>(taken)];
    // The part's come first: in front of those of the instance.
    auto& handles = entity.assignmentHandles.engineItems();
    AssignmentData& shown = entity.inheritedAssignments.emplace_back(source);
    shown.region = seenFrom(entity, source.region);
    handles.insert(handles.begin() + taken, odb_SectionAssignment(&shown));
  }
}

static void addAssignment(EntityData& entity, const odb_Set& region, const odb_Section& section) {
  entity.database->needWritable();
  const SetData* set = region.engineData();
  if (!set || set->type != odb_Enum::ELEMENT_SET || set->owner != &entity) {
    failUsage(std::string("a section is assigned to an element set of ") + entity.name.CStr());
  }
  if (!section.engineData() || section.engineData()->database != entity.database) {
    failUsage("a section of this database is wanted");
  }
  inheritAssignments(entity);
  AssignmentData& assignment = entity.assignments.emplace_back();
  assignment.database = entity.database;
  assignment.region = region;
  assignment.sectionName = section.name();
  entity.assignmentHandles.append(odb_SectionAssignment(&assignment));
  entity.database->touch();
}

}  // namespace odbs::engine

odb_SequenceSectionAssignment& odb_DiscreteEntity::sectionAssignments() const {
  inheritAssignments(need());
  return need().assignmentHandles;
}

odb_SectionAssignment odb_DiscreteEntity::sectionAssignments(int i) const {
  return sectionAssignments()[i];
}

void odb_PartEntity::assignSection(const odb_Set& region, const odb_Section& section) {
  addAssignment(need(), region, section);
}

void odb_Assembly::SectionAssignment(const odb_Set& region, const odb_Section& section) {
  addAssignment(need(), region, section);
}

odb_Set& odb_SectionAssignment::region() const {
  return need().region;
}
const odb_String& odb_SectionAssignment::sectionName() const {
  return need().sectionName;
}
const odb_Section& odb_SectionAssignment::section() const {
  return need().database->model().sectionHandles[need().sectionName];
}
