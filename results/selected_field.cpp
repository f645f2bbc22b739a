// SPDX-License-Identifier: BSD-3-Clause
// Steps, frames and fields by number and name.
#include "results/selected_field.h"

#include <stdexcept>

#include "registry/database_caches.h"
#include "server/core/result_codes.h"
#include "server/core/sdk_adapter.h"

namespace odbs {

namespace {

// Counted from 0.
struct FramePlace {
  int step = -1;
  int frame = -1;
};

// Frames keep what they load, and a parent may walk over thousands: only the latest one does.
DatabaseCache<FramePlace> latestFrames;

}  // namespace

const odb_Step& stepAt(odb_Odb& odb, int stepIndex) {
  odb_StepRepositoryIT it(odb.steps());
  for (it.first(); !it.isDone() && stepIndex > 0; it.next()) --stepIndex;
  if (it.isDone()) throw std::out_of_range("no such step");
  return it.currentValue();
}

odb_Frame frameAt(odb_Odb& odb, int stepIndex, int frameIndex) {
  const odb_SequenceFrame& frames = stepAt(odb, stepIndex).frames();
  if (frameIndex < 0 || frameIndex >= frames.size()) throw std::out_of_range("no such frame");
  FramePlace& latest = latestFrames.of(odb);
  if (latest.frame >= 0 && (latest.step != stepIndex || latest.frame != frameIndex)) {
    stepAt(odb, latest.step).frames().release(latest.frame);
  }
  latest = {stepIndex, frameIndex};
  return frames[frameIndex];
}

const SelectionSet* appliedSelection(const ServerState& state) {
  // Contract: an empty selection set restricts nothing.
  return state.selection.flag && !state.regionSelection.empty() ? &state.regionSelection : nullptr;
}

bool findField(odb_Odb& odb, const Selection& selection, odb_FieldOutput& field) {
  if (selection.stepNumber < 1) return false;
  const odb_Frame frame = frameAt(odb, selection.stepNumber - 1, selection.frameIndex);
  odb_FieldOutputRepository& fields = frame.fieldOutputs();
  if (!fields.isMember(selection.variableName.c_str())) return false;
  field = fields.get(selection.variableName.c_str());
  return true;
}

odb_FieldOutput atPosition(const odb_FieldOutput& field, int position) {
  // Contract: this position means the field as it is stored, without a subset.
  if (position == position::kIntegrationPoint) return field;
  if (!sdk::isResultPosition(position)) throw std::out_of_range("no such result position");
  return field.getSubset(static_cast<odb_Enum::odb_ResultPositionEnum>(position), true);
}

}  // namespace odbs
