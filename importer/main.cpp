// SPDX-License-Identifier: BSD-3-Clause
// The program odb_import.
#include "importer/command_line.h"

int main(int argc, char** argv) {
  return odbs::importer::runImport({argv + 1, argv + argc});
}
