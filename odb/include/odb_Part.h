// SPDX-License-Identifier: BSD-3-Clause
// What parts, instances and the root assembly have in common, and parts.
#pragma once

#include <odb_RigidBody.h>

namespace odbs {
namespace engine {
struct EntityData;
}
}  // namespace odbs

class odb_DiscreteEntity : public odbs::Handle<odbs::engine::EntityData> {
 public:
  using Handle::Handle;
  const odb_String& name() const;
  odb_Enum::odb_DimensionEnum embeddedSpace() const;

  // Nodes and elements in stored order; the arrays are read from the database at first use. An
  // instance gives those of its part, its nodes transformed into the assembly.
  odb_SequenceNode& nodes() const;
  odb_Node nodes(int i) const;
  odb_SequenceElement& elements() const;
  odb_Element elements(int i) const;

  // By name. An instance also has the sets of its part, as sets of the instance.
  odb_SetRepository& nodeSets() const;
  odb_SetRepository& elementSets() const;
  odb_SetRepository& surfaces() const;

  // An instance gives those of its part first.
  odb_SequenceSectionAssignment& sectionAssignments() const;
  odb_SectionAssignment sectionAssignments(int i) const;
  odb_SequenceRigidBody& rigidBodies() const;

  // ---- Writing. Each throws odb_Exception on a read-only database, an unknown label, or a name
  // that is taken. ----

  // Adds nodes: ascending labels, coordinates of 2 or 3 numbers each; optionally a node set of
  // them. Not on an instance.
  void addNodes(const odb_SequenceInt& labels, const odb_SequenceSequenceFloat& coordinates,
                const odb_String& nodeSetName = "");
  // Adds elements of one type: ascending labels, node labels per element; optionally an element set
  // of them. Not on an instance.
  void addElements(const odb_SequenceInt& labels, const odb_SequenceSequenceInt& connectivity,
                   const odb_String& type, const odb_String& elementSetName = "",
                   const odb_SectionCategory& sectionCategory = odb_SectionCategory());

  // A set of own nodes or elements, in the given order; a node that is given twice counts once. On
  // a read-only database sets and surfaces are made in memory, for getSubset.
  odb_Set& NodeSet(const odb_String& name, const odb_SequenceInt& labels);
  odb_Set& NodeSet(const odb_String& name, const odb_SequenceNode& nodes);
  odb_Set& ElementSet(const odb_String& name, const odb_SequenceInt& labels);
  odb_Set& ElementSet(const odb_String& name, const odb_SequenceElement& elements);
  // A surface: one face per element, in parallel.
  odb_Set& Surface(const odb_String& name, const odb_SequenceInt& labels,
                   const odb_SequenceElementFace& faces);
  odb_Set& Surface(const odb_String& name, const odb_SequenceElement& elements,
                   const odb_SequenceElementFace& faces);

  // `reference` is a node set; the sets left out are absent.
  void RigidBody(const odb_Set& reference, odb_Enum::odb_PositionEnum position = odb_Enum::INPUT,
                 bool isothermal = false, const odb_Set& elements = odb_Set(),
                 const odb_Set& pinNodes = odb_Set(), const odb_Set& tieNodes = odb_Set());
};

// What a part and an instance have beyond that.
class odb_PartEntity : public odb_DiscreteEntity {
 public:
  using odb_DiscreteEntity::odb_DiscreteEntity;
  odb_Enum::odb_PartTypeEnum type() const;

  bool hasAnalyticSurface() const;
  // Throws odb_Exception when there is none.
  const odb_AnalyticSurface& analyticSurface() const;
  const odb_SequenceBeamOrientation& beamOrientations() const;
  const odb_SequenceMaterialOrientation& materialOrientations() const;
  const odb_SequenceRebarOrientation& rebarOrientations() const;

  // Throw odb_Exception on an unknown label.
  odb_Node getNodeFromLabel(int label) const;
  odb_Element getElementFromLabel(int label) const;

  // ---- Writing ----

  // `region` is an element set of this object. Throws odb_Exception when it is not.
  void assignSection(const odb_Set& region, const odb_Section& section);
  void assignMaterialOrientation(const odb_Set& region, const odb_DatumCsys& csys,
                                 odb_Enum::odb_AxisEnum axis = odb_Enum::AXIS_1, float angle = 0,
                                 odb_Enum::odb_StackDirectionEnum stack = odb_Enum::STACK_3);
  void assignBeamOrientation(const odb_Set& region, odb_Enum::odb_OrientationMethodEnum method,
                             const odb_SequenceFloat& vector);
  void assignRebarOrientation(const odb_Set& region, const odb_DatumCsys& csys,
                              odb_Enum::odb_AxisEnum axis = odb_Enum::AXIS_1, float angle = 0);

  // The analytic surface, one per part or instance. The planar
  // form needs a two-dimensional part, the others a three-dimensional one; odb_Exception otherwise.
  // `profile` starts with the START point.
  void AnalyticRigidSurf2DPlanar(const odb_String& name,
                                 const odb_SequenceAnalyticSurfaceSegment& profile,
                                 double filletRadius = 0);
  void AnalyticRigidSurfExtrude(
      const odb_String& name, const odb_SequenceAnalyticSurfaceSegment& profile,
      double filletRadius = 0,
      const odb_SequenceSequenceFloat& localCoordData = odb_SequenceSequenceFloat());
  void AnalyticRigidSurfRevolve(
      const odb_String& name, const odb_SequenceAnalyticSurfaceSegment& profile,
      double filletRadius = 0,
      const odb_SequenceSequenceFloat& localCoordData = odb_SequenceSequenceFloat());
};

class odb_Part : public odb_PartEntity {
 public:
  using odb_PartEntity::odb_PartEntity;
};

ODBS_REPOSITORY(odb_PartRepository, odb_Part);
