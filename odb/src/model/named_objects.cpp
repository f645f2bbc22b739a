// SPDX-License-Identifier: BSD-3-Clause
// Profiles, interactions, constraints, amplitudes: objects with a name, a class and named values.
// User data too.
#include "odb/src/model/database.h"
#include "odb/src/storage/errors.h"

using namespace odbs::engine;

namespace odbs {

namespace {

const Property* findProperty(const PropertyData* object, const char* key) {
  if (!object) return nullptr;
  const auto at = object->properties.find(key);
  return at == object->properties.end() ? nullptr : &at->second;
}

}  // namespace

const odb_String& NamedObject::name() const {
  return need().name;
}
const TypeIdentifier& NamedObject::subTypeIdentifier() const {
  return need().type;
}
std::shared_ptr<void>& NamedObject::engineCastSlot() const {
  return need().cast;
}

const odb_String& NamedObject::text(const char* key) const {
  static const odb_String none;
  const Property* property = findProperty(data_, key);
  return property ? property->value.engineText() : none;
}

double NamedObject::number(const char* key) const {
  const Property* property = findProperty(data_, key);
  return property && property->value.type() != odb_UNION_STRING ? property->value.getDouble() : 0;
}

const odb_Set& NamedObject::set(const char* key) const {
  static const odb_Set none;
  const Property* property = findProperty(data_, key);
  return property ? property->set : none;
}

const odb_SequenceSequenceDouble& NamedObject::rows(const char* key) const {
  static const odb_SequenceSequenceDouble none;
  if (!data_) return none;
  const auto at = data_->tables.find(key);
  return at == data_->tables.end() ? none : at->second;
}

bool NamedObject::hasAny(const char* prefix) const {
  if (!data_) return false;
  const auto begins = [&](const auto& map) {
    const auto at = map.lower_bound(prefix);
    return at != map.end() && at->first.Find(prefix) == 0;
  };
  return begins(data_->properties) || begins(data_->tables);
}

}  // namespace odbs

const odb_String& odb_Profile::name() const {
  return need().name;
}
const odbs::TypeIdentifier& odb_Profile::subTypeIdentifier() const {
  return need().type;
}
std::shared_ptr<void>& odb_Profile::engineCastSlot() const {
  return need().cast;
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
