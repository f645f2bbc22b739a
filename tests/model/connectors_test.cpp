// SPDX-License-Identifier: BSD-3-Clause
// Connector sections and their orientations.
#include "tests/model/model_fixture.h"

namespace odbs::tests {
namespace {

class Connectors : public ModelTest {
 protected:
  void SetUp() override {
    instance_ = &cube();
    assembly_ = &odb_->rootAssembly();
    const odb_SequenceString none = emptyNames(2);
    assembly_->addNodes(ints({1, 2}), floatRows({{0, 0, 0}, {1, 0, 0}}));
    assembly_->addElements(ints({1}), rows({{1, 2}}), none, "CONN3D2");
    const odb_SequenceSequenceFloat points = floatRows({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    csys1_ = assembly_->DatumCsysByThreePoints("CSYS-1", odb_Enum::CARTESIAN, points[0], points[1],
                                               points[2]);
    csys2_ = assembly_->DatumCsysByThreePoints("CSYS-2", odb_Enum::CARTESIAN, points[0], points[1],
                                               points[2]);
  }

  static odb_SequenceString emptyNames(int n) {
    odb_SequenceString names;
    for (int i = 0; i < n; ++i) names.append("");
    return names;
  }

  // The assembly's connector element in a set of that name.
  odb_Set& region(const char* name) {
    odb_SequenceString instanceNames;
    instanceNames.append("");
    return assembly_->ElementSet(name, instanceNames, rows({{1}}));
  }

  // The record of section 1 of that name with an orientation of these texts.
  static Records oriented(const char* section, const char* region, const char* csys1,
                          const char* csys2) {
    Payload record('$');
    return {record.i32(1).text(section).i32(-3).text(region).text(csys1).text(csys2).i32(0)};
  }

  // The record of a connector section of that name.
  Records sentFor(const char* sectionName) {
    assembly_->SectionAssignment(region("ASSIGNED"),
                                 sections_.ConnectorSection(sectionName, "BEAM"));
    return streamed('$');
  }

  odb_Instance* instance_ = nullptr;
  odb_Assembly* assembly_ = nullptr;
  odb_DatumCsys csys1_;
  odb_DatumCsys csys2_;
};

TEST_F(Connectors, TheOrientationOfTheRegionNamedLikeTheSectionIsSent) {
  assembly_->ConnectorOrientation(region("OTHER"), csys2_, odb_Enum::AXIS_1, 0);
  assembly_->ConnectorOrientation(region("CONN-A"), csys1_, odb_Enum::AXIS_1, 0, csys2_,
                                  odb_Enum::AXIS_1, 0);
  EXPECT_EQ(oriented("CONN-A", "CONN-A", "CSYS-1", "CSYS-2"), sentFor("CONN-A"));
}

TEST_F(Connectors, TheFirstMatchCountsWithOrWithoutTheAssemblysPrefix) {
  assembly_->ConnectorOrientation(region("CONN-A"), csys2_, odb_Enum::AXIS_1, 0);
  assembly_->ConnectorOrientation(region("ASSEMBLY_CONN-A"), csys1_, odb_Enum::AXIS_1, 0);
  EXPECT_EQ(oriented("ASSEMBLY_CONN-A", "CONN-A", "CSYS-2", ""), sentFor("ASSEMBLY_CONN-A"))
      << "a missing second system is an empty text";
}

TEST_F(Connectors, TheFullSectionNameIsCompared) {
  assembly_->ConnectorOrientation(region("A"), csys1_, odb_Enum::AXIS_1, 0);
  EXPECT_EQ((Records{Payload('$').i32(1).text("A").i32(-3).i32(0).i32(0)}), sentFor("Section-A"));
}

TEST_F(Connectors, WithoutAnOrientationTheFormIsEmpty) {
  EXPECT_EQ((Records{std::string("$\x01\x00\x00\x00\x06\x00\x00\x00"
                                 "CONN-A\xfd\xff\xff\xff\x00\x00\x00\x00\x00\x00\x00\x00",
                                 27)}),
            sentFor("CONN-A"));
}

TEST_F(Connectors, TheAssemblysElementsAreNumberedByItsOwnAssignments) {
  instance("SECOND", part("Q"));
  assembly_->SectionAssignment(region("ASSIGNED"), sections_.ConnectorSection("P7", "BEAM"));
  odb_embedded::setAssemblyName(*odb_, "ASM");
  const Records records = stream();
  EXPECT_EQ((Records{name("ASM"), Payload('$').i32(7).text("P7").i32(-3).i32(0).i32(0), kMarker}),
            Records(records.begin() + 2, records.begin() + 5));
  EXPECT_EQ((Records{element("C3D8R   ", 10, 0, {1, 2, 3, 4, 5, 6, 7, 8}),
                     Payload(0x04).raw("CONN3D2 ").i32(1).i32(7).i32(2).i32(1).i32(2).zeros(2)}),
            withTag(records, 0x04));
}

}  // namespace
}  // namespace odbs::tests
