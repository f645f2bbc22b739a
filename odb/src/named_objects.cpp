// SPDX-License-Identifier: BSD-3-Clause
// Profiles, interactions, constraints, amplitudes: objects with a name, a class and named values.
// User data too.
#include "odb/src/database.h"
#include "odb/src/errors.h"

namespace odbs::engine {

namespace {

const Property* findProperty(const PropertyData& object, const char* key) {
  const auto at = object.properties.find(key);
  return at == object.properties.end() ? nullptr : &at->second;
}

const odb_String& textOf(const PropertyData& object, const char* key) {
  static const odb_String none;
  const Property* property = findProperty(object, key);
  return property ? property->value.engineText() : none;
}

double numberOf(const PropertyData& object, const char* key) {
  const Property* property = findProperty(object, key);
  return property && property->value.type() != odb_UNION_STRING ? property->value.getDouble() : 0;
}

const odb_Set& setOf(const PropertyData& object, const char* key) {
  static const odb_Set none;
  const Property* property = findProperty(object, key);
  return property ? property->set : none;
}

}  // namespace
}  // namespace odbs::engine

using namespace odbs::engine;

#define ODBS_NAMED_GETTERS(CLASS)                                \
  const odb_String& CLASS::name() const {                        \
    return need().name;                                          \
  }                                                              \
  const odbs::TypeIdentifier& CLASS::subTypeIdentifier() const { \
    return need().type;                                          \
  }                                                              \
  std::shared_ptr<void>& CLASS::engineCastSlot() const {         \
    return need().cast;                                          \
  }

ODBS_NAMED_GETTERS(odb_Profile)
ODBS_NAMED_GETTERS(odb_Interaction)
ODBS_NAMED_GETTERS(odb_InteractionProperty)
ODBS_NAMED_GETTERS(odb_Constraint)
ODBS_NAMED_GETTERS(odb_Amplitude)

const odb_String& odb_Coupling::couplingType() const {
  return textOf(need(), "couplingType");
}
const odb_Set& odb_Coupling::controlPoint() const {
  return setOf(need(), "controlPoint");
}
const odb_Set& odb_Coupling::surface() const {
  return setOf(need(), "surface");
}
double odb_Coupling::influenceRadius() const {
  return numberOf(need(), "influenceRadius");
}

const odb_String& odb_MPC::mpcType() const {
  return textOf(need(), "mpcType");
}
const odb_Set& odb_MPC::controlPoint() const {
  return setOf(need(), "controlPoint");
}
const odb_Set& odb_MPC::surface() const {
  return setOf(need(), "surface");
}

const odb_Set& odb_ShellSolidCoupling::shellEdge() const {
  return setOf(need(), "shellEdge");
}
const odb_Set& odb_ShellSolidCoupling::solidFace() const {
  return setOf(need(), "solidFace");
}
double odb_ShellSolidCoupling::influenceDistance() const {
  return numberOf(need(), "influenceDistance");
}

// ---- User data ----

const odb_String& odb_UserXYData::name() const {
  return need().name;
}
const odb_String& odb_UserXYData::sourceDescription() const {
  return need().texts[0];
}
const odb_String& odb_UserXYData::contentDescription() const {
  return need().texts[1];
}
const odb_String& odb_UserXYData::positionDescription() const {
  return need().texts[2];
}
const odb_String& odb_UserXYData::xAxisLabel() const {
  return need().texts[3];
}
const odb_String& odb_UserXYData::yAxisLabel() const {
  return need().texts[4];
}
const odb_String& odb_UserXYData::legendLabel() const {
  return need().texts[5];
}
const odb_String& odb_UserXYData::description() const {
  return need().texts[6];
}
void odb_UserXYData::getData(odb_SequenceSequenceFloat& out) const {
  out = need().points;
}

const odb_String& odb_Text::text() const {
  return need().text;
}

odb_UserXYDataRepository& odb_UserData::xyDataObjects() const {
  return database_->model().curveHandles;
}
odb_UserXYData& odb_UserData::xyDataObjects(const odb_String& name) const {
  return xyDataObjects()[name];
}
odb_AnnotationRepository& odb_UserData::annotationObjects() const {
  return database_->model().annotationHandles;
}
