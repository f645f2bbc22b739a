// SPDX-License-Identifier: BSD-3-Clause
// Steps, frames and load cases to and from files.
#include "odb/src/model/database.h"
#include "odb/src/storage/errors.h"

namespace odbs::engine {

namespace {

using layout::Frames;
using layout::LoadCases;

// The mass data that a step may have: bit of Steps::kMassParts, first real column, numbers.
struct MassPart {
  int bit;
  int column;
  int count;
  odb_SequenceDouble StepData::*member;
};
constexpr MassPart kMassParts[] = {
    {1, layout::Steps::kMassCenter, 3, &StepData::massCenter},
    {2, layout::Steps::kInertiaAboutCenter, 6, &StepData::inertiaAboutCenter},
    {4, layout::Steps::kInertiaAboutOrigin, 6, &StepData::inertiaAboutOrigin},
    {8, layout::Steps::kAcousticCenter, 3, &StepData::acousticMassCenter}};

void readStep(StepData& step, const Rows& rows, std::int64_t row) {
  using S = layout::Steps;
  step.storedRow = row;
  step.name = rows.text(row, S::kName);
  step.description = rows.text(row, S::kDescription);
  step.procedure = rows.text(row, S::kProcedure);
  step.domain =
      rows.choice(row, S::kDomain,
                  {odb_Enum::TIME, odb_Enum::FREQUENCY, odb_Enum::MODAL, odb_Enum::ARC_LENGTH});
  step.nlgeom = rows.flag(row, S::kNlgeom);
  step.defaultField = rows.text(row, S::kDefaultField);
  step.defaultDeformedField = rows.text(row, S::kDefaultDeformedField);
  step.timePeriod = rows.real(row, S::kTimePeriod);
  step.totalTime = rows.real(row, S::kTotalTime);
  step.mass = rows.real(row, S::kMass);
  step.acousticMass = rows.real(row, S::kAcousticMass);
  const int parts = rows.number(row, S::kMassParts);
  for (const MassPart& part : kMassParts) {
    if ((parts & part.bit) == 0) continue;
    for (int k = 0; k < part.count; ++k) {
      (step.*part.member).append(rows.real(row, part.column + k));
    }
  }
}

void writeStep(StepData& step, Saver& saver, Table& table, std::int64_t row) {
  using S = layout::Steps;
  table.integer(row, S::kName) = saver.text(step.name);
  table.integer(row, S::kDescription) = saver.text(step.description);
  table.integer(row, S::kProcedure) = saver.text(step.procedure);
  table.integer(row, S::kDomain) = step.domain;
  table.integer(row, S::kNlgeom) = step.nlgeom;
  table.integer(row, S::kDefaultField) = saver.text(step.defaultField);
  table.integer(row, S::kDefaultDeformedField) = saver.text(step.defaultDeformedField);
  table.real(row, S::kTimePeriod) = step.timePeriod;
  table.real(row, S::kTotalTime) = step.totalTime;
  table.real(row, S::kMass) = step.mass;
  table.real(row, S::kAcousticMass) = step.acousticMass;
  for (const MassPart& part : kMassParts) {
    const odb_SequenceDouble& numbers = step.*part.member;
    if (numbers.size() != part.count) continue;
    table.integer(row, S::kMassParts) |= part.bit;
    for (int k = 0; k < part.count; ++k) table.real(row, part.column + k) = numbers[k];
  }
}

void readLoadCases(StepData& step, FileReader& reader, const Range& range) {
  if (range.count == 0) return;
  const Rows rows(reader, LoadCases::shape, range);
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    LoadCaseData& loadCase = step.loadCases.emplace_back();
    loadCase.name = rows.text(i, LoadCases::kName);
    if (step.loadCaseHandles.isMember(loadCase.name)) rows.bad(i, LoadCases::kName);
    step.loadCaseHandles.engineItems().add(loadCase.name, odb_LoadCase(&loadCase));
  }
}

// Reads frames from place `first` of the step on.
void readFrames(StepData& step, FileReader& reader, std::int64_t first) {
  const Range range{step.storedFrames.first + first, step.storedFrames.count - first};
  const Rows rows(reader, Frames::shape, range);
  const std::size_t nFrames = static_cast<std::size_t>(step.storedFrames.count);
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    FrameData& frame = step.frames.emplace_back();
    frame.step = &step;
    frame.index = static_cast<int>(step.frames.size()) - 1;
    frame.storedRow = range.first + i;
    frame.increment = rows.number(i, Frames::kIncrement);
    frame.mode = rows.number(i, Frames::kMode);
    frame.cyclicMode = rows.number(i, Frames::kCyclicMode);
    frame.id = rows.number(i, Frames::kId);
    frame.loadCase =
        static_cast<int>(rows.optionalIndex(i, Frames::kLoadCase, step.loadCases.size()));
    frame.associated = static_cast<int>(rows.optionalIndex(i, Frames::kAssociated, nFrames));
    frame.description = rows.text(i, Frames::kDescription);
    frame.value = static_cast<float>(rows.real(i, Frames::kValue));
    frame.frequency = static_cast<float>(rows.real(i, Frames::kFrequency));
    step.frameHandles.append(odb_Frame(&frame));
  }
}

