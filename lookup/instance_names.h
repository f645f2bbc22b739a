// SPDX-License-Identifier: BSD-3-Clause
// The instances of an assembly in the order in which every reply goes through them.
#pragma once

#include <odb_API.h>

#include <string>
#include <vector>

namespace odbs {

// Instance names in byte order, whatever order the repository iterates in.
std::vector<std::string> sortedInstanceNames(odb_Assembly& assembly);

}  // namespace odbs
