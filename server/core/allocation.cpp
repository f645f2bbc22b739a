// SPDX-License-Identifier: BSD-3-Clause
// What is said on standard error when memory runs out.
#include "server/core/allocation.h"

#include <cstdio>

namespace odbs {

void reportAllocationFailure(const char* file, int line) {
  std::fputs("Memory allocation error!!!!\n", stderr);
  std::fprintf(stderr, "FILE :%s , LINE :%d\n", file, line);
}

}  // namespace odbs
