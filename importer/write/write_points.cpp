// SPDX-License-Identifier: BSD-3-Clause
// Tables at integration points as field values.
//
// Solids have the database's points in the database's order (CalculiX CrunchiX User's Manual,
// chapter on element types: the first direction runs fastest). Plane elements and shells are solids
// to the solver, with points in two or three planes through the thickness.
#include <odb_embedded_results.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "importer/deck/element_types.h"
#include "importer/write/table_writer.h"

namespace odbs::importer {

namespace {

constexpr TableWriter::PointField kPointFields[] = {
    {"S", "S", "Stress components", FieldShape::tensor},
    {"SVF", "SVF", "Viscous stress components", FieldShape::tensor},
    {"E", "E", "Total strain components", FieldShape::strain},
    {"ME", "ME", "Mechanical strain components", FieldShape::strain},
    {"PEEQ", "PEEQ", "Equivalent plastic strain", FieldShape::scalar},
    {"ENER", "ENER", "Energy density", FieldShape::scalar},
    {"SDV", "SDV", "Solution dependent state variables", FieldShape::scalar},
    {"HFL", "HFL", "Heat flux vector", FieldShape::vector},
    {"COORD", "COORD", "Coordinates", FieldShape::vector},
};

// How the points of an element become points of the database.
enum class Layout {
  solid,   // as they are
  planar,  // means over the planes
  shell,   // at both faces, from a line (or parabola) through the planes
  line,    // see write_line_points.cpp
  unknown
};

Layout layoutOf(const std::string& type) {
  switch (elementTypeOf(type).family) {
    case Family::solid:
      return Layout::solid;
    case Family::planar:
      return Layout::planar;
    case Family::shell:
      return type[0] == 'S' ? Layout::shell : Layout::planar;
    case Family::line:
      return Layout::line;
    default:
      return Layout::unknown;
  }
}

// Planes through the thickness: one layer of 8 or 2 points has two, of 27 or 9 points three.
std::size_t planesOf(std::size_t nPoints) {
  return nPoints % 27 == 0 || nPoints % 9 == 0 ? 3 : 2;
}

// Weights of the planes for a value at the lower (-1) or upper (1) face, or their mean (0). The
// planes are at the Gauss points of two or three points.
std::vector<double> planeWeights(std::size_t nPlanes, int face) {
  if (nPlanes == 2) {
    if (face == 0) return {0.5, 0.5};
    const double outer = (1 + std::sqrt(3.)) / 2;
    return face < 0 ? std::vector<double>{outer, 1 - outer} : std::vector<double>{1 - outer, outer};
  }
  if (face == 0) return {0, 1, 0};
  const double at = std::sqrt(5. / 3);  // the face, in units of the outer planes' distance
  const double outer = at * (at + 1) / 2, inner = at * (at - 1) / 2, middle = 1 - at * at;
  return face < 0 ? std::vector<double>{outer, middle, inner}
                  : std::vector<double>{inner, middle, outer};
}

// The values of the elements of a block: `sources` are columns of the table. Layer `layer` of
// `nLayers`, at face -1 or 1, or 0 for the mean over the planes.
std::vector<float> rowsOf(const DatTable& table, const std::vector<std::size_t>& firstRows,
                          std::size_t nPoints, const std::vector<std::size_t>& sources,
                          Layout layout, std::size_t layer, std::size_t nLayersHere, int face) {
  std::vector<float> rows;
  const std::size_t inLayer = nPoints / nLayersHere;
  const std::size_t nPlanes = layout == Layout::solid ? 1 : planesOf(inLayer);
  const std::vector<double> weights =
      layout == Layout::solid ? std::vector<double>{1} : planeWeights(nPlanes, face);
  const std::size_t nPerElement = inLayer / nPlanes;
  const std::size_t nColumns = table.columns.size();
  for (const std::size_t first : firstRows) {
    for (std::size_t point = 0; point < nPerElement; ++point) {
      for (const std::size_t column : sources) {
        double value = 0;
        for (std::size_t plane = 0; plane < nPlanes; ++plane) {
          const std::size_t row = first + layer * inLayer + plane * nPerElement + point;
          value += weights[plane] * table.values[row * nColumns + column];
        }
        rows.push_back(static_cast<float>(value));
      }
    }
  }
  return rows;
}

}  // namespace

// Elements by type, section category, number of points and whether a local system of theirs is
// known. Rows of one element stand together and count their points from 1; whatever else an element
// has been given before is passed over.
std::vector<TableWriter::PointBlock> TableWriter::pointBlocks(const DatTable& table,
                                                              const std::string& field) {
  std::map<std::tuple<const ElementBlock*, std::string, std::size_t, bool>, PointBlock> blocks;
  const auto noteOf = [&](std::size_t row) {
    return row < table.notes.size() ? table.notes[row] : std::string();
  };
  std::unordered_set<std::int32_t>& written = written_[field];
  for (std::size_t row = 0; row < table.nRows();) {
    const std::int32_t label = table.keys[2 * row];
    std::size_t n = 0;
    while (row + n < table.nRows() && table.keys[2 * (row + n)] == label &&
           table.keys[2 * (row + n) + 1] == static_cast<std::int32_t>(n + 1)) {
      ++n;
    }
    const auto [block, part] = placeOf(label);
    if (block == nullptr) {
      unknownRows_[table.title] += std::max<std::size_t>(n, 1);
    } else if (n == 0) {
      ++leftOut_[table.title + " with points out of order"];
    } else if (written.insert(label).second) {
      const odb_Element element = part->instance.getElementFromLabel(label);
      const std::string note = noteOf(row);
      bool one = !note.empty();
      for (std::size_t i = 1; one && i < n; ++i) one = noteOf(row + i) == note;
      const auto at = static_cast<std::size_t>(
          std::lower_bound(block->labels.begin(), block->labels.end(), label) -
          block->labels.begin());
      const auto axes = one ? part->systems.axesOf(note, *block, at) : std::nullopt;
      PointBlock& target =
          blocks[{block, element.sectionCategory().name().CStr(), n, axes.has_value()}];
      if (axes) target.axes.push_back(*axes);
      target.labels.push_back(label);
      target.rows.push_back(row);
      target.nPoints = n;
    }
    row += std::max<std::size_t>(n, 1);
  }
  std::vector<PointBlock> result;
  for (auto& [key, block] : blocks) {
    std::vector<std::size_t> order(block.labels.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&labels = block.labels](std::size_t a, std::size_t b) {
      return labels[a] < labels[b];
    });
    PointBlock sorted;
    sorted.nPoints = block.nPoints;
    for (const std::size_t i : order) {
      sorted.labels.push_back(block.labels[i]);
      sorted.rows.push_back(block.rows[i]);
      if (!block.axes.empty()) sorted.axes.push_back(block.axes[i]);
    }
    result.push_back(std::move(sorted));
  }
  return result;
}

