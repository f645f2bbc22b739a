// SPDX-License-Identifier: BSD-3-Clause
// Records written by hand, fed to the decoders and builders of the client.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "client/records/errors.h"
#include "client/records/record_stream.h"
#include "tests/support/record_text.h"

namespace odbs::client::test {

using tests::frame;
using tests::record;

// The payload as a record at stream position `offset`; it points into `payload`.
inline Record recordOf(const std::string& payload, std::uint64_t offset = 0) {
  Record record;
  record.tag = static_cast<unsigned char>(payload[0]);
  record.body = reinterpret_cast<const unsigned char*>(payload.data()) + 1;
  record.size = static_cast<std::uint32_t>(payload.size() - 1);
  record.offset = offset;
  return record;
}

using Records = std::vector<std::string>;  // in the notation of record_text.h

// Feeds the records to a builder and returns what it builds.
template <typename Builder>
auto build(const Records& records, Builder builder = Builder()) {
  std::uint64_t offset = 0;
  for (const std::string& notation : records) {
    const std::string payload = record(notation);
    builder.add(recordOf(payload, offset));
    offset += payload.size() + 2;
  }
  return builder.finish();
}

// The offset at which the builder finds the records malformed, or -1.
template <typename Builder>
std::int64_t offsetOfError(const Records& records, Builder builder = Builder()) {
  try {
    build(records, builder);
    return -1;
  } catch (const MalformedRecord& error) {
    return static_cast<std::int64_t>(error.offset());
  }
}

}  // namespace odbs::client::test
