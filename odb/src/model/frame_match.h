// SPDX-License-Identifier: BSD-3-Clause
// Choosing a frame by its value.
#pragma once

#include <odb_Enum.h>

#include <vector>

namespace odbs::engine {

// The place of the value that matches, -1 when none does. EXACT compares in single precision;
// BEFORE and AFTER give the nearest smaller or larger one; CLOSEST the nearest, the first of two.
int matchFrame(const std::vector<double>& values, double wanted, odb_Enum::odb_MatchEnum match);

}  // namespace odbs::engine
