// SPDX-License-Identifier: BSD-3-Clause
// One form for the several ways to write a path.
#pragma once

#include <string>

namespace odbs {

// The path with every '/' turned into '\' and, where it is on a mapped network drive, replaced
// by its universal name (cut at 1023 characters). Only to be compared with other canonical paths,
// never to be opened.
std::string canonicalPath(const std::string& path);

}  // namespace odbs
