// SPDX-License-Identifier: BSD-3-Clause
// The integration rules. Sources: Gauss-Legendre abscissae and products of them: K.J. Bathe,
// "Finite Element Procedures", tables 5.6 and 5.7; triangle and tetrahedron rules of degree 2:
// T.J.R. Hughes, "The Finite Element Method", tables 3.I.1 and 3.I.2 (after P.C. Hammer and A.H.
// Stroud); triangle with 6 points: G.R. Cowper, "Gaussian quadrature formulas for triangles", Int.
// J. Numer. Meth. Eng. 7 (1973); hexahedron with 14 points: B.M. Irons, "Quadrature rules for brick
// based finite elements", Int. J. Numer. Meth. Eng. 3 (1971); pyramid with 5 points: C.A. Felippa,
// "A compendium of FEM integration formulas for symbolic work", Eng. Comput. 21 (2004); pyramid
// with 8 points: A.H. Stroud, "Approximate Calculation of Multiple Integrals" (1971), conical
// products.
//
// Points are numbered with r running fastest, then s, then t (in pyramids levels from the base up);
// in triangles and tetrahedra point i lies nearest to node i. Of Irons' points the corners come
// first, then those towards the faces -r, +r, -s, +s, -t, +t; 11 points of tetrahedra are the nodes
// and the middle.
#include "odb/src/numerics/extrapolation.h"

#include "odb/src/numerics/tensor.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace odbs::engine {
namespace {

constexpr double kGauss2 = 0.57735026918962576;  // 1 / sqrt 3
constexpr double kGauss3 = 0.77459666924148338;  // sqrt 0.6
// Spread, relative to the widest direction, that is more than the noise of single precision.
constexpr double kLeastSpread = 1e-4;
constexpr double kTetNear = 0.58541019662496852, kTetFar = 0.13819660112501052;

std::vector<Point> gaussLine(int n) {
  if (n == 1) return {{0, 0, 0}};
  if (n == 2) return {{-kGauss2, 0, 0}, {kGauss2, 0, 0}};
  return {{-kGauss3, 0, 0}, {0, 0, 0}, {kGauss3, 0, 0}};
}

const std::vector<Point> kTriPoint = {{1.0 / 3, 1.0 / 3, 0}};
const std::vector<Point> kTriPoints = {
    {1.0 / 6, 1.0 / 6, 0}, {2.0 / 3, 1.0 / 6, 0}, {1.0 / 6, 2.0 / 3, 0}};
const std::vector<Point> kTetPoint = {{0.25, 0.25, 0.25}};
const std::vector<Point> kTetPoints = {{kTetFar, kTetFar, kTetFar},
                                       {kTetNear, kTetFar, kTetFar},
                                       {kTetFar, kTetNear, kTetFar},
                                       {kTetFar, kTetFar, kTetNear}};
// Irons: points towards the faces at sqrt(19 / 30), towards the corners at sqrt(19 / 33).
constexpr double kIronsFace = 0.79582242575422147, kIronsCorner = 0.75878691063932815;
const std::vector<Point> kIronsPoints = {{-kIronsCorner, -kIronsCorner, -kIronsCorner},
                                         {kIronsCorner, -kIronsCorner, -kIronsCorner},
                                         {-kIronsCorner, kIronsCorner, -kIronsCorner},
                                         {kIronsCorner, kIronsCorner, -kIronsCorner},
                                         {-kIronsCorner, -kIronsCorner, kIronsCorner},
                                         {kIronsCorner, -kIronsCorner, kIronsCorner},
                                         {-kIronsCorner, kIronsCorner, kIronsCorner},
                                         {kIronsCorner, kIronsCorner, kIronsCorner},
                                         {-kIronsFace, 0, 0},
                                         {kIronsFace, 0, 0},
                                         {0, -kIronsFace, 0},
                                         {0, kIronsFace, 0},
                                         {0, 0, -kIronsFace},
                                         {0, 0, kIronsFace}};
// All quadratic functions and r s t, which hexahedra with straight edges need: fitted.
const std::vector<Monomial> kIronsBasis = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1},
                                           {1, 1, 0}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1},
                                           {2, 0, 0}, {0, 2, 0}, {0, 0, 2}};

