// SPDX-License-Identifier: BSD-3-Clause
// Modes out of the database, matrices into it.
#include "samples/modal_covariance/random_response.h"

#include <cstdio>
#include <stdexcept>

namespace odbs {

namespace {

constexpr const char* kFrequency = "*FREQUENCY";
constexpr const char* kStress = "S";

[[noreturn]] void fail(const std::string& reason) {
  throw std::runtime_error(reason);
}

std::string modeText(int number) {
  return "mode " + std::to_string(number);
}

// An instance that field values can refer to; which one does not matter for the whole model.
const odb_Instance& anyInstance(odb_Odb& odb) {
  odb_InstanceRepositoryIT it(odb.rootAssembly().instances());
  it.first();
  if (it.isDone()) fail("the database has no instance");
  return it.currentValue();
}

void addMatrix(odb_Frame& frame, const char* name, const odb_Instance& instance, int order,
               const odb_SequenceSequenceFloat& packed) {
  frame.SymmetricMatrixOutput(name, "Covariance of modal coordinates", order)
      .addData(odb_Enum::WHOLE_MODEL, instance, odb_SequenceInt(), packed);
}

}  // namespace

FrequencyModes frequencyModes(const odb_Odb& odb, int nMost) {
  const odb_StepList steps = odb.steps().stepList();
  int at = steps.size() - 1;
  while (at >= 0 && steps.Get(at).procedure() != kFrequency) --at;
  if (at < 0) fail("no step has the procedure *FREQUENCY");
  const odb_Step& step = steps.Get(at);
  FrequencyModes modes;
  modes.stepName = step.name().CStr();
  const odb_SequenceFrame& frames = step.frames();
  for (int i = 0; i < frames.size(); ++i) {
    const odb_Frame frame = frames[i];
    const bool stressed = frame.mode() != 0 && frame.fieldOutputs().isMember(kStress);
    if (!stressed && modes.numbers.empty()) continue;  // a base state comes first
    if (nMost > 0 && modes.numbers.size() == static_cast<std::size_t>(nMost)) break;
    if (!stressed)
      fail("frame " + std::to_string(i) + " of step " + modes.stepName +
           " is no mode with stresses S");
    if (frame.fieldOutputs()[kStress].isComplex()) {
      fail(modeText(frame.mode()) + " of step " + modes.stepName +
           " is complex (cyclic symmetry, damping): its coordinate is not that of one oscillator");
    }
    if (!(frame.frequency() > 0)) {
      fail(modeText(frame.mode()) + " of step " + modes.stepName +
           " has no frequency above 0: a rigid body's coordinate has no stationary variance");
    }
    modes.numbers.push_back(frame.mode());
    modes.frequencies.push_back(static_cast<double>(frame.frequency()));
  }
  if (modes.numbers.empty()) fail("no mode of step " + modes.stepName + " has stresses S");
  if (modes.numbers.size() < static_cast<std::size_t>(nMost)) {
    fail("step " + modes.stepName + " has " + std::to_string(modes.numbers.size()) +
         " modes with stresses S, not " + std::to_string(nMost));
  }
  return modes;
}

std::vector<double> participationFactors(const odb_Odb& odb, const FrequencyModes& modes,
                                         int direction) {
  const std::string output = "PF" + std::to_string(direction);
  const odb_Step& step = odb.steps()[modes.stepName.c_str()];
  odb_HistoryRegionRepositoryIT it(step.historyRegions());
  for (it.first(); !it.isDone(); it.next()) {
    const odb_HistoryRegion& region = it.currentValue();
    if (!region.historyOutputs().isMember(output.c_str())) continue;
    const odb_SequenceSequenceFloat& rows = region.historyOutputs(output.c_str()).data();
    std::vector<double> factors;
    for (const int mode : modes.numbers) {
      int row = 0;
      while (row < rows.size() && rows[row][0] != static_cast<float>(mode)) ++row;
      if (row == rows.size()) fail("history output " + output + " lacks " + modeText(mode));
      factors.push_back(static_cast<double>(rows[row][1]));
    }
    return factors;
  }
  fail("step " + modes.stepName + " has no history output " + output +
       " (import the solver's .dat file, or give --participation)");
}

int addRandomResponse(odb_Odb& odb, const std::string& stepName,
                      const std::vector<ModalOscillator>& modes, const FlatBand& band,
                      int nFrames) {
  if (odb.steps().isMember(stepName.c_str())) fail("there is a step " + stepName + " already");
  const odb_Instance& instance = anyInstance(odb);
  odb_Step& step = odb.Step(stepName.c_str(), "Modal covariances of a flat spectrum",
                            odb_Enum::FREQUENCY, 0, "", "*RANDOM RESPONSE");
  const int order = static_cast<int>(modes.size());
  for (int k = 1; k <= nFrames; ++k) {
    FlatBand part = band;
    if (k < nFrames) part.high = band.low + (band.high - band.low) * k / nFrames;
    odb_SequenceFloat entries;
    for (const float entry : packedCovariances(modes, part)) entries.append(entry);
    odb_SequenceSequenceFloat packed;
    packed.append(entries);
    char text[96];
    std::snprintf(text, sizeof text, "Increment %d, band %.6g to %.6g", k, part.low, part.high);
    odb_Frame frame = step.Frame(k, static_cast<float>(part.high), text);
    addMatrix(frame, "MATRIX Sqq", instance, order, packed);
    addMatrix(frame, "MATRIX RSqq", instance, order, packed);
  }
  return step.number();
}

}  // namespace odbs
