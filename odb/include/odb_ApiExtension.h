// SPDX-License-Identifier: BSD-3-Clause
// The common base of the section and the material extension.
#pragma once

#include <odb_Enum.h>

namespace odbs {
namespace engine {
class Database;
}
}  // namespace odbs

// Empty until odb_Odb::extendApi has filled it; using it before throws odb_Exception.
class odb_ApiExtension {
 public:
  // For the library itself.
  odb_Enum::odb_ApiExtensionEnum engineKind() const { return which_; }
  void engineAttach(odbs::engine::Database* database) { database_ = database; }
  odbs::engine::Database* engineDatabase() const { return database_; }

 protected:
  explicit odb_ApiExtension(odb_Enum::odb_ApiExtensionEnum which) : which_(which) {}
  odbs::engine::Database& need() const;

 private:
  odb_Enum::odb_ApiExtensionEnum which_;
  odbs::engine::Database* database_ = nullptr;
};
