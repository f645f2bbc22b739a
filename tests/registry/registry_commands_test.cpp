// SPDX-License-Identifier: BSD-3-Clause
// The commands o, l, c and u against a real server, byte by byte.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "tests/support/databases.h"
#include "tests/support/server_process.h"

namespace odbs::tests {
namespace {

namespace fs = std::filesystem;

const char* const kUpgradeNeededHex = "05 00 7c 01 00 00 00";

class RegistryCommands : public testing::Test {
 protected:
  RegistryCommands() {
    makeDatabase(current);
    makeOldDatabase(old);
  }
  std::string upgrading() const { return message("odb upgrade to: "); }
  std::string found() const { return message("Found upgraded odb: "); }

  TemporaryFolder folder;
  const std::string current = folder.file("cur rent.odb");
  const std::string old = folder.file("old.odb");
  const std::string copy = old + ".odb";
  ServerProcess server;

 private:
  std::string message(const std::string& text) const {
    return hexOf(textRecord('|', text + copy)) + " ";
  }
};

TEST_F(RegistryCommands, OpeningSendsTheAcknowledgementAlone) {
  EXPECT_EQ(server.reply("o " + current), kAckHex);
  EXPECT_EQ(server.reply("o " + current), kAckHex);
  EXPECT_EQ(server.reply("l"), kAckHex);
  EXPECT_EQ(server.reply("c " + current), kAckHex);
  EXPECT_EQ(server.reply("c " + current), kAckHex);
  EXPECT_EQ(server.reply("l"), kAckHex);
}

TEST_F(RegistryCommands, OpeningAnOldDatabaseUpgradesIt) {
  EXPECT_EQ(server.reply("o " + old), upgrading() + kAckHex);
  EXPECT_TRUE(fs::exists(copy));
  EXPECT_EQ(server.reply("o " + old), found() + kAckHex);
}

TEST_F(RegistryCommands, ClosingAnOldDatabaseAnnouncesItsCopyAndUpgradesNothing) {
  EXPECT_EQ(server.reply("c " + old), upgrading() + kAckHex);
  EXPECT_FALSE(fs::exists(copy));
  server.reply("o " + old);
  EXPECT_EQ(server.reply("c " + old), found() + kAckHex);
  shiftModificationTime(old, 5);
  EXPECT_EQ(server.reply("c " + old), upgrading() + kAckHex);
}

TEST_F(RegistryCommands, CheckingTellsWhetherOpeningWouldUpgrade) {
  EXPECT_EQ(server.reply("u " + current), kAckHex);
  EXPECT_EQ(server.reply("u " + old), kUpgradeNeededHex);
  EXPECT_FALSE(fs::exists(copy));
  server.reply("o " + old);
  EXPECT_EQ(server.reply("u " + old), kAckHex);
  shiftModificationTime(old, 5);
  EXPECT_EQ(server.reply("u " + old), kUpgradeNeededHex);
}

TEST_F(RegistryCommands, CheckingLooksIntoTheCopyToo) {
  makeOldDatabase(copy);
  shiftModificationTime(copy, 5);
  EXPECT_EQ(server.reply("u " + old), kUpgradeNeededHex);
  makeDatabase(copy);
  shiftModificationTime(copy, 10);
  EXPECT_EQ(server.reply("u " + old), kAckHex);
}

TEST_F(RegistryCommands, ACarriageReturnBelongsToThePath) {
  makeOldDatabase(old);
  EXPECT_EQ(server.reply("u " + old + "\r"), kAckHex);
  EXPECT_EQ(server.reply("u " + old), kUpgradeNeededHex);
}

TEST_F(RegistryCommands, BadFilesGetTheAcknowledgementFromEveryCommand) {
  writeFile(folder.file("empty.odb"), "");
  writeFile(folder.file("text.odb"), "no database");
  makeFutureDatabase(folder.file("future.odb"));
  fs::create_directory(folder.file("folder.odb"));
  const std::string pipe = folder.file("pipe.odb");
#if !defined(_WIN32)
  ASSERT_EQ(0, std::system(("mkfifo '" + pipe + "'").c_str()));
#endif
  std::string longPath = folder.file("x");
  longPath.resize(4000, 'x');
  for (const std::string& path :
       {folder.file("missing.odb"), folder.file("empty.odb"), folder.file("text.odb"),
        folder.file("future.odb"), folder.file("folder.odb"), pipe, longPath}) {
    for (const char* command : {"o ", "c ", "u ", "g ", "G ", "S 0 0 ", "s 1 1 ", "fd ", "hi ",
                                "irf ", "irs 0 ", "is   ", "rs "}) {
      EXPECT_EQ(server.reply(command + path), kAckHex) << command << path.substr(0, 200);
    }
  }
}

}  // namespace
}  // namespace odbs::tests
