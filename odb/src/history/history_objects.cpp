// SPDX-License-Identifier: BSD-3-Clause
// History points, regions and outputs.
#include "odb/src/history/history_data.h"

#include "odb/src/storage/errors.h"

#include <odb_embedded.h>

#include <limits>

namespace odbs::engine {

namespace {

std::string describe(const HistoryOutputData& output) {
  return std::string("history output ") + output.name.CStr();
}

const odb_SequenceSequenceFloat& rowsOf(HistoryOutputData& output,
                                        StoredArray<float> HistoryOutputData::*array,
                                        bool HistoryOutputData::*ready,
                                        odb_SequenceSequenceFloat HistoryOutputData::*rows) {
  if (output.*ready) return output.*rows;
  const Buffer<float>& numbers = (output.*array).get(output.database->storage);
  odb_SequenceSequenceFloat result(static_cast<int>(numbers.size() / 2));
  for (std::size_t i = 0; i + 1 < numbers.size(); i += 2) {
    odb_SequenceFloat row(2);
    row.append(numbers[i]);
    row.append(numbers[i + 1]);
    result.append(row);
  }
  output.*rows = result;
  output.*ready = true;
  return output.*rows;
}

void addPair(HistoryOutputData& output, double x, double value) {
  Buffer<float>& numbers = output.data.edit(output.database->storage);
  numbers.push_back(static_cast<float>(x));
  numbers.push_back(static_cast<float>(value));
}

void startAdding(HistoryOutputData& output) {
  if (output.derived) failUsage(describe(output) + " is a copy: it takes no values");
  output.database->needWritable();
  output.database->touch();
  output.dataReady = output.conjugateReady = false;
}

// A copy of the values with start <= x <= end.
std::shared_ptr<HistoryOutputData> between(HistoryOutputData& output, double start, double end) {
  auto copy = std::make_shared<HistoryOutputData>();
  Storage& storage = output.database->storage;
  copy->database = output.database;
  copy->name = output.name;
  copy->description = output.description;
  copy->type = output.type;
  copy->invariants = output.invariants;
  copy->derived = true;
  for (auto array : {&HistoryOutputData::data, &HistoryOutputData::conjugate}) {
    const Buffer<float>& from = (output.*array).get(storage);
    Buffer<float>& to = ((*copy).*array).edit(storage);
    for (std::size_t i = 0; i + 1 < from.size(); i += 2) {
      const auto x = static_cast<double>(from[i]);
      if (x >= start && x <= end) to.insert(to.end(), {from[i], from[i + 1]});
    }
  }
  return copy;
}

std::shared_ptr<HistoryRegionData> copyWithoutOutputs(HistoryRegionData& region) {
  auto copy = std::make_shared<HistoryRegionData>();
  copy->step = region.step;
  copy->name = region.name;
  copy->description = region.description;
  copy->position = region.position;
  copy->loadCase = region.loadCase;
  copy->pointRow = region.pointRow;
  copy->point = region.point;
  copy->derived = true;
  return copy;
}

odb_HistoryRegion& addRegion(StepData& step, const odb_String& name, const odb_String& description,
                             const odb_HistoryPoint& point, int loadCase) {
  step.database->needWritable();
  StepHistory& history = historyOf(step);
  if (name.empty() || history.handles.isMember(name)) {
    failUsage(std::string("history region \"") + name.CStr() + "\" has no name or exists already");
  }
  auto region = std::make_shared<HistoryRegionData>();
  region->step = &step;
  region->name = name;
  region->description = description;
  region->position = point.position();
  region->loadCase = loadCase;
  region->point = point;
  history.regions.push_back(region);
  step.database->touch();
  return history.handles.engineItems().add(name, odb_HistoryRegion(region));
}

}  // namespace

EntityData& absentEntity() {
  static EntityData absent;
  absent.row = -1;
  return absent;
}

StepHistory& historyOf(StepData& step) {
  if (!step.history) {
    step.history = step.storedRow >= 0 ? readHistory(step) : std::make_shared<StepHistory>();
  }
  return *step.history;
}

const odb_HistoryPoint& pointOf(HistoryRegionData& region) {
  if (!region.pointRow.empty()) {
    region.point = readPoint(*region.step->database, region.pointRow);
    region.pointRow.clear();
  }
  return region.point;
}

void addOutput(HistoryRegionData& region, const std::shared_ptr<HistoryOutputData>& output) {
  region.outputs.push_back(output);
  region.handles.engineItems().add(output->name, odb_HistoryOutput(output));
}

}  // namespace odbs::engine

