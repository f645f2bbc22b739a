// SPDX-License-Identifier: BSD-3-Clause
// Profiles, constraints, interactions, interaction properties and amplitudes: adding them to the
// model, and to and from files.
#include "odb/src/model/database.h"
#include "odb/src/model/model_rows.h"

namespace odbs::engine {

using layout::Objects;
using layout::ObjectTables;

bool addObject(Model& model, const PropertyData& object) {
  const auto add = [&](auto& repository, auto handle) {
    if (repository.isMember(object.name)) return false;
    model.objects.push_back(object);
    repository.engineItems().add(object.name, decltype(handle)(&model.objects.back()));
    return true;
  };
  switch (object.kind) {
    case ObjectKind::kProfile:
      return add(model.profiles, odb_Profile());
    case ObjectKind::kConstraint:
      return add(model.constraints, odb_Constraint());
    case ObjectKind::kInteraction:
      return add(model.interactions, odb_Interaction());
    case ObjectKind::kInteractionProperty:
      return add(model.interactionProperties, odb_InteractionProperty());
    case ObjectKind::kAmplitude:
      return add(model.amplitudes, odb_Amplitude());
  }
  return false;
}

void loadObjects(ModelReading& reading) {
  const Rows rows(reading.reader, Objects::shape);
  std::vector<PropertyData> objects;
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    PropertyData& object = objects.emplace_back();
    object.kind =
        rows.choice(i, Objects::kKind,
                    {ObjectKind::kProfile, ObjectKind::kConstraint, ObjectKind::kInteraction,
                     ObjectKind::kInteractionProperty, ObjectKind::kAmplitude});
    object.type = TypeIdentifier(rows.text(i, Objects::kType));
    object.name = rows.text(i, Objects::kName);
    object.properties = reading.namedValues(rows, i, Objects::kFirstProperty);
  }
  const Rows tables(reading.reader, ObjectTables::shape);
  for (std::int64_t i = 0; i < tables.size(); ++i) {
    PropertyData& object = objects[tables.index(i, ObjectTables::kObject, objects.size())];
    object.tables[tables.text(i, ObjectTables::kKey)] =
        readNumberRows<odb_SequenceSequenceDouble, odb_SequenceDouble, double>(
            tables, i, ObjectTables::kLengths, ObjectTables::kData);
  }
  for (std::size_t i = 0; i < objects.size(); ++i) {
    if (!addObject(reading.model, objects[i])) {
      rows.bad(static_cast<std::int64_t>(i), Objects::kName);
    }
  }
}

void saveObjects(Model& model, Saver& saver) {
  Table& objects = saver.table(Objects::shape);
  Table& tables = saver.table(ObjectTables::shape);
  for (const PropertyData& object : model.objects) {
    const std::int64_t row = objects.addRow();
    objects.integer(row, Objects::kKind) = static_cast<std::int64_t>(object.kind);
    objects.integer(row, Objects::kType) = saver.text(object.type.engineName());
    objects.integer(row, Objects::kName) = saver.text(object.name);
    writeNamedValues(saver, objects, row, Objects::kFirstProperty, object.properties);
    for (const auto& [key, numbers] : object.tables) {
      const std::int64_t at = tables.addRow();
      tables.integer(at, ObjectTables::kObject) = row;
      tables.integer(at, ObjectTables::kKey) = saver.text(key);
      writeNumberRows<odb_SequenceSequenceDouble, double>(saver, tables, at, ObjectTables::kLengths,
                                                          ObjectTables::kData, numbers);
    }
  }
}

}  // namespace odbs::engine
