// SPDX-License-Identifier: BSD-3-Clause
// odb_client: starts a server, sends it commands and prints the replies.
#include <iostream>

#include "client/cli/cli.h"
#include "port/port.h"

int main(int argc, char** argv) {
  odbs::port::ignoreBrokenPipe();
  odbs::port::ignoreFileSizeLimit();
  return odbs::client::runClient({argv + 1, argv + argc}, std::cout, std::cerr);
}
