// SPDX-License-Identifier: BSD-3-Clause
// Records of the region queries, and the selection set.
#include "regions/region_queries.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "regions/region_resolver.h"
#include "server/core/record.h"
#include "server/core/sdk_mesh_runs.h"
#include "server/core/set_records.h"

namespace odbs {

namespace {

constexpr unsigned char kRegionTag = 'R';

// Region record, buffered.
//   offset  size  content
//   0       1     kRegionTag
//   1       4     kind
//   5       4     value
//   9       4+n   name, as it was asked for, cut at 10219 bytes
//   13+n    4     number of elements
//   17+n    4     number of nodes
void sendRegion(const RegionRequest& request, std::uint32_t nElements, std::uint32_t nNodes,
                int outputFd) {
  beginRecord(kRegionTag);
  putI32(request.kind);
  putI32(request.value);
  putText(request.name);
  putU32(nElements);
  putU32(nNodes);
  appendRecord(outputFd);
}

// Adds the members to the set, and returns how many different ones they are.
std::uint32_t addAll(const std::vector<int>& labels, LabelSet& set) {
  LabelSet different;
  for (const int label : labels) {
    different.add(label);
    set.add(label);
  }
  return static_cast<std::uint32_t>(different.size());
}

// Nodes of selected elements count as selected.
void addNodesOfElements(odb_Odb& odb, SelectionSet& selection) {
  odb_InstanceRepositoryIT it(odb.rootAssembly().instances());
  for (it.first(); !it.isDone(); it.next()) {
    const std::string name = it.currentKey().CStr();
    const LabelSet chosen = selection.elementsAtAnyPoint(name);
    if (chosen.empty()) continue;
    LabelSet& nodes = selection.nodes(name);
    sdk::forEachElementRun(it.currentValue().elements(), [&](const sdk::ElementRun& run) {
      for (int i = 0; i < run.n; ++i) {
        if (!chosen.has(run.labels[i])) continue;
        const int* const own = run.connectivity + std::ptrdiff_t{i} * run.nNodes;
        for (int k = 0; k < run.nNodes; ++k) nodes.add(own[k]);
      }
    });
  }
}

// The same for elements of the assembly, whose nodes may be those of instances.
void addNodesOfAssemblyElements(odb_Assembly& assembly, SelectionSet& selection) {
  const std::string own = assembly.name().CStr();
  const LabelSet chosen = selection.elementsAtAnyPoint(own);
  if (chosen.empty() || assembly.instances().isMember(own.c_str())) return;
  const odb_SequenceElement& elements = assembly.elements();
  const int n = elements.size();
  for (int i = 0; i < n; ++i) {
    const odb_Element& element = elements[i];
    if (!chosen.has(element.label())) continue;
    const odb_SequenceString names = element.instanceNames();
    int nNodes = 0;
    const int* const labels = element.connectivity(nNodes);
    for (int k = 0; k < std::min(nNodes, names.size()); ++k) {
      selection.nodes(names[k].empty() ? own : names[k].CStr()).add(labels[k]);
    }
  }
}

void sendShare(const RegionRequest& request, const RegionShare& share, bool ofNodes, bool grouped,
               int outputFd) {
  SetKind kind = SetKind::kElements;
  if (request.kind == static_cast<int>(RegionKind::kSurface)) kind = SetKind::kSurface;
  if (request.kind == static_cast<int>(RegionKind::kNodeSet) ||
      (ofNodes && share.elements.empty())) {
    kind = SetKind::kNodes;  // surfaces made of nodes, too, also where an owner has none of them
  }
  sendSetHeader(outputFd, kind, request.name);
  if (grouped) sendNameRecord(outputFd, share.instance);
  const int nElements = static_cast<int>(share.elements.size());
  if (kind == SetKind::kNodes) {
    sendNodeLabels(outputFd, share.nodes.data(), static_cast<int>(share.nodes.size()));
  } else if (kind == SetKind::kSurface) {
    sendElementLabelPairs(outputFd, share.elements.data(), share.faces.data(), nElements);
  } else {
    sendElementLabels(outputFd, share.elements.data(), nElements);
  }
  sendEndOfSet(outputFd);
  if (grouped) sendMarker(outputFd);
}

}  // namespace

void answerRegionRequests(odb_Odb& odb, int outputFd, const std::vector<RegionRequest>& requests,
                          SelectionSet& selection) {
  SelectionSet fresh;
  for (const RegionRequest& request : requests) {
    const Region region = resolveRegion(odb, request);
    std::uint32_t nElements = 0;
    std::uint32_t nNodes = 0;
    for (const RegionShare& share : region.shares) {
      nNodes += addAll(share.nodes, fresh.nodes(share.instance));
      const std::vector<int> anyPoint{SelectionSet::kAnyPoint};
      std::uint32_t n = 0;
      for (const int point : region.points.empty() ? anyPoint : region.points) {
        n = addAll(share.elements, fresh.elements(share.instance, point));
      }
      nElements += n;
    }
    sendRegion(request, nElements, nNodes, outputFd);
  }
  addNodesOfElements(odb, fresh);
  addNodesOfAssemblyElements(odb.rootAssembly(), fresh);
  selection = std::move(fresh);
  flushOutput(outputFd);
}

void sendRegionsAsSets(odb_Odb& odb, int outputFd, const std::vector<RegionRequest>& requests) {
  const bool grouped = odb.rootAssembly().instances().size() > 1;
  for (const RegionRequest& request : requests) {
    const Region region = resolveRegion(odb, request);
    const bool ofNodes = std::any_of(region.shares.begin(), region.shares.end(),
                                     [](const RegionShare& share) { return !share.nodes.empty(); });
    for (const RegionShare& share : region.shares) {
      // As in the model: the assembly's own members are sent only in models of several instances.
      const bool isThere = grouped && !(share.elements.empty() && share.nodes.empty());
      if (!share.ofAssembly || isThere) {
        sendShare(request, share, ofNodes, grouped, outputFd);
      }
    }
  }
  flushOutput(outputFd);
}

}  // namespace odbs
