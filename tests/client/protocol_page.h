// SPDX-License-Identifier: BSD-3-Clause
// Reads the worked example out of docs/protocol.md.
#pragma once

#include <cstdlib>
#include <fstream>
#include <string>

namespace odbs::client::test {

// The bytes of one of the page's dumps, counted from 0: per line an offset, up to 16 bytes in hex,
// and a margin. Empty when the page has no such dump.
inline std::string replyOfProtocolPage(int dump = 0) {
  constexpr std::size_t kFirstColumn = 6, kBytesPerLine = 16;
  std::ifstream page(std::string(ODBS_SOURCE_DIR) + "/docs/protocol.md");
  std::string bytes;
  bool isInside = false;
  for (std::string line; std::getline(page, line);) {
    if (line == "```" && isInside && dump-- == 0) break;
    if (line == "```") isInside = false;
    for (std::size_t i = 0; isInside && dump == 0 && i < kBytesPerLine; ++i) {
      const std::size_t column = kFirstColumn + 3 * i;
      if (column + 2 > line.size() || line[column] == ' ') break;
      bytes += static_cast<char>(std::strtol(line.substr(column, 2).c_str(), nullptr, 16));
    }
    if (line == "```hexdump") isInside = true;
  }
  return bytes;
}

}  // namespace odbs::client::test
