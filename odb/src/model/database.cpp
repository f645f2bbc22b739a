// SPDX-License-Identifier: BSD-3-Clause
// Opening, saving and updating one database.
#include "odb/src/model/database.h"

#include "odb/src/storage/errors.h"
#include "odb/src/storage/old_layout.h"

namespace odbs::engine {

namespace {
std::string pathOf(const odb_String& path) {
  return path.CStr();
}
}  // namespace

Database::Database() : userData(this) {}
Database::~Database() = default;

Database::Database(const odb_String& name, const odb_String& path) : Database() {
  target = path;
  if (target.empty()) {
    target = name;
    const std::string text = name.CStr();
    if (text.size() < 4 || text.compare(text.size() - 4, 4, ".odb") != 0) target.append(".odb");
  }
  model_ = newModel(*this);
  changed_ = true;
}

std::unique_ptr<Database> Database::open(const odb_String& path, bool readOnly) {
  std::unique_ptr<Database> database(new Database());
  database->target = path;
  database->readOnly = readOnly;
  auto reader = std::make_unique<FileReader>(pathOf(path));
  {
    const FileReader::Use use(*reader);
    loadDatabaseRow(*database, *reader);
    loadSteps(*database, *reader);
    openResults(*database, *reader);
  }
  database->storage.setCurrent(std::move(reader));
  return database;
}

Model& Database::model() {
  if (!model_) model_ = loadModel(*this, *storage.current(), storage.currentFile());
  return *model_;
}

void Database::needWritable() const {
  if (readOnly) failUsage(std::string("the database ") + target.CStr() + " was opened read-only");
}

void Database::touch() {
  // Sets that a program makes in a read-only database are never saved.
  if (!readOnly) changed_ = true;
}

void Database::fill(Saver& saver) {
  model().root().name = assemblyName;
  saveDatabaseRow(*this, saver);
  saveModel(model(), saver);
  saveSteps(*this, saver);
  saveResults(*this, saver);
}

void Database::save() {
  needWritable();
  if (!changed_ && storage.current()) return;
  const bool hadSpilled = storage.pendingFile() != 0;
  try {
    FileWriter& writer = storage.pending(pathOf(target));
    Saver saver(storage, writer, storage.pendingFile());
    fill(saver);
    saver.finish();
    storage.commitPending();
    saver.commit();
  } catch (...) {
    // What was spilled exists nowhere else, and stays for another try.
    if (!hadSpilled) storage.dropPending();
    throw;
  }
  stepsSaved(*this);
  resultsSaved(*this);
  changed_ = false;
}

void Database::saveOld(const std::string& path) {
  OldWriter writer(path);
  Saver saver(storage, writer, 0);
  fill(saver);
  saver.finish();
}

bool Database::update() {
  FileReader* now = storage.current();
  if (!now || changed_) return false;
  auto fresh = std::make_unique<FileReader>(pathOf(target));
  if (fresh->format().saveId[0] == now->format().saveId[0] &&
      fresh->format().saveId[1] == now->format().saveId[1]) {
    return false;
  }
  if (!updateSteps(*this, *fresh)) return false;
  storage.setCurrent(std::move(fresh));
  return true;
}

}  // namespace odbs::engine
