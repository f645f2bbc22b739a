// SPDX-License-Identifier: BSD-3-Clause
// The catalogue cache file: its lines, when it is replayed, when it is made anew, and what may lie
// at its names.
#include "catalogue/cache_file.h"

#include <zlib.h>

#include <cstdlib>
#include <filesystem>
#include <functional>

#include "tests/results/result_fixture.h"
#include "tests/support/databases.h"
#include "tests/support/output_file.h"

namespace odbs::tests {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

class Cache : public ResultTest {
 protected:
  Cache() {
    odb_Frame frame = step("Step-1").Frame(1, 0.5F, "first");
    nodalScalar(frame, "NT11");
    stress(frame);
  }

  // A second step, whose fields come again, are missing and have other texts.
  void addFrames(int n) {
    odb_Step& second = step("Step-2");
    for (int i = 1; i <= n; ++i) {
      odb_Frame frame = second.Frame(i, static_cast<float>(i), i % 5 == 0 ? "fifth" : "other");
      if (i % 3 != 0) stress(frame);
      if (i % 4 != 0) nodalScalar(frame, i % 5 == 0 ? "NT12" : "NT11");
    }
  }

  std::string cache(const char* suffix = "") const { return folder_.file("cache") + suffix; }
  bool exists(const char* suffix) const { return fs::exists(fs::symlink_status(cache(suffix))); }

  // A listing with the cache named first.
  Records list(const std::string& head) {
    save();
    ask("o ");
    recordsOf(*server_, "T " + cache());
    return ask(head);
  }

  Lines lines() const {
    Lines result;
    gzFile file = gzopen(cache().c_str(), "rb");
    if (!file) return result;
    char buffer[1000];
    while (gzgets(file, buffer, sizeof buffer)) result.emplace_back(buffer);
    gzclose(file);
    return result;
  }

  std::string text() const {
    std::string all;
    for (const std::string& line : lines()) all += line;
    return all;
  }

  // Replaces the cache by `n` of these lines, uncompressed, which zlib reads as they are.
  void writeLines(const Lines& all, std::size_t n = SIZE_MAX) const {
    std::string bytes;
    for (std::size_t i = 0; i < std::min(n, all.size()); ++i) bytes += all[i];
    writeFile(cache(), bytes);
  }

