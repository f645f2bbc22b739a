// SPDX-License-Identifier: BSD-3-Clause
// The bytes that come from the server, cut into records without copying them: a large buffer that
// is filled by big reads and walked in place. It does no input, so tests feed it bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "base/bytes.h"
#include "client/records/errors.h"

namespace odbs::client {

// One framed record, seen in place: [u16 length][tag][body]. The body's bytes belong to the stream
// and are valid until more bytes are read into it.
struct Record {
  unsigned char tag = 0;                // first byte of the payload
  const unsigned char* body = nullptr;  // the payload after the tag
  std::uint32_t size = 0;               // bytes of the body
  std::uint64_t offset = 0;             // stream position of the frame's first byte
};

// The tag of the three bytes 01 00 7E that end a reply.
constexpr unsigned char kAcknowledgementTag = '~';

class RecordStream {
 public:
  // The largest frame: two length bytes and 65535 payload bytes.
  static constexpr std::size_t kLargestFrame = 2 + 65535;

  // `capacity` in bytes; raised to what two of the largest records need.
  explicit RecordStream(std::size_t capacity = std::size_t{1} << 20);

  // Takes the next record when all its bytes are here. Returns false when more bytes are needed.
  // Throws MalformedRecord for a frame of length 0, which no server sends.
  bool take(Record& record) {
    const std::size_t here = end_ - begin_;
    if (here < 2) return false;
    const unsigned char* frame = data_.get() + begin_;
    const std::size_t length = getU16(frame);
    if (length == 0) failEmptyFrame();
    if (here < 2 + length) return false;
    record.tag = frame[2];
    record.body = frame + 3;
    record.size = static_cast<std::uint32_t>(length - 1);
    record.offset = offset_;
    begin_ += 2 + length;
    offset_ += 2 + length;
    return true;
  }

  // Takes up to `most` unframed bytes. Returns how many there were; `*bytes` points at them.
  std::size_t takeRaw(const unsigned char** bytes, std::size_t most);

  // Where to put further bytes: room for at least the largest frame. Moves what is not yet taken to
  // the front when needed, which invalidates the records taken before.
  unsigned char* space(std::size_t* size);

  // Call it when `n` bytes have been written to `space`.
  void filled(std::size_t n) { end_ += n; }

  // Bytes received but not yet taken, for example of a record cut short by the end of the stream.
  std::size_t pending() const { return end_ - begin_; }

  // Stream position of the next byte to be taken.
  std::uint64_t offset() const { return offset_; }

 private:
  [[noreturn]] void failEmptyFrame() const;

  std::size_t capacity_;
  std::unique_ptr<unsigned char[]> data_;
  std::size_t begin_ = 0;  // next byte to be taken
  std::size_t end_ = 0;    // end of the bytes received
  std::uint64_t offset_ = 0;
};

}  // namespace odbs::client
