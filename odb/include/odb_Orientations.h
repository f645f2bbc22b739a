// SPDX-License-Identifier: BSD-3-Clause
// Orientations of beams, materials, rebar and connectors.
#pragma once

#include <odb_DatumCsys.h>
#include <odb_Set.h>

namespace odbs {
namespace engine {
struct OrientationData;
}
}  // namespace odbs

// The direction n1 of beam cross-sections.
class odb_BeamOrientation : public odbs::Handle<odbs::engine::OrientationData> {
 public:
  using Handle::Handle;
  odb_Set& region() const;
  odb_Enum::odb_OrientationMethodEnum method() const;
  // The n1 direction, as given.
  const odb_SequenceFloat& vector() const;
};

// A material system: a datum system, turned by an angle in degrees about one of its axes.
class odb_MaterialOrientation : public odbs::Handle<odbs::engine::OrientationData> {
 public:
  using Handle::Handle;
  odb_Set& region() const;
  const odb_DatumCsys& csys() const;
  odb_Enum::odb_AxisEnum axis() const;
  float angle() const;
  odb_Enum::odb_StackDirectionEnum stackDirection() const;
};

class odb_RebarOrientation : public odbs::Handle<odbs::engine::OrientationData> {
 public:
  using Handle::Handle;
  odb_Set& region() const;
  const odb_DatumCsys& csys() const;
  odb_Enum::odb_AxisEnum axis() const;
  float angle() const;
};

// The systems at the two ends of connectors, each turned by an angle in degrees about one axis.
class odb_ConnectorOrientation : public odbs::Handle<odbs::engine::OrientationData> {
 public:
  using Handle::Handle;
  odb_Set& region() const;
  // A default system (empty name) when there is none.
  const odb_DatumCsys& csys1() const;
  const odb_DatumCsys& csys2() const;
  bool hasCsys1() const;
  bool hasCsys2() const;
  odb_Enum::odb_AxisEnum axis1() const;
  odb_Enum::odb_AxisEnum axis2() const;
  float angle1() const;
  float angle2() const;
  // True when the second end uses the system of the first.
  bool orient2sameAs1() const;
};

#define ODBS_OBJECT_SEQUENCE(NAME, ITEM)                         \
  class NAME : public odbs::SequenceOf<ITEM, std::deque<ITEM>> { \
   public:                                                       \
    using SequenceOf::SequenceOf;                                \
  }

ODBS_OBJECT_SEQUENCE(odb_SequenceBeamOrientation, odb_BeamOrientation);
ODBS_OBJECT_SEQUENCE(odb_SequenceMaterialOrientation, odb_MaterialOrientation);
ODBS_OBJECT_SEQUENCE(odb_SequenceRebarOrientation, odb_RebarOrientation);
ODBS_OBJECT_SEQUENCE(odb_SequenceConnectorOrientation, odb_ConnectorOrientation);
