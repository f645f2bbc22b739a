// SPDX-License-Identifier: BSD-3-Clause
// Interactions and interaction properties: the bases, their repositories, and the contact classes.
// Repositories give the bases; odb_isA tests for a class, odb_dynamicCast gives the object as that
// class. Texts are the symbols of the analysis, such as FINITE or SMALL; sets that were not given
// are absent (their name is empty), numbers then are 0.
#pragma once

#include <odb_Amplitude.h>
#include <odb_Constraint.h>

ODBS_NAMED_OBJECT(odb_Interaction);
ODBS_NAMED_OBJECT(odb_InteractionProperty);

ODBS_REPOSITORY(odb_InteractionRepository, odb_Interaction);
ODBS_REPOSITORY(odb_InteractionPropertyRepository, odb_InteractionProperty);
typedef odb_InteractionPropertyRepository odb_IPRepository;
typedef odb_InteractionPropertyRepositoryIT odb_IPRepositoryIT;

#define ODBS_TANGENTIAL(NAME) "tangentialBehavior." NAME

// Friction. Without it hasValue() is false.
class odb_TangentialBehavior : public odbs::NamedObject {
 public:
  using NamedObject::NamedObject;
  bool hasValue() const { return hasAny(ODBS_TANGENTIAL("")); }
  // FRICTIONLESS, PENALTY, EXPONENTIAL_DECAY, ROUGH, LAGRANGE or USER_DEFINED.
  const odb_String& formulation() const { return text(ODBS_TANGENTIAL("formulation")); }
  // ISOTROPIC or ANISOTROPIC.
  const odb_String& directionality() const { return text(ODBS_TANGENTIAL("directionality")); }
  // What the rows of the table depend on, beside `dependencies` field variables.
  bool slipRateDependency() const { return flag(ODBS_TANGENTIAL("slipRateDependency")); }
  bool pressureDependency() const { return flag(ODBS_TANGENTIAL("pressureDependency")); }
  bool temperatureDependency() const { return flag(ODBS_TANGENTIAL("temperatureDependency")); }
  int dependencies() const { return integer(ODBS_TANGENTIAL("dependencies")); }
  // COEFFICIENTS or TEST_DATA.
  const odb_String& exponentialDecayDefinition() const {
    return text(ODBS_TANGENTIAL("exponentialDecayDefinition"));
  }
  // Rows: friction coefficient, then slip rate, pressure, temperature and field variables where it
  // depends on them.
  const odb_SequenceSequenceDouble& table() const { return rows(ODBS_TANGENTIAL("table")); }
  // A stress; 0 for no limit.
  double shearStressLimit() const { return number(ODBS_TANGENTIAL("shearStressLimit")); }
  // FRACTION or ABSOLUTE_DISTANCE, and the value for each: a part of the characteristic length, a
  // length.
  const odb_String& maximumElasticSlip() const {
    return text(ODBS_TANGENTIAL("maximumElasticSlip"));
  }
  double fraction() const { return number(ODBS_TANGENTIAL("fraction")); }
  double absoluteDistance() const { return number(ODBS_TANGENTIAL("absoluteDistance")); }
  // Shear stress per slip; 0 when not given.
  double elasticSlipStiffness() const { return number(ODBS_TANGENTIAL("elasticSlipStiffness")); }
  // Of a user's own formulation.
  int nStateDependentVars() const { return integer(ODBS_TANGENTIAL("nStateDependentVars")); }
  bool useProperties() const { return flag(ODBS_TANGENTIAL("useProperties")); }
};

class odb_ContactProperty : public odb_InteractionProperty {
 public:
  using odb_InteractionProperty::odb_InteractionProperty;
  ODBS_TYPE_IDENTIFIER(odb_ContactProperty)
  odb_TangentialBehavior tangentialBehavior() const { return odb_TangentialBehavior(data_); }
};

// What contact between two surfaces has in both kinds of analysis.
class odb_SurfaceToSurfaceContact : public odb_Interaction {
 public:
  using odb_Interaction::odb_Interaction;
  const odb_Set& master() const { return set("master"); }
  const odb_Set& slave() const { return set("slave"); }
  // FINITE or SMALL.
  const odb_String& sliding() const { return text("sliding"); }
  // Name of an interaction property.
  const odb_String& interactionProperty() const { return text("interactionProperty"); }
  // Name of the step from which on the surfaces may touch.
  const odb_String& createStepName() const { return text("createStepName"); }
};

class odb_SurfaceToSurfaceContactStd : public odb_SurfaceToSurfaceContact {
 public:
  using odb_SurfaceToSurfaceContact::odb_SurfaceToSurfaceContact;
  ODBS_TYPE_IDENTIFIER(odb_SurfaceToSurfaceContactStd)
  // Degree of smoothing of the master surface, 0 to 0.5.
  double smooth() const { return number("smooth"); }
  // Penetration, a length, above which an increment is given up.
  double hcrit() const { return number("hcrit"); }
  // Whether the slide distance, a length, bounds the sliding.
  bool limitSlideDistance() const { return flag("limitSlideDistance"); }
  double slideDistance() const { return number("slideDistance"); }
  // By how much of its facets the master surface is extended, 0 to 0.2.
  double extensionZone() const { return number("extensionZone"); }
  // NONE, OVERCLOSED, TOLERANCE or SET: which slave nodes are moved onto the master surface, with
  // the tolerance, a length, and the set.
  const odb_String& adjustMethod() const { return text("adjustMethod"); }
  double adjustTolerance() const { return number("adjustTolerance"); }
  const odb_Set& adjustSet() const { return set("adjustSet"); }
  // NODE_TO_SURFACE or SURFACE_TO_SURFACE.
  const odb_String& enforcement() const { return text("enforcement"); }
  // Whether the thickness of shells counts.
  bool thickness() const { return flag("thickness"); }
  bool tied() const { return flag("tied"); }
  // ONE_CONFIG or TWO_CONFIG.
  const odb_String& contactTracking() const { return text("contactTracking"); }
};

class odb_SurfaceToSurfaceContactExp : public odb_SurfaceToSurfaceContact {
 public:
  using odb_SurfaceToSurfaceContact::odb_SurfaceToSurfaceContact;
  ODBS_TYPE_IDENTIFIER(odb_SurfaceToSurfaceContactExp)
  // True where the thickness of that side is left out.
  bool masterNoThick() const { return flag("masterNoThick"); }
  bool slaveNoThick() const { return flag("slaveNoThick"); }
  // KINEMATIC or PENALTY.
  const odb_String& mechanicalConstraint() const { return text("mechanicalConstraint"); }
  // DEFAULT or SPECIFIED; the factor, 0 to 1, counts for SPECIFIED.
  const odb_String& weightingFactorType() const { return text("weightingFactorType"); }
  double weightingFactor() const { return number("weightingFactor"); }
  bool useReverseDatumAxis() const { return flag("useReverseDatumAxis"); }
  // Name of the contact controls.
  const odb_String& contactControls() const { return text("contactControls"); }
};

#undef ODBS_TANGENTIAL
