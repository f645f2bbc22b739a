// SPDX-License-Identifier: BSD-3-Clause
// odb_client ping.
#include "client/cli/cli.h"

namespace odbs::client {

void runPing(const Call& call) {
  const std::unique_ptr<Connection> server = call.connect();
  const std::int32_t id = server->ping();
  const int status = server->quit();
  call.report.facts("ping", {"process_id", "exit_status"},
                    {std::int64_t{id}, std::int64_t{status}});
  if (status != 0) {
    throw ServerEnded("the server quit with status " + std::to_string(status), status);
  }
}

}  // namespace odbs::client