// Cowper: near the corners, then near the middles of the edges.
constexpr double kCowperNear = 0.091576213509770743, kCowperFar = 0.44594849091596489;
const std::vector<Point> kCowperPoints = {
    {kCowperNear, kCowperNear, 0},         {1 - 2 * kCowperNear, kCowperNear, 0},
    {kCowperNear, 1 - 2 * kCowperNear, 0}, {kCowperFar, 1 - 2 * kCowperFar, 0},
    {kCowperFar, kCowperFar, 0},           {1 - 2 * kCowperFar, kCowperFar, 0}};
const std::vector<Monomial> kTriQuadratic = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0},
                                             {2, 0, 0}, {1, 1, 0}, {0, 2, 0}};

// Felippa: 8 sqrt(2 / 15) / 5 in a sixth of the height, and one point at seven tenths.
constexpr double kFelippa = 0.58423739467217719;
const std::vector<Point> kPyramidPoints = {{-kFelippa, -kFelippa, 5.0 / 6},
                                           {kFelippa, -kFelippa, 5.0 / 6},
                                           {-kFelippa, kFelippa, 5.0 / 6},
                                           {kFelippa, kFelippa, 5.0 / 6},
                                           {0, 0, 0.3}};
const std::vector<Monomial> kPyramidBasis = {{0, 0, 0}, {1, 0, 1}, {0, 1, 1}, {0, 0, 1}, {1, 1, 1}};
// Gauss-Jacobi abscissae for the weight t t on 0 to 1: roots of t t - 4 t / 3 + 2 / 5.
constexpr double kJacobiBase = 0.87748517734455863, kJacobiTop = 0.45584815598877473;
const std::vector<Monomial> kConicalBasis = {{0, 0, 0}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1},
                                             {0, 0, 1}, {1, 0, 2}, {0, 1, 2}, {1, 1, 2}};

const std::vector<Monomial> kConstant = {{0, 0, 0}};
const std::vector<Monomial> kLinear = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

// Points and polynomial of the product of a line along `axis` with n points and a lower shape.
struct Layout {
  std::vector<Point> points;
  std::vector<Monomial> basis;
};

Layout timesLine(const Layout& base, int n, std::size_t axis) {
  Layout result;
  for (const Point& on : gaussLine(n)) {
    for (Point p : base.points) {
      p[axis] = on[0];
      result.points.push_back(p);
    }
  }
  for (int power = 0; power < n; ++power) {
    for (Monomial m : base.basis) {
      m[axis] = power;
      result.basis.push_back(m);
    }
  }
  return result;
}

Layout lines(int nR, int nS, int nT) {
  const Layout point = {{{0, 0, 0}}, kConstant};
  return timesLine(timesLine(timesLine(point, nR, 0), nS, 1), nT, 2);
}

Layout triangle(int n) {
  if (n == 1) return {kTriPoint, kConstant};
  if (n == 6) return {kCowperPoints, kTriQuadratic};
  return {kTriPoints, {kLinear.begin(), kLinear.begin() + 3}};
}

// The nodes and the middle, where r s t is the function that vanishes at the nodes.
Layout tetrahedronNodes() {
  Layout layout = {shapeNodes(Shape::Tet10), kLinear};
  layout.points.push_back(shapeCentre(Shape::Tet10));
  for (const Monomial& m :
       {Monomial{2, 0, 0}, {0, 2, 0}, {0, 0, 2}, {1, 1, 0}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1}}) {
    layout.basis.push_back(m);
  }
  return layout;
}

Layout pyramid(int n) {
  if (n == 1) return {{shapeCentre(Shape::Pyramid5)}, kConstant};
  if (n == 5) return {kPyramidPoints, kPyramidBasis};
  Layout layout = {{}, kConicalBasis};
  for (const double t : {kJacobiBase, kJacobiTop}) {
    for (Point p : lines(2, 2, 1).points) {
      p[2] = t;
      layout.points.push_back(p);
    }
  }
  return layout;
}

