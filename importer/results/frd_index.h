// SPDX-License-Identifier: BSD-3-Clause
// What a result file holds, block by block, without the values: the mesh, and the result blocks
// gathered into frames.
#pragma once

#include <string>
#include <vector>

#include "importer/results/frd_reader.h"

namespace odbs::importer {

// A result block by its header; read it with FrdReader::readAt(place).
struct FrdField {
  FrdResult head;  // without labels and values
  ResultPlace place;
};

// The results of one increment, mode or frequency: consecutive blocks with the same parameters.
struct FrdFrame {
  FrdAnalysis analysis = FrdAnalysis::stationary;
  double value = 0;  // total time, frequency, buckling factor
  FrdParameters parameters;
  std::vector<FrdField> fields;
};

struct FrdIndex {
  FrdNodes nodes;        // of all blocks of nodes
  FrdElements elements;  // of all blocks of elements
  std::vector<FrdFrame> frames;
  bool complete = false;  // the file ends with its end record
  std::string cut;        // where it breaks off inside a result block, else empty
};

// Goes through the whole file once. A result block that the file breaks off in is left out. Throws
// ResultFileError, also when the file breaks off before the first result block is complete.
FrdIndex indexFrd(FrdReader& reader);

}  // namespace odbs::importer
