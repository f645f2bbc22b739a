// SPDX-License-Identifier: BSD-3-Clause
// Exact subtypes: sections, profiles, interactions and constraints record their class as a type
// identifier. odb_isA compares it, odb_dynamicCast gives the object as that class.
#pragma once

#include <odb_engine/handle.h>

#include <memory>

namespace odbs {

// Comparable with ==; as a number, the same for one class in all runs of all programs.
class TypeIdentifier {
 public:
  TypeIdentifier() = default;
  explicit TypeIdentifier(const odb_String& name) : name_(name) {}
  bool operator==(const TypeIdentifier& other) const { return name_ == other.name_; }
  bool operator!=(const TypeIdentifier& other) const { return name_ != other.name_; }
  operator unsigned int() const {
    unsigned int hash = 2166136261U;  // FNV-1a
    for (int i = 0; i < name_.Length(); ++i) {
      hash = (hash ^ static_cast<unsigned char>(name_.CStr()[i])) * 16777619U;
    }
    return hash;
  }
  const odb_String& engineName() const { return name_; }

 private:
  odb_String name_;
};

[[noreturn]] void throwBadCast(const TypeIdentifier& from, const TypeIdentifier& to);

template <class T, class Base>
const T& castTo(const Base& object) {
  if (object.subTypeIdentifier() != T::typeIdentifier()) {
    throwBadCast(object.subTypeIdentifier(), T::typeIdentifier());
  }
  // The typed handle lives with the object, so that the reference outlives this call.
  std::shared_ptr<void>& slot = object.engineCastSlot();
  if (!slot) slot = std::make_shared<T>(object.engineData());
  return *static_cast<const T*>(slot.get());
}

}  // namespace odbs

// True when `object` is exactly a TYPE, not of a class derived from it.
#define odb_isA(TYPE, object) ((object).subTypeIdentifier() == TYPE::typeIdentifier())
// `object` as const TYPE&. Throws odb_Exception ("Bad cast: From X To Y") when it is no TYPE.
#define odb_dynamicCast(TYPE, object) (odbs::castTo<TYPE>(object))

#define ODBS_TYPE_IDENTIFIER(NAME)                       \
  static const odbs::TypeIdentifier& typeIdentifier() {  \
    static const odbs::TypeIdentifier identifier(#NAME); \
    return identifier;                                   \
  }
