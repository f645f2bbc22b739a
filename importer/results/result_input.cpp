// SPDX-License-Identifier: BSD-3-Clause
// The buffered stream of importer/results/result_input.h.
#include "importer/results/result_input.h"

#include <cstdio>
#include <cstring>

#include "base/printable.h"

namespace odbs::importer {

namespace {
constexpr std::size_t kBufferSize = 1 << 16;
}  // namespace

ResultInput::ResultInput(const std::string& path)
    : path_(path), file_(path, std::ios::binary), buffer_(kBufferSize) {
  if (!file_) throw ResultFileError(path + ": cannot be opened");
  file_.seekg(0, std::ios::end);
  const std::streamoff end = file_.tellg();
  file_.seekg(0);
  if (!file_ || end < 0) throw ResultFileError(path + ": is not a readable file");
  size_ = static_cast<std::uint64_t>(end);
}

bool ResultInput::refill() {
  const std::size_t kept = filled_ - at_;
  std::memmove(buffer_.data(), buffer_.data() + at_, kept);
  file_.read(buffer_.data() + kept, static_cast<std::streamsize>(buffer_.size() - kept));
  const std::size_t added = static_cast<std::size_t>(file_.gcount());
  if (file_.bad()) fail("cannot be read");
  offset_ += added;
  at_ = 0;
  filled_ = kept + added;
  return added > 0;
}

bool ResultInput::nextLine() {
  line_ = {};
  if (at_ == filled_ && !refill()) return false;
  lineStart_ = offset_ - (filled_ - at_);
  ++lineNumber_;
  bool spans = false;
  for (;;) {
    const char* const start = buffer_.data() + at_;
    const void* const found = std::memchr(start, '\n', filled_ - at_);
    const char* const end =
        found != nullptr ? static_cast<const char*>(found) : buffer_.data() + filled_;
    const std::size_t size = static_cast<std::size_t>(end - start);
    at_ += size + (found != nullptr ? 1 : 0);
    if (found != nullptr && !spans) {
      line_ = {start, size};
      break;
    }
    if (!spans) joined_.clear();
    spans = true;
    joined_.append(start, size);
    if (joined_.size() > kMaxLine) fail("a line of more than a million characters");
    if (found != nullptr || !refill()) {
      line_ = joined_;
      break;
    }
  }
  if (!line_.empty() && line_.back() == '\r') line_.remove_suffix(1);
  return true;
}

void ResultInput::readBytes(unsigned char* target, std::size_t size) {
  binary_ = true;
  line_ = {};
  while (size > 0) {
    if (at_ == filled_ && !refill()) fail("the file ends inside a binary block");
    const std::size_t part = std::min(size, filled_ - at_);
    std::memcpy(target, buffer_.data() + at_, part);
    target += part;
    size -= part;
    at_ += part;
    lineStart_ = offset_ - (filled_ - at_);
  }
}

void ResultInput::skipBytes(std::uint64_t size) {
  binary_ = true;
  line_ = {};
  if (size > remaining()) failCut("the file ends inside a binary block");
  const std::uint64_t target = size_ - remaining() + size;
  if (size <= filled_ - at_) {
    at_ += static_cast<std::size_t>(size);
  } else {
    moveTo(target);
  }
  lineStart_ = target;
}

void ResultInput::seek(const ResultPlace& place) {
  moveTo(place.offset);
  line_ = {};
  lineStart_ = place.offset;
  lineNumber_ = place.line - 1;
}

void ResultInput::moveTo(std::uint64_t offset) {
  file_.clear();
  file_.seekg(static_cast<std::streamoff>(offset));
  at_ = filled_ = 0;
  offset_ = offset;
}

bool ResultInput::continuesWith(std::string_view text) {
  if (filled_ - at_ < text.size()) refill();
  return std::string_view(buffer_.data() + at_, filled_ - at_).substr(0, text.size()) == text;
}

void ResultInput::fail(const std::string& reason) const {
  if (remaining() == 0) failCut(reason);
  throw ResultFileError(path_ + where() + printable(reason));
}

void ResultInput::failCut(const std::string& reason) const {
  throw ResultFileCut(path_ + where() + printable(reason) + " (the file ends here)");
}

std::string ResultInput::where() const {
  return (binary_ ? ": byte " + std::to_string(lineStart_) : ":" + std::to_string(lineNumber_)) +
         ": ";
}

}  // namespace odbs::importer
