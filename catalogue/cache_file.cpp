// SPDX-License-Identifier: BSD-3-Clause
// Reading and writing the catalogue cache file.
#include "catalogue/cache_file.h"

#include <zlib.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <string_view>

#include "base/bytes.h"
#include "base/text.h"
#include "catalogue/cache_reader.h"
#include "server/core/cache_guard.h"
#include "server/core/entity_records.h"

namespace odbs {

namespace {

constexpr char kVersion[] = "1.0";
constexpr char kLastFrameMark[] = "1.0";
constexpr char kEveryFrameMark[] = "1.0A";
constexpr std::size_t kPendingBytes = 1u << 16;
// With its line feed it is a line that the reader takes at once.
constexpr std::size_t kLongestText = CacheReader::kLongestLine - 1;

std::int32_t sizeIn32Bits(std::int64_t size) {
  return static_cast<std::int32_t>(size);  // Contract: large sizes are compared by their low bits.
}

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

// Reads entries and sends their records, each as soon as its last line is read. A listing has
// hundreds of thousands of entries and repeats itself: the same fields come in every frame, in the
// same order. The lines of a field are remembered with what they say, and the next ones are first
// compared with those that are expected.
class EntryReplay {
 public:
  enum class Outcome { kSent, kEnd, kStale };

  EntryReplay(CacheReader& reader, CatalogueListing listing, int outputFd)
      : reader_(reader), listing_(listing), outputFd_(outputFd) {}

  Outcome next() {
    Field* field = expected();
    if (field) {
      sendStep(outputFd_, field->entry);
      sendProcedure(outputFd_, field->entry);
      sendField(outputFd_, field->entry);
      sendComponents(outputFd_, field->entry);
    } else {
      field = &place();
      const Outcome outcome = readField(*field);
      if (outcome != Outcome::kSent) return outcome;
    }
    if (!readFrame() || !readClassification(*field)) return Outcome::kEnd;
    CatalogueEntry& entry = field->entry;
    entry.frameIndex = frame_.frameIndex;
    entry.domain = frame_.domain;
    entry.mode = frame_.mode;
    entry.frameValue = frame_.frameValue;
    entry.frequency = frame_.frequency;
    sendFrame(outputFd_, entry);
    return Outcome::kSent;
  }

 private:
  static constexpr std::size_t kMostRemembered = 1u << 22;  // bytes of lines
  static constexpr int kMostLabels = 1 << 14;               // a record has no room for as many

  struct Field {
    std::string lines;                // from the step number to the last component label
    std::string classificationLines;  // from the complex flag to the frame description
    CatalogueEntry entry;             // what they say
  };

  // The field whose lines come next, if it is the one after the last one or the first of a frame.
  // Its lines are taken then.
  Field* expected() {
    for (const std::size_t i : {next_, std::size_t{0}}) {
      if (i >= fields_.size() || !reader_.skip(fields_[i].lines)) continue;
      next_ = i + 1;
      return &fields_[i];
    }
    return nullptr;
  }

  // Where an unexpected field is remembered.
  Field& place() {
    if (next_ == fields_.size() && nRemembered_ > kMostRemembered) next_ = 0;
    if (next_ == fields_.size()) fields_.emplace_back();
    return fields_[next_++];
  }

  Outcome readField(Field& field) {
    CatalogueEntry& entry = field.entry;
    const CacheReader::Recording recording(reader_, field.lines);
    std::string_view line;
    if (!reader_.take(line)) return Outcome::kEnd;
    // Contract: looked at in the first entry only.
    if (isFirst_ && line.find('.') != std::string_view::npos) return Outcome::kStale;
    isFirst_ = false;
    entry.stepNumber = toIntOrZero(line);
    if (!reader_.take(entry.totalTime) || !takeText(entry.stepText)) return Outcome::kEnd;
    sendStep(outputFd_, entry);
    if (!takeText(entry.procedure)) return Outcome::kEnd;
    sendProcedure(outputFd_, entry);
    if (!takeText(entry.fieldName) || !takeText(entry.fieldDescription)) return Outcome::kEnd;
    sendField(outputFd_, entry);
    if (listing_ != CatalogueListing::kNodal) {
      int nLabels = 0;
      if (!reader_.take(nLabels)) return Outcome::kEnd;
      entry.componentLabels.clear();
      for (int i = 0; i < nLabels; ++i) {
        if (!reader_.take(line)) return Outcome::kEnd;
        if (i < kMostLabels) entry.componentLabels.emplace_back(line);
      }
      sendComponents(outputFd_, entry);
    }
    nRemembered_ += field.lines.size();
    return Outcome::kSent;
  }

