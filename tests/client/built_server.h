// SPDX-License-Identifier: BSD-3-Clause
// How the tests start the server that was built beside them.
#pragma once

#include <string>

#include "client/connection.h"
#include "tests/support/server_process.h"

namespace odbs::client::test {

inline StartOptions realServer() {
  StartOptions options;
  options.server = tests::siblingProgram("odb_server");
  options.timeoutMs = 60000;
  return options;
}

}  // namespace odbs::client::test
