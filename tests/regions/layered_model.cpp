// SPDX-License-Identifier: BSD-3-Clause
// The fixture of tests/regions/layered_model.h.
#include "tests/regions/layered_model.h"

#include "base/bytes.h"

namespace odbs::tests {

namespace {

constexpr const char* kLayered = "shell < elset = LAY >";
constexpr const char* kOne = "shell < elset = ONE >";

}  // namespace

LayeredModel::LayeredModel() {
  path_ = folder_.file("layers.odb");
  odb_ = &Odb("layers", "A title", "", path_.c_str());
  odb_->extendApi(odb_Enum::odb_SECTION, sections_);
  odb_MaterialApi materials;
  odb_->extendApi(odb_Enum::odb_MATERIAL, materials);
  for (const char* name : {"CARBON", "GLASS", "STEEL"}) materials.Material(name);
  odb_SequenceSectionLayer layup;
  layup.append(SectionLayer(1, "CARBON", 0.0, 3, "AXIS_3", 0, "ROTATION_NONE", "SPECIFY_THICKNESS",
                            "PLY-1"));
  layup.append(SectionLayer(2, "GLASS"));
  const odb_Section& layered = sections_.CompositeShellSection("Section-LAY", layup);
  sections_.HomogeneousShellSection("Section-ONE", 0.5, "STEEL");
  sections_.HomogeneousSolidSection("Section-BODY", "STEEL");

  odb_SectionCategory& lay = odb_->SectionCategory(kLayered, "");
  for (int i = 1; i <= 7; ++i) {
    lay.SectionPoint(i, i <= 3 ? "fraction = 0, Layer = 1" : "fraction = 0, Layer = 2");
  }
  odb_SectionCategory& one = odb_->SectionCategory(kOne, "");
  for (int i = 1; i <= 3; ++i) one.SectionPoint(i, "fraction = 0");
  odb_Part& body = odb_->Part("P", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
  std::vector<std::vector<float>> corners;
  for (const float z : {0.0F, 1.0F}) {
    corners.insert(corners.end(), {{0, 0, z}, {1, 0, z}, {1, 1, z}, {0, 1, z}});
  }
  body.addNodes(ints({1, 2, 3, 4, 5, 6, 7, 8}), floatRows(corners));
  body.addElements(ints({11}), rows({{1, 2, 3, 4}}), "S4R", "LAYERED", lay);
  body.addElements(ints({12}), rows({{5, 6, 7, 8}}), "S4R", "", one);
  body.addElements(ints({20}), rows({{1, 2, 3, 4, 5, 6, 7, 8}}), "C3D8", "",
                   odb_->SectionCategory("solid < elset = BODY >", ""));
  odb_Instance& a = odb_->rootAssembly().Instance("A", body);
  a.assignSection(a.elementSets()["LAYERED"], layered);

  odb_Step& step = odb_->Step("Step-1", "", odb_Enum::TIME, 1.0, "", "*STATIC");
  frame_ = step.Frame(1, 1);
  odb_FieldOutput& field = frame_.FieldOutput("SE", "", odb_Enum::SCALAR);
  for (int p = 1; p <= 7; ++p) {
    field.addData(odb_Enum::CENTROID, a, ints({11}), floatRows({{100.0F + static_cast<float>(p)}}),
                  point(kLayered, p));
  }
  for (int p = 1; p <= 3; ++p) {
    field.addData(odb_Enum::CENTROID, a, ints({12}), floatRows({{200.0F + static_cast<float>(p)}}),
                  point(kOne, p));
  }
  field.addData(odb_Enum::CENTROID, a, ints({20}), floatRows({{1000}}));
  odb_FieldOutput& nodal = frame_.FieldOutput("NT", "", odb_Enum::SCALAR);
  nodal.addData(odb_Enum::NODAL, a, ints({1, 4, 5}), floatRows({{1}, {4}, {5}}));
}

LayeredModel::~LayeredModel() {
  if (odb_) odb_->close();
}

odb_SectionPoint LayeredModel::point(const char* category, int number) {
  return odb_->sectionCategories()[category].sectionPoints()[number - 1];
}

void LayeredModel::save() {
  if (!odb_) return;
  odb_->save();
  odb_->close();
  odb_ = nullptr;
  server_ = std::make_unique<ServerProcess>();
}

void LayeredModel::tell(const std::string& line) {
  save();
  server_->send(line);
}

Records LayeredModel::ask(const std::string& head) {
  save();
  return recordsOf(*server_, head + path_);
}

std::vector<std::string> LayeredModel::values(const std::string& head) {
  std::vector<std::string> found;
  int label = 0;
  int point = 0;
  for (const std::string& record : ask(head)) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(record.data());
    const unsigned tag = bytes[0];
    if (tag == 0x1E) point = getI32(bytes + 13);
    if (tag < 0x15 || tag > 0x22 || (tag > 0x18 && tag < 0x1F)) continue;
    if (tag >= 0x1F) label = getI32(bytes + 1);
    const auto value = static_cast<int>(getF32(bytes + record.size() - 4));
    found.push_back(std::to_string(label) + "/" + std::to_string(point) + ":" +
                    std::to_string(value));
  }
  return found;
}

}  // namespace odbs::tests
