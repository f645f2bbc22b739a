// SPDX-License-Identifier: BSD-3-Clause
// Finds matrix and modes, gathers the modes' stresses and sends what the kernel makes of them.
#include "results/modal_stress.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "results/block_writer.h"
#include "results/modal_kernel.h"
#include "results/selected_field.h"
#include "server/core/result_codes.h"
#include "server/core/sdk_adapter.h"

namespace odbs {

namespace {

constexpr const char* kStress = "S";
constexpr const char* kFrequency = "*FREQUENCY";
constexpr const char* kSlotLabels[6] = {"S11", "S22", "S33", "S12", "S13", "S23"};
constexpr int kNoSectionPoint = -1;

// All components of a block, in single precision.
template <typename Real>
void appendSlices(const odb_FieldBulkData& block, std::vector<float>& numbers) {
  const int width = block.width();
  sdk::forEachValueSlice<Real>(block, false, [&](const sdk::ValueSlice<Real>& slice) {
    const std::ptrdiff_t n = std::ptrdiff_t{slice.n} * width;
    if constexpr (std::is_same_v<Real, float>) {
      numbers.insert(numbers.end(), slice.data, slice.data + n);
    } else {
      for (std::ptrdiff_t i = 0; i < n; ++i) numbers.push_back(static_cast<float>(slice.data[i]));
    }
  });
}

void appendNumbers(const odb_FieldBulkData& block, std::vector<float>& numbers) {
  if (block.precision() == odb_Enum::DOUBLE_PRECISION) {
    appendSlices<double>(block, numbers);
  } else {
    appendSlices<float>(block, numbers);
  }
}

std::size_t nNumbersOf(const odb_FieldBulkData& block) {
  return static_cast<std::size_t>(block.length()) * static_cast<std::size_t>(block.width());
}

// By the block's own labels: the third component of a membrane is S12, that of a solid S33.
StressSlots slotsOf(const odb_FieldBulkData& block) {
  const odb_SequenceString& labels = block.componentLabels();
  StressSlots slots;
  for (int c = 0; c < std::min(labels.size(), block.width()); ++c) {
    for (int k = 0; k < 6; ++k) {
      if (labels[c] == kSlotLabels[k]) slots.of[k] = c;
    }
  }
  return slots;
}

// The modes: a frame of the frequency step and those after it.
struct Modes {
  odb_SequenceFrame frames;
  int first = -1;  // -1: there are none
};

Modes findModes(odb_Odb& odb, int stepNumber) {
  Modes modes;
  bool found = false;
  odb_StepRepositoryIT it(odb.steps());
  it.first();
  // Contract: the requested step itself is not examined; the last match before it counts.
  for (int number = 1; number < stepNumber && !it.isDone(); ++number, it.next()) {
    const odb_Step& step = it.currentValue();
    if (step.procedure() != kFrequency) continue;
    modes.frames = step.frames();
    found = true;
  }
  if (!found) return modes;
  for (int i = 0; i < modes.frames.size(); ++i) {
    const odb_Frame frame = modes.frames[i];
    if (frame.mode() == 0 || !frame.fieldOutputs().isMember(kStress)) continue;
    modes.first = i;
    return modes;
  }
  return modes;
}

class ModalStress {
 public:
  ModalStress(const FieldRequest& request, const odb_FieldOutput& matrix, const Modes& modes)
      : request_(request), modes_(modes), order_(matrix.dim()) {
    appendNumbers(matrix.bulkDataBlocks()[0], entries_);
    const auto order = static_cast<std::size_t>(order_);
    if (order_ < 1 || entries_.size() < order * (order + 1) / 2) {
      throw std::runtime_error("incomplete matrix of modes");
    }
    field_ = stressOf(0);
  }

