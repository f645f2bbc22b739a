// SPDX-License-Identifier: BSD-3-Clause
// Region queries (commands irc, irf, irs): what parts of a model a request means, as counts and as
// sets, and how they restrict field values.
#pragma once

#include <string>
#include <vector>

#include "client/connection.h"
#include "client/sets.h"

namespace odbs::client {

constexpr unsigned char kRegionTag = 'R';

// A part of a model by kind and name; "INSTANCE.NAME" means one instance only.
struct RegionQuery {
  std::int32_t kind = 1;   // 1 element set, 2 node set, 3 surface, 4 part instance, 5 section,
                           // 6 material, 7 element type, 8 layer of a section
  std::int32_t value = 0;  // kind 5: section point, 0 any; kind 8: number of the layer
  std::string name;
};

// "element set", "section", ... ; "kind 9" for one that there is not.
std::string regionKindName(std::int32_t kind);

// Reads "elements=NAME", "section:3=NAME", and so on: one of elements, nodes, surface, instance,
// section, material, type, layer; the value after a colon. Throws std::invalid_argument.
RegionQuery parseRegionQuery(const std::string& text);

// How much of the model a query means.
struct RegionCount {
  RegionQuery query;
  std::uint32_t nElements = 0;
  std::uint32_t nNodes = 0;  // of node sets, and of surfaces made of nodes
};
RegionCount decodeRegion(const Record& record);

// Makes the queries' union the server's selection set. Messages of the server are appended to
// `messages`. Throws std::invalid_argument for a query that cannot be written on a line, and what
// Connection and the decoders throw. A database that does not open gives no counts.
std::vector<RegionCount> selectRegions(Connection& server, const std::string& path,
                                       const std::vector<RegionQuery>& queries,
                                       std::vector<std::string>& messages);

struct RegionsReply {
  std::vector<RegionCount> counts;  // one for each query
  SetsReply members;                // for each query a set of its name for each instance
};

// Asks for members and counts; the selection set is that of the queries then. Throws
// DatabaseNotOpened and what selectRegions throws.
RegionsReply readRegions(Connection& server, const std::string& path,
                         const std::vector<RegionQuery>& queries);

}  // namespace odbs::client
