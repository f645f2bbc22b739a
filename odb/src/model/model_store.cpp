// SPDX-License-Identifier: BSD-3-Clause
// The model to and from files: the database's own row, entities, element blocks, section
// categories, datum systems. Arrays are only checked for their place; they are read at first use.
#include "odb/src/model/database.h"
#include "odb/src/model/model_rows.h"
#include "odb/src/storage/errors.h"

#include <climits>

namespace odbs::engine {

namespace {

using layout::Categories;
using layout::Csyses;
using layout::ElementBlocks;
using layout::Entities;
using layout::Kind;
using layout::SectionPoints;

void loadCategories(ModelReading& reading) {
  const Rows rows(reading.reader, Categories::shape);
  const Rows points(reading.reader, SectionPoints::shape);
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    CategoryData& category = reading.model.categories.emplace_back();
    category.database = &reading.database;
    category.name = rows.text(i, Categories::kName);
    category.description = rows.text(i, Categories::kDescription);
    const Range range = rows.range(i, Categories::kFirstPoint, points.size());
    for (std::int64_t k = range.first; k < range.first + range.count; ++k) {
      addPoint(category, points.number(k, SectionPoints::kNumber),
               points.text(k, SectionPoints::kDescription));
    }
    if (reading.model.categoryHandles.isMember(category.name)) rows.bad(i, Categories::kName);
    category.self = &reading.model.categoryHandles.engineItems().add(
        category.name, odb_SectionCategory(&category));
    reading.categories.push_back(&category);
  }
}

void loadCsyses(ModelReading& reading) {
  const Rows rows(reading.reader, Csyses::shape);
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    CsysData& csys = reading.model.csyses.emplace_back();
    csys.name = rows.text(i, Csyses::kName);
    csys.type = rows.choice(i, Csyses::kType,
                            {odb_Enum::CARTESIAN, odb_Enum::CYLINDRICAL, odb_Enum::SPHERICAL});
    for (int k = 0; k < Csyses::kNReals; ++k) {
      csys.axes[k / 3][k % 3] = static_cast<float>(rows.real(i, k));
    }
    if (reading.model.csysHandles.isMember(csys.name)) rows.bad(i, Csyses::kName);
    reading.model.csysHandles.engineItems().add(csys.name, odb_DatumCsys(&csys));
  }
}

// Arrays and element blocks of a part or the assembly.
void loadArrays(ModelReading& reading, EntityData& entity, const Rows& rows, std::int64_t row,
                const Rows& blocks) {
  const auto refer = [&](auto& array, int column, Kind kind) {
    array.refer(rows.array(row, column, kind, reading.file));
  };
  refer(entity.nodeLabels, Entities::kNodeLabels, Kind::kInt32);
  refer(entity.coordinates, Entities::kCoordinates, Kind::kFloat32);
  refer(entity.elementLabels, Entities::kElementLabels, Kind::kInt32);
  refer(entity.connectivity, Entities::kConnectivity, Kind::kInt32);
  refer(entity.nodeEntities, Entities::kNodeEntities, Kind::kInt32);
  if (entity.coordinates.count() != 3 * entity.nodeLabels.count()) {
    rows.bad(row, Entities::kNCoordinates);
  }
  if (entity.nodeEntities.count() != 0 &&
      entity.nodeEntities.count() != entity.connectivity.count()) {
    rows.bad(row, Entities::kNNodeEntities);
  }
  const Range range = rows.range(row, Entities::kFirstBlock, blocks.size());
  std::int64_t nElements = 0;
  std::int64_t nConnected = 0;
  for (std::int64_t k = range.first; k < range.first + range.count; ++k) {
    BlockData& block = entity.blocks.emplace_back();
    block.nElements = blocks.number(k, ElementBlocks::kNElements);
    block.nNodes = blocks.number(k, ElementBlocks::kNNodes);
    if (block.nElements < 0) blocks.bad(k, ElementBlocks::kNElements);
    if (block.nNodes < 0) blocks.bad(k, ElementBlocks::kNNodes);
    block.type = &*reading.model.typeNames.insert(blocks.text(k, ElementBlocks::kType)).first;
    const std::int64_t category =
        blocks.optionalIndex(k, ElementBlocks::kCategory, reading.categories.size());
    if (category >= 0) block.category = reading.categories[static_cast<std::size_t>(category)];
    nElements += block.nElements;
    nConnected += std::int64_t(block.nElements) * block.nNodes;
    if (nElements > INT_MAX || nConnected > INT_MAX) rows.bad(row, Entities::kNBlocks);
  }
  if (nElements != entity.elementLabels.count()) rows.bad(row, Entities::kNElementLabels);
  if (nConnected != entity.connectivity.count()) rows.bad(row, Entities::kNConnectivity);
}

