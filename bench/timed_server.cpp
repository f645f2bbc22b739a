// SPDX-License-Identifier: BSD-3-Clause
// The server under the clock of bench/timed_server.h.
#include "bench/timed_server.h"

#include <chrono>
#include <stdexcept>

namespace odbs::bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr long kPipeBytes = 1 << 20;

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// Follows the framing of a byte stream, whatever pieces it arrives in.
class FrameFollower {
 public:
  // Takes the next bytes. Returns true once the acknowledgement's last byte has gone by.
  bool take(const unsigned char* bytes, std::size_t n) {
    std::size_t at = 0;
    while (at < n) {
      if (nHead_ < 3) {
        head_[nHead_++] = bytes[at++];
        if (nHead_ < 3) continue;
        const std::size_t length = static_cast<std::size_t>(head_[0] | head_[1] << 8);
        if (length == 0) throw std::runtime_error("empty record in the stream");
        if (length == 1 && head_[2] == '~') return true;
        nLeft_ = length - 1;
      }
      const std::size_t nSkipped = nLeft_ < n - at ? nLeft_ : n - at;
      at += nSkipped;
      nLeft_ -= nSkipped;
      if (nLeft_ == 0) nHead_ = 0;
    }
    return false;
  }

 private:
  unsigned char head_[3] = {};  // frame length and tag
  int nHead_ = 0;               // bytes of head_ that are there
  std::size_t nLeft_ = 0;       // payload bytes to come
};

}  // namespace

TimedServer::TimedServer(const std::string& program)
    : child_(port::startWithPipes(program,
                                  {std::to_string(port::currentProcessId()), "{in}", "{out}"})),
      buffer_(static_cast<std::size_t>(kPipeBytes)) {
  port::setPipeCapacity(child_.fromChild, kPipeBytes);
}

TimedServer::~TimedServer() {
  if (child_.toChild < 0) return;
  port::closeDescriptor(child_.toChild);
  port::closeDescriptor(child_.fromChild);
  port::killProcess(child_);
  port::waitForChild(child_, -1);
}

void TimedServer::quit() {
  send("q");
  port::closeDescriptor(child_.toChild);
  port::closeDescriptor(child_.fromChild);
  child_.toChild = -1;
  if (port::waitForChild(child_, 10000) != 0) throw std::runtime_error("the server failed to end");
}

void TimedServer::send(const std::string& line) {
  const std::string bytes = line + "\n";
  if (!port::writeAll(child_.toChild, bytes.data(), bytes.size())) {
    throw std::runtime_error("the server takes no commands");
  }
}

std::size_t TimedServer::readSome() {
  const long n = port::readOnce(child_.fromChild, buffer_.data(), buffer_.size());
  if (n <= 0) throw std::runtime_error("the server's answer ended early");
  return static_cast<std::size_t>(n);
}

Reply TimedServer::untilAcknowledged(const std::string& line) {
  FrameFollower frames;
  Reply reply;
  const Clock::time_point start = Clock::now();
  send(line);
  for (bool done = false; !done;) {
    const std::size_t n = readSome();
    reply.nBytes += static_cast<std::int64_t>(n);
    done = frames.take(buffer_.data(), n);
  }
  reply.seconds = secondsSince(start);
  return reply;
}

Reply TimedServer::exactly(const std::string& line, std::int64_t nBytes) {
  Reply reply;
  const Clock::time_point start = Clock::now();
  send(line);
  while (reply.nBytes < nBytes) reply.nBytes += static_cast<std::int64_t>(readSome());
  reply.seconds = secondsSince(start);
  if (reply.nBytes != nBytes) throw std::runtime_error("the server sent more than was expected");
  return reply;
}

}  // namespace odbs::bench
