// SPDX-License-Identifier: BSD-3-Clause
// A real server process at the other end of real pipes, for tests that compare literal bytes. Bytes
// are written in hexadecimal, "05 00 7D", so that a failing comparison can be read.
#pragma once

#include <string>
#include <vector>

#include "port/port.h"
#include "tests/support/temporary_folder.h"

namespace odbs::tests {

// The bytes of "05 00 7d", and back. Between the pairs of digits one blank.
std::string bytesOf(const std::string& hex);
std::string hexOf(const std::string& bytes);

// The acknowledgement, as hexOf gives it.
inline const char* const kAckHex = "01 00 7e";

// The frame and payload of a record that is a tag and a text, such as a message.
std::string textRecord(char tag, const std::string& text);

// A program in the folder of the running one, with the platform's suffix.
std::string siblingProgram(const std::string& name);

// Starts a program with pipes; ends and reaps it when it goes.
class Process {
 public:
  Process(const std::string& program, const std::vector<std::string>& arguments);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  int id() const { return id_; }
  void sendBytes(const std::string& bytes);
  void send(const std::string& line) { sendBytes(line + "\n"); }
  // Exactly `n` bytes, or fewer when the output ends or nothing comes for `timeoutMs`.
  std::string read(std::size_t n, int timeoutMs = 20000);
  // Everything up to the end of the output.
  std::string readToEnd(int timeoutMs = 20000);
  void closeInput();
  void closeOutput();
  // Exit status, or -1 when it still runs after `timeoutMs`.
  int wait(int timeoutMs = 20000);
  void kill() { port::killProcess(child_); }

 private:
  port::Child child_;
  int id_;
};

// A server whose parent is this test, or another process.
class ServerProcess : public Process {
 public:
  explicit ServerProcess(int parentId = port::currentProcessId())
      : Process(siblingProgram("odb_server"), {std::to_string(parentId), "{in}", "{out}"}) {}

  // Sends a line, then a ping, and returns as hexOf what comes back ahead of the ping's answer: the
  // whole reply to the line, also when that is nothing.
  std::string reply(const std::string& line);
  // The bytes that a ping is answered with.
  std::string pingReply() const;
};

// A process that does nothing, to be watched as a parent and killed.
class IdleParent : public Process {
 public:
  IdleParent() : Process(siblingProgram("test_parent"), {"idle", "{out}"}) { read(1); }
};

// Runs a server as the child of a helper with these lines, waits for its end, and returns what it
// wrote to standard error.
std::string standardErrorOf(const std::vector<std::string>& lines);

}  // namespace odbs::tests
