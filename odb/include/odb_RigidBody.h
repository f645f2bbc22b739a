// SPDX-License-Identifier: BSD-3-Clause
// Analytic surfaces and rigid bodies.
#pragma once

#include <odb_Orientations.h>

namespace odbs {
namespace engine {
struct SurfaceData;
struct SegmentData;
struct RigidBodyData;
}  // namespace engine
}  // namespace odbs

// One piece of an analytic surface's profile.
class odb_AnalyticSurfaceSegment : public odbs::Handle<odbs::engine::SegmentData> {
 public:
  using Handle::Handle;
  odb_AnalyticSurfaceSegment() = default;
  // A segment for a profile to be written. `type` is START, LINE, CIRCLE or PARABOLA; `data` are
  // its points.
  odb_AnalyticSurfaceSegment(const odb_String& type, const odb_SequenceSequenceFloat& data);
  const odb_String& type() const;
  const odb_SequenceSequenceFloat& data() const;

 private:
  std::shared_ptr<odbs::engine::SegmentData> own_;
};

ODBS_OBJECT_SEQUENCE(odb_SequenceAnalyticSurfaceSegment, odb_AnalyticSurfaceSegment);

class odb_AnalyticSurface : public odbs::Handle<odbs::engine::SurfaceData> {
 public:
  using Handle::Handle;
  const odb_String& name() const;
  // SEGMENTS, CYLINDER or REVOLUTION.
  const odb_String& type() const;
  double filletRadius() const;
  // Rows of coordinates that position the profile; empty when it is in the part's system.
  const odb_SequenceSequenceFloat& localCoordData() const;
  const odb_SequenceAnalyticSurfaceSegment& segments() const;
};

// Where the reference node of a rigid body is: the enumerator, or its name as a text.
class odb_ReferencePosition {
 public:
  explicit odb_ReferencePosition(odb_Enum::odb_PositionEnum position) : position_(position) {}
  operator odb_Enum::odb_PositionEnum() const { return position_; }
  // "INPUT" or "CENTER_OF_MASS".
  const char* CStr() const {
    return position_ == odb_Enum::CENTER_OF_MASS ? "CENTER_OF_MASS" : "INPUT";
  }
  const char* cStr() const { return CStr(); }

 private:
  odb_Enum::odb_PositionEnum position_;
};

class odb_RigidBody : public odbs::Handle<odbs::engine::RigidBodyData> {
 public:
  using Handle::Handle;
  odb_Set& referenceNodeSet() const;
  odb_Set& referenceNode() const { return referenceNodeSet(); }
  odb_ReferencePosition position() const;
  bool isothermal() const;
  bool hasAnalyticSurface() const;
  // These throw odb_Exception when the body has none.
  const odb_AnalyticSurface& analyticSurface() const;
  odb_Set& elements() const;
  odb_Set& tieNodes() const;
  odb_Set& pinNodes() const;
};

ODBS_OBJECT_SEQUENCE(odb_SequenceRigidBody, odb_RigidBody);
