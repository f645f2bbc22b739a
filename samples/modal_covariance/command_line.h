// SPDX-License-Identifier: BSD-3-Clause
// The program odb_modal_covariance without its main function.
#pragma once

#include <string>
#include <vector>

namespace odbs {

// Runs the program on its arguments (without the program's name). Reports on standard output, gives
// the reason of a failure on standard error. Returns the exit status: 0 the step is in the
// database, 1 it is not and the database is as it was, 2 the arguments make no sense.
int runModalCovariance(const std::vector<std::string>& arguments);

}  // namespace odbs
