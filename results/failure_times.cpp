// SPDX-License-Identifier: BSD-3-Clause
// Recorded failures, the walk over a step's status fields, and the cache of what they tell.
#include "results/failure_times.h"

#include <algorithm>
#include <map>

#include "registry/database_caches.h"
#include "results/block_writer.h"
#include "results/selected_field.h"
#include "server/core/label_set.h"
#include "server/core/sdk_adapter.h"

namespace odbs {

namespace {

DatabaseCache<std::map<int, std::vector<FailedElement>>> failures;

template <typename Real>
void appendFailed(const odb_FieldBulkData& block, std::vector<int>& failed) {
  const int width = block.width();
  sdk::forEachValueSlice<Real>(block, false, [&](const sdk::ValueSlice<Real>& slice) {
    if (!slice.elementLabels) return;  // a status at nodes says nothing about elements
    for (int i = 0; i < slice.n; ++i) {
      const int label = slice.elementLabels[i];
      if (slice.data[std::ptrdiff_t{i} * width] != 0) continue;
      if (failed.empty() || failed.back() != label) failed.push_back(label);
    }
  });
}

std::vector<FailedElement> findFailed(const odb_Step& step) {
  std::vector<FailedElement> found;
  std::map<std::string, LabelSet> seen;
  const double start = step.totalTime();
  for (const sdk::RecordedFailure& failure : sdk::recordedFailures(step)) {
    if (!seen[failure.instance].add(failure.label)) continue;
    found.push_back({failure.instance, failure.label, start + failure.time});
  }
  const odb_SequenceFrame& frames = step.frames();
  const int nFrames = frames.size();
  for (int f = 0; f < nFrames; ++f) {
    const odb_Frame frame = frames[f];
    odb_FieldOutputRepository& fields = frame.fieldOutputs();
    if (!fields.isMember("STATUS")) continue;
    const double time = start + static_cast<double>(frame.frameValue());
    forEachBlock(fields.get("STATUS"), [&](const odb_FieldBulkData& block) {
      const std::string instance = block.instance().name().CStr();
      LabelSet& known = seen[instance];
      for (const int label : failedLabels(block)) {
        if (known.add(label)) found.push_back({instance, label, time});
      }
    });
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const auto& a, const auto& b) { return a.time < b.time; });
  return found;
}

}  // namespace

std::vector<int> failedLabels(const odb_FieldBulkData& block) {
  std::vector<int> failed;
  if (block.width() < 1) return failed;
  if (block.precision() == odb_Enum::DOUBLE_PRECISION) {
    appendFailed<double>(block, failed);
  } else {
    appendFailed<float>(block, failed);
  }
  return failed;
}

const std::vector<FailedElement>& failedElementsOf(odb_Odb& odb, int stepIndex) {
  auto& bySteps = failures.of(odb);
  const auto at = bySteps.find(stepIndex);
  if (at != bySteps.end()) return at->second;
  return bySteps.emplace(stepIndex, findFailed(stepAt(odb, stepIndex))).first->second;
}

}  // namespace odbs
