// SPDX-License-Identifier: BSD-3-Clause
// Sends bulk-data blocks of a field: the headers that a block needs, then those of its values that
// are wanted and selected. Shared by the extractors, which choose the blocks and the values
// (results/selected_field.h finds the field).
#pragma once

#include <odb_API.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "results/value_records.h"
#include "server/core/sdk_adapter.h"
#include "server/core/selection_set.h"

namespace odbs {

// Which labels name the values of a block, by its position.
class ValueKeys {
 public:
  explicit ValueKeys(const odb_FieldBulkData& block)
      : nodal_(block.position() == odb_Enum::NODAL),
        hasNodes_(block.position() == odb_Enum::ELEMENT_NODAL),
        hasFaces_(block.position() == odb_Enum::ELEMENT_FACE) {}

  // The labels of what values are at: nodes for nodal values, else elements. Null: none.
  template <typename Real>
  const int* labelsOf(const sdk::ValueSlice<Real>& slice) const {
    return nodal_ ? slice.nodeLabels : slice.elementLabels;
  }

  // The key of value `i` of a slice. Nodal values go under their node's label.
  template <typename Real>
  ValueKey of(const sdk::ValueSlice<Real>& slice, int i) const {
    const int* const labels = labelsOf(slice);
    ValueKey key;
    key.elementLabel = labels ? labels[i] : -1;
    key.integrationPoint = slice.integrationPoints ? slice.integrationPoints[i] : 0;
    key.thirdLabel = -1;
    if (hasNodes_ && slice.nodeLabels) key.thirdLabel = slice.nodeLabels[i];
    if (hasFaces_ && slice.faces) key.thirdLabel = static_cast<int>(slice.faces[i]);
    return key;
  }

  // The same keys for the values from `begin` to `end` of a slice; not for values at faces.
  template <typename Real>
  ValueRun<Real> runOf(const sdk::ValueSlice<Real>& slice, int width, int begin, int end) const {
    const auto from = [begin](const int* labels) { return labels ? labels + begin : nullptr; };
    ValueRun<Real> run;
    run.n = end - begin;
    run.elementLabels = from(labelsOf(slice));
    run.integrationPoints = from(slice.integrationPoints);
    run.thirdLabels = hasNodes_ ? from(slice.nodeLabels) : nullptr;
    run.components = slice.data + std::ptrdiff_t{begin} * width;
    run.width = width;
    return run;
  }
  bool needFaces() const { return hasFaces_; }
  bool areNodal() const { return nodal_; }

 private:
  bool nodal_;
  bool hasNodes_;
  bool hasFaces_;
};

// Calls use(block) for each block of the field, in order. What the blocks load meanwhile is dropped
// whenever it may have become much, and at the end: after each block would be a walk over all of
// them each time, and there are thousands where a model has thousands of instances.
template <typename Use>
void forEachBlock(const odb_FieldOutput& field, Use use) {
  constexpr std::int64_t kMuch = 4 << 20;  // numbers
  const odb_SequenceFieldBulkData& blocks = field.bulkDataBlocks();
  const int nBlocks = blocks.size();
  std::int64_t nNumbers = 0;
  for (int i = 0; i < nBlocks; ++i) {
    const odb_FieldBulkData& block = blocks[i];
    use(block);
    nNumbers += std::int64_t{block.length()} * block.width();
    if (nNumbers < kMuch && i + 1 < nBlocks) continue;
    sdk::clearBulkBlocks(blocks);
    nNumbers = 0;
  }
}

// The conjugate components of the values of a slice. A complex field may have blocks without any:
// theirs are zeros, since the parent halves every value of such a field.
template <typename Real>
class Conjugates {
 public:
  Conjugates(bool complexField, const sdk::ValueSlice<Real>& slice, int width)
      : first_(complexField ? slice.conjugateData : nullptr), step_(width) {
    if (!complexField || first_) return;
    zeros_.resize(static_cast<std::size_t>(width));
    first_ = zeros_.data();
    step_ = 0;
  }
  Conjugates(const Conjugates&) = delete;
  Conjugates& operator=(const Conjugates&) = delete;

  // Those of value `i`; null in a real field.
  const Real* of(int i) const { return first_ ? first_ + std::ptrdiff_t{i} * step_ : nullptr; }

 private:
  const Real* first_;
  int step_;
  std::vector<Real> zeros_;
};

// Keeps every value of a block.
struct KeepAll {};

// When a block's header records are sent.
enum class Headers { kAlways, kWithValues };

class BlockWriter {
 public:
  // `selected` is null when every value is wanted; it must outlive this object.
  BlockWriter(odb_Odb& odb, int outputFd, bool complex, bool sendOrientations,
              const SelectionSet* selected)
      : outputFd_(outputFd),
        severalInstances_(odb.rootAssembly().instances().size() > 1),
        complex_(complex),
        sendOrientations_(sendOrientations),
        selected_(selected),
        writer_(outputFd) {}