  // What replayCache answers to a last-frame listing at nodes, and the bytes it sends.
  Replay replay(std::string& bytes) const {
    OutputFile out;
    const Replay answer = replayCache(cache(), {path_, port::fileStatus(path_), false},
                                      CatalogueListing::kNodal, out.fd());
    bytes = out.bytes();
    return answer;
  }
};

TEST_F(Cache, HoldsALineForEachTextAndNumberOfAnEntry) {
  list("fd ");
  const port::FileStatus status = port::fileStatus(path_);
  const std::string half = "5.00000000000000000000E-01\n", zero = "0.00000000000000000000E+00\n";
  const std::string key = path_ + "\n" + std::to_string(status.modificationTime) + "\n" +
                          std::to_string(status.size) + "\n";
  const std::string step = "A title\n-1\n1\n" + zero + "Step-1\x01" + "about\n*STATIC\n";
  EXPECT_EQ("1.0\r1.0\n" + key + step + "NT11\na scalar\n0\n0\n0\n" + half + zero + "0\n1\nfirst\n",
            text());
  list("fS ");
  EXPECT_EQ("1.0\r1.0A\n" + key + step + "S\nStress\n6\nS11\nS22\nS33\nS12\nS13\nS23\n0\n0\n0\n" +
                half + zero + "0\n4\n20\n2\n0\nfirst\n",
            text());
  EXPECT_FALSE(exists("_tmp") || exists("_lock"));
}

TEST_F(Cache, ReplayedListingsAreTheSameBytes) {
  addFrames(5);
  for (const char* head : {"fd ", "fs ", "fv ", "fD ", "fS ", "fV "}) {
    fs::remove(cache());
    const Records computed = list(head);
    ASSERT_GT(computed.size(), 2u) << head;
    // Another title in the file shows that what comes back was read from it.
    Lines all = lines();
    all[4] = "From the cache\n";
    writeLines(all);
    Records expected = computed;
    expected[0] = title("From the cache");
    EXPECT_EQ(expected, list(head)) << head;
    EXPECT_EQ(expected, ask(head)) << head << "a replayed listing keeps the path";
  }
  fs::remove(cache());
  ask("fd ");
  fs::remove(cache());
  ask("fd ");
  EXPECT_FALSE(exists("")) << "a computed listing forgets the path";
}

TEST_F(Cache, TextsOfAnyBytesAndLengthComeBackAsTheyAre) {
  for (const std::string& text :
       {std::string("two\nlines"), std::string("\r"), std::string("\x0B and \x0C"),
        std::string(9998, 'x'), std::string(9999, 'x')}) {
    odb_embedded::setTitle(*odb_, text.c_str(), "");
    const Records computed = list("fd ");
    EXPECT_EQ(title(text), computed.at(0));
    EXPECT_EQ(computed, list("fd "));
    EXPECT_FALSE(exists("_tmp") || exists("_lock"));
    server_.reset();
    odb_ = &openOdb(path_.c_str());
  }
}

TEST_F(Cache, StaleAndForeignFilesAreRebuilt) {
  const Records computed = list("fd ");
  const Lines good = lines();
  std::vector<Lines> bad(8, good);
  bad[0][0] = "1.0\n";
  bad[1][0] = "2.0\r1.0\n";
  bad[2][0] = "1.0\r1.1\n";
  bad[3][0] = "1.0\r\n";
  bad[4][2] = "12345\n";
  bad[5][3] = "1\n";
  bad[6] = {good[0], good[1], "12345\n"};
  bad[7][6] = "1.0\n";  // seen after title and analysis kind have been sent
  for (const Lines& all : bad) {
    writeLines(all);
    Records expected = computed;
    if (&all == &bad[7]) expected.insert(expected.begin(), computed.begin(), computed.begin() + 2);
    EXPECT_EQ(expected, list("fd ")) << all[0];
    EXPECT_EQ(good, lines()) << all[0];
  }
  for (const auto& [head, mark] : {std::pair("fD ", "1.0\r1.0A\n"), {"fd ", "1.0\r1.0A\n"}}) {
    list(head);
    EXPECT_EQ(mark, lines().at(0)) << "a file of every frame serves both forms";
  }
  Lines moved = good;
  moved[1] = "/elsewhere\n";
  writeLines(moved);
  list("fd ");
  EXPECT_EQ(moved, lines()) << "the path is not compared";
  server_.reset();
  shiftModificationTime(path_, 10);
  list("fd ");
  EXPECT_NE(good.at(2), lines().at(2));
}

TEST_F(Cache, AFileCutBetweenLinesEndsTheListingWithItsLastWholeRecord) {
  addFrames(5);
  for (const std::string head : {"fS ", "fD "}) {
    fs::remove(cache());
    const Records computed = list(head);
    const Lines good = lines();
    for (std::size_t n = 0; n <= good.size(); ++n) {
      writeLines(good, n);
      const Records replayed = list(head);
      ASSERT_GE(computed.size(), replayed.size());
      EXPECT_TRUE(std::equal(replayed.begin(), replayed.end(), computed.begin())) << n << " lines";
      const std::size_t entry = n < 6 ? 0 : (n - 6) / 14, line = n < 6 ? 0 : (n - 6) % 14;
      const std::size_t nRecords =
          (n > 4) + (n > 5) + 4 * entry + (line > 2) + (line > 3) + (line > 5);
      EXPECT_TRUE(head == "fS " || nRecords == replayed.size()) << n << " lines";
    }
  }
}

TEST_F(Cache, DamagedFilesAreRebuiltAndCutOnesGiveABeginning) {
  addFrames(40);
  list("fD ");
  const std::string good = readFile(cache());
  std::string whole, bytes;
  ASSERT_EQ(Replay::kServed, replay(whole));
  for (std::size_t bit = 0; bit < 8 * good.size(); bit += 3) {
    std::string flipped = good;
    flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ 1 << bit % 8);
    writeFile(cache(), flipped);
    EXPECT_TRUE(replay(bytes) != Replay::kServed || bytes == whole) << "bit " << bit;
  }
  for (std::size_t n = 2; n < good.size(); n += 7) {
    writeFile(cache(), good.substr(0, n));
    ASSERT_EQ(Replay::kServed, replay(bytes)) << n;
    EXPECT_EQ(whole.substr(0, bytes.size()), bytes) << n;
    EXPECT_TRUE(exists(""));
  }
  EXPECT_GT(bytes.size(), whole.size() / 2);
  writeFile(cache(), good.substr(0, 100) + std::string(100, '\x55') + good.substr(200));
  EXPECT_EQ(Replay::kStale, replay(bytes));
}