using namespace odbs::engine;

// ---- Points ----

odb_HistoryPoint::odb_HistoryPoint() : data_(std::make_shared<HistoryPointData>()) {}

odb_HistoryPoint::odb_HistoryPoint(const odb_Node& node) : odb_HistoryPoint() {
  data_->position = odb_Enum::NODAL;
  data_->node = node;
}

odb_HistoryPoint::odb_HistoryPoint(const odb_Element& element, int ipNumber,
                                   const odb_SectionPoint& sectionPoint,
                                   odb_Enum::odb_ElementFaceEnum face, const odb_Node& node)
    : odb_HistoryPoint() {
  data_->element = element;
  data_->ipNumber = ipNumber;
  data_->sectionPoint = sectionPoint;
  data_->face = face;
  data_->node = node;
  data_->position = node.label() >= 0                ? odb_Enum::ELEMENT_NODAL
                    : ipNumber > 0                   ? odb_Enum::INTEGRATION_POINT
                    : face != odb_Enum::FACE_UNKNOWN ? odb_Enum::ELEMENT_FACE
                                                     : odb_Enum::WHOLE_ELEMENT;
}

odb_HistoryPoint::odb_HistoryPoint(const odb_Set& region) : odb_HistoryPoint() {
  data_->position = odb_Enum::WHOLE_REGION;
  data_->region = region;
}

odb_HistoryPoint::odb_HistoryPoint(const odb_Assembly& assembly) : odb_HistoryPoint() {
  data_->position = odb_Enum::WHOLE_MODEL;
  data_->assembly = assembly;
}

odb_HistoryPoint::odb_HistoryPoint(const odb_Instance& instance) : odb_HistoryPoint() {
  data_->position = odb_Enum::WHOLE_PART_INSTANCE;
  data_->instance = instance;
}

odb_Enum::odb_ResultPositionEnum odb_HistoryPoint::position() const {
  return data_->position;
}
const odb_Node& odb_HistoryPoint::node() const {
  return data_->node;
}
const odb_Element& odb_HistoryPoint::element() const {
  return data_->element;
}
int odb_HistoryPoint::ipNumber() const {
  return data_->ipNumber;
}
const odb_SectionPoint& odb_HistoryPoint::sectionPoint() const {
  return data_->sectionPoint;
}
odb_Enum::odb_ElementFaceEnum odb_HistoryPoint::face() const {
  return data_->face;
}
const odb_Set& odb_HistoryPoint::region() const {
  return data_->region;
}
const odb_Instance& odb_HistoryPoint::instance() const {
  EntityData* owner = data_->node.label() >= 0      ? data_->node.engineTable()->owner
                      : data_->element.label() >= 0 ? data_->element.engineTable()->owner
                                                    : nullptr;
  if (owner && owner->kind == EntityKind::kInstance) {
    data_->ownerOfMember = odb_Instance(owner);
    return data_->ownerOfMember;
  }
  return data_->instance;
}
const odb_Assembly& odb_HistoryPoint::assembly() const {
  return data_->assembly;
}

bool odb_HistoryPoint::operator==(const odb_HistoryPoint& other) const {
  const HistoryPointData &a = *data_, &b = *other.data_;
  return a.position == b.position && a.node == b.node && a.element == b.element &&
         a.ipNumber == b.ipNumber && a.sectionPoint == b.sectionPoint && a.face == b.face &&
         a.region == b.region && a.instance == b.instance && a.assembly == b.assembly;
}

// ---- Outputs ----

