// SPDX-License-Identifier: BSD-3-Clause
// A server whose allocations fail and whose files may not grow: it says so where it can, and goes
// on.
#include <gtest/gtest.h>

#include <odb_API.h>
#include <odb_embedded.h>

#include <numeric>

#include "tests/support/databases.h"
#include "tests/support/reply.h"
#include "tests/support/sequences.h"
#include "tests/support/server_process.h"

namespace odbs::tests {
namespace {

// A server started by a shell, with its standard error in a file.
class LimitedServer : public Process {
 public:
  LimitedServer(const std::string& limits, const std::string& errors)
      : Process("/bin/sh", {"-c", limits + " exec \"$@\" 2>'" + errors + "'", "sh",
                            siblingProgram("odb_server"), std::to_string(port::currentProcessId()),
                            "{in}", "{out}"}) {}
};

class Limits : public testing::Test {
 protected:
  std::string failing(const std::string& sizes) const {
    return "FAILING_SIZES='" + sizes + "' LD_PRELOAD='" ODBS_FAILING_MALLOC "'";
  }
  // How often memory was said to have run out; anything else said counts as -1.
  int nReports() const {
    std::string said = readFile(errors);
    for (int n = 0;; ++n) {
      if (said.empty()) return n;
      const std::string report = "Memory allocation error!!!!\nFILE :odb_server , LINE :";
      if (said.compare(0, report.size(), report) != 0) return -1;
      said.erase(0, said.find('\n', report.size()) + 1);
    }
  }

  TemporaryFolder folder;
  const std::string errors = folder.file("errors");
};

#if !defined(__SANITIZE_ADDRESS__)

TEST_F(Limits, EveryCommandSurvivesThatMemoryForItsArgumentsRunsOut) {
  const std::string name(1000, 'n');
  std::string labels = "b";
  for (int i = 0; i < 1500; ++i) labels += " 1";
  // The sizes of a name of 1000 characters, of a variable's of 190, and of 2048 tokens.
  LimitedServer server(failing("1001 191 32768"), errors);
  int nExpected = 0;
  server.send("a 5");
  EXPECT_EQ(hexOf(server.read(3)), kAckHex);
  server.send("ho 5");
  for (const std::string& line : {"d 1 0 2 " + name.substr(0, 190), "hb " + name, "irc 1 0 " + name,
                                  "T " + name, "c " + name, "u " + name, "rs " + name, labels}) {
    server.send(line);
    ++nExpected;
  }
  server.send("p");
  const std::string reply = server.read(5 * 3 + 10);
  EXPECT_EQ(hexOf(reply.substr(0, 18)), "01 00 7e 01 00 7e 01 00 7e 01 00 7e 01 00 7e 05 00 7d");
  server.send("q");
  EXPECT_EQ(server.wait(), 0);
  EXPECT_EQ(nReports(), nExpected) << readFile(errors);
  EXPECT_NE(readFile(errors).find("LINE :12243\n"), std::string::npos);
}

TEST_F(Limits, SetsWhoseMembersFindNoMemoryEndTheReplyAndAreReported) {
  const std::string path = folder.file("a.odb");
  std::vector<int> labels(3000);
  std::iota(labels.begin(), labels.end(), 1);
  odb_Odb& odb = Odb("writing", "", "", path.c_str());
  odb_Part& part = odb.Part("P", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
  part.addNodes(ints(labels), floatRows(std::vector<std::vector<float>>(3000, {0, 0, 0})));
  labels.pop_back();
  odb.rootAssembly().Instance("I", part).NodeSet("N", ints(labels));
  odb.save();
  odb.close();
  LimitedServer server(failing("11996"), errors);  // the labels of the set
  server.send("S 0 0 " + path);
  server.send("p");
  server.closeInput();
  // Title, kind, acknowledgement and the answer to the ping: no end of a set without members.
  EXPECT_EQ(recordsIn(server.readToEnd()).size(), 5u);
  EXPECT_EQ(nReports(), 1) << readFile(errors);
}

#endif

TEST_F(Limits, AFileThatMayNotGrowIsAFailedWrite) {
  const std::string path = folder.file("a.odb");
  makeFramesDatabase(path, 2);
  LimitedServer server("ulimit -f 0;", "/dev/null");
  server.send("T " + folder.file("cache"));
  server.send("fD " + path);
  server.send("q");
  EXPECT_FALSE(server.readToEnd().empty());
  EXPECT_EQ(server.wait(), 0);
}

}  // namespace
}  // namespace odbs::tests
