// SPDX-License-Identifier: BSD-3-Clause
// The program odb_import without its main function.
#pragma once

#include <string>
#include <vector>

namespace odbs::importer {

// Runs the program on its arguments (without the program's name). Reports on standard output,
// reports errors on standard error. Returns the exit status: 0 done, 1 the import failed and no
// file was written, 2 the arguments make no sense.
int runImport(const std::vector<std::string>& arguments);

}  // namespace odbs::importer
