// SPDX-License-Identifier: BSD-3-Clause
// Tables at integration points of trusses and beams.
//
// To the solver they are solids with 2 x 2 x 2 or 3 x 3 x 3 Gauss points, the first direction along
// the line (fastest), the second against n2, the third along n1 (CalculiX CrunchiX User's Manual,
// chapter on element types, figure of the expansion of a beam). Reduced ones have 42 points more,
// which extend the 2 x 2 of a cross-section to the 5 x 5 of Kronrod's rule; they are not needed
// here. Pipes and boxes have a ring of points in each of two cross-sections; its places were found
// from the linear normal stress of solved cantilevers. Points along the line stay as they are;
// across it values go to the corners of the section, those of trusses to its middle.
#include <odb_embedded_results.h>

#include <algorithm>
#include <cmath>

#include "importer/write/table_writer.h"

namespace odbs::importer {

namespace {

// Gauss points of two or three.
double gaussPoint(std::size_t n, std::size_t i) {
  const double at = std::sqrt(n == 2 ? 1. / 3 : 0.6);
  return n == 3 && i == 1 ? 0 : i == 0 ? -at : at;
}

// Weight of the value at point i of n for the polynomial through all at x.
double weightAt(std::size_t n, std::size_t i, double x) {
  double weight = 1;
  for (std::size_t j = 0; j < n; ++j) {
    if (j == i) continue;
    weight *= (x - gaussPoint(n, j)) / (gaussPoint(n, i) - gaussPoint(n, j));
  }
  return weight;
}

// Shares of the points of a cross-section in the value at a place, for n x n Gauss points. The
// position is that in the table, points along the line aside.
CornerShares gaussShares(std::size_t n, const SectionCorner& at) {
  CornerShares shares;
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t k = 0; k < n; ++k) {
      shares.emplace_back(n * (j + n * k), weightAt(n, j, -at.along2) * weightAt(n, k, at.along1));
    }
  }
  return shares;
}

}  // namespace

// The values at a place of the cross-sections of a block's elements; `sources` are columns, `axes`
// those of each element at its stations along the line, whose rows are `stride` apart.
std::vector<float> TableWriter::lineRows(const DatTable& table, const PointBlock& block,
                                         const PointField& field,
                                         const std::vector<std::size_t>& sources,
                                         const CornerShares& shares, std::size_t stride,
                                         const std::vector<Axes>& axes) const {
  const std::size_t n = axes.size() / block.labels.size(), nColumns = table.columns.size();
  std::vector<float> rows;
  for (std::size_t e = 0; e < block.labels.size(); ++e) {
    for (std::size_t station = 0; station < n; ++station) {
      for (const std::size_t column : sources) {
        double value = 0;
        for (const auto& [point, share] : shares) {
          const std::size_t row = block.rows[e] + station * stride + point;
          value += share * table.values[row * nColumns + column];
        }
        rows.push_back(static_cast<float>(value));
      }
      turn(field.shape, axes[e * n + station], rows.data() + rows.size() - sources.size());
    }
  }
  return rows;
}

bool TableWriter::addLines(odb_Frame& frame, const PointField& field, const DatTable& real,
                           const DatTable* imaginary, const PointBlock& block) {
  const Place place = placeOf(block.labels[0]);
  const ElementBlock& of = *place.block;
  const LineAxes& lines = place.part->lines;
  const bool truss = isTruss(of.type);
  const odb_SectionCategory category =
      place.part->instance.getElementFromLabel(block.labels[0]).sectionCategory();
  const std::int32_t number = truss ? -1 : lines.beamSection(block.labels[0]);
  if (!truss && (number < 0 || cornerPoint(category, 0).number() < 0)) return false;
  const Section* const section = truss ? nullptr : &lines.section(number);
  const std::size_t nWall = section == nullptr                ? 0
                            : wallShares(*section, 0).empty() ? 0
                            : section->profile == "PIPE"      ? kPipePoints
                                                              : kBoxPoints;
  // 2 x 2 x 2 points, alone or with 42 more, and 3 x 3 x 3; around a wall two rings of points.
  const bool known = nWall > 0 ? block.nPoints == 2 * nWall
                               : block.nPoints == 8 || block.nPoints == 27 || block.nPoints == 50;
  if (!known) return false;
  const std::size_t n = block.nPoints == 27 ? 3 : 2, stride = nWall > 0 ? nWall : 1;
  std::vector<Axes> axes(block.labels.size() * n);
  for (std::size_t e = 0; e < block.labels.size(); ++e) {
    const auto at = static_cast<std::size_t>(
        std::lower_bound(of.labels.begin(), of.labels.end(), block.labels[e]) - of.labels.begin());
    for (std::size_t i = 0; i < n; ++i) {
      if (!lines.axesAt(of, at, gaussPoint(n, i), axes[e * n + i])) return false;
    }
  }
  for (const auto& [name, sources] : fieldsOf(field, real)) {
    for (int corner = 0; corner < (truss ? 1 : kCorners); ++corner) {
      // Gauss points are those of the solid, whose corners the nodes are.
      const double one = corner % 2 == 0 ? -1 : 1, two = corner < 2 ? -1 : 1;
      const CornerShares shares = nWall > 0 ? wallShares(*section, corner)
                                  : truss   ? gaussShares(n, {0, 0})
                                            : gaussShares(n, {one, two});
      const auto rows = lineRows(real, block, field, sources, shares, stride, axes);
      std::vector<float> conjugate;
      if (imaginary != nullptr) {
        conjugate = lineRows(*imaginary, block, field, sources, shares, stride, axes);
      }
      addPoints(frame, field, name, block, rows, conjugate, sources.size(),
                truss ? odb_SectionPoint() : cornerPoint(category, corner));
    }
  }
  return true;
}

}  // namespace odbs::importer
