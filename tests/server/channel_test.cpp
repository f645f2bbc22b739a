// SPDX-License-Identifier: BSD-3-Clause
// The line reader, seen from inside: what is kept of a line, byte by byte. The input is a file, all
// of which each test consumes.
#include "server/channel.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tests/support/output_file.h"

namespace odbs {
namespace {

class LineReader : public testing::Test {
 protected:
  ~LineReader() override {
    if (file_) std::fclose(file_);
  }
  void input(const std::string& bytes) {
    file_ = std::tmpfile();
    std::fwrite(bytes.data(), 1, bytes.size(), file_);
    std::rewind(file_);
    fd_ = tests::descriptorOf(file_);
  }
  std::string next() { return std::string(readCommandLine(fd_)); }

  std::FILE* file_ = nullptr;
  int fd_ = -1;
};

TEST_F(LineReader, SplitsWhatOneReadDelivers) {
  input("p\ng /a b/c.odb\n\nq\n");
  EXPECT_EQ(next(), "p");
  EXPECT_EQ(next(), "g /a b/c.odb");
  EXPECT_EQ(next(), "");
  EXPECT_EQ(next(), "q");
}

TEST_F(LineReader, PutsTogetherWhatTwoReadsDeliver) {
  const std::string first(3000, 'a'), second(3000, 'b');
  input(first + "\n" + second + "\n");
  EXPECT_EQ(next(), first);
  EXPECT_EQ(next(), second);
}

TEST_F(LineReader, KeepsACarriageReturn) {
  input("g path\r\n");
  EXPECT_EQ(next(), "g path\r");
}

TEST_F(LineReader, EndsALineWithANul) {
  input("abc\nab\n");
  next();
  const std::string_view line = readCommandLine(fd_);
  EXPECT_EQ(line.data()[line.size()], '\0');
  EXPECT_EQ(line.size(), 2u);
}

TEST_F(LineReader, CutsALineAt4095BytesAndTrimsTheLastOfThem) {
  input(std::string(4094, 'a') + "Zrest\n");
  EXPECT_EQ(next(), std::string(4094, 'a'));
  EXPECT_EQ(next(), "rest");
}

TEST_F(LineReader, GivesAnEmptyLineForTheFeedBehindACutLine) {
  input(std::string(4095, 'a') + "\nx\n");
  EXPECT_EQ(next().size(), 4094u);
  EXPECT_EQ(next(), "");
  EXPECT_EQ(next(), "x");
}

TEST_F(LineReader, TakesALineOf4094BytesAndItsFeedWhole) {
  input(std::string(4094, 'a') + "\nx\n");
  EXPECT_EQ(next().size(), 4094u);
  EXPECT_EQ(next(), "x");
}

TEST_F(LineReader, HidesWhatFollowsANulAndTrimsBeforeIt) {
  input(std::string("ab\0cd\n\0ef\nx\n", 12));
  EXPECT_EQ(next(), "a");
  EXPECT_EQ(next(), "");
  EXPECT_EQ(next(), "x");
}

TEST_F(LineReader, ManyReservedRecordsFillTheBufferAsFarAsSingleOnesDo) {
  input("");
  for (const std::uint32_t payload : {1u, 17u, 49u, 40u, kMaxPayload}) {
    for (const std::uint32_t fill : {0u, 1u, 30000u, 40949u - payload, 40950u - payload}) {
      std::uint32_t expected = fill + payload >= kFlushThreshold ? 0 : fill;
      int n = 0;
      for (; expected + payload < kFlushThreshold; expected += payload + 2) ++n;
      outputBuffer.fill = fill;
      const ReservedRecords room = reserveRecords(fd_, payload, 1000000);
      EXPECT_EQ(n, room.n) << payload << " bytes behind " << fill;
      EXPECT_EQ(expected, outputBuffer.fill);
      EXPECT_EQ(outputBuffer.bytes + outputBuffer.fill,
                room.frames + (payload + 2) * std::uint32_t(n));
      outputBuffer.fill = fill;
      EXPECT_EQ(1, reserveRecords(fd_, payload, 1).n);
    }
  }
  outputBuffer.fill = 0;
}

}  // namespace
}  // namespace odbs
