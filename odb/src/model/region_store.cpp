// SPDX-License-Identifier: BSD-3-Clause
// Sets, section assignments, orientations, analytic surfaces and rigid bodies to and from files.
#include "odb/src/model/database.h"
#include "odb/src/model/model_rows.h"
#include "odb/src/storage/errors.h"

namespace odbs::engine {

using layout::AnalyticSurfaces;
using layout::Assignments;
using layout::Kind;
using layout::Orientations;
using layout::RigidBodies;
using layout::Sets;
using layout::SetSegments;
using layout::SurfaceSegments;

odb_Set ModelReading::set(const Rows& rows, std::int64_t row, int viewer) {
  const std::int64_t number = rows.optionalIndex(row, viewer + 1, sets.size());
  if (number < 0) return odb_Set();
  EntityData& entity = model.entities[rows.index(row, viewer, model.entities.size())];
  SetData* data = sets[static_cast<std::size_t>(number)];
  if (data->owner == &entity) return odb_Set(data);
  if (entity.part != data->owner) rows.bad(row, viewer);
  return seenFrom(entity, odb_Set(data));
}

odb_DatumCsys ModelReading::csys(const Rows& rows, std::int64_t row, int column) {
  const std::int64_t number = rows.optionalIndex(row, column, model.csyses.size());
  if (number < 0) return odb_DatumCsys();
  return odb_DatumCsys(&model.csyses[static_cast<std::size_t>(number)]);
}

namespace {

EntityData& ownerOf(ModelReading& reading, const Rows& rows, std::int64_t row, int column) {
  return reading.model.entities[rows.index(row, column, reading.model.entities.size())];
}

void loadSets(ModelReading& reading) {
  const Rows rows(reading.reader, Sets::shape);
  const Rows segments(reading.reader, SetSegments::shape);
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    EntityData& owner = ownerOf(reading, rows, i, Sets::kOwner);
    const auto type = rows.choice(
        i, Sets::kType, {odb_Enum::NODE_SET, odb_Enum::ELEMENT_SET, odb_Enum::SURFACE_SET});
    const odb_String name = rows.text(i, Sets::kName);
    if (name.empty() || repositoryOf(owner, type).isMember(name)) rows.bad(i, Sets::kName);
    SetData& set = addSet(owner, type, name);
    const Range range = rows.range(i, Sets::kFirstSegment, segments.size());
    std::int64_t nMembers = 0;
    for (std::int64_t k = range.first; k < range.first + range.count; ++k) {
      SetSegment& segment = *set.segments.emplace_back(std::make_unique<SetSegment>());
      segment.entity = &ownerOf(reading, segments, k, SetSegments::kEntity);
      if (segment.entity != &owner && owner.kind != EntityKind::kAssembly) {
        segments.bad(k, SetSegments::kEntity);
      }
      segment.ofElements = segments.flag(k, SetSegments::kOfElements);
      if (type != odb_Enum::SURFACE_SET && segment.ofElements != (type == odb_Enum::ELEMENT_SET)) {
        segments.bad(k, SetSegments::kOfElements);
      }
      segment.labels.refer(segments.array(k, SetSegments::kLabels, Kind::kInt32, reading.file));
      segment.faces.refer(segments.array(k, SetSegments::kFaces, Kind::kInt32, reading.file));
      if (segment.faces.count() != 0 && segment.faces.count() != segment.labels.count()) {
        segments.bad(k, SetSegments::kNFaces);
      }
      nMembers += segment.labels.count();
      if (nMembers > INT32_MAX) segments.bad(k, SetSegments::kNLabels);
    }
    reading.sets.push_back(&set);
  }
}

void loadAssignments(ModelReading& reading) {
  const Rows rows(reading.reader, Assignments::shape);
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    EntityData& owner = ownerOf(reading, rows, i, Assignments::kOwner);
    AssignmentData& assignment = owner.assignments.emplace_back();
    assignment.database = &reading.database;
    assignment.region = reading.set(rows, i, Assignments::kViewer);
    assignment.sectionName = rows.text(i, Assignments::kSection);
    owner.assignmentHandles.append(odb_SectionAssignment(&assignment));
  }
}

