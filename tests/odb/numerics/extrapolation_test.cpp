// SPDX-License-Identifier: BSD-3-Clause
// Extrapolation of closed-form fields, on every element type that has a rule, on regular, skewed
// and curved geometry.
#include "odb/src/numerics/extrapolation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

namespace {

using namespace odbs::engine;
using Field = std::function<double(const Point&)>;

// Element types whose points determine a linear field.
const char* const kLinearTypes[] = {
    "C3D10", "C3D10M", "C3D15",  "C3D8",    "C3D8I",  "C3D20",  "C3D20R", "C3D27", "CPE4",
    "CPE6",  "CPE8",   "CPE8R",  "CPS4",    "CPS6",   "CPS8R",  "CAX4",   "CAX6",  "CAX8",
    "CAX8R", "S4",     "S6",     "STRI3",   "S8R",    "STRI65", "M3D4",   "M3D6",  "M3D8",
    "M3D8R", "S9R5",   "T3D3",   "B22",     "B32",    "B33",    "SAX2",   "DC3D8", "AC3D20",
    "C3D5",  "C3D13",  "C3D10I", "C3D10HS", "C3D15V", "C3D27R"};

// A rotated, stretched, skewed element.
Point affine(const Point& n) {
  return {5 + 2.0 * n[0] + 0.3 * n[1] - 0.4 * n[2], -1 + 0.2 * n[0] + 1.1 * n[1] + 0.3 * n[2],
          3 - 0.1 * n[0] + 0.2 * n[1] + 1.7 * n[2]};
}

// Opposite sides of different length: what a distorted mesh of first-order elements looks like.
Point warped(const Point& n) {
  Point p = affine(n);
  p[0] += 0.25 * n[0] * n[1] * (1 + 0.5 * n[2]);
  p[1] += 0.15 * n[1] * n[2];
  return p;
}

// Curved edges and faces in the element's own directions.
Point curved(const Point& n) {
  Point p = affine(n);
  p[0] += 0.12 * n[1] * n[1] + 0.05 * n[2] * n[2];
  p[1] += 0.10 * n[0] * n[0];
  p[2] += 0.07 * n[0] * n[0] - 0.06 * n[1] * n[1];
  return p;
}

// Keeps planar elements in a plane, and lines on a line.
Point flattened(Solid solid, Point p) {
  if (solid == Solid::Line) return {p[0], 2 * p[0] + 1, 0.5 * p[0]};
  if (solid == Solid::Triangle || solid == Solid::Quadrilateral) p[2] = 0.3 * p[0] - 0.2 * p[1];
  return p;
}

struct Element {
  Shape shape;
  const ExtrapolationRule* rule;
  std::vector<float> coordinates;

