// SPDX-License-Identifier: BSD-3-Clause
// Nodes and elements in runs, for the loops that walk millions of them: runs of the library's
// arrays, or one record long where it has none. Callers see no difference but speed.
#pragma once

#include <odb_API.h>

#include <algorithm>

#include "server/core/sdk_adapter.h"

namespace odbs::sdk {

// Elements of one type, section category and number of nodes. `first` is the first of them; the
// arrays live as long as the call that gets the run.
struct ElementRun {
  int n;
  const int* labels;        // n
  int nNodes;               // per element, may be 0
  const int* connectivity;  // node labels, nNodes per element
  const odb_Element& first;
};

// Calls use(n, labels, coordinates) for consecutive runs of the sequence until all nodes were in
// one. `coordinates` are 3 per node.
template <typename Use>
void forEachNodeRun(const odb_SequenceNode& nodes, Use use) {
  const int n = nodes.size();
  if (const NodeArrays arrays = nodeArrays(nodes); arrays.labels != nullptr) {
    if (n > 0) use(n, arrays.labels, arrays.coordinates);
    return;
  }
  for (int i = 0; i < n; ++i) {
    const odb_Node& node = nodes[i];
    const int label = node.label();
    use(1, &label, node.coordinates());
  }
}

// Calls use(run) for consecutive runs of the sequence until all elements were in one.
template <typename Use>
void forEachElementRun(const odb_SequenceElement& elements, Use use) {
  const int n = elements.size();
  if (const ElementArrays arrays = elementArrays(elements); arrays.labels != nullptr) {
    for (int i = 0; i < n;) {
      // Block numbers ascend, as blocks follow each other.
      const int* rest = arrays.blockOf + i;
      const int end = i + static_cast<int>(std::upper_bound(rest, rest + (n - i), *rest) - rest);
      const odb_Element& first = elements[i];
      int nNodes = 0;
      const int* connectivity = first.connectivity(nNodes);
      use(ElementRun{end - i, arrays.labels + i, nNodes, connectivity, first});
      i = end;
    }
    return;
  }
  for (int i = 0; i < n; ++i) {
    const odb_Element& element = elements[i];
    const int label = element.label();
    int nNodes = 0;
    const int* connectivity = element.connectivity(nNodes);
    use(ElementRun{1, &label, nNodes, connectivity, element});
  }
}

}  // namespace odbs::sdk