// Empty when there is no such rule.
Layout layoutOf(Solid solid, int n) {
  switch (solid) {
    case Solid::Line:
      if (n <= 3) return lines(n, 1, 1);
      break;
    case Solid::Triangle:
      if (n == 1 || n == 3) return triangle(n);
      break;
    case Solid::Quadrilateral:
      if (n <= 2) return lines(n, 1, 1);  // two points: the mid-line of a layer element
      if (n == 4 || n == 9) return lines(n == 4 ? 2 : 3, n == 4 ? 2 : 3, 1);
      break;
    case Solid::Tetrahedron:
      if (n == 1) return {kTetPoint, kConstant};
      if (n == 4) return {kTetPoints, kLinear};
      if (n == 11) return tetrahedronNodes();
      break;
    case Solid::Pyramid:
      if (n == 1 || n == 5 || n == 8) return pyramid(n);
      break;
    case Solid::Wedge:
      if (n <= 2) return timesLine(triangle(1), n, 2);
      if (n % 3 == 0 && n <= 9) return timesLine(triangle(3), n / 3, 2);
      if (n == 18) return timesLine(triangle(6), 3, 2);
      break;
    case Solid::Hexahedron:
      if (n == 1) return lines(1, 1, 1);
      if (n == 4) return lines(2, 2, 1);  // the mid-surface of a layer element
      if (n == 9) return lines(3, 3, 1);
      if (n == 14) return {kIronsPoints, kIronsBasis};
      if (n == 8 || n == 27) return lines(n == 8 ? 2 : 3, n == 8 ? 2 : 3, n == 8 ? 2 : 3);
      break;
    default:
      break;
  }
  return {};
}

Matrix shapeMatrix(Shape shape, const std::vector<Point>& points) {
  Matrix result(static_cast<int>(points.size()), static_cast<int>(shapeNodes(shape).size()));
  for (int i = 0; i < result.rows; ++i) {
    const std::vector<double> row = shapeFunctions(shape, points[static_cast<std::size_t>(i)]);
    std::copy(row.begin(), row.end(), &result.at(i, 0));
  }
  return result;
}

// True when extrapolating the shape functions themselves gives them back at the nodes: then every
// field that is linear in x, y, z comes out exact wherever the nodes lie.
bool reproducesShape(const ExtrapolationRule& rule) {
  for (int a = 0; a < rule.nNodes; ++a) {
    for (int b = 0; b < rule.nNodes; ++b) {
      double sum = a == b ? -1 : 0;
      for (int g = 0; g < rule.nPoints; ++g)
        sum += rule.toNodes.at(a, g) * rule.pointShape.at(g, b);
      if (std::fabs(sum) > 1e-9) return false;
    }
  }
  return true;
}

ExtrapolationRule makeRule(Shape shape, Layout layout) {
  ExtrapolationRule rule;
  const std::vector<Point> centre = {shapeCentre(shape)};
  rule.nNodes = static_cast<int>(shapeNodes(shape).size());
  rule.nPoints = static_cast<int>(layout.points.size());
  rule.toNodes = interpolationWeights(layout.basis, layout.points, shapeNodes(shape));
  rule.toCentre = interpolationWeights(layout.basis, layout.points, centre);
  rule.pointShape = shapeMatrix(shape, layout.points);
  rule.centreShape = shapeMatrix(shape, centre);
  rule.points = std::move(layout.points);
  rule.exactForShape = rule.nPoints == 1 || reproducesShape(rule);
  return rule;
}

using Rules = std::map<std::pair<Shape, int>, ExtrapolationRule>;

Rules makeRules() {
  Rules rules;
  for (int s = static_cast<int>(Shape::Line2); s <= static_cast<int>(Shape::Hex27); ++s) {
    for (int n = 1; n <= 27; ++n) {
      const Shape shape = static_cast<Shape>(s);
      Layout layout = layoutOf(solidOf(shape), n);
      if (!layout.points.empty()) rules[{shape, n}] = makeRule(shape, std::move(layout));
    }
  }
  return rules;
}

