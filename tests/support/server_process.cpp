// SPDX-License-Identifier: BSD-3-Clause
// The tests' hand on real processes.
#include "tests/support/server_process.h"

#include <stdexcept>

#include "base/bytes.h"

namespace odbs::tests {

std::string bytesOf(const std::string& hex) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 3) {
    bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
  }
  return bytes;
}

std::string hexOf(const std::string& bytes) {
  static const char kDigits[] = "0123456789abcdef";
  std::string hex;
  for (const char c : bytes) {
    if (!hex.empty()) hex += ' ';
    hex += kDigits[static_cast<unsigned char>(c) >> 4];
    hex += kDigits[static_cast<unsigned char>(c) & 15];
  }
  return hex;
}

std::string textRecord(char tag, const std::string& text) {
  unsigned char head[7];
  putU16(head, static_cast<std::uint16_t>(5 + text.size()));
  head[2] = static_cast<unsigned char>(tag);
  putU32(head + 3, static_cast<std::uint32_t>(text.size()));
  return std::string(reinterpret_cast<const char*>(head), sizeof head) + text;
}

std::string siblingProgram(const std::string& name) {
  const std::filesystem::path self = port::executablePath();
  return (self.parent_path() / name).string() + self.extension().string();
}

Process::Process(const std::string& program, const std::vector<std::string>& arguments)
    : child_(port::startWithPipes(program, arguments)), id_(child_.id) {
  port::ignoreBrokenPipe();
}

Process::~Process() {
  if (child_.id != 0) {
    kill();
    wait();
  }
  closeInput();
  closeOutput();
}

void Process::sendBytes(const std::string& bytes) {
  port::writeAll(child_.toChild, bytes.data(), bytes.size());
}

std::string Process::read(std::size_t n, int timeoutMs) {
  std::string bytes(n, '\0');
  std::size_t got = 0;
  while (got < n) {
    if (!port::waitReadable(child_.fromChild, timeoutMs)) break;
    const long more = port::readOnce(child_.fromChild, bytes.data() + got, n - got);
    if (more <= 0) break;
    got += static_cast<std::size_t>(more);
  }
  bytes.resize(got);
  return bytes;
}

std::string Process::readToEnd(int timeoutMs) {
  std::string bytes;
  for (;;) {
    const std::string more = read(65536, timeoutMs);
    if (more.empty()) return bytes;
    bytes += more;
  }
}

void Process::closeInput() {
  if (child_.toChild >= 0) port::closeDescriptor(child_.toChild);
  child_.toChild = -1;
}

void Process::closeOutput() {
  if (child_.fromChild >= 0) port::closeDescriptor(child_.fromChild);
  child_.fromChild = -1;
}

int Process::wait(int timeoutMs) {
  return port::waitForChild(child_, timeoutMs);
}

std::string ServerProcess::pingReply() const {
  std::string reply = bytesOf("05 00 7d 00 00 00 00 01 00 7e");
  putI32(reinterpret_cast<unsigned char*>(reply.data()) + 3, id());
  return reply;
}

std::string ServerProcess::reply(const std::string& line) {
  send(line);
  send("p");
  const std::string end = pingReply();
  std::string bytes;
  while (bytes.size() < end.size() || bytes.compare(bytes.size() - end.size(), end.size(), end)) {
    const std::string more = read(1);
    if (more.empty()) return hexOf(bytes) + " and no answer to the ping";
    bytes += more;
  }
  return hexOf(bytes.substr(0, bytes.size() - end.size()));
}

std::string standardErrorOf(const std::vector<std::string>& lines) {
  const TemporaryFolder folder;
  const std::string path = folder.file("stderr");
  std::vector<std::string> arguments{"stderr", path, siblingProgram("odb_server")};
  arguments.insert(arguments.end(), lines.begin(), lines.end());
  Process helper(siblingProgram("test_parent"), arguments);
  if (helper.wait() != 0) throw std::runtime_error("the helper failed");
  return readFile(path);
}

}  // namespace odbs::tests
