// SPDX-License-Identifier: BSD-3-Clause
// The assembly's own getters, datum systems, orientations, analytic surfaces, rigid bodies.
#include "odb/src/model/database.h"
#include "odb/src/model/entity_write.h"
#include "odb/src/storage/errors.h"

#include <cmath>

namespace odbs::engine {

namespace {

const CsysData& noCsys() {
  static const CsysData none;
  return none;
}

const odb_DatumCsys& noCsysHandle() {
  static const odb_DatumCsys none;
  return none;
}

OrientationData& addOrientation(EntityData& entity, const OrientationData& orientation) {
  entity.database->needWritable();
  const SetData* set = orientation.region.engineData();
  if (!set || set->type != odb_Enum::ELEMENT_SET || set->owner != &entity) {
    failUsage(std::string("an orientation wants an element set of ") + entity.name.CStr());
  }
  inheritOrientations(entity);
  OrientationData& added = entity.orientations.emplace_back(orientation);
  addHandle(entity, added);
  entity.database->touch();
  return added;
}

void addAnalyticSurface(EntityData& entity, const char* type, const odb_String& name,
                        const odb_SequenceAnalyticSurfaceSegment& profile, double filletRadius,
                        const odb_SequenceSequenceFloat& localCoordData) {
  entity.database->needWritable();
  const bool planar = std::string(type) == "SEGMENTS";
  if (planar == (entity.space == odb_Enum::THREE_D)) {
    failUsage(std::string("the analytic surface does not fit the dimension of ") +
              entity.name.CStr());
  }
  if (entity.surface) {
    failUsage(std::string(entity.name.CStr()) + " has an analytic surface already");
  }
  auto surface = std::make_unique<SurfaceData>();
  surface->owner = &entity;
  surface->name = name;
  surface->type = type;
  surface->filletRadius = filletRadius;
  surface->localCoordData = localCoordData;
  for (int i = 0; i < profile.size(); ++i) {
    surface->segments.push_back({profile[i].type(), profile[i].data()});
  }
  setUpSurface(*surface);
  entity.surface = std::move(surface);
  entity.surfaceHandle = odb_AnalyticSurface(entity.surface.get());
  entity.database->touch();
}

}  // namespace

void setUpSurface(SurfaceData& surface) {
  surface.handles = odb_SequenceAnalyticSurfaceSegment();
  for (SegmentData& segment : surface.segments) {
    surface.handles.append(odb_AnalyticSurfaceSegment(&segment));
  }
}

void addHandle(EntityData& entity, OrientationData& orientation) {
  switch (orientation.kind) {
    case OrientationKind::kBeam:
      entity.beamOrientations.append(odb_BeamOrientation(&orientation));
      break;
    case OrientationKind::kMaterial:
      entity.materialOrientations.append(odb_MaterialOrientation(&orientation));
      break;
    case OrientationKind::kRebar:
      entity.rebarOrientations.append(odb_RebarOrientation(&orientation));
      break;
    case OrientationKind::kConnector:
      entity.connectorOrientations.append(odb_ConnectorOrientation(&orientation));
      break;
  }
}

void inheritOrientations(EntityData& entity) {
  if (!entity.part) return;
  int& taken = entity.nInheritedOrientations;
  for (; static_cast<std::size_t>(taken) < entity.part->orientations.size(); ++taken) {
    OrientationData& shown = entity.inheritedOrientations.emplace_back(
        entity.part->orientations[static_cast<std::size_t>(taken)]);
    shown.region = seenFrom(entity, shown.region);
    addHandle(entity, shown);
  }
}

void inheritRigidBodies(EntityData& entity) {
  if (!entity.part) return;
  int& taken = entity.nInheritedRigidBodies;
  for (; static_cast<std::size_t>(taken) < entity.part->rigidBodies.size(); ++taken) {
    RigidBodyData& shown = entity.inheritedRigidBodies.emplace_back(
        entity.part->rigidBodies[static_cast<std::size_t>(taken)]);
    for (odb_Set* set : {&shown.reference, &shown.elements, &shown.tieNodes, &shown.pinNodes}) {
      *set = seenFrom(entity, *set);
    }
    entity.rigidBodyHandles.append(odb_RigidBody(&shown));
  }
}

RigidBodyData& addRigidBody(EntityData& owner, const RigidBodyData& body) {
  owner.database->needWritable();
  const SetData* reference = body.reference.engineData();
  if (!reference || reference->type != odb_Enum::NODE_SET ||
      reference->owner->model != owner.model) {
    failUsage("a rigid body wants a node set as reference");
  }
  for (const odb_Set* set : {&body.elements, &body.tieNodes, &body.pinNodes}) {
    if (set->engineData() && set->engineData()->owner->model != owner.model) {
      failUsage("a rigid body wants sets of its own database");
    }
  }
  inheritRigidBodies(owner);
  RigidBodyData& added = owner.rigidBodies.emplace_back(body);
  if (added.surface) added.surfaceHandle = odb_AnalyticSurface(added.surface);
  owner.rigidBodyHandles.append(odb_RigidBody(&added));
  owner.database->touch();
  return added;
}

}  // namespace odbs::engine

