// SPDX-License-Identifier: BSD-3-Clause
// The section summary: what the command "is" answers.
#pragma once

#include <odb_API.h>

namespace odbs {

// Sends one summary record per section, then, for each instance and with several instances for the
// assembly's own elements, the elements of each section that has elements there, as element sets.
// Whatever the output buffer held before is dropped.
// Exceptions of the database library pass through; records that were appended before stay in the
// buffer.
void sendSectionSummary(odb_Odb& odb, int outputFd);

}  // namespace odbs
