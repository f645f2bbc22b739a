// SPDX-License-Identifier: BSD-3-Clause
// The common base of the section and the material extension.
#pragma once

namespace odbs::engine {
class Database;
}

// Empty until odb_Odb::extendApi has filled it; using it before throws odb_Exception.
class odb_ApiExtension {
 public:
  // For the library itself.
  void engineAttach(odbs::engine::Database* database) { database_ = database; }
  odbs::engine::Database* engineDatabase() const { return database_; }

 protected:
  odb_ApiExtension() = default;
  odbs::engine::Database& need() const;

 private:
  odbs::engine::Database* database_ = nullptr;
};