using namespace odbs::engine;

// ---- The assembly ----

odb_InstanceRepository& odb_Assembly::instances() const {
  return need().model->instances;
}
odb_DatumCsysRepository& odb_Assembly::datumCsyses() const {
  return need().model->csysHandles;
}
odb_SequencePretensionSection& odb_Assembly::pretensionSections() const {
  return need().model->pretensionSections;
}
odb_SequenceConnectorOrientation& odb_Assembly::connectorOrientations() const {
  return need().connectorOrientations;
}

void odb_Assembly::ConnectorOrientation(const odb_Set& region, const odb_DatumCsys& csys1,
                                        odb_Enum::odb_AxisEnum axis1, float angle1,
                                        const odb_DatumCsys& csys2, odb_Enum::odb_AxisEnum axis2,
                                        float angle2) {
  OrientationData orientation;
  orientation.kind = OrientationKind::kConnector;
  orientation.region = region;
  orientation.csys1 = csys1;
  orientation.axis1 = axis1;
  orientation.angle1 = angle1;
  orientation.csys2 = csys2;
  orientation.axis2 = axis2;
  orientation.angle2 = angle2;
  addOrientation(need(), orientation);
}

void odb_Assembly::ConnectorOrientation(const odb_Set& region, const odb_DatumCsys& csys1,
                                        odb_Enum::odb_AxisEnum axis1, float angle1,
                                        bool orient2sameAs1) {
  OrientationData orientation;
  orientation.kind = OrientationKind::kConnector;
  orientation.region = region;
  orientation.csys1 = csys1;
  orientation.axis1 = axis1;
  orientation.angle1 = angle1;
  orientation.same = orient2sameAs1;
  addOrientation(need(), orientation);
}

odb_DatumCsys& odb_Assembly::DatumCsysByThreePoints(const odb_String& name,
                                                    odb_Enum::odb_DatumCsysTypeEnum type,
                                                    const odb_SequenceFloat& origin,
                                                    const odb_SequenceFloat& pointOnX,
                                                    const odb_SequenceFloat& pointInPlane) {
  EntityData& entity = need();
  entity.database->needWritable();
  if (name.empty() || entity.model->csysHandles.isMember(name)) {
    failUsage(std::string("datum system \"") + name.CStr() + "\" has no name or exists already");
  }
  double p[3][3] = {};
  const odb_SequenceFloat* points[3] = {&origin, &pointOnX, &pointInPlane};
  for (int i = 0; i < 3; ++i) {
    for (int k = 0; k < 3 && k < points[i]->size(); ++k) {
      p[i][k] = static_cast<double>((*points[i])[k]);
    }
  }
  double axes[3][3];
  for (int k = 0; k < 3; ++k) {
    axes[0][k] = p[1][k] - p[0][k];
    axes[1][k] = p[2][k] - p[0][k];
  }
  const auto cross = [](const double* a, const double* b, double* out) {
    out[0] = a[1] * b[2] - a[2] * b[1];
    out[1] = a[2] * b[0] - a[0] * b[2];
    out[2] = a[0] * b[1] - a[1] * b[0];
  };
  cross(axes[0], axes[1], axes[2]);
  cross(axes[2], axes[0], axes[1]);
  CsysData data;
  data.name = name;
  data.type = type;
  for (int k = 0; k < 3; ++k) data.axes[0][k] = static_cast<float>(p[0][k]);
  for (int a = 0; a < 3; ++a) {
    const double length =
        std::sqrt(axes[a][0] * axes[a][0] + axes[a][1] * axes[a][1] + axes[a][2] * axes[a][2]);
    if (!(length > 0)) failUsage("the three points of a datum system lie on a line");
    for (int k = 0; k < 3; ++k) data.axes[a + 1][k] = static_cast<float>(axes[a][k] / length);
  }
  entity.model->csyses.push_back(data);
  entity.database->touch();
  return entity.model->csysHandles.engineItems().add(name,
                                                     odb_DatumCsys(&entity.model->csyses.back()));
}

