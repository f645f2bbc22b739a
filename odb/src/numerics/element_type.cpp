// SPDX-License-Identifier: BSD-3-Clause
// Element types by name. A name is a family prefix, the number of nodes (for beams: space and
// order), and letters for variants, of which R means reduced integration. Numbers of integration
// points are those of the public element library: the rules that each family is integrated with.
#include "odb/src/numerics/element_shape.h"

#include <cctype>
#include <cstring>

namespace odbs::engine {
namespace {

enum class Group { Solid, Planar, Line, AxisymmetricLine, Beam, ContinuumShell, Layer3D, Layer2D };

struct Family {
  const char* prefix;
  Group group;
};

// Where one prefix is the head of another, the digits that must follow it decide.
const Family kFamilies[] = {
    {"C3D", Group::Solid},
    {"DC3D", Group::Solid},
    {"DCC3D", Group::Solid},
    {"AC3D", Group::Solid},
    {"Q3D", Group::Solid},
    {"EMC3D", Group::Solid},
    {"CSS", Group::Solid},
    {"EC3D", Group::Solid},
    {"CPE", Group::Planar},
    {"CPS", Group::Planar},
    {"CPEG", Group::Planar},
    {"CAX", Group::Planar},
    {"CGAX", Group::Planar},
    {"DC2D", Group::Planar},
    {"DCC2D", Group::Planar},
    {"DCAX", Group::Planar},
    {"DCCAX", Group::Planar},
    {"AC2D", Group::Planar},
    {"ACAX", Group::Planar},
    {"S", Group::Planar},
    {"DS", Group::Planar},
    {"STRI", Group::Planar},
    {"M3D", Group::Planar},
    {"SFM3D", Group::Planar},
    {"T2D", Group::Line},
    {"T3D", Group::Line},
    {"DC1D", Group::Line},
    {"AC1D", Group::Line},
    {"DCC1D", Group::Line},
    {"SAX", Group::AxisymmetricLine},
    {"MAX", Group::AxisymmetricLine},
    {"MGAX", Group::AxisymmetricLine},
    {"DSAX", Group::AxisymmetricLine},
    {"B", Group::Beam},
    {"PIPE", Group::Beam},
    {"ELBOW", Group::Beam},
    {"SC", Group::ContinuumShell},
    {"COH3D", Group::Layer3D},
    {"GK3D", Group::Layer3D},
    {"COH2D", Group::Layer2D},
    {"COHAX", Group::Layer2D},
    {"GKPS", Group::Layer2D},
    {"GKPE", Group::Layer2D},
    {"GKAX", Group::Layer2D},
};

struct Row {
  Group group;
  int number;
  Shape shape;
  int full, reduced;
};

const Row kRows[] = {
    {Group::Solid, 4, Shape::Tet4, 1, 1},
    {Group::Solid, 10, Shape::Tet10, 4, 4},
    {Group::Solid, 5, Shape::Pyramid5, 5, 5},
    {Group::Solid, 13, Shape::Pyramid13, 8, 8},
    {Group::Solid, 6, Shape::Wedge6, 2, 2},
    {Group::Solid, 15, Shape::Wedge15, 9, 9},
    {Group::Solid, 8, Shape::Hex8, 8, 1},
    {Group::Solid, 20, Shape::Hex20, 27, 8},
    {Group::Solid, 27, Shape::Hex27, 27, 14},
    {Group::Planar, 3, Shape::Tri3, 1, 1},
    {Group::Planar, 4, Shape::Quad4, 4, 1},
    {Group::Planar, 6, Shape::Tri6, 3, 3},
    {Group::Planar, 65, Shape::Tri6, 3, 3},
    {Group::Planar, 8, Shape::Quad8, 9, 4},
    {Group::Planar, 9, Shape::Quad9, 9, 4},
    {Group::Line, 2, Shape::Line2, 1, 1},
    {Group::Line, 3, Shape::Line3, 2, 2},
    {Group::AxisymmetricLine, 1, Shape::Line2, 1, 1},
    {Group::AxisymmetricLine, 2, Shape::Line3, 2, 2},
    {Group::Beam, 21, Shape::Line2, 1, 1},
    {Group::Beam, 22, Shape::Line3, 2, 2},
    {Group::Beam, 23, Shape::Line2, 3, 3},
    {Group::Beam, 31, Shape::Line2, 1, 1},
    {Group::Beam, 32, Shape::Line3, 2, 2},
    {Group::Beam, 33, Shape::Line2, 3, 3},
    {Group::ContinuumShell, 6, Shape::Wedge6, 1, 1},
    {Group::ContinuumShell, 8, Shape::Hex8, 1, 1},
    {Group::Layer3D, 6, Shape::Wedge6, 3, 3},
    {Group::Layer3D, 8, Shape::Hex8, 4, 4},
    {Group::Layer3D, 18, Shape::Layer18, 9, 9},
    {Group::Layer2D, 4, Shape::Quad4, 2, 2},
};

ElementType typeIn(Group group, const std::string& prefix, int number, const char* variant) {
  if (prefix == "STRI" && number == 3) return {Shape::Tri3, 3};
  const std::string letters = variant;
  if (group == Group::Solid && number == 15 && letters[0] == 'V') return {Shape::Wedge18, 9};
  // Points at the nodes and in the middle, for stresses at the surface.
  const bool atNodes = letters[0] == 'I' || letters.compare(0, 2, "HS") == 0;
  if (group == Group::Solid && number == 10 && atNodes) return {Shape::Tet10, 11};
  for (const Row& row : kRows) {
    if (row.group != group || row.number != number) continue;
    return {row.shape, std::strchr(variant, 'R') ? row.reduced : row.full};
  }
  return {};
}

}  // namespace

ElementType elementType(const std::string& name) {
  std::string upper = name;
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  for (const Family& family : kFamilies) {
    const std::size_t length = std::strlen(family.prefix);
    if (upper.compare(0, length, family.prefix) != 0) continue;
    std::size_t end = length;
    int number = 0;
    while (end < upper.size() && end < length + 3 &&
           std::isdigit(static_cast<unsigned char>(upper[end]))) {
      number = 10 * number + (upper[end++] - '0');
    }
    if (end > length) return typeIn(family.group, family.prefix, number, upper.c_str() + end);
  }
  return {};
}

Shape shapeWithNodes(Shape ofType, int nNodes) {
  if (ofType == Shape::Wedge18 && nNodes == 15) return Shape::Wedge15;
  if (ofType == Shape::Hex27 && nNodes == 20) return Shape::Hex20;
  if (ofType == Shape::Hex27 && nNodes == 21) return Shape::Hex21;
  return ofType;
}

}  // namespace odbs::engine
