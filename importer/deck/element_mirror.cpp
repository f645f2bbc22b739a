// SPDX-License-Identifier: BSD-3-Clause
// Mirror images of elements: corners go round the other way, and nodes on edges and faces follow.
#include <algorithm>
#include <array>

#include "importer/deck/element_types.h"

namespace odbs::importer {

namespace {

using Edge = std::array<std::size_t, 2>;

struct Shape {
  std::vector<std::size_t> corners;  // their order in the image
  std::vector<Edge> edges;           // in the order of the nodes on them
  std::vector<std::size_t> more;     // nodes after those: their order in the image
};

const Shape& hexahedron() {
  static const Shape shape = {{0, 3, 2, 1, 4, 7, 6, 5},
                              {{0, 1},
                               {1, 2},
                               {2, 3},
                               {3, 0},
                               {4, 5},
                               {5, 6},
                               {6, 7},
                               {7, 4},
                               {0, 4},
                               {1, 5},
                               {2, 6},
                               {3, 7}},
                              {20, 21, 22, 26, 25, 24, 23}};  // centre, faces 1 to 6
  return shape;
}
const Shape& wedge() {
  static const Shape shape = {
      {0, 2, 1, 3, 5, 4},
      {{0, 1}, {1, 2}, {2, 0}, {3, 4}, {4, 5}, {5, 3}, {0, 3}, {1, 4}, {2, 5}},
      {17, 16, 15}};  // faces 3 to 5
  return shape;
}
const Shape& pyramid() {
  static const Shape shape = {
      {0, 3, 2, 1, 4}, {{0, 1}, {1, 2}, {2, 3}, {3, 0}, {0, 4}, {1, 4}, {2, 4}, {3, 4}}, {}};
  return shape;
}
const Shape& tetrahedron() {
  static const Shape shape = {{0, 2, 1, 3}, {{0, 1}, {1, 2}, {2, 0}, {0, 3}, {1, 3}, {2, 3}}, {}};
  return shape;
}
const Shape& quadrilateral() {
  static const Shape shape = {{0, 3, 2, 1}, {{0, 1}, {1, 2}, {2, 3}, {3, 0}}, {8}};
  return shape;
}
const Shape& triangle() {
  static const Shape shape = {{0, 2, 1}, {{0, 1}, {1, 2}, {2, 0}}, {6}};
  return shape;
}

const Shape* shapeOf(Family family, std::size_t nNodes) {
  const bool flat = family == Family::planar || family == Family::shell;
  if (!flat && family != Family::solid) return nullptr;
  for (const Shape* shape :
       flat ? std::vector<const Shape*>{&triangle(), &quadrilateral()}
            : std::vector<const Shape*>{&tetrahedron(), &pyramid(), &wedge(), &hexahedron()}) {
    const std::size_t corners = shape->corners.size(), quadratic = corners + shape->edges.size();
    const bool whole = !shape->more.empty() && nNodes == quadratic + shape->more.size();
    if (nNodes == corners || nNodes == quadratic || whole) return shape;
  }
  return nullptr;
}

}  // namespace

std::vector<std::size_t> mirroredOrder(const DeckElementType& type, std::size_t nNodes) {
  std::vector<std::size_t> order;
  const bool isLine = type.family == Family::line || type.family == Family::connector ||
                      type.family == Family::point;
  if (isLine) {
    for (std::size_t i = 0; i < nNodes; ++i) order.push_back(i);
    return order;
  }
  const Shape* shape = shapeOf(type.family, nNodes);
  if (!shape) return order;
  order = shape->corners;
  for (const Edge& edge : shape->edges) {
    const Edge image = {shape->corners[edge[0]], shape->corners[edge[1]]};
    const auto same = [&](const Edge& other) {
      return std::is_permutation(image.begin(), image.end(), other.begin());
    };
    const auto at = std::find_if(shape->edges.begin(), shape->edges.end(), same);
    order.push_back(shape->corners.size() + static_cast<std::size_t>(at - shape->edges.begin()));
  }
  order.insert(order.end(), shape->more.begin(), shape->more.end());
  order.resize(nNodes);
  return order;
}

}  // namespace odbs::importer
