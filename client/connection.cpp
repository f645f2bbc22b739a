// SPDX-License-Identifier: BSD-3-Clause
// Finding and starting the server, time-outs, and the ways to end it.
#include "client/connection.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "client/records/small_records.h"

namespace odbs::client {

namespace {

// Holds what the server writes while we work on what came before.
constexpr long kPipeBytes = 1 << 20;

// A server that closed its pipe is about to be gone: this long its exit status is waited for.
constexpr int kDyingMs = 5000;

std::string besideRunningProgram() {
  const std::string self = port::executablePath();
  const std::size_t slash = self.find_last_of("/\\");
  if (slash == std::string::npos) return {};
  const std::size_t extension = self.rfind(".exe");
  const bool windows = extension != std::string::npos && extension + 4 == self.size();
  return self.substr(0, slash + 1) + (windows ? "odb_server.exe" : "odb_server");
}

port::Child startServer(const StartOptions& options) {
  const std::string program = findServer(options.server);
  port::ignoreBrokenPipe();
  try {
    port::Child child =
        port::startWithPipes(program, {std::to_string(port::currentProcessId()), "{in}", "{out}"});
    port::setBinaryMode(child.toChild);
    port::setBinaryMode(child.fromChild);
    port::setPipeCapacity(child.fromChild, kPipeBytes);
    return child;
  } catch (const std::runtime_error& error) {
    throw StartError(error.what());
  }
}

std::string endText(int exitStatus) {
  if (exitStatus < 0) return "its exit status is not known";
  if (exitStatus > 128) return "signal " + std::to_string(exitStatus - 128) + " ended it";
  return "its exit status is " + std::to_string(exitStatus);
}

}  // namespace

std::string findServer(const std::string& given) {
  if (!given.empty()) {
    if (!port::fileStatus(given).exists) throw StartError("there is no server program " + given);
    return given;
  }
  const std::string beside = besideRunningProgram();
  if (!beside.empty() && port::fileStatus(beside).isRegular) return beside;
  const char* named = std::getenv("ODB_SERVER");
  if (named != nullptr && *named != '\0') {
    if (port::fileStatus(named).exists) return named;
    throw StartError(std::string("there is no server program ") + named +
                     ", which ODB_SERVER names");
  }
  throw StartError("no server program: not " + beside + ", and ODB_SERVER is not set");
}

Connection::Connection(const StartOptions& options)
    : child_(startServer(options)), stream_(options.bufferBytes), timeoutMs_(options.timeoutMs) {}

Connection::~Connection() {
  end();
}

void Connection::send(std::string_view line) {
  if (line.size() > kLongestLine) {
    throw std::invalid_argument("a command line of " + std::to_string(line.size()) +
                                " characters; the server takes " + std::to_string(kLongestLine));
  }
  if (line.find('\n') != std::string_view::npos || line.find('\0') != std::string_view::npos) {
    throw std::invalid_argument("a command line cannot hold a line break or a NUL");
  }
  sendBytes(std::string(line) + '\n', replyRule(line));
}

void Connection::sendBytes(std::string_view bytes, const ReplyRule& rule) {
  if (replyOpen_) throw std::logic_error("the reply to the last command has not been read");
  if (child_.toChild < 0) throw std::logic_error("the connection is closed");
  if (!port::writeAll(child_.toChild, bytes.data(), bytes.size())) failEnded("took no command");
  rule_ = rule;
  nRawLeft_ = rule.nRawBytes;
  replyOpen_ = rule.end != ReplyEnd::kNone;
}

void Connection::fill() {
  if (timeoutMs_ >= 0 && !port::waitReadable(child_.fromChild, timeoutMs_)) {
    throw TimedOut("the server sent nothing for " + std::to_string(timeoutMs_) + " ms");
  }
  std::size_t size = 0;
  unsigned char* space = stream_.space(&size);
  long n;
  do {
    n = port::readOnce(child_.fromChild, space, size);
  } while (n < 0 && errno == EINTR);
  if (n < 0) throw Error(std::string("cannot read from the server: ") + std::strerror(errno));
  if (n == 0) failEnded("ended in the middle of a reply");
  stream_.filled(static_cast<std::size_t>(n));
}

std::size_t Connection::nextRaw(const unsigned char** bytes) {
  if (nRawLeft_ == 0) return 0;
  if (stream_.pending() == 0) fill();
  const std::size_t most =
      nRawLeft_ < stream_.pending() ? static_cast<std::size_t>(nRawLeft_) : stream_.pending();
  const std::size_t n = stream_.takeRaw(bytes, most);
  nRawLeft_ -= n;
  return n;
}

void Connection::skipRaw() {
  const unsigned char* bytes;
  while (nextRaw(&bytes) > 0) {
  }
}

bool Connection::endReply(const Record& record) {
  if (record.size != 0) throw MalformedRecord(record.offset, "an acknowledgement with a body");
  replyOpen_ = false;
  return false;
}

bool Connection::endsUpgradeCheck(const Record& record) {
  return isUpgradeNeeded(record);
}

void Connection::drain() {
  Record record;
  while (next(record)) {
  }
}

void Connection::command(std::string_view line) {
  send(line);
  drain();
}

std::int32_t Connection::ping() {
  send("p");
  std::int32_t id = 0;
  bool found = false;
  for (Record record; next(record);) {
    if (record.tag != kProcessIdTag) continue;
    id = decodeProcessId(record);
    found = true;
  }
  if (!found) throw MalformedRecord(stream_.offset(), "a ping's reply without a process id");
  return id;
}

int Connection::quit() {
  send("q");
  const int status = port::waitForChild(child_, timeoutMs_);
  if (status < 0) throw TimedOut("the server did not quit");
  closePipes();
  return status;
}

int Connection::end(int graceMs) {
  closePipes();
  if (child_.id == 0) return -1;
  const int status = port::waitForChild(child_, graceMs);
  if (status >= 0) return status;
  kill();
  port::waitForChild(child_, -1);
  return -1;
}

void Connection::kill() {
  port::killProcess(child_);
}

void Connection::closePipes() {
  if (child_.toChild >= 0) port::closeDescriptor(child_.toChild);
  if (child_.fromChild >= 0) port::closeDescriptor(child_.fromChild);
  child_.toChild = child_.fromChild = -1;
  replyOpen_ = false;
}

void Connection::failEnded(const std::string& doing) {
  const std::size_t nCut = stream_.pending();
  closePipes();
  const int status = port::waitForChild(child_, kDyingMs);
  std::string what = "the server " + doing + "; " + endText(status);
  if (nCut > 0) what += "; the last " + std::to_string(nCut) + " bytes are a record cut short";
  throw ServerEnded(what, status);
}

}  // namespace odbs::client
