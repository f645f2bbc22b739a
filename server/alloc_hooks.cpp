// SPDX-License-Identifier: BSD-3-Clause
// The allocation hooks.
#include "server/alloc_hooks.h"

#include <cstdlib>

#include "server/core/allocation.h"

namespace odbs {

namespace {

void* reported(void* result, bool askedForSome, const char* file, int line) {
  if (!result && askedForSome) reportAllocationFailure(file, line);
  return result;
}

}  // namespace

}  // namespace odbs

void* my_libc_malloc(const char* file, int line, std::size_t nBytes) {
  return odbs::reported(std::malloc(nBytes), nBytes != 0, file, line);
}

void* my_libc_calloc(const char* file, int line, std::size_t nItems, std::size_t itemBytes) {
  return odbs::reported(std::calloc(nItems, itemBytes), nItems != 0 && itemBytes != 0, file, line);
}

void* my_libc_realloc(const char* file, int line, void* block, std::size_t nBytes) {
  return odbs::reported(std::realloc(block, nBytes), nBytes != 0, file, line);
}
