// SPDX-License-Identifier: BSD-3-Clause
// Frames by step and time.
#include "importer/write/result_frames.h"

#include <odb_embedded.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "base/text.h"

namespace odbs::importer {

namespace {

// Times and frequencies are printed with seven digits.
bool isSame(double a, double b) {
  return std::fabs(a - b) <= 2e-6 * std::max(std::fabs(a), std::fabs(b));
}

std::string numberText(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.6g", value);
  return text;
}

}  // namespace

ResultFrames::ResultFrames(const Deck& deck, odb_Odb& odb) {
  double time = 0;
  for (const Step& step : deck.steps) {
    Slot slot;
    slot.step = odb.steps()[step.name.c_str()];
    slot.domain = step.domain;
    slot.buckling = startsWith(step.procedure, "*BUCKLE");
    slot.start = time;
    slot.ownTime = step.ownTime;
    slot.sectionForces = step.sectionForces;
    slot.lastDiameter = step.lastDiameter;
    const bool timed = step.domain == Domain::time || step.domain == Domain::arcLength;
    if (timed && !step.ownTime) time += step.timePeriod;
    slot.end = time;
    steps_.push_back(std::move(slot));
  }
}

odb_Frame ResultFrames::add(const FrdFrame& frame) {
  const FrdParameters& p = frame.parameters;
  Slot& slot = steps_[static_cast<std::size_t>(stepNumber(frame) - 1)];
  const double value = frame.value;
  if (slot.domain == Domain::modal) {
    const int mode = p.mode > 0 ? p.mode : static_cast<int>(slot.frames.size()) + 1;
    return make(slot, mode, value, p);
  }
  const bool timed = frame.analysis != FrdAnalysis::frequency && slot.domain != Domain::frequency;
  return make(slot, timed ? stepTime(slot, value) : value, value, p);
}

// Total time counted from the step's beginning. Negative time was set anew by the deck, to run up
// to zero in the step; other time before the beginning is left as it is.
double ResultFrames::stepTime(Slot& slot, double total) {
  if (slot.ownTime) return total;
  slot.endsAtZero |= total < 0;
  if (slot.endsAtZero) return std::max(total + slot.end - slot.start, 0.);
  return total >= slot.start ? total - slot.start : total;
}

odb_Frame ResultFrames::make(Slot& slot, double x, double value, const FrdParameters& p) {
  ++nFrames_;
  slot.ascending &= slot.values.empty() || x > slot.values.back();
  slot.values.push_back(x);
  const bool cyclic = p.hasNodalDiameter && p.nodalDiameter >= 0;
  slot.diameters.push_back(cyclic ? p.nodalDiameter : -1);
  if (slot.domain != Domain::modal) {
    slot.lastIncrement = std::max(p.increment, slot.lastIncrement + 1);
    const char* const unit = slot.domain == Domain::frequency ? ", frequency " : ", step time ";
    const std::string text =
        "Increment " + std::to_string(slot.lastIncrement) + unit + numberText(x);
    slot.frames.push_back(slot.step.Frame(slot.lastIncrement, static_cast<float>(x), text.c_str()));
    return slot.frames.back();
  }
  const int mode = static_cast<int>(x);
  std::string text = "Mode " + std::to_string(mode) +
                     (slot.buckling ? ", factor " : ", frequency ") + numberText(value);
  if (cyclic) text += ", nodal diameter " + std::to_string(p.nodalDiameter);
  odb_Frame frame = slot.step.Frame(mode, static_cast<float>(value), text.c_str());
  odb_embedded::FrameNumbers numbers;
  numbers.mode = mode;
  numbers.cyclicModeNumber = cyclic ? p.nodalDiameter : 0;
  numbers.frequency = slot.buckling ? 0 : static_cast<float>(value);
  odb_embedded::setFrameNumbers(frame, numbers);
  slot.frames.push_back(frame);
  return frame;
}

// To the first step from the current one on that fits and that no heading has entered before.
template <class Fits>
bool ResultFrames::enter(Fits fits) {
  for (int i = current_; i < nSteps(); ++i) {
    Slot& slot = steps_[static_cast<std::size_t>(i)];
    if (slot.entered || !fits(slot)) continue;
    slot.entered = true;
    current_ = i;
    return true;
  }
  return false;
}

void ResultFrames::enterModes(bool buckling, int nodalDiameter) {
  if (nSteps() == 0) return;
  const Slot& now = steps_[static_cast<std::size_t>(current_)];
  const bool goesOn = now.entered && now.diameter >= 0 && nodalDiameter > now.diameter &&
                      nodalDiameter <= now.lastDiameter;
  if (!goesOn) {
    enter([&](const Slot& slot) {
      return slot.domain == Domain::modal && slot.buckling == buckling;
    });
  }
  steps_[static_cast<std::size_t>(current_)].diameter = nodalDiameter;
}

void ResultFrames::enterHarmonic() {
  const bool inside =
      nSteps() > 0 && steps_[static_cast<std::size_t>(current_)].domain == Domain::frequency;
  if (!inside) enter([](const Slot& slot) { return slot.domain == Domain::frequency; });
}

void ResultFrames::announceMode(int mode, double value, int nodalDiameter) {
  steps_[static_cast<std::size_t>(current_)].modes[{nodalDiameter, mode}] = value;
}

ResultFrames::Moment ResultFrames::at(double time, int mode) {
  Moment moment;
  moment.time = moment.x = time;
  for (int i = current_; i < nSteps(); ++i) {
    Slot& slot = steps_[static_cast<std::size_t>(i)];
    if (slot.domain == Domain::modal) {
      if (mode == 0 || i != current_) continue;
      moment.x = mode;
      moment.nodalDiameter = slot.diameter;
    } else if (slot.domain == Domain::frequency) {
      // Before it, the steps that count time have their turn.
      if (i != current_ && mode == 0 && time <= slot.start) continue;
    } else {
      if (!slot.ownTime && time > slot.end && !isSame(time, slot.end)) continue;
      moment.x = stepTime(slot, time);
    }
    moment.step = current_ = i;
    return moment;
  }
  return moment;
}

std::optional<odb_Frame> ResultFrames::frameOf(const Moment& moment) {
  if (moment.step < 0) return std::nullopt;
  Slot& slot = steps_[static_cast<std::size_t>(moment.step)];
  // Result files have six digits of small total times, print files seven.
  double best = 1e-5 * std::max(std::fabs(moment.time), std::fabs(moment.x));
  std::optional<odb_Frame> nearest;
  // In a step of many frames the neighbours are enough, as long as values ascend.
  std::size_t first = 0, last = slot.values.size();
  if (slot.ascending) {
    const auto above = std::lower_bound(slot.values.begin(), slot.values.end(), moment.x);
    const auto at = static_cast<std::size_t>(above - slot.values.begin());
    first = at - std::min<std::size_t>(at, 1);
    last = std::min(at + 1, last);
  }
  for (std::size_t i = last; i-- > first;) {
    if (moment.nodalDiameter >= 0 && slot.diameters[i] != moment.nodalDiameter) continue;
    const double distance = std::fabs(slot.values[i] - moment.x);
    if (distance > best || (nearest && distance == best)) continue;
    best = distance;
    nearest = slot.frames[i];
  }
  if (nearest) return nearest;
  FrdParameters parameters;
  parameters.hasNodalDiameter = moment.nodalDiameter >= 0;
  parameters.nodalDiameter = moment.nodalDiameter;
  const bool later = slot.values.empty() || slot.diameters.back() < moment.nodalDiameter ||
                     moment.x >= slot.values.back();
  if (!later) return std::nullopt;
  if (slot.domain != Domain::modal) return make(slot, moment.x, moment.x, {});
  const auto value = slot.modes.find({moment.nodalDiameter, static_cast<int>(moment.x)});
  return make(slot, moment.x, value == slot.modes.end() ? 0 : value->second, parameters);
}

}  // namespace odbs::importer
