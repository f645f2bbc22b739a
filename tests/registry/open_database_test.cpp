// SPDX-License-Identifier: BSD-3-Clause
// Opening, finding again, reopening and evicting databases, seen from inside.
#include "registry/open_database.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "registry/canonical_path.h"
#include "registry/database_caches.h"
#include "registry/upgrade_check.h"
#include "tests/support/databases.h"
#include "tests/support/output_file.h"
#include "tests/support/server_process.h"

namespace odbs {
namespace {

namespace fs = std::filesystem;

DatabaseCache<int> numbers;

class OpenDatabases : public testing::Test {
 protected:
  ~OpenDatabases() override {
    for (const std::string& key : sdk::openKeys(repository)) closeDatabase(repository, key);
  }
  // Makes the database first where there is none.
  odb_Odb& open(const std::string& name) {
    if (!fs::exists(folder.file(name))) tests::makeDatabase(folder.file(name), name);
    return openDatabase(repository, folder.file(name), output.fd());
  }
  bool isOpen(const std::string& name) { return sdk::isOpen(repository, folder.file(name)); }
  // Replaces the file by a database with another title and a later modification time.
  void rewrite(const std::string& name) {
    tests::makeDatabase(folder.file(name), "rewritten");
    tests::shiftModificationTime(folder.file(name), 5);
  }
  // Where files have no inode numbers, as on Windows, nothing is evicted: contract.
  bool evicts() const { return port::fileStatus(folder.file("d.odb")).inode != 0; }

  tests::TemporaryFolder folder;
  tests::OutputFile output;
  sdk::Repository& repository = sdk::openDatabases();
};

TEST_F(OpenDatabases, AreFoundAgainUnderTheirPath) {
  odb_Odb& first = open("a.odb");
  EXPECT_EQ(&open("a.odb"), &first);
  EXPECT_TRUE(first.isReadOnly());
  EXPECT_EQ(sdk::nOpen(repository), 1);
  EXPECT_EQ(output.bytes(), "");
}

TEST_F(OpenDatabases, AreFoundAgainUnderAnEquivalentPath) {
  odb_Odb& first = open("a.odb");
  EXPECT_EQ(&openDatabase(repository, canonicalPath(folder.file("a.odb")), output.fd()), &first);
  EXPECT_EQ(sdk::nOpen(repository), 1);
}

TEST_F(OpenDatabases, FailWithOneMessageWhateverIsWrong) {
  tests::writeFile(folder.file("empty.odb"), "");
  tests::writeFile(folder.file("text.odb"), "** HEADING\nno database at all\n");
  tests::makeDatabase(folder.file("cut.odb"));
  fs::resize_file(folder.file("cut.odb"), 700);
  tests::makeFutureDatabase(folder.file("future.odb"));
  fs::create_directory(folder.file("folder.odb"));
  for (const char* name : {"missing.odb", "empty.odb", "text.odb", "cut.odb", "future.odb",
                           "folder.odb", "a/b/c.odb", ""}) {
    for (int round = 0; round < 2; ++round) {
      try {
        openDatabase(repository, *name ? folder.file(name) : "", output.fd());
        ADD_FAILURE() << name << " opened";
      } catch (const std::exception& error) {
        EXPECT_STREQ(error.what(), "Error openOdb") << name;
      }
    }
  }
  EXPECT_THROW(openDatabase(repository, std::string(4000, 'x'), output.fd()), OpenError);
  EXPECT_EQ(sdk::nOpen(repository), 0);
  EXPECT_EQ(output.bytes(), "");
}

TEST_F(OpenDatabases, AreReopenedWhenTheirFileChanged) {
  open("a.odb");
  rewrite("a.odb");
  EXPECT_STREQ(open("a.odb").analysisTitle().CStr(), "rewritten");
  odb_Odb& again = open("a.odb");
  EXPECT_STREQ(again.analysisTitle().CStr(), "rewritten");
  EXPECT_EQ(sdk::nOpen(repository), 1);
}

TEST_F(OpenDatabases, AreReopenedUnderEachPathWhenTheirFileWasRewrittenInPlace) {
  open("a.odb");
  open("./a.odb");
  open("b.odb");
  tests::makeNodesDatabase(folder.file("new.odb"), 9);
  tests::writeFile(folder.file("a.odb"), tests::readFile(folder.file("new.odb")));
  tests::shiftModificationTime(folder.file("a.odb"), 5);
  for (const char* name : {"a.odb", "./a.odb"}) {
    odb_InstanceRepository& instances = open(name).rootAssembly().instances();
    ASSERT_EQ(instances.size(), 1) << name;
    EXPECT_EQ(instances["P-1"].nodes().size(), 9) << name;
  }
  EXPECT_EQ(sdk::nOpen(repository), 3);
}

TEST_F(OpenDatabases, AreClosedWhenTheirChangedFileDoesNotOpen) {
  open("a.odb");
  tests::writeFile(folder.file("a.odb"), "gone bad");
  EXPECT_THROW(open("a.odb"), OpenError);
  EXPECT_THROW(open("a.odb"), OpenError);
  rewrite("a.odb");
  EXPECT_STREQ(open("a.odb").analysisTitle().CStr(), "rewritten");
}

TEST_F(OpenDatabases, TheFourthClosesTheLeastRecentlyUsed) {
  for (const char* name : {"a.odb", "b.odb", "c.odb"}) open(name);
  open("d.odb");
  EXPECT_EQ(isOpen("a.odb"), !evicts());
  EXPECT_TRUE(isOpen("b.odb") && isOpen("c.odb") && isOpen("d.odb"));
}

TEST_F(OpenDatabases, OneThatWasTouchedIsNotTheLeastRecentlyUsed) {
  for (const char* name : {"a.odb", "b.odb", "c.odb", "a.odb", "d.odb"}) open(name);
  EXPECT_EQ(isOpen("b.odb"), !evicts());
  EXPECT_TRUE(isOpen("a.odb") && isOpen("c.odb") && isOpen("d.odb"));
}

TEST_F(OpenDatabases, OneFileUnderTwoNamesIsNotEvictedByItself) {
  for (const char* name : {"a.odb", "b.odb", "c.odb"}) open(name);
  fs::create_hard_link(folder.file("a.odb"), folder.file("d.odb"));
  open("d.odb");
  EXPECT_TRUE(isOpen("a.odb"));
  EXPECT_EQ(isOpen("b.odb"), !evicts());
}

TEST_F(OpenDatabases, AtMostOneIsClosedPerOpening) {
  for (const char* name : {"a.odb", "b.odb", "c.odb", "d.odb", "e.odb", "f.odb"}) open(name);
  EXPECT_EQ(sdk::nOpen(repository), evicts() ? 3 : 6);
}

TEST_F(OpenDatabases, TheirCachesLiveUntilTheyAreClosedOrReopened) {
  odb_Odb& odb = open("a.odb");
  EXPECT_EQ(numbers.find(odb), nullptr);
  numbers.of(odb) = 7;
  EXPECT_EQ(numbers.of(open("a.odb")), 7);
  EXPECT_EQ(numbers.of(open("b.odb")), 0);
  rewrite("a.odb");
  EXPECT_EQ(numbers.find(open("a.odb")), nullptr);
  numbers.of(open("a.odb")) = 8;
  closeDatabase(repository, folder.file("a.odb"));
  EXPECT_EQ(numbers.find(open("a.odb")), nullptr);
}

TEST_F(OpenDatabases, CarryAFlagUntilTheyAreReopened) {
  EXPECT_FALSE(databaseFlag(open("a.odb")));
  setDatabaseFlag(open("a.odb"), true);
  EXPECT_TRUE(databaseFlag(open("a.odb")));
  EXPECT_FALSE(databaseFlag(open("b.odb")));
  rewrite("a.odb");
  EXPECT_FALSE(databaseFlag(open("a.odb")));
}

class OldDatabases : public OpenDatabases {
 protected:
  OldDatabases() { tests::makeOldDatabase(old, "of old"); }
  odb_Odb& openOld() { return openDatabase(repository, old, output.fd()); }

