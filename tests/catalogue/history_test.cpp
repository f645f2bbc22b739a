// SPDX-License-Identifier: BSD-3-Clause
// History overview and values.
#include "catalogue/history.h"
#include "server/core/record.h"
#include "server/core/server_state.h"
#include "tests/results/result_fixture.h"
#include "tests/support/output_file.h"

namespace odbs::tests {
namespace {

std::string stepRecord(int number, int domain, double totalTime, const char* name) {
  return Payload('2').i32(number).i32(domain).f64(totalTime).text(name).text("about");
}

std::string region(const char* name, int position, int first, int second, int third,
                   const char* set = "") {
  return Payload('4').text(name).text(set).i32(position).i32(first).i32(second).i32(third);
}

std::string output(const char* name, bool conjugate) {
  return Payload('6').text(name).text("what").i32(odb_Enum::SCALAR).i32(conjugate ? 1 : 0);
}

std::string value(float number) {
  return Payload('8').f32(number);
}

class History : public ResultTest {
 protected:
  odb_HistoryOutput& nodeOutput(odb_Step& step, const char* regionName, const char* outputName) {
    odb_HistoryRegion& own =
        step.HistoryRegion(regionName, "", odb_HistoryPoint(instance().getNodeFromLabel(3)));
    odb_HistoryOutput& out = own.HistoryOutput(outputName, "what");
    out.addData(0.0, 1.5);
    out.addData(0.5, -2.5);
    return out;
  }

  // `ho` and `hb` for these names, then `hr`.
  Records values(int step, const std::vector<const char*>& names) {
    ask("o ");
    server_->send("ho " + std::to_string(names.size()));
    for (const char* each : names) server_->send(std::string("hb ") + each);
    return ask("hr " + std::to_string(step) + " ");
  }
};

TEST_F(History, TheOverviewNamesStepsRegionsAndOutputs) {
  odb_Step& first = step("Step-1");
  nodeOutput(first, "Node I.3", "U1");
  odb_Set& set = instance().NodeSet("TIP", ints({1}));
  first.HistoryRegion("Set", "", odb_HistoryPoint(set)).HistoryOutput("X", "what");
  first.HistoryRegion("Whole", "", odb_HistoryPoint(odb_->rootAssembly()));
  step("Step-2", odb_Enum::FREQUENCY)
      .HistoryRegion("Element I.10 Int Point 2", "",
                     odb_HistoryPoint(instance().getElementFromLabel(10), 2))
      .HistoryOutput("S11", "what");
  EXPECT_EQ((Records{stepRecord(1, 0, 0, "Step-1"), region("Node I.3", 1, 3, 0, 0),
                     output("U1", false), region("Set", 7, 0, 0, 0, "TIP"), output("X", false),
                     region("Whole", 9, 0, 0, 0), stepRecord(2, odb_Enum::FREQUENCY, 1, "Step-2"),
                     region("Element I.10 Int Point 2", 3, 10, 2, 0), output("S11", false)}),
            ask("hi "));
}

TEST_F(History, TheOverviewFlagsComplexOutputsOfTheDomains1And2Alone) {
  const auto complexIn = [&](const char* name, odb_Enum::odb_DomainEnum domain) {
    odb_embedded::addConjugateData(nodeOutput(step(name, domain), "R", "U1"),
                                   floatRows({{0, 7}, {0.5F, 8}}));
  };
  complexIn("0", odb_Enum::TIME);
  complexIn("1", odb_Enum::FREQUENCY);
  complexIn("2", odb_Enum::MODAL);
  complexIn("3", odb_Enum::ARC_LENGTH);
  const Records records = ask("hi ");
  ASSERT_EQ(12u, records.size());
  for (const std::size_t domain : {0u, 1u, 2u, 3u}) {
    EXPECT_EQ(output("U1", domain == 1 || domain == 2), records[3 * domain + 2]) << domain;
  }
}

TEST_F(History, ValuesAreTimeValueAndConjugateForEachPoint) {
  odb_Step& only = step("Step-1", odb_Enum::FREQUENCY);
  nodeOutput(only, "Real", "U1");
  odb_embedded::addConjugateData(nodeOutput(only, "Complex", "U1"), floatRows({{0, 7}, {0.5F, 8}}));
  EXPECT_EQ((Records{stepRecord(1, odb_Enum::FREQUENCY, 0, "Step-1"), region("Real", 1, 3, 0, 0),
                     output("U1", false), value(0), value(1.5F), value(0.5F), value(-2.5F),
                     region("Complex", 1, 3, 0, 0), output("U1", true), value(0), value(1.5F),
                     value(7), value(0.5F), value(-2.5F), value(8)}),
            values(1, {"Real", "Complex"}));
  EXPECT_EQ((Records{output("U1", true), output("U1", false)}), withTag(ask("hi "), '6'));
}

// A command that failed may leave records in the buffer, here a marker.
TEST_F(History, LeftoversOfAFailedCommandAreNotTakenForValues) {
  nodeOutput(step("Step-1"), "R", "U1").addData(1.0, 3.0);
  const auto bytes = [&](bool afterFailure) {
    OutputFile out;
    if (afterFailure) sendMarker(out.fd());
    serverState.historyNames.names = {"R"};
    exportHistoryValues(*odb_, out.fd(), 0);
    return out.bytes();
  };
  EXPECT_EQ(bytes(false), bytes(true));
}

TEST_F(History, NamesThatAreMissingAreSkippedAndTheTableIsUsedOnce) {
  nodeOutput(step("Step-1"), "Node I.3", "U1");
  nodeOutput(step("Step-2"), "Other", "U1");
  const Records all = values(0, {"none", "Other"});
  ASSERT_EQ(8u, all.size());
  EXPECT_EQ(region("Other", 1, 3, 0, 0), all[2]);
  EXPECT_EQ(2u, ask("hr 0 ").size()) << "only the steps";
  EXPECT_EQ((Records{stepRecord(2, 0, 1, "Step-2")}), values(2, {"Node I.3"}));
  EXPECT_EQ(Records{}, values(9, {"Node I.3"}));
}

}  // namespace
}  // namespace odbs::tests
