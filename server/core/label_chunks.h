// SPDX-License-Identifier: BSD-3-Clause
// How a list of labels is cut into records. For the senders of server/core/record.h and
// server/core/entity_records.h; exporters call those.
#pragma once

#include <algorithm>
#include <cstdint>

#include "server/core/channel.h"

namespace odbs {

constexpr unsigned char kNodeLabelsTag = 0x08;
constexpr unsigned char kElementLabelsTag = 0x09;
constexpr unsigned char kElementLabelPairsTag = 0x0A;
constexpr int kLabelsPerRecord = 30;

// Sends `n` items of `width` bytes in records of 30 items, the last one holding the rest; none when
// n is 0 or less. `putItem(p, i)` puts item i at p.
template <typename PutItem>
void sendLabelChunks(int outputFd, unsigned char tag, int n, std::uint32_t width, PutItem putItem) {
  for (int first = 0; first < n; first += kLabelsPerRecord) {
    const int last = first + std::min(kLabelsPerRecord, n - first);
    unsigned char* p =
        reserveRecord(outputFd, 1 + width * static_cast<std::uint32_t>(last - first));
    *p++ = tag;
    for (int i = first; i < last; ++i, p += width) putItem(p, i);
  }
}

}  // namespace odbs
