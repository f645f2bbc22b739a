// SPDX-License-Identifier: BSD-3-Clause
// Rigid bodies: of parts, of instances, of the assembly.
#include <odb_embedded.h>

#include "importer/write/model_writer.h"

namespace odbs::importer {

// The name of a node set on `entity` that holds the referenced node or set; made where the deck
// names a node, or a set of another owner.
std::string ModelWriter::nodeSetFor(odb_DiscreteEntity& entity, const Reference& reference) {
  if (reference.label == 0 && reference.owner == kOwn) return reference.setName;
  std::string name = "REFERENCE_NODE_" + std::to_string(reference.label);
  const bool foreign = reference.owner != kOwn;
  const Instance* instance =
      foreign ? &deck_.instances[static_cast<std::size_t>(reference.owner)] : nullptr;
  if (foreign) {
    name = instance->name + "_" + (reference.label != 0 ? name : reference.setName);
  }
  if (entity.nodeSets().isMember(text(name))) return name;
  std::vector<std::int32_t> labels;
  if (reference.label != 0) {
    labels.push_back(reference.label);
  } else {
    const Set* set = instance->content.nodeSets.find(reference.setName);
    if (!set) set = deck_.meshOf(*instance).nodeSets.find(reference.setName);
    if (set) {
      for (const Members& members : set->members) {
        labels.insert(labels.end(), members.labels.begin(), members.labels.end());
      }
    }
  }
  if (!foreign) {
    entity.NodeSet(text(name), sequence(labels));
  } else {
    odb_SequenceString owners;
    odb_SequenceSequenceInt lists;
    owners.append(text(instance->name));
    lists.append(sequence(labels));
    odb_.rootAssembly().NodeSet(text(name), owners, lists);
  }
  ++summary_.nSets;
  return name;
}

// The written set that `reference` names, an absent one for none.
odb_Set ModelWriter::setOf(odb_DiscreteEntity& entity, const Reference& reference, bool elements) {
  if (!reference.given()) return odb_Set();
  if (!elements) return entity.nodeSets()[text(nodeSetFor(entity, reference))];
  const odb_String name = text(reference.setName);
  if (reference.owner == kOwn) {
    return entity.elementSets().isMember(name) ? entity.elementSets()[name] : odb_Set();
  }
  const std::string& instance = deck_.instances[static_cast<std::size_t>(reference.owner)].name;
  return odb_.rootAssembly().instances()[text(instance)].elementSets()[name];
}

void ModelWriter::writeRigidBodies(odb_DiscreteEntity& entity, odb_PartEntity* partEntity,
                                   const Scope& content) {
  for (const RigidBody& body : content.rigidBodies) {
    const odb_Set reference = setOf(entity, body.referenceNode, false);
    const auto position = body.centerOfMass ? odb_Enum::CENTER_OF_MASS : odb_Enum::INPUT;
    if (!body.analyticSurface.given()) {
      entity.RigidBody(reference, position, body.isothermal, setOf(entity, body.elements, true),
                       setOf(entity, body.pinNodes, false), setOf(entity, body.tieNodes, false));
      continue;
    }
    // The body that carries a surface has no members besides it.
    const std::int32_t owner = body.analyticSurface.owner;
    odb_PartEntity* surfaceOwner = partEntity;
    odb_Instance instance;
    if (owner != kOwn) {
      const std::string& name = deck_.instances[static_cast<std::size_t>(owner)].name;
      instance = odb_.rootAssembly().instances()[text(name)];
      surfaceOwner = &instance;
    }
    if (!surfaceOwner || !surfaceOwner->hasAnalyticSurface()) {
      warn("a rigid body is left out: its analytic surface " + body.analyticSurface.setName +
           " is in no part");
      continue;
    }
    odb_embedded::addRigidBody(entity, reference, *surfaceOwner, position, body.isothermal);
  }
}

}  // namespace odbs::importer
