// SPDX-License-Identifier: BSD-3-Clause
// History output: values recorded at single points or regions over the course of a step.
#pragma once

#include <odb_API.h>

namespace odbs {

// Sends every step with its history regions and their outputs, without values.
void exportHistoryOverview(odb_Odb& odb, int outputFd);

// Sends the values of the regions whose names are in the server state's history name table, for the
// step of that number (from 1), or for every step when it is 0. Names that a step does not have are
// skipped.
void exportHistoryValues(odb_Odb& odb, int outputFd, int stepNumber);

// Both empty the name table when they end normally and throw what the database library throws.

}  // namespace odbs
