// SPDX-License-Identifier: BSD-3-Clause
// Section records, and the section numbers that elements carry.
#include "tests/model/model_fixture.h"

namespace odbs::tests {
namespace {

constexpr int kSectionTag = '$';

// The number that an element record carries.
int sectionOf(const std::string& elementRecord) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(elementRecord[i]); };
  return static_cast<int>(byte(13) | byte(14) << 8 | byte(15) << 16 |
                          static_cast<unsigned>(byte(16)) << 24);
}

class Sections : public ModelTest {
 protected:
  void SetUp() override {
    for (const char* material : {"STEEL", "GLASS", "FOAM", "CARBON"}) {
      materials_.Material(material);
    }
  }

  // The section records of a cube whose elements all have `section`.
  Records sentFor(const odb_Section& section) {
    odb_Instance& instance = cube();
    instance.assignSection(instance.elementSets()["ALL"], section);
    return streamed(kSectionTag);
  }

  // A bar part of trusses 1 to n on nodes 1 and 2, all of one category, with sets "E1", "E2", ...
  // of one element each.
  odb_Part& bars(const char* name, int n, const char* categoryName) {
    odb_Part& bar = part(name);
    bar.addNodes(ints({1, 2}), floatRows({{0, 0, 0}, {1, 0, 0}}));
    odb_SectionCategory& category = odb_->SectionCategory(categoryName, "");
    for (int label = 1; label <= n; ++label) {
      bar.addElements(ints({label}), rows({{1, 2}}), "T3D2", "", category);
      bar.ElementSet(("E" + std::to_string(label)).c_str(), ints({label}));
    }
    return bar;
  }

  odb_Section& solid(const char* name) {
    return sections_.HomogeneousSolidSection(name, "STEEL", 1.0);
  }

  void assign(odb_Instance& instance, const char* set, const odb_Section& section) {
    instance.assignSection(instance.elementSets()[set], section);
  }

  // The numbers of the elements that `g` sends, in order.
  std::vector<int> elementSections() {
    std::vector<int> numbers;
    for (const std::string& record : streamed(0x04)) numbers.push_back(sectionOf(record));
    return numbers;
  }
};

TEST_F(Sections, AHomogeneousSolidSendsItsMaterial) {
  EXPECT_EQ((Records{std::string("$\x01\x00\x00\x00\x07\x00\x00\x00"
                                 "1-STEEL\xfa\xff\xff\xff\x05\x00\x00\x00STEEL\x00\x00\x00\x00",
                                 33)}),
            sentFor(sections_.HomogeneousSolidSection("Section-1-STEEL", "STEEL", 1.0)));
}

TEST_F(Sections, EachKindHasItsCodeAndData) {
  odb_Part& bar = bars("BAR", 10, "truss");
  odb_Instance& instance = this->instance("A", bar);
  Records expected;
  const auto add = [&](const odb_Section& section, const Payload& data) {
    assign(instance, ("E" + std::to_string(expected.size() + 1)).c_str(), section);
    expected.push_back(Payload('$')
                           .i32(static_cast<int>(expected.size()) + 1)
                           .text(section.name().CStr())
                           .raw(std::string(data).substr(1)));
  };
  const auto made = [](int code) { return Payload(0).i32(code).text("STEEL").i32(0); };
  add(sections_.HomogeneousShellSection("A", 0.25, "STEEL"),
      Payload(0).i32(-5).f32(0.25F).text("STEEL").i32(0));
  add(sections_.PointSection("B", 2.5), Payload(0).i32(-4).f32(2.5F).i32(0));
  add(sections_.TrussSection("C", "STEEL"), made(-7));
  add(sections_.PEGSection("D", "STEEL"), made(-8));
  add(sections_.MembraneSection("E", "STEEL"), made(-9));
  add(sections_.GasketSection("F", "STEEL"), made(-10));
  add(sections_.CohesiveSection("G", "STEEL"), made(-11));
  add(sections_.BeamSection("H"), Payload(0).i32(0));
  add(sections_.HomogeneousSolidSection("Section-", "STEEL", 1.0), made(-6));
  EXPECT_EQ(expected, streamed(kSectionTag)) << "a name that is only the prefix is kept";
}

TEST_F(Sections, TextsThatARecordCannotHoldAreCutAndTheRestFollows) {
  const std::string longText(12000, 'N');
  materials_.Material(longText.c_str());
  odb_Instance& bar = instance("BAR", bars("BAR", 2, "truss"));
  assign(bar, "E1", sections_.TrussSection(("A" + longText).c_str(), "STEEL"));
  assign(bar, "E2", sections_.TrussSection("B", longText.c_str()));
  const std::string name = "A" + longText.substr(0, 10240 - 1 - 4 - 4 - 20 - 1);
  const std::string material = longText.substr(0, 10240 - 1 - 4 - 5 - 4 - 4 - 4);
  EXPECT_EQ((Records{Payload('$').i32(1).text(name).i32(-7).text("STEEL").i32(0),
                     Payload('$').i32(2).text("B").i32(-7).text(material).i32(0)}),
            streamed(kSectionTag));
}