odb_HistoryOutput::odb_HistoryOutput(std::shared_ptr<HistoryOutputData> own)
    : Handle(own.get()), own_(std::move(own)) {}

const odb_String& odb_HistoryOutput::name() const {
  return need().name;
}
const odb_String& odb_HistoryOutput::description() const {
  return need().description;
}
odb_Enum::odb_DataTypeEnum odb_HistoryOutput::type() const {
  return need().type;
}
const odb_SequenceInvariant& odb_HistoryOutput::validInvariants() const {
  return need().invariants;
}
const odb_SequenceSequenceFloat& odb_HistoryOutput::data() const {
  return rowsOf(need(), &HistoryOutputData::data, &HistoryOutputData::dataReady,
                &HistoryOutputData::dataRows);
}
const odb_SequenceSequenceFloat& odb_HistoryOutput::conjugateData() const {
  return rowsOf(need(), &HistoryOutputData::conjugate, &HistoryOutputData::conjugateReady,
                &HistoryOutputData::conjugateRows);
}

void odb_HistoryOutput::addData(double frame, double value) {
  startAdding(need());
  addPair(need(), frame, value);
}

void odb_HistoryOutput::addData(const odb_SequenceFloat& frames, const odb_SequenceFloat& values) {
  if (frames.size() != values.size()) {
    failUsage(describe(need()) + ": lists of frames and values have different lengths");
  }
  startAdding(need());
  for (int i = 0; i < frames.size(); ++i) {
    addPair(need(), static_cast<double>(frames[i]), static_cast<double>(values[i]));
  }
}

void odb_HistoryOutput::addData(const odb_SequenceDouble& frames,
                                const odb_SequenceDouble& values) {
  if (frames.size() != values.size()) {
    failUsage(describe(need()) + ": lists of frames and values have different lengths");
  }
  startAdding(need());
  for (int i = 0; i < frames.size(); ++i) addPair(need(), frames[i], values[i]);
}

void odb_HistoryOutput::addData(const odb_SequenceSequenceFloat& pairs) {
  for (const odb_SequenceFloat& pair : pairs.engineItems()) {
    if (pair.size() != 2) failUsage(describe(need()) + ": rows need two numbers");
  }
  startAdding(need());
  for (const odb_SequenceFloat& pair : pairs.engineItems()) {
    addPair(need(), static_cast<double>(pair[0]), static_cast<double>(pair[1]));
  }
}

void odb_embedded::addConjugateData(odb_HistoryOutput& output,
                                    const odb_SequenceSequenceFloat& pairs) {
  if (!output.engineData()) odbs::throwEmptyHandle();
  HistoryOutputData& data = *output.engineData();
  for (const odb_SequenceFloat& pair : pairs.engineItems()) {
    if (pair.size() != 2) failUsage(describe(data) + ": rows need two numbers");
  }
  startAdding(data);
  Buffer<float>& numbers = data.conjugate.edit(data.database->storage);
  for (const odb_SequenceFloat& pair : pairs.engineItems()) {
    numbers.insert(numbers.end(), {pair[0], pair[1]});
  }
}

// ---- Regions ----

odb_HistoryRegion::odb_HistoryRegion(std::shared_ptr<HistoryRegionData> own)
    : Handle(own.get()), own_(std::move(own)) {}

const odb_String& odb_HistoryRegion::name() const {
  return need().name;
}
const odb_String& odb_HistoryRegion::description() const {
  return need().description;
}
odb_Enum::odb_ResultPositionEnum odb_HistoryRegion::position() const {
  return need().position;
}
const odb_HistoryPoint& odb_HistoryRegion::historyPoint() const {
  return pointOf(need());
}
const odb_HistoryPoint& odb_HistoryRegion::point() const {
  return pointOf(need());
}
odb_HistoryOutputRepository& odb_HistoryRegion::historyOutputs() const {
  return need().handles;
}
odb_HistoryOutput& odb_HistoryRegion::historyOutputs(const odb_String& name) const {
  return need().handles[name];
}

