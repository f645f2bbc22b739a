// SPDX-License-Identifier: BSD-3-Clause
// The catalogue cache file: its lines, when it is replayed, when it is made anew.
#include <zlib.h>

#include <chrono>
#include <filesystem>

#include "tests/results/result_fixture.h"

namespace odbs::tests {
namespace {

class Cache : public ResultTest {
 protected:
  Cache() {
    odb_Frame frame = step("Step-1").Frame(1, 0.5F, "first");
    nodalScalar(frame, "NT11");
    stress(frame);
  }

  std::string cache() const { return folder_.file("cache"); }

  // A listing with the cache named first.
  Records list(const std::string& head) {
    save();
    ask("o ");
    recordsOf(*server_, "T " + cache());
    return ask(head);
  }

  std::vector<std::string> lines() const {
    std::vector<std::string> result;
    gzFile file = gzopen(cache().c_str(), "rb");
    if (!file) return result;
    char buffer[1000];
    while (gzgets(file, buffer, sizeof buffer)) result.emplace_back(buffer);
    gzclose(file);
    return result;
  }

  // Replaces the cache by these lines, uncompressed, which zlib reads as they are.
  void writeLines(const std::vector<std::string>& all) const {
    std::string bytes;
    for (const std::string& line : all) bytes += line;
    writeFile(cache(), bytes);
  }

