// SPDX-License-Identifier: BSD-3-Clause
// The buffer's bookkeeping, and the texts of the errors about the stream.
#include "client/records/record_stream.h"

#include <algorithm>
#include <cstring>

namespace odbs::client {

MalformedRecord::MalformedRecord(std::uint64_t offset, const std::string& what)
    : Error("malformed reply at byte " + std::to_string(offset) + ": " + what), offset_(offset) {}

RecordStream::RecordStream(std::size_t capacity)
    : capacity_(std::max(capacity, 2 * kLargestFrame)), data_(new unsigned char[capacity_]) {}

std::size_t RecordStream::takeRaw(const unsigned char** bytes, std::size_t most) {
  const std::size_t n = std::min(most, pending());
  *bytes = data_.get() + begin_;
  begin_ += n;
  offset_ += n;
  return n;
}

unsigned char* RecordStream::space(std::size_t* size) {
  if (begin_ == end_) {
    begin_ = end_ = 0;
  } else if (capacity_ - end_ < kLargestFrame) {
    std::memmove(data_.get(), data_.get() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  }
  *size = capacity_ - end_;
  return data_.get() + end_;
}

void RecordStream::failEmptyFrame() const {
  throw MalformedRecord(offset_, "a record of length 0");
}

}  // namespace odbs::client
