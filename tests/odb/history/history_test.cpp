// SPDX-License-Identifier: BSD-3-Clause
// Histories: points of every kind, values, conjugate parts, subsets, failure times.
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

TEST_F(History, OfANodeComesBack) {
  const odb_HistoryPoint point(model_.instance().getNodeFromLabel(5));
  odb_HistoryRegion& r = model_.step().HistoryRegion("Node P-1.5", "Output at node 5", point);
  odb_HistoryOutput& u = r.HistoryOutput("U1", "Displacement");
  u.addData(0.5, 1.25);
  u.addData(floats({1, 2}), floats({3, 4}));
  u.addData(rows({{3, 9}}));
  model_.reopen();
  const odb_HistoryRegion back = region("Node P-1.5");
  EXPECT_EQ(back.position(), E::NODAL);
  EXPECT_STREQ(back.description().CStr(), "Output at node 5");
  EXPECT_EQ(back.historyPoint().node().label(), 5);
  EXPECT_EQ(back.point().element().label(), -1);
  EXPECT_STREQ(back.historyPoint().region().name().CStr(), "");
  EXPECT_STREQ(back.historyPoint().instance().name().CStr(), "P-1");
  EXPECT_STREQ(back.historyPoint().assembly().name().CStr(), "");
  EXPECT_STREQ(back.loadCase().name().CStr(), "");
  const odb_HistoryOutput& output = back.historyOutputs("U1");
  const odb_SequenceSequenceFloat& data = output.data();
  ASSERT_EQ(data.size(), 4);
  EXPECT_FLOAT_EQ(data[0][0], 0.5F);
  EXPECT_FLOAT_EQ(data[0][1], 1.25F);
  EXPECT_FLOAT_EQ(data[3][1], 9);
  EXPECT_EQ(output.conjugateData().size(), 0);
  EXPECT_EQ(output.type(), E::SCALAR);
}

TEST_F(History, PointsOfEveryKindComeBack) {
  odb_Step& step = model_.step();
  const odb_Element shell = model_.instance().getElementFromLabel(40);
  const odb_Node node = model_.instance().getNodeFromLabel(2);
  step.HistoryRegion("ip", "", odb_HistoryPoint(shell, 1, model_.point(5)));
  step.HistoryRegion("face", "", odb_HistoryPoint(shell, 0, odb_SectionPoint(), E::SPOS));
  step.HistoryRegion("whole", "", odb_HistoryPoint(shell));
  step.HistoryRegion("corner", "",
                     odb_HistoryPoint(shell, 0, odb_SectionPoint(), E::FACE_UNKNOWN, node));
  step.HistoryRegion("set", "", odb_HistoryPoint(model_.instance().nodeSets()["BASE"]));
  step.HistoryRegion("assembly", "", odb_HistoryPoint(model_.odb->rootAssembly()));
  step.HistoryRegion("instance", "", odb_HistoryPoint(model_.instance("P-2")));
  model_.reopen();
  EXPECT_EQ(region("ip").position(), E::INTEGRATION_POINT);
  EXPECT_EQ(region("ip").historyPoint().ipNumber(), 1);
  EXPECT_EQ(region("ip").historyPoint().sectionPoint().number(), 5);
  EXPECT_EQ(region("ip").historyPoint().element().label(), 40);
  EXPECT_EQ(region("face").position(), E::ELEMENT_FACE);
  EXPECT_EQ(region("face").historyPoint().face(), E::SPOS);
  EXPECT_EQ(region("whole").position(), E::WHOLE_ELEMENT);
  EXPECT_EQ(region("corner").position(), E::ELEMENT_NODAL);
  EXPECT_EQ(region("corner").historyPoint().node().label(), 2);
  EXPECT_STREQ(region("set").historyPoint().region().name().CStr(), "BASE");
  EXPECT_STREQ(region("assembly").historyPoint().assembly().name().CStr(), "ASSEMBLY");
  EXPECT_STREQ(region("instance").historyPoint().instance().name().CStr(), "P-2");
  const odb_HistoryPoint same(model_.instance().getElementFromLabel(40), 1, model_.point(5));
  EXPECT_STREQ(model_.step().getHistoryRegion(same).name().CStr(), "ip");
  EXPECT_THROW(
      model_.step().getHistoryRegion(odb_HistoryPoint(model_.instance().getNodeFromLabel(9))),
      odb_Exception);
}

TEST_F(History, ConjugateValuesAndLoadCasesComeBack) {
  odb_LoadCase& loadCase = model_.step().LoadCase("LC1");
  const odb_HistoryPoint point(model_.instance().getNodeFromLabel(1));
  odb_HistoryRegion& r = model_.step().HistoryRegion("Node P-1.1", "", point, loadCase);
  odb_HistoryOutput& u = r.HistoryOutput("U1", "");
  u.addData(10, 1);
  odb_embedded::addConjugateData(u, rows({{10, -2}}));
  model_.reopen();
  ASSERT_EQ(region("Node P-1.1").historyOutputs("U1").conjugateData().size(), 1);
  EXPECT_FLOAT_EQ(region("Node P-1.1").historyOutputs("U1").conjugateData()[0][1], -2);
  EXPECT_STREQ(region("Node P-1.1").loadCase().name().CStr(), "LC1");
  const odb_HistoryPoint again(model_.instance().getNodeFromLabel(1));
  const odb_LoadCase& same = model_.step().loadCases()["LC1"];
  EXPECT_STREQ(model_.step().getHistoryRegion(again, same).name().CStr(), "Node P-1.1");
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
}

TEST_F(History, FailureTimesComeBackByStep) {
  odb_embedded::addFailureTimes(model_.step(), model_.instance(), {10, 30}, {0.25F, 0.75F});
  odb_embedded::addFailureTimes(model_.step(), model_.instance("P-2"), {20}, {0.5F});
  EXPECT_THROW(odb_embedded::addFailureTimes(model_.step(), model_.instance(), {99}, {0}),
               odb_Exception);
  model_.reopen();
  const auto times = odbs::engine::failureTimes(model_.step());
  ASSERT_EQ(times.size(), 3U);
  EXPECT_EQ(times[1].elementLabel, 30);
  EXPECT_FLOAT_EQ(times[1].time, 0.75F);
  EXPECT_STREQ(times[2].instance.name().CStr(), "P-2");
}

}  // namespace
}  // namespace odbs::test
