// SPDX-License-Identifier: BSD-3-Clause
// Field outputs: getters, views, and adding fields to frames.
#include "odb/src/fields/result_store.h"
#include "odb/src/numerics/tensor.h"
#include "odb/src/storage/errors.h"

#include <algorithm>
#include <map>
#include <utility>

namespace odbs::engine {

namespace {

constexpr const char* kTensorSuffixes[] = {"11", "22", "33", "12", "13", "23"};
constexpr const char* kSurfaceSuffixes[] = {"11", "22", "12"};

odb_SequenceString defaultLabels(const odb_String& name, odb_Enum::odb_DataTypeEnum type,
                                 int width) {
  odb_SequenceString labels;
  if (type == odb_Enum::MATRIX) return labels;
  if (type == odb_Enum::SCALAR) return labels;
  for (int i = 0; i < width; ++i) {
    odb_String label = name;
    if (isTensor(type)) {
      label.append(width == 3 ? kSurfaceSuffixes[i] : kTensorSuffixes[i]);
    } else if (type == odb_Enum::VECTOR) {
      label.append(i + 1);
    }
    labels.append(label);
  }
  return labels;
}

// Adds the location of a block's values. `places` says where in `locations` the one of a position
// and section category is.
void addLocation(odb_SequenceFieldLocation& locations, std::map<std::pair<int, int>, int>& places,
                 BlockLayout& layout) {
  const auto [at, isNew] =
      places.emplace(std::make_pair(layout.position, layout.category), locations.size());
  if (isNew) locations.append(odb_FieldLocation(layout.position));
  if (layout.category < 0) return;
  odb_SequenceSectionPoint points = locations[at->second].sectionPoint();
  if (points.isMember(layout.sectionPoint())) return;
  points.append(layout.sectionPoint());
  locations[at->second] = odb_FieldLocation(layout.position, points);
}

odb_FieldOutput& addField(FrameData& frame, const FieldDescriptor& descriptor) {
  Database& database = *frame.step->database;
  database.needWritable();
  FrameFields& fields = loadedFields(frame);
  if (descriptor.name.empty() || fields.repository.isMember(descriptor.name)) {
    failUsage(std::string("field output \"") + descriptor.name.CStr() +
              "\" has no name or exists already in this frame");
  }
  Field field = std::make_shared<FieldData>();
  field->database = &database;
  field->frame = &frame;
  field->descriptor = sharedDescriptor(database, descriptor);
  fields.touched = true;
  noteWritten(frame);
  database.touch();
  return fields.repository.engineBase().engineItems().add(descriptor.name,
                                                          odb_FieldOutput(std::move(field)));
}

FieldDescriptor wideDescriptor(const odb_String& name, const odb_String& description,
                               odb_Enum::odb_DataTypeEnum type, int dim, int dim2) {
  constexpr int kMost = 1 << 20;
  if (dim < 1 || dim2 < 1 || dim > kMost || dim2 > kMost) {
    failUsage(std::string("field output ") + name.CStr() + ": impossible size");
  }
  FieldDescriptor descriptor;
  descriptor.name = name;
  descriptor.description = description;
  descriptor.type = type;
  descriptor.dim = dim;
  descriptor.dim2 = dim2;
  descriptor.labels = defaultLabels(name, type, type == odb_Enum::VECTOR ? dim : 0);
  return descriptor;
}

}  // namespace

Field& fieldOf(const odb_FieldOutput& field) {
  if (!field.engineField()) throwEmptyHandle();
  return const_cast<Field&>(field.engineField());
}

odb_FieldOutput handleOf(Field field) {
  return odb_FieldOutput(std::move(field));
}

Field derivedField(const FieldData& source) {
  Field field = std::make_shared<FieldData>();
  field->database = source.database;
  field->descriptor = source.descriptor;
  field->derived = true;
  return field;
}

bool isComplex(const FieldData& field) {
  return std::any_of(field.blocks.begin(), field.blocks.end(),
                     [](const Block& block) { return block->complex; });
}

void makeViews(FieldData& field) {
  if (field.viewsReady) return;
  internLayouts(field);
  field.bulk = odb_SequenceFieldBulkData();
  field.locations = odb_SequenceFieldLocation();
  field.elementTypes = odb_SequenceString();
  std::map<std::pair<int, int>, int> places;
  for (const Block& block : field.blocks) {
    field.bulk.append(odb_FieldBulkData(block));
    addLocation(field.locations, places, *block->layout);
    const odb_String& type = block->layout->elementType;
    if (!type.empty() && !field.elementTypes.isMember(type)) field.elementTypes.append(type);
  }
  // Programs that read the first location alone expect what was recorded.
  auto& locations = field.locations.engineItems();
  std::stable_partition(locations.begin(), locations.end(), [](const odb_FieldLocation& location) {
    return location.position() == odb_Enum::INTEGRATION_POINT;
  });
  field.viewsReady = true;
}

}  // namespace odbs::engine

using odbs::engine::FieldData;
using odbs::engine::FieldDescriptor;

FieldData& odb_FieldOutput::need() const {
  if (!data_) odbs::throwEmptyHandle();
  return *data_;
}