constexpr std::int64_t kMostFrames = 1 << 30;

}  // namespace

void loadSteps(Database& database, FileReader& reader) {
  using S = layout::Steps;
  const Rows rows(reader, S::shape);
  const std::int64_t nFrames = reader.nRows(Frames::shape);
  const std::int64_t nLoadCases = reader.nRows(LoadCases::shape);
  Steps& steps = database.steps;
  for (std::int64_t row = static_cast<std::int64_t>(steps.items.size()); row < rows.size(); ++row) {
    StepData& step = steps.items.emplace_back();
    step.database = &database;
    readStep(step, rows, row);
    step.storedFrames = rows.range(row, S::kFirstFrame, nFrames);
    if (step.storedFrames.count > kMostFrames) rows.bad(row, S::kNFrames);
    step.framesLoaded = step.storedFrames.count == 0;
    readLoadCases(step, reader, rows.range(row, S::kFirstLoadCase, nLoadCases));
    if (steps.handles.isMember(step.name)) rows.bad(row, S::kName);
    steps.handles.engineItems().add(step.name, odb_Step(&step));
  }
  renumberSteps(steps);
}

void loadFrames(StepData& step) {
  if (step.framesLoaded) return;
  try {
    readFrames(step, *step.database->storage.current(), 0);
  } catch (...) {
    step.frames.clear();
    step.frameHandles = odb_SequenceFrame();
    throw;
  }
  step.framesLoaded = true;
}

void saveSteps(Database& database, Saver& saver) {
  using S = layout::Steps;
  Table& steps = saver.table(S::shape);
  Table& frames = saver.table(Frames::shape);
  Table& loadCases = saver.table(LoadCases::shape);
  const RepositoryItems<odb_Step>& items = database.steps.handles.engineItems();
  for (int i = 0; i < items.size(); ++i) {
    StepData& step = *items.at(i).value.engineData();
    loadFrames(step);
    const std::int64_t row = steps.addRow();
    writeStep(step, saver, steps, row);
    steps.integer(row, S::kFirstFrame) = frames.nRows;
    steps.integer(row, S::kNFrames) = static_cast<std::int64_t>(step.frames.size());
    steps.integer(row, S::kFirstLoadCase) = loadCases.nRows;
    steps.integer(row, S::kNLoadCases) = static_cast<std::int64_t>(step.loadCases.size());
    for (const LoadCaseData& loadCase : step.loadCases) {
      loadCases.integer(loadCases.addRow(), LoadCases::kName) = saver.text(loadCase.name);
    }
    for (const FrameData& frame : step.frames) {
      const std::int64_t at = frames.addRow();
      frames.integer(at, Frames::kIncrement) = frame.increment;
      frames.integer(at, Frames::kMode) = frame.mode;
      frames.integer(at, Frames::kCyclicMode) = frame.cyclicMode;
      frames.integer(at, Frames::kId) = frame.id;
      frames.integer(at, Frames::kLoadCase) = frame.loadCase;
      frames.integer(at, Frames::kAssociated) = frame.associated;
      frames.integer(at, Frames::kDescription) = saver.text(frame.description);
      frames.real(at, Frames::kValue) = static_cast<double>(frame.value);
      frames.real(at, Frames::kFrequency) = static_cast<double>(frame.frequency);
    }
  }
}

void stepsSaved(Database& database) {
  const RepositoryItems<odb_Step>& items = database.steps.handles.engineItems();
  std::int64_t row = 0;
  for (int i = 0; i < items.size(); ++i) {
    StepData& step = *items.at(i).value.engineData();
    step.storedRow = i;
    step.storedFrames = {row, static_cast<std::int64_t>(step.frames.size())};
    for (FrameData& frame : step.frames) frame.storedRow = row++;
  }
}

bool updateSteps(Database& database, FileReader& reader) {
  using S = layout::Steps;
  const Rows rows(reader, S::shape);
  const std::int64_t nFrames = reader.nRows(Frames::shape);
  Steps& steps = database.steps;
  const std::int64_t nKnown = static_cast<std::int64_t>(steps.items.size());
  if (rows.size() < nKnown) return false;
  std::vector<Range> ranges;
  bool more = rows.size() > nKnown;
  for (std::int64_t row = 0; row < nKnown; ++row) {
    const StepData& step = *steps.handles[static_cast<int>(row)].engineData();
    const Range range = rows.range(row, S::kFirstFrame, nFrames);
    // Another database took the place of this one: only a fresh open can show it.
    if (!(rows.text(row, S::kName) == step.name) || range.count < step.storedFrames.count) {
      return false;
    }
    more = more || range.count > step.storedFrames.count;
    ranges.push_back(range);
  }
  if (!more) return false;
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    StepData& step = *steps.handles[static_cast<int>(i)].engineData();
    const std::int64_t nOld = step.storedFrames.count;
    step.storedFrames = ranges[i];
    if (step.framesLoaded && ranges[i].count > nOld) readFrames(step, reader, nOld);
    for (FrameData& frame : step.frames) frame.storedRow = ranges[i].first + frame.index;
  }
  loadSteps(database, reader);
  return true;
}

}  // namespace odbs::engine
