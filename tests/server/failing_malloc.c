/* SPDX-License-Identifier: BSD-3-Clause */
/* Preloaded into a server: allocations of exactly the sizes in FAILING_SIZES ("1001 190") fail, and
   the FAILING_CALL-th one after the signal SIGUSR1. */
#include <errno.h>
#include <signal.h>
#include <stdlib.h>

void* __libc_malloc(size_t size);

static volatile long nLeft = 0;

static void start(int number) {
  const char* const call = getenv("FAILING_CALL");
  nLeft = number && call ? atol(call) : 0;
}

__attribute__((constructor)) static void listen(void) {
  if (getenv("FAILING_CALL")) signal(SIGUSR1, start);
}

void* malloc(size_t size) {
  if (nLeft > 0 && --nLeft == 0) {
    errno = ENOMEM;
    return NULL;
  }
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
