// SPDX-License-Identifier: BSD-3-Clause
// Histories: how regions are found, subsets, saving again, what is refused. What histories of every
// kind hold after a save is compared as text in tests/odb/round_trip_test.cpp.
#include "tests/odb/fields/results_model.h"

#include <gtest/gtest.h>

namespace odbs::test {
namespace {

using E = odb_Enum;

class History : public testing::Test {
 protected:
  odb_HistoryRegion region(const char* name) { return model_.step().historyRegions()[name]; }
  ResultsModel model_;
};

TEST_F(History, RegionsAreFoundByTheirPointAndLoadCase) {
  odb_Step& step = model_.step();
  const auto pointAt = [&](const char* what) {
    const odb_Instance& p = model_.instance();
    return what == std::string("ip")
               ? odb_HistoryPoint(p.getElementFromLabel(40), 1, model_.point(5))
               : odb_HistoryPoint(p.getNodeFromLabel(1));
  };
  step.HistoryRegion("ip", "", pointAt("ip"));
  step.HistoryRegion("node", "", pointAt("node"), step.LoadCase("LC1"));
  model_.reopen();
  EXPECT_STREQ(model_.step().getHistoryRegion(pointAt("ip")).name().CStr(), "ip");
  const odb_LoadCase& loadCase = model_.step().loadCases()["LC1"];
  EXPECT_STREQ(model_.step().getHistoryRegion(pointAt("node"), loadCase).name().CStr(), "node");
  EXPECT_THROW(
      model_.step().getHistoryRegion(odb_HistoryPoint(model_.instance().getNodeFromLabel(9))),
      odb_Exception);
}

TEST_F(History, SubsetsHoldOneVariableOrASpanOfTime) {
  odb_HistoryRegion& r = model_.step().HistoryRegion("Assembly ASSEMBLY", "",
                                                     odb_HistoryPoint(model_.odb->rootAssembly()));
  r.HistoryOutput("ALLIE", "").addData(rows({{0, 1}, {1, 2}, {2, 3}}));
  r.HistoryOutput("ALLKE", "").addData(rows({{0, 5}}));
  EXPECT_EQ(r.getSubset("ALLKE").historyOutputs().size(), 1);
  EXPECT_EQ(r.getSubset(1.0).historyOutputs("ALLIE").data().size(), 2);
  EXPECT_EQ(r.getSubset(0.5, 1.5).historyOutputs("ALLIE").data().size(), 1);
  EXPECT_EQ(r.getSubset(0.5, 1.5).historyOutputs("ALLKE").data().size(), 0);
  EXPECT_THROW(r.getSubset("NOPE"), odb_Exception);
  odb_HistoryOutput kept;
  { kept = r.getSubset(1.0).historyOutputs("ALLIE"); }
  EXPECT_FLOAT_EQ(kept.data()[1][1], 3);
  EXPECT_THROW(kept.addData(1, 1), odb_Exception);
}

TEST_F(History, SavedHistoriesGrowAndAreSavedAgain) {
  model_.step()
      .HistoryRegion("A", "", odb_HistoryPoint(model_.odb->rootAssembly()))
      .HistoryOutput("X", "")
      .addData(1, 1);
  model_.reopen(false);
  region("A").historyOutputs("X").addData(2, 4);
  model_.odb->save();
  EXPECT_EQ(region("A").historyOutputs("X").data().size(), 2);
  model_.reopen();
  EXPECT_FLOAT_EQ(region("A").historyOutputs("X").data()[1][1], 4);
  EXPECT_THROW(region("A").historyOutputs("X").addData(3, 1), odb_Exception);
  EXPECT_THROW(region("A").HistoryOutput("Y", ""), odb_Exception);
}

TEST_F(History, WhatDoesNotFitIsRefused) {
  odb_HistoryRegion& r =
      model_.step().HistoryRegion("A", "", odb_HistoryPoint(model_.odb->rootAssembly()));
  EXPECT_THROW(model_.step().HistoryRegion("A", "", odb_HistoryPoint()), odb_Exception);
  EXPECT_THROW(model_.step().HistoryRegion("", "", odb_HistoryPoint()), odb_Exception);
  odb_HistoryOutput& x = r.HistoryOutput("X", "");
  EXPECT_THROW(r.HistoryOutput("X", ""), odb_Exception);
  EXPECT_THROW(r.HistoryOutput("V", "", E::VECTOR), odb_Exception);
  EXPECT_THROW(x.addData(floats({1, 2}), floats({1})), odb_Exception);
  EXPECT_THROW(x.addData(rows({{1, 2, 3}})), odb_Exception);
  EXPECT_EQ(x.data().size(), 0);
  EXPECT_THROW(odb_embedded::addFailureTimes(model_.step(), model_.instance(), {99}, {0}),
               odb_Exception);
}

}  // namespace
}  // namespace odbs::test
