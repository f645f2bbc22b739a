// SPDX-License-Identifier: BSD-3-Clause
// The hexahedral cube of bench/hexahedral_model.h, through the documented write calls alone.
#include "bench/hexahedral_model.h"

#include <odb_API.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>

#include <filesystem>

namespace odbs::bench {

namespace {

void addNodes(odb_Part& part, int n) {
  const int nNodes = n * n * n;
  odb_SequenceInt labels(nNodes);
  odb_SequenceSequenceFloat coordinates(nNodes);
  for (int i = 0; i < nNodes; ++i) {
    labels.append(i + 1);
    odb_SequenceFloat point(3);
    point.append(static_cast<float>(i % n));
    point.append(static_cast<float>(i / n % n));
    point.append(static_cast<float>(i / n / n));
    coordinates.append(point);
  }
  part.addNodes(labels, coordinates);
}

void addElements(odb_Part& part, int n, const odb_SectionCategory& category) {
  odb_SequenceInt labels;
  odb_SequenceSequenceInt connectivity;
  const int corners[8] = {0, 1, n + 1, n, n * n, n * n + 1, n * n + n + 1, n * n + n};
  int nElements = 0;
  for (int z = 0; z + 1 < n; ++z) {
    for (int y = 0; y + 1 < n; ++y) {
      for (int x = 0; x + 1 < n; ++x) {
        odb_SequenceInt nodes(8);
        for (const int corner : corners) nodes.append(1 + x + n * y + n * n * z + corner);
        labels.append(++nElements);
        connectivity.append(nodes);
      }
    }
  }
  part.addElements(labels, connectivity, "C3D8R", "ALL", category);
}

}  // namespace

void writeHexahedralModel(const std::string& path, int nPerEdge) {
  std::filesystem::remove(path);
  odb_Odb& odb = Odb("bench", "Hexahedral cube", "", path.c_str());
  odb_SectionApi sections;
  odb.extendApi(odb_Enum::odb_SECTION, sections);
  odb_MaterialApi materials;
  odb.extendApi(odb_Enum::odb_MATERIAL, materials);
  materials.Material("STEEL");
  odb_HomogeneousSolidSection& section =
      sections.HomogeneousSolidSection("Section-ALL", "STEEL", 1.0);
  odb_SectionCategory& category = odb.SectionCategory("solid < elset = ALL >", "Hexahedra");

  odb_Part& part = odb.Part("CUBE", odb_Enum::THREE_D, odb_Enum::DEFORMABLE_BODY);
  addNodes(part, nPerEdge);
  addElements(part, nPerEdge, category);
  odb_Instance& instance = odb.rootAssembly().Instance("CUBE-1", part);
  instance.assignSection(instance.elementSets()["ALL"], section);
  odb.save();
  odb.close();
}

}  // namespace odbs::bench
