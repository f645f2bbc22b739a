// SPDX-License-Identifier: BSD-3-Clause
// The lines of catalogue/cache_reader.h.
#include "catalogue/cache_reader.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "base/text.h"
#include "port/port.h"

namespace odbs {

namespace {

constexpr unsigned kInflateBytes = 1u << 16;
constexpr std::size_t kPieceBytes = 1u << 18;

}  // namespace

// Some systems open a folder like a file and refuse to read it; opening a pipe waits for a writer.
CacheReader::CacheReader(const std::string& path)
    : stream_(port::fileStatus(path).isRegular ? gzopen(path.c_str(), "rb") : nullptr),
      bytes_(kPieceBytes + kLongestLine + 1) {
  if (stream_) gzbuffer(stream_, kInflateBytes);
}

void CacheReader::close() {
  if (stream_) gzclose(stream_);
  stream_ = nullptr;
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
    if (feed || n == limit || (atEnd_ && n > 0)) {
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
  const int n = gzread(stream_, bytes_.data() + end_, static_cast<unsigned>(kPieceBytes));
  if (n > 0) end_ += static_cast<std::size_t>(n);
  atEnd_ = n <= 0;
}

}  // namespace odbs
