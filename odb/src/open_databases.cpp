// SPDX-License-Identifier: BSD-3-Clause
// The repository of open databases, and the functions that open, create and close.
#include "odb/src/model/database.h"
#include "odb/src/storage/errors.h"
#include "odb/src/storage/old_layout.h"

#include <mutex>

using namespace odbs::engine;

namespace {

// Never destroyed: at the end of the process a thread may still ask it.
struct OpenDatabases {
  std::mutex mutex;
  std::map<odb_String, std::unique_ptr<odb_Odb>> open;
  // Shells of closed databases, whose references callers may still hold.
  std::map<odb_String, std::unique_ptr<odb_Odb>> closed;
};

OpenDatabases& all() {
  static OpenDatabases* const databases = new OpenDatabases();
  return *databases;
}

// Null when there is none.
odb_Odb* findOpen(const odb_String& key) {
  const std::lock_guard<std::mutex> lock(all().mutex);
  const auto at = all().open.find(key);
  return at == all().open.end() ? nullptr : at->second.get();
}

odb_Odb& enter(const odb_String& key, std::unique_ptr<odb_Odb> odb) {
  const std::lock_guard<std::mutex> lock(all().mutex);
  all().closed.erase(key);
  std::unique_ptr<odb_Odb>& slot = all().open[key];
  slot = std::move(odb);
  return *slot;
}

}  // namespace

// Friend of odb_Odb by way of the repository class: makes entries and takes them out.
odb_Odb& odb_OdbRepository::engineEnter(const odb_String& key, const odb_String& path,
                                        std::unique_ptr<Database> database) {
  auto odb = std::make_unique<odb_Odb>(std::move(database));
  odb->name_ = key;
  odb->path_ = path;
  return enter(key, std::move(odb));
}

void odb_OdbRepository::engineLeave(odb_Odb& odb) {
  {
    const std::lock_guard<std::mutex> lock(all().mutex);
    const auto at = all().open.find(odb.name_);
    if (at == all().open.end() || at->second.get() != &odb) return;
    all().closed[odb.name_] = std::move(at->second);
    all().open.erase(at);
  }
  odb.database_.reset();
}

bool odb_OdbRepository::isMember(const odb_String& key) const {
  return findOpen(key) != nullptr;
}

odb_Odb& odb_OdbRepository::get(const odb_String& key) const {
  odb_Odb* odb = findOpen(key);
  if (!odb) failAbsent(std::string("no open database ") + key.CStr());
  return *odb;
}

int odb_OdbRepository::size() const {
  const std::lock_guard<std::mutex> lock(all().mutex);
  return static_cast<int>(all().open.size());
}

void odb_OdbRepositoryIT::first() {
  const std::lock_guard<std::mutex> lock(all().mutex);
  done_ = all().open.empty();
  key_ = done_ ? odb_String() : all().open.begin()->first;
}

void odb_OdbRepositoryIT::next() {
  if (done_) return;
  const std::lock_guard<std::mutex> lock(all().mutex);
  const auto at = all().open.upper_bound(key_);
  done_ = at == all().open.end();
  if (!done_) key_ = at->first;
}

odb_Odb& odb_OdbRepositoryIT::currentValue() const {
  return odb_openDatabases().get(key_);
}

odb_OdbRepository& odb_openDatabases() {
  static odb_OdbRepository repository;
  return repository;
}

void odb_initializeAPI() {}

void odb_finalizeAPI() {
  for (odb_OdbRepositoryIT it(odb_openDatabases()); !it.isDone(); it.next()) {
    if (odb_openDatabases().isMember(it.currentKey())) it.currentValue().close();
  }
}

odb_Odb& openOdb(const odb_String& name, const odb_String& path, bool readOnly) {
  const odb_String& key = name.empty() ? path : name;
  if (odb_Odb* odb = findOpen(key)) return *odb;
  return odb_openDatabases().engineEnter(key, path, Database::open(path, readOnly));
}

odb_Odb& openOdb(const odb_String& path, bool readOnly, bool) {
  return openOdb(path, path, readOnly);
}

odb_Odb& openOdb(const char* name, const char* path, bool readOnly) {
  return openOdb(odb_String(name), odb_String(path), readOnly);
}

odb_Odb& openOdb(const odb_String& name, const char* path, bool readOnly) {
  return openOdb(name, odb_String(path), readOnly);
}

odb_Odb& openOdb(const odb_String& path, int readOnly) {
  return openOdb(path, path, readOnly != 0);
}

void closeOdb(odb_Odb& odb) {
  odb.close();
}

odb_Odb& Odb(const odb_String& name, const odb_String& analysisTitle, const odb_String& description,
             const odb_String& path) {
  if (name.empty()) failUsage("a database wants a name");
  if (findOpen(name)) failUsage(std::string("a database ") + name.CStr() + " is open");
  auto database = std::make_unique<Database>(name, path);
  database->title = analysisTitle;
  database->description = description;
  const odb_String target = database->target;
  return odb_openDatabases().engineEnter(name, target, std::move(database));
}

odb_Odb& getActiveOdb() {
  const std::lock_guard<std::mutex> lock(all().mutex);
  if (all().open.size() != 1) {
    failAbsent("there are " + std::to_string(all().open.size()) + " open databases, not one");
  }
  return *all().open.begin()->second;
}

bool isUpgradeRequiredForOdb(const odb_String& path) {
  try {
    return readFormat(std::string(path.CStr())).release < layout::kRelease;
  } catch (const odb_Exception&) {
    return false;
  }
}

void upgradeOdb(const odb_String& existingPath, const odb_String& upgradedPath) {
  upgradeOldLayout(existingPath.CStr(), upgradedPath.CStr());
}