  const std::string old = folder.file("old.odb");
  const std::string copy = old + ".odb";
  const std::string upgrading = tests::textRecord('|', "odb upgrade to: " + copy);
  const std::string found = tests::textRecord('|', "Found upgraded odb: " + copy);
};

TEST_F(OldDatabases, AreUpgradedOnceAndOpenAsTheirCopy) {
  odb_Odb& odb = openOld();
  EXPECT_STREQ(odb.analysisTitle().CStr(), "of old");
  EXPECT_EQ(output.news(), upgrading);
  EXPECT_TRUE(sdk::isOpen(repository, copy));
  EXPECT_FALSE(sdk::isOpen(repository, old));
  EXPECT_EQ(&openOld(), &odb);
  EXPECT_EQ(output.news(), found);
  EXPECT_EQ(sdk::nOpen(repository), 1);
}

TEST_F(OldDatabases, UseACopyThatIsThereAndNew) {
  tests::makeDatabase(copy, "made before");
  tests::shiftModificationTime(copy, 5);
  EXPECT_STREQ(openOld().analysisTitle().CStr(), "made before");
  EXPECT_EQ(output.news(), found);
}

TEST_F(OldDatabases, AreUpgradedAgainWhenTheyAreNewerThanTheirOpenCopy) {
  openOld();
  tests::makeOldDatabase(old, "newer");
  tests::shiftModificationTime(old, 5);
  output.news();
  EXPECT_STREQ(openOld().analysisTitle().CStr(), "newer");
  EXPECT_EQ(output.news(), upgrading);
}

TEST_F(OldDatabases, AreUpgradedAtOnceWhenTheyReplaceOpenOnesInPlace) {
  open("a.odb");
  tests::writeFile(folder.file("a.odb"), tests::readFile(old));
  tests::shiftModificationTime(folder.file("a.odb"), 5);
  EXPECT_STREQ(open("a.odb").analysisTitle().CStr(), "of old");
}

TEST_F(OldDatabases, AreAnnouncedEvenWhenTheUpgradeFails) {
  fs::create_directory(copy);
  tests::shiftModificationTime(old, 5);
  EXPECT_THROW(openOld(), OpenError);
  EXPECT_EQ(output.news(), upgrading);
}

}  // namespace
}  // namespace odbs
