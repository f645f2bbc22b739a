// SPDX-License-Identifier: BSD-3-Clause
// Interactions, interaction properties, constraints and amplitudes, by name and exact subtype, and
// the constraint classes that are known by name.
#pragma once

#include <odb_Set.h>
#include <odb_Union.h>
#include <odb_engine/typed.h>

namespace odbs::engine {
struct PropertyData;
}

#define ODBS_NAMED_OBJECT(NAME)                                  \
  class NAME : public odbs::Handle<odbs::engine::PropertyData> { \
   public:                                                       \
    using Handle::Handle;                                        \
    ODBS_TYPE_IDENTIFIER(NAME)                                   \
    const odb_String& name() const;                              \
    const odbs::TypeIdentifier& subTypeIdentifier() const;       \
    std::shared_ptr<void>& engineCastSlot() const;               \
  }

ODBS_NAMED_OBJECT(odb_Interaction);
ODBS_NAMED_OBJECT(odb_InteractionProperty);
ODBS_NAMED_OBJECT(odb_Constraint);
ODBS_NAMED_OBJECT(odb_Amplitude);

ODBS_REPOSITORY(odb_InteractionRepository, odb_Interaction);
ODBS_REPOSITORY(odb_InteractionPropertyRepository, odb_InteractionProperty);
ODBS_REPOSITORY(odb_ConstraintRepository, odb_Constraint);
ODBS_REPOSITORY(odb_AmplitudeRepository, odb_Amplitude);
typedef odb_InteractionPropertyRepository odb_IPRepository;
typedef odb_InteractionPropertyRepositoryIT odb_IPRepositoryIT;

// Ties a surface to the motion of a control point.
class odb_Coupling : public odb_Constraint {
 public:
  using odb_Constraint::odb_Constraint;
  ODBS_TYPE_IDENTIFIER(odb_Coupling)
  // KINEMATIC, DISTRIBUTING or DISTRIBUTING_STRUCTURAL.
  const odb_String& couplingType() const;
  // Absent sets (empty name) where they were not given.
  const odb_Set& controlPoint() const;
  const odb_Set& surface() const;
  double influenceRadius() const;
};

class odb_MPC : public odb_Constraint {
 public:
  using odb_Constraint::odb_Constraint;
  ODBS_TYPE_IDENTIFIER(odb_MPC)
  // BEAM, ELBOW, PIN, LINK, TIE or a user's own.
  const odb_String& mpcType() const;
  const odb_Set& controlPoint() const;
  const odb_Set& surface() const;
};

class odb_ShellSolidCoupling : public odb_Constraint {
 public:
  using odb_Constraint::odb_Constraint;
  ODBS_TYPE_IDENTIFIER(odb_ShellSolidCoupling)
  const odb_Set& shellEdge() const;
  const odb_Set& solidFace() const;
  double influenceDistance() const;
};
