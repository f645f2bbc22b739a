// SPDX-License-Identifier: BSD-3-Clause
// A server under the clock: starts the real program, sends it command lines and counts what comes
// back, through one reader for everything that is compared.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "port/port.h"

namespace odbs::bench {

// Bytes that arrived, and how long that took from sending the command.
struct Reply {
  std::int64_t nBytes = 0;
  double seconds = 0;

  double bytesPerSecond() const { return static_cast<double>(nBytes) / seconds; }
};

class TimedServer {
 public:
  // Starts `program` with a pipe of 1 MiB for its answers. Throws std::runtime_error.
  explicit TimedServer(const std::string& program);
  ~TimedServer();
  TimedServer(const TimedServer&) = delete;
  TimedServer& operator=(const TimedServer&) = delete;

  // Sends the line and reads records up to and with the acknowledgement.
  Reply untilAcknowledged(const std::string& line);

  // Sends the line and reads exactly nBytes, without looking at them.
  Reply exactly(const std::string& line, std::int64_t nBytes);

  // Sends a line that is not answered.
  void sendSilent(const std::string& line) { send(line); }

  // The largest resident memory of the server so far, in bytes; -1 where it cannot be asked.
  std::int64_t peakMemory() const { return port::peakMemoryOf(child_); }

  // Ends the server through its own command.
  void quit();

 private:
  void send(const std::string& line);
  std::size_t readSome();

  port::Child child_;
  std::vector<unsigned char> buffer_;
};

}  // namespace odbs::bench
