// SPDX-License-Identifier: BSD-3-Clause
// Headers of blocks, and the way from a selection to a field.
#include "results/block_writer.h"

#include <stdexcept>

#include "registry/database_caches.h"
#include "server/core/record.h"
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

template <typename Real, typename Use>
void BlockWriter::forEachSelected(const odb_FieldBulkData& block, Use use) const {
  const ValueKeys keys(block);
  const SelectedLabels selected = selected_ ? selectedOf(block) : SelectedLabels(nullptr, nullptr);
  if (selected_ && selected.empty()) return;
  sdk::forEachValueSlice<Real>(block, false, [&](const sdk::ValueSlice<Real>& slice) {
    const int* const labels = keys.labelsOf(slice);
    for (int i = 0; i < slice.n; ++i) {
      if (!selected_ || (labels && selected.has(labels[i]))) use(slice, i);
    }
  });
}

template <typename Real>
void BlockWriter::sendNumberSlices(const odb_FieldBulkData& block, const float* numbers) {
  const ValueKeys keys(block);
  forEachSelected<Real>(block, [&](const sdk::ValueSlice<Real>& slice, int i) {
    writer_.send<float>(keys.of(slice, i), numbers++, nullptr, 1);
  });
}

std::vector<int> BlockWriter::selectedValues(const odb_FieldBulkData& block) const {
  std::vector<int> places;
  const auto add = [&places](const auto& slice, int i) { places.push_back(slice.first + i); };
  if (block.precision() == odb_Enum::DOUBLE_PRECISION) {
    forEachSelected<double>(block, add);
  } else {
    forEachSelected<float>(block, add);
  }
  return places;
}

void BlockWriter::sendNumbersOf(const odb_FieldBulkData& block, int sectionPointField,
                                const float* numbers) {
  pendingField_ = sectionPointField;
  sendHeaders(block);
  if (block.precision() == odb_Enum::DOUBLE_PRECISION) {
    sendNumberSlices<double>(block, numbers);
  } else {
    sendNumberSlices<float>(block, numbers);
  }
}

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
