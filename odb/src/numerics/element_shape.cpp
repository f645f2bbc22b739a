// SPDX-License-Identifier: BSD-3-Clause
// Node tables and polynomial spaces of the shapes. A shape's functions are the one polynomial of
// its space per node that is 1 there and 0 at the other nodes. Sources: O.C. Zienkiewicz, R.L.
// Taylor, "The Finite Element Method", vol. 1, chapters on standard and mapped shape functions
// (Lagrange and serendipity families, tetrahedra, prisms); pyramids: G. Bedrosian, "Shape functions
// and integration formulas for three-dimensional finite element analysis", Int. J. Numer. Meth.
// Eng. 35 (1992), whose rational functions are polynomials in the coordinates used here. Node order
// of quadratic elements as in input decks: corners, then mid-edge nodes base, top, uprights, then
// the centre and face centres.
#include "odb/src/numerics/element_shape.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace odbs::engine {
namespace {

// Line3 stands apart: its middle node is the second one.
const std::vector<Point> kLine2Nodes = {{-1, 0, 0}, {1, 0, 0}};
const std::vector<Point> kLine3Nodes = {{-1, 0, 0}, {0, 0, 0}, {1, 0, 0}};
const std::vector<Point> kTriNodes = {{0, 0, 0},   {1, 0, 0},     {0, 1, 0},
                                      {0.5, 0, 0}, {0.5, 0.5, 0}, {0, 0.5, 0}};
const std::vector<Point> kQuadNodes = {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0},  {-1, 1, 0}, {0, -1, 0},
                                       {1, 0, 0},   {0, 1, 0},  {-1, 0, 0}, {0, 0, 0}};
const std::vector<Point> kTetNodes = {{0, 0, 0},     {1, 0, 0},     {0, 1, 0},   {0, 0, 1},
                                      {0.5, 0, 0},   {0.5, 0.5, 0}, {0, 0.5, 0}, {0, 0, 0.5},
                                      {0.5, 0, 0.5}, {0, 0.5, 0.5}};
const std::vector<Point> kWedgeNodes = {
    {0, 0, -1},   {1, 0, -1},     {0, 1, -1},   {0, 0, 1},   {1, 0, 1},     {0, 1, 1},
    {0.5, 0, -1}, {0.5, 0.5, -1}, {0, 0.5, -1}, {0.5, 0, 1}, {0.5, 0.5, 1}, {0, 0.5, 1},
    {0, 0, 0},    {1, 0, 0},      {0, 1, 0},    {0.5, 0, 0}, {0.5, 0.5, 0}, {0, 0.5, 0}};
const std::vector<Point> kPyramidNodes = {
    {-1, -1, 1}, {1, -1, 1}, {1, 1, 1},     {-1, 1, 1},   {0, 0, 0},   {0, -1, 1},  {1, 0, 1},
    {0, 1, 1},   {-1, 0, 1}, {-1, -1, 0.5}, {1, -1, 0.5}, {1, 1, 0.5}, {-1, 1, 0.5}};
const std::vector<Point> kLayerNodes = {
    {-1, -1, -1}, {1, -1, -1}, {1, 1, -1},  {-1, 1, -1}, {-1, -1, 1}, {1, -1, 1},
    {1, 1, 1},    {-1, 1, 1},  {0, -1, -1}, {1, 0, -1},  {0, 1, -1},  {-1, 0, -1},
    {0, -1, 1},   {1, 0, 1},   {0, 1, 1},   {-1, 0, 1},  {0, 0, -1},  {0, 0, 1}};
const std::vector<Point> kHexNodes = {
    {-1, -1, -1}, {1, -1, -1}, {1, 1, -1},  {-1, 1, -1}, {-1, -1, 1}, {1, -1, 1}, {1, 1, 1},
    {-1, 1, 1},   {0, -1, -1}, {1, 0, -1},  {0, 1, -1},  {-1, 0, -1}, {0, -1, 1}, {1, 0, 1},
    {0, 1, 1},    {-1, 0, 1},  {-1, -1, 0}, {1, -1, 0},  {1, 1, 0},   {-1, 1, 0}, {0, 0, 0},
    {0, 0, -1},   {0, 0, 1},   {0, -1, 0},  {1, 0, 0},   {0, 1, 0},   {-1, 0, 0}};

// Spaces, ordered so that a smaller shape of the family takes the head of the list.
const std::vector<Monomial> kLineSpace = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}};
const std::vector<Monomial> kTriSpace = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0},
                                         {2, 0, 0}, {1, 1, 0}, {0, 2, 0}};
const std::vector<Monomial> kQuadSpace = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {2, 0, 0},
                                          {0, 2, 0}, {2, 1, 0}, {1, 2, 0}, {2, 2, 0}};
const std::vector<Monomial> kTetSpace = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {2, 0, 0},
                                         {0, 2, 0}, {0, 0, 2}, {1, 1, 0}, {1, 0, 1}, {0, 1, 1}};
