// SPDX-License-Identifier: BSD-3-Clause
// What is said on standard error when memory runs out.
#pragma once

namespace odbs {

// The file that our own failed allocations name.
constexpr const char* kServerSourceName = "odb_server";

// Prints the two lines of a failed allocation, naming the source file and line that asked for it.
void reportAllocationFailure(const char* file, int line);

}  // namespace odbs
