// SPDX-License-Identifier: BSD-3-Clause
// Process entry: odb_server PARENT_ID INPUT_DESCRIPTOR OUTPUT_DESCRIPTOR
//
// The order of the start is part of the contract: the watchdog runs before the database library is
// initialised, so that a server whose parent is gone ends however long that takes.
#include <cstdio>
#include <iostream>
#include <new>
#include <string>
#include <string_view>

#include "base/arguments.h"
#include "base/text.h"
#include "port/port.h"
#include "server/command_table.h"
#include "server/core/allocation.h"
#include "server/core/sdk_adapter.h"
#include "server/dispatcher.h"
#include "server/parent_watchdog.h"

namespace {

std::string helpText(const odbs::Arguments&) {
  std::string text =
      "usage: odb_server PARENT_ID INPUT_DESCRIPTOR OUTPUT_DESCRIPTOR\n"
      "       odb_server --help | --version\n"
      "\n"
      "Serves output databases to the process that starts it: reads one-line commands\n"
      "from the input descriptor, answers with binary records on the output descriptor,\n"
      "and ends when the parent process ends. To look at a database: odb_client model FILE\n"
      "\n"
      "commands:\n";
  char line[200];
  for (const odbs::Command& row : odbs::allCommands()) {
    std::snprintf(line, sizeof line, "  %-4s%-19s %s\n", row.letters, row.parameters, row.synopsis);
    text += line;
  }
  return text;
}

// A missing or non-numeric argument counts as 0; nothing is validated.
int numberAt(int argc, char** argv, int place) {
  return place < argc ? odbs::toIntOrZero(argv[place]) : 0;
}

void serve(int argc, char** argv) {
  odbs::port::ignoreFileSizeLimit();
  odbs::startParentWatchdog(numberAt(argc, argv, 1));
  odb_initializeAPI();
  const int outputFd = numberAt(argc, argv, 3);
  const int inputFd = numberAt(argc, argv, 2);
  odbs::port::setBinaryMode(inputFd);
  odbs::port::setBinaryMode(outputFd);
  odbs::runCommandLoop(inputFd, outputFd);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view first = argc > 1 ? argv[1] : "";
  odbs::port::ignoreBrokenPipe();
  if (first == "--help" || first == "-h" || first == "--version") {
    return odbs::runProgram({"odb_server", helpText, {}}, {argv[1]}, std::cout, std::cerr,
                            [](const odbs::Arguments&) { return odbs::kDone; });
  }
  // Contract: it goes on all the same, with 0 for what is missing.
  if (argc != 4) {
    std::fputs(
        "odb_server: wants three numbers from the process that starts it; try odb_server --help, "
        "or odb_client model FILE to look at a database\n",
        stderr);
  }
  try {
    serve(argc, argv);
  } catch (const std::bad_alloc&) {
    odbs::reportAllocationFailure(odbs::kServerSourceName, __LINE__);
  }
  odbs::port::endProcess(1);  // the watchdog may be at work: no static destructors
}