  // Sends the block's header records, then the values that are selected and for whose label, of
  // their element or their node, `keep` returns true (all of them for KeepAll).
  template <typename Keep>
  void send(const odb_FieldBulkData& block, int sectionPointField, Headers headers, Keep keep) {
    pendingField_ = sectionPointField;
    headersPending_ = true;
    if (headers == Headers::kAlways) sendHeaders(block);
    if (!selected_) return sendNumbers(block, keep);
    const SelectedLabels selected = selectedOf(block);
    if (selected.empty()) return;
    sendNumbers(block, [&](int label) {
      if constexpr (std::is_same_v<Keep, KeepAll>)
        return selected.has(label);
      else
        return selected.has(label) && keep(label);
    });
  }

  // True when values are restricted to a selection.
  bool isRestricted() const { return selected_ != nullptr; }

  // The places, counted from 0, of the block's selected values; of all of them without a selection.
  std::vector<int> selectedValues(const odb_FieldBulkData& block) const;

  // Sends the block's header records, then for each of its selected values the next of `numbers` in
  // place of its components.
  void sendNumbersOf(const odb_FieldBulkData& block, int sectionPointField, const float* numbers);

 private:
  void sendHeaders(const odb_FieldBulkData& block);
  template <typename Real>
  void sendNumberSlices(const odb_FieldBulkData& block, const float* numbers);
  // Calls use(slice, i) for the selected values of each slice; `Real` is the block's precision.
  template <typename Real, typename Use>
  void forEachSelected(const odb_FieldBulkData& block, Use use) const;
  SelectedLabels selectedOf(const odb_FieldBulkData& block) const;

  template <typename Keep>
  void sendNumbers(const odb_FieldBulkData& block, Keep keep) {
    if (block.precision() == odb_Enum::DOUBLE_PRECISION) {
      sendSlices<double>(block, keep);
    } else {
      sendSlices<float>(block, keep);
    }
  }

  template <typename Real, typename Keep>
  void sendSlices(const odb_FieldBulkData& block, Keep keep) {
    const ValueKeys keys(block);
    const int orientationWidth = block.orientationWidth();
    const bool directions = sendOrientations_ && orientationWidth >= 1 && orientationWidth <= 4;
    const bool plain = !directions && !complex_ && !keys.needFaces();
    sdk::forEachValueSlice<Real>(block, complex_, [&](const sdk::ValueSlice<Real>& slice) {
      forEachKept(block, keys.labelsOf(slice), slice.n, keep, [&](int begin, int end) {
        if (plain) {
          writer_.sendRun(keys.runOf(slice, block.width(), begin, end));
        } else {
          sendOneByOne(slice, keys, block.width(), begin, end, directions ? orientationWidth : 0);
        }
      });
    });
  }

  // Calls use(begin, end) for the runs of values that are kept, the headers being sent by then.
  template <typename Keep, typename Use>
  void forEachKept(const odb_FieldBulkData& block, const int* labels, int n, Keep keep, Use use) {
    if constexpr (std::is_same_v<Keep, KeepAll>) {
      if (headersPending_) sendHeaders(block);
      use(0, n);
    } else {
      if (!labels) return;
      for (int end = 0; end < n;) {
        int begin = end;
        while (begin < n && !keep(labels[begin])) ++begin;
        end = begin;
        while (end < n && keep(labels[end])) ++end;
        if (begin == end) return;
        if (headersPending_) sendHeaders(block);
        use(begin, end);
      }
    }
  }

  // `orientationWidth` is 0 when no directions are sent.
  template <typename Real>
  void sendOneByOne(const sdk::ValueSlice<Real>& slice, const ValueKeys& keys, int width, int begin,
                    int end, int orientationWidth) {
    const Conjugates<Real> conjugates(complex_, slice, width);
    for (int i = begin; i < end; ++i) {
      if (orientationWidth > 0 && slice.localCoordSystem) {
        sendDirections(slice.localCoordSystem, i, orientationWidth);
      }
      const std::ptrdiff_t at = std::ptrdiff_t{i} * width;
      writer_.send(keys.of(slice, i), slice.data + at, conjugates.of(i), width);
    }
  }

  template <typename Real>
  void sendDirections(const Real* orientations, int i, int width) {
    float quaternion[4] = {0, 0, 0, 0};
    const Real* const own = orientations + std::ptrdiff_t{i} * width;
    for (int k = 0; k < width; ++k) quaternion[k] = static_cast<float>(own[k]);
    sendLocalDirections(outputFd_, quaternion, width);
  }

  int outputFd_;
  bool severalInstances_;
  bool complex_;
  bool sendOrientations_;
  const SelectionSet* selected_;
  int pendingField_ = 0;  // section-point field of the block being sent
  bool headersPending_ = false;
  std::string instance_;                             // the last one announced
  int valueType_ = std::numeric_limits<int>::max();  // the last one sent
  ValueWriter writer_;
};

}  // namespace odbs