const std::vector<Monomial> kWedgeSpace = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1},
                                           {0, 1, 1}, {2, 0, 0}, {1, 1, 0}, {0, 2, 0}, {2, 0, 1},
                                           {1, 1, 1}, {0, 2, 1}, {0, 0, 2}, {1, 0, 2}, {0, 1, 2},
                                           {2, 0, 2}, {1, 1, 2}, {0, 2, 2}};
// x = r t and y = s t are Cartesian; with t they make the polynomials, and r s t = x y / t, r r s t
// t = x x y / t, r s s t t the functions that the base needs besides.
const std::vector<Monomial> kPyramidSpace = {{0, 0, 0}, {1, 0, 1}, {0, 1, 1}, {0, 0, 1}, {1, 1, 1},
                                             {2, 0, 2}, {0, 2, 2}, {0, 0, 2}, {1, 1, 2}, {1, 0, 2},
                                             {0, 1, 2}, {2, 1, 2}, {1, 2, 2}};
const std::vector<Monomial> kLayerSpace = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {2, 0, 0},
                                           {0, 2, 0}, {2, 1, 0}, {1, 2, 0}, {2, 2, 0}, {0, 0, 1},
                                           {1, 0, 1}, {0, 1, 1}, {1, 1, 1}, {2, 0, 1}, {0, 2, 1},
                                           {2, 1, 1}, {1, 2, 1}, {2, 2, 1}};
const std::vector<Monomial> kHex21Space = {
    {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 0}, {1, 0, 1}, {0, 1, 1},
    {1, 1, 1}, {2, 0, 0}, {0, 2, 0}, {0, 0, 2}, {2, 1, 0}, {2, 0, 1}, {1, 2, 0},
    {0, 2, 1}, {1, 0, 2}, {0, 1, 2}, {2, 1, 1}, {1, 2, 1}, {1, 1, 2}, {2, 2, 2}};
const std::vector<Monomial> kHexSpace = {
    {0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 0}, {1, 0, 1}, {0, 1, 1},
    {1, 1, 1}, {2, 0, 0}, {0, 2, 0}, {0, 0, 2}, {2, 1, 0}, {2, 0, 1}, {1, 2, 0},
    {0, 2, 1}, {1, 0, 2}, {0, 1, 2}, {2, 1, 1}, {1, 2, 1}, {1, 1, 2}, {2, 2, 0},
    {2, 0, 2}, {0, 2, 2}, {2, 2, 1}, {2, 1, 2}, {1, 2, 2}, {2, 2, 2}};

struct ShapeRow {
  Shape shape;
  Solid solid;
  int nNodes;
  const std::vector<Point>* nodes;
  const std::vector<Monomial>* space;
};

const ShapeRow kShapes[] = {
    {Shape::Line2, Solid::Line, 2, &kLine2Nodes, &kLineSpace},
    {Shape::Line3, Solid::Line, 3, &kLine3Nodes, &kLineSpace},
    {Shape::Tri3, Solid::Triangle, 3, &kTriNodes, &kTriSpace},
    {Shape::Tri6, Solid::Triangle, 6, &kTriNodes, &kTriSpace},
    {Shape::Quad4, Solid::Quadrilateral, 4, &kQuadNodes, &kQuadSpace},
    {Shape::Quad8, Solid::Quadrilateral, 8, &kQuadNodes, &kQuadSpace},
    {Shape::Quad9, Solid::Quadrilateral, 9, &kQuadNodes, &kQuadSpace},
    {Shape::Tet4, Solid::Tetrahedron, 4, &kTetNodes, &kTetSpace},
    {Shape::Tet10, Solid::Tetrahedron, 10, &kTetNodes, &kTetSpace},
    {Shape::Pyramid5, Solid::Pyramid, 5, &kPyramidNodes, &kPyramidSpace},
    {Shape::Pyramid13, Solid::Pyramid, 13, &kPyramidNodes, &kPyramidSpace},
    {Shape::Wedge6, Solid::Wedge, 6, &kWedgeNodes, &kWedgeSpace},
    {Shape::Wedge15, Solid::Wedge, 15, &kWedgeNodes, &kWedgeSpace},
    {Shape::Wedge18, Solid::Wedge, 18, &kWedgeNodes, &kWedgeSpace},
    {Shape::Hex8, Solid::Hexahedron, 8, &kHexNodes, &kHexSpace},
    {Shape::Layer18, Solid::Hexahedron, 18, &kLayerNodes, &kLayerSpace},
    {Shape::Hex20, Solid::Hexahedron, 20, &kHexNodes, &kHexSpace},
    {Shape::Hex21, Solid::Hexahedron, 21, &kHexNodes, &kHex21Space},
    {Shape::Hex27, Solid::Hexahedron, 27, &kHexNodes, &kHexSpace},
};

// A shape with its nodes cut to length and its shape functions' coefficients.
struct ShapeData {
  std::vector<Point> nodes;
  std::vector<Monomial> space;
  Matrix coefficients;  // row = monomial, column = node
};

