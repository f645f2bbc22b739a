// SPDX-License-Identifier: BSD-3-Clause
// How a real server takes what arrives on its input: in pieces, in excess, with NULs, half sent.
#include <gtest/gtest.h>

#include "tests/support/server_process.h"

namespace odbs::tests {
namespace {

class LineStream : public testing::Test {
 protected:
  // Expects exactly these bytes, as hexOf, in answer to `bytes`.
  void expectAnswer(const std::string& bytes, const std::string& hex) {
    server.sendBytes(bytes);
    EXPECT_EQ(hexOf(server.read((hex.size() + 1) / 3)), hex);
    EXPECT_EQ(server.reply("C"), "");
  }
  std::string ack(int n) {
    std::string hex;
    for (int i = 0; i < n; ++i) hex += std::string(i ? " " : "") + kAckHex;
    return hex;
  }
  ServerProcess server;
};

TEST_F(LineStream, RunsSeveralCommandsOfOneRead) {
  expectAnswer("v 1\nv 2\nC\nx\n", ack(3));
}

TEST_F(LineStream, PutsACommandTogetherFromItsPieces) {
  server.sendBytes("v");
  port::sleepMs(50);
  server.sendBytes(" 1");
  port::sleepMs(50);
  expectAnswer("\n", ack(1));
}

TEST_F(LineStream, TakesTheRestOfA5000ByteLineAsTheNextCommand) {
  // The second command starts with p: it answers with the process id.
  expectAnswer("x" + std::string(4094, 'a') + "p" + std::string(904, 'a') + "\n",
               ack(1) + " " + hexOf(server.pingReply()));
}

// The feed that belongs to a line cut at 4095 bytes is an empty line; one of 4094 bytes fits whole.
TEST_F(LineStream, CutsALineAt4095BytesAndTrimsTheLastOfThem) {
  expectAnswer(std::string(4095, 'x') + "\nx\n", ack(3));
  expectAnswer(std::string(4094, 'x') + "\nx\n", ack(2));
  expectAnswer("p" + std::string(4093, 'a') + "Zp\n",
               hexOf(server.pingReply() + server.pingReply()));
}

TEST_F(LineStream, DoesNotSeeACommandBehindItsCarriageReturn) {
  expectAnswer("\rp\n", ack(1));
  expectAnswer("p\r\n", hexOf(server.pingReply()));
}

TEST_F(LineStream, AnswersNulsAndEmptyLinesWithAcknowledgements) {
  expectAnswer(std::string("\0p\n\n\0\0\n", 7), ack(3));
  // The character before the first NUL is trimmed, so "pv\0" is a ping and "p\0" is empty.
  expectAnswer(std::string("pv\0v\np\0v\n", 9), hexOf(server.pingReply()) + " " + ack(1));
}

TEST_F(LineStream, SurvivesBytesOfEveryValue) {
  std::string bytes;
  for (int i = 0; i < 256; ++i) {
    // Not the commands that quit, stay silent or answer otherwise, and no early line end.
    if (std::string("qCDdMmpuT\n").find(static_cast<char>(i)) != std::string::npos) continue;
    bytes += static_cast<char>(i) + std::string(" 1\n");
  }
  expectAnswer(bytes, ack(246));
}

TEST_F(LineStream, RunsAHalfSentLineWithoutItsLastCharacterAndEnds) {
  server.sendBytes("px");
  server.closeInput();
  EXPECT_EQ(hexOf(server.readToEnd()), hexOf(server.pingReply()));
  EXPECT_EQ(server.wait(), 0);
}

TEST_F(LineStream, EndsWithStatus0AtTheEndOfInput) {
  server.closeInput();
  EXPECT_EQ(server.readToEnd(), "");
  EXPECT_EQ(server.wait(), 0);
}

TEST_F(LineStream, EndsWithStatus0WhenNobodyReadsItsAnswers) {
  server.closeOutput();
  server.send("m 10000 1000");
  server.send("p");
  server.closeInput();
  EXPECT_EQ(server.wait(), 0);
}

}  // namespace
}  // namespace odbs::tests
