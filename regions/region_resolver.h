// SPDX-License-Identifier: BSD-3-Clause
// Which nodes and elements a region request means.
#pragma once

#include <odb_API.h>

#include <string>
#include <vector>

#include "server/core/server_state.h"

namespace odbs {

// What a region is made of; the numbers are those of the requests.
enum class RegionKind {
  kElementSet = 1,
  kNodeSet = 2,
  kSurface = 3,
  kInstance = 4,
  kSection = 5,
  kMaterial = 6,
  kElementType = 7,
  kLayer = 8,
};

// A region's share of one instance, or of the assembly's own elements and nodes.
struct RegionShare {
  std::string instance;  // or the assembly's name
  bool ofAssembly = false;
  std::vector<int> elements;  // labels; of a surface one for each face, so that labels repeat
  std::vector<int> faces;     // of a surface: the library's face numbers, parallel to elements
  std::vector<int> nodes;     // labels, of node sets and of surfaces made of nodes
};

struct Region {
  std::vector<RegionShare> shares;  // of what is in question: by name, the assembly's last
  std::vector<int> points;          // section points that the region is restricted to; empty: any
};

// Resolves one request. A name may be "INSTANCE.NAME", where no region has the whole text as its
// name. A name that is not found gives empty shares. Throws what the database library throws.
Region resolveRegion(odb_Odb& odb, const RegionRequest& request);

}  // namespace odbs
