// SPDX-License-Identifier: BSD-3-Clause
// The exported allocation hooks: what they return and what they say.
#include "server/alloc_hooks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

TEST(AllocationHooks, AllocateLikeTheRuntime) {
  char* block = static_cast<char*>(my_libc_malloc("a.c", 1, 8));
  ASSERT_NE(block, nullptr);
  std::memcpy(block, "1234567", 8);
  block = static_cast<char*>(my_libc_realloc("a.c", 2, block, 8000));
  ASSERT_NE(block, nullptr);
  EXPECT_STREQ(block, "1234567");
  std::free(block);
  int* zeros = static_cast<int*>(my_libc_calloc("a.c", 3, 10, sizeof(int)));
  ASSERT_NE(zeros, nullptr);
  for (int i = 0; i < 10; ++i) EXPECT_EQ(zeros[i], 0);
  std::free(zeros);
}

// AddressSanitizer ends the process at such a request, unless told otherwise.
#if !defined(__SANITIZE_ADDRESS__)
// More than any address space holds, yet no compile-time constant to warn about.
std::size_t absurdSize() {
  static volatile std::size_t size = SIZE_MAX / 4;
  return size;
}

TEST(AllocationHooks, SayWhoAskedWhenMemoryRunsOut) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(my_libc_malloc("m.c", 12, absurdSize()), nullptr);
  EXPECT_EQ(my_libc_calloc("c.c", 34, absurdSize(), 16), nullptr);
  EXPECT_EQ(my_libc_realloc("r.c", 56, nullptr, absurdSize()), nullptr);
  std::string said = testing::internal::GetCapturedStderr();
  for (std::size_t at; (at = said.find('\r')) != std::string::npos;) said.erase(at, 1);
  EXPECT_EQ(said,
            "Memory allocation error!!!!\nFILE :m.c , LINE :12\n"
            "Memory allocation error!!!!\nFILE :c.c , LINE :34\n"
            "Memory allocation error!!!!\nFILE :r.c , LINE :56\n");
}
#endif

TEST(AllocationHooks, AreSilentAboutRequestsForNothing) {
  testing::internal::CaptureStderr();
  std::free(my_libc_malloc("m.c", 1, 0));
  std::free(my_libc_calloc("c.c", 2, 0, 8));
  std::free(my_libc_calloc("c.c", 3, 8, 0));
  EXPECT_EQ(my_libc_realloc("r.c", 4, std::malloc(4), 0), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