void TableWriter::writePoints(const Moment& moment, const DatTable& real,
                              const DatTable* imaginary) {
  std::optional<odb_Frame> frame;
  if (real.nRows() > 0) frame = frames_.frameOf(moment);
  if (!frame) {
    if (real.nRows() > 0) ++leftOut_[real.title + " at times without a frame"];
    return;
  }
  if (writtenMoment_.step != moment.step || writtenMoment_.x != moment.x ||
      writtenMoment_.nodalDiameter != moment.nodalDiameter) {
    written_.clear();
  }
  writtenMoment_ = moment;
  const int nBefore = frame->fieldOutputs().size();
  bool all = true;
  for (const PointBlock& block : pointBlocks(real, real.quantity)) {
    all &= addBlock(*frame, real, imaginary, block);
  }
  nFields_ += static_cast<std::size_t>(frame->fieldOutputs().size() - nBefore);
  if (!all) ++leftOut_[real.title + " of unusual profiles or layers"];
}

// The fields that a table becomes, with their columns: one, or one for each scalar.
std::vector<std::pair<std::string, std::vector<std::size_t>>> TableWriter::fieldsOf(
    const PointField& field, const DatTable& table) {
  std::vector<std::pair<std::string, std::vector<std::size_t>>> fields;
  if (field.shape != FieldShape::scalar) {
    fields.push_back({std::string(field.name), std::vector<std::size_t>(table.columns.size())});
    std::iota(fields[0].second.begin(), fields[0].second.end(), std::size_t{0});
  }
  for (std::size_t i = 0; field.shape == FieldShape::scalar && i < table.columns.size(); ++i) {
    fields.push_back({std::string(field.name) + table.columns[i], {i}});
  }
  return fields;
}

