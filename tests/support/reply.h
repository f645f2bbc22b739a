// SPDX-License-Identifier: BSD-3-Clause
// Replies taken apart into records.
#pragma once

#include <string>
#include <vector>

#include "tests/support/server_process.h"

namespace odbs::tests {

// Payloads of the records of one reply, the acknowledgement left out.
using Records = std::vector<std::string>;

// Sends an acknowledged line and returns the records ahead of its acknowledgement; all bytes of the
// reply go to `bytes`, if given. Throws std::runtime_error when the reply ends without one.
Records recordsOf(Process& server, const std::string& line, std::string* bytes = nullptr);

// The payloads of the framed records in `bytes`.
Records recordsIn(const std::string& bytes);

// The records of `records` with that tag.
Records withTag(const Records& records, int tag);

}  // namespace odbs::tests
