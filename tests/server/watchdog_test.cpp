// SPDX-License-Identifier: BSD-3-Clause
// The server ends with its parent: with status 0, within a second, with the companions of the
// catalogue cache removed, whatever it is doing.
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "tests/support/databases.h"
#include "tests/support/server_process.h"

namespace odbs::tests {
namespace {

constexpr int kOneSecondMs = 1000;
constexpr int kKills = 12;

// A server that watches a process of its own. This test holds the pipes, so that the server learns
// of its parent's end through the watchdog alone.
class Watched : public testing::Test {
 protected:
  void makeCompanions() {
    server.send("T " + folder.file("cache"));
    server.read(3);
    writeFile(folder.file("cache_tmp"), "x");
    writeFile(folder.file("cache_lock"), "");
    writeFile(folder.file("cache"), "kept");
  }
  bool exists(const std::string& name) { return std::filesystem::exists(folder.file(name)); }
  void expectClean() {
    EXPECT_FALSE(exists("cache_tmp"));
    EXPECT_FALSE(exists("cache_lock"));
    EXPECT_TRUE(exists("cache"));
  }

  TemporaryFolder folder;
  IdleParent parent;
  ServerProcess server{parent.id()};
};

TEST_F(Watched, EndsWhileItWaitsForACommand) {
  makeCompanions();
  parent.kill();
  EXPECT_EQ(server.wait(kOneSecondMs), 0);
  expectClean();
}

TEST_F(Watched, EndsWhileItIsBlockedInAWrite) {
  makeCompanions();
  server.send("M 1000000 40950");
  server.read(100000);  // it is at work
  port::sleepMs(100);   // and the pipe is full by now
  parent.kill();
  EXPECT_EQ(server.wait(kOneSecondMs), 0);
  expectClean();
}

TEST_F(Watched, EndsWithoutTouchingFilesWhenNoCacheIsNamed) {
  writeFile(folder.file("_tmp"), "kept");
  parent.kill();
  EXPECT_EQ(server.wait(kOneSecondMs), 0);
  EXPECT_TRUE(exists("_tmp"));
}

TEST(Watchdog, EndsTheServerAtAnyMomentOfAnyCommand) {
  std::mt19937 random(20240607);
  const char* const work[] = {"M 1000000 40950", "m 100000000 2000", "m 100000000 0"};
  for (int i = 0; i < kKills; ++i) {
    TemporaryFolder folder;
    IdleParent parent;
    ServerProcess server(parent.id());
    server.send("T " + folder.file("cache"));
    server.read(3);
    writeFile(folder.file("cache_tmp"), "x");
    writeFile(folder.file("cache_lock"), "x");
    // Paths change back and forth while the parent dies.
    std::string lines;
    for (int k = 0; k < 300; ++k) lines += "T " + folder.file("cache") + "\n";
    server.sendBytes(lines + work[i % 3] + "\n");
    port::sleepMs(static_cast<int>(random() % 20));
    parent.kill();
    EXPECT_EQ(server.wait(kOneSecondMs), 0) << "round " << i;
    EXPECT_FALSE(std::filesystem::exists(folder.file("cache_tmp"))) << "round " << i;
    EXPECT_FALSE(std::filesystem::exists(folder.file("cache_lock"))) << "round " << i;
  }
}

// A large model, at random moments of its opening, reading and sending: the server may be blocked
// in a write, or in the middle of the database library.
TEST(Watchdog, EndsTheServerAtAnyMomentOfALongModelStream) {
  std::mt19937 random(20240608);
  TemporaryFolder folder;
  makeNodesDatabase(folder.file("long.odb"), 200000);
  for (int i = 0; i < kKills; ++i) {
    IdleParent parent;
    ServerProcess server(parent.id());
    writeFile(folder.file("cache_tmp"), "x");
    writeFile(folder.file("cache_lock"), "x");
    server.send("T " + folder.file("cache"));
    server.read(3);
    for (int k = 0; k < 5; ++k) {
      server.send("g " + folder.file("long.odb"));
      server.send("c " + folder.file("long.odb"));
    }
    // Half of the time the answers are taken, so that the server is at work, not blocked.
    if (i % 2) server.read(random() % 4000000, 200);
    port::sleepMs(static_cast<int>(random() % 15));
    parent.kill();
    EXPECT_EQ(server.wait(kOneSecondMs), 0) << "round " << i;
    EXPECT_FALSE(std::filesystem::exists(folder.file("cache_tmp"))) << "round " << i;
    EXPECT_FALSE(std::filesystem::exists(folder.file("cache_lock"))) << "round " << i;
  }
}

// A cache that is really being written: the listing is computed, or waits for its reader with the
// stream open.
TEST(Watchdog, EndsTheServerAtAnyMomentOfWritingACache) {
  std::mt19937 random(20240609);
  TemporaryFolder folder;
  const std::string database = folder.file("long.odb");
  makeFramesDatabase(database, 4000);
  bool wasWriting = false;
  for (int i = 0; i < kKills; ++i) {
    const std::string cache = folder.file("cache" + std::to_string(i));
    IdleParent parent;
    ServerProcess server(parent.id());
    server.send("T " + cache);
    server.send("fD " + database);
    server.read(i % 2 ? 50000 + random() % 200000 : random() % 50, 2000);
    wasWriting = wasWriting || std::filesystem::exists(cache + "_lock");
    parent.kill();
    EXPECT_EQ(server.wait(kOneSecondMs), 0) << "round " << i;
    EXPECT_FALSE(std::filesystem::exists(cache + "_tmp")) << "round " << i;
    EXPECT_FALSE(std::filesystem::exists(cache + "_lock")) << "round " << i;
    EXPECT_FALSE(std::filesystem::exists(cache)) << "half a cache, round " << i;
  }
  EXPECT_TRUE(wasWriting);
}

// Here the parent owns the pipes as well: they close with it, so that the server's main thread
// meets the end of its input while the watchdog is at work.
TEST(Watchdog, CleansUpAlsoWhenTheMainThreadMeetsTheEndOfInput) {
  for (int i = 0; i < kKills / 2; ++i) {
    TemporaryFolder folder;
    writeFile(folder.file("cache_tmp"), "x");
    writeFile(folder.file("cache_lock"), "x");
    std::vector<std::string> arguments{"serve", "{out}", siblingProgram("odb_server"),
                                       "T " + folder.file("cache")};
    if (i % 2) arguments.push_back("m 100000000 1000");  // blocked in a write, else in a read
    Process parent(siblingProgram("test_parent"), arguments);
    std::string id;
    for (std::string c; (c = parent.read(1)) != "\n" && !c.empty();) id += c;
    const port::WatchedProcess server = port::openProcess(std::stoi(id));
    port::sleepMs(50);
    parent.kill();
    parent.wait();
    int waited = 0;
    while (!port::hasEnded(server) && waited < kOneSecondMs) {
      port::sleepMs(10);
      waited += 10;
    }
    EXPECT_LT(waited, kOneSecondMs) << "an orphan is left, round " << i;
    EXPECT_FALSE(std::filesystem::exists(folder.file("cache_tmp"))) << "round " << i;
    EXPECT_FALSE(std::filesystem::exists(folder.file("cache_lock"))) << "round " << i;
  }
}

// The clean-up strikes while the main thread opens, writes, closes and deletes companions.
TEST(CleanUp, LeavesNoCompanionWhateverTheMainThreadDoes) {
  for (int i = 0; i < kKills; ++i) {
    TemporaryFolder folder;
    Process probe(siblingProgram("cleanup_probe"), {folder.file("cache"), std::to_string(i % 7)});
    EXPECT_EQ(probe.wait(), 0) << "round " << i;
    EXPECT_TRUE(std::filesystem::is_empty(folder.path())) << "round " << i;
  }
}

// While the main thread waits for a command its databases are closed; while it is at work they are
// not touched. A line that comes during the closing is not begun.
TEST(CleanUp, ClosesTheDatabasesOfAMainThreadThatWaits) {
  TemporaryFolder folder;
  makeDatabase(folder.file("a.odb"));
  Process idle(siblingProgram("cleanup_probe"), {folder.file("a.odb"), "100", "{in}"});
  port::sleepMs(250);
  idle.send("too late");
  Process busy(siblingProgram("cleanup_probe"), {folder.file("a.odb"), "100", "{in}"});
  busy.send("work");
  EXPECT_EQ(idle.wait(), 10);
  EXPECT_EQ(busy.wait(), 21);
}

}  // namespace
}  // namespace odbs::tests
