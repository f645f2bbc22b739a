// SPDX-License-Identifier: BSD-3-Clause
// One open database: its files, its model (read at first use), its steps. Also the process-wide
// repository of open databases, guarded by a mutex because the thread that watches the parent
// process may ask it.
#pragma once

#include "odb/src/model/model_objects.h"
#include "odb/src/model/steps.h"

namespace odbs::engine {

class Database {
 public:
  // An empty database to be written.
  Database(const odb_String& name, const odb_String& target);
  // A stored one. Reads the tables of the database itself and of the steps.
  static std::unique_ptr<Database> open(const odb_String& path, bool readOnly);
  ~Database();

  odb_String target;  // path of the file
  bool readOnly = false;
  odb_String title;
  odb_String description;
  odb_JobData job;
  odb_SectorDefinition sector;
  odb_String assemblyName = "ASSEMBLY";

  Storage storage;
  Steps steps;
  // Data of the result side that belong to the whole database.
  std::shared_ptr<struct ResultStore> results;

  // Read at first use.
  Model& model();
  bool modelLoaded() const { return model_ != nullptr; }
  // Throws odb_Exception on a read-only database.
  void needWritable() const;
  // True when something changed since the last save.
  void touch();

  void save();
  // Writes everything in the layout of the old release.
  void saveOld(const std::string& path);
  bool update();

  odb_UserData userData;

 private:
  Database();
  void fill(Saver& saver);
  std::unique_ptr<Model> model_;
  bool changed_ = false;
};

// Model tables to and from files (model_store.cpp).
std::unique_ptr<Model> newModel(Database& database);
std::unique_ptr<Model> loadModel(Database& database, FileReader& reader, int file);
void saveModel(Model& model, Saver& saver);
// The table of the database itself.
void loadDatabaseRow(Database& database, FileReader& reader);
void saveDatabaseRow(Database& database, Saver& saver);

}  // namespace odbs::engine
