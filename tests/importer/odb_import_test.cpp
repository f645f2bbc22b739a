// SPDX-License-Identifier: BSD-3-Clause
// The program: exit status, what it leaves behind, what it prints.
#include "tests/importer/imported.h"

#include "port/port.h"

namespace odbs::importer {
namespace {

const std::string kBar =
    "*NODE\n1,0\n2,1\n*ELEMENT, TYPE=T3D2\n1,1,2\n*CLOAD\n2,1,1.\n*CLOAD\n2,2,1.\n";

class OdbImport : public ::testing::Test {
 protected:
  int run(const std::vector<std::string>& arguments) {
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    const int status = runImport(arguments);
    out_ = ::testing::internal::GetCapturedStdout();
    err_ = ::testing::internal::GetCapturedStderr();
    return status;
  }

  DeckFolder files_;
  std::string out_, err_;
};

TEST_F(OdbImport, SaysWhatWasImportedAndWhatWasIgnored) {
  const std::string deck = files_.write("bar.inp", kBar), odb = files_.file("bar.odb");
  EXPECT_EQ(0, run({deck}));
  EXPECT_TRUE(port::fileStatus(odb).exists);
  EXPECT_NE(
      std::string::npos,
      out_.find("1 instance, 2 nodes, 1 element, 0 sets, 0 surfaces, 0 sections, 0 materials"));
  EXPECT_NE(std::string::npos, out_.find("*CLOAD (2)"));
  EXPECT_EQ("", err_);
}

TEST_F(OdbImport, QuietSaysNothing) {
  EXPECT_EQ(0, run({"--quiet", files_.write("bar.inp", kBar), "--output=" + files_.file("x.odb")}));
  EXPECT_EQ("", out_ + err_);
}

TEST_F(OdbImport, ABrokenDeckLeavesNoFileAndAnOldOneAlone) {
  const std::string deck = files_.write("bad.inp", kBar + "*NODE\nx\n"),
                    odb = files_.file("bad.odb");
  EXPECT_EQ(1, run({deck, "-o", odb}));
  EXPECT_FALSE(port::fileStatus(odb).exists);
  EXPECT_EQ(deck + ":11: \"x\" is not a whole number\n", err_);
  files_.write("bad.odb", "precious");
  EXPECT_EQ(1, run({deck, "-o", odb}));
  EXPECT_EQ(8, port::fileStatus(odb).size);
}

TEST_F(OdbImport, AnOutputThatCannotBeWrittenIsAnError) {
  const std::string deck = files_.write("bar.inp", kBar);
  EXPECT_EQ(1, run({deck, "-o", files_.file("no/such/folder/bar.odb")}));
  EXPECT_NE("", err_);
  EXPECT_EQ(2, run({deck, "-o", deck}));
  EXPECT_EQ(static_cast<std::int64_t>(kBar.size()), port::fileStatus(deck).size);
}

TEST_F(OdbImport, ArgumentsAreChecked) {
  EXPECT_EQ(2, run({}));
  EXPECT_EQ(2, run({"a.inp", "b.inp"}));
  EXPECT_EQ(2, run({"--frobnicate"}));
  EXPECT_EQ(2, run({"a.inp", "-o"}));
  EXPECT_EQ(1, run({files_.file("absent.inp")}));
  EXPECT_EQ(0, run({"--version"}));
  EXPECT_EQ(0, out_.find("odb_import "));
  EXPECT_EQ(0, run({"--help"}));
  EXPECT_NE(std::string::npos, out_.find("usage: odb_import"));
}

}  // namespace
}  // namespace odbs::importer
