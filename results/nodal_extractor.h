// SPDX-License-Identifier: BSD-3-Clause
// The nodal extractor (command `rd`): displacements, rotations, contact and other variables at
// nodes, and with displacements the elements that have failed.
#pragma once

#include <odb_API.h>

#include <string>
#include <string_view>
#include <vector>

#include "server/core/server_state.h"

namespace odbs {

// True for variables whose names begin like those of contact results.
bool isContactVariable(std::string_view name);

// Which of `keys`, in their order, a contact variable means: the name as it stands; else the first
// key that equals it when runs of blanks count as one; else the first key with the same first word.
// Null: none.
const std::string* findContactKey(const std::vector<std::string>& keys, std::string_view name);

// Sends title and analysis kind, then the selected variable as it is stored, value by value at
// nodes; values without a node are left out. For "U" and "UT" the failed elements and the rotations
// follow. A step number below 1 and a variable that the frame lacks end the reply after the first
// two records. `labels`, unless empty, restricts the failed elements to its labels. Throws what the
// database library throws, also for a step or a frame out of range; flushes the output buffer when
// it ends normally.
void extractNodal(odb_Odb& odb, int outputFd, const Selection& selection, const LabelList& labels);

}  // namespace odbs
