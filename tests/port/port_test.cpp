// SPDX-License-Identifier: BSD-3-Clause
// The seam to the operating system, on real files and real child processes.
#include "port/port.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "tests/support/temporary_folder.h"

namespace odbs::port {
namespace {

#ifdef _WIN32
const std::string kChild = std::string(ODBS_BIN_DIR) + "/port_child.exe";
#else
const std::string kChild = std::string(ODBS_BIN_DIR) + "/port_child";
#endif

class Files : public ::testing::Test {
 protected:
  std::string path(const std::string& name) const { return folder_.file(name); }
  void write(const std::string& name, const std::string& text) const {
    tests::writeFile(path(name), text);
  }
  std::string read(const std::string& name) const { return tests::readFile(path(name)); }

  tests::TemporaryFolder folder_;
};

TEST_F(Files, StatusTellsSizeKindAndAbsence) {
  write("a", "12345");
  const FileStatus file = fileStatus(path("a"));
  EXPECT_TRUE(file.exists);
  EXPECT_TRUE(file.isRegular);
  EXPECT_EQ(5, file.size);
  EXPECT_GT(file.modificationTime, 0);
  EXPECT_FALSE(fileStatus(folder_.path().string()).isRegular);
  const FileStatus absent = fileStatus(path("none"));
  EXPECT_FALSE(absent.exists);
  EXPECT_EQ(0, absent.modificationTime);
  EXPECT_EQ(0, absent.size);
}

TEST_F(Files, ReplaceOverwritesAndReportsWhatIsMissing) {
  write("new", "new");
  write("old", "old");
  EXPECT_EQ(0, replaceFile(path("new"), path("old")));
  EXPECT_EQ("new", read("old"));
  EXPECT_FALSE(fileStatus(path("new")).exists);
  EXPECT_EQ(ENOENT, renameFile(path("none"), path("other")));
  EXPECT_NE(0, replaceFile(path("none"), path("old")));
  EXPECT_EQ("new", read("old"));
}

TEST_F(Files, OnlyOneCreatesExclusively) {
  EXPECT_TRUE(createExclusively(path("lock")));
  EXPECT_FALSE(createExclusively(path("lock")));
  EXPECT_TRUE(removeFile(path("lock")));
  EXPECT_FALSE(removeFile(path("lock")));
  EXPECT_TRUE(createExclusively(path("lock")));
}

TEST_F(Files, ANewFileIsNeverOneThatIsThere) {
  write("a", "12345");
  EXPECT_LT(openNew(path("a")), 0);
  EXPECT_EQ(EEXIST, errno);
#ifndef _WIN32
  std::filesystem::create_symlink(path("nowhere"), path("link"));
  EXPECT_LT(openNew(path("link")), 0);
  EXPECT_FALSE(fileStatus(path("nowhere")).exists);
#endif
  EXPECT_LT(openExisting(folder_.path().string(), false), 0);
  const int fd = openNew(path("b"));
  ASSERT_GE(fd, 0);
  char bytes[4] = "xyz";
  EXPECT_TRUE(writeAt(fd, 2, "ab", 2));
  EXPECT_EQ(3, readAt(fd, 1, bytes, 4));
  EXPECT_EQ(std::string("\0ab", 3), std::string(bytes, 3));
  EXPECT_TRUE(setFileSize(fd, 3));
  EXPECT_TRUE(syncDescriptor(fd));
  EXPECT_EQ(3, descriptorStatus(fd).size);
  closeDescriptor(fd);
  { const UnfinishedFile removed(path("b")); }
  EXPECT_FALSE(fileStatus(path("b")).exists);
}

TEST_F(Files, AClaimedFileIsRemovedOrRenamedByItsWriterAlone) {
  write("left behind", "bytes");
  EXPECT_TRUE(removeUnclaimed(path("left behind")));
  EXPECT_FALSE(removeUnclaimed(path("left behind")));
  EXPECT_TRUE(isTakenByOther(folder_.path().string()));
  const int fd = createClaimed(path("a"));
  ASSERT_GE(fd, 0);
  EXPECT_FALSE(removeUnclaimed(path("a")));
  EXPECT_EQ(0, renameClaimed(fd, path("a"), path("b")));
  EXPECT_TRUE(fileStatus(path("b")).exists);
#if defined(__linux__)  // elsewhere a file that is open cannot be deleted
  const int other = createClaimed(path("c"));
  removeFile(path("c"));
  write("c", "of another");
  EXPECT_EQ(ENOENT, renameClaimed(other, path("c"), path("b")));
  EXPECT_EQ("of another", read("c"));
#endif
}

TEST(Processes, AChildGetsItsDescriptorsAndArguments) {
  Child child = startWithPipes(kChild, {"{in}", "{out}", "args", "a b", "", "q\"x\\", "c\\d e\\"});
  std::string all;
  char buffer[256];
  for (long n; (n = readOnce(child.fromChild, buffer, sizeof buffer)) > 0;) {
    all.append(buffer, static_cast<std::size_t>(n));
  }
  EXPECT_EQ("a b\n\nq\"x\\\nc\\d e\\\n", all);
  EXPECT_EQ(0, waitForChild(child, 20000));
  EXPECT_EQ(-1, waitForChild(child, 0));
}

TEST(Processes, BytesPassUnchangedInBothDirections) {
  Child child = startWithPipes(kChild, {"{in}", "{out}", "echo"});
  EXPECT_FALSE(waitReadable(child.fromChild, 50));
  const std::string sent("\r\n\x1A\0z", 5);
  ASSERT_TRUE(writeAll(child.toChild, sent.data(), sent.size()));
  std::string back(5, ' ');
  for (std::size_t got = 0; got < 5;) {
    ASSERT_TRUE(waitReadable(child.fromChild, 20000));
    const long n = readOnce(child.fromChild, &back[got], 5 - got);
    ASSERT_GT(n, 0);
    got += static_cast<std::size_t>(n);
  }
  EXPECT_EQ(sent, back);
  closeDescriptor(child.toChild);
  EXPECT_EQ(0, waitForChild(child, 20000));
}

TEST(Processes, ExitStatusKillingAndTimeOutAreTold) {
  Child quick = startWithPipes(kChild, {"{in}", "{out}", "exit", "7"});
  EXPECT_EQ(7, waitForChild(quick, 20000));
  Child slow = startWithPipes(kChild, {"{in}", "{out}", "wait"});
  const WatchedProcess watched = openProcess(slow.id);
  EXPECT_FALSE(hasEnded(watched));
  EXPECT_EQ(-1, waitForChild(slow, 30));
  killProcess(slow);
  waitForEnd(watched);
  EXPECT_TRUE(hasEnded(watched));
  EXPECT_EQ(137, waitForChild(slow, 20000));
}

TEST(Processes, WhatDoesNotExistHasEnded) {
  for (const int id : {0, -1, 2147483647}) {
    const WatchedProcess none = openProcess(id);
    EXPECT_TRUE(hasEnded(none)) << id;
    waitForEnd(none);
  }
  EXPECT_FALSE(hasEnded(openProcess(currentProcessId())));
  EXPECT_THROW(startWithPipes("/no/such/program", {}), std::runtime_error);
}

}  // namespace
}  // namespace odbs::port
