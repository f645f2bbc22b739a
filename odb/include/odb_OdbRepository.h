// SPDX-License-Identifier: BSD-3-Clause
// The repository of open databases, by the exact text that each was opened with. It may be asked
// from any thread; using or closing a database that another thread uses is undefined.
#pragma once

#include <odb_Odb.h>

class odb_OdbRepository {
 public:
  bool isMember(const odb_String& key) const;
  // Throws odb_Exception when no database of that key is open.
  odb_Odb& get(const odb_String& key) const;
  odb_Odb& operator[](const odb_String& key) const { return get(key); }
  const odb_Odb& constGet(const odb_String& key) const { return get(key); }
  int size() const;

  // For the library itself: enters and takes out an open database.
  odb_Odb& engineEnter(const odb_String& key, const odb_String& path,
                       std::unique_ptr<odbs::engine::Database> database);
  void engineLeave(odb_Odb& odb);
};

// Walks the keys in bytewise order. Databases may be opened and closed during it, the current one
// too: next() goes to the first key after the current one.
class odb_OdbRepositoryIT {
 public:
  explicit odb_OdbRepositoryIT(const odb_OdbRepository&) { first(); }
  void first();
  void next();
  bool isDone() const { return done_; }
  const odb_String& currentKey() const { return key_; }
  // Throws odb_Exception when the current database has been closed.
  odb_Odb& currentValue() const;

 private:
  odb_String key_;
  bool done_ = true;
};

// The one repository of this process.
odb_OdbRepository& odb_openDatabases();