// Whatever lies at one of the three names: the listing is whole, the thing stays as it was, nothing
// else is left.
TEST_F(Cache, WhatIsInTheWayMeansListingWithoutACache) {
  save();
  const std::string other = folder_.write("other", "another's"), none = folder_.file("none");
  std::vector<std::function<void(const std::string&)>> kinds{
      [](const std::string& at) { fs::create_directory(at); }};
#if defined(__linux__)
  kinds.insert(kinds.end(), {[&](const std::string& at) { fs::create_symlink(other, at); },
                             [&](const std::string& at) { fs::create_symlink(none, at); },
                             [](const std::string& at) {
                               ASSERT_EQ(0, std::system(("mkfifo " + at).c_str()));
                             }});
#endif
  for (const char* suffix : {"", "_tmp", "_lock"}) {
    for (const auto& make : kinds) {
      const std::string at = cache(suffix);
      make(at);
      const fs::file_type type = fs::symlink_status(at).type();
      EXPECT_EQ(6u, list("fd ").size());
      EXPECT_EQ(type, fs::symlink_status(at).type()) << at;
      for (const char* each : {"", "_tmp", "_lock"})
        EXPECT_EQ(at == cache(each), exists(each)) << at;
      EXPECT_EQ("another's", readFile(other));
      EXPECT_FALSE(fs::exists(none));
      fs::remove(at);
    }
  }
  writeFile(cache("_lock"), "");
  EXPECT_EQ(6u, list("fd ").size());
  EXPECT_TRUE(exists("_lock") && !exists("_tmp") && !exists(""));
  for (const std::string& path : {folder_.file("no/such/folder/cache"), std::string()}) {
    recordsOf(*server_, "T " + path);
    EXPECT_EQ(6u, ask("fd ").size());
  }
  fs::remove(cache("_lock"));
  writeFile(cache("_tmp"), std::string(100000, 'x'));  // left by a server that was killed
  list("fd ");
  EXPECT_EQ(20u, lines().size());
  EXPECT_FALSE(exists("_tmp"));
}

// Two databases with one cache: each server finds the other's file stale and writes its own.
TEST_F(Cache, TwoServersNeverLeaveHalfAFileUnderItsName) {
  addFrames(30);
  list("fD ");
  const std::size_t nLines = lines().size();
  const std::string other = folder_.file("other.odb");
  fs::copy_file(path_, other);
  shiftModificationTime(other, 10);
  ServerProcess second;
  std::string reply;
  recordsOf(second, "fD " + other, &reply);
  constexpr int kRounds = 500;
  for (int round = 0; round < kRounds; ++round) {
    server_->send("T " + cache() + "\nfD " + path_);
    second.send("T " + cache() + "\nfD " + other);
  }
  int nSeen = 0;
  for (int round = 0; round < 2 * kRounds; ++round) {
    ServerProcess& answering = round % 2 ? second : *server_;
    ASSERT_EQ(bytesOf(kAckHex) + reply, answering.read(3 + reply.size())) << round;
    std::error_code gone;
    ASSERT_TRUE(fs::file_size(cache(), gone) > 0 || gone) << round;
    const Lines now = lines();
    ASSERT_TRUE(now.empty() || now.size() == nLines) << round;
    nSeen += !now.empty();
  }
  EXPECT_GT(nSeen, 0);
}

#if defined(__linux__)
TEST_F(Cache, AFullDiskLeavesNoFile) {
  save();
  Process server("/bin/sh", {"-c", "trap '' XFSZ; ulimit -f 0; exec \"$0\" \"$@\"",
                             siblingProgram("odb_server"), std::to_string(port::currentProcessId()),
                             "{in}", "{out}"});
  recordsOf(server, "T " + cache());
  EXPECT_EQ(6u, recordsOf(server, "fd " + path_).size());
  for (const char* suffix : {"", "_tmp", "_lock"}) EXPECT_FALSE(exists(suffix)) << suffix;
}
#endif

}  // namespace
}  // namespace odbs::tests
