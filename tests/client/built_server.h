// SPDX-License-Identifier: BSD-3-Clause
// How the tests start the servers that were built beside them.
#pragma once

#include <string>

#include "client/connection.h"

namespace odbs::client::test {

inline StartOptions builtServer(const char* name) {
  StartOptions options;
  options.server = std::string(ODBS_BIN_DIR) + "/" + name;
#ifdef _WIN32
  options.server += ".exe";
#endif
  options.timeoutMs = 60000;
  return options;
}

inline StartOptions realServer() {
  return builtServer("odb_server");
}

inline StartOptions fakeServer() {
  return builtServer("client_fake_server");
}

}  // namespace odbs::client::test
