// SPDX-License-Identifier: BSD-3-Clause
// The program odb_import.
#include "importer/command_line.h"
#include "port/port.h"

int main(int argc, char** argv) {
  odbs::port::ignoreBrokenPipe();
  odbs::port::ignoreFileSizeLimit();
  odbs::port::removeUnfinishedWhenInterrupted();
  return odbs::importer::runImport({argv + 1, argv + argc});
}
