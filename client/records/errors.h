// SPDX-License-Identifier: BSD-3-Clause
// What can go wrong between a parent and its server, one class each, so that an application can
// distinguish a dead server from a database that does not open.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace odbs::client {

// Base of all errors of this library.
class Error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The server program was not found or could not be started.
class StartError : public Error {
 public:
  using Error::Error;
};

// The server's end of the pipes closed while an answer was expected.
class ServerEnded : public Error {
 public:
  ServerEnded(const std::string& what, int exitStatus) : Error(what), exitStatus_(exitStatus) {}
  // The exit status, 128 + n when signal n ended the server, -1 when it is not known.
  int exitStatus() const { return exitStatus_; }

 private:
  int exitStatus_;
};

// The server sent nothing for longer than the time-out. The server is still running; the
// connection is out of step and can only be closed.
class TimedOut : public Error {
 public:
  using Error::Error;
};

// The bytes received are not what the protocol allows.
class MalformedRecord : public Error {
 public:
  // `offset`: position of the record's first frame byte in the bytes received since the start.
  // `what`: the kind of the record and what is wrong.
  MalformedRecord(std::uint64_t offset, const std::string& what);
  std::uint64_t offset() const { return offset_; }

 private:
  std::uint64_t offset_;
};

// The server answered a command on a database with the acknowledgement alone, which means that the
// database could not be opened.
class DatabaseNotOpened : public Error {
 public:
  // `messages`: texts that the server sent before it gave up, such as those about upgrades. The
  // server sends no reason; whyNotOpened looks for one.
  DatabaseNotOpened(const std::string& path, const std::vector<std::string>& messages);
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace odbs::client