  bool exists(const char* suffix) const { return std::filesystem::exists(cache() + suffix); }
};

TEST_F(Cache, NodalEntriesAreFourteenLines) {
  list("fd ");
  std::vector<std::string> all = lines();
  ASSERT_EQ(20u, all.size());
  const port::FileStatus status = port::fileStatus(path_);
  EXPECT_EQ("1.0\r1.0\n", all[0]);
  EXPECT_EQ(path_ + "\n", all[1]);
  EXPECT_EQ(std::to_string(status.modificationTime) + "\n", all[2]);
  EXPECT_EQ(std::to_string(status.size) + "\n", all[3]);
  all.erase(all.begin() + 1, all.begin() + 4);
  EXPECT_EQ(
      (std::vector<std::string>{
          "1.0\r1.0\n", "A title\n", "-1\n", "1\n", "0.00000000000000000000E+00\n",
          "Step-1\x01"
          "about\n",
          "*STATIC\n", "NT11\n", "a scalar\n", "0\n", "0\n", "0\n", "5.00000000000000000000E-01\n",
          "0.00000000000000000000E+00\n", "0\n", "1\n", "first\n"}),
      all);
  EXPECT_FALSE(exists("_tmp"));
  EXPECT_FALSE(exists("_lock"));
}

TEST_F(Cache, ElementEntriesCountTheirLabels) {
  list("fS ");
  const std::vector<std::string> all = lines();
  ASSERT_EQ(30u, all.size());
  EXPECT_EQ("1.0\r1.0A\n", all[0]);
  EXPECT_EQ("6\n", all[12]);
  EXPECT_EQ("S11\n", all[13]);
  EXPECT_EQ((std::vector<std::string>{"0\n", "4\n", "20\n", "2\n", "0\n", "first\n"}),
            std::vector<std::string>(all.begin() + 24, all.end()));
}

TEST_F(Cache, ReplayedListingsAreTheSameBytes) {
  for (const char* head : {"fd ", "fs ", "fv ", "fD ", "fS ", "fV "}) {
    std::filesystem::remove(cache());
    const Records computed = list(head);
    ASSERT_GT(computed.size(), 2u) << head;
    // Another title in the file shows that what comes back was read from it.
    std::vector<std::string> all = lines();
    all[4] = "From the cache\n";
    writeLines(all);
    Records expected = computed;
    expected[0] = title("From the cache");
    EXPECT_EQ(expected, list(head)) << head;
  }
}

TEST_F(Cache, TextsWithLineBreaksShiftNothing) {
  odb_embedded::setTitle(*odb_, "two\nlines\r", "");
  const Records computed = list("fd ");
  EXPECT_EQ(title("two\nlines\r"), computed.at(0));
  EXPECT_EQ(computed, list("fd "));
}

TEST_F(Cache, AComputedListingConsumesThePathAReplayedOneKeepsIt) {
  list("fd ");
  std::filesystem::remove(cache());
  ask("fd ");
  EXPECT_FALSE(exists("")) << "the path was cleared";
  list("fd ");
  list("fd ");
  std::vector<std::string> all = lines();
  all[4] = "From the cache\n";
  writeLines(all);
  EXPECT_EQ(title("From the cache"), ask("fd ").at(0)) << "the path was kept";
}

TEST_F(Cache, EveryFrameCachesServeBothModesLastFrameOnesOnlyTheirOwn) {
  list("fd ");
  list("fD ");
  EXPECT_EQ("1.0\r1.0A\n", lines().at(0)) << "rebuilt";
  list("fd ");
  EXPECT_EQ("1.0\r1.0A\n", lines().at(0)) << "replayed";
}

TEST_F(Cache, StaleAndForeignFilesAreRebuilt) {
  const Records computed = list("fd ");
  const std::vector<std::string> good = lines();
  std::vector<std::vector<std::string>> bad(7, good);
  bad[0][0] = "1.0\n";
  bad[1][0] = "2.0\r1.0\n";
  bad[2][0] = "1.0\r1.1\n";
  bad[3][0] = "1.0\r\n";
  bad[4][2] = "12345\n";
  bad[5][3] = "1\n";
  bad[6] = {good[0], good[1], "12345\n"};
  for (const auto& all : bad) {
    writeLines(all);
    EXPECT_EQ(computed, list("fd ")) << all[0];
    EXPECT_EQ(good, lines()) << all[0];
  }
  std::vector<std::string> moved = good;
  moved[1] = "/elsewhere\n";
  writeLines(moved);
  list("fd ");
  EXPECT_EQ(moved, lines()) << "the path is not compared";
}

TEST_F(Cache, AReplayThatFailsAtTheFirstEntryRepeatsTheTitle) {
  const Records computed = list("fd ");
  std::vector<std::string> all = lines();
  all[6] = "1.0\n";
  writeLines(all);
  Records expected(computed.begin(), computed.begin() + 2);
  expected.insert(expected.end(), computed.begin(), computed.end());
  EXPECT_EQ(expected, list("fd "));
}

TEST_F(Cache, CutFilesEndTheListingEarly) {
  const Records computed = list("fd ");
  const std::vector<std::string> good = lines();
  const std::size_t nRecordsAfter[] = {0, 0, 0, 0, 0, 1, 2, 2, 2, 3, 4,
                                       4, 5, 5, 5, 5, 5, 5, 5, 5, 6};
  for (std::size_t n = 0; n <= good.size(); ++n) {
    writeLines(std::vector<std::string>(good.begin(), good.begin() + static_cast<long>(n)));
    const Records expected(computed.begin(),
                           computed.begin() + static_cast<long>(nRecordsAfter[n]));
    EXPECT_EQ(expected, list("fd ")) << n << " lines";
  }
}

// Lines of fields that come again are taken at once: whole, cut and unexpected ones are the same
// records.
TEST_F(Cache, FieldsThatComeAgainAreReplayedAsTheyWereComputed) {
  odb_Step& second = step("Step-2");
  for (int i = 1; i < 6; ++i) {
    odb_Frame frame = second.Frame(i, static_cast<float>(i), i == 5 ? "last" : "middle");
    if (i != 3) stress(frame);
    if (i != 4) nodalScalar(frame, i == 5 ? "NT12" : "NT11");
  }
  for (const std::string head : {"fS ", "fD "}) {
    std::filesystem::remove(cache());
    const Records computed = list(head);
    const std::vector<std::string> good = lines();
    std::size_t nBefore = 0;
    for (std::size_t n = 6; n <= good.size(); ++n) {
      writeLines({good.begin(), good.begin() + static_cast<long>(n)});
      const Records replayed = list(head);
      ASSERT_GE(computed.size(), replayed.size());
      EXPECT_TRUE(std::equal(replayed.begin(), replayed.end(), computed.begin())) << n << " lines";
      nBefore = replayed.size();
    }
    EXPECT_EQ(computed.size(), nBefore);
  }
}

TEST_F(Cache, DamagedCompressedFilesNeverHarmTheServer) {
  list("fs ");
  const std::string good = readFile(cache());
  unsigned random = 12345;
  for (int round = 0; round < 60; ++round) {
    std::string bytes = good;
    for (int flips = 0; flips < 3; ++flips) {
      random = random * 1103515245u + 12345u;
      bytes[(random >> 8) % bytes.size()] = static_cast<char>(random >> 24);
    }
    if (round % 3 == 0) bytes.resize(bytes.size() * static_cast<std::size_t>(round) / 60);
    writeFile(cache(), bytes);
    list("fs ");
  }
  std::filesystem::remove(cache());
  EXPECT_EQ(7u, list("fs ").size());
}

TEST_F(Cache, ALockElsewhereMeansListingWithoutACache) {
  save();
  writeFile(cache() + "_lock", "");
  EXPECT_EQ(6u, list("fd ").size());
  EXPECT_FALSE(exists(""));
  EXPECT_FALSE(exists("_tmp"));
  EXPECT_TRUE(exists("_lock"));
}

TEST_F(Cache, APathThatCannotBeWrittenMeansListingWithoutACache) {
  save();
  ask("o ");
  recordsOf(*server_, "T " + folder_.file("no/such/folder/cache"));
  EXPECT_EQ(6u, ask("fd ").size());
  recordsOf(*server_, "T ");
  EXPECT_EQ(6u, ask("fd ").size());
}

TEST_F(Cache, AFolderInItsPlaceMeansListingWithoutACache) {
  save();
  std::filesystem::create_directory(cache());
  EXPECT_EQ(6u, list("fd ").size());
  EXPECT_FALSE(exists("_tmp"));
  EXPECT_FALSE(exists("_lock"));
}

#if defined(__linux__)
TEST_F(Cache, AFileThatCouldNotBeWrittenWholeIsNotKept) {
  save();
  std::filesystem::create_symlink("/dev/full", cache() + "_tmp");
  EXPECT_EQ(6u, list("fd ").size());
  EXPECT_EQ(std::filesystem::file_type::not_found, std::filesystem::symlink_status(cache()).type());
  EXPECT_FALSE(exists("_tmp"));
}
#endif

TEST_F(Cache, AChangedDatabaseMakesTheCacheStale) {
  list("fd ");
  const std::vector<std::string> before = lines();
  server_.reset();
  using namespace std::chrono_literals;
  std::filesystem::last_write_time(path_, std::filesystem::last_write_time(path_) + 10s);
  list("fd ");
  EXPECT_NE(before.at(2), lines().at(2));
}

}  // namespace
}  // namespace odbs::tests