void TableWriter::addPoints(odb_Frame& frame, const PointField& field, const std::string& name,
                            const PointBlock& block, std::vector<float> rows,
                            std::vector<float> conjugate, std::size_t width,
                            const odb_SectionPoint& point) {
  toStored(field.shape, rows.data(), rows.size());
  toStored(field.shape, conjugate.data(), conjugate.size());
  odb_embedded::FieldValues<float> added;
  added.position = odb_Enum::INTEGRATION_POINT;
  added.instance = placeOf(block.labels[0]).part->instance;
  added.labels = block.labels.data();
  added.nLabels = static_cast<int>(block.labels.size());
  added.nRows = static_cast<int>(rows.size() / width);
  added.width = static_cast<int>(width);
  added.data = rows.data();
  added.conjugate = conjugate.empty() ? nullptr : conjugate.data();
  added.sectionPoint = point;
  std::vector<float> quaternions;
  if (!block.axes.empty() && field.shape != FieldShape::scalar) {
    const std::size_t each = static_cast<std::size_t>(added.nRows) / block.labels.size();
    for (const Axes& axes : block.axes) {
      const std::array<float, 4> quaternion = quaternionOf(axes);
      for (std::size_t i = 0; i < each; ++i) {
        quaternions.insert(quaternions.end(), quaternion.begin(), quaternion.end());
      }
    }
    added.quaternions = quaternions.data();
  }
  odb_embedded::addData(fieldOf(frame, name, std::string(field.description), field.shape), added);
}

bool TableWriter::addBlock(odb_Frame& frame, const DatTable& real, const DatTable* imaginary,
                           const PointBlock& block) {
  const PointField* known = nullptr;
  for (const PointField& field : kPointFields) {
    if (field.quantity == real.quantity) known = &field;
  }
  const Layout layout = layoutOf(placeOf(block.labels[0]).block->type);
  if (known == nullptr || layout == Layout::unknown) return false;
  if (layout == Layout::line) return addLines(frame, *known, real, imaginary, block);
  const odb_SectionCategory category = placeOf(block.labels[0])
                                           .part->instance.getElementFromLabel(block.labels[0])
                                           .sectionCategory();
  // Layers that have section points; none: the mean over the planes has to do.
  std::vector<LayerPoints> layers;
  while (layout == Layout::shell &&
         layerPoints(category, static_cast<int>(layers.size())).bottom.number() >= 0) {
    layers.push_back(layerPoints(category, static_cast<int>(layers.size())));
  }
  const std::size_t nLayersHere = std::max<std::size_t>(layers.size(), 1);
  if (block.nPoints % nLayersHere != 0) return false;
  const std::size_t inLayer = block.nPoints / nLayersHere;
  if (layout != Layout::solid && inLayer % planesOf(inLayer) != 0) return false;

  const auto addRows = [&](const std::string& name, const std::vector<std::size_t>& sources,
                           std::size_t layer, int face, const odb_SectionPoint& point) {
    const auto rows = [&](const DatTable& table) {
      return rowsOf(table, block.rows, block.nPoints, sources, layout, layer, nLayersHere, face);
    };
    addPoints(frame, *known, name, block, rows(real),
              imaginary != nullptr ? rows(*imaginary) : std::vector<float>(), sources.size(),
              point);
  };
  for (const auto& [name, sources] : fieldsOf(*known, real)) {
    if (layers.empty()) addRows(name, sources, 0, 0, odb_SectionPoint());
    for (std::size_t layer = 0; layer < layers.size(); ++layer) {
      addRows(name, sources, layer, -1, layers[layer].bottom);
      addRows(name, sources, layer, 1, layers[layer].top);
    }
  }
  return true;
}

}  // namespace odbs::importer
