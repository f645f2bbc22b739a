// SPDX-License-Identifier: BSD-3-Clause
// How the program starts: its arguments, and what it tells people.
#include <gtest/gtest.h>

#include "tests/support/server_process.h"

namespace odbs::tests {
namespace {

int statusOf(const std::vector<std::string>& arguments) {
  Process program(siblingProgram("odb_server"), arguments);
  return program.wait();
}

TEST(Start, EndsAtOnceWithStatus0WithoutAParent) {
  EXPECT_EQ(statusOf({"999999999", "{in}", "{out}"}), 0);
  EXPECT_EQ(statusOf({"0", "{in}", "{out}"}), 0);
  EXPECT_EQ(statusOf({"-1", "{in}", "{out}"}), 0);
  EXPECT_EQ(statusOf({"parent", "{in}", "{out}"}), 0);
  EXPECT_EQ(statusOf({}), 0);
}

TEST(Start, EndsForAParentThatIsGone) {
  int id = 0;
  {
    IdleParent gone;
    id = gone.id();
  }
  EXPECT_EQ(statusOf({std::to_string(id), "{in}", "{out}"}), 0);
}

TEST(Start, HelpAndVersionEndWithStatus0) {
  EXPECT_EQ(statusOf({"--help"}), 0);
  EXPECT_EQ(statusOf({"--version"}), 0);
}

TEST(Start, ServesSeveralServersOfOneParent) {
  ServerProcess first, second;
  EXPECT_EQ(first.reply("v 1"), kAckHex);
  EXPECT_EQ(second.reply("v 1"), kAckHex);
  EXPECT_NE(first.id(), second.id());
}

}  // namespace
}  // namespace odbs::tests
