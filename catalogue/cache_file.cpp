// SPDX-License-Identifier: BSD-3-Clause
// Reading and writing the catalogue cache file.
#include "catalogue/cache_file.h"

#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "server/shutdown.h"

namespace odbs {

namespace {

constexpr char kVersion[] = "1.0";
constexpr char kLastFrameMark[] = "1.0";
constexpr char kEveryFrameMark[] = "1.0A";
constexpr std::size_t kFirstLineBytes = 100;
constexpr std::size_t kLineBytesOnDisk = 10000;
constexpr std::size_t kPendingBytes = 1u << 16;
constexpr std::size_t kLongestText =
    kLineBytesOnDisk - 2;  // with its line feed and the reader's NUL

// Stand-ins for line breaks inside a text, which would shift every line after it.
constexpr char kStandInForLineFeed = '\x0B';
constexpr char kStandInForReturn = '\x0C';

std::int32_t sizeIn32Bits(std::int64_t size) {
  return static_cast<std::int32_t>(size);  // Contract: large sizes are compared by their low bits.
}

// One line of a text: cut where the reader's buffer ends, free of line breaks.
std::string asLine(const std::string& text) {
  std::string line = text.substr(0, std::min(text.find('\0'), kLongestText));
  for (char& c : line) {
    if (c == '\n') c = kStandInForLineFeed;
    if (c == '\r') c = kStandInForReturn;
  }
  return line;
}

void restoreLineBreaks(std::string& text) {
  for (char& c : text) {
    if (c == kStandInForLineFeed) c = '\n';
    if (c == kStandInForReturn) c = '\r';
  }
}

// The lines of a cache. Every take function returns false when there is no further line, at the end
// of the file or where it is damaged. A listing has millions of lines, and neighbouring entries
// repeat most of their numbers: bytes are inflated in large pieces, and a real is parsed once as
// long as its text stays the same.
class CacheReader {
 public:
  explicit CacheReader(const std::string& path) : stream_(gzopen(path.c_str(), "rb")) {
    if (stream_) gzbuffer(stream_, kInflateBytes);
  }
  ~CacheReader() { close(); }
  CacheReader(const CacheReader&) = delete;
  CacheReader& operator=(const CacheReader&) = delete;

  bool isOpen() const { return stream_ != nullptr; }
  void close() {
    if (stream_) gzclose(stream_);
    stream_ = nullptr;
  }

  // The first line, with its carriage return.
  bool takeFirstLine(std::string& line) {
    std::string_view text;
    if (!takeRaw(kFirstLineBytes - 1, text)) return false;
    line = text;
    return true;
  }
  // A further line, cut at its first carriage return or line feed. The view is valid until the next
  // take.
  bool take(std::string_view& line) {
    if (!takeRaw(kLineBytesOnDisk - 1, line)) return false;
    if (!line.empty() && line.back() == '\n') line.remove_suffix(1);
    if (hasReturn_) line = line.substr(0, line.find('\r'));
    return true;
  }
  bool takeText(std::string& text) {
    std::string_view line;
    if (!take(line)) return false;
    if (text == line) return true;  // as in the entry before
    text = line;
    restoreLineBreaks(text);
    return true;
  }
  bool take(int& value) {
    std::string_view line;
    if (!take(line)) return false;
    value = toIntOrZero(line);
    return true;
  }
  bool take(double& value) {
    std::string_view line;
    if (!take(line)) return false;
    Real& slot = reals_[nReals_++ % std::size(reals_)];
    if (slot.text != line) {
      slot.text = line;
      slot.value = std::strtod(slot.text.c_str(), nullptr);
    }
    value = slot.value;
    return true;
  }

 private:
  static constexpr unsigned kInflateBytes = 1u << 17;
  static constexpr std::size_t kPieceBytes = 1u << 18;

  // An entry holds three reals, so that each is met again three reals later.
  struct Real {
    std::string text;
    double value = 0;
  };

  // At most `limit` bytes up to and with a line feed: what fits a reader's buffer of one byte more.
  bool takeRaw(std::size_t limit, std::string_view& line) {
    for (;;) {
      const std::size_t n = std::min(limit, end_ - at_);
      const void* feed = n > 0 ? std::memchr(bytes_.data() + at_, '\n', n) : nullptr;
      if (feed || n == limit || (atEnd_ && n > 0)) {
        const char* const first = bytes_.data() + at_;
        const std::size_t length =
            feed ? static_cast<std::size_t>(static_cast<const char*>(feed) - first) + 1 : n;
        line = {first, length};
        at_ += length;
        return true;
      }
      if (atEnd_) return false;
      refill();
    }
  }

