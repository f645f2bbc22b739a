// SPDX-License-Identifier: BSD-3-Clause
// Builds the model, and the sequences that its fields are given.
#include "tests/odb/fields/results_model.h"

namespace odbs::test {

odb_SequenceSequenceFloat counted(int n, int width, float start) {
  odb_SequenceSequenceFloat result;
  for (int i = 0; i < n; ++i) {
    odb_SequenceFloat row;
    for (int k = 0; k < width; ++k) row.append(start++);
    result.append(row);
  }
  return result;
}

namespace {

void fillPart(odb_Odb& odb) {
  odb_SectionCategory& shell = odb.SectionCategory("shell", "< elset = SHELLS >");
  shell.SectionPoint(1, "fraction = -1.0, Layer = 1");
  shell.SectionPoint(5, "fraction = 1.0, Layer = 1");
  odb_Part& part = odb.Part("P", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
  // Layers of four nodes along z, and two more at the side.
  odb_SequenceInt nodes;
  odb_SequenceSequenceFloat coordinates;
  for (int layer = 0; layer < 3; ++layer) {
    for (int corner = 0; corner < 4; ++corner) {
      nodes.append(1 + 4 * layer + corner);
      const float x = corner == 1 || corner == 2 ? 1.0F : 0.0F;
      coordinates.append(floats({x, corner < 2 ? 0.0F : 1.0F, static_cast<float>(layer)}));
    }
  }
  nodes.append(13);
  nodes.append(14);
  coordinates.append(floats({2, 0, 0}));
  coordinates.append(floats({2, 0, 1}));
  part.addNodes(nodes, coordinates);
  odb_SequenceSequenceInt hexahedra, wedges, shells;
  hexahedra.append(ints({1, 2, 3, 4, 5, 6, 7, 8}));
  hexahedra.append(ints({5, 6, 7, 8, 9, 10, 11, 12}));
  wedges.append(ints({2, 13, 3, 6, 14, 7}));
  shells.append(ints({1, 2, 3, 4}));
  shells.append(ints({9, 10, 11, 12}));
  part.addElements(ints({10, 20}), hexahedra, "C3D8");
  part.addElements(ints({30}), wedges, "C3D6");
  part.addElements(ints({40, 50}), shells, "S4R", "", shell);
  part.NodeSet("BASE", ints({1, 2, 3, 4}));
  part.ElementSet("LOWER", ints({10, 30}));
  odb_SequenceElementFace faces;
  faces.append(odb_Enum::FACE1);
  faces.append(odb_Enum::FACE2);
  part.Surface("ENDS", ints({10, 20}), faces);
}

}  // namespace

void fillModel(odb_Odb& odb) {
  fillPart(odb);
  const odb_Part& part = odb.parts()["P"];
  odb.rootAssembly().Instance("P-1", part);
  odb.rootAssembly().Instance("P-2", part);
  odb.Step("Step-1", "the only step", odb_Enum::TIME, 1.0, "", "*STATIC");
}

ResultsModel::ResultsModel() : path(folder.file("results.odb")) {
  odb = &Odb("results", "Title", "Description", path.c_str());
  fillModel(*odb);
}

ResultsModel::~ResultsModel() {
  if (odb && !odb->isClosed()) odb->close();
}

odb_SectionPoint ResultsModel::point(int number) {
  const odb_SequenceSectionPoint& points = odb->sectionCategories()["shell"].sectionPoints();
  for (int i = 0; i < points.size(); ++i) {
    if (points[i].number() == number) return points[i];
  }
  return odb_SectionPoint();
}

void ResultsModel::reopen(bool readOnly) {
  if (!odb->isReadOnly()) odb->save();
  odb->close();
  odb = &openOdb(odb_String(path.c_str()), readOnly);
}

std::vector<int> labels(const int* values, int n) {
  return values ? std::vector<int>(values, values + n) : std::vector<int>();
}

}  // namespace odbs::test
