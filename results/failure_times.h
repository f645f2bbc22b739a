// SPDX-License-Identifier: BSD-3-Clause
// When elements failed, by step: found out once per open database. What the step records counts;
// for other elements, the frames that hold their status tell.
#pragma once

#include <odb_API.h>

#include <string>
#include <vector>

namespace odbs {

// The elements of one block of a status field that have a value of 0, each once where the values of
// an element are neighbours.
std::vector<int> failedLabels(const odb_FieldBulkData& block);

struct FailedElement {
  std::string instance;
  int label = -1;
  double time = 0;  // total time: as recorded, or of the first frame in which its status is 0
};

// The elements that fail in the step with that index (from 0), in the order of their failure. The
// reference is valid until the database is closed or reopened.
const std::vector<FailedElement>& failedElementsOf(odb_Odb& odb, int stepIndex);

}  // namespace odbs
