// SPDX-License-Identifier: BSD-3-Clause
// The field extractor: streams the values of one field output of one frame, block by block.
#pragma once

#include <odb_API.h>

#include "server/core/server_state.h"

namespace odbs {

// Which blocks and values are sent.
enum class Extraction {
  kPicked,      // blocks of the two picked section points and blocks without section points
  kEveryPoint,  // every block; the section-point field is always the point's own number
  kTop,         // every block, each element's values at the last section point of its category
  kBottom,      // likewise at the first section point
  kAsStored,    // every block of the field as it is stored, without a subset
};

struct FieldRequest {
  const Selection* selection = nullptr;  // step, frame, variable, position; must outlive the call
  Extraction extraction = Extraction::kPicked;
  int pick1 = -1, pick2 = -1;              // section-point numbers
  bool sendOrientations = false;           // local directions before each value that has them
  const SelectionSet* selected = nullptr;  // restricts the values; null: all; must outlive the call
};

// The section-point field of a block's header. Contract: 1 and 2 stand for the picks also when both
// are -1.
int sectionPointField(const FieldRequest& request, int sectionPoint);

// Sends title and analysis kind, then the values. A step number below 1 and a variable that the
// frame lacks end the reply after the first two records. Throws what the database library throws,
// also for a step or a frame out of range; flushes the output buffer when it ends normally.
void extractField(odb_Odb& odb, int outputFd, const FieldRequest& request);

}  // namespace odbs
