// SPDX-License-Identifier: BSD-3-Clause
// Writes the deck and the result file that the import benchmark reads.
#pragma once

#include <cstdint>
#include <string>

namespace odbs::bench {

// A cube of n^3 hexahedra (C3D8), n >= 1.
struct CubeFiles {
  int nElementsPerEdge = 80;
  int nFrames = 4;
  bool binary = false;  // result file in binary, single precision

  std::int64_t nNodes() const;
  std::int64_t nElements() const;
};

// The deck: nodes, elements, one section, one static step. Throws std::runtime_error, as the next.
void writeCubeDeck(const std::string& path, const CubeFiles& cube);

// The result file: the mesh, then in each frame DISP, STRESS and TOSTRAIN at all nodes.
void writeCubeResults(const std::string& path, const CubeFiles& cube);

// Bytes of the largest block of the result file, and of the largest array of values that a field of
// it becomes (a tensor at the nodes of elements, single precision).
std::int64_t largestFileBlock(const CubeFiles& cube);
std::int64_t largestValueBlock(const CubeFiles& cube);

}  // namespace odbs::bench
