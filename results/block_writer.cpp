// SPDX-License-Identifier: BSD-3-Clause
// Headers of blocks, and values that a caller computed.
#include "results/block_writer.h"

#include "server/core/record.h"
#include "server/core/result_codes.h"

namespace odbs {

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

}  // namespace odbs
