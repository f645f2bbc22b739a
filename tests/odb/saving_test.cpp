// SPDX-License-Identifier: BSD-3-Clause
// Files: saving beside the target, replacing an open database, updating, odd paths, the repository
// of open databases.
#include "tests/odb/failing_calls.h"
#include "tests/odb/read_everything.h"
#include "tests/odb/sample_model.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <thread>

namespace odbs::test {
namespace {

class Files : public testing::Test {
 protected:
  std::vector<std::string> names() const {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      found.push_back(entry.path().filename().string());
    }
    return found;
  }

  TempFolder folder_;
  std::string path_ = folder_.file("model.odb");
};

TEST_F(Files, AppearOnlyWhenSaved) {
  makeSampleModel("never saved", path_).close();
  EXPECT_TRUE(names().empty()) << "what was written ahead goes with the database";
  odb_Odb& odb = makeSampleModel("made", path_);
  EXPECT_FALSE(std::filesystem::exists(path_));
  odb.save();
  EXPECT_EQ(names(), std::vector<std::string>{"model.odb"});
  const auto first = std::filesystem::last_write_time(path_);
  odb.save();
  EXPECT_EQ(std::filesystem::last_write_time(path_), first) << "nothing had changed";
  odb.close();
  EXPECT_TRUE(odb.isClosed());
  EXPECT_STREQ(odb.name().CStr(), "made");
  EXPECT_THROW(odb.rootAssembly(), odb_Exception);
}

TEST_F(Files, StayWholeWhenSavingFails) {
  makeSampleModel("made", path_).save();
  odb_finalizeAPI();
  const auto size = std::filesystem::file_size(path_);
  EXPECT_THROW(makeSampleModel("lost", folder_.file("no folder/x.odb")).save(), odb_Exception);
  odb_Odb& readOnly = openOdb(path_.c_str(), true);
  EXPECT_THROW(readOnly.save(), odb_Exception);
  EXPECT_THROW(readOnly.Part("X", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY), odb_Exception);
  EXPECT_EQ(std::filesystem::file_size(path_), size);
  EXPECT_EQ(names(), std::vector<std::string>{"model.odb"});
}

TEST_F(Files, CanBeReplacedWhileOpen) {
  makeSampleModel("made", path_).save();
  odb_Odb& reader = openOdb(path_.c_str(), true);
  EXPECT_EQ(reader.rootAssembly().instances().size(), 3);
  odb_Odb& writer = makeSampleModel("other", path_);
  writer.rootAssembly().Instance("C-1", writer.parts()["BLOCK"]);
  writer.save();
  EXPECT_EQ(reader.rootAssembly().instances().size(), 3);
  reader.close();
  EXPECT_EQ(openOdb(path_.c_str(), true).rootAssembly().instances().size(), 4);
}

TEST_F(Files, ShowNewFramesAfterAnUpdate) {
  odb_Odb& writer = makeSampleModel("made", path_);
  writer.save();
  odb_Odb& reader = openOdb(path_.c_str(), true);
  const odb_Step load = reader.steps()["Load"];
  EXPECT_EQ(load.frames().size(), 3);
  EXPECT_FALSE(reader.update());
  writer.steps()["Load"].Frame(3, 3.0f, "later");
  writer.Step("Last", "", odb_Enum::TIME).Frame(0, 0.0f);
  writer.save();
  EXPECT_TRUE(reader.update());
  EXPECT_EQ(load.frames().size(), 4);
  EXPECT_STREQ(load.frames(3).description().CStr(), "later");
  EXPECT_EQ(reader.steps()["Last"].frames().size(), 1);
  EXPECT_FALSE(reader.update());
  EXPECT_EQ(readEverything(reader), readEverything(openOdb("fresh", path_.c_str(), true)));
}

TEST_F(Files, AreExtendedByALaterProgram) {
  makeSampleModel("made", path_).save();
  odb_finalizeAPI();
  odb_Odb& odb = openOdb(path_.c_str());
  const std::string before = readEverything(odb);
  odb.parts()["BLOCK"].addNodes(ints({500}), floatRows({{1, 2, 3}}), "ALL");
  odb.save();
  const std::string extended = readEverything(odb);
  EXPECT_NE(before, extended);
  odb.close();
  EXPECT_EQ(readEverything(openOdb(path_.c_str(), true)), extended);
}

#ifndef _WIN32
TEST_F(Files, AreWholeOrAbsentAfterAnUpgradeWithAFailedCall) {
  odb_Odb& made = makeSampleModel("made", path_);
  const std::string old = folder_.file("old.odb"), wanted = readEverything(made);
  odb_embedded::saveInOldLayout(made, old.c_str());
  for (const char* call : {"pwrite", "fsync", "rename"}) {
    for (int n = 1;; n += 3) {
      SCOPED_TRACE(call + std::to_string(n));
      odb_finalizeAPI();
      std::filesystem::remove(path_);
      failCall(call, n);
      bool done = true;
      try {
        upgradeOdb(old.c_str(), path_.c_str());
      } catch (const odb_Exception&) {
        done = false;
      }
      const bool failed = callFailed();
      failCall("", 0);
      ASSERT_EQ(std::filesystem::exists(path_), done);
      ASSERT_EQ(names().size(), done ? 3u : 2u) << "the old file, the log, and the new one";
      ASSERT_EQ(done ? readEverything(openOdb(path_.c_str(), true)) : wanted, wanted);
      if (!failed) break;
    }
  }
}
#endif

TEST_F(Files, MayHaveAnyName) {
  // Paths are bytes in the encoding of the system.
  for (const char* name : {"with blank.odb", "no extension", "a.b.c.odb"}) {
    makeSampleModel(name, folder_.file(name)).save();
    EXPECT_NE(readEverything(openOdb(folder_.file(name).c_str(), true)), "") << name;
  }
#ifdef _WIN32
  const char* const foreign = "\xfc\xe4.odb";  // u and a with dots in the western code pages
#else
  const char* const foreign = "\xc3\xbc\xe6\xa8\xa1.odb";
#endif
  const std::string path = folder_.path().string() + "/" + foreign;
  makeSampleModel("foreign", path).save();
  EXPECT_NE(readEverything(openOdb(path.c_str(), true)), "");
}

TEST_F(Files, AreListedByTheirExactText) {
  makeSampleModel("b", path_).save();
  odb_finalizeAPI();
  odb_OdbRepository& open = odb_openDatabases();
  EXPECT_EQ(open.size(), 0);
  odb_Odb& first = openOdb(path_.c_str(), true);
  const std::string other = (folder_.path() / "." / "model.odb").string();
  odb_Odb& second = openOdb(other.c_str(), true);
  odb_Odb& third = openOdb("key", path_.c_str(), true);
  EXPECT_NE(&first, &second);
  EXPECT_EQ(&openOdb(path_.c_str(), true), &first);
  EXPECT_EQ(open.size(), 3);
  EXPECT_EQ(&open.get("key"), &third);
  EXPECT_THROW(getActiveOdb(), odb_Exception);
  // Closing the current database must not lose the place.
  int n = 0;
  for (odb_OdbRepositoryIT it(open); !it.isDone(); it.next(), ++n) closeOdb(it.currentValue());
  EXPECT_EQ(n, 3);
  EXPECT_EQ(open.size(), 0);
  EXPECT_FALSE(open.isMember("key"));
  odb_Odb& again = openOdb(path_.c_str(), true);
  EXPECT_EQ(&again, &getActiveOdb());
}

TEST_F(Files, OfTenThousandFramesOpenAtOnce) {
  odb_Odb& odb = makeSampleModel("made", path_);
  odb_Step& step = odb.Step("Long", "", odb_Enum::TIME);
  for (int i = 0; i < 10000; ++i) {
    step.Frame(i, 0.001f * static_cast<float>(i),
               odb_String("Increment ").append(i).append(" of the long step"));
  }
  odb.save();
  odb.close();
  double best = 1e9;
  for (int i = 0; i < 5; ++i) {
    const auto start = std::chrono::steady_clock::now();
    openOdb(path_.c_str(), true);
    const std::chrono::duration<double, std::milli> passed =
        std::chrono::steady_clock::now() - start;
    best = std::min(best, passed.count());
    if (i < 4) odb_finalizeAPI();
  }
  // Far above what it takes (1 ms), so that a busy machine passes, and far below reading frames
  // one by one.
  EXPECT_LT(best, 100);
  EXPECT_EQ(openOdb(path_.c_str(), true).steps()["Long"].frames(9999).incrementNumber(), 9999);
  RecordProperty("open_ms", std::to_string(best));
}

}  // namespace
}  // namespace odbs::test
