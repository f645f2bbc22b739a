// SPDX-License-Identifier: BSD-3-Clause
// The command loop.
#include "server/dispatcher.h"

#include <algorithm>
#include <exception>
#include <new>

#include "server/command_table.h"
#include "server/core/allocation.h"
#include "server/core/channel.h"
#include "server/core/record.h"
#include "server/core/sdk_adapter.h"

namespace odbs {

namespace {

// Contract: the parent is told nothing of a failure. Records already appended stay in the buffer
// and leave with the next flush, after this command's acknowledgement.
void runHandler(const Command& command, Call& call) {
  try {
    sdk::guarded([&] { command.run(call); });
  } catch (const std::bad_alloc&) {
    reportAllocationFailure(kServerSourceName, call.allocationLine);
  } catch (const std::exception&) {
  } catch (...) {
    if (command.guard != Guard::kDiscardAll) throw;
  }
}

bool isAcknowledged(Acknowledge rule, const Call& call) {
  switch (rule) {
    case Acknowledge::kNever:
      return false;
    case Acknowledge::kUnlessAnswered:
      return !call.answered;
    case Acknowledge::kAlways:
      break;
  }
  return true;
}

}  // namespace

void runCommand(std::string_view line, int outputFd) {
  Acknowledge rule = Acknowledge::kAlways;
  Call call{line, line.data() + line.size(), outputFd};
  if (const Command* command = findCommand(line)) {
    rule = command->acknowledge;
    call.arguments = line.data() + std::min<std::size_t>(command->column, line.size());
    runHandler(*command, call);
  }
  if (isAcknowledged(rule, call)) sendAck(outputFd);
}

void runCommandLoop(int inputFd, int outputFd) {
  for (;;) runCommand(readCommandLine(inputFd), outputFd);
}

}  // namespace odbs