const odb_LoadCase& odb_HistoryRegion::loadCase() const {
  HistoryRegionData& region = need();
  if (region.loadCase >= 0 && !region.loadCaseHandle.engineData()) {
    region.loadCaseHandle = odbs::engine::loadCaseHandle(*region.step, region.loadCase);
  }
  return region.loadCaseHandle;
}

odb_HistoryRegion odb_HistoryRegion::getSubset(const odb_String& variableName) const {
  HistoryRegionData& region = need();
  auto copy = copyWithoutOutputs(region);
  for (const auto& output : region.outputs) {
    if (output->name == variableName) addOutput(*copy, output);
  }
  if (copy->outputs.empty()) {
    failAbsent(std::string("history region ") + region.name.CStr() + " has no " +
               variableName.CStr());
  }
  return odb_HistoryRegion(copy);
}
odb_HistoryRegion odb_HistoryRegion::getSubset(const char* variableName) const {
  return getSubset(odb_String(variableName));
}
odb_HistoryRegion odb_HistoryRegion::getSubset(double start) const {
  return getSubset(start, std::numeric_limits<double>::infinity());
}
odb_HistoryRegion odb_HistoryRegion::getSubset(double start, double end) const {
  auto copy = copyWithoutOutputs(need());
  for (const auto& output : need().outputs) addOutput(*copy, between(*output, start, end));
  return odb_HistoryRegion(copy);
}

odb_HistoryOutput& odb_HistoryRegion::HistoryOutput(const odb_String& name,
                                                    const odb_String& description,
                                                    odb_Enum::odb_DataTypeEnum type,
                                                    const odb_SequenceInvariant& invariants) {
  HistoryRegionData& region = need();
  Database& database = *region.step->database;
  database.needWritable();
  if (type != odb_Enum::SCALAR) failUsage("history outputs are scalars");
  if (region.derived || name.empty() || region.handles.isMember(name)) {
    failUsage(std::string("history output \"") + name.CStr() +
              "\" has no name, exists already, or would be added to a copy");
  }
  auto output = std::make_shared<HistoryOutputData>();
  output->database = &database;
  output->name = name;
  output->description = description;
  output->type = type;
  output->invariants = invariants;
  addOutput(region, output);
  database.touch();
  return region.handles[name];
}

// ---- Steps ----

odb_HistoryRegionRepository& odb_Step::historyRegions() const {
  return historyOf(need()).handles;
}

odb_HistoryRegion& odb_Step::HistoryRegion(const odb_String& name, const odb_String& description,
                                           const odb_HistoryPoint& point) {
  return addRegion(need(), name, description, point, -1);
}

odb_HistoryRegion& odb_Step::HistoryRegion(const odb_String& name, const odb_String& description,
                                           const odb_HistoryPoint& point,
                                           const odb_LoadCase& loadCase) {
  StepData& step = need();
  for (std::size_t i = 0; i < step.loadCases.size(); ++i) {
    if (&step.loadCases[i] == loadCase.engineData()) {
      return addRegion(step, name, description, point, static_cast<int>(i));
    }
  }
  if (loadCase.engineData()) failUsage("the load case belongs to another step");
  return addRegion(step, name, description, point, -1);
}

odb_HistoryRegion& odb_Step::getHistoryRegion(const odb_HistoryPoint& point) const {
  StepHistory& history = historyOf(need());
  for (const auto& region : history.regions) {
    if (pointOf(*region) == point) return history.handles[region->name];
  }
  failAbsent(std::string("step ") + need().name.CStr() + " has no history at that point");
}

odb_HistoryRegion& odb_Step::getHistoryRegion(const odb_HistoryPoint& point,
                                              const odb_LoadCase& loadCase) const {
  StepHistory& history = historyOf(need());
  for (const auto& region : history.regions) {
    odb_HistoryRegion& handle = history.handles[region->name];
    if (handle.loadCase() == loadCase && pointOf(*region) == point) return handle;
  }
  failAbsent(std::string("step ") + need().name.CStr() +
             " has no history at that point and load case");
}