  bool readFrame() {
    if (reader_.skip(frameLines_)) return true;
    const CacheReader::Recording recording(reader_, frameLines_);
    return reader_.take(frame_.frameIndex) && reader_.take(frame_.domain) &&
           reader_.take(frame_.mode) && reader_.take(frame_.frameValue) &&
           reader_.take(frame_.frequency);
  }

  bool readClassification(Field& field) {
    if (reader_.skip(field.classificationLines)) return true;
    const CacheReader::Recording recording(reader_, field.classificationLines);
    CatalogueEntry& entry = field.entry;
    if (!reader_.take(entry.complex)) return false;
    entry.classification.resize(static_cast<std::size_t>(classificationCount(listing_)));
    for (int& number : entry.classification) {
      if (!reader_.take(number)) return false;
    }
    return takeText(entry.frameDescription);
  }

  bool takeText(std::string& text) {
    std::string_view line;
    if (!reader_.take(line)) return false;
    text = line;
    return true;
  }

  CacheReader& reader_;
  CatalogueListing listing_;
  int outputFd_;
  bool isFirst_ = true;
  std::deque<Field> fields_;
  std::size_t next_ = 0;  // index of the field that is expected
  std::size_t nRemembered_ = 0;
  std::string frameLines_;
  CatalogueEntry frame_;  // its numbers of the frame only
};

// Replays what follows the header. Returns false when the file turns out to be stale.
bool replayBody(CacheReader& reader, CatalogueListing listing, int outputFd) {
  std::string_view title;
  int number = 0;
  if (!reader.take(title)) return true;
  sendAnalysisTitle(outputFd, title);
  if (!reader.take(number)) return true;
  sendAnalysisKind(outputFd, number);
  EntryReplay replay(reader, listing, outputFd);
  auto outcome = EntryReplay::Outcome::kSent;
  while (outcome == EntryReplay::Outcome::kSent) outcome = replay.next();
  return outcome == EntryReplay::Outcome::kEnd;
}

enum class Header { kFits, kStale, kCutShort };

Header checkHeader(CacheReader& reader, const CacheKey& key) {
  std::string mark;
  if (!reader.takeFirstLine(mark)) return Header::kCutShort;
  if (!markFits(mark, key.everyFrame)) return Header::kStale;
  std::string_view path, line;
  if (!reader.take(path) || !reader.take(line)) return Header::kCutShort;
  const long long time = std::strtoll(std::string(line).c_str(), nullptr, 10);
  if (time != key.databaseStatus.modificationTime) return Header::kStale;
  if (!reader.take(line)) return Header::kCutShort;
  const long long size = std::strtoll(std::string(line).c_str(), nullptr, 10);
  return size == sizeIn32Bits(key.databaseStatus.size) ? Header::kFits : Header::kStale;
}

}  // namespace

Replay replayCache(const std::string& path, const CacheKey& key, CatalogueListing listing,
                   int outputFd) {
  CacheReader reader(path);
  if (!reader.isOpen()) return Replay::kNoCache;
  Header header = checkHeader(reader, key);
  if (header != Header::kStale && reader.isDamaged()) header = Header::kStale;
  if (header == Header::kCutShort) return Replay::kServed;
  // The look at the whole file has gone back to its beginning.
  if (header == Header::kFits && checkHeader(reader, key) == Header::kFits &&
      replayBody(reader, listing, outputFd)) {
    return Replay::kServed;
  }
  reader.close();
  // A link to a file can be read, but it is not ours to delete.
  if (!port::isTakenByOther(path)) port::removeFile(path);
  return Replay::kStale;
}

// The open stream, the names of its files, and lines on their way to it. Lines are gathered, not
// written by `gzprintf` each: that refuses texts that are longer than zlib's buffer.
struct CacheWriter::Stream {
  std::string path;
  std::string temporary;
  std::string lock;
  gzFile file = nullptr;
  int fd = -1;  // the stream's
  std::string pending;
  bool isWhole = true;  // every write succeeded so far, and every line reads back as it was

