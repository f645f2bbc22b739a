// SPDX-License-Identifier: BSD-3-Clause
// Writes the databases that the benchmarks read.
#pragma once

#include <string>

namespace odbs::bench {

// Writes a database at `path` with one instance of a cube of nPerEdge nodes in each direction,
// meshed with C3D8R hexahedra in one section of one material. Replaces an existing file. Throws
// what the database library throws.
void writeHexahedralModel(const std::string& path, int nPerEdge);

// The same cube of C3D8 with one frame that holds a stress field "S" at eight integration points
// per element, and with an element set "SPREAD" of at most 1,000 of them, evenly spread.
void writeStressField(const std::string& path, int nPerEdge);

// A cube of eight elements with one step of `nFrames` frames, each with `nFields` scalar fields
// "SDV1", "SDV2", ... of one element.
void writeManyFrames(const std::string& path, int nFrames, int nFields);

// A cube of C3D8 with a step "*FREQUENCY" of `nModes` frames, each with random stresses "S" at the
// integration points of as many elements as `nValues` (rounded up to a multiple of 8) fill, and a
// step "*RANDOM RESPONSE" with one frame that holds a covariance matrix of these modes as "MATRIX
// Sqq" and "MATRIX RSqq". The element set "PART" has a hundredth of the elements with stresses.
// Returns the number of values.
int writeModes(const std::string& path, int nModes, int nValues);

}  // namespace odbs::bench
