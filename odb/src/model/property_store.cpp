// SPDX-License-Identifier: BSD-3-Clause
// Sections, materials and user data to and from files.
#include "odb/src/model/database.h"
#include "odb/src/model/model_rows.h"
#include "odb/src/storage/errors.h"

namespace odbs::engine {

using layout::Annotations;
using layout::Behaviours;
using layout::Curves;
using layout::Layers;
using layout::Materials;
using layout::Sections;

namespace {
using P = layout::Properties;
}

Properties ModelReading::namedValues(const Rows& rows, std::int64_t row, int firstColumn) {
  Properties out;
  const Range range = rows.range(row, firstColumn, properties->size());
  for (std::int64_t i = range.first; i < range.first + range.count; ++i) {
    Property& property = out[properties->text(i, P::kKey)];
    const double number = properties->real(i, P::kNumber);
    switch (properties->integer(i, P::kType)) {
      case odb_UNION_INT:
        if (!(number > -2147483649.0 && number < 2147483648.0)) properties->bad(i, P::kType);
        property.value = static_cast<int>(number);
        break;
      case odb_UNION_FLOAT:
        property.value = static_cast<float>(number);
        break;
      case odb_UNION_DOUBLE:
        property.value = number;
        break;
      case odb_UNION_BOOL:
        property.value = number != 0;
        break;
      case odb_UNION_STRING:
        property.value = properties->text(i, P::kValue);
        break;
      case P::kSetType: {
        // Viewer follows the set here.
        const std::int64_t number2 = properties->optionalIndex(i, P::kValue, sets.size());
        property.isSet = true;
        if (number2 < 0) break;
        SetData* data = sets[static_cast<std::size_t>(number2)];
        EntityData& viewer =
            model.entities[properties->index(i, P::kViewer, model.entities.size())];
        if (data->owner != &viewer && viewer.part != data->owner) {
          properties->bad(i, P::kViewer);
        }
        property.set = seenFrom(viewer, odb_Set(data));
        break;
      }
      default:
        properties->bad(i, P::kType);
    }
  }
  return out;
}

void writeNamedValues(Saver& saver, Table& table, std::int64_t row, int firstColumn,
                      const Properties& properties) {
  Table& values = saver.table(P::shape);
  table.integer(row, firstColumn) = values.nRows;
  table.integer(row, firstColumn + 1) = static_cast<std::int64_t>(properties.size());
  for (const auto& [key, property] : properties) {
    const std::int64_t at = values.addRow();
    values.integer(at, P::kKey) = saver.text(key);
    values.integer(at, P::kViewer) = -1;
    values.integer(at, P::kValue) = -1;
    if (property.isSet) {
      const SetData* set = property.set.engineData();
      values.integer(at, P::kType) = P::kSetType;
      if (!set) continue;
      values.integer(at, P::kViewer) = set->owner->row;
      values.integer(at, P::kValue) = set->source ? set->source->row : set->row;
      continue;
    }
    values.integer(at, P::kType) = property.value.type();
    if (property.value.type() == odb_UNION_STRING) {
      values.integer(at, P::kValue) = saver.text(property.value.getString());
    } else {
      values.real(at, P::kNumber) = property.value.getDouble();
    }
  }
}

namespace {

odb_SectionLayer readLayer(ModelReading& reading, const Rows& rows, std::int64_t i) {
  const odb_Union angle = rows.flag(i, Layers::kOrientIsText)
                              ? odb_Union(rows.text(i, Layers::kOrientText))
                              : odb_Union(rows.real(i, Layers::kOrientNumber));
  return SectionLayer(rows.real(i, Layers::kThickness), rows.text(i, Layers::kMaterial), angle,
                      rows.number(i, Layers::kNumIntPts), rows.text(i, Layers::kAxis),
                      static_cast<float>(rows.real(i, Layers::kAngle)),
                      rows.text(i, Layers::kRotationType), rows.text(i, Layers::kThicknessType),
                      rows.text(i, Layers::kPlyName), reading.csys(rows, i, Layers::kCsys),
                      rows.text(i, Layers::kRotationField), rows.text(i, Layers::kThicknessField));
}

void loadSections(ModelReading& reading) {
  const Rows rows(reading.reader, Sections::shape);
  const Rows layers(reading.reader, Layers::shape);
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    SectionData& section = reading.model.sections.emplace_back();
    section.database = &reading.database;
    section.name = rows.text(i, Sections::kName);
    section.type = sectionType(rows.text(i, Sections::kType));
    section.properties = reading.namedValues(rows, i, Sections::kFirstProperty);
    const Range range = rows.range(i, Sections::kFirstLayer, layers.size());
    for (std::int64_t k = range.first; k < range.first + range.count; ++k) {
      section.layup.append(readLayer(reading, layers, k));
    }
    if (reading.model.sectionHandles.isMember(section.name)) rows.bad(i, Sections::kName);
    reading.model.sectionHandles.engineItems().add(section.name, odb_Section(&section));
  }
}

void loadMaterials(ModelReading& reading) {
  const Rows rows(reading.reader, Materials::shape);
  const Rows behaviours(reading.reader, Behaviours::shape);
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    MaterialData& material = reading.model.materials.emplace_back();
    material.database = &reading.database;
    material.name = rows.text(i, Materials::kName);
    const Range range = rows.range(i, Materials::kFirstBehaviour, behaviours.size());
    for (std::int64_t k = range.first; k < range.first + range.count; ++k) {
      BehaviourData& behaviour =
          material.behaviours[behaviours.index(k, Behaviours::kKind, kNBehaviours)];
      behaviour.hasValue = true;
      behaviour.properties = reading.namedValues(behaviours, k, Behaviours::kFirstProperty);
      behaviour.table = readNumberRows<odb_SequenceSequenceDouble, odb_SequenceDouble, double>(
          behaviours, k, Behaviours::kLengths, Behaviours::kData);
    }
    setUpMaterial(material);
    if (reading.model.materialHandles.isMember(material.name)) rows.bad(i, Materials::kName);
    reading.model.materialHandles.engineItems().add(material.name, odb_Material(&material));
  }
}

