// SPDX-License-Identifier: BSD-3-Clause
// Reading and writing the catalogue cache file.
#include "catalogue/cache_file.h"

#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "base/text.h"
#include "server/shutdown.h"

namespace odbs {

namespace {

constexpr char kVersion[] = "1.0";
constexpr char kLastFrameMark[] = "1.0";
constexpr char kEveryFrameMark[] = "1.0A";
constexpr int kFirstLineBytes = 100;
constexpr int kLineBytesOnDisk = 10000;
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

std::string fromLine(std::string line) {
  for (char& c : line) {
    if (c == kStandInForLineFeed) c = '\n';
    if (c == kStandInForReturn) c = '\r';
  }
  return line;
}

// The lines of a cache. Every take function returns false when there is no further line, at the end
// of the file or where it is damaged.
class CacheReader {
 public:
  explicit CacheReader(const std::string& path) : stream_(gzopen(path.c_str(), "rb")) {
    if (stream_) gzbuffer(stream_, 1u << 17);
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
    if (!gzgets(stream_, buffer_, kFirstLineBytes)) return false;
    line = buffer_;
    return true;
  }
  // A further line, cut at its first carriage return or line feed.
  bool take(std::string& line) {
    if (!gzgets(stream_, buffer_, kLineBytesOnDisk)) return false;
    line.assign(buffer_, std::strcspn(buffer_, "\r\n"));
    return true;
  }
  bool takeText(std::string& text) {
    if (!take(text)) return false;
    text = fromLine(std::move(text));
    return true;
  }
  bool take(int& value) {
    if (!take(line_)) return false;
    value = toIntOrZero(line_);
    return true;
  }
  bool take(double& value) {
    if (!take(line_)) return false;
    value = std::strtod(line_.c_str(), nullptr);
    return true;
  }

 private:
  gzFile stream_;
  std::string line_;
  char buffer_[kLineBytesOnDisk];
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
    entry.componentLabels.clear();
    for (int i = 0; i < nLabels; ++i) {
      entry.componentLabels.emplace_back();
      if (!reader.takeText(entry.componentLabels.back())) return false;
    }
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
  std::string text;
  int number = 0;
  if (!reader.takeText(text)) return true;
  sendTitle(outputFd, text);
  if (!reader.take(number)) return true;
  sendAnalysisKind(outputFd, number);
  CatalogueEntry entry;
  entry.classification.resize(static_cast<std::size_t>(classificationCount(listing)));
  for (bool first = true; reader.take(text); first = false) {
    // Contract: looked at in the first entry only.
    if (first && text.find('.') != std::string::npos) return false;
    entry.stepNumber = toIntOrZero(text);
    if (!replayEntry(reader, entry, listing, outputFd)) break;
  }
  return true;
}

enum class Header { kFits, kStale, kCutShort };

Header checkHeader(CacheReader& reader, const CacheKey& key) {
  std::string line;
  if (!reader.takeFirstLine(line)) return Header::kCutShort;
  if (!markFits(line, key.everyFrame)) return Header::kStale;
  if (!reader.take(line) || !reader.take(line)) return Header::kCutShort;
  const long long time = std::strtoll(line.c_str(), nullptr, 10);
  if (!reader.take(line)) return Header::kCutShort;
  const long long size = std::strtoll(line.c_str(), nullptr, 10);
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
