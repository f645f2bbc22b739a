// SPDX-License-Identifier: BSD-3-Clause
// Histories and element failure times to and from files.
#include "odb/src/fields/result_rows.h"
#include "odb/src/history/history_data.h"
#include "odb/src/storage/errors.h"

#include <odb_FailureTimes.h>
#include <odb_embedded.h>

namespace odbs::engine {

namespace {

using layout::Failures;
using layout::HistoryOutputs;
using layout::HistoryRegions;
using layout::StepResults;

StoredArray<float> pairs(const Rows& rows, std::int64_t row, int column, int file) {
  const ArrayRef ref = rows.array(row, column, layout::Kind::kFloat32, file);
  if (ref.count % 2 != 0) rows.bad(row, column + 1);
  StoredArray<float> array;
  array.refer(ref);
  return array;
}

void readOutputs(HistoryRegionData& region, FileReader& reader, const Range& range, int file) {
  if (range.count == 0) return;
  const Rows rows(reader, HistoryOutputs::shape, range);
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    auto output = std::make_shared<HistoryOutputData>();
    output->database = region.step->database;
    output->name = rows.text(i, HistoryOutputs::kName);
    if (region.handles.isMember(output->name)) rows.bad(i, HistoryOutputs::kName);
    output->description = rows.text(i, HistoryOutputs::kDescription);
    output->type = rows.choice(i, HistoryOutputs::kType, {odb_Enum::SCALAR});
    output->invariants = invariantsFrom(rows.integer(i, HistoryOutputs::kInvariants));
    output->data = pairs(rows, i, HistoryOutputs::kData, file);
    output->conjugate = pairs(rows, i, HistoryOutputs::kConjugate, file);
    addOutput(region, output);
  }
}

void readRegions(StepData& step, StepHistory& history, FileReader& reader, const Range& range,
                 int file) {
  if (range.count == 0) return;
  const Rows rows(reader, HistoryRegions::shape, range);
  const std::int64_t nOutputs = reader.nRows(HistoryOutputs::shape);
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    auto region = std::make_shared<HistoryRegionData>();
    region->step = &step;
    region->name = rows.text(i, HistoryRegions::kName);
    if (region->name.empty() || history.handles.isMember(region->name)) {
      rows.bad(i, HistoryRegions::kName);
    }
    region->description = rows.text(i, HistoryRegions::kDescription);
    const int position = rows.number(i, HistoryRegions::kPosition);
    if (position < 0 || position > odb_Enum::WHOLE_MODEL) rows.bad(i, HistoryRegions::kPosition);
    region->position = static_cast<odb_Enum::odb_ResultPositionEnum>(position);
    region->loadCase =
        static_cast<int>(rows.optionalIndex(i, HistoryRegions::kLoadCase, step.loadCases.size()));
    const odb_String setName = rows.text(i, HistoryRegions::kSet);
    for (int c = 0; c < HistoryRegions::kNInts; ++c) {
      region->pointRow.push_back(rows.number(i, c));
    }
    readOutputs(*region, reader, rows.range(i, HistoryRegions::kFirstOutput, nOutputs), file);
    history.regions.push_back(region);
    history.handles.engineItems().add(region->name, odb_HistoryRegion(region));
  }
}

void readFailures(StepHistory& history, FileReader& reader, const Range& range, int file) {
  if (range.count == 0) return;
  const Rows rows(reader, Failures::shape, range);
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    FailureData& failures = history.failures.emplace_back();
    failures.entityRow = rows.number(i, Failures::kEntity);
    failures.labels.refer(rows.array(i, Failures::kLabels, layout::Kind::kInt32, file));
    failures.times.refer(rows.array(i, Failures::kTimes, layout::Kind::kFloat32, file));
    if (failures.labels.count() != failures.times.count()) rows.bad(i, Failures::kNTimes);
  }
}

EntityData& entityAt(Database& database, std::int64_t row) {
  Model& model = database.model();
  if (row < 0 || row >= static_cast<std::int64_t>(model.entities.size())) {
    failDamaged("a history refers to instance " + std::to_string(row) + ", which does not exist");
  }
  return model.entities[static_cast<std::size_t>(row)];
}

odb_Node nodeAt(EntityData& entity, int label) {
  loadNodes(entity);
  const int index = findNode(entity, label);
  if (index < 0) failDamaged("a history refers to an unknown node " + std::to_string(label));
  return odb_Node(&entity.nodeTable, index);
}

