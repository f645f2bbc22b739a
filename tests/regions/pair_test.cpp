// SPDX-License-Identifier: BSD-3-Clause
// Values at the section points of two layers.
#include <algorithm>

#include "tests/regions/layered_model.h"

namespace odbs::tests {
namespace {

using Texts = std::vector<std::string>;

class Pairs : public LayeredModel {
 protected:
  // The values of a pair.
  Texts pair(const std::string& items, char letter = 'g') {
    tell("d 1 0 2 SE");
    return values(std::string("r") + letter + " " + items + ":");
  }
};

TEST_F(Pairs, AreSentAsBlocksUnderFieldsOneAndTwo) {
  tell("d 1 0 2 SE");
  const auto block = [](const char* type, int field, int number) -> std::string {
    return Payload(0x1E).raw(type).i32(field).i32(number);
  };
  EXPECT_EQ((Records{title("A title"), analysisKind(-1), Payload('%').i32(1),
                     block("S4R     ", 1, 1), Payload(0x1F).i32(11).i32(-1).i32(0).f32(101),
                     block("S4R     ", 2, 3), Payload(0x15).f32(103)}),
            ask("rn PLY-1.INNER:PLY-1.OUTER:"));
}

TEST_F(Pairs, ByNumberPickWhatTheCodeSays) {
  const struct {
    const char* items;
    Texts values;
  } rows[] = {
      // The second item names a layer that no element has.
      {"2.INNER:9", {"11/4:104"}},
      {"2.OUTER:9", {"11/7:107"}},
      {"2.MINIMUM:9", {"11/4:104", "11/5:105", "11/6:106", "11/7:107"}},
      {"2.MAXIMUM:9", {"11/4:104", "11/5:105", "11/6:106", "11/7:107"}},
      {"2.3:9", {"11/6:106"}},
      {"2.5:9", {}},          // the layer has four points
      {"2:9", {"11/5:105"}},  // of four points the inner one in the middle
      // Elements without layer 2 send nothing; layer 1 is that of the homogeneous shell, too.
      {"1:9", {"11/2:102", "12/2:202"}},
      {"-1.-1:9", {"11/1:101", "12/1:201"}},
      // The whole section; the solid has no section points, its values count as one.
      {"0.INNER:9", {"11/1:101", "12/1:201", "20/-1:1000"}},
      {"0.OUTER:9", {"11/7:107", "12/3:203", "20/-1:1000"}},
      {"0:9", {"11/4:104", "12/2:202", "20/-1:1000"}},
      {"0.7:9", {"11/7:107"}},
      // The same point may serve both items.
      {"2.INNER:2.1", {"11/4:104", "11/4:104"}},
      {"1.OUTER:2.INNER", {"11/3:103", "12/3:203", "11/4:104"}},
  };
  for (const auto& row : rows) {
    Texts found = pair(row.items);
    Texts expected = row.values;
    std::sort(found.begin(), found.end());  // the order of blocks is the database's
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(expected, found) << row.items;
  }
}

TEST_F(Pairs, ByNameFindPliesThenMaterialsThenSections) {
  const struct {
    const char* name;
    Texts values;
  } rows[] = {{"PLY-1", {"11/2:102"}}, {"CARBON", {"11/2:102"}},
              {"GLASS", {"11/5:105"}}, {"STEEL", {"12/2:202", "20/-1:1000"}},
              {"LAY", {"11/4:104"}},   {"Section-LAY", {"11/4:104"}},
              {"BODY", {"20/-1:1000"}}};
  for (const auto& row : rows) {
    Texts found = pair(std::string(row.name) + ":ONE.3", 'n');
    Texts expected = row.values;
    expected.push_back("12/3:203");
    std::sort(found.begin(), found.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(expected, found) << row.name;
  }
}

TEST_F(Pairs, ANameThatExistsNowhereEndsAfterTheHeaders) {
  tell("d 1 0 2 SE");
  for (const char* items : {"NONE:LAY", "LAY:NONE", ":LAY"}) {
    EXPECT_EQ((Records{title("A title"), analysisKind(-1)}), ask(std::string("rn ") + items + ":"))
        << items;
  }
  EXPECT_EQ(Records{}, ask("rn LAY:")) << "one colon";
}

TEST_F(Pairs, LayersOfASymmetricLayupAreMirrored) {
  odb_SequenceSectionLayer half;
  half.append(
      SectionLayer(1, "CARBON", 0.0, 3, "AXIS_3", 0, "ROTATION_NONE", "SPECIFY_THICKNESS", "SKIN"));
  half.append(SectionLayer(1, "GLASS"));
  sections_.CompositeShellSection("Section-SYM", half, true);
  odb_SectionCategory& category = odb_->SectionCategory("shell < elset = SYM >", "");
  for (int i = 1; i <= 4; ++i) {
    category.SectionPoint(i, ("Layer = " + std::to_string(i)).c_str());
  }
  odb_Part& part = odb_->Part("Q", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
  part.addNodes(ints({1, 2, 3}), floatRows({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}));
  part.addElements(ints({7}), rows({{1, 2, 3}}), "S3", "", category);
  odb_Instance& q = odb_->rootAssembly().Instance("Q", part);
  odb_FieldOutput& field = frame_.fieldOutputs()["SE"];
  for (int i = 1; i <= 4; ++i) {
    field.addData(odb_Enum::CENTROID, q, ints({7}), floatRows({{static_cast<float>(i)}}),
                  category.sectionPoints()[i - 1]);
  }
  EXPECT_EQ((Texts{"7/1:1", "7/4:4"}), pair("SKIN.INNER:SKIN.OUTER", 'n'));
}

}  // namespace
}  // namespace odbs::tests
