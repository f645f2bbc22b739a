// SPDX-License-Identifier: BSD-3-Clause
// The data of steps, frames and load cases. Frames of a step are read when they are first asked
// for.
#pragma once

#include "odb/src/storage/rows.h"

#include <odb_Step.h>

#include <deque>
#include <memory>

namespace odbs::engine {

class Database;
struct FrameFields;  // the result side's data of one frame
struct StepHistory;  // and of one step

struct LoadCaseData {
  odb_String name;
};

struct FrameData {
  StepData* step = nullptr;
  int index = 0;                // place in the step
  std::int64_t storedRow = -1;  // row in the stored table of frames, -1: never saved
  int increment = 0;
  int mode = 0;
  int cyclicMode = 0;
  int id = 0;
  int loadCase = -1;    // place among the step's load cases
  int associated = -1;  // place in the step
  float value = 0;
  float frequency = 0;
  odb_String description;
  std::shared_ptr<FrameFields> fields;
};

struct StepData {
  Database* database = nullptr;
  std::int64_t storedRow = -1;  // row in the stored table of steps, -1: never saved
  int number = 1;
  odb_String name;
  odb_String description;
  odb_String procedure;
  odb_String previousName;
  odb_Enum::odb_DomainEnum domain = odb_Enum::TIME;
  bool nlgeom = true;
  double timePeriod = 0;
  double totalTime = 0;
  double mass = 0;
  double acousticMass = 0;
  odb_SequenceDouble massCenter;
  odb_SequenceDouble inertiaAboutCenter;
  odb_SequenceDouble inertiaAboutOrigin;
  odb_SequenceDouble acousticMassCenter;
  odb_SequenceNodalDofs eliminatedDofs;
  odb_String defaultField;
  odb_String defaultDeformedField;

  std::deque<LoadCaseData> loadCases;
  odb_LoadCaseRepository loadCaseHandles;

  Range storedFrames;  // rows of the stored table of frames
  bool framesLoaded = true;
  std::deque<FrameData> frames;
  odb_SequenceFrame frameHandles;
  std::shared_ptr<StepHistory> history;
};

struct Steps {
  std::deque<StepData> items;  // in order of creation
  odb_StepRepository handles{std::make_shared<RepositoryItems<odb_Step>>(false)};
};

// Reads the steps; of their frames only which rows they have.
void loadSteps(Database& database, FileReader& reader);
// Reads the frames of a step if that has not happened yet.
void loadFrames(StepData& step);
// The handle of a load case of the step, an empty one for -1.
odb_LoadCase loadCaseHandle(StepData& step, int index);
// Frees what the frame's fields can read again.
void releaseFields(FrameData& frame);

void saveSteps(Database& database, Saver& saver);
// Called after a save took place: steps and frames learn their rows.
void stepsSaved(Database& database);
// Numbers the steps anew and enters each one's predecessor.
void renumberSteps(Steps& steps);
// Takes over steps and frames that the file gained. Returns false when there are none.
bool updateSteps(Database& database, FileReader& reader);

// ---- What the result side adds (result_store.cpp) ----

// Called at the end of opening: must be cheap.
void openResults(Database& database, FileReader& reader);
// Called while saving, after the frames got their rows (Saver order of steps and frames).
void saveResults(Database& database, Saver& saver);
// Called after a save took place.
void resultsSaved(Database& database);

}  // namespace odbs::engine
