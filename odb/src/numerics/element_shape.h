// SPDX-License-Identifier: BSD-3-Clause
// Element shapes: for each kind of element its nodes in natural coordinates, in the order of the
// connectivity, and its shape functions. Natural coordinates (r, s, t) run from -1 to 1 along lines
// and across quadrilaterals and hexahedra; in triangles and tetrahedra they are the area or volume
// coordinates of nodes 2, 3 (and 4), from 0 to 1; a wedge is a triangle in (r, s) and a line in t.
// In pyramids (r, s) run from -1 to 1 across each section parallel to the base, and t from 0 at the
// apex to 1 in the base.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace odbs::engine {

enum class Shape {
  Unknown,
  Line2,
  Line3,
  Tri3,
  Tri6,
  Quad4,
  Quad8,
  Quad9,
  Tet4,
  Tet10,
  Pyramid5,
  Pyramid13,
  Wedge6,
  Wedge15,
  Wedge18,
  Hex8,
  Layer18,  // quadratic in (r, s), linear in t
  Hex20,
  Hex21,  // a node in the middle
  Hex27
};

// What the points of a rule are laid out on: the shape without its mid nodes.
enum class Solid {
  Unknown,
  Line,
  Triangle,
  Quadrilateral,
  Tetrahedron,
  Pyramid,
  Wedge,
  Hexahedron
};

using Point = std::array<double, 3>;

// Powers of r, s, t.
using Monomial = std::array<int, 3>;

// Value of a monomial at a point.
double evaluate(const Monomial& monomial, const Point& at);

Solid solidOf(Shape shape);

// Natural coordinates of the nodes; empty for Shape::Unknown.
const std::vector<Point>& shapeNodes(Shape shape);

// The place that "centroid" means: the middle in natural coordinates.
Point shapeCentre(Shape shape);

// Shape function values at a natural point, one per node.
std::vector<double> shapeFunctions(Shape shape, const Point& at);

// A dense matrix, row by row.
struct Matrix {
  int rows = 0, columns = 0;
  std::vector<double> values;
  Matrix() = default;
  Matrix(int nRows, int nColumns)
      : rows(nRows),
        columns(nColumns),
        values(static_cast<std::size_t>(nRows) * static_cast<std::size_t>(nColumns)) {}
  double& at(int i, int j) { return values[static_cast<std::size_t>(i * columns + j)]; }
  double at(int i, int j) const { return values[static_cast<std::size_t>(i * columns + j)]; }
};

// Weights W with sum over j of W(i, j) f(from[j]) = f(to[i]) for every f spanned by `basis`, which
// the points `from` must determine. With more points than members of the basis the weights give the
// f of least squares.
Matrix interpolationWeights(const std::vector<Monomial>& basis, const std::vector<Point>& from,
                            const std::vector<Point>& to);

// What an element type's name says.
struct ElementType {
  Shape shape = Shape::Unknown;
  int nPoints = 0;  // integration points, per section point where the type has section points
};

// Looks up a type such as "C3D20R" or "CPS4"; letter case does not matter. Shape::Unknown for types
// without integration points or of a shape that is not known here.
ElementType elementType(const std::string& name);

// The shape of an element that leaves out nodes of its type (C3D15V, C3D27): that of its number of
// nodes where this says which are there, else the type's own.
Shape shapeWithNodes(Shape ofType, int nNodes);

}  // namespace odbs::engine
