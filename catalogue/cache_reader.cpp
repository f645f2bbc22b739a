// SPDX-License-Identifier: BSD-3-Clause
// The lines of catalogue/cache_reader.h.
#include "catalogue/cache_reader.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "base/bytes.h"
#include "base/text.h"
#include "port/port.h"

namespace odbs {

namespace {

constexpr unsigned kInflateBytes = 1u << 16;
constexpr std::size_t kPieceBytes = 1u << 18;

}  // namespace

CacheReader::CacheReader(const std::string& path) : bytes_(kPieceBytes + kLongestLine + 1) {
  fd_ = port::openExisting(path, false);
  if (fd_ < 0) return;
  stream_ = gzdopen(fd_, "rb");
  if (!stream_) {
    port::closeDescriptor(fd_);
    throw std::bad_alloc();
  }
  gzbuffer(stream_, kInflateBytes);
}

void CacheReader::close() {
  if (stream_) gzclose(stream_);
  stream_ = nullptr;
}

bool CacheReader::isDamaged() {
  while (inflate(bytes_.data(), kPieceBytes) > 0) {
  }
  int error = Z_OK;
  gzerror(stream_, &error);
  if (error == Z_DATA_ERROR || (error == Z_BUF_ERROR && !isCut())) return true;
  gzrewind(stream_);
  at_ = end_ = 0;
  atEnd_ = isBrokenOff_ = false;
  return false;
}

bool CacheReader::isCut() const {
  unsigned char length[kLengthBytes] = {};
  if (port::readAt(fd_, kLengthOffset, length, sizeof length) != kLengthBytes) return true;
  return getU32(length) != static_cast<std::uint32_t>(port::descriptorStatus(fd_).size);
}

bool CacheReader::takeFirstLine(std::string& line) {
  std::string_view text;
  if (!takeRaw(kLongestFirstLine, text)) return false;
  line = text;
  return true;
}

bool CacheReader::take(std::string_view& line) {
  if (!takeRaw(kLongestLine, line)) return false;
  line = line.substr(0, line.find_first_of("\r\n"));
  return true;
}

bool CacheReader::take(int& value) {
  std::string_view line;
  if (!take(line)) return false;
  value = toIntOrZero(line);
  return true;
}

bool CacheReader::take(double& value) {
  std::string_view line;
  if (!take(line)) return false;
  value = std::strtod(std::string(line).c_str(), nullptr);
  return true;
}

bool CacheReader::skip(std::string_view text) {
  if (text.empty() || text.size() > kLongestLine) return false;
  if (end_ - at_ < text.size()) refill();
  if (std::string_view(bytes_.data() + at_, end_ - at_).substr(0, text.size()) != text) {
    return false;
  }
  at_ += text.size();
  return true;
}

// At most `limit` bytes up to and with a line feed.
bool CacheReader::takeRaw(std::size_t limit, std::string_view& line) {
  for (;;) {
    const std::size_t n = std::min(limit, end_ - at_);
    const char* const first = bytes_.data() + at_;
    const void* const feed = n > 0 ? std::memchr(first, '\n', n) : nullptr;
    if (feed || n == limit || (atEnd_ && n > 0 && !isBrokenOff_)) {
      line = {first,
              feed ? static_cast<std::size_t>(static_cast<const char*>(feed) - first) + 1 : n};
      at_ += line.size();
      // Beyond that, skip() compares no more.
      if (recorded_ && recorded_->size() <= kLongestLine) recorded_->append(line);
      return true;
    }
    if (atEnd_) return false;
    refill();
  }
}

// Makes more of the file available, if there is more; what is left stays in front.
void CacheReader::refill() {
  if (atEnd_) return;
  std::copy(bytes_.begin() + static_cast<std::ptrdiff_t>(at_),
            bytes_.begin() + static_cast<std::ptrdiff_t>(end_), bytes_.begin());
  end_ -= at_;
  at_ = 0;
  const int n = inflate(bytes_.data() + end_, kPieceBytes);
  if (n > 0) end_ += static_cast<std::size_t>(n);
  if (n > 0) return;
  atEnd_ = true;
  int error = Z_OK;
  gzerror(stream_, &error);
  isBrokenOff_ = error != Z_OK;
}

// As gzread: how many bytes were put at `bytes`, 0 at the end, -1 where the file cannot be read.
int CacheReader::inflate(char* bytes, std::size_t size) {
  const int n = gzread(stream_, bytes, static_cast<unsigned>(size));
  int error = Z_OK;
  if (n < 0) gzerror(stream_, &error);
  if (error == Z_MEM_ERROR) throw std::bad_alloc();
  return n;
}

}  // namespace odbs
