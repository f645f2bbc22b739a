// SPDX-License-Identifier: BSD-3-Clause
// The list of caches to empty when a database is closed or reopened.
#include "registry/database_caches.h"

namespace odbs {

namespace {

// A list through the caches themselves: they register before main, in any order, and must not need
// memory for it.
CacheReset* firstReset = nullptr;

}  // namespace

void registerDatabaseCache(CacheReset& entry) {
  entry.next = firstReset;
  firstReset = &entry;
}

void resetDatabaseCaches(const std::string& key) {
  for (const CacheReset* entry = firstReset; entry; entry = entry->next) {
    entry->reset(entry->cache, key);
  }
}

}  // namespace odbs
