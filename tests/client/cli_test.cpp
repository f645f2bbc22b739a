// SPDX-License-Identifier: BSD-3-Clause
// odb_client's answers, formats and exit statuses.
#include "client/cli/cli.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "base/printable.h"
#include "tests/client/built_server.h"

namespace odbs::client::test {
namespace {

struct Outcome {
  int status;
  std::string out, err;
};

Outcome run(const std::vector<std::string>& arguments) {
  std::ostringstream out, err;
  const int status = runClient(arguments, out, err);
  return {status, out.str(), err.str()};
}

Outcome runOnFake(std::vector<std::string> arguments) {
  arguments.insert(arguments.end(), {"--server", fakeServer().server, "--timeout", "20"});
  return run(arguments);
}

// A title, a kind, two nodes, a truss, a solid section, a message with an escape in it.
const char* const kSmallModel =
    "09 00 7c 04 00 00 00 1b 5b 31 6d 06 00 01 01 00 00 00 54 05 00 02 00 00 00 00 "
    "17 00 24 01 00 00 00 01 00 00 00 53 fa ff ff ff 01 00 00 00 4d 00 00 00 00 "
    "0d 00 03 01 00 00 00 00 00 00 00 00 00 80 3f 0d 00 03 02 00 00 00 00 00 00 40 00 00 00 bf "
    "19 00 04 54 32 44 32 20 20 20 20 05 00 00 00 01 00 00 00 01 00 00 00 02 00 00 00 01 00 7e";

TEST(Cli, WritesAModelAsJsonLinesAndCsv) {
  const Outcome json = runOnFake({"model", kSmallModel, "--format", "jsonl"});
  EXPECT_NE(json.out.find("{\"table\":\"instance\",\"instance\":\"(the only one)\",\"nodes\":2,"
                          "\"elements\":1,\"dimensions\":2,\"box_least\":[0,-0.5],"
                          "\"box_greatest\":[2,1]}\n"),
            std::string::npos)
      << json.out;
  EXPECT_NE(json.out.find("{\"table\":\"message\",\"message\":\"\\u001b[1m\"}"), std::string::npos);
  const Outcome csv = runOnFake({"model", kSmallModel, "--format=csv", "--table", "elements"});
  EXPECT_EQ(csv.out,
            "instance,type,elements,nodes_each,without_section\n(the only one),T2D2,1,2,0\n");
}

TEST(Cli, SendsRawLinesAndPrintsEachRecord) {
  const Outcome outcome = runOnFake(
      {"send", "49", "x 01 00 {} 01 00 7e", "u 05 00 7c 01 00 00 00", "--format", "jsonl"});
  EXPECT_EQ(outcome.status, kDone) << outcome.err;
  EXPECT_EQ(outcome.out,
            "{\"table\":\"record\",\"line\":\"x 01 00 49 01 00 7e\",\"offset\":0,\"length\":1,"
            "\"tag\":\"0x49\",\"kind\":\"unknown\",\"body\":\"\"}\n"
            "{\"table\":\"record\",\"line\":\"u 05 00 7c 01 00 00 00\",\"offset\":6,\"length\":5,"
            "\"tag\":\"0x7c\",\"kind\":\"upgrade check\",\"upgrade_needed\":1}\n");
}

TEST(Cli, PrintsWhatCameBeforeAFailure) {
  const Outcome outcome = runOnFake({"send", "-", "g 05 00 02 01 00 00 00 02 00 03 01 01 00 7e"});
  EXPECT_EQ(outcome.status, kFailed);
  EXPECT_EQ(run({"ping", "--server", "/no/such/server"}).status, kFailed);
  EXPECT_NE(outcome.out.find("analysis kind"), std::string::npos);
  EXPECT_NE(outcome.err.find("at byte 7: node record"), std::string::npos) << outcome.err;
}

TEST(Report, AlignsColumnsAndKeepsGoingAfterTheRowsThatItHeldBack) {
  std::ostringstream out;
  Report report(out, Format::kTable);
  report.begin("row", {"name", "n"});
  for (std::int64_t i = 0; i < 2500; ++i) report.row({std::string("r"), i});
  report.end();
  const std::string text = out.str();
  EXPECT_EQ(text.substr(0, 30), "name    n\nr       0\nr       1\n");
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2501);
  EXPECT_NE(text.find("r     2499\n"), std::string::npos);
}

TEST(Report, WritesTextsSafelyInEveryFormat) {
  const std::string nasty = "a\"b,\n\x01\xff\xc3\xa4\xc2\x9b";
  EXPECT_EQ(printable(nasty), "a\"b,\\n\\x01\\xff\xc3\xa4\\xc2\\x9b");
  EXPECT_EQ(jsonText(nasty), "\"a\\\"b,\\u000a\\u0001\\u00ff\xc3\xa4\xc2\x9b\"");
  EXPECT_EQ(jsonText(std::vector<float>{0.1f, std::nanf(""), 1e30f}), "[0.1,null,1e+30]");
  EXPECT_EQ(jsonText(std::vector<std::vector<float>>{{1, 2}, {}}), "[[1,2],[]]");
  EXPECT_EQ(plainText(0.1f), "0.1");
  std::ostringstream out;
  Report report(out, Format::kCsv);
  report.begin("t", {"c", "list"}, {{"list", numbered("item", 3)}});
  report.row({std::string("x,\"y\""), std::vector<float>{1, std::nanf("")}});
  EXPECT_EQ(out.str(), "c,item_1,item_2,item_3\n\"x,\"\"y\"\"\",1,,\n");
}

}  // namespace
}  // namespace odbs::client::test