  void line(std::string_view text) {
    if (!isWhole) return;
    pending += text;
    pending += '\n';
    if (pending.size() >= kPendingBytes) write();
  }
  // A text of several lines, or one that the reader would cut, has no place in the file.
  void text(const std::string& value) {
    if (value.size() > kLongestText || value.find_first_of("\r\n") != std::string::npos) {
      isWhole = false;
    }
    line(value);
  }
  void integer(long long value) { line(std::to_string(value)); }
  // 21 significant digits: more than a double needs to be read back the same.
  void real(double value) {
    char digits[40];
    const int n = std::snprintf(digits, sizeof digits, "%.20E", value);
    if (!std::isfinite(value)) isWhole = false;  // a NaN has more forms than the digits tell
    line({digits, static_cast<std::size_t>(n)});
  }
  void write() {
    if (pending.empty()) return;
    if (gzwrite(file, pending.data(), static_cast<unsigned>(pending.size())) == 0) isWhole = false;
    pending.clear();
  }
  // Writes what is left and makes it durable, so that the name never belongs to half a file.
  bool complete() {
    write();
    if (!isWhole || gzflush(file, Z_FINISH) != Z_OK) return false;
    unsigned char length[CacheReader::kLengthBytes];
    putU32(length, static_cast<std::uint32_t>(port::descriptorStatus(fd).size));
    return port::writeAt(fd, CacheReader::kLengthOffset, length, sizeof length) &&
           port::syncDescriptor(fd);
  }
};

namespace {

// The temporary file, made and locked; -1 when another server is at work, or the folder refuses.
// It is made before the lock, and what somebody left under its name without a lock goes first.
int createUnderLock(const std::string& temporary, const std::string& lock) {
  if (port::fileStatus(lock).exists) return -1;
  port::removeUnclaimed(temporary);
  const int fd = port::createClaimed(temporary);
  if (fd < 0) return -1;
  if (port::createExclusively(lock)) return fd;
  port::discardClaimed(fd, temporary);
  return -1;
}

}  // namespace

CacheWriter::CacheWriter(const std::string* path, const CacheKey& key) {
  if (!path || port::isTakenByOther(*path)) return;
  auto stream = std::make_unique<Stream>();
  stream->path = *path;
  stream->temporary = cacheTemporaryName(*path);
  stream->lock = cacheLockName(*path);
  stream->line(std::string(kVersion) + '\r' + (key.everyFrame ? kEveryFrameMark : kLastFrameMark));
  stream->text(key.databasePath);
  stream->integer(key.databaseStatus.modificationTime);
  stream->integer(sizeIn32Bits(key.databaseStatus.size));
  {
    const CacheGuard guard;
    stream->fd = createUnderLock(stream->temporary, stream->lock);
    if (stream->fd < 0) return;
    stream->file = gzdopen(stream->fd, "wb");
    if (!stream->file) {
      port::discardClaimed(stream->fd, stream->temporary);
      port::removeFile(stream->lock);
      return;
    }
    registerCacheStream(stream->fd);
  }
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

void CacheWriter::abandon() {
  if (stream_) stream_->isWhole = false;
}

void CacheWriter::finish() {
  if (!stream_) return;
  bool isWhole = stream_->complete();
  const std::unique_ptr<Stream> stream = std::move(stream_);
  const CacheGuard guard;
  // Contract: the lock goes before the name is given. The file stays claimed by the second
  // descriptor, so that another server, which finds no lock, still cannot take it away.
  port::removeFile(stream->lock);
  const int fd = port::duplicateDescriptor(stream->fd);
  clearCacheStream();
  isWhole = gzclose(stream->file) == Z_OK && isWhole && fd >= 0;
  // A file that was cut, by a full disk say, would be replayed for good: it does not get the name.
  if (!isWhole || port::isTakenByOther(stream->path)) {
    port::discardClaimed(fd, stream->temporary);
    return;
  }
  int error = port::renameClaimed(fd, stream->temporary, stream->path);
  if (error == EEXIST) {
    port::removeFile(stream->path);
    error = port::renameFile(stream->temporary, stream->path);
  }
  if (error != 0) port::removeUnclaimed(stream->temporary);
}

}  // namespace odbs