void placeEntity(EntityData& entity, const Rows& rows, std::int64_t row) {
  for (int k = 0; k < 9; ++k) entity.axes[k / 3][k % 3] = rows.real(row, Entities::kAxes + k);
  for (int k = 0; k < 3; ++k) entity.translation[k] = rows.real(row, Entities::kTranslation + k);
  for (int k = 0; k < 9; ++k) {
    if (entity.axes[k / 3][k % 3] != (k % 4 == 0 ? 1.0 : 0.0)) entity.placed = true;
  }
  for (const double shift : entity.translation) {
    if (shift != 0) entity.placed = true;
  }
}

void loadEntities(ModelReading& reading) {
  Model& model = reading.model;
  const Rows rows(reading.reader, Entities::shape);
  const Rows blocks(reading.reader, ElementBlocks::shape);
  if (rows.size() == 0) failDamaged(reading.reader.path() + ": there is no assembly");
  for (std::int64_t row = 0; row < rows.size(); ++row) {
    const EntityKind kind = rows.choice(
        row, Entities::kKind, {EntityKind::kAssembly, EntityKind::kPart, EntityKind::kInstance});
    if ((kind == EntityKind::kAssembly) != (row == 0)) rows.bad(row, Entities::kKind);
    const odb_String name =
        row == 0 ? reading.database.assemblyName : rows.text(row, Entities::kName);
    EntityData& entity = addEntity(model, reading.database, kind, name);
    entity.space = rows.choice(row, Entities::kSpace,
                               {odb_Enum::UNKNOWN_DIMENSION, odb_Enum::THREE_D,
                                odb_Enum::TWO_D_PLANAR, odb_Enum::AXISYMMETRIC});
    entity.type = rows.choice(row, Entities::kType,
                              {odb_Enum::UNKNOWN_PART_TYPE, odb_Enum::DEFORMABLE_BODY,
                               odb_Enum::ANALYTIC_RIGID_SURFACE, odb_Enum::DISCRETE_RIGID_SURFACE});
    if (kind == EntityKind::kInstance) {
      const std::size_t part = rows.index(row, Entities::kPart, static_cast<std::size_t>(row));
      entity.part = &model.entities[part];
      if (entity.part->kind != EntityKind::kPart) rows.bad(row, Entities::kPart);
      placeEntity(entity, rows, row);
      if (model.instances.isMember(name)) rows.bad(row, Entities::kName);
      model.instances.engineItems().add(name, odb_Instance(&entity));
      continue;
    }
    loadArrays(reading, entity, rows, row, blocks);
    if (kind == EntityKind::kAssembly) continue;
    if (model.parts.isMember(name)) rows.bad(row, Entities::kName);
    model.parts.engineItems().add(name, odb_Part(&entity));
  }
  model.assembly = odb_Assembly(&model.root());
}

void saveCategories(Model& model, Saver& saver) {
  Table& table = saver.table(Categories::shape);
  Table& points = saver.table(SectionPoints::shape);
  for (CategoryData& category : model.categories) {
    category.row = table.addRow();
    table.integer(category.row, Categories::kName) = saver.text(category.name);
    table.integer(category.row, Categories::kDescription) = saver.text(category.description);
    table.integer(category.row, Categories::kFirstPoint) = points.nRows;
    table.integer(category.row, Categories::kNPoints) =
        static_cast<std::int64_t>(category.points.size());
    for (const SectionPointData& point : category.points) {
      const std::int64_t row = points.addRow();
      points.integer(row, SectionPoints::kNumber) = point.number;
      points.integer(row, SectionPoints::kDescription) = saver.text(point.description);
    }
  }
}

void saveCsyses(Model& model, Saver& saver) {
  Table& table = saver.table(Csyses::shape);
  for (CsysData& csys : model.csyses) {
    csys.row = table.addRow();
    table.integer(csys.row, Csyses::kName) = saver.text(csys.name);
    table.integer(csys.row, Csyses::kType) = csys.type;
    for (int k = 0; k < Csyses::kNReals; ++k) {
      table.real(csys.row, k) = static_cast<double>(csys.axes[k / 3][k % 3]);
    }
  }
}

void saveEntities(Model& model, Saver& saver) {
  Table& table = saver.table(Entities::shape);
  Table& blocks = saver.table(ElementBlocks::shape);
  for (EntityData& entity : model.entities) {
    const std::int64_t row = table.addRow();
    table.integer(row, Entities::kKind) = static_cast<std::int64_t>(entity.kind);
    table.integer(row, Entities::kName) = saver.text(entity.name);
    table.integer(row, Entities::kSpace) = entity.space;
    table.integer(row, Entities::kType) = entity.type;
    table.integer(row, Entities::kPart) = entity.part ? entity.part->row : -1;
    saver.array(table, row, Entities::kNodeLabels, entity.nodeLabels);
    saver.array(table, row, Entities::kCoordinates, entity.coordinates);
    saver.array(table, row, Entities::kElementLabels, entity.elementLabels);
    saver.array(table, row, Entities::kConnectivity, entity.connectivity);
    saver.array(table, row, Entities::kNodeEntities, entity.nodeEntities);
    table.integer(row, Entities::kFirstBlock) = blocks.nRows;
    table.integer(row, Entities::kNBlocks) = static_cast<std::int64_t>(entity.blocks.size());
    for (const BlockData& block : entity.blocks) {
      const std::int64_t at = blocks.addRow();
      blocks.integer(at, ElementBlocks::kNElements) = block.nElements;
      blocks.integer(at, ElementBlocks::kType) = saver.text(*block.type);
      blocks.integer(at, ElementBlocks::kCategory) = block.category ? block.category->row : -1;
      blocks.integer(at, ElementBlocks::kNNodes) = block.nNodes;
    }
    for (int k = 0; k < 9; ++k) table.real(row, Entities::kAxes + k) = entity.axes[k / 3][k % 3];
    for (int k = 0; k < 3; ++k) table.real(row, Entities::kTranslation + k) = entity.translation[k];
  }
}

}  // namespace

