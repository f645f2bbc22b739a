// SPDX-License-Identifier: BSD-3-Clause
// Blocks of field values: labels and numbers, read or computed at first use.
#include "odb/src/fields/field_data.h"
#include "odb/src/numerics/tensor.h"
#include "odb/src/storage/errors.h"

#include <algorithm>
#include <type_traits>

namespace odbs::engine {

namespace {

// Largest range of labels that is counted with one bit each.
constexpr long long kMostBits = 1LL << 30;

// Labels for a moment's use.
const int* labelsNow(BlockLayout& layout, Ints BlockLayout::*which) {
  if (layout.compute) {
    layout.compute(layout);
    layout.compute = nullptr;  // kept until it succeeded: the labels may be asked for again
  }
  const Ints& ints = layout.*which;
  return ints ? ints->array.get(layout.database->storage).data() : nullptr;
}

// Labels that a caller may keep a pointer to.
int* labelArray(BlockLayout& layout, Ints BlockLayout::*which) {
  const int* labels = labelsNow(layout, which);
  if (layout.*which) (layout.*which)->pinned = true;
  return const_cast<int*>(labels);
}

int countDifferent(const int* values, int n) {
  if (n == 0) return 0;
  const auto [least, most] = std::minmax_element(values, values + n);
  const long long range = static_cast<long long>(*most) - *least + 1;
  if (range > kMostBits) {
    std::vector<int> sorted(values, values + n);
    std::sort(sorted.begin(), sorted.end());
    return static_cast<int>(std::unique(sorted.begin(), sorted.end()) - sorted.begin());
  }
  std::vector<bool> seen(static_cast<std::size_t>(range));
  int count = 0;
  for (int i = 0; i < n; ++i) {
    auto bit = seen[static_cast<std::size_t>(static_cast<long long>(values[i]) - *least)];
    if (!bit) ++count;
    bit = true;
  }
  return count;
}

template <class Real>
StoredArray<Real>& storedArray(FieldBlock& block, Part part) {
  BlockArrays<Real>& arrays = block.arrays<Real>();
  if (part == Part::kData) return arrays.data;
  return part == Part::kConjugate ? arrays.conjugate : arrays.orientation;
}

// Numbers [first, first + n) of a part: copied from memory where they are there, else read.
template <class Real>
void readNumbers(FieldBlock& block, Part part, std::size_t first, std::size_t n, Real* out) {
  StoredArray<Real>& array = storedArray<Real>(block, part);
  if (array.loaded() || block.compute) {
    std::copy_n(blockArray<Real>(block, part) + first, n, out);
    return;
  }
  block.database->storage.read(kindOf<Real>(), array.ref(), static_cast<std::int64_t>(first),
                               static_cast<std::int64_t>(n), out);
}

template <class Real>
void readPart(FieldBlock& block, Part part, std::size_t first, std::size_t n, double* out) {
  if constexpr (std::is_same_v<Real, double>) {
    readNumbers(block, part, first, n, out);
  } else {
    Buffer<Real> numbers(n);
    readNumbers(block, part, first, n, numbers.data());
    std::copy(numbers.begin(), numbers.end(), out);
  }
}

template <class Real>
void dropAll(FieldBlock& block) {
  for (Part part : {Part::kData, Part::kConjugate, Part::kOrientation}) {
    StoredArray<Real>& array = storedArray<Real>(block, part);
    if (block.compute) {
      array.refer(ArrayRef());
    } else {
      array.drop();
    }
  }
}

}  // namespace

EntityData& BlockLayout::entity() {
  if (!entity_) {
    Model& model = database->model();
    if (entityRow < 0 || entityRow >= static_cast<int>(model.entities.size())) {
      failDamaged("field values belong to instance " + std::to_string(entityRow) +
                  ", which does not exist");
    }
    entity_ = &model.entities[static_cast<std::size_t>(entityRow)];
    instance_ = odb_Instance(entity_);
  }
  return *entity_;
}

const odb_Instance& BlockLayout::instance() {
  entity();
  return instance_;
}

const odb_SectionPoint& BlockLayout::sectionPoint() {
  if (pointResolved_ || category < 0) return sectionPoint_;
  Model& model = database->model();
  if (category >= static_cast<int>(model.categories.size())) {
    failDamaged("field values belong to section category " + std::to_string(category) +
                ", which does not exist");
  }
  CategoryData& owner = model.categories[static_cast<std::size_t>(category)];
  if (point < 0 || point >= static_cast<int>(owner.points.size())) {
    failDamaged("field values belong to section point " + std::to_string(point) +
                ", which does not exist");
  }
  sectionPoint_ = odb_SectionPoint(&owner.points[static_cast<std::size_t>(point)]);
  pointResolved_ = true;
  return sectionPoint_;
}

int* elementLabels(BlockLayout& layout) {
  return labelArray(layout, &BlockLayout::elementLabels);
}
int* nodeLabels(BlockLayout& layout) {
  return labelArray(layout, &BlockLayout::nodeLabels);
}
int* integrationPoints(BlockLayout& layout) {
  return labelArray(layout, &BlockLayout::points);
}

int* faceNumbers(BlockLayout& layout) {
  int* faces = labelArray(layout, &BlockLayout::faces);
  if (!faces || layout.faces->checked) return faces;
  for (int i = 0; i < layout.nValues; ++i) {
    if (faces[i] < 0 || faces[i] > odb_Enum::DOUBLE_SIDED) {
      failDamaged("no element face has the number " + std::to_string(faces[i]));
    }
  }
  layout.faces->checked = true;
  return faces;
}

void readLabels(BlockLayout& layout, Ints BlockLayout::*which, int first, int n, int* out) {
  SharedInts& ints = *(layout.*which);
  if (layout.compute || ints.array.loaded()) {
    std::copy_n(labelsNow(layout, which) + first, n, out);
    return;
  }
  layout.database->storage.read(layout::Kind::kInt32, ints.array.ref(), first, n, out);
}

Ints makeInts(const std::vector<int>& values) {
  Ints ints = std::make_shared<SharedInts>();
  Storage none;
  ints->array.edit(none).assign(values.begin(), values.end());
  return ints;
}

void countLabels(BlockLayout& layout) {
  layout.nElements = layout.nNodes = layout.valuesPerElement = 0;
  if (const int* labels = labelsNow(layout, &BlockLayout::elementLabels)) {
    int run = 0, first = -1;
    bool even = true;
    for (int i = 0; i <= layout.nValues; ++i) {
      if (i > 0 && (i == layout.nValues || labels[i] != labels[i - 1])) {
        ++layout.nElements;
        if (first < 0) first = run;
        even = even && run == first;
        run = 0;
      }
      ++run;
    }
    if (even && first > 0) layout.valuesPerElement = first;
  }
  if (layout.position == odb_Enum::NODAL) {
    layout.nNodes = layout.nValues;
  } else if (const int* nodes = labelsNow(layout, &BlockLayout::nodeLabels)) {
    layout.nNodes = countDifferent(nodes, layout.nValues);
  }
}

template <class Real>
Real* blockArray(FieldBlock& block, Part part) {
  const bool isDouble = block.precision == odb_Enum::DOUBLE_PRECISION;
  if (isDouble != std::is_same_v<Real, double>) {
    failUsage(isDouble ? "the values are in double precision: use the Double accessors"
                       : "the values are in single precision: use the accessors without Double");
  }
  if (!hasPart(block, part)) return nullptr;
  if (block.compute && !block.computed) {
    block.compute(block);
    block.computed = true;
  }
  block.pinned = true;
  StoredArray<Real>& array = storedArray<Real>(block, part);
  return const_cast<Real*>(array.get(block.database->storage).data());
}
template float* blockArray<float>(FieldBlock&, Part);
template double* blockArray<double>(FieldBlock&, Part);

int partWidth(const FieldBlock& block, Part part) {
  return part == Part::kOrientation ? 4 : block.width;
}

bool hasPart(const FieldBlock& block, Part part) {
  if (block.layout->nValues == 0) return false;
  return part == Part::kData || (part == Part::kConjugate ? block.complex : block.oriented);
}

void readValues(FieldBlock& block, Part part, int first, int n, double* out) {
  const auto width = static_cast<std::size_t>(partWidth(block, part));
  const std::size_t from = static_cast<std::size_t>(first) * width;
  const std::size_t count = static_cast<std::size_t>(n) * width;
  if (block.precision == odb_Enum::DOUBLE_PRECISION) {
    readPart<double>(block, part, from, count, out);
  } else {
    readPart<float>(block, part, from, count, out);
  }
}

template <class Real>
void readOwnValues(FieldBlock& block, Part part, int first, int n, Real* out) {
  const auto width = static_cast<std::size_t>(partWidth(block, part));
  readNumbers(block, part, static_cast<std::size_t>(first) * width,
              static_cast<std::size_t>(n) * width, out);
}
template void readOwnValues<float>(FieldBlock&, Part, int, int, float*);
template void readOwnValues<double>(FieldBlock&, Part, int, int, double*);

void dropArrays(FieldBlock& block) {
  dropAll<float>(block);
  dropAll<double>(block);
  block.computed = block.pinned = false;
  Buffer<float>().swap(block.mises);
}

std::vector<odb_String> labelsFor(const FieldDescriptor& descriptor, int width) {
  const int n = descriptor.labels.size();
  std::vector<odb_String> labels;
  for (int i = 0; i < std::min(width, n); ++i) labels.push_back(descriptor.labels[i]);
  // Surface tensors of a field of spatial ones have 11, 22 and 12.
  if (isTensor(descriptor.type) && width == 3 && n > 3) labels[2] = descriptor.labels[3];
  return labels;
}

const odb_SequenceString& componentLabels(FieldBlock& block) {
  if (!block.labelsReady) {
    for (const odb_String& label : labelsFor(*block.descriptor, block.width)) {
      block.labels.append(label);
    }
    block.labelsReady = true;
  }
  return block.labels;
}

}  // namespace odbs::engine

