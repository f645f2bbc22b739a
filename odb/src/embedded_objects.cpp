// SPDX-License-Identifier: BSD-3-Clause
// Engine-private writing of constraints, interactions and other objects with named values, and the
// names that the values of each known class have.
#include "odb/src/model/database.h"
#include "odb/src/storage/errors.h"

#include <odb_embedded.h>

#include <set>

namespace odb_embedded {

using namespace odbs::engine;

namespace {

using Names = std::set<std::string>;

struct ClassNames {
  Names values;
  Names sets;
  Names tables;
};

Names withPrefix(const std::string& prefix, const Names& names) {
  Names out;
  for (const std::string& name : names) out.insert(prefix + name);
  return out;
}

// By class; values of other classes may have any name.
const std::map<std::string, ClassNames>& knownClasses() {
  static const std::string friction = "tangentialBehavior.";
  static const std::map<std::string, ClassNames> classes = {
      {"odb_Tie",
       {{"adjust", "positionToleranceMethod", "positionTolerance", "tieRotations",
         "constraintRatioMethod", "constraintRatio", "constraintEnforcement", "thickness"},
        {"master", "slave"},
        {}}},
      {"odb_Coupling",
       {{"couplingType", "weightingMethod", "influenceRadius", "u1", "u2", "u3", "ur1", "ur2",
         "ur3"},
        {"controlPoint", "surface", "couplingNodes"},
        {}}},
      {"odb_MPC", {{"mpcType", "userMode", "userType"}, {"controlPoint", "surface"}, {}}},
      {"odb_ShellSolidCoupling",
       {{"positionToleranceMethod", "positionTolerance", "influenceDistanceMethod",
         "influenceDistance"},
        {"shellEdge", "solidFace"},
        {}}},
      {"odb_DisplayBody",
       {{"instanceName", "referenceNode1InstanceName", "referenceNode2InstanceName",
         "referenceNode3InstanceName", "referenceNode1Label", "referenceNode2Label",
         "referenceNode3Label"},
        {},
        {}}},
      {"odb_ContactProperty",
       {withPrefix(friction,
                   {"formulation", "directionality", "slipRateDependency", "pressureDependency",
                    "temperatureDependency", "dependencies", "exponentialDecayDefinition",
                    "shearStressLimit", "maximumElasticSlip", "fraction", "absoluteDistance",
                    "elasticSlipStiffness", "nStateDependentVars", "useProperties"}),
        {},
        {friction + "table"}}},
      {"odb_SurfaceToSurfaceContactStd",
       {{"sliding", "interactionProperty", "createStepName", "smooth", "hcrit",
         "limitSlideDistance", "slideDistance", "extensionZone", "adjustMethod", "adjustTolerance",
         "enforcement", "thickness", "tied", "contactTracking"},
        {"master", "slave", "adjustSet"},
        {}}},
      {"odb_SurfaceToSurfaceContactExp",
       {{"sliding", "interactionProperty", "createStepName", "masterNoThick", "slaveNoThick",
         "mechanicalConstraint", "weightingFactorType", "weightingFactor", "useReverseDatumAxis",
         "contactControls"},
        {"master", "slave"},
        {}}},
      {"odb_TabularAmplitude", {{"timeSpan", "smooth"}, {}, {"data"}}}};
  return classes;
}

template <class Entries>
void checkNames(const Entries& entries, const Names& known, const ObjectDescription& object) {
  for (const auto& entry : entries) {
    if (known.count(entry.first) != 0) continue;
    failUsage(std::string(object.type.CStr()) + " " + object.name.CStr() + " has no " +
              entry.first);
  }
}

// The reference point goes by two names; one is stored.
ObjectDescription withStoredNames(ObjectDescription object) {
  for (auto& [key, set] : object.sets) {
    if (key == "refPoint") key = "controlPoint";
  }
  const auto at = knownClasses().find(object.type.CStr());
  if (at == knownClasses().end()) return object;
  checkNames(object.values, at->second.values, object);
  checkNames(object.sets, at->second.sets, object);
  checkNames(object.tables, at->second.tables, object);
  return object;
}

void addNamed(odb_Odb& odb, ObjectKind kind, const ObjectDescription& given) {
  Database& database = odb.engineDatabase();
  database.needWritable();
  const ObjectDescription description = withStoredNames(given);
  PropertyData object;
  object.kind = kind;
  object.name = description.name;
  object.type = odbs::TypeIdentifier(description.type);
  for (const auto& [key, value] : description.values) object.properties[key.c_str()].value = value;
  for (const auto& [key, set] : description.sets) {
    if (set.engineData() && set.engineData()->owner->database != &database) {
      failUsage("a set of another database");
    }
    Property& property = object.properties[key.c_str()];
    property.isSet = true;
    property.set = set;
  }
  for (const auto& [key, rows] : description.tables) object.tables[key.c_str()] = rows;
  if (!addObject(database.model(), object)) {
    failUsage(std::string("an object ") + description.name.CStr() + " exists already");
  }
  database.touch();
}

}  // namespace

void addProfile(odb_Odb& odb, const ObjectDescription& profile) {
  addNamed(odb, ObjectKind::kProfile, profile);
}
void addConstraint(odb_Odb& odb, const ObjectDescription& constraint) {
  addNamed(odb, ObjectKind::kConstraint, constraint);
}
void addInteraction(odb_Odb& odb, const ObjectDescription& interaction) {
  addNamed(odb, ObjectKind::kInteraction, interaction);
}
void addInteractionProperty(odb_Odb& odb, const ObjectDescription& property) {
  addNamed(odb, ObjectKind::kInteractionProperty, property);
}
void addAmplitude(odb_Odb& odb, const ObjectDescription& amplitude) {
  addNamed(odb, ObjectKind::kAmplitude, amplitude);
}

odb_Union objectValue(const odb_Constraint& constraint, const odb_String& name) {
  if (!constraint.engineData()) failUsage("a constraint is wanted");
  const Properties& properties = constraint.engineData()->properties;
  const auto at = properties.find(name);
  if (at == properties.end()) failAbsent(std::string("no value ") + name.CStr());
  return at->second.value;
}

}  // namespace odb_embedded
