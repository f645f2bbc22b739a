// SPDX-License-Identifier: BSD-3-Clause
// Exceptions, and the checks that the public headers call out of line.
#include "odb/src/storage/errors.h"

#include <odb_ApiExtension.h>
#include <odb_engine/handle.h>
#include <odb_engine/repository.h>
#include <odb_engine/sequence.h>
#include <odb_engine/typed.h>

namespace odbs {

void throwEmptyHandle() {
  engine::failUsage("the object refers to nothing: it was default-constructed");
}

void throwBadIndex(int index, int n) {
  engine::failUsage("index " + std::to_string(index) + " in a sequence of " + std::to_string(n) +
                    " items");
}

void throwNoMember(const odb_String& key) {
  engine::failAbsent(std::string("no member named \"") + key.CStr() + "\"");
}

void throwBadCast(const TypeIdentifier& from, const TypeIdentifier& to) {
  engine::fail(odb_ERROR_BAD_CAST, std::string("Bad cast: From ") + from.engineName().CStr() +
                                       " To " + to.engineName().CStr());
}

namespace engine {

void fail(int number, const std::string& message) {
  throw odb_Exception(odb_String(message.data(), message.size()), number);
}

void failUsage(const std::string& message) {
  fail(odb_ERROR_USAGE, message);
}
void failAbsent(const std::string& message) {
  fail(odb_ERROR_ABSENT, message);
}
void failDamaged(const std::string& message) {
  fail(odb_ERROR_DAMAGED, "the database is damaged: " + message);
}

}  // namespace engine
}  // namespace odbs

odbs::engine::Database& odb_ApiExtension::need() const {
  if (!database_) odbs::engine::failUsage("the extension is empty: call extendApi first");
  return *database_;
}