std::unique_ptr<Model> newModel(Database& database) {
  auto model = std::make_unique<Model>();
  addEntity(*model, database, EntityKind::kAssembly, database.assemblyName);
  model->assembly = odb_Assembly(&model->root());
  return model;
}

std::unique_ptr<Model> loadModel(Database& database, FileReader& reader, int file) {
  const FileReader::Use use(reader);
  auto model = std::make_unique<Model>();
  ModelReading reading{database, *model, reader, file, {}, {}, {}, nullptr};
  loadCategories(reading);
  loadCsyses(reading);
  loadEntities(reading);
  loadRegions(reading);
  loadProperties(reading);
  return model;
}

void saveModel(Model& model, Saver& saver) {
  saveCategories(model, saver);
  saveCsyses(model, saver);
  saveEntities(model, saver);
  saveRegions(model, saver);
  saveProperties(model, saver);
}

void loadDatabaseRow(Database& database, FileReader& reader) {
  using D = layout::Database;
  const Rows rows(reader, D::shape);
  if (rows.size() != 1) failDamaged(reader.path() + ": the database has no description");
  database.title = rows.text(0, D::kTitle);
  database.description = rows.text(0, D::kDescription);
  database.assemblyName = rows.text(0, D::kAssemblyName);
  odb_JobData& job = database.job;
  job.analysisCode_ = rows.choice(0, D::kAnalysisCode,
                                  {odb_Enum::UNKNOWN_ANALYSIS_CODE, odb_Enum::ABAQUS_STANDARD,
                                   odb_Enum::ABAQUS_EXPLICIT, odb_Enum::ABAQUS_CFD});
  job.precision_ =
      rows.choice(0, D::kPrecision, {odb_Enum::SINGLE_PRECISION, odb_Enum::DOUBLE_PRECISION});
  job.name_ = rows.text(0, D::kJobName);
  job.version_ = rows.text(0, D::kJobVersion);
  job.creationTime_ = rows.text(0, D::kCreated);
  job.modificationTime_ = rows.text(0, D::kModified);
  job.machineName_ = rows.text(0, D::kMachine);
  for (const int code : rows.numbers<int>(0, D::kAddOns)) {
    if (code < odb_Enum::AQUA || code > odb_Enum::CAVPARALLEL) rows.bad(0, D::kAddOns);
    job.productAddOns_.append(static_cast<odb_Enum::odb_ProductAddOnEnum>(code));
  }
  database.sector.numSectors_ = rows.number(0, D::kNSectors);
  for (int p = 0; p < 2 && database.sector.numSectors_ != 0; ++p) {
    odb_SequenceFloat point;
    for (int k = 0; k < 3; ++k) {
      point.append(static_cast<float>(rows.real(0, D::kAxis + 3 * p + k)));
    }
    database.sector.symmetryAxis_.append(point);
  }
}

void saveDatabaseRow(Database& database, Saver& saver) {
  using D = layout::Database;
  Table& table = saver.table(D::shape);
  const std::int64_t row = table.addRow();
  table.integer(row, D::kTitle) = saver.text(database.title);
  table.integer(row, D::kDescription) = saver.text(database.description);
  table.integer(row, D::kAssemblyName) = saver.text(database.assemblyName);
  const odb_JobData& job = database.job;
  table.integer(row, D::kAnalysisCode) = job.analysisCode();
  table.integer(row, D::kPrecision) = job.precision();
  table.integer(row, D::kJobName) = saver.text(job.name());
  table.integer(row, D::kJobVersion) = saver.text(job.version());
  table.integer(row, D::kCreated) = saver.text(job.creationTime());
  table.integer(row, D::kModified) = saver.text(job.modificationTime());
  table.integer(row, D::kMachine) = saver.text(job.machineName());
  table.integer(row, D::kNSectors) = database.sector.numSectors();
  const auto& addOns = job.productAddOns().engineItems();
  saver.numbers(table, row, D::kAddOns, std::vector<int>(addOns.begin(), addOns.end()));
  const odb_SequenceSequenceFloat& axis = database.sector.symmetryAxis();
  for (int p = 0; p < 2 && p < axis.size(); ++p) {
    for (int k = 0; k < 3 && k < axis[p].size(); ++k) {
      table.real(row, D::kAxis + 3 * p + k) = static_cast<double>(axis[p][k]);
    }
  }
}

}  // namespace odbs::engine
