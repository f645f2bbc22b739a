// SPDX-License-Identifier: BSD-3-Clause
// Steps, frames, load cases: getters, look-up by value, adding.
#include "odb/src/model/database.h"
#include "odb/src/model/frame_match.h"
#include "odb/src/storage/errors.h"

#include <cmath>
#include <limits>

namespace odbs::engine {

int matchFrame(const std::vector<double>& values, double wanted, odb_Enum::odb_MatchEnum match) {
  // Values were narrowed to single precision when they were stored.
  const auto same = [wanted](double v) {
    return static_cast<float>(v) == static_cast<float>(wanted);
  };
  int best = -1;
  double bestDistance = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < values.size(); ++i) {
    const bool exact = same(values[i]);
    if (match == odb_Enum::EXACT && !exact) continue;
    if (match == odb_Enum::BEFORE && (exact || values[i] > wanted)) continue;
    if (match == odb_Enum::AFTER && (exact || values[i] < wanted)) continue;
    const double distance = std::fabs(values[i] - wanted);
    if (distance < bestDistance) {
      best = static_cast<int>(i);
      bestDistance = distance;
    }
  }
  return best;
}

odb_LoadCase loadCaseHandle(StepData& step, int index) {
  if (index < 0 || static_cast<std::size_t>(index) >= step.loadCases.size()) return odb_LoadCase();
  return odb_LoadCase(&step.loadCases[static_cast<std::size_t>(index)]);
}

void renumberSteps(Steps& steps) {
  const RepositoryItems<odb_Step>& items = steps.handles.engineItems();
  odb_String previous = "Initial";
  for (int i = 0; i < items.size(); ++i) {
    StepData& step = *items.at(i).value.engineData();
    step.number = i + 1;
    step.previousName = previous;
    previous = step.name;
  }
}

static FrameData& addFrame(StepData& step) {
  step.database->needWritable();
  loadFrames(step);
  FrameData& frame = step.frames.emplace_back();
  frame.step = &step;
  frame.index = static_cast<int>(step.frames.size()) - 1;
  frame.id = frame.index;
  step.frameHandles.append(odb_Frame(&frame));
  step.database->touch();
  return frame;
}

static int placeOfLoadCase(const StepData& step, const odb_LoadCase& loadCase) {
  for (std::size_t i = 0; i < step.loadCases.size(); ++i) {
    if (&step.loadCases[i] == loadCase.engineData()) return static_cast<int>(i);
  }
  return -1;
}

}  // namespace odbs::engine

using namespace odbs::engine;

// ---- Load cases ----

const odb_String& odb_LoadCase::name() const {
  static const odb_String none;
  return data_ ? data_->name : none;
}

// ---- Frames ----

const odb_String& odb_Frame::description() const {
  return need().description;
}
odb_Enum::odb_DomainEnum odb_Frame::domain() const {
  return need().step->domain;
}
int odb_Frame::incrementNumber() const {
  return need().increment;
}
int odb_Frame::mode() const {
  return need().mode;
}
int odb_Frame::cyclicModeNumber() const {
  return need().cyclicMode;
}
int odb_Frame::frameIndex() const {
  return need().index;
}
int odb_Frame::frameId() const {
  return need().id;
}
float odb_Frame::frameValue() const {
  return need().value;
}
float odb_Frame::frequency() const {
  return need().frequency;
}

const odb_LoadCase& odb_Frame::loadCase() const {
  static const odb_LoadCase none;
  const FrameData& frame = need();
  if (frame.loadCase < 0) return none;
  return frame.step
      ->loadCaseHandles[frame.step->loadCases[static_cast<std::size_t>(frame.loadCase)].name];
}

odb_Frame odb_Frame::associatedFrame() const {
  const FrameData& frame = need();
  if (frame.associated < 0) failAbsent("the frame has no associated frame");
  return frame.step->frameHandles[frame.associated];
}

void odb_SequenceFrame::release(int i) const {
  releaseFields(*(*this)[i].engineData());
}

void odb_SequenceFrame::release() const {
  for (const odb_Frame& frame : engineItems()) releaseFields(*frame.engineData());
}

// ---- Steps ----

void odb_StepRepository::release() const {
  for (int i = 0; i < size(); ++i) (*this)[i].engineData()->frameHandles.release();
}
void odb_StepRepository::release(const odb_String& key) const {
  (*this)[key].engineData()->frameHandles.release();
}

