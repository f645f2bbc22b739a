// SPDX-License-Identifier: BSD-3-Clause
// Canonical paths.
#include "registry/canonical_path.h"

#include <algorithm>

#include "base/text.h"
#include "port/port.h"

namespace odbs {

std::string canonicalPath(const std::string& path) {
  constexpr std::size_t kMaxUniversalName = 1023;
  std::string result = path;
  std::replace(result.begin(), result.end(), '/', '\\');
  // Two backslashes start a universal name, or with a point a device path, which is looked up too.
  const bool isUniversal = result.size() >= 3 && startsWith(result, "\\\\") && result[2] != '.';
  if (isUniversal) return result;
  const std::string universal = port::universalName(result);
  return universal.empty() ? result : universal.substr(0, kMaxUniversalName);
}

}  // namespace odbs
