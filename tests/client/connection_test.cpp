// SPDX-License-Identifier: BSD-3-Clause
// The connection against a scripted server: replies of every ending, silence, death, damage.
#include "client/connection.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "client/records/small_records.h"
#include "tests/client/built_server.h"

namespace odbs::client::test {
namespace {

class ConnectionTest : public ::testing::Test {
 protected:
  // The tags of the reply to `line`.
  std::string tags(const std::string& line) {
    server.send(line);
    std::string seen;
    for (Record record; server.next(record);) seen += static_cast<char>(record.tag);
    return seen;
  }
  Connection server{fakeServer()};
};

TEST_F(ConnectionTest, ReadsRepliesOneAfterTheOther) {
  EXPECT_EQ(tags("x 01 00 7e"), "");
  EXPECT_EQ(tags("x 01 00 49 05 00 7d 01 02 03 04 01 00 7e"), "I}");
  EXPECT_EQ(tags("C"), "");
  EXPECT_EQ(tags("x 01 00 49 01 00 7e"), "I");
  EXPECT_EQ(server.bytesReceived(), 22u);
}

TEST_F(ConnectionTest, EndsAnUpgradeCheckAtTheRecordOrTheAcknowledgement) {
  EXPECT_EQ(tags("u 05 00 7c 01 00 00 00"), "|");
  EXPECT_EQ(tags("u 01 00 7e"), "");
}

TEST_F(ConnectionTest, TakesRawBytesAheadOfTheAcknowledgement) {
  // The first three look like an acknowledgement, and are not.
  server.sendBytes("x 01 00 7e ff ee dd 01 00 7e\n", {ReplyEnd::kAcknowledged, {}, 6});
  const unsigned char* bytes = nullptr;
  std::string seen;
  while (const std::size_t n = server.nextRaw(&bytes)) {
    seen.append(reinterpret_cast<const char*>(bytes), n);
  }
  EXPECT_EQ(seen, std::string("\x01\x00\x7e\xff\xee\xdd", 6));
  Record record;
  EXPECT_FALSE(server.next(record));
  EXPECT_EQ(tags("x 01 00 7e"), "");
}

TEST_F(ConnectionTest, RefusesLinesThatCannotBeSentWhole) {
  EXPECT_THROW(server.send("x\n"), std::invalid_argument);
  EXPECT_THROW(server.send(std::string("x\0", 2)), std::invalid_argument);
  EXPECT_THROW(server.send(std::string(4095, 'z')), std::invalid_argument);
  server.send("x 01 00 49");
  EXPECT_THROW(server.send("p"), std::logic_error);
}

TEST_F(ConnectionTest, GivesUpOnASilentServer) {
  server.setTimeout(50);
  server.send("s 60000");
  Record record;
  EXPECT_THROW(server.next(record), TimedOut);
  EXPECT_EQ(server.end(50), -1);  // had to be killed
}

TEST_F(ConnectionTest, ReportsARecordCutShortByTheServersEnd) {
  server.sendBytes("x 09 00 48 01 00\ne 3\n", {});
  Record record;
  try {
    server.next(record);
    FAIL() << "a record that was cut short";
  } catch (const ServerEnded& error) {
    EXPECT_EQ(error.exitStatus(), 3);
    EXPECT_NE(std::string(error.what()).find("last 5 bytes"), std::string::npos) << error.what();
  }
}

TEST_F(ConnectionTest, ReportsDamagedFramesWithTheirPlace) {
  server.send("x 01 00 49 00 00 01 00 7e");
  Record record;
  ASSERT_TRUE(server.next(record));
  try {
    server.next(record);
    FAIL() << "a frame of length 0";
  } catch (const MalformedRecord& error) {
    EXPECT_EQ(error.offset(), 3u);
  }
}

TEST_F(ConnectionTest, EndsTheServerByClosingThePipesAndKillsWhatStays) {
  EXPECT_EQ(server.end(), 0);
  Connection stubborn(fakeServer());
  stubborn.send("k");
  EXPECT_EQ(stubborn.end(200), -1);
  EXPECT_EQ(stubborn.processId(), 0);
}

TEST(FindServer, TakesThePathGivenOrSaysThatThereIsNone) {
  const std::string given = fakeServer().server;
  EXPECT_EQ(findServer(given), given);
  EXPECT_THROW(findServer(given + ".missing"), StartError);
}

TEST(FindServer, FailsToStartWhatIsNoProgram) {
  StartOptions options;
  options.server = std::filesystem::temp_directory_path().string();
  EXPECT_THROW(Connection{options}, StartError);
}

}  // namespace
}  // namespace odbs::client::test
