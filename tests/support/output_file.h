// SPDX-License-Identifier: BSD-3-Clause
// A file in the place of the pipe to the parent, for tests that call the server's functions in
// their own process.
#pragma once

#include <cstdio>
#include <string>

#include "port/port.h"

namespace odbs::tests {

// The descriptor behind a stream of the C library, with line ends left alone.
inline int descriptorOf(std::FILE* file) {
#if defined(_WIN32)
  const int fd = ::_fileno(file);
#else
  const int fd = ::fileno(file);
#endif
  port::setBinaryMode(fd);
  return fd;
}

class OutputFile {
 public:
  OutputFile() : file_(std::tmpfile()), fd_(descriptorOf(file_)) {}
  ~OutputFile() { std::fclose(file_); }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  int fd() const { return fd_; }
  // Everything written so far.
  std::string bytes() {
    std::string all;
    std::rewind(file_);
    for (int c; (c = std::getc(file_)) != EOF;) all += static_cast<char>(c);
    return all;
  }
  // What was written since the last call.
  std::string news() {
    const std::string all = bytes();
    const std::string fresh = all.substr(seen_);
    seen_ = all.size();
    return fresh;
  }

 private:
  std::FILE* file_;
  int fd_;
  std::size_t seen_ = 0;
};

}  // namespace odbs::tests
