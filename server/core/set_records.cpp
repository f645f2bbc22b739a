// SPDX-License-Identifier: BSD-3-Clause
// The records around the members of a set.
#include "server/core/set_records.h"

#include "server/core/record.h"

namespace odbs {

namespace {

constexpr unsigned char kEndOfSetTag = 0x0B;

}  // namespace

// Set header, buffered.
//   offset  size  content
//   0       1     tag: 05 node set, 06 element set, 07 surface
//   1       4+n   text: name
void sendSetHeader(int outputFd, SetKind kind, std::string_view name) {
  sendTextRecord(outputFd, static_cast<unsigned char>(kind), name);
}

void sendEndOfSet(int outputFd) {
  *reserveRecord(outputFd, 1) = kEndOfSetTag;
}

}  // namespace odbs
