// SPDX-License-Identifier: BSD-3-Clause
// Writes the database of docs/protocol.md's example to the path given.
#include "tests/client/written_model.h"

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  odbs::client::test::writeRod(argv[1]);
  return 0;
}
