// SPDX-License-Identifier: BSD-3-Clause
// The base of interactions, interaction properties, constraints and amplitudes: an object with a
// name, a class, and values that are stored by the name of their getter.
#pragma once

#include <odb_Sequences.h>
#include <odb_Set.h>
#include <odb_engine/typed.h>

namespace odbs {
namespace engine {
struct PropertyData;
}

class NamedObject : public Handle<engine::PropertyData> {
 public:
  using Handle::Handle;
  // False for an object that is not there, such as a default-constructed one; its getters give
  // empty values.
  bool hasValue() const { return data_ != nullptr; }
  const odb_String& name() const;
  const TypeIdentifier& subTypeIdentifier() const;
  std::shared_ptr<void>& engineCastSlot() const;

 protected:
  // Stored values; empty, 0, false or absent where they were not given or are of another type.
  const odb_String& text(const char* key) const;
  double number(const char* key) const;
  int integer(const char* key) const { return static_cast<int>(number(key)); }
  bool flag(const char* key) const { return number(key) != 0; }
  const odb_Set& set(const char* key) const;
  const odb_SequenceSequenceDouble& rows(const char* key) const;
  // True when a value whose name begins with `prefix` is stored.
  bool hasAny(const char* prefix) const;
};

}  // namespace odbs

#define ODBS_NAMED_OBJECT(NAME)           \
  class NAME : public odbs::NamedObject { \
   public:                                \
    using NamedObject::NamedObject;       \
    ODBS_TYPE_IDENTIFIER(NAME)            \
  }
