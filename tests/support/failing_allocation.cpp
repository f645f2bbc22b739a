// SPDX-License-Identifier: BSD-3-Clause
// The operators of tests/support/failing_allocation.h.
#include "tests/support/failing_allocation.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int nLeft = -1;  // allocations up to the failing one; negative: none fails

}  // namespace

void* operator new(std::size_t size) {
  if (nLeft >= 0 && nLeft-- == 0) throw std::bad_alloc();
  if (void* memory = std::malloc(size > 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return std::malloc(size > 0 ? size : 1);
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace odbs::tests {

FailingAllocation::FailingAllocation(int nBefore) {
  nLeft = nBefore;
}

FailingAllocation::~FailingAllocation() {
  nLeft = -1;
}

}  // namespace odbs::tests
