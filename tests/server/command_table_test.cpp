// SPDX-License-Identifier: BSD-3-Clause
// Each row of the command table against a real server: what it answers, byte by byte, and where it
// stays silent. And what the commands leave in the server's state, seen from inside.
#include "server/command_table.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "base/text.h"
#include "server/core/cache_guard.h"
#include "server/core/server_state.h"
#include "server/dispatcher.h"
#include "tests/support/output_file.h"
#include "tests/support/server_process.h"

namespace odbs {
namespace {

using tests::kAckHex;
using tests::ServerProcess;

// Short lines, arguments that do not scan, and unknown commands. Paths that lead nowhere are tried
// with the registry's commands.
TEST(CommandReplies, AreTheAcknowledgementAlone) {
  ServerProcess server;
  const std::string lines =
      "G|g|S|s 0|T /nowhere/cache|a 5|a|a -3|b 1 2 3|b|c|fn /n|fN /n|fx /n|f|hr 1 /n|hr "
      "1|hr|h|hx|irf|"
      "irs|ir|irx|is|i|ix|l|o|rl 1 2,/n|rl 1 2 /n|rL|rS /x|rm /x|rv /x|rt /x|rb /x|rd /x|rD /x|"
      "rn S.INNER:S.OUTER:/x|rn S:/x|rn|rg 1:2:/x|rg|rx /x|r|u|v 1|v|v -99999999999|x||A|w|~|\x7f|"
      "\xff| p|P|B|HI";
  for (const std::string_view part : split(lines, '|')) {
    const std::string line(part);
    EXPECT_EQ(server.reply(line), kAckHex) << "\"" << line << "\"";
  }
}

TEST(CommandReplies, AreAbsentForTheSilentCommands) {
  ServerProcess server;
  for (const char* line :
       {"C", "C x", "D 1 2 0 S", "D", "d 1 2 1 MATRIX^Sqq", "d x", "ho 2", "ho", "ho -1",
        "ho 99999999999999", "hb NAME", "hb", "irc 1 2 NAME", "irc", "irc 9 0 N", "irc 0 0 N"}) {
    EXPECT_EQ(server.reply(line), "") << "\"" << line << "\"";
  }
}

TEST(CommandReplies, APingGivesTheServersProcessId) {
  ServerProcess server;
  server.send("p");
  EXPECT_EQ(tests::hexOf(server.read(10)), tests::hexOf(server.pingReply()));
  EXPECT_NE(server.id(), port::currentProcessId());
}

TEST(CommandReplies, QuittingSendsNothingAndEndsWithStatus0) {
  ServerProcess server;
  server.send("q");
  EXPECT_EQ(server.readToEnd(), "");
  EXPECT_EQ(server.wait(), 0);
}

// State is looked at in this process; what little is sent goes to a file nobody reads.
class ServerState : public testing::Test {
 protected:
  ServerState() { serverState = {}; }
  ~ServerState() override {
    serverState = {};
    clearCachePath();
  }
  void run(const std::string& line) { runCommand(line, output_.fd()); }
  std::vector<int> labels() const {
    const LabelList& list = serverState.labelList;
    return {list.items.get(), list.items.get() + list.count};
  }
  tests::OutputFile output_;
};

TEST_F(ServerState, KeepsTheSelectionWithItsPositionRemapped) {
  const Selection& selection = serverState.selection;
  const auto expect = [&](const std::string& line, int step, int frame, int position,
                          const std::string& name) {
    run(line);
    EXPECT_EQ(selection.stepNumber, step) << line;
    EXPECT_EQ(selection.frameIndex, frame) << line;
    EXPECT_EQ(selection.position, position) << line;
    EXPECT_EQ(selection.variableName, name) << line;
    EXPECT_EQ(selection.flag, line[0] == 'D') << line;
  };
  expect("D 1 2 0 S", 1, 2, 4, "S");
  expect("d 1 2 1 MATRIX^Sqq", 1, 2, 2, "MATRIX Sqq");
  expect("d  1 -2\t+2 S rest", 1, -2, 3, "S");
  for (const int kept : {3, 4, -1, 99})
    expect("D 1 1 " + std::to_string(kept) + " S", 1, 1, kept, "S");
  expect("D 1 1 1 " + std::string(300, 'V'), 1, 1, 2, std::string(199, 'V'));
  expect("D", 0, 0, 4, "");
  expect("d 7 x 8 S", 7, 0, 4, "");
  expect("d 12abc", 12, 0, 4, "");
  expect("d - 5", 0, 0, 4, "");
  expect("d 99999999999999999999 -99999999999999999999 3 S", INT_MAX, INT_MIN, 3, "S");
}

TEST_F(ServerState, FillsTheLabelListUpToItsCapacity) {
  run("b 1");
  EXPECT_EQ(serverState.labelList.count, 0);
  run("a 3");
  run("b 5  6 7 8");
  EXPECT_EQ(labels(), (std::vector<int>{5, 6, 7}));
  run("a 4");
  EXPECT_EQ(serverState.labelList.count, 0);
  run("b 1 x");
  run("b -2\t9");
  EXPECT_EQ(labels(), (std::vector<int>{1, 0, -2}));
  run("a 0");
  EXPECT_EQ(serverState.labelList.items, nullptr);
  EXPECT_EQ(serverState.labelList.capacity, 0);
}

TEST_F(ServerState, KeepsHistoryNamesWithinTheCapacity) {
  const HistoryNames& table = serverState.historyNames;
  run("hb early");
  EXPECT_TRUE(table.names.empty());
  run("ho 2");
  run("hb Node PART-1-1.1");
  run("hb B");
  run("hb C");
  EXPECT_EQ(table.names, (std::vector<std::string>{"Node PART-1-1.1", "B"}));
  run("ho 1");
  EXPECT_TRUE(table.names.empty());
  EXPECT_EQ(table.capacity, 1);
}

TEST_F(ServerState, KeepsRegionRequestsOfKinds1To8) {
  run("irc1 2 SET A B");
  run("irc 8 -4 X");
  run("irc 0 1 X");
  run("irc 9 1 X");
  run("irc -1 1 X");
  run("irc 1 2");
  run("irc 1 x NAME");
  run("irc");
  ASSERT_EQ(serverState.regionRequests.size(), 2u);
  EXPECT_EQ(serverState.regionRequests[0].kind, 1);
  EXPECT_EQ(serverState.regionRequests[0].value, 2);
  EXPECT_EQ(serverState.regionRequests[0].name, "SET A B");
  EXPECT_EQ(serverState.regionRequests[1].kind, 8);
  EXPECT_EQ(serverState.regionRequests[1].value, -4);
}

TEST_F(ServerState, StartsARegionNameWhereItsFirstWordIsFirstFound) {
  run("irc 2 1 1 layers");
  ASSERT_EQ(serverState.regionRequests.size(), 1u);
  EXPECT_EQ(serverState.regionRequests[0].name, "1 1 layers");
}

TEST_F(ServerState, KeepsTheRegionRequestsOfAFailedCommand) {
  run("irc 1 2 N");
  run("irf /nowhere.odb");
  EXPECT_EQ(serverState.regionRequests.size(), 1u);
}

TEST_F(ServerState, KeepsTheCachePath) {
  EXPECT_EQ(cachePath(), nullptr);
  run("T /some where/cache");
  ASSERT_NE(cachePath(), nullptr);
  EXPECT_EQ(*cachePath(), "/some where/cache");
  run("T");
  ASSERT_NE(cachePath(), nullptr);
  EXPECT_EQ(*cachePath(), "");
}

TEST_F(ServerState, FreesTheModeStresses) {
  serverState.modeStress.blocks = {{1, 2}, {3}};
  run("C");
  EXPECT_TRUE(serverState.modeStress.blocks.empty());
}

TEST_F(ServerState, DoesNotSetTheCatalogueModeWhenTheDatabaseDoesNotOpen) {
  run("fD /nowhere.odb");
  EXPECT_EQ(serverState.catalogueMode, CatalogueMode::kLastFrame);
}

}  // namespace
}  // namespace odbs
