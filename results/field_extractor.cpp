// SPDX-License-Identifier: BSD-3-Clause
// The walk over a field's bulk-data blocks.
#include "results/field_extractor.h"

#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string>

#include "results/section_point_choice.h"
#include "results/value_records.h"
#include "server/record.h"
#include "server/sdk_adapter.h"
#include "server/sdk_value_slices.h"

namespace odbs {

namespace {

// Contract: this position means the field as it is stored, without a subset.
constexpr int kPositionAsStored = 3;
constexpr int kNoSectionPoint = -1;

// Which labels name the values of a block, by its position.
class ValueKeys {
 public:
  explicit ValueKeys(const odb_FieldBulkData& block)
      : nodal_(block.position() == odb_Enum::NODAL),
        hasNodes_(block.position() == odb_Enum::ELEMENT_NODAL),
        hasFaces_(block.position() == odb_Enum::ELEMENT_FACE) {}

  // The key of value `i` of a slice. Nodal values go under their node's label.
  template <typename Real>
  ValueKey of(const sdk::ValueSlice<Real>& slice, int i) const {
    const int* const labels = nodal_ ? slice.nodeLabels : slice.elementLabels;
    ValueKey key;
    key.elementLabel = labels ? labels[i] : -1;
    key.integrationPoint = slice.integrationPoints ? slice.integrationPoints[i] : 0;
    key.thirdLabel = -1;
    if (hasNodes_ && slice.nodeLabels) key.thirdLabel = slice.nodeLabels[i];
    if (hasFaces_ && slice.faces) key.thirdLabel = static_cast<int>(slice.faces[i]);
    return key;
  }

  // The same keys for a whole slice; not for values at faces.
  template <typename Real>
  ValueRun<Real> runOf(const sdk::ValueSlice<Real>& slice, int width) const {
    ValueRun<Real> run;
    run.n = slice.n;
    run.elementLabels = nodal_ ? slice.nodeLabels : slice.elementLabels;
    run.integrationPoints = slice.integrationPoints;
    run.thirdLabels = hasNodes_ ? slice.nodeLabels : nullptr;
    run.components = slice.data;
    run.width = width;
    return run;
  }
  bool needFaces() const { return hasFaces_; }

 private:
  bool nodal_;
  bool hasNodes_;
  bool hasFaces_;
};

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

class FieldWalk {
 public:
  FieldWalk(odb_Odb& odb, int outputFd, const FieldRequest& request)
      : outputFd_(outputFd),
        request_(request),
        severalInstances_(odb.rootAssembly().instances().size() > 1),
        choice_(request.extraction == Extraction::kTop),
        writer_(outputFd) {}

  void run(const odb_FieldOutput& field) {
    complex_ = field.isComplex();
    const odb_SequenceFieldBulkData& blocks = field.bulkDataBlocks();
    const int nBlocks = blocks.size();
    for (int i = 0; i < nBlocks; ++i) {
      const odb_FieldBulkData& block = blocks[i];
      if (!isWanted(block.sectionPoint().number())) continue;
      sendBlock(block);
      sdk::clearBulkBlocks(blocks);
    }
    flushOutput(outputFd_);
  }

 private:
  bool keepsOnePoint() const {
    return request_.extraction == Extraction::kTop || request_.extraction == Extraction::kBottom;
  }

  bool isWanted(int sectionPoint) const {
    if (request_.extraction != Extraction::kPicked) return true;
    return sectionPoint == kNoSectionPoint || sectionPoint == request_.pick1 ||
           sectionPoint == request_.pick2;
  }

  void sendBlock(const odb_FieldBulkData& block) {
    if (severalInstances_) announceInstance(block.instance().name().CStr());
    const int flag = valueTypeFlag(static_cast<int>(block.type()), block.width());
    if (flag != valueType_) sendValueType(outputFd_, flag);
    valueType_ = flag;
    const int number = block.sectionPoint().number();
    sendBlockHeader(outputFd_, block.baseElementType().CStr(), sectionPointField(number), number);
    if (block.precision() == odb_Enum::DOUBLE_PRECISION) {
      sendValues<double>(block);
    } else {
      sendValues<float>(block);
    }
  }

  void announceInstance(const char* name) {
    if (instance_ == name) return;
    instance_ = name;
    sendNameRecord(outputFd_, instance_);
  }

  // Contract: 1 and 2 stand for the picks also when both are -1.
  int sectionPointField(int number) const {
    if (request_.extraction == Extraction::kEveryPoint) return number;
    if (number == request_.pick1) return 1;
    if (number == request_.pick2) return 2;
    return number;
  }

  template <typename Real>
  void sendValues(const odb_FieldBulkData& block) {
    const ValueKeys keys(block);
    const int width = block.width();
    const int orientationWidth = block.orientationWidth();
    const bool directions =
        request_.sendOrientations && orientationWidth >= 1 && orientationWidth <= 4;
    const int number = block.sectionPoint().number();
    const bool choose = keepsOnePoint() && number != kNoSectionPoint;
    const SectionPointChoice::Table* const chosen =
        choose ? &choice_.of(block.instance()) : nullptr;
    const bool plain = !directions && !chosen && !complex_ && !keys.needFaces();
    sdk::forEachValueSlice<Real>(block, complex_, [&](const sdk::ValueSlice<Real>& slice) {
      if (plain) {
        writer_.sendRun(keys.runOf(slice, width));
        return;
      }
      const Real* const conjugate = complex_ ? slice.conjugateData : nullptr;
      for (int i = 0; i < slice.n; ++i) {
        const ValueKey key = keys.of(slice, i);
        if (chosen && chosen->pointOf(key.elementLabel) != number) continue;
        if (directions && slice.localCoordSystem) {
          sendDirections(slice.localCoordSystem, i, orientationWidth);
        }
        const std::ptrdiff_t at = std::ptrdiff_t{i} * width;
        writer_.send(key, slice.data + at, conjugate ? conjugate + at : nullptr, width);
      }
    });
  }

  template <typename Real>
  void sendDirections(const Real* orientations, int i, int width) {
    float quaternion[4] = {0, 0, 0, 0};
    const Real* const own = orientations + std::ptrdiff_t{i} * width;
    for (int k = 0; k < width; ++k) quaternion[k] = static_cast<float>(own[k]);
    sendLocalDirections(outputFd_, quaternion, width);
  }

  int outputFd_;
  const FieldRequest& request_;
  bool severalInstances_;
  bool complex_ = false;
  std::string instance_;                             // the last one announced
  int valueType_ = std::numeric_limits<int>::max();  // the last one sent
  SectionPointChoice choice_;
  ValueWriter writer_;
};

}  // namespace

void extractField(odb_Odb& odb, int outputFd, const FieldRequest& request) {
  const Selection& selection = *request.selection;
  sendResultTitle(outputFd, odb.analysisTitle().CStr(),
                  static_cast<int>(odb.jobData().analysisCode()) - 1);
  if (selection.stepNumber < 1) return;
  const odb_Frame frame = frameAt(odb, selection.stepNumber - 1, selection.frameIndex);
  odb_FieldOutputRepository& fields = frame.fieldOutputs();
  if (!fields.isMember(selection.variableName.c_str())) return;
  odb_FieldOutput field = fields.get(selection.variableName.c_str());
  const bool asStored = request.extraction == Extraction::kAsStored;
  if (!asStored && selection.position != kPositionAsStored) {
    field =
        field.getSubset(static_cast<odb_Enum::odb_ResultPositionEnum>(selection.position), true);
  }
  FieldWalk(odb, outputFd, request).run(field);
}

}  // namespace odbs