using odbs::engine::blockArray;
using odbs::engine::FieldBlock;
using odbs::engine::Part;

FieldBlock& odb_FieldBulkData::need() const {
  if (!block_) odbs::throwEmptyHandle();
  return *block_;
}

FieldBlock& odb_FieldBulkData::kept() const {
  FieldBlock& block = need();
  odbs::engine::keepWithFrame(block_);
  return block;
}

odb_Enum::odb_ResultPositionEnum odb_FieldBulkData::position() const {
  return need().layout->position;
}
odb_Enum::odb_DataTypeEnum odb_FieldBulkData::type() const {
  return need().type;
}
odb_Enum::odb_PrecisionEnum odb_FieldBulkData::precision() const {
  return need().precision;
}
int odb_FieldBulkData::length() const {
  return need().layout->nValues;
}
int odb_FieldBulkData::width() const {
  return need().width;
}
int odb_FieldBulkData::numberOfElements() const {
  return need().layout->nElements;
}
int odb_FieldBulkData::numberOfNodes() const {
  if (position() == odb_Enum::ELEMENT_NODAL) return length();
  if (need().layout->nNodes < 0) odbs::engine::countLabels(*block_->layout);
  return block_->layout->nNodes;
}
int odb_FieldBulkData::valuesPerElement() const {
  return need().layout->valuesPerElement;
}