  // Contract: entries are found by the block's index alone, whatever database they come from. One
  // of another size cannot be used and is gathered anew.
  void gather(std::vector<std::vector<float>>& cache) const {
    const odb_SequenceFieldBulkData& blocks = field_.bulkDataBlocks();
    const int nBlocks = blocks.size();
    if (cache.size() < static_cast<std::size_t>(nBlocks)) {
      cache.resize(static_cast<std::size_t>(nBlocks));
    }
    std::vector<int> missing;
    for (int i = 0; i < nBlocks; ++i) {
      const odb_FieldBulkData& block = blocks[i];
      if (!isSent(block)) continue;
      const std::vector<float>& entry = cache[static_cast<std::size_t>(i)];
      if (entry.empty() || entry.size() != nGathered(block)) missing.push_back(i);
    }
    if (missing.empty()) return;
    std::vector<std::vector<float>> gathered(missing.size());
    for (std::size_t k = 0; k < missing.size(); ++k) {
      cache[static_cast<std::size_t>(missing[k])] = {};  // freed first: both may not fit
      gathered[k].reserve(nGathered(blocks[missing[k]]));
    }
    for (int mode = 0; mode < order_; ++mode) gatherMode(mode, missing, gathered);
    for (std::size_t k = 0; k < missing.size(); ++k) {
      cache[static_cast<std::size_t>(missing[k])] = std::move(gathered[k]);
    }
  }

  void send(odb_Odb& odb, int outputFd, const std::vector<std::vector<float>>& cache) const {
    const bool roots = request_.selection->variableName == kModalRoots;
    const PackedMatrix matrix{entries_.data(), order_};
    BlockWriter writer(odb, outputFd, false, false, request_.selected);
    std::vector<double> squares;
    std::vector<float> values;
    std::vector<int> chosen;
    std::size_t index = 0;
    forEachBlock(field_, [&](const odb_FieldBulkData& block) {
      const std::vector<float>& gathered = cache[index++];
      if (!isSent(block)) return;
      ModeStresses stresses{gathered.data(), block.length(), block.width(), slotsOf(block)};
      if (writer.isRestricted()) {
        chosen = writer.selectedValues(block);
        stresses.chosen = &chosen;
      }
      const auto n = static_cast<std::size_t>(nWanted(stresses));
      squares.resize(n);
      values.resize(n);
      expectedMisesSquares(matrix, stresses, squares.data());
      for (std::size_t v = 0; v < n; ++v) {
        const double value = roots ? std::sqrt(std::abs(squares[v])) : squares[v];
        values[v] = static_cast<float>(value);
      }
      writer.sendNumbersOf(block, sectionPointField(request_, kNoSectionPoint), values.data());
    });
    flushOutput(outputFd);
  }

 private:
  static bool isSent(const odb_FieldBulkData& block) {
    return block.sectionPoint().number() == kNoSectionPoint;
  }

  std::size_t nGathered(const odb_FieldBulkData& block) const {
    return static_cast<std::size_t>(order_) * nNumbersOf(block);
  }

  odb_FieldOutput stressOf(int mode) const {
    const int at = modes_.first + mode;
    if (at >= modes_.frames.size()) throw std::out_of_range("fewer modes than the matrix has");
    const odb_Frame frame = modes_.frames[at];
    return atPosition(frame.fieldOutputs().get(kStress), request_.selection->position);
  }

  // Appends the mode's stresses of the `missing` blocks to what the modes before it gave.
  void gatherMode(int mode, const std::vector<int>& missing,
                  std::vector<std::vector<float>>& gathered) const {
    const odb_FieldOutput field = mode == 0 ? field_ : stressOf(mode);
    const odb_SequenceFieldBulkData& blocks = field.bulkDataBlocks();
    for (std::size_t k = 0; k < missing.size(); ++k) {
      const int i = missing[k];
      if (i >= blocks.size() || nNumbersOf(blocks[i]) != nNumbersOf(field_.bulkDataBlocks()[i])) {
        throw std::runtime_error("modes of different shape");
      }
      appendNumbers(blocks[i], gathered[k]);
    }
    sdk::clearBulkBlocks(blocks);
  }

  const FieldRequest& request_;
  const Modes& modes_;
  int order_;
  std::vector<float> entries_;  // of the matrix, packed
  odb_FieldOutput field_;       // stress of the first mode
};

}  // namespace

void extractModalStress(odb_Odb& odb, int outputFd, const FieldRequest& request,
                        const odb_FieldOutput& matrix) {
  if (matrix.bulkDataBlocks().size() == 0) return;
  const Modes modes = findModes(odb, request.selection->stepNumber);
  if (modes.first < 0) return;
  const ModalStress stress(request, matrix, modes);
  stress.gather(serverState.modeStress.blocks);
  stress.send(odb, outputFd, serverState.modeStress.blocks);
}

}  // namespace odbs