// Positions in space of natural points with the given shape function values.
std::vector<Point> positions(const Matrix& shape, const float* coordinates) {
  std::vector<Point> result(static_cast<std::size_t>(shape.rows), Point{});
  for (int i = 0; i < shape.rows; ++i) {
    for (int a = 0; a < shape.columns; ++a) {
      for (std::size_t d = 0; d < 3; ++d) {
        result[static_cast<std::size_t>(i)][d] +=
            shape.at(i, a) * static_cast<double>(coordinates[3 * static_cast<std::size_t>(a) + d]);
      }
    }
  }
  return result;
}

// Adds to `weights` the smallest change that makes linear fields exact: the residual in position,
// expressed by the principal directions in which the points spread. A direction in which the points
// spread too little for the residual is left alone: it would blow up higher terms of the field.
void correct(Matrix& weights, const std::vector<Point>& points, std::vector<Point> residual) {
  const std::size_t n = points.size();
  Point mean{};
  for (const Point& p : points) {
    for (std::size_t d = 0; d < 3; ++d) mean[d] += p[d] / static_cast<double>(n);
  }
  Matrix3 moments{};
  for (const Point& p : points) {
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t j = 0; j < 3; ++j) moments[i][j] += (p[i] - mean[i]) * (p[j] - mean[j]);
    }
  }
  const Eigen3 spread = symmetricEigen(moments);
  const double widest = std::sqrt(std::max(0.0, spread.values[0]) / static_cast<double>(n));
  for (std::size_t k = 0; k < 3; ++k) {
    const Point& axis = spread.vectors[k];
    const double lambda = spread.values[k];
    const double sigma = std::sqrt(std::max(0.0, lambda) / static_cast<double>(n));
    double largest = 0;
    std::vector<double> along(residual.size());
    for (std::size_t a = 0; a < residual.size(); ++a) {
      for (std::size_t d = 0; d < 3; ++d) along[a] += residual[a][d] * axis[d];
      largest = std::max(largest, std::fabs(along[a]));
    }
    if (!(sigma > kLeastSpread * widest) || largest > sigma) continue;
    for (int g = 0; g < weights.columns; ++g) {
      double offset = 0;
      for (std::size_t d = 0; d < 3; ++d) {
        offset += (points[static_cast<std::size_t>(g)][d] - mean[d]) * axis[d];
      }
      for (int a = 0; a < weights.rows; ++a) {
        weights.at(a, g) += along[static_cast<std::size_t>(a)] * offset / lambda;
      }
    }
  }
}

}  // namespace

const ExtrapolationRule* extrapolationRule(Shape shape, int nPoints) {
  static const Rules rules = makeRules();
  const auto at = rules.find({shape, nPoints});
  return at == rules.end() ? nullptr : &at->second;
}

const Matrix& elementWeights(const ExtrapolationRule& rule, const float* coordinates, bool centre,
                             Matrix& scratch) {
  const Matrix& natural = centre ? rule.toCentre : rule.toNodes;
  if (rule.exactForShape) return natural;
  const std::vector<Point> points = positions(rule.pointShape, coordinates);
  // Where the targets lie, less where the natural weights put them.
  std::vector<Point> residual;
  if (centre) {
    residual = positions(rule.centreShape, coordinates);
  } else {
    residual.resize(static_cast<std::size_t>(rule.nNodes));
    for (std::size_t a = 0; a < residual.size(); ++a) {
      for (std::size_t d = 0; d < 3; ++d)
        residual[a][d] = static_cast<double>(coordinates[3 * a + d]);
    }
  }
  double size = 0, largest = 0;
  for (int a = 0; a < natural.rows; ++a) {
    for (std::size_t d = 0; d < 3; ++d) {
      double& r = residual[static_cast<std::size_t>(a)][d];
      for (int g = 0; g < rule.nPoints; ++g) {
        const double x = points[static_cast<std::size_t>(g)][d];
        r -= natural.at(a, g) * x;
        size = std::max(size, std::fabs(x - points[0][d]));
      }
      largest = std::max(largest, std::fabs(r));
    }
  }
  if (largest <= 1e-7 * size) return natural;
  scratch = natural;
  correct(scratch, points, std::move(residual));
  return scratch;
}

}  // namespace odbs::engine
