// SPDX-License-Identifier: BSD-3-Clause
// The contents of a CalculiX result file (.frd), block by block, as the reader delivers them.
//
// Source of the format: CalculiX GraphiX User's Manual, section "Result File Format" (the record
// keys 1C, 1U, 1P, 2C, 3C, 100C, -1 to -5, 9999, the columns, the element types), and the files
// that the solver writes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace odbs::importer {

// A header record: key "U" (user text), "C" (model name) or "P" (parameter), and the text after it,
// for instance key "U", text "PGM               CalculiX".
struct FrdRecord {
  char key = 'U';
  std::string text;
};

// A block of nodes (2C).
struct FrdNodes {
  std::vector<std::int32_t> labels;
  std::vector<double> coordinates;  // x, y, z of each node
};

// A block of elements (3C).
struct FrdElements {
  std::vector<std::int32_t> labels;
  std::vector<std::uint8_t> types;  // 1 to 12, see frdNodesPerElement
  std::vector<std::int32_t> groups;
  std::vector<std::int32_t> nodes;  // node labels, element after element, in the file's order
};

// Nodes of an element of type 1 to 12 (8-node hexahedron, 6-node wedge, 4-node tetrahedron, 20-node
// hexahedron, 15-node wedge, 10-node tetrahedron, 3- and 6-node triangle, 4- and 8-node
// quadrilateral, 2- and 3-node line); 0 for any other number.
int frdNodesPerElement(int type);

// What a step's values are: the ICTYPE of a result block.
enum class FrdAnalysis { stationary = 0, time = 1, frequency = 2, loadStep = 3, userNamed = 4 };

// A component of a result block (-5).
struct FrdComponent {
  std::string name;
  int type = 1;          // 1 scalar, 2 vector, 4 tensor, 12 vector amplitude or phase, 14 the same
                         // of a tensor
  int row = 0;           // which component: 1, 2, 3 of a vector, row of a tensor
  int column = 0;        // column of a tensor
  bool derived = false;  // not in the file: a viewer computes it (the "ALL" of a vector)
};

// The parameter records (1P) before a result block, as far as they carry numbers of use.
struct FrdParameters {
  int dataSet = 0;    // running number of the result block, from 1; 0 when absent
  int increment = 0;  // increment within the step, from 1; 0 when absent
  int step = 0;       // step, from 1; 0 when absent
  int mode = 0;       // mode, from 1; 0 when it is no mode
  bool hasNodalDiameter = false;
  int nodalDiameter = 0;            // of a cyclic symmetric mode
  double generalizedMass = 0;       // of a mode; 0 when absent
  double generalizedStiffness = 0;  // of a mode; 0 when absent
};

// A block of nodal results (100C).
struct FrdResult {
  std::string name;                      // of the field, such as "DISP", "STRESS"
  std::vector<FrdComponent> components;  // of the file, derived ones included
  int nStored = 0;                       // components that have values
  double value = 0;                      // time, frequency (cycles per time), buckling factor
  FrdAnalysis analysis = FrdAnalysis::stationary;
  std::string analysisName;  // "MODAL", "" ...
  int number = 0;            // the block's step number: counts increments over all steps
  std::string text;          // comment of the block, mostly empty
  FrdParameters parameters;
  std::vector<std::int32_t> labels;  // of nodes, each once, in the file's order
  std::vector<double> values;        // nStored numbers a node, stored components in file order
};

}  // namespace odbs::importer
