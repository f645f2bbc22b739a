// SPDX-License-Identifier: BSD-3-Clause
// A server that does what the test's lines tell it, so that every misbehaviour can be staged:
//   x HEX   write these bytes (g, u and M do the same)   e N   end with status N
//   s MS    be silent for so long                        k     outlive the end of input
// Nothing is acknowledged unless its bytes are asked for.
#include <cstdlib>
#include <string>

#include "base/text.h"
#include "port/port.h"

namespace {

// False at the end of input.
bool readLine(int fd, std::string& line) {
  line.clear();
  char c = 0;
  while (odbs::port::readOnce(fd, &c, 1) == 1) {
    if (c == '\n') return true;
    line += c;
  }
  return false;
}

std::string fromHex(const std::string& text) {
  std::string bytes;
  for (const std::string_view digits : odbs::split(text, ' ')) {
    bytes += static_cast<char>(std::strtol(std::string(digits).c_str(), nullptr, 16));
  }
  return bytes;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 99;
  const int in = std::atoi(argv[2]);
  const int out = std::atoi(argv[3]);
  odbs::port::setBinaryMode(in);
  odbs::port::setBinaryMode(out);
  bool outlives = false;
  for (std::string line; readLine(in, line);) {
    const std::string rest = line.size() > 2 ? line.substr(2) : "";
    const char letter = line.empty() ? '\0' : line[0];
    if (letter == 'e') return std::atoi(rest.c_str());
    if (letter == 's') odbs::port::sleepMs(std::atoi(rest.c_str()));
    if (letter == 'k') outlives = true;
    if (letter == 'x' || letter == 'g' || letter == 'u' || letter == 'M') {
      const std::string bytes = fromHex(rest);
      odbs::port::writeAll(out, bytes.data(), bytes.size());
    }
  }
  while (outlives) odbs::port::sleepMs(1000);
  return 0;
}
