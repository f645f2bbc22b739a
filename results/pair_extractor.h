// SPDX-License-Identifier: BSD-3-Clause
// The pair extractor: streams the values of one field at the section points of two layers, so that
// one request shows both sides of a shell, or two of its plies.
#pragma once

#include <odb_API.h>

#include <string>

#include "server/core/server_state.h"

namespace odbs {

// One item of a pair, such as "PLY-1.OUTER" or "3.2".
struct PairItem {
  std::string name;  // by name: the text up to the section-point suffix, at most 199 bytes
  int number = 0;    // by number: the absolute value of the integer at its start
  int code = 0;      // -1 innermost, -2 outermost, -3 all, N the N-th point, 0 the middle
};

struct PairExtraction {
  const Selection* selection = nullptr;  // must outlive the call
  PairItem first, second;
  bool byName = false;                     // items name their layer, else they number it
  bool sendOrientations = false;           // local directions before each value that has them
  const SelectionSet* selected = nullptr;  // restricts the values; null: all; must outlive the call
};

// Sends title and analysis kind, then the values: of each block those at the first item's points
// under section-point field 1, then those at the second's under 2. Headers come only where values
// follow. An item finds its points in each element's own section layup:
//
// - A number is that layer's; 0 is the whole section.
// - A name is that of plies, else of layers' materials, else of the section (as the whole) or the
//   material of a section without layers.
// - Elements without such a layer send nothing for the item. A section without section points
//   stands for one point, at which the values without a section point are.
//
// A step number below 1, a variable that the frame lacks and a name that no layup knows end the
// reply after the first two records. Throws what the database library throws, also for a step or a
// frame out of range; flushes the output buffer when it ends normally.
void extractPair(odb_Odb& odb, int outputFd, const PairExtraction& request);

}  // namespace odbs