  void refill() {
    std::copy(bytes_.begin() + static_cast<std::ptrdiff_t>(at_),
              bytes_.begin() + static_cast<std::ptrdiff_t>(end_), bytes_.begin());
    end_ -= at_;
    at_ = 0;
    const int n = gzread(stream_, bytes_.data() + end_, static_cast<unsigned>(kPieceBytes));
    if (n > 0) end_ += static_cast<std::size_t>(n);
    atEnd_ = n <= 0;
    hasReturn_ = std::memchr(bytes_.data(), '\r', end_) != nullptr;
  }

  gzFile stream_;
  std::vector<char> bytes_ = std::vector<char>(kPieceBytes + kLineBytesOnDisk);
  std::size_t at_ = 0;
  std::size_t end_ = 0;
  bool atEnd_ = false;
  bool hasReturn_ = false;  // some line of the piece has a carriage return
  Real reals_[3];
  std::size_t nReals_ = 0;
};

std::string upToLineEnd(const std::string& text) {
  return text.substr(0, text.find_first_of("\r\n"));
}

// Whether line 1 admits the cache in this frame mode. A file of every frame serves both modes.
bool markFits(const std::string& line, bool everyFrame) {
  const std::size_t separator = line.find('\r');
  if (separator == std::string::npos) return false;
  if (line.compare(0, separator, kVersion) != 0) return false;
  const std::string mark = upToLineEnd(line.substr(separator + 1));
  if (mark == kEveryFrameMark) return true;
  return mark == kLastFrameMark && !everyFrame;
}

// Reads and sends the rest of an entry whose step number is in place, each record as soon as its
// last line is read. Returns false when a line is missing.
bool replayEntry(CacheReader& reader, CatalogueEntry& entry, CatalogueListing listing,
                 int outputFd) {
  if (!reader.take(entry.totalTime) || !reader.takeText(entry.stepText)) return false;
  sendStep(outputFd, entry);
  if (!reader.takeText(entry.procedure)) return false;
  sendProcedure(outputFd, entry);
  if (!reader.takeText(entry.fieldName) || !reader.takeText(entry.fieldDescription)) return false;
  sendField(outputFd, entry);
  if (listing != CatalogueListing::kNodal) {
    int nLabels = 0;
    if (!reader.take(nLabels)) return false;
    std::size_t n = 0;
    for (; nLabels > 0 && n < static_cast<std::size_t>(nLabels); ++n) {
      if (n == entry.componentLabels.size()) entry.componentLabels.emplace_back();
      if (!reader.takeText(entry.componentLabels[n])) return false;
    }
    entry.componentLabels.resize(n);
    sendComponents(outputFd, entry);
  }
  if (!reader.take(entry.frameIndex) || !reader.take(entry.domain) || !reader.take(entry.mode) ||
      !reader.take(entry.frameValue) || !reader.take(entry.frequency) ||
      !reader.take(entry.complex)) {
    return false;
  }
  for (int& number : entry.classification) {
    if (!reader.take(number)) return false;
  }
  if (!reader.takeText(entry.frameDescription)) return false;
  sendFrame(outputFd, entry);
  return true;
}

// Replays what follows the header. Returns false when the file turns out to be stale.
bool replayBody(CacheReader& reader, CatalogueListing listing, int outputFd) {
  std::string title;
  int number = 0;
  if (!reader.takeText(title)) return true;
  sendTitle(outputFd, title);
  if (!reader.take(number)) return true;
  sendAnalysisKind(outputFd, number);
  CatalogueEntry entry;
  entry.classification.resize(static_cast<std::size_t>(classificationCount(listing)));
  std::string_view text;
  for (bool first = true; reader.take(text); first = false) {
    // Contract: looked at in the first entry only.
    if (first && text.find('.') != std::string_view::npos) return false;
    entry.stepNumber = toIntOrZero(text);
    if (!replayEntry(reader, entry, listing, outputFd)) break;
  }
  return true;
}

enum class Header { kFits, kStale, kCutShort };

Header checkHeader(CacheReader& reader, const CacheKey& key) {
  std::string mark;
  if (!reader.takeFirstLine(mark)) return Header::kCutShort;
  if (!markFits(mark, key.everyFrame)) return Header::kStale;
  std::string_view path, line;
  if (!reader.take(path) || !reader.take(line)) return Header::kCutShort;
  const long long time = std::strtoll(std::string(line).c_str(), nullptr, 10);
  if (!reader.take(line)) return Header::kCutShort;
  const long long size = std::strtoll(std::string(line).c_str(), nullptr, 10);
  return time == key.databaseStatus.modificationTime &&
                 size == sizeIn32Bits(key.databaseStatus.size)
             ? Header::kFits
             : Header::kStale;
}

}  // namespace

Replay replayCache(const std::string& path, const CacheKey& key, CatalogueListing listing,
                   int outputFd) {
  CacheReader reader(path);
  if (!reader.isOpen()) return Replay::kNoCache;
  const Header header = checkHeader(reader, key);
  if (header == Header::kCutShort) return Replay::kServed;
  if (header == Header::kFits && replayBody(reader, listing, outputFd)) return Replay::kServed;
  reader.close();
  port::removeFile(path);
  return Replay::kStale;
}

// The open stream, the names of its files, and lines on their way to it.
struct CacheWriter::Stream {
  std::string path;
  std::string temporary;
  std::string lock;
  gzFile file = nullptr;
  std::string pending;

