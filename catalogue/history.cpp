// SPDX-License-Identifier: BSD-3-Clause
// The walk over steps, history regions and outputs, and its records.
#include "catalogue/history.h"

#include <algorithm>
#include <new>
#include <string>

#include "server/core/channel.h"
#include "server/core/record.h"
#include "server/core/result_codes.h"
#include "server/core/sdk_adapter.h"
#include "server/core/server_state.h"

namespace odbs {

namespace {

constexpr unsigned char kStepTag = '2';
constexpr unsigned char kRegionTag = '4';
constexpr unsigned char kOutputTag = '6';
constexpr unsigned char kValueTag = '8';

int positionCode(int position) {
  static constexpr int kCodes[] = {0, 1, 2, 3, 4, 5, 3, 3, 6, 7, 8, 9, 10, 11, 12, 13};
  const bool known = position >= 0 && position < static_cast<int>(std::size(kCodes));
  return known ? kCodes[position] : 0;
}

// A label of the history point, 0 where there is none. The library throws for an absent entity.
template <typename GetLabel>
int labelOrZero(GetLabel getLabel) {
  try {
    return std::max(0, static_cast<int>(sdk::guarded(getLabel)));
  } catch (const sdk::ApiError&) {
    return 0;
  }
}

struct PointNumbers {
  int first = 0, second = 0, third = 0;
};

PointNumbers pointNumbers(const odb_HistoryPoint& point) {
  const auto node = [&] { return point.node().label(); };
  const auto element = [&] { return point.element().label(); };
  PointNumbers numbers;
  switch (static_cast<int>(point.position())) {
    case position::kNodal:
      numbers.first = labelOrZero(node);
      break;
    case position::kElementNodal:
      numbers.first = labelOrZero(node);
      numbers.second = labelOrZero(element);
      break;
    case position::kIntegrationPoint:
    case position::kElementFace:
    case position::kWholeElement:
      numbers.first = labelOrZero(element);
      numbers.second = point.ipNumber();
      numbers.third = labelOrZero([&] { return point.sectionPoint().number(); });
      break;
    default:
      break;
  }
  return numbers;
}

// History step record, direct.
//   offset  size  content
//   0       1     '2'
//   1       4     step number, from 1
//   5       4     domain
//   9       8     total time, double
//   17      4+n   text: name
//   21+n    4+m   text: description
void sendStep(int outputFd, const odb_Step& step, int stepNumber) {
  beginRecord(kStepTag);
  putI32(stepNumber);
  putI32(static_cast<int>(step.domain()));
  putF64(static_cast<double>(step.totalTime()));
  putText(step.name().CStr(), 4);
  putText(step.description().CStr());
  sendDirect(outputFd);
}

// History region record, direct.
//   offset  size  content
//   0       1     '4'
//   1       4+n   text: region name
//   5+n     4+m   text: name of the point's set
//   9+n+m   4     position code
//   13+n+m  12    three point numbers
void sendRegion(int outputFd, const odb_HistoryRegion& region) {
  const odb_HistoryPoint point = sdk::historyPointOf(region);
  const PointNumbers numbers = pointNumbers(point);
  beginRecord(kRegionTag);
  putText(region.name().CStr(), 20);
  putText(point.region().name().CStr(), 16);
  putI32(positionCode(static_cast<int>(point.position())));
  putI32(numbers.first);
  putI32(numbers.second);
  putI32(numbers.third);
  sendDirect(outputFd);
}

// History output record, direct.
//   offset  size  content
//   0       1     '6'
//   1       4+n   text: name
//   5+n     4+m   text: description
//   9+n+m   4     data type
//   13+n+m  4     conjugate flag
void sendOutput(int outputFd, const odb_HistoryOutput& output, bool conjugate) {
  beginRecord(kOutputTag);
  putText(output.name().CStr(), 12);
  putText(output.description().CStr(), 8);
  putI32(static_cast<int>(output.type()));
  putI32(conjugate ? 1 : 0);
  sendDirect(outputFd);
}

// History value record, buffered.
//   offset  size  content
//   0       1     '8'
//   1       4     value, single
void sendValue(int outputFd, float value) {
  unsigned char* p = reserveRecord(outputFd, 5);
  p[0] = kValueTag;
  putF32(p + 1, value);
}

void sendValues(int outputFd, const odb_HistoryOutput& output) {
  const odb_SequenceSequenceFloat& data = output.data();
  const odb_SequenceSequenceFloat& conjugateData = output.conjugateData();
  sendOutput(outputFd, output, conjugateData.size() > 0);
  // Contract: what a failed command left in the buffer is dropped. Here it would pass for values.
  outputBuffer.fill = 0;
  for (int i = 0; i < data.size(); ++i) {
    const odb_SequenceFloat& point = data[i];
    for (int k = 0; k < point.size(); ++k) sendValue(outputFd, point[k]);
    if (i < conjugateData.size() && conjugateData[i].size() > 1) {
      sendValue(outputFd, conjugateData[i][1]);
    }
  }
  flushOutput(outputFd);
}

void sendRegionOverview(int outputFd, const odb_HistoryRegion& region, int domain) {
  sendRegion(outputFd, region);
  odb_HistoryOutputRepositoryIT it(region.historyOutputs());
  for (it.first(); !it.isDone(); it.next()) {
    const odb_HistoryOutput& output = it.currentValue();
    // Contract: outside the domains 1 and 2 the flag is 0 without a look at the data.
    const bool conjugate = (domain == 1 || domain == 2) && output.conjugateData().size() > 0;
    sendOutput(outputFd, output, conjugate);
  }
}

void sendRegionValues(int outputFd, const odb_HistoryRegion& region) {
  sendRegion(outputFd, region);
  odb_HistoryOutputRepositoryIT it(region.historyOutputs());
  for (it.first(); !it.isDone(); it.next()) sendValues(outputFd, it.currentValue());
}

// Sends the region of that name, if the step has it. What fails on the way ends this region only.
void sendNamedRegion(int outputFd, const odb_Step& step, const std::string& name) {
  try {
    sdk::guarded([&] {
      const odb_HistoryRegionRepository& regions = step.historyRegions();
      if (!regions.isMember(name.c_str())) return;
      sendRegionValues(outputFd, regions.constGet(name.c_str()));
    });
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception&) {
    // Contract: the other names are served all the same.
  }
}

}  // namespace

void exportHistoryOverview(odb_Odb& odb, int outputFd) {
  odb_StepRepositoryIT steps(odb.steps());
  int stepNumber = 0;
  for (steps.first(); !steps.isDone(); steps.next()) {
    const odb_Step& step = steps.currentValue();
    sendStep(outputFd, step, ++stepNumber);
    odb_HistoryRegionRepositoryIT regions(step.historyRegions());
    for (regions.first(); !regions.isDone(); regions.next()) {
      sendRegionOverview(outputFd, regions.currentValue(), static_cast<int>(step.domain()));
    }
  }
  serverState.historyNames = {};
}

void exportHistoryValues(odb_Odb& odb, int outputFd, int stepNumber) {
  odb_StepRepositoryIT steps(odb.steps());
  int number = 0;
  for (steps.first(); !steps.isDone(); steps.next()) {
    ++number;
    if (stepNumber != 0 && stepNumber != number) continue;
    const odb_Step& step = steps.currentValue();
    sendStep(outputFd, step, number);
    for (const std::string& name : serverState.historyNames.names) {
      sendNamedRegion(outputFd, step, name);
    }
  }
  serverState.historyNames = {};
}

}  // namespace odbs
