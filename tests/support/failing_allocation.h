// SPDX-License-Identifier: BSD-3-Clause
// Makes one `operator new` of the test's own process throw std::bad_alloc. A test that links
// odbs_failing_allocation gets its operators instead of the standard library's.
#pragma once

namespace odbs::tests {

// While it lives, the allocation after the next `nBefore` ones fails, once.
class FailingAllocation {
 public:
  explicit FailingAllocation(int nBefore);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
};

}  // namespace odbs::tests
