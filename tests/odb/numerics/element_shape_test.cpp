// SPDX-License-Identifier: BSD-3-Clause
// Element types and shape functions against the textbook's closed forms.
#include "odb/src/numerics/element_shape.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace odbs::engine;

const Shape kAll[] = {Shape::Line2,    Shape::Line3,     Shape::Tri3,    Shape::Tri6,
                      Shape::Quad4,    Shape::Quad8,     Shape::Quad9,   Shape::Tet4,
                      Shape::Tet10,    Shape::Wedge6,    Shape::Wedge15, Shape::Wedge18,
                      Shape::Pyramid5, Shape::Pyramid13, Shape::Hex8,    Shape::Layer18,
                      Shape::Hex20,    Shape::Hex21,     Shape::Hex27};

TEST(ElementShape, FunctionsSumToOneEverywhereAndTakeOneAtTheirNode) {
  for (Shape shape : kAll) {
    const auto& nodes = shapeNodes(shape);
    double sum = 0;
    for (double value : shapeFunctions(shape, {0.31, 0.17, -0.42})) sum += value;
    EXPECT_NEAR(sum, 1, 1e-12);
    for (std::size_t a = 0; a < nodes.size(); ++a) {
      const auto values = shapeFunctions(shape, nodes[a]);
      for (std::size_t b = 0; b < nodes.size(); ++b) EXPECT_NEAR(values[b], a == b, 1e-12);
    }
  }
}

TEST(ElementShape, SerendipityHexahedronMatchesTheTextbook) {
  const Point p = {0.3, -0.2, 0.7};
  const auto n = shapeFunctions(Shape::Hex20, p);
  for (std::size_t a = 0; a < 20; ++a) {
    const Point& x = shapeNodes(Shape::Hex20)[a];
    double expected = 1, sum = 0;
    bool corner = true;
    for (std::size_t d = 0; d < 3; ++d) {
      corner = corner && x[d] != 0;
      sum += x[d] * p[d];
      expected *= x[d] == 0 ? 1 - p[d] * p[d] : 1 + x[d] * p[d];
    }
    expected *= corner ? (sum - 2) / 8 : 0.25;
    EXPECT_NEAR(n[a], expected, 1e-12) << "node " << a + 1;
  }
}

TEST(ElementShape, QuadraticWedgeMatchesTheTextbook) {
  const double r = 0.2, s = 0.5, t = -0.3;
  const double l[] = {1 - r - s, r, s};
  const auto n = shapeFunctions(Shape::Wedge15, {r, s, t});
  for (std::size_t i = 0; i < 3; ++i) {
    const double side = 1 - t * t;
    EXPECT_NEAR(n[i], (l[i] * (2 * l[i] - 1) * (1 - t) - l[i] * side) / 2, 1e-12);
    EXPECT_NEAR(n[i + 3], (l[i] * (2 * l[i] - 1) * (1 + t) - l[i] * side) / 2, 1e-12);
    EXPECT_NEAR(n[i + 6], 2 * l[i] * l[(i + 1) % 3] * (1 - t), 1e-12);
    EXPECT_NEAR(n[i + 12], l[i] * side, 1e-12);
  }
}

TEST(ElementShape, QuadraticPyramidMatchesThePaper) {
  // Bedrosian's functions, in x and y across a pyramid of height 1, z from the base up.
  const double x = 0.3, y = -0.2, z = 0.4, w = 1 - z;
  const auto n = shapeFunctions(Shape::Pyramid13, {x / w, y / w, w});
  EXPECT_NEAR(n[4], z * (2 * z - 1), 1e-12);
  EXPECT_NEAR(n[6], (w - y) * (w + y) * (w + x) / (2 * w), 1e-12);
  EXPECT_NEAR(n[11], z * (w + x) * (w + y) / w, 1e-12);
  EXPECT_NEAR(n[2], (x + y - 1) * (w + x) * (w + y) / (4 * w), 1e-12);
}

TEST(ElementShape, ElementsThatLeaveOutNodesHaveTheShapeOfTheRest) {
  EXPECT_EQ(shapeWithNodes(Shape::Wedge18, 15), Shape::Wedge15);
  EXPECT_EQ(shapeWithNodes(Shape::Wedge18, 17), Shape::Wedge18);
  EXPECT_EQ(shapeWithNodes(Shape::Hex27, 20), Shape::Hex20);
  EXPECT_EQ(shapeWithNodes(Shape::Hex27, 21), Shape::Hex21);
  EXPECT_EQ(shapeWithNodes(Shape::Hex8, 8), Shape::Hex8);
}

TEST(ElementShape, NamesGiveShapeAndNumberOfPoints) {
  const struct {
    Shape shape;
    int nPoints;
    std::vector<const char*> names;
  } groups[] = {{Shape::Tet4, 1, {"C3D4"}},
                {Shape::Tet10, 4, {"C3D10M", "AC3D10"}},
                {Shape::Wedge6, 2, {"C3D6"}},
                {Shape::Wedge15, 9, {"C3D15"}},
                {Shape::Hex8, 8, {"C3D8", "C3D8I", "C3D8H"}},
                {Shape::Hex8, 1, {"C3D8R", "SC8R"}},
                {Shape::Hex20, 27, {"C3D20", "DC3D20"}},
                {Shape::Hex20, 8, {"C3D20R", "c3d20rh"}},
                {Shape::Hex27, 27, {"C3D27"}},
                {Shape::Tri3, 1, {"CPE3", "S3R"}},
                {Shape::Quad4, 1, {"CPE4R", "CAX4RH", "S4R"}},
                {Shape::Quad8, 4, {"CPEG8R", "S8R5", "M3D8R"}},
                {Shape::Tri6, 3, {"CPS6M", "STRI65", "S6"}},
                {Shape::Quad8, 9, {"CAX8", "DC2D8"}},
                {Shape::Tri3, 3, {"STRI3"}},
                {Shape::Quad4, 4, {"S4"}},
                {Shape::Quad9, 4, {"S9R5"}},
                {Shape::Wedge6, 1, {"SC6R"}},
                {Shape::Line3, 2, {"SAX2", "T3D3", "B32", "PIPE32"}},
                {Shape::Line2, 1, {"T2D2", "B21", "B31OSH"}},
                {Shape::Line2, 3, {"B33"}},
                {Shape::Hex8, 4, {"COH3D8", "GK3D8"}},
                {Shape::Wedge6, 3, {"COH3D6"}},
                {Shape::Quad4, 2, {"COH2D4"}},
                {Shape::Pyramid5, 5, {"C3D5"}},
                {Shape::Tet10, 11, {"C3D10I", "C3D10HS"}},
                {Shape::Wedge18, 9, {"C3D15V"}},
                {Shape::Hex27, 14, {"C3D27R"}},
                {Shape::Layer18, 9, {"GK3D18"}},
                {Shape::Unknown, 0, {"CONN3D2", "MASS", "SPRINGA", "", "C3D", "S99999999999"}}};
  for (const auto& group : groups) {
    for (const char* name : group.names) {
      EXPECT_EQ(elementType(name).shape, group.shape) << name;
      EXPECT_EQ(elementType(name).nPoints, group.nPoints) << name;
    }
  }
}

}  // namespace
