// SPDX-License-Identifier: BSD-3-Clause
// Values that are restricted to the selection set.
#include <algorithm>

#include "tests/regions/layered_model.h"

namespace odbs::tests {
namespace {

using Texts = std::vector<std::string>;

class Selected : public LayeredModel {
 protected:
  // Makes the selection set of these requests, such as "1 0 LAYERED".
  void choose(const std::vector<std::string>& requests) {
    for (const std::string& request : requests) tell("irc " + request);
    ask("irf ");
  }

  // The values of `head` after a selection of the field with `letter`, D or d.
  Texts sent(const std::string& head, char letter = 'D', const char* field = "SE") {
    tell(std::string(1, letter) + " 1 0 2 " + field);
    return values(head);
  }
};

const Texts kShell{"11/1:101", "11/2:102", "11/3:103", "11/4:104",
                   "11/5:105", "11/6:106", "11/7:107"};

TEST_F(Selected, EveryFormSendsSelectedElementsAlone) {
  choose({"1 0 LAYERED"});
  EXPECT_EQ(Texts{}, sent("rs "));
  EXPECT_EQ(kShell, sent("rv "));
  EXPECT_EQ(kShell, sent("rm "));
  EXPECT_EQ((Texts{"11/2:102", "11/5:105"}), sent("rl 2 5,"));
  EXPECT_EQ(Texts{"11/7:107"}, sent("rt "));
  EXPECT_EQ(Texts{"11/1:101"}, sent("rb "));
  EXPECT_EQ(Texts{"11/1:101"}, sent("rg 0.INNER:9:"));
  EXPECT_EQ(Texts{"11/2:102"}, sent("rn PLY-1:STEEL:"));
}

TEST_F(Selected, WithoutTheFlagOrWithAnEmptySetEverythingIsSent) {
  choose({"1 0 LAYERED"});
  EXPECT_EQ(Texts{"20/-1:1000"}, sent("rs ", 'd'));
  choose({"1 0 NONE"});
  EXPECT_EQ(Texts{"20/-1:1000"}, sent("rs "));
  EXPECT_EQ(11u, sent("rv ").size());
}

TEST_F(Selected, ARequestMayFixSectionPoints) {
  choose({"5 2 LAY"});
  EXPECT_EQ(Texts{"11/2:102"}, sent("rv "));
  choose({"8 1 LAY"});
  EXPECT_EQ((Texts{"11/1:101", "11/2:102", "11/3:103"}), sent("rv "));
  choose({"5 2 LAY", "5 3 ONE", "7 0 C3D8"});
  Texts found = sent("rv ");
  std::sort(found.begin(), found.end());
  EXPECT_EQ((Texts{"11/2:102", "12/3:203", "20/-1:1000"}), found);
}

TEST_F(Selected, NodesAreThoseOfNodeSetsAndOfSelectedElements) {
  instance().NodeSet("FIVE", ints({5}));
  instance().NodeSet("FAR", ints({8}));
  choose({"2 0 FIVE"});
  EXPECT_EQ(Texts{"5/-1:5"}, sent("rs ", 'D', "NT"));
  EXPECT_EQ(Texts{}, sent("rv ")) << "a node set selects no elements";
  choose({"5 2 LAY"});
  EXPECT_EQ((Texts{"1/-1:1", "4/-1:4"}), sent("rs ", 'D', "NT"));
  choose({"2 0 FAR"});
  EXPECT_EQ(Texts{}, sent("rs ", 'D', "NT"));
}

TEST_F(Selected, AnotherInstanceIsNotMeant) {
  addInstance();
  choose({"1 0 B.LAYERED", "7 0 B.S4R"});
  EXPECT_EQ(Texts{}, sent("rv "));
  choose({"7 0 A.S4R"});
  EXPECT_EQ(10u, sent("rv ").size());
}

TEST_F(Selected, SoAreConnectorsAndNodesOfTheAssembly) {
  addInstance();
  odb_Assembly& assembly = odb_->rootAssembly();
  odb_embedded::addNodes(assembly, 1, std::vector<int>{90}.data(), std::vector<float>(3).data());
  odb_SequenceString owners;
  for (const char* owner : {"A", ""}) owners.append(owner);
  assembly.addElements(ints({50}), rows({{4, 90}}), owners, "CONN3D2", "CONNS");
  assembly.NodeSet("MIXED", owners, rows({{5}, {90}}));
  frame_.fieldOutputs()["SE"].addData(odb_Enum::WHOLE_ELEMENT, assembly.elementSets()["CONNS"],
                                      floatRows({{500}}));
  odb_SequenceString none;
  none.append("");
  frame_.fieldOutputs()["NT"].addData(odb_Enum::NODAL, assembly.NodeSet("OWN", none, rows({{90}})),
                                      floatRows({{90}}));
  for (const char* request : {"1 0 CONNS", "1 0 ASSEMBLY.CONNS", "7 0 CONN3D2", "4 0 ASSEMBLY"}) {
    choose({request});
    EXPECT_EQ(Texts{"50/-1:500"}, sent("rv ")) << request;
    EXPECT_EQ((Texts{"4/-1:4", "90/-1:90"}), sent("rs ", 'D', "NT")) << request;
  }
  choose({"2 0 MIXED"});
  EXPECT_EQ((Texts{"5/-1:5", "90/-1:90"}), sent("rs ", 'D', "NT"));
  tell("irc 2 0 MIXED");
  const Records sets = ask("irs 0 ");
  ASSERT_EQ(14u, sets.size());
  EXPECT_EQ(name("ASSEMBLY"), sets[10]);
  EXPECT_EQ(Payload(8).i32(90).operator std::string(), sets[11]);
}

TEST_F(Selected, ItOutlivesTheQueriesThatOnlyAsk) {
  choose({"7 0 C3D8"});
  tell("irc 7 0 S4R");
  ask("irs 0 ");
  EXPECT_EQ(Texts{"20/-1:1000"}, sent("rv "));
}

}  // namespace
}  // namespace odbs::tests
