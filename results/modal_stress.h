// SPDX-License-Identifier: BSD-3-Clause
// Random-response stresses: fields that are computed from a covariance matrix of eigenmodes and the
// stresses of these modes in an earlier frequency step.
#pragma once

#include <odb_API.h>

#include "results/field_extractor.h"

namespace odbs {

// Sends the values, one number each, for the blocks of "S" without section points. `matrix` is the
// field of a modal measure (server/core/result_codes.h). Nothing is sent when it holds no values,
// when no step before the selected one has the procedure "*FREQUENCY", or when no mode of that step
// has "S". The modes' stresses are gathered in the server state's cache first. Throws what the
// database library throws, and std::runtime_error or std::out_of_range for modes and a matrix that
// do not fit each other, in all cases before a value is sent; flushes the output buffer when it
// ends normally.
void extractModalStress(odb_Odb& odb, int outputFd, const FieldRequest& request,
                        const odb_FieldOutput& matrix);

}  // namespace odbs