TEST_F(Sections, ASectionThatNoElementHasIsNotSent) {
  solid("UNUSED");
  odb_Instance& instance = cube();
  instance.ElementSet("NONE", ints({}));
  assign(instance, "NONE", solid("OF-NOTHING"));
  EXPECT_EQ(Records{}, streamed(kSectionTag));
}

TEST_F(Sections, RecordsComeInContainerOrderWithTheirOwnNumbers) {
  odb_Part& bar = bars("BAR", 3, "truss");
  odb_Instance& instance = this->instance("A", bar);
  assign(instance, "E3", solid("Section-P1"));
  assign(instance, "E1", solid("Section-P2"));
  assign(instance, "E2", solid("OTHER"));
  const Records records = stream();
  EXPECT_EQ((Records{Payload('$').i32(3).text("OTHER").i32(-6).text("STEEL").i32(0),
                     Payload('$').i32(1).text("P1").i32(-6).text("STEEL").i32(0),
                     Payload('$').i32(2).text("P2").i32(-6).text("STEEL").i32(0)}),
            withTag(records, kSectionTag));
  EXPECT_EQ((Records{element("T3D2    ", 1, 2, {1, 2}), element("T3D2    ", 2, 3, {1, 2}),
                     element("T3D2    ", 3, 1, {1, 2})}),
            withTag(records, 0x04));
}

TEST_F(Sections, TheFirstRegionOfASectionIsTheOneThatCounts) {
  odb_Part& bar = bars("BAR", 2, "truss");
  odb_Instance& instance = this->instance("A", bar);
  odb_Section& section = solid("S");
  assign(instance, "E2", section);
  assign(instance, "E1", section);
  EXPECT_EQ((std::vector<int>{0, 1}), elementSections());
}

TEST_F(Sections, ElementsOutsideEveryRegionAreFoundByTheirCategory) {
  odb_Part& bar = bars("BAR", 2, "solid < elset = PLATE >");
  int label = 2;
  for (const char* category : {"connector < elset = PLATE >", "My section", "unknown"}) {
    bar.addElements(ints({++label}), rows({{1, 2}}), "T3D2", "",
                    odb_->SectionCategory(category, ""));
  }
  bar.addElements(ints({6}), rows({{1, 2}}), "T3D2", "",
                  odb_->sectionCategories()["solid < elset = PLATE >"]);
  bar.addElements(ints({7}), rows({{1, 2}}), "T3D2");
  odb_Instance& instance = this->instance("A", bar);
  for (const char* name : {"My section", "PLATE", "Section-PLATE"}) solid(name);
  assign(instance, "E1", solid("A"));
  EXPECT_EQ((std::vector<int>{1, 4, 3, 2, 0, 4, 0}), elementSections());
}

TEST_F(Sections, WidelySpreadLabelsAreFound) {
  odb_Part& bar = part("BAR");
  bar.addNodes(ints({1, 2}), floatRows({{0, 0, 0}, {1, 0, 0}}));
  bar.addElements(ints({5, 900000, 2147483647}), rows({{1, 2}, {1, 2}, {1, 2}}), "T3D2", "ALL");
  odb_Instance& instance = this->instance("A", bar);
  assign(instance, "ALL", solid("S"));
  EXPECT_EQ((std::vector<int>{1, 1, 1}), elementSections());
}

TEST_F(Sections, SeveralInstancesGroupTheirSections) {
  odb_Part& bar = bars("BAR", 1, "truss");
  odb_Instance& b = instance("B", bar);
  odb_Instance& a = instance("A", bar);
  assign(b, "E1", solid("OF-B"));
  odb_Section& ofBoth = solid("OF-BOTH");
  assign(b, "E1", ofBoth);
  assign(a, "E1", ofBoth);
  const Records records = stream();
  const Records block(records.begin() + 2, records.begin() + 8);
  EXPECT_EQ((Records{name("B"), Payload('$').i32(1).text("OF-B").i32(-6).text("STEEL").i32(0),
                     kMarker, name("A"),
                     Payload('$').i32(2).text("OF-BOTH").i32(-6).text("STEEL").i32(0), kMarker}),
            block);
  // The second region of "OF-BOTH", that of B, was dropped.
  EXPECT_EQ((Records{element("T3D2    ", 1, 2, {1, 2}), element("T3D2    ", 1, 1, {1, 2})}),
            withTag(records, 0x04));
}

