// SPDX-License-Identifier: BSD-3-Clause
// The child of the port tests. First and second argument: the descriptors to read and to write; the
// third what to do: "echo" sends back what comes in, "args" the arguments after it, "exit" ends
// with the status that follows, "wait" stays until it is killed.
#include <cstdlib>
#include <string>

#include "port/port.h"

int main(int argc, char** argv) {
  using namespace odbs;
  if (argc < 4) return 99;
  const int in = std::atoi(argv[1]);
  const int out = std::atoi(argv[2]);
  const std::string mode = argv[3];
  if (mode == "exit") return std::atoi(argv[4]);
  if (mode == "args") {
    std::string all;
    for (int i = 4; i < argc; ++i) all += std::string(argv[i]) + "\n";
    return port::writeAll(out, all.data(), all.size()) ? 0 : 98;
  }
  char buffer[4096];
  for (;;) {
    const long n = port::readOnce(in, buffer, sizeof buffer);
    if (n <= 0) return 0;
    if (mode == "echo" && !port::writeAll(out, buffer, static_cast<std::size_t>(n))) return 97;
  }
}