void loadSurfaces(ModelReading& reading) {
  const Rows rows(reading.reader, AnalyticSurfaces::shape);
  const Rows segments(reading.reader, SurfaceSegments::shape);
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    EntityData& owner = ownerOf(reading, rows, i, AnalyticSurfaces::kOwner);
    if (owner.surface || owner.kind == EntityKind::kAssembly) {
      rows.bad(i, AnalyticSurfaces::kOwner);
    }
    auto surface = std::make_unique<SurfaceData>();
    surface->owner = &owner;
    surface->name = rows.text(i, AnalyticSurfaces::kName);
    surface->type = rows.text(i, AnalyticSurfaces::kType);
    surface->filletRadius = rows.real(i, AnalyticSurfaces::kFillet);
    surface->localCoordData = readNumberRows<odb_SequenceSequenceFloat, odb_SequenceFloat, float>(
        rows, i, AnalyticSurfaces::kLocalLengths, AnalyticSurfaces::kLocalData);
    const Range range = rows.range(i, AnalyticSurfaces::kFirstSegment, segments.size());
    for (std::int64_t k = range.first; k < range.first + range.count; ++k) {
      surface->segments.push_back(
          {segments.text(k, SurfaceSegments::kType),
           readNumberRows<odb_SequenceSequenceFloat, odb_SequenceFloat, float>(
               segments, k, SurfaceSegments::kLengths, SurfaceSegments::kData)});
    }
    setUpSurface(*surface);
    reading.surfaces.push_back(surface.get());
    owner.surface = std::move(surface);
    owner.surfaceHandle = odb_AnalyticSurface(owner.surface.get());
  }
}

void loadRigidBodies(ModelReading& reading) {
  const Rows rows(reading.reader, RigidBodies::shape);
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    EntityData& owner = ownerOf(reading, rows, i, RigidBodies::kOwner);
    RigidBodyData& body = owner.rigidBodies.emplace_back();
    body.reference = reading.set(rows, i, RigidBodies::kReferenceViewer);
    body.elements = reading.set(rows, i, RigidBodies::kElementsViewer);
    body.tieNodes = reading.set(rows, i, RigidBodies::kTieViewer);
    body.pinNodes = reading.set(rows, i, RigidBodies::kPinViewer);
    body.position =
        rows.choice(i, RigidBodies::kPosition, {odb_Enum::INPUT, odb_Enum::CENTER_OF_MASS});
    body.isothermal = rows.flag(i, RigidBodies::kIsothermal);
    const std::int64_t surface =
        rows.optionalIndex(i, RigidBodies::kSurface, reading.surfaces.size());
    if (surface >= 0) {
      body.surface = reading.surfaces[static_cast<std::size_t>(surface)];
      body.surfaceHandle = odb_AnalyticSurface(body.surface);
    }
    owner.rigidBodyHandles.append(odb_RigidBody(&body));
  }
}

void loadOrientations(ModelReading& reading) {
  using O = Orientations;
  const Rows rows(reading.reader, O::shape);
  const auto axes = {odb_Enum::AXIS_1, odb_Enum::AXIS_2, odb_Enum::AXIS_3};
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    EntityData& owner = ownerOf(reading, rows, i, O::kOwner);
    OrientationData& orientation = owner.orientations.emplace_back();
    orientation.kind = rows.choice(i, O::kKind,
                                   {OrientationKind::kBeam, OrientationKind::kMaterial,
                                    OrientationKind::kRebar, OrientationKind::kConnector});
    orientation.region = reading.set(rows, i, O::kViewer);
    orientation.csys1 = reading.csys(rows, i, O::kCsys1);
    orientation.csys2 = reading.csys(rows, i, O::kCsys2);
    orientation.axis1 = rows.choice(i, O::kAxis1, axes);
    orientation.axis2 = rows.choice(i, O::kAxis2, axes);
    orientation.stack = rows.choice(
        i, O::kStack,
        {odb_Enum::STACK_1, odb_Enum::STACK_2, odb_Enum::STACK_3, odb_Enum::STACK_ORIENTATION});
    orientation.method =
        rows.choice(i, O::kMethod, {odb_Enum::N1_COSINES, odb_Enum::CSYS, odb_Enum::VECT});
    orientation.same = rows.flag(i, O::kSame);
    for (const float number : rows.numbers<float>(i, O::kVector)) orientation.vector.append(number);
    orientation.angle1 = static_cast<float>(rows.real(i, O::kAngle1));
    orientation.angle2 = static_cast<float>(rows.real(i, O::kAngle2));
    addHandle(owner, orientation);
  }
}

void saveSets(EntityData& entity, Saver& saver) {
  Table& sets = saver.table(Sets::shape);
  Table& segments = saver.table(SetSegments::shape);
  for (SetData& set : entity.sets) {
    if (set.source) continue;
    set.row = sets.addRow();
    sets.integer(set.row, Sets::kOwner) = entity.row;
    sets.integer(set.row, Sets::kType) = set.type;
    sets.integer(set.row, Sets::kName) = saver.text(set.name);
    sets.integer(set.row, Sets::kFirstSegment) = segments.nRows;
    sets.integer(set.row, Sets::kNSegments) = static_cast<std::int64_t>(set.segments.size());
    for (const auto& segment : set.segments) {
      const std::int64_t row = segments.addRow();
      segments.integer(row, SetSegments::kEntity) = segment->entity->row;
      segments.integer(row, SetSegments::kOfElements) = segment->ofElements;
      saver.array(segments, row, SetSegments::kLabels, segment->labels);
      saver.array(segments, row, SetSegments::kFaces, segment->faces);
    }
  }
}