  void line(std::string_view text) {
    pending += text;
    pending += '\n';
    if (pending.size() >= kPendingBytes) write();
  }
  void text(const std::string& value) { line(asLine(value)); }
  void integer(long long value) { line(std::to_string(value)); }
  // 21 significant digits: more than a double needs to be read back the same.
  void real(double value) {
    char digits[40];
    const int n = std::snprintf(digits, sizeof digits, "%.20E", value);
    line({digits, static_cast<std::size_t>(n)});
  }
  void write() {
    gzwrite(file, pending.data(), static_cast<unsigned>(pending.size()));
    pending.clear();
  }
};

CacheWriter::CacheWriter(const std::string* path, const CacheKey& key) {
  if (!path) return;
  auto stream = std::make_unique<Stream>();
  stream->path = *path;
  stream->temporary = cacheTemporaryName(*path);
  stream->lock = cacheLockName(*path);
  {
    const CacheGuard guard;
    if (port::fileStatus(stream->lock).exists) return;
    // The temporary file is opened before the lock is ours and emptied after it is: two servers
    // that start together cannot cut each other's file.
    const int fd = port::openForWriting(stream->temporary);
    if (fd < 0) return;
    if (!port::createExclusively(stream->lock)) {
      port::closeDescriptor(fd);
      return;
    }
    port::truncateFile(fd);
    stream->file = gzdopen(fd, "wb");
    if (!stream->file) {
      port::closeDescriptor(fd);
      port::removeFile(stream->lock);
      return;
    }
    registerCacheStream(fd);
  }
  stream->line(std::string(kVersion) + '\r' + (key.everyFrame ? kEveryFrameMark : kLastFrameMark));
  stream->text(key.databasePath);
  stream->integer(key.databaseStatus.modificationTime);
  stream->integer(sizeIn32Bits(key.databaseStatus.size));
  stream_ = std::move(stream);
}

CacheWriter::~CacheWriter() {
  if (!stream_) return;
  const CacheGuard guard;
  clearCacheStream();
  gzclose(stream_->file);
}

void CacheWriter::analysis(const std::string& title, int analysisCodeLessOne) {
  if (!stream_) return;
  stream_->text(title);
  stream_->integer(analysisCodeLessOne);
}

void CacheWriter::entry(const CatalogueEntry& entry, CatalogueListing listing) {
  if (!stream_) return;
  Stream& out = *stream_;
  out.integer(entry.stepNumber);
  out.real(entry.totalTime);
  out.text(entry.stepText);
  out.text(entry.procedure);
  out.text(entry.fieldName);
  out.text(entry.fieldDescription);
  if (listing != CatalogueListing::kNodal) {
    out.integer(static_cast<long long>(entry.componentLabels.size()));
    for (const std::string& label : entry.componentLabels) out.text(label);
  }
  out.integer(entry.frameIndex);
  out.integer(entry.domain);
  out.integer(entry.mode);
  out.real(entry.frameValue);
  out.real(entry.frequency);
  out.integer(entry.complex);
  for (const int number : entry.classification) out.integer(number);
  out.text(entry.frameDescription);
}

void CacheWriter::finish() {
  if (!stream_) return;
  stream_->write();
  const CacheGuard guard;
  port::removeFile(stream_->lock);
  clearCacheStream();
  gzclose(stream_->file);
  int error = port::renameFile(stream_->temporary, stream_->path);
  if (error == EEXIST) {
    port::removeFile(stream_->path);
    error = port::renameFile(stream_->temporary, stream_->path);
  }
  if (error != 0) port::removeFile(stream_->temporary);
  stream_.reset();
}

}  // namespace odbs
