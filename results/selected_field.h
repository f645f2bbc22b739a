// SPDX-License-Identifier: BSD-3-Clause
// From what the parent selected to the step, the frame and the field that it means.
#pragma once

#include <odb_API.h>

#include "server/core/server_state.h"

namespace odbs {

// The selection set as a request has to apply it; null when everything is sent.
const SelectionSet* appliedSelection(const ServerState& state);

// Step and frame by place, both counted from 0. Each throws std::out_of_range.
const odb_Step& stepAt(odb_Odb& odb, int stepIndex);
// A frame is taken for a request: what the one before it loaded is released.
odb_Frame frameAt(odb_Odb& odb, int stepIndex, int frameIndex);

// The field output that the selection names, not yet a subset. A step number below 1 and a variable
// that the frame lacks give false. Throws std::out_of_range for a step or a frame out of range.
bool findField(odb_Odb& odb, const Selection& selection, odb_FieldOutput& field);

// The subset at the selected position, or the field itself where the position asks for it as it is
// stored. Throws std::out_of_range for a number that is no position.
odb_FieldOutput atPosition(const odb_FieldOutput& field, int position);

}  // namespace odbs
