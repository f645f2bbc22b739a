// SPDX-License-Identifier: BSD-3-Clause
// The records around the members of a set: its header and its end. The members between them are
// label chunks (server/core/record.h, server/core/entity_records.h).
#pragma once

#include <string_view>

namespace odbs {

// What a set holds; each value is the tag of the set's header.
enum class SetKind : unsigned char { kNodes = 0x05, kElements = 0x06, kSurface = 0x07 };

// Set header, buffered: a text record with the tag of the kind.
void sendSetHeader(int outputFd, SetKind kind, std::string_view name);

// End-of-set record, buffered: 0B alone.
void sendEndOfSet(int outputFd);

}  // namespace odbs
