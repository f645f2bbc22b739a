// SPDX-License-Identifier: BSD-3-Clause
// Fields from and to the stored tables.
#include "odb/src/fields/result_rows.h"

#include "odb/src/numerics/tensor.h"
#include "odb/src/storage/errors.h"

#include <algorithm>
#include <map>

namespace odbs::engine {

namespace {

using layout::FieldBlocks;
using layout::FieldKinds;
using layout::FieldLabels;
using layout::FieldLayouts;
using layout::Fields;

constexpr std::int64_t kWindow = 4096;
constexpr int kMostComponents = 1 << 20;

const std::initializer_list<odb_Enum::odb_DataTypeEnum> kTypes = {
    odb_Enum::SCALAR,           odb_Enum::VECTOR,           odb_Enum::MATRIX,
    odb_Enum::TENSOR_3D_FULL,   odb_Enum::TENSOR_3D_PLANAR, odb_Enum::TENSOR_3D_SURFACE,
    odb_Enum::TENSOR_2D_PLANAR, odb_Enum::TENSOR_2D_SURFACE};

std::vector<std::shared_ptr<const FieldDescriptor>> readKinds(Database& database,
                                                              FileReader& reader) {
  const Rows rows(reader, FieldKinds::shape);
  const Rows labels(reader, FieldLabels::shape);
  std::vector<std::shared_ptr<const FieldDescriptor>> kinds;
  for (std::int64_t i = 0; i < rows.size(); ++i) {
    FieldDescriptor d;
    d.name = rows.text(i, FieldKinds::kName);
    if (d.name.empty()) rows.bad(i, FieldKinds::kName);
    d.description = rows.text(i, FieldKinds::kDescription);
    d.type = rows.choice(i, FieldKinds::kType, kTypes);
    d.dim = rows.number(i, FieldKinds::kDim);
    d.dim2 = rows.number(i, FieldKinds::kDim2);
    if (d.dim < 1 || d.dim > kMostComponents) rows.bad(i, FieldKinds::kDim);
    if (d.dim2 < 1 || d.dim2 > kMostComponents) rows.bad(i, FieldKinds::kDim2);
    d.engineering = rows.flag(i, FieldKinds::kEngineering);
    d.invariants = invariantsFrom(rows.integer(i, FieldKinds::kInvariants));
    const Range range = rows.range(i, FieldKinds::kFirstLabel, labels.size());
    for (std::int64_t k = range.first; k < range.first + range.count; ++k) {
      d.labels.append(labels.text(k, FieldLabels::kText));
    }
    kinds.push_back(sharedDescriptor(database, d));
  }
  return kinds;
}

// Which labels values at a position have.
bool needsNodes(odb_Enum::odb_ResultPositionEnum position) {
  return position == odb_Enum::NODAL || position == odb_Enum::ELEMENT_NODAL;
}
bool needsElements(odb_Enum::odb_ResultPositionEnum position) {
  return position >= odb_Enum::ELEMENT_NODAL && position <= odb_Enum::WHOLE_ELEMENT;
}

class LayoutReader {
 public:
  LayoutReader(Database& database, FileReader& reader, int file)
      : database_(database), rows_(reader, FieldLayouts::shape), file_(file) {}

  std::vector<std::shared_ptr<BlockLayout>> read() {
    std::vector<std::shared_ptr<BlockLayout>> layouts;
    for (std::int64_t i = 0; i < rows_.size(); ++i) layouts.push_back(one(i));
    return layouts;
  }

