// SPDX-License-Identifier: BSD-3-Clause
// Takes lines from a cache file: gzip-compressed text, or plain text. Bytes are inflated in large
// pieces and lines are found in them: lines that come again are compared there, many at once, where
// `gzgets` would hand out one after the other.
//
// The four bytes that a gzip header has for a time hold the length of the file in ours. So a file
// that was cut can be told from a whole one with a wrong bit, whose stream may run past its end.
#pragma once

#include <zlib.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace odbs {

// Every take function returns false when there is no further line, at the end of the file or where
// it cannot be read (half a line, where a compressed file was cut, is none), and throws
// std::bad_alloc when inflating runs out of memory.
class CacheReader {
 public:
  // Bytes of a line, with its line feed, that are taken at once; the rest of a longer one counts as
  // the next line.
  static constexpr std::size_t kLongestLine = 9999;
  static constexpr std::size_t kLongestFirstLine = 99;

  // Where a gzip header has room for a time, and how much.
  static constexpr int kLengthOffset = 4;
  static constexpr int kLengthBytes = 4;

  // What cannot be opened, or is no ordinary file, is no error: isOpen() tells.
  explicit CacheReader(const std::string& path);
  ~CacheReader() { close(); }
  CacheReader(const CacheReader&) = delete;
  CacheReader& operator=(const CacheReader&) = delete;

  bool isOpen() const { return stream_ != nullptr; }
  void close();

  // Reads to the end and goes back to the beginning. True when the stream is not what was written:
  // its check sum is wrong, or it breaks off though the file was not cut. Then the lines must not
  // be used, not even the first ones, and no others can be taken. A file that was cut is not
  // damaged: its lines are right as far as they go.
  bool isDamaged();

  // The first line, with its carriage return.
  bool takeFirstLine(std::string& line);
  // A further line, cut at its first carriage return or line feed. The view is valid until the next
  // take.
  bool take(std::string_view& line);
  // A line's number; 0 when it holds none.
  bool take(int& value);
  bool take(double& value);

  // Takes the lines `text` and returns true, if these bytes come next; else takes nothing. An empty
  // text, and one longer than a line may be, never comes next.
  bool skip(std::string_view text);

  // Collects the bytes that are taken during its life; of many, as many as make a text that skip()
  // refuses.
  class Recording {
   public:
    Recording(CacheReader& reader, std::string& bytes) : reader_(reader) {
      bytes.clear();
      reader_.recorded_ = &bytes;
    }
    ~Recording() { reader_.recorded_ = nullptr; }
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

   private:
    CacheReader& reader_;
  };

 private:
  bool takeRaw(std::size_t limit, std::string_view& line);
  void refill();
  int inflate(char* bytes, std::size_t size);
  bool isCut() const;

  int fd_ = -1;  // the stream's
  gzFile stream_ = nullptr;
  std::vector<char> bytes_;
  std::size_t at_ = 0;
  std::size_t end_ = 0;
  bool atEnd_ = false;
  bool isBrokenOff_ = false;  // at the end: in the middle of the stream, and maybe of a line
  std::string* recorded_ = nullptr;
};

}  // namespace odbs
