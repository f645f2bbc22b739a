// SPDX-License-Identifier: BSD-3-Clause
// The command channel's line reader and writers.
#include "server/core/channel.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "port/port.h"
#include "server/core/process_end.h"

namespace odbs {

namespace {

struct InputBuffer {
  const char* position = nullptr;  // next byte to consume
  std::size_t count = 0;           // bytes not yet consumed
  char bytes[kReadBytes];
};
InputBuffer input;

char line[kLineBytes];

// Fills the empty read buffer. Returns false at the end of input.
bool readMore(int inputFd) {
  for (;;) {
    long n = 0;
    {
      const BlockingRead waiting;
      n = port::readOnce(inputFd, input.bytes, kReadBytes);
    }
    if (n == 0) return false;
    if (n > 0) {
      input.position = input.bytes;
      input.count = static_cast<std::size_t>(n);
      return true;
    }
    if (errno != EINTR) endServer();
  }
}

}  // namespace

std::string_view readCommandLine(int inputFd) {
  std::size_t length = 0;
  bool complete = false;
  while (!complete && length < kLineBytes - 1) {
    if (input.count == 0 && !readMore(inputFd)) {
      if (length == 0) endServer();
      break;
    }
    const std::size_t room = std::min(input.count, kLineBytes - 1 - length);
    const void* feed = std::memchr(input.position, '\n', room);
    complete = feed != nullptr;
    const std::size_t taken =
        complete ? static_cast<std::size_t>(static_cast<const char*>(feed) - input.position) + 1
                 : room;
    std::memcpy(line + length, input.position, taken);
    length += taken;
    input.position += taken;
    input.count -= taken;
  }
  line[length] = '\0';
  // Contract: the one character before the first NUL goes, whatever it is.
  std::size_t visible = std::strlen(line);
  if (visible > 0) line[--visible] = '\0';
  return {line, visible};
}

void flushOutput(int outputFd) {
  if (outputBuffer.fill == 0) return;
  port::writeAll(outputFd, outputBuffer.bytes, outputBuffer.fill);
  outputBuffer.fill = 0;
}

bool writeDirect(int outputFd, const unsigned char* bytes, std::size_t size) {
  return port::writeAll(outputFd, bytes, size);
}

}  // namespace odbs
