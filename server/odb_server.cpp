// SPDX-License-Identifier: BSD-3-Clause
// Process entry: odb_server PARENT_ID INPUT_DESCRIPTOR OUTPUT_DESCRIPTOR
//
// The order of the start is part of the contract: the watchdog runs before the database library is
// initialised, so that a server whose parent is gone ends however long that takes.
#include <cstdio>
#include <cstring>
#include <string_view>

#include "base/text.h"
#include "port/port.h"
#include "server/command_table.h"
#include "server/dispatcher.h"
#include "server/parent_watchdog.h"
#include "server/sdk_adapter.h"

namespace {

void printHelp() {
  std::puts(
      "usage: odb_server PARENT_ID INPUT_DESCRIPTOR OUTPUT_DESCRIPTOR\n"
      "       odb_server --help | --version\n"
      "\n"
      "Serves output databases to the process that starts it: reads one-line commands\n"
      "from the input descriptor, answers with binary records on the output descriptor,\n"
      "and ends when the parent process ends.\n"
      "\n"
      "commands:");
  for (const odbs::Command& row : odbs::allCommands()) {
    std::printf("  %-4s%-19s %s\n", row.letters, row.parameters, row.synopsis);
  }
}

// A missing or non-numeric argument counts as 0; nothing is validated.
int numberAt(int argc, char** argv, int place) {
  return place < argc ? odbs::toIntOrZero(argv[place]) : 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view first = argc > 1 ? argv[1] : "";
  if (first == "--help") {
    printHelp();
    return 0;
  }
  if (first == "--version") {
    std::puts("odb_server " ODBS_VERSION);
    return 0;
  }
  odbs::port::ignoreBrokenPipe();
  odbs::startParentWatchdog(numberAt(argc, argv, 1));
  odb_initializeAPI();
  const int outputFd = numberAt(argc, argv, 3);
  const int inputFd = numberAt(argc, argv, 2);
  odbs::port::setBinaryMode(inputFd);
  odbs::port::setBinaryMode(outputFd);
  odbs::runCommandLoop(inputFd, outputFd);
}