// ---- Datum systems ----

const odb_String& odb_DatumCsys::name() const {
  return (data_ ? *data_ : noCsys()).name;
}
odb_Enum::odb_DatumCsysTypeEnum odb_DatumCsys::type() const {
  return need().type;
}
const float* odb_DatumCsys::origin() const {
  return need().axes[0];
}
const float* odb_DatumCsys::xAxis() const {
  return need().axes[1];
}
const float* odb_DatumCsys::yAxis() const {
  return need().axes[2];
}
const float* odb_DatumCsys::zAxis() const {
  return need().axes[3];
}

// ---- Orientations ----

odb_Set& odb_BeamOrientation::region() const {
  return need().region;
}
odb_Enum::odb_OrientationMethodEnum odb_BeamOrientation::method() const {
  return need().method;
}
const odb_SequenceFloat& odb_BeamOrientation::vector() const {
  return need().vector;
}

odb_Set& odb_MaterialOrientation::region() const {
  return need().region;
}
const odb_DatumCsys& odb_MaterialOrientation::csys() const {
  return need().csys1;
}
odb_Enum::odb_AxisEnum odb_MaterialOrientation::axis() const {
  return need().axis1;
}
float odb_MaterialOrientation::angle() const {
  return need().angle1;
}
odb_Enum::odb_StackDirectionEnum odb_MaterialOrientation::stackDirection() const {
  return need().stack;
}

odb_Set& odb_RebarOrientation::region() const {
  return need().region;
}
const odb_DatumCsys& odb_RebarOrientation::csys() const {
  return need().csys1;
}
odb_Enum::odb_AxisEnum odb_RebarOrientation::axis() const {
  return need().axis1;
}
float odb_RebarOrientation::angle() const {
  return need().angle1;
}

odb_Set& odb_ConnectorOrientation::region() const {
  return need().region;
}
const odb_DatumCsys& odb_ConnectorOrientation::csys1() const {
  return hasCsys1() ? need().csys1 : noCsysHandle();
}
const odb_DatumCsys& odb_ConnectorOrientation::csys2() const {
  return hasCsys2() ? need().csys2 : noCsysHandle();
}
bool odb_ConnectorOrientation::hasCsys1() const {
  return need().csys1.engineData() != nullptr;
}
bool odb_ConnectorOrientation::hasCsys2() const {
  return need().csys2.engineData() != nullptr;
}
odb_Enum::odb_AxisEnum odb_ConnectorOrientation::axis1() const {
  return need().axis1;
}
odb_Enum::odb_AxisEnum odb_ConnectorOrientation::axis2() const {
  return need().axis2;
}
float odb_ConnectorOrientation::angle1() const {
  return need().angle1;
}
float odb_ConnectorOrientation::angle2() const {
  return need().angle2;
}
bool odb_ConnectorOrientation::orient2sameAs1() const {
  return need().same;
}

const odb_SequenceBeamOrientation& odb_PartEntity::beamOrientations() const {
  inheritOrientations(need());
  return need().beamOrientations;
}
const odb_SequenceMaterialOrientation& odb_PartEntity::materialOrientations() const {
  inheritOrientations(need());
  return need().materialOrientations;
}
const odb_SequenceRebarOrientation& odb_PartEntity::rebarOrientations() const {
  inheritOrientations(need());
  return need().rebarOrientations;
}

void odb_PartEntity::assignMaterialOrientation(const odb_Set& region, const odb_DatumCsys& csys,
                                               odb_Enum::odb_AxisEnum axis, float angle,
                                               odb_Enum::odb_StackDirectionEnum stack) {
  OrientationData orientation;
  orientation.kind = OrientationKind::kMaterial;
  orientation.region = region;
  orientation.csys1 = csys;
  orientation.axis1 = axis;
  orientation.angle1 = angle;
  orientation.stack = stack;
  addOrientation(need(), orientation);
}

void odb_PartEntity::assignBeamOrientation(const odb_Set& region,
                                           odb_Enum::odb_OrientationMethodEnum method,
                                           const odb_SequenceFloat& vector) {
  OrientationData orientation;
  orientation.kind = OrientationKind::kBeam;
  orientation.region = region;
  orientation.method = method;
  orientation.vector = vector;
  addOrientation(need(), orientation);
}

void odb_PartEntity::assignRebarOrientation(const odb_Set& region, const odb_DatumCsys& csys,
                                            odb_Enum::odb_AxisEnum axis, float angle) {
  OrientationData orientation;
  orientation.kind = OrientationKind::kRebar;
  orientation.region = region;
  orientation.csys1 = csys;
  orientation.axis1 = axis;
  orientation.angle1 = angle;
  addOrientation(need(), orientation);
}