odb_Element elementAt(EntityData& entity, int label) {
  loadElements(entity);
  const int index = findElement(entity, label);
  if (index < 0) failDamaged("a history refers to an unknown element " + std::to_string(label));
  return odb_Element(&entity.elementTable, index);
}

}  // namespace

std::shared_ptr<StepHistory> readHistory(StepData& step) {
  auto history = std::make_shared<StepHistory>();
  Database& database = *step.database;
  FileReader& reader = *database.storage.current();
  const FileReader::Use use(reader);
  if (step.storedRow >= reader.nRows(StepResults::shape)) return history;
  const Rows rows(reader, StepResults::shape, Range{step.storedRow, 1});
  const int file = database.storage.currentFile();
  readRegions(step, *history, reader,
              rows.range(0, StepResults::kFirstRegion, reader.nRows(HistoryRegions::shape)), file);
  readFailures(*history, reader,
               rows.range(0, StepResults::kFirstFailures, reader.nRows(Failures::shape)), file);
  return history;
}

odb_HistoryPoint readPoint(Database& database, const std::vector<std::int64_t>& row) {
  const auto at = [&row](int column) { return row[static_cast<std::size_t>(column)]; };
  odb_HistoryPoint point;
  HistoryPointData& data = point.engineData();
  data.position = static_cast<odb_Enum::odb_ResultPositionEnum>(at(HistoryRegions::kPosition));
  if (at(HistoryRegions::kNodeEntity) >= 0) {
    data.node = nodeAt(entityAt(database, at(HistoryRegions::kNodeEntity)),
                       static_cast<int>(at(HistoryRegions::kNode)));
  }
  if (at(HistoryRegions::kElementEntity) >= 0) {
    data.element = elementAt(entityAt(database, at(HistoryRegions::kElementEntity)),
                             static_cast<int>(at(HistoryRegions::kElement)));
  }
  data.ipNumber = static_cast<int>(at(HistoryRegions::kIpNumber));
  BlockLayout place;
  place.database = &database;
  place.category = static_cast<int>(at(HistoryRegions::kCategory));
  place.point = static_cast<int>(at(HistoryRegions::kPoint));
  data.sectionPoint = place.sectionPoint();
  const auto face = at(HistoryRegions::kFace);
  if (face < 0 || face > odb_Enum::DOUBLE_SIDED) failDamaged("a history has an unknown face");
  data.face = static_cast<odb_Enum::odb_ElementFaceEnum>(face);
  if (at(HistoryRegions::kViewer) >= 0) {
    EntityData& viewer = entityAt(database, at(HistoryRegions::kViewer));
    const auto type = at(HistoryRegions::kSetType);
    const odb_String name = database.storage.current()->text(at(HistoryRegions::kSet));
    SetData* set = nullptr;
    if (type >= odb_Enum::NODE_SET && type <= odb_Enum::SURFACE_SET) {
      set = findSet(viewer, static_cast<odb_Enum::odb_SetTypeEnum>(type), name);
    }
    if (!set) failDamaged(std::string("a history refers to an unknown set ") + name.CStr());
    data.region = odb_Set(set);
  }
  if (at(HistoryRegions::kEntity) >= 0) {
    EntityData& entity = entityAt(database, at(HistoryRegions::kEntity));
    if (entity.kind == EntityKind::kAssembly) {
      data.assembly = odb_Assembly(&entity);
    } else {
      data.instance = odb_Instance(&entity);
    }
  }
  return point;
}

HistorySaver::HistorySaver(Saver& saver)
    : saver_(saver),
      steps_(saver.table(StepResults::shape)),
      regions_(saver.table(HistoryRegions::shape)),
      outputs_(saver.table(HistoryOutputs::shape)),
      failures_(saver.table(Failures::shape)) {}

void HistorySaver::step(StepData& step) {
  StepHistory& history = historyOf(step);
  const std::int64_t row = steps_.addRow();
  steps_.integer(row, StepResults::kFirstRegion) = regions_.nRows;
  steps_.integer(row, StepResults::kNRegions) = static_cast<std::int64_t>(history.regions.size());
  steps_.integer(row, StepResults::kFirstFailures) = failures_.nRows;
  steps_.integer(row, StepResults::kNFailures) = static_cast<std::int64_t>(history.failures.size());
  for (const auto& one : history.regions) region(*one);
  for (FailureData& failures : history.failures) {
    const std::int64_t at = failures_.addRow();
    failures_.integer(at, Failures::kEntity) = failures.entityRow;
    saver_.array(failures_, at, Failures::kLabels, failures.labels);
    saver_.array(failures_, at, Failures::kTimes, failures.times);
  }
}