// ---- Composites ----

class Composites : public Sections {
 protected:
  // Three layers with different material, thickness and angle; the last one's is a name.
  odb_SequenceSectionLayer layup() {
    odb_SequenceSectionLayer layers;
    layers.append(SectionLayer(0.1, "GLASS", odb_Union(30.0)));
    layers.append(SectionLayer(0.2, "FOAM", odb_Union(45)));
    layers.append(SectionLayer(0.4, "CARBON", odb_Union("ORI-1")));
    return layers;
  }

  struct Layer {
    const char* material;
    float thickness, angle;
  };
  static constexpr Layer kGlass{"GLASS", 0.1F, 30}, kFoam{"FOAM", 0.2F, 45},
      kCarbon{"CARBON", 0.4F, 0};
  // The start of a record with `n` runs, and one run.
  static std::string list(int n) { return Payload('$').i32(1).text("C").i32(n); }
  static std::string run(int layer, int nPoints, const Layer& described) {
    Payload run(0);
    run.i32(layer).i32(nPoints).text(described.material).i32(0);
    run.f32(described.thickness).f32(described.angle);
    return std::string(run).substr(1);
  }

  // The record for section "Section-C" with the section points' descriptions in its category.
  Records sentWithPoints(const std::vector<const char*>& descriptions, bool asSolid = false) {
    odb_SectionCategory& category = odb_->SectionCategory("shell < elset = C >", "");
    int number = 0;
    for (const char* description : descriptions) category.SectionPoint(++number, description);
    if (asSolid) return sentFor(sections_.CompositeSolidSection("Section-C", layup()));
    return sentFor(sections_.CompositeShellSection("Section-C", layup()));
  }
};

TEST_F(Composites, EachRunButTheLastDescribesTheLayerAfterIt) {
  EXPECT_EQ((Records{list(3) + run(1, 2, kFoam) + run(2, 1, kCarbon) + run(3, 2, kCarbon)}),
            sentWithPoints({"fraction = -1.0, Layer = 1", "fraction = 1.0, Layer = 1", "Layer =2",
                            "Layer = 3", "Layer = 3 (top)"}));
}

TEST_F(Composites, ALayerThatComesBackIsARunOfItsOwn) {
  EXPECT_EQ((Records{list(3) + run(2, 1, kGlass) + run(1, 1, kFoam) + run(2, 1, kFoam)}),
            sentWithPoints({"Layer = 2", "Layer = 1", "Layer = 2"}));
}

TEST_F(Composites, PointsOfNoLayerAreIgnored) {
  EXPECT_EQ((Records{list(1) + run(2, 2, kFoam)}),
            sentWithPoints({"bottom", "Layer = 2", "Layer = 0", "Layer = 4", "Layer = x",
                            "layer = 1", "Layer = 2"}));
}

TEST_F(Composites, SolidsSendTheSameList) {
  EXPECT_EQ((Records{list(1) + run(1, 1, kGlass)}), sentWithPoints({"Layer = 1"}, true));
}

TEST_F(Composites, ACategoryWithoutPointsGivesAnEmptyList) {
  EXPECT_EQ((Records{list(0)}), sentWithPoints({}));
}

TEST_F(Composites, ASectionThatNoCategoryLeadsToGivesAnEmptyList) {
  odb_SectionCategory& category = odb_->SectionCategory("shell < elset = D >", "");
  category.SectionPoint(1, "Layer = 1");
  EXPECT_EQ((Records{Payload('$').i32(1).text("C").i32(0)}),
            sentFor(sections_.CompositeShellSection("Section-C", layup())));
}

TEST_F(Composites, RunsThatARecordCannotHoldAreLeftOutAndNotCounted) {
  odb_SectionCategory& category = odb_->SectionCategory("shell < elset = C >", "");
  for (int i = 1; i <= 1000; ++i) category.SectionPoint(i, "Layer = 2");
  for (int i = 1001; i <= 2000; ++i) category.SectionPoint(i, i % 2 ? "Layer = 3" : "Layer = 1");
  const Records records = sentFor(sections_.CompositeShellSection("Section-C", layup()));
  ASSERT_EQ(1u, records.size());
  // Entries of 30 and 29 bytes alternately, described by "CARBON" and "GLASS".
  Payload expected('$');
  expected.i32(1).text("C").i32(346).i32(2).i32(1000).text("CARBON").i32(0).f32(0.4F).f32(0);
  EXPECT_EQ(std::string(expected), records[0].substr(0, std::string(expected).size()));
  EXPECT_EQ(14u + 173 * 59, records[0].size());
}

}  // namespace
}  // namespace odbs::tests
