// SPDX-License-Identifier: BSD-3-Clause
// The allocation hooks: the only names that the program exports, unmangled, for libraries that
// route their allocations through the program that loads them.
#pragma once

#include <cstddef>

#if defined(_WIN32)
#define ODBS_EXPORT __declspec(dllexport)
#else
#define ODBS_EXPORT __attribute__((visibility("default"), used))
#endif

extern "C" {

// Each calls the runtime's malloc, calloc or realloc and returns its result unchanged. When it is
// null although a non-zero amount was asked for, two lines on standard error name the caller's
// `file` and `line`. A null result of a request for nothing is silent.
ODBS_EXPORT void* my_libc_malloc(const char* file, int line, std::size_t nBytes);
ODBS_EXPORT void* my_libc_calloc(const char* file, int line, std::size_t nItems,
                                 std::size_t itemBytes);
ODBS_EXPORT void* my_libc_realloc(const char* file, int line, void* block, std::size_t nBytes);
}