 private:
  std::shared_ptr<BlockLayout> one(std::int64_t i) {
    auto result = std::make_shared<BlockLayout>();
    BlockLayout& l = *result;
    l.database = &database_;
    l.interned = true;
    l.entityRow = rows_.number(i, FieldLayouts::kEntity);
    const int position = rows_.number(i, FieldLayouts::kPosition);
    if (position < odb_Enum::NODAL || position > odb_Enum::WHOLE_MODEL) {
      rows_.bad(i, FieldLayouts::kPosition);
    }
    l.position = static_cast<odb_Enum::odb_ResultPositionEnum>(position);
    l.elementType = rows_.text(i, FieldLayouts::kElementType);
    const PointPlace point = readPoint(rows_, i, FieldLayouts::kCategory);
    l.category = point.category;
    l.point = point.point;
    l.nValues = rows_.number(i, FieldLayouts::kNValues);
    if (l.nValues < 1) rows_.bad(i, FieldLayouts::kNValues);
    l.nElements = count(i, FieldLayouts::kNElements, l.nValues);
    l.nNodes = count(i, FieldLayouts::kNNodes, l.nValues);
    l.valuesPerElement = count(i, FieldLayouts::kValuesPerElement, l.nValues);
    const long long even = static_cast<long long>(l.valuesPerElement) * l.nElements;
    if (l.valuesPerElement > 0 && even != l.nValues) rows_.bad(i, FieldLayouts::kValuesPerElement);
    l.elementLabels = labels(i, FieldLayouts::kElementLabels, l.nValues, needsElements(l.position));
    l.nodeLabels = labels(i, FieldLayouts::kNodeLabels, l.nValues, needsNodes(l.position));
    l.points =
        labels(i, FieldLayouts::kPoints, l.nValues, l.position == odb_Enum::INTEGRATION_POINT);
    l.faces = labels(i, FieldLayouts::kFaces, l.nValues, l.position == odb_Enum::ELEMENT_FACE);
    if (l.elementLabels && l.nElements < 1) rows_.bad(i, FieldLayouts::kNElements);
    return result;
  }

  int count(std::int64_t i, int column, int limit) {
    const int n = rows_.number(i, column);
    if (n < 0 || n > limit) rows_.bad(i, column);
    return n;
  }

  Ints labels(std::int64_t i, int column, int nValues, bool needed) {
    const ArrayRef ref = rows_.array(i, column, layout::Kind::kInt32, file_);
    if (ref.count != (needed ? nValues : 0)) rows_.bad(i, column + 1);
    if (!needed) return nullptr;
    Ints& ints = known_[{ref.start, ref.count}];
    if (!ints) {
      ints = std::make_shared<SharedInts>();
      ints->array.refer(ref);
    }
    return ints;
  }

