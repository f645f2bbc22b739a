// SPDX-License-Identifier: BSD-3-Clause
// odb_client: asks a server that it starts itself, and prints the answers.
#include <iostream>

#include "client/cli/cli.h"
#include "port/port.h"

int main(int argc, char** argv) {
  odbs::port::ignoreBrokenPipe();
  return odbs::client::runClient({argv + 1, argv + argc}, std::cout, std::cerr);
}