void loadUserData(ModelReading& reading) {
  Model& model = reading.model;
  const Rows annotations(reading.reader, Annotations::shape);
  for (std::int64_t i = 0; i < annotations.size(); ++i) {
    AnnotationData& annotation = model.annotations.emplace_back();
    annotation.text = annotations.text(i, Annotations::kText);
    model.annotationHandles.engineItems().add(annotations.text(i, Annotations::kKey),
                                              odb_Text(&annotation));
  }
  const Rows curves(reading.reader, Curves::shape);
  for (std::int64_t i = 0; i < curves.size(); ++i) {
    CurveData& curve = model.curves.emplace_back();
    curve.name = curves.text(i, Curves::kName);
    for (int k = 0; k < 7; ++k) curve.texts[k] = curves.text(i, Curves::kTexts + k);
    const std::vector<float> numbers = curves.numbers<float>(i, Curves::kPoints);
    for (std::size_t k = 0; k + 1 < numbers.size(); k += 2) {
      odb_SequenceFloat point;
      point.append(numbers[k]);
      point.append(numbers[k + 1]);
      curve.points.append(point);
    }
    model.curveHandles.engineItems().add(curve.name, odb_UserXYData(&curve));
  }
}

void saveSections(Model& model, Saver& saver) {
  Table& table = saver.table(Sections::shape);
  Table& layers = saver.table(Layers::shape);
  for (const SectionData& section : model.sections) {
    const std::int64_t row = table.addRow();
    table.integer(row, Sections::kType) = saver.text(section.type.engineName());
    table.integer(row, Sections::kName) = saver.text(section.name);
    writeNamedValues(saver, table, row, Sections::kFirstProperty, section.properties);
    table.integer(row, Sections::kFirstLayer) = layers.nRows;
    table.integer(row, Sections::kNLayers) = section.layup.size();
    for (int i = 0; i < section.layup.size(); ++i) {
      const odb_SectionLayer& layer = section.layup[i];
      const std::int64_t at = layers.addRow();
      const bool isText = layer.orientAngle().type() == odb_UNION_STRING;
      layers.integer(at, Layers::kMaterial) = saver.text(layer.material());
      layers.integer(at, Layers::kOrientIsText) = isText;
      layers.integer(at, Layers::kOrientText) = saver.text(layer.orientAngle().engineText());
      layers.integer(at, Layers::kNumIntPts) = layer.numIntPts();
      layers.integer(at, Layers::kAxis) = saver.text(layer.axis());
      layers.integer(at, Layers::kRotationType) = saver.text(layer.additionalRotationType());
      layers.integer(at, Layers::kThicknessType) = saver.text(layer.thicknessType());
      layers.integer(at, Layers::kPlyName) = saver.text(layer.plyName());
      const CsysData* csys = layer.orientation().engineData();
      layers.integer(at, Layers::kCsys) = csys ? csys->row : -1;
      layers.integer(at, Layers::kRotationField) = saver.text(layer.additionalRotationField());
      layers.integer(at, Layers::kThicknessField) = saver.text(layer.thicknessField());
      layers.real(at, Layers::kThickness) = layer.thickness();
      layers.real(at, Layers::kOrientNumber) = isText ? 0 : layer.orientAngle().getDouble();
      layers.real(at, Layers::kAngle) = static_cast<double>(layer.angle());
    }
  }
}