  Database& database_;
  const Rows rows_;
  int file_;
  std::map<std::pair<std::int64_t, std::int64_t>, Ints> known_;
};

StoredFields& storedFields(Database& database) {
  ResultStore& store = resultsOf(database);
  const int file = database.storage.currentFile();
  if (store.stored && store.stored->file == file) return *store.stored;
  FileReader& reader = *database.storage.current();
  const FileReader::Use use(reader);
  auto stored = std::make_unique<StoredFields>();
  stored->file = file;
  stored->kinds = readKinds(database, reader);
  stored->layouts = LayoutReader(database, reader, file).read();
  store.stored = std::move(stored);
  return *store.stored;
}

bool fits(odb_Enum::odb_DataTypeEnum type, std::int64_t width) {
  if (type == odb_Enum::SCALAR) return width == 1;
  if (isTensor(type)) return width == 3 || width == 4 || width == 6;
  return width >= 1 && width <= kMostComponents;
}

BlockRow readBlock(StoredFields& stored, const Rows& rows, std::int64_t i,
                   odb_Enum::odb_PrecisionEnum precision) {
  BlockRow block;
  block.layout = stored.layouts[rows.index(i, FieldBlocks::kLayout, stored.layouts.size())];
  block.type = rows.choice(i, FieldBlocks::kType, kTypes);
  block.precision = precision;
  const layout::Kind kind =
      precision == odb_Enum::DOUBLE_PRECISION ? layout::Kind::kFloat64 : layout::Kind::kFloat32;
  block.data = rows.array(i, FieldBlocks::kData, kind, stored.file);
  block.conjugate = rows.array(i, FieldBlocks::kConjugate, kind, stored.file);
  block.orientation = rows.array(i, FieldBlocks::kOrientation, kind, stored.file);
  const std::int64_t n = block.layout->nValues;
  if (block.data.count % n != 0 || !fits(block.type, block.data.count / n)) {
    rows.bad(i, FieldBlocks::kNData);
  }
  if (block.conjugate.count != 0 && block.conjugate.count != block.data.count) {
    rows.bad(i, FieldBlocks::kNConjugate);
  }
  if (block.orientation.count != 0 && block.orientation.count != 4 * n) {
    rows.bad(i, FieldBlocks::kNOrientation);
  }
  return block;
}

void readBlocks(StoredFields& stored, FileReader& reader, RowWindow& window, const Range& range,
                odb_Enum::odb_PrecisionEnum precision, std::vector<BlockRow>& out) {
  if (range.count == 0) return;
  std::int64_t place = 0;
  const Rows& rows = window.get(reader, range.first, range.count, place);
  for (std::int64_t i = 0; i < range.count; ++i) {
    out.push_back(readBlock(stored, rows, place + i, precision));
  }
}

}  // namespace

std::int64_t RowWindow::size(FileReader& reader) {
  if (nRows_ < 0) nRows_ = reader.nRows(spec_);
  return nRows_;
}

const Rows& RowWindow::get(FileReader& reader, std::int64_t first, std::int64_t count,
                           std::int64_t& place) {
  if (!rows_ || first < first_ || first + count > first_ + rows_->size()) {
    const std::int64_t n = std::min(std::max(count, kWindow), size(reader) - first);
    rows_ = std::make_unique<Rows>(reader, spec_, Range{first, n});
    first_ = first;
  }
  place = first - first_;
  return *rows_;
}

PointPlace readPoint(const Rows& rows, std::int64_t row, int column) {
  PointPlace place;
  place.category = rows.number(row, column);
  place.point = rows.number(row, column + 1);
  if (place.category < -1) rows.bad(row, column);
  if (place.point < 0) rows.bad(row, column + 1);
  return place;
}

PointPlace placeOf(Database& database, const odb_SectionPoint& point) {
  PointPlace place;
  const SectionPointData* wanted = point.engineData();
  if (!wanted) return place;
  const std::deque<CategoryData>& categories = database.model().categories;
  for (std::size_t c = 0; c < categories.size(); ++c) {
    for (std::size_t i = 0; i < categories[c].points.size(); ++i) {
      if (&categories[c].points[i] != wanted) continue;
      place.category = static_cast<int>(c);
      place.point = static_cast<int>(i);
      return place;
    }
  }
  failUsage("the section point belongs to another database");
}

odb_SequenceInvariant invariantsFrom(std::int64_t bits) {
  odb_SequenceInvariant invariants;
  for (int k = odb_Enum::MAGNITUDE; k <= odb_Enum::OUTOFPLANE_PRINCIPAL; ++k) {
    if (bits >> k & 1) invariants.append(static_cast<odb_Enum::odb_InvariantEnum>(k));
  }
  return invariants;
}

std::int64_t bitsOf(const odb_SequenceInvariant& invariants) {
  std::int64_t bits = 0;
  for (auto which : invariants.engineItems()) bits |= std::int64_t(1) << which;
  return bits;
}

std::vector<FieldRow> storedRows(FrameData& frame) {
  std::vector<FieldRow> result;
  Database& database = *frame.step->database;
  if (frame.storedRow < 0 || !database.storage.current()) return result;
  FileReader& reader = *database.storage.current();
  const FileReader::Use use(reader);
  StoredFields& stored = storedFields(database);
  if (frame.storedRow >= stored.frames.size(reader)) return result;
  std::int64_t place = 0;
  const Range range =
      stored.frames.get(reader, frame.storedRow, 1, place)
          .range(place, layout::FrameFields::kFirstField, stored.fields.size(reader));
  if (range.count == 0) return result;
  const Rows& fields = stored.fields.get(reader, range.first, range.count, place);
  for (std::int64_t i = place; i < place + range.count; ++i) {
    FieldRow row;
    row.descriptor = stored.kinds[fields.index(i, Fields::kKind, stored.kinds.size())];
    readBlocks(stored, reader, stored.singles,
               fields.range(i, Fields::kFirstBlock, stored.singles.size(reader)),
               odb_Enum::SINGLE_PRECISION, row.blocks);
    readBlocks(stored, reader, stored.doubles,
               fields.range(i, Fields::kFirstDouble, stored.doubles.size(reader)),
               odb_Enum::DOUBLE_PRECISION, row.blocks);
    result.push_back(std::move(row));
  }
  return result;
}

}  // namespace odbs::engine