void saveSurface(EntityData& entity, Saver& saver) {
  if (!entity.surface) return;
  SurfaceData& surface = *entity.surface;
  Table& table = saver.table(AnalyticSurfaces::shape);
  Table& segments = saver.table(SurfaceSegments::shape);
  surface.row = table.addRow();
  table.integer(surface.row, AnalyticSurfaces::kOwner) = entity.row;
  table.integer(surface.row, AnalyticSurfaces::kName) = saver.text(surface.name);
  table.integer(surface.row, AnalyticSurfaces::kType) = saver.text(surface.type);
  table.integer(surface.row, AnalyticSurfaces::kFirstSegment) = segments.nRows;
  table.integer(surface.row, AnalyticSurfaces::kNSegments) =
      static_cast<std::int64_t>(surface.segments.size());
  writeNumberRows<odb_SequenceSequenceFloat, float>(
      saver, table, surface.row, AnalyticSurfaces::kLocalLengths, AnalyticSurfaces::kLocalData,
      surface.localCoordData);
  table.real(surface.row, AnalyticSurfaces::kFillet) = surface.filletRadius;
  for (const SegmentData& segment : surface.segments) {
    const std::int64_t row = segments.addRow();
    segments.integer(row, SurfaceSegments::kType) = saver.text(segment.type);
    writeNumberRows<odb_SequenceSequenceFloat, float>(
        saver, segments, row, SurfaceSegments::kLengths, SurfaceSegments::kData, segment.data);
  }
}

void saveAssignments(EntityData& entity, Saver& saver) {
  Table& table = saver.table(Assignments::shape);
  for (const AssignmentData& assignment : entity.assignments) {
    const std::int64_t row = table.addRow();
    table.integer(row, Assignments::kOwner) = entity.row;
    writeSet(table, row, Assignments::kViewer, assignment.region);
    table.integer(row, Assignments::kSection) = saver.text(assignment.sectionName);
  }
}

void saveRigidBodies(EntityData& entity, Saver& saver) {
  Table& table = saver.table(RigidBodies::shape);
  for (const RigidBodyData& body : entity.rigidBodies) {
    const std::int64_t row = table.addRow();
    table.integer(row, RigidBodies::kOwner) = entity.row;
    writeSet(table, row, RigidBodies::kReferenceViewer, body.reference);
    writeSet(table, row, RigidBodies::kElementsViewer, body.elements);
    writeSet(table, row, RigidBodies::kTieViewer, body.tieNodes);
    writeSet(table, row, RigidBodies::kPinViewer, body.pinNodes);
    table.integer(row, RigidBodies::kPosition) = body.position;
    table.integer(row, RigidBodies::kIsothermal) = body.isothermal;
    table.integer(row, RigidBodies::kSurface) = body.surface ? body.surface->row : -1;
  }
}

std::int64_t csysRow(const odb_DatumCsys& csys) {
  return csys.engineData() ? csys.engineData()->row : -1;
}

void saveOrientations(EntityData& entity, Saver& saver) {
  using O = Orientations;
  Table& table = saver.table(O::shape);
  for (const OrientationData& orientation : entity.orientations) {
    const std::int64_t row = table.addRow();
    table.integer(row, O::kOwner) = entity.row;
    table.integer(row, O::kKind) = static_cast<std::int64_t>(orientation.kind);
    writeSet(table, row, O::kViewer, orientation.region);
    table.integer(row, O::kCsys1) = csysRow(orientation.csys1);
    table.integer(row, O::kCsys2) = csysRow(orientation.csys2);
    table.integer(row, O::kAxis1) = orientation.axis1;
    table.integer(row, O::kAxis2) = orientation.axis2;
    table.integer(row, O::kStack) = orientation.stack;
    table.integer(row, O::kMethod) = orientation.method;
    table.integer(row, O::kSame) = orientation.same;
    saver.numbers(table, row, O::kVector, orientation.vector.engineItems());
    table.real(row, O::kAngle1) = static_cast<double>(orientation.angle1);
    table.real(row, O::kAngle2) = static_cast<double>(orientation.angle2);
  }
}

}  // namespace

void writeSet(Table& table, std::int64_t row, int viewer, const odb_Set& set) {
  const SetData* data = set.engineData();
  table.integer(row, viewer) = data ? data->owner->row : -1;
  table.integer(row, viewer + 1) = !data ? -1 : data->source ? data->source->row : data->row;
}

void loadRegions(ModelReading& reading) {
  loadSets(reading);
  loadAssignments(reading);
  loadSurfaces(reading);
  loadRigidBodies(reading);
  loadOrientations(reading);
}

void saveRegions(Model& model, Saver& saver) {
  for (EntityData& entity : model.entities) saveSets(entity, saver);
  for (EntityData& entity : model.entities) saveSurface(entity, saver);
  for (EntityData& entity : model.entities) {
    saveAssignments(entity, saver);
    saveRigidBodies(entity, saver);
    saveOrientations(entity, saver);
  }
}

}  // namespace odbs::engine