// Inverse by Gauss-Jordan elimination with row exchange.
Matrix inverse(Matrix a) {
  const int n = a.rows;
  Matrix result(n, n);
  for (int i = 0; i < n; ++i) result.at(i, i) = 1;
  for (int column = 0; column < n; ++column) {
    int pivot = column;
    for (int i = column + 1; i < n; ++i) {
      if (std::fabs(a.at(i, column)) > std::fabs(a.at(pivot, column))) pivot = i;
    }
    if (std::fabs(a.at(pivot, column)) < 1e-12) {
      throw std::logic_error("interpolation points do not determine the polynomial");
    }
    for (int j = 0; j < n; ++j) {
      std::swap(a.at(column, j), a.at(pivot, j));
      std::swap(result.at(column, j), result.at(pivot, j));
    }
    const double scale = 1 / a.at(column, column);
    for (int j = 0; j < n; ++j) {
      a.at(column, j) *= scale;
      result.at(column, j) *= scale;
    }
    for (int i = 0; i < n; ++i) {
      const double factor = a.at(i, column);
      if (i == column || factor == 0) continue;
      for (int j = 0; j < n; ++j) {
        a.at(i, j) -= factor * a.at(column, j);
        result.at(i, j) -= factor * result.at(column, j);
      }
    }
  }
  return result;
}

Matrix product(const Matrix& a, const Matrix& b) {
  Matrix result(a.rows, b.columns);
  for (int i = 0; i < a.rows; ++i) {
    for (int k = 0; k < a.columns; ++k) {
      for (int j = 0; j < b.columns; ++j) result.at(i, j) += a.at(i, k) * b.at(k, j);
    }
  }
  return result;
}

Matrix transposed(const Matrix& a) {
  Matrix result(a.columns, a.rows);
  for (int i = 0; i < a.rows; ++i) {
    for (int j = 0; j < a.columns; ++j) result.at(j, i) = a.at(i, j);
  }
  return result;
}

// Values of the basis: row = point, column = basis function.
Matrix basisValues(const std::vector<Monomial>& basis, const std::vector<Point>& points) {
  Matrix values(static_cast<int>(points.size()), static_cast<int>(basis.size()));
  for (int i = 0; i < values.rows; ++i) {
    for (int j = 0; j < values.columns; ++j) {
      values.at(i, j) =
          evaluate(basis[static_cast<std::size_t>(j)], points[static_cast<std::size_t>(i)]);
    }
  }
  return values;
}

const ShapeRow* rowOf(Shape shape) {
  for (const ShapeRow& row : kShapes) {
    if (row.shape == shape) return &row;
  }
  return nullptr;
}

const ShapeData& dataOf(Shape shape) {
  static const std::vector<ShapeData> all = [] {
    std::vector<ShapeData> list(1);
    for (const ShapeRow& row : kShapes) {
      ShapeData data;
      data.nodes.assign(row.nodes->begin(), row.nodes->begin() + row.nNodes);
      data.space.assign(row.space->begin(), row.space->begin() + row.nNodes);
      data.coefficients = inverse(basisValues(data.space, data.nodes));
      list.push_back(std::move(data));
    }
    return list;
  }();
  const ShapeRow* row = rowOf(shape);
  return all[row ? static_cast<std::size_t>(row - kShapes) + 1 : 0];
}

}  // namespace

double evaluate(const Monomial& monomial, const Point& at) {
  double value = 1;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    for (int power = 0; power < monomial[axis]; ++power) value *= at[axis];
  }
  return value;
}

Solid solidOf(Shape shape) {
  const ShapeRow* row = rowOf(shape);
  return row ? row->solid : Solid::Unknown;
}

const std::vector<Point>& shapeNodes(Shape shape) {
  return dataOf(shape).nodes;
}

Point shapeCentre(Shape shape) {
  switch (solidOf(shape)) {
    case Solid::Triangle:
    case Solid::Wedge:
      return {1.0 / 3, 1.0 / 3, 0};
    case Solid::Tetrahedron:
      return {0.25, 0.25, 0.25};
    case Solid::Pyramid:
      return {0, 0, 0.75};
    default:
      return {0, 0, 0};
  }
}

std::vector<double> shapeFunctions(Shape shape, const Point& at) {
  const ShapeData& data = dataOf(shape);
  std::vector<double> values(data.nodes.size(), 0.0);
  for (std::size_t m = 0; m < data.space.size(); ++m) {
    const double term = evaluate(data.space[m], at);
    for (std::size_t a = 0; a < values.size(); ++a) {
      values[a] += term * data.coefficients.at(static_cast<int>(m), static_cast<int>(a));
    }
  }
  return values;
}

Matrix interpolationWeights(const std::vector<Monomial>& basis, const std::vector<Point>& from,
                            const std::vector<Point>& to) {
  const Matrix values = basisValues(basis, from);
  const Matrix target = basisValues(basis, to);
  // As many points as functions: the inverse. More: the normal equations.
  const bool square = values.rows == values.columns;
  const Matrix coefficients =
      square ? inverse(values)
             : product(inverse(product(transposed(values), values)), transposed(values));
  return product(target, coefficients);
}

}  // namespace odbs::engine