void saveMaterials(Model& model, Saver& saver) {
  Table& table = saver.table(Materials::shape);
  Table& behaviours = saver.table(Behaviours::shape);
  for (const MaterialData& material : model.materials) {
    const std::int64_t row = table.addRow();
    table.integer(row, Materials::kName) = saver.text(material.name);
    table.integer(row, Materials::kFirstBehaviour) = behaviours.nRows;
    for (int kind = 0; kind < kNBehaviours; ++kind) {
      const BehaviourData& behaviour = material.behaviours[kind];
      if (!behaviour.hasValue) continue;
      ++table.integer(row, Materials::kNBehaviours);
      const std::int64_t at = behaviours.addRow();
      behaviours.integer(at, Behaviours::kKind) = kind;
      writeNamedValues(saver, behaviours, at, Behaviours::kFirstProperty, behaviour.properties);
      writeNumberRows<odb_SequenceSequenceDouble, double>(
          saver, behaviours, at, Behaviours::kLengths, Behaviours::kData, behaviour.table);
    }
  }
}

void saveUserData(Model& model, Saver& saver) {
  Table& annotations = saver.table(Annotations::shape);
  const auto& texts = model.annotationHandles.engineItems();
  for (int i = 0; i < texts.size(); ++i) {
    const std::int64_t row = annotations.addRow();
    annotations.integer(row, Annotations::kKey) = saver.text(texts.at(i).key);
    annotations.integer(row, Annotations::kText) = saver.text(texts.at(i).value.text());
  }
  Table& curves = saver.table(Curves::shape);
  for (const CurveData& curve : model.curves) {
    const std::int64_t row = curves.addRow();
    curves.integer(row, Curves::kName) = saver.text(curve.name);
    for (int k = 0; k < 7; ++k) {
      curves.integer(row, Curves::kTexts + k) = saver.text(curve.texts[k]);
    }
    std::vector<float> numbers;
    for (int i = 0; i < curve.points.size(); ++i) {
      for (int k = 0; k < 2; ++k) {
        numbers.push_back(k < curve.points[i].size() ? curve.points[i][k] : 0);
      }
    }
    saver.numbers(curves, row, Curves::kPoints, numbers);
  }
}

}  // namespace

void loadProperties(ModelReading& reading) {
  reading.properties = std::make_unique<Rows>(reading.reader, P::shape);
  loadSections(reading);
  loadMaterials(reading);
  loadObjects(reading);
  loadUserData(reading);
}

void saveProperties(Model& model, Saver& saver) {
  saveSections(model, saver);
  saveMaterials(model, saver);
  saveObjects(model, saver);
  saveUserData(model, saver);
}

}  // namespace odbs::engine