  Element(const std::string& type, Point (*map)(const Point&), bool flat = true)
      : Element(elementType(type).shape, elementType(type).nPoints, map, flat) {}
  Element(Shape ofElement, int nPoints, Point (*map)(const Point&), bool flat = true)
      : shape(ofElement), rule(extrapolationRule(ofElement, nPoints)) {
    for (Point node : shapeNodes(shape)) {
      // Across pyramids the natural coordinates are those of the base.
      if (solidOf(shape) == Solid::Pyramid) node = {node[0] * node[2], node[1] * node[2], node[2]};
      const Point p = flat ? flattened(solidOf(shape), map(node)) : map(node);
      for (double x : p) coordinates.push_back(static_cast<float>(x));
    }
  }
  Point node(int a) const {
    const float* x = &coordinates[3 * static_cast<std::size_t>(a)];
    return {static_cast<double>(x[0]), static_cast<double>(x[1]), static_cast<double>(x[2])};
  }
  Point at(const Point& natural) const {
    Point p{};
    const auto n = shapeFunctions(shape, natural);
    for (std::size_t a = 0; a < n.size(); ++a) {
      for (std::size_t d = 0; d < 3; ++d) p[d] += n[a] * node(static_cast<int>(a))[d];
    }
    return p;
  }
  std::vector<double> extrapolated(const Field& field, bool centre) const {
    Matrix scratch;
    const Matrix& w = elementWeights(*rule, coordinates.data(), centre, scratch);
    std::vector<double> result(static_cast<std::size_t>(w.rows), 0.0);
    for (int a = 0; a < w.rows; ++a) {
      for (int g = 0; g < w.columns; ++g) {
        result[static_cast<std::size_t>(a)] +=
            w.at(a, g) * field(at(rule->points[static_cast<std::size_t>(g)]));
      }
    }
    return result;
  }
};

double linear(const Point& p) {
  return 7 - 3 * p[0] + 2 * p[1] + 0.5 * p[2];
}

void expectLinearComesBack(const Element& element, const std::string& what) {
  ASSERT_NE(element.rule, nullptr) << what;
  const auto nodal = element.extrapolated(linear, false);
  ASSERT_EQ(nodal.size(), shapeNodes(element.shape).size()) << what;
  for (std::size_t a = 0; a < nodal.size(); ++a) {
    EXPECT_NEAR(nodal[a], linear(element.node(static_cast<int>(a))), 2e-5) << what << " " << a + 1;
  }
  const double centre = element.extrapolated(linear, true)[0];
  EXPECT_NEAR(centre, linear(element.at(shapeCentre(element.shape))), 2e-5) << what;
}

TEST(Extrapolation, GivesLinearFieldsBackOnRegularDistortedAndCurvedElements) {
  for (const std::string type : kLinearTypes) {
    expectLinearComesBack(Element(type, affine), type);
    expectLinearComesBack(Element(type, warped), type);
    const Shape shape = elementType(type).shape;
    // First-order elements and lines have no curved edges.
    if (shapeNodes(shape).size() <= 4 || solidOf(shape) == Solid::Line) continue;
    expectLinearComesBack(Element(type, curved), type);
  }
  for (const char* shell : {"S4", "M3D4"}) {
    expectLinearComesBack(Element(shell, warped, false), shell);
  }
}

// Numbers of points, and of nodes, that no type's name says.
TEST(Extrapolation, GivesLinearFieldsBackWhateverTheNumbersOfNodesAndPoints) {
  const struct {
    Shape shape;
    int nPoints;
  } cases[] = {{Shape::Pyramid13, 5}, {Shape::Pyramid5, 8}, {Shape::Wedge15, 18},
               {Shape::Wedge18, 18},  {Shape::Hex8, 14},    {Shape::Hex20, 14},
               {Shape::Hex21, 14},    {Shape::Hex21, 27},   {Shape::Wedge18, 6}};
  for (const auto& c : cases) {
    const std::string what = std::to_string(shapeNodes(c.shape).size()) + " nodes, " +
                             std::to_string(c.nPoints) + " points";
    for (Point (*map)(const Point&) : {affine, warped, curved}) {
      const std::size_t nNodes = shapeNodes(c.shape).size();
      if (map == curved && (nNodes == 5 || nNodes == 8)) continue;
      expectLinearComesBack(Element(c.shape, c.nPoints, map), what);
    }
  }
}

TEST(Extrapolation, OfOnePointIsConstant) {
  for (const char* type : {"C3D4", "C3D8R", "CPS3", "CPE4R", "CAX3", "S3", "S4R", "SC6R", "SC8R",
                           "M3D3", "T2D2", "T3D2", "B21", "B31"}) {
    const Element element(type, affine);
    ASSERT_NE(element.rule, nullptr) << type;
    for (double value : element.extrapolated([](const Point&) { return 4.25; }, false)) {
      EXPECT_DOUBLE_EQ(value, 4.25) << type;
    }
  }
}

TEST(Extrapolation, OfWedgeWithTwoPointsFollowsTheAxis) {
  const Element element("C3D6", [](const Point& n) { return Point{n[0], n[1], 2 * n[2]}; });
  const auto values = element.extrapolated([](const Point& p) { return 3 + p[2]; }, false);
  for (std::size_t a = 0; a < 6; ++a) EXPECT_NEAR(values[a], a < 3 ? 1 : 5, 1e-6);
}

TEST(Extrapolation, OfLayersFollowsTheMidSurface) {
  for (const char* type : {"COH3D8", "COH3D6", "GK3D8", "GK3D18", "COH2D4"}) {
    // A hundredth as thick as wide; planar layers are thin in s, solid ones in t.
    const bool planar = std::string(type) == "COH2D4";
    const auto thinInS = [](const Point& n) { return Point{n[0], 0.01 * n[1], 0}; };
    const auto thinInT = [](const Point& n) { return Point{n[0], n[1], 0.01 * n[2]}; };
    const Element element(type, planar ? +thinInS : +thinInT, false);
    const Field field = [&](const Point& p) { return 1 + 2 * p[0] - (planar ? 0 : p[1]); };
    const auto values = element.extrapolated(field, false);
    for (std::size_t a = 0; a < values.size(); ++a) {
      EXPECT_NEAR(values[a], field(element.node(static_cast<int>(a))), 1e-6) << type;
    }
  }
}

TEST(Extrapolation, OfEnoughPointsGivesQuadraticFieldsBack) {
  const Field quadratic = [](const Point& p) {
    return 1 + p[0] * p[1] - 2 * p[2] * p[2] + p[0] * p[0] + 0.5 * p[1] * p[2];
  };
  const auto check = [&](const Element& element, const std::string& what) {
    const auto values = element.extrapolated(quadratic, false);
    for (std::size_t a = 0; a < values.size(); ++a) {
      EXPECT_NEAR(values[a], quadratic(element.node(static_cast<int>(a))), 5e-4) << what;
    }
    EXPECT_NEAR(element.extrapolated(quadratic, true)[0],
                quadratic(element.at(shapeCentre(element.shape))), 5e-4);
  };
  for (const char* type : {"C3D20", "C3D27", "C3D27R", "C3D10I", "CPE8", "CAX8", "M3D8"}) {
    check(Element(type, affine), type);
  }
  check(Element(Shape::Wedge15, 18, affine), "wedge");
}

// The points are those of quadrature rules: with the published weights moments of high degree come
// out. In pyramids a section has the area 4 t t.
TEST(Extrapolation, PointsOfPublishedRulesIntegrateExactly) {
  const double corner = 121.0 / 361, face = 320.0 / 361;                // Irons
  const double near = 0.054975871827660934, far = 0.11169079483900574;  // Cowper
  const double base = 0.23254745125350790, top = 0.10078588207982543;   // Gauss-Jacobi
  const struct {
    Shape shape;
    std::vector<std::pair<int, double>> weights;  // of so many points
    Monomial monomial;
    double integral;
  } rules[] = {
      {Shape::Hex8, {{8, corner}, {6, face}}, {4, 0, 0}, 8.0 / 5},
      {Shape::Hex8, {{8, corner}, {6, face}}, {2, 2, 0}, 8.0 / 9},
      {Shape::Pyramid5, {{4, 0.28125}, {1, 5.0 / 24}}, {0, 0, 1}, 1},
      {Shape::Pyramid5, {{4, 0.28125}, {1, 5.0 / 24}}, {2, 0, 2}, 4.0 / 15},
      {Shape::Pyramid5, {{4, base}, {4, top}}, {0, 0, 3}, 2.0 / 3},
      {Shape::Wedge15,
       {{3, near * 5 / 9},
        {3, far * 5 / 9},
        {3, near * 8 / 9},
        {3, far * 8 / 9},
        {3, near * 5 / 9},
        {3, far * 5 / 9}},
       {4, 0, 0},
       1.0 / 15},
  };
  for (const auto& rule : rules) {
    int nPoints = 0;
    for (const auto& [n, weight] : rule.weights) nPoints += n;
    const ExtrapolationRule* const found = extrapolationRule(rule.shape, nPoints);
    ASSERT_NE(found, nullptr) << nPoints;
    double sum = 0;
    std::size_t at = 0;
    for (const auto& [n, weight] : rule.weights) {
      for (int i = 0; i < n; ++i) sum += weight * evaluate(rule.monomial, found->points[at++]);
    }
    EXPECT_NEAR(sum, rule.integral, 1e-12) << nPoints;
  }
}

TEST(Extrapolation, OfReducedHexahedraIsTrilinearThroughThePoints) {
  // r*r is 1/3 at every point, so its trilinear continuation is 1/3 everywhere.
  const Element element("C3D20R", [](const Point& n) { return n; });
  for (double value : element.extrapolated([](const Point& p) { return p[0] * p[0]; }, false)) {
    EXPECT_NEAR(value, 1.0 / 3, 1e-6);
  }
  const auto corner =
      element.extrapolated([](const Point& p) { return p[0] * p[1] * p[2]; }, false);
  EXPECT_NEAR(corner[6], 1, 1e-6);
}

TEST(Extrapolation, OfShellsKeepsTheTwistTermAndNearlyFlatOnesDoNotBlowUp) {
  const Field twist = [](const Point& p) { return p[0] * p[1]; };
  const auto flat = [](const Point& n) { return Point{n[0], n[1], 0.1 * n[0] + 0.3 * n[1]}; };
  const auto values = Element("S8R", flat, false).extrapolated(twist, false);
  EXPECT_NEAR(values[2], 1, 1e-5);
  EXPECT_NEAR(values[1], -1, 1e-5);
  const auto nearly = [](const Point& n) {
    return Point{n[0], n[1], 1e-3 * n[0] * n[0] * (1 + 0.01 * n[1])};
  };
  for (double value : Element("S8R", nearly, false).extrapolated(twist, false)) {
    EXPECT_LT(std::fabs(value), 1.01);
  }
}

TEST(Extrapolation, OfDegenerateElementsStaysFinite) {
  for (const char* type : {"C3D20R", "C3D10", "C3D15", "S8R"}) {
    const auto collapsed = [](const Point&) { return Point{1, 1, 1}; };
    const Element element(type, collapsed, false);
    for (double value : element.extrapolated([](const Point&) { return 2.0; }, false)) {
      EXPECT_NEAR(value, 2, 1e-9) << type;
    }
  }
}

TEST(Extrapolation, HasNoRuleForOtherNumbersOfPoints) {
  EXPECT_EQ(extrapolationRule(Shape::Hex8, 13), nullptr);
  EXPECT_EQ(extrapolationRule(Shape::Tet10, 15), nullptr);
  EXPECT_EQ(extrapolationRule(Shape::Unknown, 1), nullptr);
  EXPECT_EQ(extrapolationRule(Shape::Quad4, 0), nullptr);
}

}  // namespace