int* odb_FieldBulkData::elementLabels() const {
  return odbs::engine::elementLabels(*kept().layout);
}
int* odb_FieldBulkData::nodeLabels() const {
  return odbs::engine::nodeLabels(*kept().layout);
}
int* odb_FieldBulkData::integrationPoints() const {
  if (position() != odb_Enum::INTEGRATION_POINT) return nullptr;
  return odbs::engine::integrationPoints(*kept().layout);
}
odb_Enum::odb_ElementFaceEnum* odb_FieldBulkData::faces() const {
  if (position() != odb_Enum::ELEMENT_FACE) return nullptr;
  return reinterpret_cast<odb_Enum::odb_ElementFaceEnum*>(
      odbs::engine::faceNumbers(*kept().layout));
}

float* odb_FieldBulkData::data() const {
  return blockArray<float>(kept(), Part::kData);
}
double* odb_FieldBulkData::dataDouble() const {
  return blockArray<double>(kept(), Part::kData);
}
float* odb_FieldBulkData::conjugateData() const {
  return blockArray<float>(kept(), Part::kConjugate);
}
double* odb_FieldBulkData::conjugateDataDouble() const {
  return blockArray<double>(kept(), Part::kConjugate);
}
float* odb_FieldBulkData::localCoordSystem() const {
  return blockArray<float>(kept(), Part::kOrientation);
}
double* odb_FieldBulkData::localCoordSystemDouble() const {
  return blockArray<double>(kept(), Part::kOrientation);
}
int odb_FieldBulkData::orientationWidth() const {
  return need().oriented ? 4 : 0;
}

float* odb_FieldBulkData::mises() const {
  FieldBlock& block = kept();
  if (!odbs::engine::isTensor(block.type) ||
      !block.descriptor->invariants.isMember(odb_Enum::MISES)) {
    return nullptr;
  }
  const int n = block.layout->nValues;
  if (block.mises.empty() && n > 0) {
    constexpr int kChunk = 4096;
    const auto width = static_cast<std::size_t>(block.width);
    std::vector<double> values(kChunk * width);
    odbs::engine::Buffer<float> result(static_cast<std::size_t>(n));
    for (int first = 0; first < n; first += kChunk) {
      const int count = std::min(kChunk, n - first);
      odbs::engine::readValues(block, Part::kData, first, count, values.data());
      for (int i = 0; i < count; ++i) {
        result[static_cast<std::size_t>(first + i)] = static_cast<float>(odbs::engine::invariant(
            odb_Enum::MISES, block.type, &values[static_cast<std::size_t>(i) * width], block.width,
            block.descriptor->engineering));
      }
    }
    block.mises.swap(result);
  }
  return block.mises.data();
}

const odb_String& odb_FieldBulkData::baseElementType() const {
  return need().layout->elementType;
}
const odb_Instance& odb_FieldBulkData::instance() const {
  return need().layout->instance();
}
const odb_SectionPoint& odb_FieldBulkData::sectionPoint() const {
  return need().layout->sectionPoint();
}
const odb_SequenceString& odb_FieldBulkData::componentLabels() const {
  return odbs::engine::componentLabels(need());
}

void odb_SequenceFieldBulkData::clearAll() const {
  for (const odb_FieldBulkData& block : engineItems()) {
    if (!block.engineBlock()) continue;
    odbs::engine::dropArrays(*block.engineBlock());
    odbs::engine::forgetBlock(*block.engineBlock());
  }
}
