// SPDX-License-Identifier: BSD-3-Clause
// How fields of a result file become fields of a database: names, types, positions, and which
// stored number is which component.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "importer/results/frd_blocks.h"

namespace odbs::importer {

// `strain` is a tensor whose shear components are stored as engineering shear, twice the tensor's.
enum class FieldShape { scalar, vector, tensor, strain };

// Which elements a field of a block is for.
enum class FieldElements { all, lines, others };

// A field of the database, made from a block of the result file.
struct TargetField {
  std::string name;
  std::string description;
  FieldShape shape = FieldShape::scalar;
  bool ofElements = false;  // at the nodes of elements, not at nodes
  bool addsUp = false;      // forces: the value of a node is the sum over what it was split into
  FieldElements elements = FieldElements::all;
  // Stored component of the block (from 0) for each component here: 1 for a scalar, 3 for a vector,
  // 6 for a tensor in the order 11, 22, 33, 12, 13, 23.
  std::vector<int> sources;
};

// The fields that a block becomes. Names that users of databases know are used where there is one
// ("DISP" becomes "U"); everything else keeps its name, as tensor, vector or one scalar a
// component ("SDV" becomes "SDV1", "SDV2", ...). With `sectionForces` the block of stresses holds
// forces and moments in beams: for those it becomes "SF" and "SM", in the axes of the section.
std::vector<TargetField> targetFields(const FrdResult& head, bool sectionForces = false);

// The name of the block that holds the imaginary part of block `name`: "DISPI" for "DISP".
std::string imaginaryName(std::string_view name);

// True for a block that repeats others of its frame in another form: magnitude and phase.
bool isRedundant(std::string_view name);

}  // namespace odbs::importer
