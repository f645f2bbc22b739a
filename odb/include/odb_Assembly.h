// SPDX-License-Identifier: BSD-3-Clause
// The root assembly.
#pragma once

#include <odb_Instance.h>
#include <odb_PretensionSection.h>

class odb_Assembly : public odb_DiscreteEntity {
 public:
  using odb_DiscreteEntity::odb_DiscreteEntity;

  odb_InstanceRepository& instances() const;
  odb_SequenceConnectorOrientation& connectorOrientations() const;
  odb_DatumCsysRepository& datumCsyses() const;
  odb_SequencePretensionSection& pretensionSections() const;

  // ---- Writing. Each throws odb_Exception on a read-only database, an unknown name or label, or a
  // name that is taken. ----

  // Places a part. `localCoordSystem` has up to four rows of three numbers: points on the local
  // axes 1, 2 and 3 as seen from the local origin, then the translation; none for the identity.
  // The part must have its nodes and elements already.
  odb_Instance& Instance(
      const odb_String& name, const odb_Part& part,
      const odb_SequenceSequenceFloat& localCoordSystem = odb_SequenceSequenceFloat());

  using odb_DiscreteEntity::addElements;
  // Elements between instances, such as connectors: one instance name per node of an element, the
  // same for all elements of the call; an empty name means a node of the assembly.
  void addElements(const odb_SequenceInt& labels, const odb_SequenceSequenceInt& connectivity,
                   const odb_SequenceString& instanceNames, const odb_String& type,
                   const odb_String& elementSetName = "",
                   const odb_SectionCategory& sectionCategory = odb_SectionCategory());

  // Sets over several instances: one list of labels per instance name, an empty name for the
  // assembly's own.
  using odb_DiscreteEntity::ElementSet;
  using odb_DiscreteEntity::NodeSet;
  using odb_DiscreteEntity::Surface;
  odb_Set& NodeSet(const odb_String& name, const odb_SequenceString& instanceNames,
                   const odb_SequenceSequenceInt& labels);
  odb_Set& ElementSet(const odb_String& name, const odb_SequenceString& instanceNames,
                      const odb_SequenceSequenceInt& labels);
  odb_Set& Surface(const odb_String& name, const odb_SequenceString& instanceNames,
                   const odb_SequenceSequenceInt& labels,
                   const odb_SequenceSequenceElementFace& faces);

  // Connector sections only; `region` is an element set of the assembly.
  void SectionAssignment(const odb_Set& region, const odb_Section& section);

  // `region` is an element set of connectors. In the second form the second end has no system of
  // its own.
  void ConnectorOrientation(const odb_Set& region, const odb_DatumCsys& csys1,
                            odb_Enum::odb_AxisEnum axis1, float angle1, const odb_DatumCsys& csys2,
                            odb_Enum::odb_AxisEnum axis2, float angle2);
  void ConnectorOrientation(const odb_Set& region, const odb_DatumCsys& csys1,
                            odb_Enum::odb_AxisEnum axis1, float angle1,
                            bool orient2sameAs1 = false);

  // Adds a datum system from its origin, a point on its x-axis and one in its x-y plane.
  odb_DatumCsys& DatumCsysByThreePoints(const odb_String& name,
                                        odb_Enum::odb_DatumCsysTypeEnum type,
                                        const odb_SequenceFloat& origin,
                                        const odb_SequenceFloat& pointOnX,
                                        const odb_SequenceFloat& pointInPlane);
};
