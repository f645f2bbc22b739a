// SPDX-License-Identifier: BSD-3-Clause
// Databases written through the database library's API, together with the model that a parent must
// get to see: expected from what was written, not from what any server says.
#pragma once

#include <cstdint>
#include <string>

#include "client/model.h"

namespace odbs::client::test {

// The rod of docs/protocol.md.
void writeRod(const std::string& path);

// A random model of 1 to 4 instances, spatial and planar, of element types with names of 1 to 13
// characters, sections of several kinds, and materials. The same seed gives the same model.
Model writeRandomModel(const std::string& path, std::uint32_t seed);

// The rod of docs/protocol.md breaks: in frame 1 of its step, at time 1, it has "U" and "UR" at
// both nodes, (label, label / 2) and (0.25 label), and its element's "STATUS" is 0.
void writeBrokenRod(const std::string& path);

// Two instances, "A" and "B", of three trusses each (labels 1 to 3) with nodes 1 to 4. Component k
// of "U" at node n of frame f is 100 f + 10 k + n, in "B" 1000 more; frame 2 has conjugates, the
// negative values. Frame 1 also has "UR1" to "UR3" at node 1 of "B", 1, 2 and 3; "CPRESS   S/M" at
// node 4 of "A", 0.5; and "STATUS", 0 for elements 1 and 3 of "A" and 2 of "B". Frame times are f.
void writeFailures(const std::string& path);

}  // namespace odbs::client::test
