// SPDX-License-Identifier: BSD-3-Clause
// The client library against the real server: both sides were written from the protocol's
// description, neither from the other.
#include <gtest/gtest.h>

#include "tests/client/built_server.h"

namespace odbs::client::test {
namespace {

class ServerTest : public ::testing::Test {
 protected:
  Connection server{realServer()};
};

TEST_F(ServerTest, AnswersAPingWithItsProcessIdAndQuitsWithStatus0) {
  EXPECT_EQ(server.ping(), server.processId());
  EXPECT_EQ(server.quit(), 0);
}

TEST_F(ServerTest, StaysInStepWhateverTheFirstCharacterOfALine) {
  for (int c = 1; c < 256; ++c) {
    if (c == '\n' || c == 'q') continue;
    server.command(std::string(1, static_cast<char>(c)));
    server.command(std::string(1, static_cast<char>(c)) + " 1 1 x");
    ASSERT_EQ(server.ping(), server.processId()) << "after a line that begins with byte " << c;
  }
  for (const char* line : {"ho 2", "hb A", "hb B", "irc 1 2 NAME", "irc 9", "hr", "hx", "irx", "ix",
                           "fd", "fx /no/such.odb", "rs /no/such.odb", ""}) {
    server.command(line);
    ASSERT_EQ(server.ping(), server.processId()) << line;
  }
}

TEST_F(ServerTest, SendsRawTestsOfEverySize) {
  for (const char* line : {"M 1 1", "M 7 40950", "M 3 100001", "M 0 5", "M -1 5", "M 5 -1", "M"}) {
    server.send(line);
    std::uint64_t nBytes = 0;
    const unsigned char* bytes = nullptr;
    while (const std::size_t n = server.nextRaw(&bytes)) nBytes += n;
    EXPECT_EQ(nBytes, replyRule(line).nRawBytes) << line;
    server.drain();
  }
  EXPECT_EQ(server.ping(), server.processId());
}

TEST_F(ServerTest, IsReportedWhenItIsKilledInTheMiddleOfAReply) {
  server.send("M 100000 40950");
  const unsigned char* bytes = nullptr;
  ASSERT_GT(server.nextRaw(&bytes), 0u);
  server.kill();
  try {
    server.drain();
    FAIL() << "a killed server finished its reply";
  } catch (const ServerEnded& error) {
    EXPECT_EQ(error.exitStatus(), 137);
  }
  EXPECT_THROW(server.send("p"), std::logic_error);
}

}  // namespace
}  // namespace odbs::client::test
