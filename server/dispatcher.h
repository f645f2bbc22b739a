// SPDX-License-Identifier: BSD-3-Clause
// The command loop.
#pragma once

#include <string_view>

namespace odbs {

// Runs one command line: finds its row, runs the handler under the row's guard, acknowledges as
// the row says. `line` must be followed by a NUL.
void runCommand(std::string_view line, int outputFd);

// Reads and runs command lines, one after the other, until the process ends.
[[noreturn]] void runCommandLoop(int inputFd, int outputFd);

}  // namespace odbs
