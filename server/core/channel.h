// SPDX-License-Identifier: BSD-3-Clause
// The command channel: text lines come in on one descriptor, framed records go out on another.
// This file owns the read buffer, the output buffer and the one place where the flush rule stands.
// Only the main thread uses it.
//
// A record on the wire is a 16-bit little-endian payload length followed by the payload, whose
// first byte is the record's tag. Records are packed back to back.
#pragma once

#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/bytes.h"

namespace odbs {

constexpr std::uint32_t kOutputBytes = 40961;     // size of the output buffer
constexpr std::uint32_t kFlushThreshold = 40950;  // fill + payload that writes the buffer out first
constexpr std::uint32_t kMaxPayload = 10240;      // largest payload of one record
constexpr std::size_t kLineBytes = 4096;          // a line of at most 4095 characters and its NUL
constexpr std::size_t kReadBytes = 4096;          // bytes asked of one read

// Records that wait to be written. `fill` is 0 between commands, unless a command failed after it
// had appended records: they stay and leave with the next flush.
struct OutputBuffer {
  std::uint32_t fill = 0;  // bytes in use
  unsigned char bytes[kOutputBytes] = {};
};
inline OutputBuffer outputBuffer;

// Reads the next command line. The result is valid until the next call; its last character is
// followed by a NUL. Exactly one character is trimmed from the end whatever it is: the line feed,
// or the last character of a line that was cut at 4095 bytes or by the end of input. A carriage
// return is kept. The line ends at its first NUL. Bytes after the line stay buffered for the next
// call. Ends the process with status 0 at the end of input before the first byte of a line, and on
// a read error other than an interruption.
std::string_view readCommandLine(int inputFd);

// Writes the filled part of the output buffer, if any, with one write, and empties it. What cannot
// be written is lost: the protocol has no way to say so.
void flushOutput(int outputFd);

// Writes bytes at once, past the output buffer. For a framed record only while the output buffer is
// empty, or the stream gets out of order. Returns false when not all could be written.
bool writeDirect(int outputFd, const unsigned char* bytes, std::size_t size);

// The flush rule: whether a record of that payload makes the buffer be written out first. Contract:
// the two frame bytes are not counted. They and the payload fit all the same, since the buffer is
// 11 bytes longer than the threshold.
constexpr bool isFlushDue(std::uint32_t fill, std::uint32_t payloadBytes) {
  return fill + payloadBytes >= kFlushThreshold;
}

// The fast way to append a record: writes the output buffer out first when the record would bring
// it to the threshold, puts the two length bytes, and returns the place of the payload. The caller
// must fill all `payloadBytes` (1 to kMaxPayload) before the next call on the channel.
//
//   unsigned char* p = reserveRecord(outputFd, 5);
//   p[0] = kNodeTag;
//   putU32(p + 1, label);
inline unsigned char* reserveRecord(int outputFd, std::uint32_t payloadBytes) {
  assert(payloadBytes >= 1 && payloadBytes <= kMaxPayload);
  if (isFlushDue(outputBuffer.fill, payloadBytes)) flushOutput(outputFd);
  unsigned char* frame = outputBuffer.bytes + outputBuffer.fill;
  putU16(frame, static_cast<std::uint16_t>(payloadBytes));
  outputBuffer.fill += payloadBytes + 2;
  return frame + 2;
}

// Records of equal size, many at once.
struct ReservedRecords {
  unsigned char* frames;  // where the first record's two length bytes belong
  int n;                  // how many records there is room for, at least 1
};

// The fastest way to append up to `n` > 0 records of `payloadBytes` each: reserves as many as the
// flush rule lets into the output buffer, which is written out first when not even one fits. The
// caller must put the two length bytes and the payload of each of them before the next call on
// the channel, and come again for the rest.
inline ReservedRecords reserveRecords(int outputFd, std::uint32_t payloadBytes, int n) {
  assert(payloadBytes >= 1 && payloadBytes <= kMaxPayload && n > 0);
  if (isFlushDue(outputBuffer.fill, payloadBytes)) flushOutput(outputFd);
  const std::uint32_t nFitting =
      (kFlushThreshold - 1 - outputBuffer.fill - payloadBytes) / (payloadBytes + 2) + 1;
  const std::uint32_t nReserved = std::min(nFitting, static_cast<std::uint32_t>(n));
  unsigned char* frames = outputBuffer.bytes + outputBuffer.fill;
  outputBuffer.fill += nReserved * (payloadBytes + 2);
  return {frames, static_cast<int>(nReserved)};
}

// reserveRecord for loops that append millions of records of different sizes: keeps the fill in a
// register. While one lives, nothing else may touch the channel.
class RecordCursor {
 public:
  explicit RecordCursor(int outputFd) : outputFd_(outputFd), fill_(outputBuffer.fill) {}
  ~RecordCursor() { outputBuffer.fill = fill_; }
  RecordCursor(const RecordCursor&) = delete;
  RecordCursor& operator=(const RecordCursor&) = delete;

  // As the function of that name.
  unsigned char* reserveRecord(std::uint32_t payloadBytes) {
    if (isFlushDue(fill_, payloadBytes)) {
      outputBuffer.fill = fill_;
      flushOutput(outputFd_);
      fill_ = 0;
    }
    unsigned char* frame = outputBuffer.bytes + fill_;
    putU16(frame, static_cast<std::uint16_t>(payloadBytes));
    fill_ += payloadBytes + 2;
    return frame + 2;
  }

 private:
  int outputFd_;
  std::uint32_t fill_;
};

}  // namespace odbs
