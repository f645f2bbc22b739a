// SPDX-License-Identifier: BSD-3-Clause
// Writes the databases that the benchmarks read.
#pragma once

#include <string>

namespace odbs::bench {

// Writes a database at `path` with one instance of a cube of nPerEdge nodes in each direction,
// meshed with C3D8R hexahedra in one section of one material. Replaces an existing file. Throws
// what the database library throws.
void writeHexahedralModel(const std::string& path, int nPerEdge);

}  // namespace odbs::bench
