// SPDX-License-Identifier: BSD-3-Clause
// From integration points to nodes and centroids. Values at an element's integration points are
// continued by the polynomial that they determine (the table in extrapolation.cpp), in natural
// coordinates. Where the element's edges are curved such a polynomial does not hold the linear
// functions of x, y, z; then the smallest correction (least sum of squares of the changed weights)
// is added that makes these exact as far as the points determine them. So:
//   hexahedra and quadrilaterals, 2 or 3 points a side   linear fields exact, any geometry
//   hexahedra with 14 points                             linear fields exact, any geometry
//   triangles with 3 points, tetrahedra with 4 or 11     linear fields exact, any geometry
//   pyramids with 5 or 8 points                          linear fields exact, any geometry
//   wedges with 18, 9 or 6 points, lines with 2 or 3     linear fields exact, any geometry
//   wedges with 2 points                                 exact along the axis, constant across
//   one point                                            constant
//   layers (cohesive, gasket) with mid-surface points    exact along the surface, constant across
//   unknown shape, or another number of points           the mean, everywhere
// Quadratic fields are exact too in elements with straight edges and 3 points a side, 14
// (hexahedra), 11 (tetrahedra) or 18 points (wedges).
#pragma once

#include "odb/src/numerics/element_shape.h"

#include <vector>

namespace odbs::engine {

// How values at `nPoints` points of a shape become values at its nodes and centroid.
struct ExtrapolationRule {
  int nNodes = 0;
  int nPoints = 0;
  std::vector<Point> points;   // natural coordinates, in the order of their numbers
  Matrix toNodes;              // nNodes x nPoints
  Matrix toCentre;             // 1 x nPoints
  Matrix pointShape;           // shape functions at the points, nPoints x nNodes
  Matrix centreShape;          // shape functions at the centre, 1 x nNodes
  bool exactForShape = false;  // no correction is ever needed, whatever the nodes' coordinates
};

// The rule, which lives as long as the program; safe to call from several threads. Null for a
// combination that is not in the table.
const ExtrapolationRule* extrapolationRule(Shape shape, int nPoints);

// Weights for one element with nodes at `coordinates` (3 per node, in connectivity order): values
// at the nodes (or, with `centre`, in the one centroid) are weights x values at the points.
// `scratch` is filled and returned when the element needs a correction, else the rule's own matrix.
const Matrix& elementWeights(const ExtrapolationRule& rule, const float* coordinates, bool centre,
                             Matrix& scratch);

}  // namespace odbs::engine
