// SPDX-License-Identifier: BSD-3-Clause
// A solver's result file as a stream of lines and bytes, read through one small buffer, with the
// place that an error message names: the line while the file has been text so far, the byte offset
// once a binary block has passed (lines mean nothing then).
#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace odbs::importer {

// A result file that cannot be read: "FILE:LINE: reason", or "FILE: byte OFFSET: reason" in a file
// with binary blocks, or "FILE: reason" when it cannot be opened.
class ResultFileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The same for a file that ends where it should go on.
class ResultFileCut : public ResultFileError {
 public:
  using ResultFileError::ResultFileError;
};

// A place in a result file: where a line begins.
struct ResultPlace {
  std::uint64_t offset = 0;  // bytes before it
  std::uint64_t line = 0;    // its number, from 1
};

class ResultInput {
 public:
  // Opens the file. Throws ResultFileError.
  explicit ResultInput(const std::string& path);

  // Moves to the next line. Returns false at the end of the file. Throws ResultFileError for a line
  // of more than kMaxLine bytes, which no solver writes (a binary file taken for text, mostly).
  bool nextLine();

  // The current line without its line end (LF or CR LF); valid until the next call of nextLine or
  // readBytes.
  std::string_view line() const { return line_; }

  // Fills `target` with the `size` bytes after the current line. Throws ResultFileError when the
  // file ends before. From here on errors name byte offsets.
  void readBytes(unsigned char* target, std::size_t size);

  // Passes over `size` bytes after the current line; as readBytes otherwise.
  void skipBytes(std::uint64_t size);

  // Where the current line begins; there nextLine() can read it again.
  ResultPlace place() const { return {lineStart_, lineNumber_}; }
  void seek(const ResultPlace& place);

  // True when the bytes after the current line are `text` (of at most 16 characters). Ends
  // the validity of line().
  bool continuesWith(std::string_view text);

  // Bytes between the current place and the end of the file: what a count may be checked against
  // before memory is asked for.
  std::uint64_t remaining() const { return size_ - (offset_ - (filled_ - at_)); }

  // Throws ResultFileError for the current line, or for the current byte offset in a file that
  // turned out to be binary; ResultFileCut when the file ends there. The reason may quote the file.
  [[noreturn]] void fail(const std::string& reason) const;
  // Throws ResultFileCut: what is announced is more than the rest of the file can hold.
  [[noreturn]] void failCut(const std::string& reason) const;

  static constexpr std::size_t kMaxLine = 1 << 20;

 private:
  bool refill();
  void moveTo(std::uint64_t offset);
  std::string where() const;

  std::string path_;
  std::ifstream file_;
  std::vector<char> buffer_;
  std::size_t at_ = 0;        // next unread byte of buffer_
  std::size_t filled_ = 0;    // bytes of buffer_ in use
  std::uint64_t offset_ = 0;  // file offset of the end of the buffered bytes
  std::uint64_t size_ = 0;    // bytes of the file
  std::uint64_t lineStart_ = 0;
  std::uint64_t lineNumber_ = 0;
  std::string joined_;  // a line that spans two buffers
  std::string_view line_;
  bool binary_ = false;
};

}  // namespace odbs::importer
