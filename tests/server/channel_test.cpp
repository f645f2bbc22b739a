// SPDX-License-Identifier: BSD-3-Clause
// The line reader, seen from inside: what is kept of a line, byte by byte. The input is a file, all
// of which each test consumes.
#include "server/channel.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "port/port.h"

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
#if defined(_WIN32)
    fd_ = ::_fileno(file_);
#else
    fd_ = ::fileno(file_);
#endif
    port::setBinaryMode(fd_);
  }
  std::string next() {
    return std::string(readCommandLine(fd_));
  }

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

}  // namespace
}  // namespace odbs