// ---- Analytic surfaces ----

odb_AnalyticSurfaceSegment::odb_AnalyticSurfaceSegment(const odb_String& type,
                                                       const odb_SequenceSequenceFloat& data)
    : own_(std::make_shared<SegmentData>(SegmentData{type, data})) {
  data_ = own_.get();
}
const odb_String& odb_AnalyticSurfaceSegment::type() const {
  return need().type;
}
const odb_SequenceSequenceFloat& odb_AnalyticSurfaceSegment::data() const {
  return need().data;
}

const odb_String& odb_AnalyticSurface::name() const {
  return need().name;
}
const odb_String& odb_AnalyticSurface::type() const {
  return need().type;
}
double odb_AnalyticSurface::filletRadius() const {
  return need().filletRadius;
}
const odb_SequenceSequenceFloat& odb_AnalyticSurface::localCoordData() const {
  return need().localCoordData;
}
const odb_SequenceAnalyticSurfaceSegment& odb_AnalyticSurface::segments() const {
  return need().handles;
}

bool odb_PartEntity::hasAnalyticSurface() const {
  const EntityData& entity = need();
  return entity.surface || (entity.part && entity.part->surface);
}

const odb_AnalyticSurface& odb_PartEntity::analyticSurface() const {
  const EntityData& entity = need();
  if (entity.surface) return entity.surfaceHandle;
  if (entity.part && entity.part->surface) return entity.part->surfaceHandle;
  failAbsent(std::string(entity.name.CStr()) + " has no analytic surface");
}

void odb_PartEntity::AnalyticRigidSurf2DPlanar(const odb_String& name,
                                               const odb_SequenceAnalyticSurfaceSegment& profile,
                                               double filletRadius) {
  addAnalyticSurface(need(), "SEGMENTS", name, profile, filletRadius, {});
}

void odb_PartEntity::AnalyticRigidSurfExtrude(const odb_String& name,
                                              const odb_SequenceAnalyticSurfaceSegment& profile,
                                              double filletRadius,
                                              const odb_SequenceSequenceFloat& localCoordData) {
  addAnalyticSurface(need(), "CYLINDER", name, profile, filletRadius, localCoordData);
}

void odb_PartEntity::AnalyticRigidSurfRevolve(const odb_String& name,
                                              const odb_SequenceAnalyticSurfaceSegment& profile,
                                              double filletRadius,
                                              const odb_SequenceSequenceFloat& localCoordData) {
  addAnalyticSurface(need(), "REVOLUTION", name, profile, filletRadius, localCoordData);
}

// ---- Rigid bodies ----

odb_SequenceRigidBody& odb_DiscreteEntity::rigidBodies() const {
  inheritRigidBodies(need());
  return need().rigidBodyHandles;
}

void odb_DiscreteEntity::RigidBody(const odb_Set& reference, odb_Enum::odb_PositionEnum position,
                                   bool isothermal, const odb_Set& elements,
                                   const odb_Set& pinNodes, const odb_Set& tieNodes) {
  RigidBodyData body;
  body.reference = reference;
  body.position = position;
  body.isothermal = isothermal;
  body.elements = elements;
  body.pinNodes = pinNodes;
  body.tieNodes = tieNodes;
  odbs::engine::addRigidBody(need(), body);
}

static odb_Set& presentSet(odb_Set& set, const char* what) {
  if (!set.engineData()) failAbsent(std::string("the rigid body has no ") + what);
  return set;
}

odb_Set& odb_RigidBody::referenceNodeSet() const {
  return need().reference;
}
odb_ReferencePosition odb_RigidBody::position() const {
  return odb_ReferencePosition(need().position);
}
bool odb_RigidBody::isothermal() const {
  return need().isothermal;
}
bool odb_RigidBody::hasAnalyticSurface() const {
  return need().surface != nullptr;
}
const odb_AnalyticSurface& odb_RigidBody::analyticSurface() const {
  if (!hasAnalyticSurface()) failAbsent("the rigid body has no analytic surface");
  return need().surfaceHandle;
}
odb_Set& odb_RigidBody::elements() const {
  return presentSet(need().elements, "elements");
}
odb_Set& odb_RigidBody::tieNodes() const {
  return presentSet(need().tieNodes, "tie nodes");
}
odb_Set& odb_RigidBody::pinNodes() const {
  return presentSet(need().pinNodes, "pin nodes");
}
