// SPDX-License-Identifier: BSD-3-Clause
// Adding to parts, instances and the assembly: what the public write calls and the engine-private
// ones share. All throw odb_Exception and change nothing when an argument is wrong.
#pragma once

#include "odb/src/model/model_objects.h"

namespace odbs::engine {

// n labels, 3 coordinates each.
void appendNodes(EntityData& entity, int n, const int* labels, const float* coordinates);
// n labels, nNodes node labels each. `nodeOwners`: per node of an element the entity that has it,
// null when that is `entity`.
void appendElements(EntityData& entity, int n, const int* labels, int nNodes,
                    const int* connectivity, const odb_String& type,
                    const odb_SectionCategory& category,
                    const std::vector<EntityData*>* nodeOwners);
void addElementRows(EntityData& entity, const odb_SequenceInt& labels,
                    const odb_SequenceSequenceInt& connectivity, const odb_String& type,
                    const odb_SectionCategory& category,
                    const std::vector<EntityData*>* nodeOwners);
EntityData& addInstance(EntityData& assembly, const odb_String& name, EntityData& part,
                        const odb_SequenceSequenceFloat& rows);
// Adds labels to the set of that name, which is made when there is none.
void growSet(EntityData& entity, odb_Enum::odb_SetTypeEnum type, const odb_String& name,
             const std::vector<int>& labels);
// The instance of that name, the assembly itself for an empty one. Throws odb_Exception.
EntityData& memberEntity(EntityData& assembly, const odb_String& name);

}  // namespace odbs::engine
