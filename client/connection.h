// SPDX-License-Identifier: BSD-3-Clause
// A server process and the two pipes to it: start it, send command lines, read the
// records of each reply, end it.
//
//     client::Connection server({});              // finds and starts odb_server
//     server.send("g model.odb");
//     for (client::Record r; server.next(r);) ...  // until the acknowledgement
//
// One thread uses a connection at a time. A connection is neither copied nor moved.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "client/records/command_rules.h"
#include "client/records/record_stream.h"
#include "port/port.h"

namespace odbs::client {

struct StartOptions {
  std::string server;                              // the server program; empty: see findServer
  int timeoutMs = -1;                              // longest silence to bear; negative: no limit
  std::size_t bufferBytes = std::size_t{1} << 20;  // of the record stream
};

// The server program to start: `given` unless it is empty, else odb_server beside the running
// program, else what the environment variable ODB_SERVER names. Throws StartError, saying where it
// looked.
std::string findServer(const std::string& given);

class Connection {
 public:
  // Starts the server. Writing to a server that is gone must not end the parent, so the process is
  // set to ignore broken pipes; on Linux the reply pipe's capacity is set to 1 MiB. Throws
  // StartError.
  explicit Connection(const StartOptions& options);

  // Ends the server when `end` or `quit` has not: closes the pipes, waits two seconds, then kills.
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // Sends one command line; the line end is added. The reply to the line before must have been read
  // to its end. Throws std::invalid_argument for a line that cannot be sent whole (a line break, a
  // NUL, more than 4094 characters), ServerEnded.
  void send(std::string_view line);

  // Sends bytes as they are, to test servers; `rule`: the reply to expect.
  void sendBytes(std::string_view bytes, const ReplyRule& rule);

  // The next record of the reply, or false at its end; unframed bytes ahead of it are skipped. The
  // record is valid until the next call. Throws MalformedRecord, ServerEnded, TimedOut.
  bool next(Record& record) {
    if (!replyOpen_) return false;
    if (nRawLeft_ > 0) skipRaw();
    while (!stream_.take(record)) fill();
    if (record.tag == kAcknowledgementTag) return endReply(record);
    if (rule_.end == ReplyEnd::kUpgradeCheck) replyOpen_ = !endsUpgradeCheck(record);
    return true;
  }

  // The next unframed bytes of the raw throughput test, or 0 when all have been taken. They are
  // valid until the next call.
  std::size_t nextRaw(const unsigned char** bytes);

  // Reads the reply to its end and drops it, so that the next command can be sent.
  void drain();

  // Sends the line and drops its reply.
  void command(std::string_view line);

  // Returns the server's process id, which shows that it lives and answers.
  std::int32_t ping();

  // Ends the server by its command for that and returns its exit status. Throws TimedOut.
  int quit();

  // Ends the server by closing the pipes, which ends it once its command in progress is done.
  // Returns its exit status; kills it after `graceMs` milliseconds and returns -1 then.
  int end(int graceMs = 2000);

  // Ends the server at once, for tests.
  void kill();

  void setTimeout(int timeoutMs) { timeoutMs_ = timeoutMs; }

  // The server's process id as the system gave it; 0 once it has been waited for.
  int processId() const { return child_.id; }

  // The family of the reply in progress, which decides what its tags mean.
  RecordFamily family() const { return rule_.family; }

  // All bytes taken so far, frames included.
  std::uint64_t bytesReceived() const { return stream_.offset(); }

 private:
  void fill();
  void skipRaw();
  bool endReply(const Record& record);
  static bool endsUpgradeCheck(const Record& record);
  void closePipes();
  [[noreturn]] void failEnded(const std::string& doing);

  port::Child child_;
  RecordStream stream_;
  int timeoutMs_;
  bool replyOpen_ = false;
  ReplyRule rule_;
  std::uint64_t nRawLeft_ = 0;
};

}  // namespace odbs::client