const odb_String& odb_FieldOutput::name() const {
  return need().descriptor->name;
}
const odb_String& odb_FieldOutput::description() const {
  return need().descriptor->description;
}
odb_Enum::odb_DataTypeEnum odb_FieldOutput::type() const {
  return need().descriptor->type;
}
odb_Enum::odb_DataSubtypeEnum odb_FieldOutput::subtype() const {
  need();
  return odb_Enum::UNDEFINED_SUBTYPE;
}
int odb_FieldOutput::dim() const {
  return need().descriptor->dim;
}
int odb_FieldOutput::dim2() const {
  return need().descriptor->dim2;
}
bool odb_FieldOutput::isComplex() const {
  return odbs::engine::isComplex(need());
}
bool odb_FieldOutput::isEngineeringTensor() const {
  return need().descriptor->engineering;
}
bool odb_FieldOutput::hasOrientation() const {
  for (const auto& block : need().blocks) {
    if (block->oriented) return true;
  }
  return false;
}
const odb_SequenceInvariant& odb_FieldOutput::validInvariants() const {
  return need().descriptor->invariants;
}
const odb_SequenceString& odb_FieldOutput::componentLabels() const {
  return need().descriptor->labels;
}
const odb_SequenceString& odb_FieldOutput::baseElementTypes() const {
  odbs::engine::makeViews(need());
  return need().elementTypes;
}
const odb_SequenceFieldLocation& odb_FieldOutput::locations() const {
  odbs::engine::makeViews(need());
  return need().locations;
}
const odb_FieldLocation& odb_FieldOutput::locations(int i) const {
  return locations()[i];
}

odb_SequenceFieldValue odb_FieldOutput::values() const {
  odbs::engine::makeViews(need());
  return odb_SequenceFieldValue(need().blocks);
}
odb_FieldValue odb_FieldOutput::values(int i) const {
  return values().value(i);
}
const odb_SequenceFieldBulkData& odb_FieldOutput::bulkDataBlocks() const {
  odbs::engine::makeViews(need());
  return need().bulk;
}
const odb_FieldBulkData& odb_FieldOutput::bulkDataBlocks(int i) const {
  return bulkDataBlocks()[i];
}

odbs::RepositoryOf<odb_FieldOutput>& odb_FieldOutputRepository::loaded() const {
  if (frame_) odbs::engine::loadedFields(*frame_);
  return engineBase();
}

odb_SequenceString odb_FieldOutputRepository::getFieldOutputNames() const {
  const auto& fields = loaded().engineItems();
  odb_SequenceString names(fields.size());
  for (int i = 0; i < fields.size(); ++i) names.append(fields.at(i).key);
  return names;
}
void odb_FieldOutputRepository::release() const {
  if (frame_) odbs::engine::releaseFields(*frame_);
}
void odb_FieldOutputRepository::release(const odb_String& key) const {
  loaded().get(key).bulkDataBlocks().clearAll();
}

odb_FieldOutputRepository& odb_Frame::fieldOutputs() const {
  return odbs::engine::fieldsOf(need()).repository;
}

odb_FieldOutput& odb_Frame::FieldOutput(const odb_String& name, const odb_String& description,
                                        odb_Enum::odb_DataTypeEnum type,
                                        const odb_SequenceString& componentLabels,
                                        const odb_SequenceInvariant& validInvariants,
                                        bool isEngineeringTensor) {
  const int natural = odbs::engine::componentCount(type);
  if (natural == 0) {
    odbs::engine::failUsage(std::string("field output ") + name.CStr() +
                            " has a data type that needs a size, or none");
  }
  FieldDescriptor descriptor;
  descriptor.name = name;
  descriptor.description = description;
  descriptor.type = type;
  descriptor.dim = componentLabels.size() > 0 ? componentLabels.size() : natural;
  descriptor.engineering = isEngineeringTensor;
  descriptor.labels = componentLabels.size() > 0 ? componentLabels
                                                 : odbs::engine::defaultLabels(name, type, natural);
  for (int k = odb_Enum::MAGNITUDE; k <= odb_Enum::OUTOFPLANE_PRINCIPAL; ++k) {
    const auto which = static_cast<odb_Enum::odb_InvariantEnum>(k);
    if (validInvariants.isMember(which)) descriptor.invariants.append(which);
  }
  return odbs::engine::addField(need(), descriptor);
}

odb_FieldOutput& odb_Frame::FieldOutput(const odb_FieldOutput& field, const odb_String& name,
                                        const odb_String& description) {
  const odb_FieldOutput source = field;  // the argument may be a field of this repository
  FieldDescriptor descriptor = *odbs::engine::fieldOf(source)->descriptor;
  if (!name.empty()) descriptor.name = name;
  if (!description.empty()) descriptor.description = description;
  odb_FieldOutput& copy = odbs::engine::addField(need(), descriptor);
  copy.addData(source);
  return copy;
}

odb_FieldOutput& odb_Frame::VectorOutput(const odb_String& name, const odb_String& description,
                                         int width) {
  return odbs::engine::addField(
      need(), odbs::engine::wideDescriptor(name, description, odb_Enum::VECTOR, width, 1));
}
odb_FieldOutput& odb_Frame::MatrixOutput(const odb_String& name, const odb_String& description,
                                         int rows, int columns) {
  return odbs::engine::addField(
      need(), odbs::engine::wideDescriptor(name, description, odb_Enum::MATRIX, rows, columns));
}
odb_FieldOutput& odb_Frame::SymmetricMatrixOutput(const odb_String& name,
                                                  const odb_String& description, int dim) {
  return odbs::engine::addField(
      need(), odbs::engine::wideDescriptor(name, description, odb_Enum::MATRIX, dim, dim));
}

void odb_Step::setDefaultField(const odb_FieldOutput& field) {
  need().database->needWritable();
  need().defaultField = field.name();
  need().database->touch();
}
void odb_Step::setDefaultDeformedField(const odb_FieldOutput& field) {
  need().database->needWritable();
  need().defaultDeformedField = field.name();
  need().database->touch();
}
