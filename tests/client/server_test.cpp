// SPDX-License-Identifier: BSD-3-Clause
// The client library against the real server: both sides were written from the protocol's
// description, neither from the other.
#include <gtest/gtest.h>

#include "client/small_records.h"
#include "tests/client/real_server.h"

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

TEST_F(ServerTest, TakesLinesOfTheGreatestLengthWholeAndCutsLongerOnes) {
  server.command(std::string(kLongestLine, 'z'));
  EXPECT_EQ(server.ping(), server.processId());
  // One byte too many: the line break becomes a command of its own, the empty one.
  server.sendBytes(std::string(kLongestLine + 1, 'z') + "\n", {});
  server.drain();
  server.sendBytes("", {});
  server.drain();
  EXPECT_EQ(server.ping(), server.processId());
}

TEST_F(ServerTest, SendsRawAndFramedTestsOfEverySize) {
  for (const char* line : {"M 1 1", "M 7 40950", "M 3 100001", "M 0 5", "M -1 5", "M 5 -1", "M"}) {
    server.send(line);
    std::uint64_t nBytes = 0;
    const unsigned char* bytes = nullptr;
    while (const std::size_t n = server.nextRaw(&bytes)) nBytes += n;
    EXPECT_EQ(nBytes, replyRule(line).nRawBytes) << line;
    server.drain();
  }
  for (const std::uint32_t nIntegers : {0u, 1u, 100u, 2500u}) {
    server.send("m 50 " + std::to_string(nIntegers));
    std::uint32_t nRecords = 0;
    for (Record record; server.next(record); ++nRecords) {
      const ThroughputRecord decoded = decodeThroughput(record);
      ASSERT_EQ(decoded.index, nRecords);
      ASSERT_EQ(decoded.nIntegers, nIntegers);
    }
    EXPECT_EQ(nRecords, 50u);
  }
  EXPECT_EQ(server.ping(), server.processId());
}

TEST_F(ServerTest, AnswersHalfALineAtTheEndOfItsInput) {
  port::Child child = port::startWithPipes(
      realServer().server, {std::to_string(port::currentProcessId()), "{in}", "{out}"});
  port::setBinaryMode(child.fromChild);
  port::setBinaryMode(child.toChild);
  ASSERT_TRUE(port::writeAll(child.toChild, "x\npp", 4));
  port::closeDescriptor(child.toChild);
  std::string seen;
  char bytes[256];
  for (long n; (n = port::readOnce(child.fromChild, bytes, sizeof bytes)) > 0;) {
    seen.append(bytes, static_cast<std::size_t>(n));
  }
  port::closeDescriptor(child.fromChild);
  EXPECT_EQ(port::waitForChild(child, 20000), 0);
  ASSERT_EQ(seen.size(), 13u);  // the unknown command's acknowledgement, the ping's answer
  EXPECT_EQ(seen.substr(0, 6), std::string("\x01\x00~\x05\x00}", 6));
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
}

TEST_F(ServerTest, EndsWithStatus0WhenItsParentGoesInTheMiddleOfAReply) {
  server.send("M 1000000 40950");
  const unsigned char* bytes = nullptr;
  ASSERT_GT(server.nextRaw(&bytes), 0u);
  EXPECT_EQ(server.end(30000), 0);
}

}  // namespace
}  // namespace odbs::client::test
