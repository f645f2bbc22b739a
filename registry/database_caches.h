// SPDX-License-Identifier: BSD-3-Clause
// Caches by database: what an exporter computed about an open database and needs again
// at the next command. All of them forget a database when it is closed or reopened.
//
//   DatabaseCache<SectionNumbers> sectionNumbers;  // at namespace scope
//   ...
//   SectionNumbers& numbers = sectionNumbers.of(odb);  // default-made when not there yet
#pragma once

#include <map>
#include <string>

#include "server/core/sdk_adapter.h"

namespace odbs {

// Empties every cache's entry of the database that is open under `key`.
void resetDatabaseCaches(const std::string& key);

// How a cache forgets a database: by reset(cache, key).
struct CacheReset {
  void (*reset)(void* cache, const std::string& key);
  void* cache;
  CacheReset* next = nullptr;  // set when it is registered
};

// Has `entry` called by each `resetDatabaseCaches(key)` from now on. DatabaseCache does this for
// itself. `entry` and its cache must live to the end of the process.
void registerDatabaseCache(CacheReset& entry);

// Values of one type by open database. An object of this class must live to the end of the process.
template <typename Value>
class DatabaseCache {
 public:
  DatabaseCache() { registerDatabaseCache(reset_); }
  DatabaseCache(const DatabaseCache&) = delete;
  DatabaseCache& operator=(const DatabaseCache&) = delete;

  // The value kept for the database; a default-made one when there is none yet. The reference is
  // valid until the database is closed or reopened.
  Value& of(const odb_Odb& odb) { return values_[sdk::keyOf(odb)]; }

  // The value kept for the database, or null.
  Value* find(const odb_Odb& odb) {
    const auto at = values_.find(sdk::keyOf(odb));
    return at == values_.end() ? nullptr : &at->second;
  }

 private:
  static void reset(void* cache, const std::string& key) {
    static_cast<DatabaseCache*>(cache)->values_.erase(key);
  }

  std::map<std::string, Value> values_;
  CacheReset reset_{&DatabaseCache::reset, this};
};

}  // namespace odbs
