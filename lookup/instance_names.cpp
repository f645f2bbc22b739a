// SPDX-License-Identifier: BSD-3-Clause
// Instance names in stream order.
#include "lookup/instance_names.h"

#include <algorithm>

namespace odbs {

std::vector<std::string> sortedInstanceNames(odb_Assembly& assembly) {
  std::vector<std::string> names;
  odb_InstanceRepositoryIT it(assembly.instances());
  for (it.first(); !it.isDone(); it.next()) names.emplace_back(it.currentKey().CStr());
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace odbs
