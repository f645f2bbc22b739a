// SPDX-License-Identifier: BSD-3-Clause
// Tables at integration points of trusses and beams.
//
// To the solver they are solids with 2 x 2 x 2 or 3 x 3 x 3 Gauss points, the first direction along
// the line (fastest), the second against n2, the third along n1 (CalculiX CrunchiX User's Manual,
// chapter on element types, figure of the expansion of a beam). Points along the line stay as they
// are; across it values go to the corners of the section, those of trusses to its middle.
#include <odb_embedded_results.h>

#include <algorithm>
#include <cmath>

#include "importer/table_writer.h"

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

}  // namespace

// The values at `corner` (-1: the middle) of the elements of a block; `sources` are columns.
std::vector<float> TableWriter::lineRows(const DatTable& table, const PointBlock& block,
                                         const PointField& field,
                                         const std::vector<std::size_t>& sources, int corner,
                                         const std::vector<Axes>& axes) const {
  const std::size_t n = block.nPoints == 8 ? 2 : 3, nColumns = table.columns.size();
  const double along1 = corner < 0 ? 0 : corner % 2 == 0 ? -1 : 1;
  const double along2 = corner < 0 ? 0 : corner < 2 ? -1 : 1;
  std::vector<float> rows;
  for (std::size_t e = 0; e < block.labels.size(); ++e) {
    for (std::size_t station = 0; station < n; ++station) {
      for (const std::size_t column : sources) {
        double value = 0;
        for (std::size_t j = 0; j < n; ++j) {
          for (std::size_t k = 0; k < n; ++k) {
            const std::size_t row = block.rows[e] + station + n * (j + n * k);
            value += weightAt(n, j, -along2) * weightAt(n, k, along1) *
                     table.values[row * nColumns + column];
          }
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
  if (block.nPoints != 8 && block.nPoints != 27) return false;
  if (!truss && (lines.beamSection(block.labels[0]) < 0 || cornerPoint(category, 0).number() < 0))
    return false;
  const std::size_t n = block.nPoints == 8 ? 2 : 3;
  std::vector<Axes> axes(block.labels.size() * n);
  for (std::size_t e = 0; e < block.labels.size(); ++e) {
    const auto at = static_cast<std::size_t>(
        std::lower_bound(of.labels.begin(), of.labels.end(), block.labels[e]) - of.labels.begin());
    for (std::size_t i = 0; i < n; ++i) {
      if (!lines.axesAt(of, at, gaussPoint(n, i), axes[e * n + i])) return false;
    }
  }
  for (const auto& [name, sources] : fieldsOf(field, real)) {
    for (int corner = truss ? -1 : 0; corner < (truss ? 0 : kCorners); ++corner) {
      const auto rows = lineRows(real, block, field, sources, corner, axes);
      std::vector<float> conjugate;
      if (imaginary != nullptr) {
        conjugate = lineRows(*imaginary, block, field, sources, corner, axes);
      }
      addPoints(frame, field, name, block, rows, conjugate, sources.size(),
                truss ? odb_SectionPoint() : cornerPoint(category, corner));
    }
  }
  return true;
}

}  // namespace odbs::importer
