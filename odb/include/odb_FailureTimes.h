// SPDX-License-Identifier: BSD-3-Clause
// When elements failed, as a step of a database records it. This library's own, like
// odb_embedded_results.h, which writes it: the API has no such call.
#pragma once

#include <odb_Instance.h>
#include <odb_Step.h>

#include <vector>

namespace odbs {
namespace engine {

struct FailureTime {
  odb_Instance instance;
  int elementLabel = -1;
  float time = 0;  // step time
};

// In the order in which they were added. Throws odb_Exception for a damaged database.
std::vector<FailureTime> failureTimes(const odb_Step& step);

}  // namespace engine
}  // namespace odbs
