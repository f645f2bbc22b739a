/* SPDX-License-Identifier: BSD-3-Clause */
/* Preloaded into a server: allocations of exactly the sizes in FAILING_SIZES ("1001 190") fail. */
#include <errno.h>
#include <stdlib.h>

void* __libc_malloc(size_t size);

void* malloc(size_t size) {
  const char* at = getenv("FAILING_SIZES");
  while (at && *at) {
    char* end;
    const size_t failing = strtoul(at, &end, 10);
    if (end == at) break;
    if (failing == size) {
      errno = ENOMEM;
      return NULL;
    }
    at = end;
  }
  return __libc_malloc(size);
}
