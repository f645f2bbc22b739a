// SPDX-License-Identifier: BSD-3-Clause
// Type names are a family prefix, a number of nodes (or, for line elements, of dimension and
// order), and letters for the formulation. The table holds the prefixes, longest match first.
#include "importer/deck/element_types.h"

#include <algorithm>

#include "base/text.h"

namespace odbs::importer {

namespace {

// How the digits after the prefix give the number of nodes.
enum class Digits {
  count,       // they are the number of nodes
  firstDigit,  // one digit: S8R5 has 8 nodes
  order,       // interpolation order: 1 or 3 has two nodes, 2 has three
  none         // the prefix alone decides
};

struct Row {
  std::string_view prefix;
  Space space;
  Family family;
  Digits digits;
  int nNodes;  // for Digits::none
};

constexpr Space k3D = Space::threeD, kPlane = Space::planar, kAxi = Space::axisymmetric;

constexpr Row kRows[] = {
    // Continua
    {"C3D", k3D, Family::solid, Digits::count, 0},
    {"CIN3D", k3D, Family::solid, Digits::count, 0},
    {"CINPS", kPlane, Family::planar, Digits::count, 0},
    {"CINPE", kPlane, Family::planar, Digits::count, 0},
    {"CINAX", kAxi, Family::planar, Digits::count, 0},
    {"CPS", kPlane, Family::planar, Digits::count, 0},
    {"CPE", kPlane, Family::planar, Digits::count, 0},
    {"CPEG", kPlane, Family::planar, Digits::count, 0},
    {"CAX", kAxi, Family::planar, Digits::count, 0},
    {"CGAX", kAxi, Family::planar, Digits::count, 0},
    {"CCL", k3D, Family::solid, Digits::count, 0},
    {"CSS", k3D, Family::solid, Digits::count, 0},
    {"SC", k3D, Family::solid, Digits::count, 0},
    {"EC3D", k3D, Family::solid, Digits::count, 0},
    {"EMC2D", kPlane, Family::planar, Digits::count, 0},
    {"EMC3D", k3D, Family::solid, Digits::count, 0},
    {"FC3D", k3D, Family::solid, Digits::count, 0},
    {"F3D", k3D, Family::solid, Digits::count, 0},
    {"DC3D", k3D, Family::solid, Digits::count, 0},
    {"DC2D", kPlane, Family::planar, Digits::count, 0},
    {"DC1D", k3D, Family::line, Digits::count, 0},
    {"DCC3D", k3D, Family::solid, Digits::count, 0},
    {"DCC2D", kPlane, Family::planar, Digits::count, 0},
    {"DCC1D", k3D, Family::line, Digits::count, 0},
    {"DCAX", kAxi, Family::planar, Digits::count, 0},
    {"DCCAX", kAxi, Family::planar, Digits::count, 0},
    {"DGAP", k3D, Family::connector, Digits::none, 2},
    {"AC3D", k3D, Family::solid, Digits::count, 0},
    {"AC2D", kPlane, Family::planar, Digits::count, 0},
    {"AC1D", k3D, Family::line, Digits::count, 0},
    {"ACAX", kAxi, Family::planar, Digits::count, 0},
    {"ACIN3D", k3D, Family::shell, Digits::count, 0},
    {"ACIN2D", kPlane, Family::line, Digits::count, 0},
    {"ACINAX", kAxi, Family::line, Digits::count, 0},
    {"ASI3D", k3D, Family::shell, Digits::count, 0},
    {"ASI2D", kPlane, Family::line, Digits::count, 0},
    {"ASIAX", kAxi, Family::line, Digits::count, 0},
    {"ASI", k3D, Family::point, Digits::count, 0},
    {"Q3D", k3D, Family::solid, Digits::count, 0},
    {"PC3D", k3D, Family::point, Digits::none, 1},
    {"PD3D", k3D, Family::point, Digits::none, 1},
    {"COH3D", k3D, Family::solid, Digits::count, 0},
    {"COH2D", kPlane, Family::planar, Digits::count, 0},
    {"COHAX", kAxi, Family::planar, Digits::count, 0},
    {"GK3D", k3D, Family::solid, Digits::count, 0},
    {"GK2D", kPlane, Family::planar, Digits::count, 0},
    {"GKPS", kPlane, Family::planar, Digits::count, 0},
    {"GKPE", kPlane, Family::planar, Digits::count, 0},
    {"GKAX", kAxi, Family::planar, Digits::count, 0},
    // Shells, membranes, surfaces
    {"S", k3D, Family::shell, Digits::firstDigit, 0},
    {"STRI3", k3D, Family::shell, Digits::none, 3},
    {"STRI65", k3D, Family::shell, Digits::none, 6},
    {"DS", k3D, Family::shell, Digits::firstDigit, 0},
    {"LS3S", k3D, Family::connector, Digits::none, 3},
    {"SAX", kAxi, Family::line, Digits::order, 0},
    {"DSAX", kAxi, Family::line, Digits::order, 0},
    {"M3D", k3D, Family::shell, Digits::count, 0},
    {"MCL", k3D, Family::shell, Digits::count, 0},
    {"MAX", kAxi, Family::line, Digits::order, 0},
    {"MGAX", kAxi, Family::line, Digits::order, 0},
    {"SFM3D", k3D, Family::shell, Digits::count, 0},
    {"SFMCL", k3D, Family::shell, Digits::count, 0},
    {"SFMAX", kAxi, Family::line, Digits::order, 0},
    {"SFMGAX", kAxi, Family::line, Digits::order, 0},
    {"R3D", k3D, Family::shell, Digits::count, 0},
    {"R2D", kPlane, Family::line, Digits::count, 0},
    {"RAX", kAxi, Family::line, Digits::count, 0},
    {"RB3D", k3D, Family::line, Digits::count, 0},
    {"RB2D", kPlane, Family::line, Digits::count, 0},
    // Lines
    {"T3D", k3D, Family::line, Digits::count, 0},
    {"T2D", kPlane, Family::line, Digits::count, 0},
    {"B2", kPlane, Family::line, Digits::order, 0},
    {"B3", k3D, Family::line, Digits::order, 0},
    {"PIPE2", kPlane, Family::line, Digits::order, 0},
    {"PIPE3", k3D, Family::line, Digits::order, 0},
    {"ELBOW3", k3D, Family::line, Digits::order, 0},
    {"FRAME2D", kPlane, Family::line, Digits::none, 2},
    {"FRAME3D", k3D, Family::line, Digits::none, 2},
    {"D", k3D, Family::line, Digits::none, 3},
    // Ends and points
    {"CONN3D", k3D, Family::connector, Digits::count, 0},
    {"CONN2D", kPlane, Family::connector, Digits::count, 0},
    {"SPRINGA", k3D, Family::connector, Digits::none, 2},
    {"SPRING1", k3D, Family::point, Digits::none, 1},
    {"SPRING2", k3D, Family::connector, Digits::none, 2},
    {"DASHPOTA", k3D, Family::connector, Digits::none, 2},
    {"DASHPOT1", k3D, Family::point, Digits::none, 1},
    {"DASHPOT2", k3D, Family::connector, Digits::none, 2},
    {"JOINTC", k3D, Family::connector, Digits::none, 2},
    {"JOINT2D", kPlane, Family::connector, Digits::none, 2},
    {"JOINT3D", k3D, Family::connector, Digits::none, 2},
    {"GAPUNI", k3D, Family::connector, Digits::none, 2},
    {"GAPCYL", k3D, Family::connector, Digits::none, 2},
    {"GAPSPHER", k3D, Family::connector, Digits::none, 2},
    {"MASS", k3D, Family::point, Digits::none, 1},
    {"ROTARYI", k3D, Family::point, Digits::none, 1},
    {"HEATCAP", k3D, Family::point, Digits::none, 1},
    {"DCOUP3D", k3D, Family::point, Digits::none, 1},
    {"DCOUP2D", kPlane, Family::point, Digits::none, 1},
    {"FP3D", k3D, Family::line, Digits::count, 0},
    {"FPC3D", k3D, Family::line, Digits::count, 0},
};

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// The number of nodes, or 0 when the digits after the prefix do not give one.
int nodesOf(const Row& row, std::string_view rest) {
  if (row.digits == Digits::none) {
    // Only formulation letters may follow, and none at all after the one-letter network type.
    const bool digits = std::any_of(rest.begin(), rest.end(), isDigit);
    return digits || (row.prefix == "D" && !rest.empty()) ? 0 : row.nNodes;
  }
  if (rest.empty() || !isDigit(rest[0])) return 0;
  if (row.digits == Digits::order) return rest[0] == '2' ? 3 : 2;
  if (row.digits == Digits::firstDigit)
    return rest.size() > 1 && isDigit(rest[1]) ? 0 : rest[0] - '0';
  int n = 0;
  for (std::size_t i = 0; i < rest.size() && isDigit(rest[i]) && n < 100; ++i) {
    n = n * 10 + (rest[i] - '0');
  }
  return n < 100 ? n : 0;
}

// Types whose number of nodes is not what their digits say, or is open.
void applyExceptions(std::string_view name, DeckElementType& type) {
  if (name == "D") type.zeroNodes = true;
  if (startsWith(name, "CONN")) type.grounded = true;
  if (startsWith(name, "C3D15V") || startsWith(name, "C3D27")) type.nNodes = 0;  // optional nodes
  if (startsWith(name, "GK3D12") || startsWith(name, "GK3D18")) type.nNodes = 0;
  if (startsWith(name, "GK3D2N") || startsWith(name, "GK2D2N")) type.nNodes = 2;
  if (startsWith(name, "B2") || startsWith(name, "B3") || startsWith(name, "PIPE") ||
      startsWith(name, "ELBOW") || startsWith(name, "FRAME")) {
    type.extraNodes = true;
  }
}

constexpr int kHexahedron[6][4] = {{0, 1, 2, 3}, {4, 7, 6, 5}, {0, 4, 5, 1},
                                   {1, 5, 6, 2}, {2, 6, 7, 3}, {3, 7, 4, 0}};
constexpr int kTetrahedron[4][4] = {{0, 1, 2, -1}, {0, 3, 1, -1}, {1, 3, 2, -1}, {2, 3, 0, -1}};
constexpr int kWedge[5][4] = {
    {0, 1, 2, -1}, {3, 5, 4, -1}, {0, 3, 4, 1}, {1, 4, 5, 2}, {2, 5, 3, 0}};
constexpr int kPyramid[5][4] = {
    {0, 1, 2, 3}, {0, 4, 1, -1}, {1, 4, 2, -1}, {2, 4, 3, -1}, {3, 4, 0, -1}};

int copyFace(const int (&face)[4], int corners[4]) {
  int n = 0;
  for (const int corner : face) {
    if (corner >= 0) corners[n++] = corner;
  }
  return n;
}

}  // namespace

DeckElementType elementTypeOf(std::string_view name) {
  DeckElementType type;
  const Row* best = nullptr;
  int nodes = 0;
  for (const Row& row : kRows) {
    if (!startsWith(name, row.prefix) || (best && best->prefix.size() >= row.prefix.size()))
      continue;
    const int n = nodesOf(row, name.substr(row.prefix.size()));
    if (n == 0) continue;
    best = &row;
    nodes = n;
  }
  if (!best) return type;
  type.nNodes = nodes;
  type.space = best->space;
  type.family = best->family;
  applyExceptions(name, type);
  return type;
}

int faceCorners(const DeckElementType& type, int face, int corners[4]) {
  if (type.family == Family::planar) {
    const int sides = type.nNodes == 3 || type.nNodes == 6 ? 3 : 4;
    if (face < 1 || face > sides) return 0;
    corners[0] = face - 1;
    corners[1] = face % sides;
    return 2;
  }
  if (type.family != Family::solid || face < 1) return 0;
  switch (type.nNodes) {
    case 8:
    case 20:
    case 27:
      return face <= 6 ? copyFace(kHexahedron[face - 1], corners) : 0;
    case 4:
    case 10:
      return face <= 4 ? copyFace(kTetrahedron[face - 1], corners) : 0;
    case 6:
    case 15:
      return face <= 5 ? copyFace(kWedge[face - 1], corners) : 0;
    case 5:
    case 13:
      return face <= 5 ? copyFace(kPyramid[face - 1], corners) : 0;
    default:
      return 0;
  }
}

}  // namespace odbs::importer
