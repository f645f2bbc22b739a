// SPDX-License-Identifier: BSD-3-Clause
// The data of histories and element failure times of a step.
#pragma once

#include "odb/src/model/database.h"

#include <odb_HistoryRegion.h>

#include <memory>
#include <vector>

namespace odbs::engine {

// What points have that are no instance and no assembly: no name, row -1.
EntityData& absentEntity();

struct HistoryPointData {
  odb_Enum::odb_ResultPositionEnum position = odb_Enum::UNDEFINED_POSITION;
  odb_Node node;
  odb_Element element;
  int ipNumber = 0;
  odb_SectionPoint sectionPoint;
  odb_Enum::odb_ElementFaceEnum face = odb_Enum::FACE_UNKNOWN;
  odb_Set region;
  odb_Instance instance{&absentEntity()};
  odb_Assembly assembly{&absentEntity()};
  odb_Instance ownerOfMember;  // the instance that has the node or element; made when asked for
};

struct HistoryOutputData {
  Database* database = nullptr;
  odb_String name;
  odb_String description;
  odb_Enum::odb_DataTypeEnum type = odb_Enum::SCALAR;
  odb_SequenceInvariant invariants;
  // Pairs of x and value.
  StoredArray<float> data;
  StoredArray<float> conjugate;
  bool derived = false;
  // The same as rows, made at first use.
  bool dataReady = false;
  bool conjugateReady = false;
  odb_SequenceSequenceFloat dataRows;
  odb_SequenceSequenceFloat conjugateRows;
};

struct HistoryRegionData {
  StepData* step = nullptr;
  odb_String name;
  odb_String description;
  odb_Enum::odb_ResultPositionEnum position = odb_Enum::UNDEFINED_POSITION;
  int loadCase = -1;
  odb_LoadCase loadCaseHandle;
  bool derived = false;
  std::vector<std::shared_ptr<HistoryOutputData>> outputs;  // in order of creation
  odb_HistoryOutputRepository handles;
  // Row of a stored point, until it is asked for: resolving it reads labels of the model.
  std::vector<std::int64_t> pointRow;
  odb_HistoryPoint point;
};

struct FailureData {
  int entityRow = 0;
  StoredArray<int> labels;
  StoredArray<float> times;
};

struct StepHistory {
  std::vector<std::shared_ptr<HistoryRegionData>> regions;  // in order of creation
  odb_HistoryRegionRepository handles;
  std::vector<FailureData> failures;
};

// The step's histories, read if need be; their values are read when asked for.
StepHistory& historyOf(StepData& step);
// The point, resolved. Throws odb_Exception when the model has no such object.
const odb_HistoryPoint& pointOf(HistoryRegionData& region);
void addOutput(HistoryRegionData& region, const std::shared_ptr<HistoryOutputData>& output);

// history_store.cpp

// Reads the histories of a stored step. Throws odb_Exception when the file is damaged.
std::shared_ptr<StepHistory> readHistory(StepData& step);
odb_HistoryPoint readPoint(Database& database, const std::vector<std::int64_t>& row);

class HistorySaver {
 public:
  explicit HistorySaver(Saver& saver);
  void step(StepData& step);

 private:
  void region(HistoryRegionData& region);

  Saver& saver_;
  Table& steps_;
  Table& regions_;
  Table& outputs_;
  Table& failures_;
};

}  // namespace odbs::engine