const odb_String& odb_Step::name() const {
  return need().name;
}
const odb_String& odb_Step::description() const {
  return need().description;
}
const odb_String& odb_Step::procedure() const {
  return need().procedure;
}
const odb_String& odb_Step::previousStepName() const {
  return need().previousName;
}
odb_Enum::odb_DomainEnum odb_Step::domain() const {
  return need().domain;
}
float odb_Step::timePeriod() const {
  return static_cast<float>(need().timePeriod);
}
float odb_Step::totalTime() const {
  return static_cast<float>(need().totalTime);
}
int odb_Step::number() const {
  return need().number;
}
bool odb_Step::nlgeom() const {
  return need().nlgeom;
}
double odb_Step::mass() const {
  return need().mass;
}
double odb_Step::acousticMass() const {
  return need().acousticMass;
}
const odb_SequenceDouble& odb_Step::massCenter() const {
  return need().massCenter;
}
const odb_SequenceDouble& odb_Step::inertiaAboutCenter() const {
  return need().inertiaAboutCenter;
}
const odb_SequenceDouble& odb_Step::inertiaAboutOrigin() const {
  return need().inertiaAboutOrigin;
}
const odb_SequenceDouble& odb_Step::acousticMassCenter() const {
  return need().acousticMassCenter;
}
const odb_SequenceNodalDofs& odb_Step::eliminatedNodalDofs() const {
  return need().eliminatedDofs;
}

odb_SequenceFrame& odb_Step::frames() const {
  loadFrames(need());
  return need().frameHandles;
}
odb_Frame& odb_Step::frames(int i) const {
  return frames()[i];
}
odb_LoadCaseRepository& odb_Step::loadCases() const {
  return need().loadCaseHandles;
}

odb_Frame odb_Step::getFrame(double frameValue, odb_Enum::odb_MatchEnum match) const {
  StepData& step = need();
  loadFrames(step);
  std::vector<double> values;
  for (const FrameData& frame : step.frames) values.push_back(static_cast<double>(frame.value));
  const int i = matchFrame(values, frameValue, match);
  if (i < 0) failAbsent(std::string("step ") + step.name.CStr() + " has no such frame");
  return step.frameHandles[i];
}

odb_Frame odb_Step::getFrame(const odb_LoadCase& loadCase) const {
  StepData& step = need();
  loadFrames(step);
  const int wanted = placeOfLoadCase(step, loadCase);
  for (const FrameData& frame : step.frames) {
    if (wanted >= 0 && frame.loadCase == wanted) return step.frameHandles[frame.index];
  }
  failAbsent(std::string("step ") + step.name.CStr() + " has no frame of that load case");
}

odb_Frame odb_Step::getFrame(const odb_LoadCase& loadCase, double frameValue,
                             odb_Enum::odb_MatchEnum match) const {
  StepData& step = need();
  loadFrames(step);
  const int wanted = placeOfLoadCase(step, loadCase);
  std::vector<double> values;
  std::vector<int> places;
  for (const FrameData& frame : step.frames) {
    if (wanted < 0 || frame.loadCase != wanted) continue;
    values.push_back(static_cast<double>(frame.value));
    places.push_back(frame.index);
  }
  const int i = matchFrame(values, frameValue, match);
  if (i < 0) failAbsent(std::string("step ") + step.name.CStr() + " has no such frame");
  return step.frameHandles[places[static_cast<std::size_t>(i)]];
}

odb_Frame odb_Step::Frame(int incrementNumber, float frameValue, const odb_String& description) {
  StepData& step = need();
  FrameData& frame = addFrame(step);
  frame.increment = incrementNumber;
  frame.value = frameValue;
  frame.description = description;
  const bool modal = step.domain == odb_Enum::MODAL;
  if (modal) frame.mode = incrementNumber;
  if (modal || step.domain == odb_Enum::FREQUENCY) frame.frequency = frameValue;
  return odb_Frame(&frame);
}

odb_Frame odb_Step::Frame(const odb_LoadCase& loadCase, const odb_String& description,
                          float frequency) {
  StepData& step = need();
  const int place = placeOfLoadCase(step, loadCase);
  if (place < 0) failUsage(std::string("step ") + step.name.CStr() + " has no such load case");
  FrameData& frame = addFrame(step);
  frame.loadCase = place;
  frame.description = description;
  frame.frequency = frequency;
  frame.value = frequency;
  return odb_Frame(&frame);
}

odb_LoadCase& odb_Step::LoadCase(const odb_String& name) {
  StepData& step = need();
  step.database->needWritable();
  if (name.empty() || step.loadCaseHandles.isMember(name)) {
    failUsage(std::string("load case \"") + name.CStr() + "\" has no name or exists already");
  }
  LoadCaseData& loadCase = step.loadCases.emplace_back();
  loadCase.name = name;
  step.database->touch();
  return step.loadCaseHandles.engineItems().add(name, odb_LoadCase(&loadCase));
}
