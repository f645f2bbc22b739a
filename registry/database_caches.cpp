// SPDX-License-Identifier: BSD-3-Clause
// The list of caches to empty when a database is closed or reopened.
#include "registry/database_caches.h"

#include <vector>

namespace odbs {

namespace {

struct CacheReset {
  void (*reset)(void* cache, const std::string& key);
  void* cache;
};

// Made on first use: caches at namespace scope register before main, in any order.
std::vector<CacheReset>& cacheResets() {
  static std::vector<CacheReset> resets;
  return resets;
}

}  // namespace

void registerDatabaseCache(void (*reset)(void* cache, const std::string& key), void* cache) {
  cacheResets().push_back({reset, cache});
}

void resetDatabaseCaches(const std::string& key) {
  for (const CacheReset& entry : cacheResets()) entry.reset(entry.cache, key);
}

}  // namespace odbs
