// SPDX-License-Identifier: BSD-3-Clause
// Which database field each block of a result file becomes.
#include "importer/result_fields.h"

#include <gtest/gtest.h>

namespace odbs::importer {
namespace {

FrdComponent component(const std::string& name, int type, int row = 0, int column = 0,
                       bool derived = false) {
  return {name, type, row, column, derived};
}

FrdResult block(const std::string& name, std::vector<FrdComponent> components) {
  FrdResult result;
  result.name = name;
  for (const FrdComponent& c : components) result.nStored += c.derived ? 0 : 1;
  result.components = std::move(components);
  return result;
}

TEST(ResultFields, PutTensorsInTheDatabasesOrder) {
  const auto fields = targetFields(block(
      "STRESS", {component("SXX", 4, 1, 1), component("SYY", 4, 2, 2), component("SZZ", 4, 3, 3),
                 component("SXY", 4, 1, 2), component("SYZ", 4, 2, 3), component("SZX", 4, 3, 1)}));
  ASSERT_EQ(fields.size(), 1u);
  EXPECT_EQ(fields[0].name, "S");
  EXPECT_EQ(fields[0].shape, FieldShape::tensor);
  EXPECT_TRUE(fields[0].ofElements);
  EXPECT_EQ(fields[0].sources, (std::vector<int>{0, 1, 2, 3, 5, 4}));
}

TEST(ResultFields, LeaveDerivedComponentsOut) {
  const auto fields = targetFields(
      block("DISP", {component("ALL", 2, 0, 0, true), component("D1", 2, 1), component("D2", 2, 2),
                     component("D3", 2, 3), component("D4", 1)}));
  ASSERT_EQ(fields.size(), 2u);
  EXPECT_EQ(fields[0].name, "U");
  EXPECT_EQ(fields[0].sources, (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(fields[1].name, "U_D4");
  EXPECT_EQ(fields[1].shape, FieldShape::scalar);
  EXPECT_EQ(fields[1].sources, (std::vector<int>{3}));
}

TEST(ResultFields, TakeContactApartThoughItLooksLikeATensor) {
  const auto fields = targetFields(
      block("CONTACT", {component("COPEN", 4, 1, 1), component("CSLIP1", 4, 2, 2),
                        component("CSLIP2", 4, 3, 3), component("CPRESS", 4, 1, 2),
                        component("CSHEAR1", 4, 2, 3), component("CSHEAR2", 4, 3, 1)}));
  ASSERT_EQ(fields.size(), 6u);
  for (const TargetField& field : fields) {
    EXPECT_EQ(field.shape, FieldShape::scalar);
    if (field.name == "CPRESS") {
      EXPECT_EQ(field.sources, (std::vector<int>{3}));
    }
  }
}

TEST(ResultFields, NameScalarsByFieldOrComponent) {
  const auto one = targetFields(block("NDTEMP", {component("T", 1)}));
  ASSERT_EQ(one.size(), 1u);
  EXPECT_EQ(one[0].name, "NT11");
  const auto many = targetFields(block("SDV", {component("SDV1", 1), component("SDV2", 1)}));
  ASSERT_EQ(many.size(), 2u);
  EXPECT_EQ(many[1].name, "SDV2");
  EXPECT_TRUE(many[1].ofElements);
  const auto unknown = targetFields(block("SENMASS", {component("DFDN", 1), component("FIL", 1)}));
  ASSERT_EQ(unknown.size(), 2u);
  EXPECT_EQ(unknown[0].name, "SENMASS_DFDN");
}

TEST(ResultFields, KnowWhichValuesAddUp) {
  const std::vector<FrdComponent> vector = {component("1", 2, 1), component("2", 2, 2),
                                            component("3", 2, 3)};
  EXPECT_TRUE(targetFields(block("FORC", vector))[0].addsUp);
  EXPECT_FALSE(targetFields(block("DISP", vector))[0].addsUp);
}

TEST(ResultFields, NameImaginaryPartsWithinEightCharacters) {
  EXPECT_EQ(imaginaryName("DISP"), "DISPI");
  EXPECT_EQ(imaginaryName("TOSTRAIN"), "TOSTRAII");
}

}  // namespace
}  // namespace odbs::importer