void HistorySaver::region(HistoryRegionData& region) {
  const HistoryPointData& point = pointOf(region).engineData();
  const std::int64_t row = regions_.addRow();
  const auto put = [&](int column, std::int64_t value) { regions_.integer(row, column) = value; };
  put(HistoryRegions::kName, saver_.text(region.name));
  put(HistoryRegions::kDescription, saver_.text(region.description));
  put(HistoryRegions::kPosition, region.position);
  const bool hasNode = point.node.label() >= 0 && point.node.engineTable()->owner;
  put(HistoryRegions::kNodeEntity, hasNode ? point.node.engineTable()->owner->row : -1);
  put(HistoryRegions::kNode, hasNode ? point.node.label() : -1);
  const bool hasElement = point.element.label() >= 0 && point.element.engineTable()->owner;
  put(HistoryRegions::kElementEntity, hasElement ? point.element.engineTable()->owner->row : -1);
  put(HistoryRegions::kElement, hasElement ? point.element.label() : -1);
  put(HistoryRegions::kIpNumber, point.ipNumber);
  const PointPlace place = placeOf(*region.step->database, point.sectionPoint);
  put(HistoryRegions::kCategory, place.category);
  put(HistoryRegions::kPoint, place.point);
  put(HistoryRegions::kFace, point.face);
  const SetData* set = point.region.engineData();
  put(HistoryRegions::kViewer, set ? set->owner->row : -1);
  put(HistoryRegions::kSetType, set ? set->type : 0);
  put(HistoryRegions::kSet, set ? saver_.text(set->name) : -1);
  const EntityData* instance = point.instance.engineData();
  const EntityData* assembly = point.assembly.engineData();
  const int whole = assembly && assembly->row >= 0 ? assembly->row : instance ? instance->row : -1;
  put(HistoryRegions::kEntity, whole);
  put(HistoryRegions::kLoadCase, region.loadCase);
  put(HistoryRegions::kFirstOutput, outputs_.nRows);
  put(HistoryRegions::kNOutputs, static_cast<std::int64_t>(region.outputs.size()));
  for (const auto& output : region.outputs) {
    const std::int64_t at = outputs_.addRow();
    outputs_.integer(at, HistoryOutputs::kName) = saver_.text(output->name);
    outputs_.integer(at, HistoryOutputs::kDescription) = saver_.text(output->description);
    outputs_.integer(at, HistoryOutputs::kType) = output->type;
    outputs_.integer(at, HistoryOutputs::kInvariants) = bitsOf(output->invariants);
    saver_.array(outputs_, at, HistoryOutputs::kData, output->data);
    saver_.array(outputs_, at, HistoryOutputs::kConjugate, output->conjugate);
  }
}

}  // namespace odbs::engine

using namespace odbs::engine;

void odb_embedded::addFailureTimes(odb_Step& step, const odb_Instance& instance,
                                   const std::vector<int>& elementLabels,
                                   const std::vector<float>& times) {
  if (!step.engineData() || !instance.engineData()) odbs::throwEmptyHandle();
  StepData& data = *step.engineData();
  EntityData& entity = *instance.engineData();
  data.database->needWritable();
  if (elementLabels.size() != times.size()) failUsage("failure times need one label each");
  loadElements(entity);
  for (int label : elementLabels) {
    if (findElement(entity, label) < 0) {
      failUsage(std::string(entity.name.CStr()) + " has no element " + std::to_string(label));
    }
  }
  FailureData failures;
  failures.entityRow = entity.row;
  Storage& storage = data.database->storage;
  failures.labels.edit(storage).assign(elementLabels.begin(), elementLabels.end());
  failures.times.edit(storage).assign(times.begin(), times.end());
  historyOf(data).failures.push_back(std::move(failures));
  data.database->touch();
}

std::vector<FailureTime> odbs::engine::failureTimes(const odb_Step& step) {
  if (!step.engineData()) odbs::throwEmptyHandle();
  StepData& data = *step.engineData();
  Storage& storage = data.database->storage;
  std::vector<FailureTime> result;
  for (FailureData& failures : historyOf(data).failures) {
    const odb_Instance instance(&entityAt(*data.database, failures.entityRow));
    const Buffer<int>& labels = failures.labels.get(storage);
    const Buffer<float>& times = failures.times.get(storage);
    for (std::size_t i = 0; i < labels.size(); ++i) {
      result.push_back(FailureTime{instance, labels[i], times[i]});
    }
  }
  return result;
}
