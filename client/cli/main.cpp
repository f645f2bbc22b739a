// SPDX-License-Identifier: BSD-3-Clause
// odb_client: asks a server that it starts itself, and prints the answers.
#include <iostream>

#include "client/cli/cli.h"

int main(int argc, char** argv) {
  std::ios::sync_with_stdio(false);
  const int status = odbs::client::runClient({argv + 1, argv + argc}, std::cout, std::cerr);
  std::cout.flush();
  if (!std::cout) {
    std::cerr << "odb_client: cannot write the answer\n";
    return odbs::client::kFailed;
  }
  return status;
}
