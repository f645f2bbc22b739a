// SPDX-License-Identifier: BSD-3-Clause
// Material records.
#include "tests/model/model_fixture.h"

namespace odbs::tests {
namespace {

constexpr int kMaterialTag = 0x11;

class Materials : public ModelTest {
 protected:
  // A record without density: the elastic type, then what follows it, then no acoustic medium.
  static std::string elastic(const char* material, const char* type,
                             const std::vector<float>& values, const std::string& failures = {}) {
    Payload record(kMaterialTag);
    record.text(material).f32(0).text(type);
    for (const float value : values) record.f32(value);
    return record.raw(failures).i32(-1).i32(0);
  }
  // One table of failure data.
  static std::string failure(int kind, const std::vector<float>& values) {
    Payload table(0);
    table.i32(kind);
    for (const float value : values) table.f32(value);
    return std::string(table).substr(1);
  }
};

TEST_F(Materials, AMaterialWithoutBehaviourIsItsName) {
  materials_.Material("BARE");
  EXPECT_EQ((Records{Payload(0x11).text("BARE").f32(0).i32(0).i32(0)}), streamed(kMaterialTag));
}

TEST_F(Materials, DensityAloneLeavesTheElasticTypeEmpty) {
  materials_.Material("LEAD").Density(doubleRows({{11.5, 20}, {11.25, 100}}));
  EXPECT_EQ((Records{std::string("\x11\x04\x00\x00\x00LEAD\x00\x00\x38\x41"
                                 "\x00\x00\x00\x00\x00\x00\x00\x00",
                                 21)}),
            streamed(kMaterialTag));
}

TEST_F(Materials, IsotropicElasticityIsFilledUpWithZeros) {
  materials_.Material("STEEL").Elastic(doubleRows({{210000, 0.3}}));
  EXPECT_EQ((Records{elastic("STEEL", "ISOTROPIC", {210000, 0.3F, 0, 0, 0, 0})}),
            streamed(kMaterialTag));
}

TEST_F(Materials, SixElasticValuesOfTheFirstRowAreSent) {
  materials_.Material("M").Elastic(
      doubleRows({{1, 2, 3, 4, 5, 6, 7, 8, 9}, {10, 20, 30, 40, 50, 60, 70, 80, 90}}),
      "ENGINEERING_CONSTANTS");
  EXPECT_EQ((Records{elastic("M", "ENGINEERING_CONSTANTS", {1, 2, 3, 4, 5, 6})}),
            streamed(kMaterialTag));
}

TEST_F(Materials, EmptyTablesSendZeros) {
  odb_Material& material = materials_.Material("M");
  material.Density(odb_SequenceSequenceDouble());
  material.Elastic(odb_SequenceSequenceDouble(), "SHEAR");
  EXPECT_EQ((Records{Payload(0x11).text("M").f32(0).text("SHEAR").zeros(6).i32(-1).i32(0)}),
            streamed(kMaterialTag));
}

TEST_F(Materials, FailureDataListsStrainBeforeStress) {
  odb_Material& material = materials_.Material("M");
  material.Elastic(doubleRows({{1, 2, 3, 4, 5, 6}}), "LAMINA");
  material.elastic().FailStress(doubleRows({{10, 20, 30, 40, 50, 0.5, 60, 99}}));
  material.elastic().FailStrain(doubleRows({{0.25, 0.5}}));
  EXPECT_EQ((Records{elastic(
                "M", "LAMINA", {1, 2, 3, 4, 5, 6},
                failure(0, {0.25F, 0.5F, 0, 0, 0}) + failure(1, {10, 20, 30, 40, 50, 0.5F, 60}))}),
            streamed(kMaterialTag));
}

TEST_F(Materials, ANameThatARecordCannotHoldIsCutAndTheRestFollows) {
  const std::string longName(12000, 'N');
  odb_Material& material = materials_.Material(longName.c_str());
  material.Elastic(doubleRows({{1}}), "LAMINA");
  const std::string record = streamed(kMaterialTag).at(0);
  const std::string tail =
      Payload(0).f32(0).text("LAMINA").f32(1).zeros(5).i32(-1).i32(0).operator std::string();
  EXPECT_EQ(tail.substr(1), record.substr(record.size() - (tail.size() - 1)));
}

TEST_F(Materials, AnAcousticMediumIsFlagged) {
  materials_.Material("AIR").AcousticMedium(doubleRows({{0.142}}));
  EXPECT_EQ((Records{Payload(0x11).text("AIR").f32(0).i32(0).i32(1)}), streamed(kMaterialTag));
}

TEST_F(Materials, MaterialsFollowTheSectionsAndPrecedeTheNodes) {
  materials_.Material("B");
  materials_.Material("A");
  odb_Instance& instance = cube();
  instance.assignSection(instance.elementSets()["ALL"],
                         sections_.HomogeneousSolidSection("S", "A", 1.0));
  const Records records = stream();
  EXPECT_EQ('$', records[2][0]);
  EXPECT_EQ(std::string(Payload(0x11).text("A").f32(0).i32(0).i32(0)), records[3]);
  EXPECT_EQ(std::string(Payload(0x11).text("B").f32(0).i32(0).i32(0)), records[4]);
  EXPECT_EQ(0x03, records[5][0]);
}

}  // namespace
}  // namespace odbs::tests
