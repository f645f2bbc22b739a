// SPDX-License-Identifier: BSD-3-Clause
// Headers of blocks, and the way from a selection to a field.
#include "results/block_writer.h"

#include <stdexcept>

#include "server/record.h"
#include "server/sdk_adapter.h"

namespace odbs {

namespace {

// Contract: this position means the field as it is stored, without a subset.
constexpr int kPositionAsStored = 3;

// Step and frame by place, both counted from 0. Throws std::out_of_range.
odb_Frame frameAt(odb_Odb& odb, int stepIndex, int frameIndex) {
  odb_StepRepositoryIT it(odb.steps());
  for (it.first(); !it.isDone() && stepIndex > 0; it.next()) --stepIndex;
  if (it.isDone()) throw std::out_of_range("no such step");
  const odb_Step& step = it.currentValue();
  const odb_SequenceFrame& frames = step.frames();
  if (frameIndex < 0 || frameIndex >= frames.size()) throw std::out_of_range("no such frame");
  return frames[frameIndex];
}

}  // namespace

void BlockWriter::sendHeaders(const odb_FieldBulkData& block) {
  headersPending_ = false;
  if (severalInstances_) {
    const odb_String name = block.instance().name();
    if (instance_ != name.CStr()) {
      instance_ = name.CStr();
      sendNameRecord(outputFd_, instance_);
    }
  }
  const int flag = valueTypeFlag(static_cast<int>(block.type()), block.width());
  if (flag != valueType_) sendValueType(outputFd_, flag);
  valueType_ = flag;
  sendBlockHeader(outputFd_, block.baseElementType().CStr(), pendingField_,
                  block.sectionPoint().number());
}

SelectedLabels BlockWriter::selectedOf(const odb_FieldBulkData& block) const {
  const std::string instance = block.instance().name().CStr();
  return ValueKeys(block).areNodal()
             ? selected_->selectedNodes(instance)
             : selected_->selectedElements(instance, block.sectionPoint().number());
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
  if (position == kPositionAsStored) return field;
  return field.getSubset(static_cast<odb_Enum::odb_ResultPositionEnum>(position), true);
}

}  // namespace odbs
