// SPDX-License-Identifier: BSD-3-Clause
// The bulk arrays that node and element records point into, open to the compiler so that walking a
// million records costs no call. The engine fills them; callers see odb_Node and odb_Element.
#pragma once

#include <odb_String.h>

#include <cstdint>

class odb_SectionCategory;

namespace odbs {
namespace engine {

struct EntityData;
struct CategoryData;

// Nodes of a part, an instance or the assembly. `labels` has n entries, `coordinates` 3 per node.
// The table of a default-constructed record has n = 0 and one entry, label -1 at the origin.
struct NodeTable {
  int n = 0;
  const int* labels = nullptr;
  const float* coordinates = nullptr;
  EntityData* owner = nullptr;
};

// A run of elements with the same type, section category and number of nodes.
struct ElementBlock {
  int first = 0;                  // index of its first element
  int nNodes = 0;                 // nodes per element
  std::int64_t connectivity = 0;  // index of its first element's nodes
  const odb_String* type = nullptr;
  const odb_SectionCategory* category = nullptr;
};

// Elements of a part, an instance or the assembly.
struct ElementTable {
  int n = 0;
  const int* labels = nullptr;                // n
  const int* blockOf = nullptr;               // n, indices into blocks
  const int* connectivity = nullptr;          // node labels, element by element
  const int* connectivityInstance = nullptr;  // assembly only: per node, entity number or 0
  const ElementBlock* blocks = nullptr;
  EntityData* owner = nullptr;
};

const NodeTable* emptyNodeTable();
const ElementTable* emptyElementTable();

}  // namespace engine
}  // namespace odbs
