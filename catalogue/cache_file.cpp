// SPDX-License-Identifier: BSD-3-Clause
// Reading and writing the catalogue cache file.
#include "catalogue/cache_file.h"

#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string_view>

#include "base/text.h"
#include "catalogue/cache_reader.h"
#include "server/shutdown.h"

namespace odbs {

namespace {

constexpr char kVersion[] = "1.0";
constexpr char kLastFrameMark[] = "1.0";
constexpr char kEveryFrameMark[] = "1.0A";
constexpr std::size_t kPendingBytes = 1u << 16;
// With its line feed it is a line that the reader takes at once.
constexpr std::size_t kLongestText = CacheReader::kLongestLine - 1;

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

// The text that a line stands for.
std::string withLineBreaks(std::string_view line) {
  std::string text(line);
  std::replace(text.begin(), text.end(), kStandInForLineFeed, '\n');
  std::replace(text.begin(), text.end(), kStandInForReturn, '\r');
  return text;
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

  // The field whose lines come next, if it is the one behind the last one or the first of a frame.
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
        if (i < kMostLabels) entry.componentLabels.push_back(withLineBreaks(line));
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
    text = withLineBreaks(line);
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
  sendTitle(outputFd, withLineBreaks(title));
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
  bool isWhole = true;  // every write succeeded so far

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
    if (pending.empty()) return;
    if (gzwrite(file, pending.data(), static_cast<unsigned>(pending.size())) == 0) isWhole = false;
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
  const bool isWhole = gzclose(stream_->file) == Z_OK && stream_->isWhole;
  // A file that was cut, by a full disk say, would be replayed for good: it does not get the name.
  int error = isWhole ? port::renameFile(stream_->temporary, stream_->path) : EIO;
  if (error == EEXIST) {
    port::removeFile(stream_->path);
    error = port::renameFile(stream_->temporary, stream_->path);
  }
  if (error != 0) port::removeFile(stream_->temporary);
  stream_.reset();
}

}  // namespace odbs
