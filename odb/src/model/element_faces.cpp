// SPDX-License-Identifier: BSD-3-Clause
// Which nodes lie on the faces of an element, for the standard node numbering of each shape:
// hexahedra 1-4 below 5-8, wedges 1-3 below 4-6, tetrahedra 1-3 below 4; edge nodes after the
// corners, first the lower ring, then the upper one, then the upright edges.
#include "odb/src/model/database.h"

#include <cstring>

namespace odbs::engine {

namespace {

struct Face {
  const char* shape;  // "hex", "wedge", "tet", "quad", "tri"
  int nNodes;         // nodes of the element
  int face;           // number of the face, 1 on
  std::initializer_list<int> nodes;
};

const Face kFaces[] = {
    {"hex", 8, 1, {1, 2, 3, 4}},
    {"hex", 8, 2, {5, 8, 7, 6}},
    {"hex", 8, 3, {1, 5, 6, 2}},
    {"hex", 8, 4, {2, 6, 7, 3}},
    {"hex", 8, 5, {3, 7, 8, 4}},
    {"hex", 8, 6, {4, 8, 5, 1}},
    {"hex", 20, 1, {1, 2, 3, 4, 9, 10, 11, 12}},
    {"hex", 20, 2, {5, 8, 7, 6, 16, 15, 14, 13}},
    {"hex", 20, 3, {1, 5, 6, 2, 17, 13, 18, 9}},
    {"hex", 20, 4, {2, 6, 7, 3, 18, 14, 19, 10}},
    {"hex", 20, 5, {3, 7, 8, 4, 19, 15, 20, 11}},
    {"hex", 20, 6, {4, 8, 5, 1, 20, 16, 17, 12}},
    {"tet", 4, 1, {1, 2, 3}},
    {"tet", 4, 2, {1, 4, 2}},
    {"tet", 4, 3, {2, 4, 3}},
    {"tet", 4, 4, {3, 4, 1}},
    {"tet", 10, 1, {1, 2, 3, 5, 6, 7}},
    {"tet", 10, 2, {1, 4, 2, 8, 9, 5}},
    {"tet", 10, 3, {2, 4, 3, 9, 10, 6}},
    {"tet", 10, 4, {3, 4, 1, 10, 8, 7}},
    {"wedge", 6, 1, {1, 2, 3}},
    {"wedge", 6, 2, {4, 6, 5}},
    {"wedge", 6, 3, {1, 4, 5, 2}},
    {"wedge", 6, 4, {2, 5, 6, 3}},
    {"wedge", 6, 5, {3, 6, 4, 1}},
    {"wedge", 15, 1, {1, 2, 3, 7, 8, 9}},
    {"wedge", 15, 2, {4, 6, 5, 12, 11, 10}},
    {"wedge", 15, 3, {1, 4, 5, 2, 13, 10, 14, 7}},
    {"wedge", 15, 4, {2, 5, 6, 3, 14, 11, 15, 8}},
    {"wedge", 15, 5, {3, 6, 4, 1, 15, 12, 13, 9}},
    {"quad", 4, 1, {1, 2}},
    {"quad", 4, 2, {2, 3}},
    {"quad", 4, 3, {3, 4}},
    {"quad", 4, 4, {4, 1}},
    {"quad", 8, 1, {1, 5, 2}},
    {"quad", 8, 2, {2, 6, 3}},
    {"quad", 8, 3, {3, 7, 4}},
    {"quad", 8, 4, {4, 8, 1}},
    {"tri", 3, 1, {1, 2}},
    {"tri", 3, 2, {2, 3}},
    {"tri", 3, 3, {3, 1}},
    {"tri", 6, 1, {1, 4, 2}},
    {"tri", 6, 2, {2, 5, 3}},
    {"tri", 6, 3, {3, 6, 1}},
};

// Solids are told by their dimension in the type's name (C3D8, AC3D20); anything else with as many
// nodes as a plane shape is one.
const char* shapeOf(const odb_String& type, int nNodes) {
  const bool solid =
      std::strstr(type.CStr(), "3D") != nullptr && type.CStr()[0] != 'S' && type.CStr()[0] != 'M';
  switch (nNodes) {
    case 8:
      return solid ? "hex" : "quad";
    case 20:
      return "hex";
    case 4:
      return solid ? "tet" : "quad";
    case 10:
      return "tet";
    case 6:
      return solid ? "wedge" : "tri";
    case 15:
      return "wedge";
    case 3:
      return "tri";
    default:
      return "";
  }
}

}  // namespace
}  // namespace odbs::engine

odb_SequenceInt odb_Instance::nodesLabelsFromNodeTypeFace(
    int elementLabel, odb_Enum::odb_ElementFaceEnum face) const {
  const odb_Element element = getElementFromLabel(elementLabel);
  int n = 0;
  const int* labels = element.connectivity(n);
  const char* shape = odbs::engine::shapeOf(element.type(), n);
  const int number = face - odb_Enum::FACE1 + 1;
  odb_SequenceInt out;
  for (const odbs::engine::Face& row : odbs::engine::kFaces) {
    if (row.nNodes != n || row.face != number || std::strcmp(row.shape, shape) != 0) continue;
    for (const int node : row.nodes) out.append(labels[node - 1]);
  }
  // The sides of shells are all of their nodes.
  if (face == odb_Enum::SIDE1 || face == odb_Enum::SIDE2) {
    for (int i = 0; i < n; ++i) out.append(labels[i]);
  }
  return out;
}
