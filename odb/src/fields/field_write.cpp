// SPDX-License-Identifier: BSD-3-Clause
// Adding values to fields. Whatever form the caller has, its numbers become one request of plain
// arrays; rows are then sorted by element type into the field's blocks.
#include "odb/src/fields/field_write.h"

#include "odb/src/fields/result_rows.h"
#include "odb/src/numerics/tensor.h"
#include "odb/src/storage/errors.h"

#include <algorithm>

namespace odbs::engine {

namespace {

using odb_embedded::FieldValues;

// The rows of one element, or of one node.
struct Run {
  int label = 0;
  int nRows = 1;
  const odb_String* type = nullptr;  // element type
  int index = 0;                     // of the element
};

std::string describe(const FieldData& field) {
  return std::string("field output ") + field.descriptor->name.CStr();
}

bool hasElements(odb_Enum::odb_ResultPositionEnum position) {
  return position >= odb_Enum::ELEMENT_NODAL && position <= odb_Enum::WHOLE_ELEMENT;
}

// Type of values with `width` components in the field. Throws when there is none.
odb_Enum::odb_DataTypeEnum typeForWidth(const FieldData& field, int width) {
  const FieldDescriptor& d = *field.descriptor;
  bool fits = false;
  if (d.type == odb_Enum::SCALAR) fits = width == 1;
  if (d.type == odb_Enum::VECTOR) fits = width >= 1 && width <= std::max(3, d.dim);
  if (d.type == odb_Enum::MATRIX) {
    const long long full = static_cast<long long>(d.dim) * d.dim2;
    const long long packed = static_cast<long long>(d.dim) * (d.dim + 1) / 2;
    fits = width == full || (d.dim == d.dim2 && width == packed);
  }
  if (fits) return d.type;
  if (isTensor(d.type)) {
    // Plane and spatial tensors share a field: shells and solids of one model.
    const bool plane =
        d.type == odb_Enum::TENSOR_2D_PLANAR || d.type == odb_Enum::TENSOR_2D_SURFACE;
    if (width == componentCount(d.type) || width == d.dim) return d.type;
    if (width == 6) return odb_Enum::TENSOR_3D_FULL;
    if (width == 4) return plane ? odb_Enum::TENSOR_2D_PLANAR : odb_Enum::TENSOR_3D_PLANAR;
    if (width == 3) return plane ? odb_Enum::TENSOR_2D_SURFACE : odb_Enum::TENSOR_3D_SURFACE;
  }
  failUsage(describe(field) + ": values of " + std::to_string(width) +
            " components do not fit its type");
}

void failRows(const FieldData& field, int nRows, int nLabels) {
  failUsage(describe(field) + ": " + std::to_string(nRows) + " rows of values do not fit " +
            std::to_string(nLabels) + " labels");
}

std::vector<Run> nodeRuns(const FieldData& field, EntityData& entity, const int* labels,
                          int nLabels, int nRows) {
  if (nRows != nLabels) failRows(field, nRows, nLabels);
  loadNodes(entity);
  for (int i = 0; i < nLabels; ++i) {
    if (findNode(entity, labels[i]) < 0) {
      failUsage(describe(field) + ": " + entity.name.CStr() + " has no node " +
                std::to_string(labels[i]));
    }
  }
  return {Run{0, nRows, nullptr, 0}};
}

int nodesOf(const EntityData& entity, const Run& run) {
  const ElementTable& table = entity.elementTable;
  return table.blocks[table.blockOf[run.index]].nNodes;
}

int shapeNodesOf(const EntityData& entity, const Run& run) {
  const Shape shape = elementType(run.type->CStr()).shape;
  const int n = static_cast<int>(shapeNodes(shape).size());
  return n > 0 ? n : nodesOf(entity, run);
}

int pointsOf(const EntityData&, const Run& run) {
  return elementType(run.type->CStr()).nPoints;
}

// Gives each run a number of rows by `count`; false when these are not `nRows` in all. Types
// repeat, so the last answer is kept.
bool distribute(const EntityData& entity, std::vector<Run>& runs, int nRows,
                int (*count)(const EntityData&, const Run&)) {
  long long total = 0;
  const odb_String* type = nullptr;
  int last = 0;
  for (Run& run : runs) {
    if (run.type != type || count == nodesOf) last = count(entity, run);
    type = run.type;
    run.nRows = last;
    total += last;
  }
  return total == nRows;
}

// The elements with their numbers of rows. Labels that repeat row by row are taken as runs.
std::vector<Run> elementRuns(const FieldData& field, EntityData& entity,
                             odb_Enum::odb_ResultPositionEnum position, const int* labels,
                             int nLabels, int nRows) {
  if (nLabels == 0 || nRows < nLabels) failRows(field, nRows, nLabels);
  loadElements(entity);
  const ElementTable& table = entity.elementTable;
  std::vector<Run> runs;
  runs.reserve(static_cast<std::size_t>(nLabels));
  for (int i = 0; i < nLabels; ++i) {
    if (nLabels == nRows && i > 0 && labels[i] == labels[i - 1]) {
      ++runs.back().nRows;
      continue;
    }
    const int index = findElement(entity, labels[i]);
    if (index < 0) {
      failUsage(describe(field) + ": " + entity.name.CStr() + " has no element " +
                std::to_string(labels[i]));
    }
    runs.push_back(Run{labels[i], 1, table.blocks[table.blockOf[index]].type, index});
  }
  if (position == odb_Enum::ELEMENT_NODAL) {
    if (!distribute(entity, runs, nRows, nodesOf) &&
        !distribute(entity, runs, nRows, shapeNodesOf)) {
      failRows(field, nRows, nLabels);
    }
    return runs;
  }
  if (nLabels == nRows) return runs;
  const bool single = position == odb_Enum::CENTROID || position == odb_Enum::WHOLE_ELEMENT;
  if (single) failRows(field, nRows, nLabels);
  const bool mixed = std::any_of(runs.begin(), runs.end(),
                                 [&](const Run& run) { return run.type != runs[0].type; });
  if (mixed && distribute(entity, runs, nRows, pointsOf)) return runs;
  if (nRows % nLabels != 0) failRows(field, nRows, nLabels);
  for (Run& run : runs) run.nRows = nRows / nLabels;
  return runs;
}

Buffer<int>& openInts(Database& database, Ints& ints, std::size_t nInAll) {
  if (!ints) ints = std::make_shared<SharedInts>();
  Buffer<int>& labels = ints->array.edit(database.storage);
  if (labels.empty()) labels.reserve(nInAll);
  return labels;
}

Ints copyInts(Database& database, const Ints& ints) {
  if (!ints) return nullptr;
  Ints copy = std::make_shared<SharedInts>();
  copy->array.edit(database.storage) = ints->array.get(database.storage);
  return copy;
}

// The block of the field that takes values of this kind, its labels open to be changed.
Block openBlock(FieldData& field, const BlockLayout& key, const FieldBlock& form) {
  for (const Block& block : field.blocks) {
    const BlockLayout& l = *block->layout;
    if (l.entityRow != key.entityRow || l.position != key.position || l.category != key.category ||
        l.point != key.point || !(l.elementType == key.elementType) || block->type != form.type ||
        block->precision != form.precision || block->width != form.width) {
      continue;
    }
    if (l.interned) {
      auto copy = std::make_shared<BlockLayout>(l);
      copy->interned = false;
      for (Ints BlockLayout::*which : kLabelArrays) {
        (*copy).*which = copyInts(*field.database, l.*which);
      }
      block->layout = copy;
    }
    return block;
  }
  Block block = std::make_shared<FieldBlock>();
  block->database = field.database;
  block->frame = field.frame;
  block->descriptor = field.descriptor;
  block->layout = std::make_shared<BlockLayout>(key);
  block->type = form.type;
  block->precision = form.precision;
  block->width = form.width;
  field.blocks.push_back(block);
  return block;
}

// Makes up for values that the block has without this part: zeros, or the global directions.
template <class Real>
void pad(FieldBlock& block, Part part, int nValues, std::size_t nInAll) {
  constexpr std::size_t kSlice = 4096;
  const bool turned = part == Part::kOrientation;
  const auto width = static_cast<std::size_t>(partWidth(block, part));
  BlockArrays<Real>& arrays = block.arrays<Real>();
  StoredArray<Real>& array = turned ? arrays.orientation : arrays.conjugate;
  auto missing =
      static_cast<std::size_t>(nValues) - static_cast<std::size_t>(array.count()) / width;
  std::vector<Real> rows(std::min(missing, kSlice) * width, Real(0));
  for (std::size_t i = 3; turned && i < rows.size(); i += 4) rows[i] = Real(1);
  while (missing > 0) {
    const std::size_t n = std::min(missing, kSlice);
    array.append(block.database->storage, block.database->target.CStr(), rows.data(), n * width,
                 nInAll * width);
    missing -= n;
  }
}

// Appends rows [first, first + n) of the request to the block's arrays. `nInAll`: rows that the
// block will have when all have come, or 0.
template <class Real>
void appendNumbers(FieldBlock& block, const FieldValues<Real>& in, int first, int n,
                   std::size_t nInAll) {
  Database& database = *block.database;
  BlockArrays<Real>& arrays = block.arrays<Real>();
  const auto from = static_cast<std::size_t>(first), count = static_cast<std::size_t>(n);
  const auto width = static_cast<std::size_t>(in.width);
  const int nBefore = block.layout->nValues;
  const auto put = [&](StoredArray<Real>& array, const Real* rows, std::size_t w) {
    array.append(database.storage, database.target.CStr(), rows + from * w, count * w, nInAll * w);
  };
  put(arrays.data, in.data, width);
  if (in.conjugate || block.complex) {
    block.complex = true;
    pad<Real>(block, Part::kConjugate, nBefore, nInAll);
    if (in.conjugate) put(arrays.conjugate, in.conjugate, width);
    pad<Real>(block, Part::kConjugate, nBefore + n, nInAll);
  }
  if (in.quaternions || block.oriented) {
    block.oriented = true;
    pad<Real>(block, Part::kOrientation, nBefore, nInAll);
    if (in.quaternions) put(arrays.orientation, in.quaternions, 4);
    pad<Real>(block, Part::kOrientation, nBefore + n, nInAll);
  }
}

// Appends the labels of one run, whose rows start at `first` of the request.
template <class Real>
void appendLabels(FieldBlock& block, const FieldValues<Real>& in, EntityData& entity,
                  const Run& run, int first, std::size_t nInAll) {
  BlockLayout& layout = *block.layout;
  Database& database = *block.database;
  const auto n = static_cast<std::size_t>(run.nRows);
  if (in.position == odb_Enum::NODAL) {
    Buffer<int>& nodes = openInts(database, layout.nodeLabels, nInAll);
    nodes.insert(nodes.end(), in.labels, in.labels + n);
    return;
  }
  if (!run.type) return;
  Buffer<int>& elements = openInts(database, layout.elementLabels, nInAll);
  elements.insert(elements.end(), n, run.label);
  if (in.position == odb_Enum::ELEMENT_NODAL) {
    const ElementTable& table = entity.elementTable;
    const ElementBlock& b = table.blocks[table.blockOf[run.index]];
    const int* connectivity = table.connectivity + b.connectivity +
                              static_cast<std::int64_t>(run.index - b.first) * b.nNodes;
    Buffer<int>& nodes = openInts(database, layout.nodeLabels, nInAll);
    nodes.insert(nodes.end(), connectivity, connectivity + n);
  }
  if (in.position == odb_Enum::INTEGRATION_POINT) {
    Buffer<int>& points = openInts(database, layout.points, nInAll);
    for (int i = 0; i < run.nRows; ++i) {
      points.push_back(in.integrationPoints ? in.integrationPoints[first + i] : i + 1);
    }
  }
  if (in.position == odb_Enum::ELEMENT_FACE) {
    Buffer<int>& faces = openInts(database, layout.faces, nInAll);
    for (int i = 0; i < run.nRows; ++i) {
      faces.push_back(in.faces ? in.faces[first + i]
                               : std::min<int>(odb_Enum::FACE1 + i, odb_Enum::FACE6));
    }
  }
}

template <class Real>
void checkRequest(const FieldData& field, const FieldValues<Real>& in) {
  if (field.derived || !field.frame) {
    failUsage(describe(field) + " was computed or released: it takes no values");
  }
  field.database->needWritable();
  const EntityData* entity = in.instance.engineData();
  if (!entity || entity->database != field.database || entity->kind == EntityKind::kPart) {
    failUsage(describe(field) + ": values need an instance of its database");
  }
  const bool whole = in.position >= odb_Enum::WHOLE_REGION && in.position <= odb_Enum::WHOLE_MODEL;
  if (in.position != odb_Enum::NODAL && !hasElements(in.position) && !whole) {
    failUsage(describe(field) + ": values cannot be given at this position");
  }
  if (in.quaternions && field.descriptor->type == odb_Enum::SCALAR) {
    failUsage(describe(field) + ": scalars have no local system");
  }
  if ((in.faces || in.integrationPoints) && in.nLabels != in.nRows) {
    failRows(field, in.nRows, in.nLabels);
  }
}

}  // namespace

template <class Real>
void addValues(FieldData& field, const FieldValues<Real>& in) {
  checkRequest(field, in);
  if (in.nRows == 0 && in.nLabels == 0) return;
  EntityData& entity = *in.instance.engineData();
  FieldBlock form;
  form.type = typeForWidth(field, in.width);
  form.width = in.width;
  form.precision =
      sizeof(Real) == sizeof(double) ? odb_Enum::DOUBLE_PRECISION : odb_Enum::SINGLE_PRECISION;
  BlockLayout key;
  key.database = field.database;
  key.entityRow = entity.row;
  key.position = in.position;
  const PointPlace point = placeOf(*field.database, in.sectionPoint);
  key.category = point.category;
  key.point = point.point;

  std::vector<Run> runs = {Run{0, in.nRows, nullptr, 0}};
  if (in.position == odb_Enum::NODAL) {
    runs = nodeRuns(field, entity, in.labels, in.nLabels, in.nRows);
  } else if (hasElements(in.position)) {
    runs = elementRuns(field, entity, in.position, in.labels, in.nLabels, in.nRows);
  }
  field.viewsReady = false;
  const bool oneBlock = std::all_of(runs.begin(), runs.end(),
                                    [&](const Run& run) { return run.type == runs[0].type; });
  const auto nInAll = static_cast<std::size_t>(oneBlock ? std::max(0, in.nRowsInAll) : 0);
  int first = 0;
  for (std::size_t i = 0; i < runs.size();) {
    const odb_String* type = runs[i].type;
    key.elementType = type ? *type : odb_String();
    const Block block = openBlock(field, key, form);
    int n = 0;
    for (; i < runs.size() && runs[i].type == type; ++i) {
      appendLabels(*block, in, entity, runs[i], first + n, nInAll);
      n += runs[i].nRows;
    }
    appendNumbers(*block, in, first, n, nInAll);
    block->layout->nValues += n;
    first += n;
    noteValues(field, *block,
               static_cast<std::size_t>(n) * static_cast<std::size_t>(in.width) * sizeof(Real));
    if (static_cast<std::size_t>(block->layout->nValues) == nInAll) finishBlock(*block);
  }
  field.database->touch();
}
template void addValues<float>(FieldData&, const FieldValues<float>&);
template void addValues<double>(FieldData&, const FieldValues<double>&);

}  // namespace odbs::engine
