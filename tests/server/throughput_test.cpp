// SPDX-License-Identifier: BSD-3-Clause
// The throughput tests `M` and `m`: bytes, totals, and extreme numbers.
#include <gtest/gtest.h>

#include <numeric>

#include "base/bytes.h"
#include "tests/support/server_process.h"

namespace odbs::tests {
namespace {

std::string standardError(const std::vector<std::string>& lines) {
  std::string said = standardErrorOf(lines);
  for (std::size_t at; (at = said.find('\r')) != std::string::npos;) said.erase(at, 1);
  return said;
}

class Throughput : public testing::Test {
 protected:
  // How many bytes come back for a line, the acknowledgement left out.
  std::size_t bytesAhead(const std::string& line, std::size_t expected) {
    server.send(line);
    const std::string bytes = server.read(expected);
    EXPECT_EQ(hexOf(server.read(3)), kAckHex) << line;
    return bytes.size();
  }
  ServerProcess server;
};

TEST_F(Throughput, FramedRecordsCountUp) {
  EXPECT_EQ(server.reply("m 2 3"),
            "11 00 22 00 00 00 00 00 00 00 00 01 00 00 00 02 00 00 00 "
            "11 00 22 01 00 00 00 00 00 00 00 01 00 00 00 02 00 00 00 01 00 7e");
}

TEST_F(Throughput, FramedRecordsMayBeEmptyOfIntegers) {
  EXPECT_EQ(server.reply("m 2 0"), "05 00 22 00 00 00 00 05 00 22 01 00 00 00 01 00 7e");
  EXPECT_EQ(server.reply("m 1 -7"), "05 00 22 00 00 00 00 01 00 7e");
}

TEST_F(Throughput, FramedRecordsStayWholeAndValidAtAnySize) {
  // 2558 integers fill the 10240 bytes of a record; the ones beyond are left out.
  for (const char* line : {"m 3 2558", "m 3 2559", "m 3 2147483647"}) {
    server.send(line);
    const std::string bytes = server.read(3 * 10239);
    ASSERT_EQ(bytes.size(), 3u * 10239);
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
    for (unsigned i = 0; i < 3; ++i, p += 10239) {
      EXPECT_EQ(getU16(p), 10237);
      EXPECT_EQ(getU32(p + 3), i);
      EXPECT_EQ(getU32(p + 7 + 4 * 2557), 2557u);
    }
    EXPECT_EQ(hexOf(server.read(3)), kAckHex);
  }
}

TEST_F(Throughput, NothingIsSentForCountsOfZeroAndBelow) {
  for (const char* line : {"M", "M 0 5", "M 5 0", "M -1 5", "M 5 -1", "M 2147483647 0",
                           "M -2147483648 -2147483648", "m", "m 0 3", "m -5 3", "m x y"}) {
    EXPECT_EQ(server.reply(line), kAckHex) << line;
  }
}

TEST_F(Throughput, RawBytesAreExactlyAsManyAsAskedFor) {
  EXPECT_EQ(bytesAhead("M 1 1", 1), 1u);
  EXPECT_EQ(bytesAhead("M 3 40950", 122850), 122850u);
  EXPECT_EQ(bytesAhead("M 2 40961", 81922), 81922u);
  EXPECT_EQ(bytesAhead("M 2 40962", 81924), 81924u);
  EXPECT_EQ(bytesAhead("M 1 1000000", 1000000), 1000000u);
}

TEST_F(Throughput, RawBytesPastTheBufferAreZeros) {
  server.send("m 3 2000");  // leaves something in the buffer
  server.read(3 * 8007 + 3);
  server.send("M 1 50000");
  const std::string bytes = server.read(50000);
  EXPECT_EQ(bytes.substr(0, 3), std::string("\x45\x1f\x22", 3));
  EXPECT_EQ(bytes.substr(40961), std::string(50000 - 40961, '\0'));
  EXPECT_EQ(hexOf(server.read(3)), kAckHex);
}

TEST(ThroughputTotals, StandOnStandardError) {
  EXPECT_EQ(standardError({"m 2 3", "M 3 1000", "M 0 7", "m 0 0"}), "\t38\n\t3000\n\t0\n\t0\n");
}

TEST(AllocationFailure, IsReportedOnStandardErrorAndTheServerGoesOn) {
  const std::string said = standardError({"a 2147483647", "b 1 2", "m 1 0"});
  EXPECT_EQ(said.find("Memory allocation error!!!!\nFILE :odb_server , LINE :"), 0u) << said;
  EXPECT_EQ(said.substr(said.size() - 4), "\n\t7\n");
}

}  // namespace
}  // namespace odbs::tests
