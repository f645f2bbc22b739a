// SPDX-License-Identifier: BSD-3-Clause
// A process for tests to have as a parent.
//
//   test_parent idle OUT                       writes one byte to OUT, then waits to be killed
//   test_parent serve OUT SERVER LINE...       starts SERVER, sends the lines, waits for the first
//                                              acknowledgement, writes the server's process id to
//                                              OUT as text and a line feed, then waits to be
//                                              killed; reads no further answer
//   test_parent stderr FILE SERVER LINE...     starts SERVER with FILE as standard error, sends the
//                                              lines and the end of input, reads all answers, and
//                                              ends with the server's exit status
#include <cstdio>
#include <string>
#include <vector>

#include "port/port.h"
#include "tests/support/server_process.h"

namespace {

using odbs::tests::Process;
namespace port = odbs::port;

constexpr int kLongestLifeMs = 120000;  // so that nothing is left behind when a test dies

std::vector<std::string> serverArguments() {
  return {std::to_string(port::currentProcessId()), "{in}", "{out}"};
}

int serve(int out, const std::string& program, const std::vector<std::string>& lines) {
  Process server(program, serverArguments());
  for (const std::string& line : lines) server.send(line);
  server.read(3);
  const std::string id = std::to_string(server.id()) + "\n";
  port::writeAll(out, id.data(), id.size());
  port::sleepMs(kLongestLifeMs);
  return 1;
}

int recordStandardError(const std::string& path, const std::string& program,
                        const std::vector<std::string>& lines) {
  if (!std::freopen(path.c_str(), "wb", stderr)) return 2;
  Process server(program, serverArguments());
  for (const std::string& line : lines) server.send(line);
  server.closeInput();
  server.readToEnd();
  return server.wait();
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> arguments(argv + 1, argv + argc);
  if (arguments.size() < 2) return 2;
  if (arguments[0] == "idle") {
    port::writeAll(std::stoi(arguments[1]), ".", 1);
    port::sleepMs(kLongestLifeMs);
    return 1;
  }
  if (arguments.size() < 3) return 2;
  const std::vector<std::string> lines(arguments.begin() + 3, arguments.end());
  if (arguments[0] == "serve") return serve(std::stoi(arguments[1]), arguments[2], lines);
  if (arguments[0] == "stderr") return recordStandardError(arguments[1], arguments[2], lines);
  return 2;
}
