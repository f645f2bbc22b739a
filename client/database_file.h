// SPDX-License-Identifier: BSD-3-Clause
// A look at a file that the server did not open. The protocol gives no reason why a database does
// not open, so a parent on the same machine examines the file.
#pragma once

#include <string>

namespace odbs::client {

// What keeps the file from being read as a database, judging by its first bytes and its size:
// "there is no such file", "it is a folder", ... Never empty.
std::string whyNotOpened(const std::string& path);

}  // namespace odbs::client
