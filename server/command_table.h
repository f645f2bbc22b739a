// SPDX-License-Identifier: BSD-3-Clause
// The table of all commands.
#pragma once

#include <cstddef>
#include <string_view>

#include "server/command.h"

namespace odbs {

// The row whose letters are the longest start of `line`, or null for an unknown command, which
// does nothing and is acknowledged. Letters are case-sensitive.
const Command* findCommand(std::string_view line);

// All rows, for listings.
struct CommandRows {
  const Command* first;
  std::size_t count;
  const Command* begin() const { return first; }
  const Command* end() const { return first + count; }
};
CommandRows allCommands();

}  // namespace odbs
