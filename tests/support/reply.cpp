// SPDX-License-Identifier: BSD-3-Clause
// Replies taken apart into records.
#include "tests/support/reply.h"

#include <stdexcept>

namespace odbs::tests {

Records recordsOf(Process& server, const std::string& line, std::string* bytes) {
  server.send(line);
  Records records;
  if (bytes) bytes->clear();
  for (;;) {
    const std::string length = server.read(2);
    if (length.size() < 2) throw std::runtime_error("the reply ended without acknowledgement");
    const auto low = static_cast<unsigned char>(length[0]);
    const auto high = static_cast<unsigned char>(length[1]);
    const std::string payload = server.read(static_cast<std::size_t>(low | high << 8));
    if (bytes) *bytes += length + payload;
    if (payload == "~") return records;
    records.push_back(payload);
  }
}

Records recordsIn(const std::string& bytes) {
  Records records;
  for (std::size_t at = 0; at + 2 <= bytes.size(); at += 2 + records.back().size()) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    records.push_back(bytes.substr(at + 2, static_cast<std::size_t>(byte(at) | byte(at + 1) << 8)));
  }
  return records;
}

Records withTag(const Records& records, int tag) {
  Records found;
  for (const std::string& record : records) {
    if (record[0] == static_cast<char>(tag)) found.push_back(record);
  }
  return found;
}

}  // namespace odbs::tests
