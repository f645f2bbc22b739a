// SPDX-License-Identifier: BSD-3-Clause
// Material records.
#include "tests/model/model_fixture.h"
#include "tests/support/record_text.h"

namespace odbs::tests {
namespace {

constexpr int kMaterialTag = 0x11;

class Materials : public ModelTest {};

TEST_F(Materials, AreSentWithDensityElasticityFailureDataAndAcousticFlag) {
  materials_.Material("AIR").AcousticMedium(doubleRows({{0.142}}));
  materials_.Material("BARE");
  odb_Material& empty = materials_.Material("EMPTY");
  empty.Density(odb_SequenceSequenceDouble());
  empty.Elastic(odb_SequenceSequenceDouble(), "SHEAR");
  odb_Material& failing = materials_.Material("FAILING");
  failing.Elastic(doubleRows({{1, 2, 3, 4, 5, 6}}), "LAMINA");
  failing.elastic().FailStress(doubleRows({{10, 20, 30, 40, 50, 0.5, 60, 99}}));
  failing.elastic().FailStrain(doubleRows({{0.25, 0.5}}));
  materials_.Material("LEAD").Density(doubleRows({{11.5, 20}, {11.25, 100}}));
  materials_.Material("STEEL").Elastic(doubleRows({{210000, 0.3}}));
  materials_.Material("WOOD").Elastic(
      doubleRows({{1, 2, 3, 4, 5, 6, 7, 8, 9}, {10, 20, 30, 40, 50, 60, 70, 80, 90}}),
      "ENGINEERING_CONSTANTS");
  EXPECT_EQ((Records{record("0x11 'AIR' 0f 0 1"), record("0x11 'BARE' 0f 0 0"),
                     record("0x11 'EMPTY' 0f 'SHEAR' 0f 0f 0f 0f 0f 0f -1 0"),
                     // Strain before stress, five and seven numbers.
                     record("0x11 'FAILING' 0f 'LAMINA' 1f 2f 3f 4f 5f 6f 0 0.25f 0.5f 0f 0f 0f "
                            "1 10f 20f 30f 40f 50f 0.5f 60f -1 0"),
                     record("0x11 'LEAD' 11.5f 0 0"),
                     record("0x11 'STEEL' 0f 'ISOTROPIC' 210000f 0.3f 0f 0f 0f 0f -1 0"),
                     record("0x11 'WOOD' 0f 'ENGINEERING_CONSTANTS' 1f 2f 3f 4f 5f 6f -1 0")}),
            streamed(kMaterialTag))
      << "in the order of their names";
}

TEST_F(Materials, ANameThatARecordCannotHoldIsCutAndTheRestFollows) {
  const std::string longName(12000, 'N');
  odb_Material& material = materials_.Material(longName.c_str());
  material.Elastic(doubleRows({{1}}), "LAMINA");
  const std::string sent = streamed(kMaterialTag).at(0);
  const std::string tail = record("0 0f 'LAMINA' 1f 0f 0f 0f 0f 0f -1 0").substr(1);
  EXPECT_EQ(tail, sent.substr(sent.size() - tail.size()));
}

TEST_F(Materials, FollowTheSectionsAndPrecedeTheNodes) {
  materials_.Material("A");
  odb_Instance& instance = cube();
  instance.assignSection(instance.elementSets()["ALL"],
                         sections_.HomogeneousSolidSection("S", "A", 1.0));
  const Records records = stream();
  EXPECT_EQ('$', records[2][0]);
  EXPECT_EQ(kMaterialTag, records[3][0]);
  EXPECT_EQ(0x03, records[4][0]);
}

}  // namespace
}  // namespace odbs::tests
