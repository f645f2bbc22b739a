// SPDX-License-Identifier: BSD-3-Clause
// Cutting the received bytes into records, and the rules that say how a reply ends.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "client/records/command_rules.h"
#include "tests/client/records.h"

namespace odbs::client::test {
namespace {

void put(RecordStream& stream, const std::string& bytes) {
  std::size_t room = 0;
  std::memcpy(stream.space(&room), bytes.data(), bytes.size());
  stream.filled(bytes.size());
}

TEST(RecordStream, CutsBytesIntoRecordsHoweverTheyArrive) {
  const std::string bytes =
      frame("H 'A'") + frame("I") + frame("0x03 7 1f") + std::string("\x01\x00~", 3);
  const std::vector<std::pair<int, int>> expected{{'H', 0}, {'I', 8}, {3, 11}, {'~', 22}};
  for (std::size_t chunk = 1; chunk <= bytes.size(); ++chunk) {
    RecordStream stream;
    std::vector<std::pair<int, int>> seen;
    for (std::size_t at = 0; at < bytes.size(); at += chunk) {
      put(stream, bytes.substr(at, chunk));
      for (Record r; stream.take(r);) seen.emplace_back(r.tag, static_cast<int>(r.offset));
    }
    ASSERT_EQ(seen, expected) << "in chunks of " << chunk;
    EXPECT_EQ(stream.pending(), 0u);
  }
}

TEST(RecordStream, CarriesRecordsOfTheLargestSizeAcrossTheEndOfItsBuffer) {
  RecordStream stream(1);
  std::string payload(65535, 'x');
  int nTaken = 0;
  for (int i = 0; i < 20; ++i) {
    payload[1] = static_cast<char>(i);
    const std::string framed = "\xFF\xFF" + payload;
    for (std::size_t at = 0; at < framed.size();) {
      std::size_t room = 0;
      unsigned char* space = stream.space(&room);
      const std::size_t n = std::min({room, framed.size() - at, std::size_t{40000}});
      ASSERT_GT(n, 0u);
      std::memcpy(space, framed.data() + at, n);
      stream.filled(n);
      at += n;
    }
    for (Record record; stream.take(record); ++nTaken) {
      ASSERT_EQ(record.size, 65534u);
      ASSERT_EQ(record.body[0], nTaken);
    }
  }
  EXPECT_EQ(nTaken, 20);
}

TEST(CommandRules, CountTheBytesOfTheRawTest) {
  EXPECT_EQ(replyRule("M 3 40950").nRawBytes, 122850u);
  EXPECT_EQ(replyRule("M 100000 100000").nRawBytes, 10000000000u);
  for (const char* line : {"M", "M 3", "M -1 5", "M 5 0", "M x 5", "m 3 5"}) {
    EXPECT_EQ(replyRule(line).nRawBytes, 0u) << line;
  }
}

}  // namespace
}  // namespace odbs::client::test
