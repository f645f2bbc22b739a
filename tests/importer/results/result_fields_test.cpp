// SPDX-License-Identifier: BSD-3-Clause
// Which database field each block of a result file becomes.
#include "importer/results/result_fields.h"

#include <gtest/gtest.h>

namespace odbs::importer {
namespace {

// A block with components "NAME" or "NAME:row column", those with indices of that type.
FrdResult block(const std::string& name, int type, const std::vector<std::string>& components) {
  FrdResult result;
  result.name = name;
  for (const std::string& text : components) {
    const std::size_t colon = text.find(':');
    FrdComponent component{text.substr(0, colon), 1, 0, 0, text == "ALL"};
    if (colon != std::string::npos) {
      component.type = type;
      component.row = text[colon + 1] - '0';
      component.column = text.size() > colon + 2 ? text[colon + 2] - '0' : 0;
    }
    result.nStored += component.derived ? 0 : 1;
    result.components.push_back(component);
  }
  return result;
}

// "NAME shape sources" of each field, "e" before those of elements, "+" after those that add up.
std::string fieldsOf(const FrdResult& head, bool sectionForces = false) {
  constexpr const char* kShapes[] = {"scalar", "vector", "tensor", "strain"};
  std::string text;
  for (const TargetField& field : targetFields(head, sectionForces)) {
    text += (text.empty() ? "" : "; ") + std::string(field.ofElements ? "e " : "") + field.name +
            " " + kShapes[static_cast<int>(field.shape)] + " ";
    for (const int source : field.sources) text += std::to_string(source);
    if (field.addsUp) text += "+";
  }
  return text;
}

TEST(ResultFields, TakeNamesShapesAndOrderOfTheDatabase) {
  const std::vector<std::string> tensor = {":11", ":22", ":33", ":12", ":23", ":31"};
  const struct {
    FrdResult head;
    const char* fields;
  } cases[] = {
      {block("STRESS", 4, tensor), "e S tensor 012354"},
      {block("TOSTRAIN", 4, tensor), "e E strain 012354"},
      {block("DISP", 2, {"ALL", ":1", ":2", ":3", "D4"}), "U vector 012; U_D4 scalar 3"},
      {block("FORC", 2, {":1", ":2", ":3"}), "RF vector 012+"},
      {block("NDTEMP", 1, {"T"}), "NT11 scalar 0"},
      {block("SDV", 1, {"SDV1", "SDV2"}), "e SDV1 scalar 0; e SDV2 scalar 1"},
      {block("SENMASS", 1, {"DFDN", "FIL"}), "SENMASS_DFDN scalar 0; SENMASS_FIL scalar 1"},
      // It looks like a tensor.
      {block("CONTACT", 4,
             {"COPEN:11", "CSLIP1:22", "CSLIP2:33", "CPRESS:12", "CSHEAR1:23", "CSHEAR2:31"}),
       "COPEN scalar 0; CSLIP1 scalar 1; CSLIP2 scalar 2; CPRESS scalar 3; CSHEAR1 scalar 4; "
       "CSHEAR2 scalar 5"},
  };
  for (const auto& c : cases) EXPECT_EQ(fieldsOf(c.head), c.fields);
  EXPECT_EQ(fieldsOf(block("STRESS", 4, tensor), true),
            "e S tensor 012354; e SF vector 210; e SM vector 453");
}

TEST(ResultFields, NameImaginaryPartsWithinEightCharacters) {
  EXPECT_EQ(imaginaryName("DISP"), "DISPI");
  EXPECT_EQ(imaginaryName("TOSTRAIN"), "TOSTRAII");
}

}  // namespace
}  // namespace odbs::importer
