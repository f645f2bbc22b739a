// SPDX-License-Identifier: BSD-3-Clause
// Constraints: the base, its repository, and the classes that are known by name. A repository gives
// odb_Constraint; odb_isA tests for a class, odb_dynamicCast gives the object as that class. Texts
// are the symbols of the analysis, such as COMPUTED or SPECIFIED; sets that were not given are
// absent (their name is empty), numbers then are 0.
#pragma once

#include <odb_engine/named_object.h>

ODBS_NAMED_OBJECT(odb_Constraint);
ODBS_REPOSITORY(odb_ConstraintRepository, odb_Constraint);

// Ties the nodes of one surface to another.
class odb_Tie : public odb_Constraint {
 public:
  using odb_Constraint::odb_Constraint;
  ODBS_TYPE_IDENTIFIER(odb_Tie)
  const odb_Set& master() const { return set("master"); }
  const odb_Set& slave() const { return set("slave"); }
  // Whether slave nodes are moved onto the master surface at the start.
  bool adjust() const { return flag("adjust"); }
  // COMPUTED or SPECIFIED; the tolerance, a length, counts for SPECIFIED.
  const odb_String& positionToleranceMethod() const { return text("positionToleranceMethod"); }
  double positionTolerance() const { return number("positionTolerance"); }
  bool tieRotations() const { return flag("tieRotations"); }
  // DEFAULT or SPECIFIED; the ratio, a part of the distance, counts for SPECIFIED.
  const odb_String& constraintRatioMethod() const { return text("constraintRatioMethod"); }
  double constraintRatio() const { return number("constraintRatio"); }
  // SOLVER_DEFAULT, NODE_TO_SURFACE or SURFACE_TO_SURFACE.
  const odb_String& constraintEnforcement() const { return text("constraintEnforcement"); }
  // Whether the thickness of shells counts.
  bool thickness() const { return flag("thickness"); }
};

// Ties a surface to the motion of a reference point.
class odb_Coupling : public odb_Constraint {
 public:
  using odb_Constraint::odb_Constraint;
  ODBS_TYPE_IDENTIFIER(odb_Coupling)
  // KINEMATIC, DISTRIBUTING or DISTRIBUTING_STRUCTURAL.
  const odb_String& couplingType() const { return text("couplingType"); }
  // The reference point, under both names that programs use.
  const odb_Set& refPoint() const { return set("controlPoint"); }
  const odb_Set& controlPoint() const { return set("controlPoint"); }
  const odb_Set& surface() const { return set("surface"); }
  // The nodes that are coupled.
  const odb_Set& couplingNodes() const { return set("couplingNodes"); }
  // UNIFORM, LINEAR, QUADRATIC or CUBIC.
  const odb_String& weightingMethod() const { return text("weightingMethod"); }
  // A length; 0 for the whole surface.
  double influenceRadius() const { return number("influenceRadius"); }
  // Whether a displacement or rotation is coupled.
  bool u1() const { return flag("u1"); }
  bool u2() const { return flag("u2"); }
  bool u3() const { return flag("u3"); }
  bool ur1() const { return flag("ur1"); }
  bool ur2() const { return flag("ur2"); }
  bool ur3() const { return flag("ur3"); }
};

// Ties a node to another, or to several.
class odb_MPC : public odb_Constraint {
 public:
  using odb_Constraint::odb_Constraint;
  ODBS_TYPE_IDENTIFIER(odb_MPC)
  // BEAM, ELBOW, PIN, LINK, TIE or a user's own.
  const odb_String& mpcType() const { return text("mpcType"); }
  // The reference point, under both names that programs use.
  const odb_Set& refPoint() const { return set("controlPoint"); }
  const odb_Set& controlPoint() const { return set("controlPoint"); }
  const odb_Set& surface() const { return set("surface"); }
  // Of a user's own constraint: DOF_MODE or NODE_MODE, and its number.
  const odb_String& userMode() const { return text("userMode"); }
  int userType() const { return integer("userType"); }
};

// Ties the edge of a shell to the face of a solid.
class odb_ShellSolidCoupling : public odb_Constraint {
 public:
  using odb_Constraint::odb_Constraint;
  ODBS_TYPE_IDENTIFIER(odb_ShellSolidCoupling)
  const odb_Set& shellEdge() const { return set("shellEdge"); }
  const odb_Set& solidFace() const { return set("solidFace"); }
  // COMPUTED or SPECIFIED; the tolerance, a length, counts for SPECIFIED.
  const odb_String& positionToleranceMethod() const { return text("positionToleranceMethod"); }
  double positionTolerance() const { return number("positionTolerance"); }
  // DEFAULT or SPECIFIED; the distance, a length, counts for SPECIFIED.
  const odb_String& influenceDistanceMethod() const { return text("influenceDistanceMethod"); }
  double influenceDistance() const { return number("influenceDistance"); }
};

// An instance that is only shown, and moves with up to three nodes of other instances.
class odb_DisplayBody : public odb_Constraint {
 public:
  using odb_Constraint::odb_Constraint;
  ODBS_TYPE_IDENTIFIER(odb_DisplayBody)
  const odb_String& instanceName() const { return text("instanceName"); }
  // Instance and label of each node; an empty name and label 0 where there is none.
  const odb_String& referenceNode1InstanceName() const {
    return text("referenceNode1InstanceName");
  }
  const odb_String& referenceNode2InstanceName() const {
    return text("referenceNode2InstanceName");
  }
  const odb_String& referenceNode3InstanceName() const {
    return text("referenceNode3InstanceName");
  }
  int referenceNode1Label() const { return integer("referenceNode1Label"); }
  int referenceNode2Label() const { return integer("referenceNode2Label"); }
  int referenceNode3Label() const { return integer("referenceNode3Label"); }
};
