// SPDX-License-Identifier: BSD-3-Clause
// A command line on its way through the dispatcher, and the row that describes its command.
#pragma once

#include <string_view>

namespace odbs {

// What a handler gets. Views and pointers live as long as the handler runs.
struct Call {
  std::string_view line;  // the whole trimmed line; its end is a NUL
  const char* arguments;  // the line from the row's column to its end; empty for a shorter line
  int outputFd;           // where records go
  bool answered = false;  // set by a handler whose reply takes the place of the acknowledgement
  int allocationLine = __LINE__;  // what the report of a failed allocation names

  // The character at a fixed position; NUL past the end of the line.
  char at(std::size_t position) const { return position < line.size() ? line[position] : '\0'; }
};

// Whether the end-of-command acknowledgement follows.
enum class Acknowledge {
  kAlways,
  kNever,
  kUnlessAnswered,  // only when the handler did not set `answered`
};

// What the dispatcher discards when a handler throws it; the reply then simply ends. Anything else
// ends the process.
enum class Guard {
  kDiscard,     // every std::exception
  kDiscardAll,  // exceptions of any type
};

struct Command {
  const char* letters;  // what the line starts with; the longest match wins
  unsigned column;      // where the arguments start
  Acknowledge acknowledge;
  Guard guard;
  void (*run)(Call&);
  const char* parameters;  // as a person would write them
  const char* synopsis;    // one line
};

}  // namespace odbs
