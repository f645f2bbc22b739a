// SPDX-License-Identifier: BSD-3-Clause
// Making room for results, and finding the operands that belong together.
#include "odb/src/fields/field_result.h"

#include "odb/src/storage/errors.h"

#include <algorithm>

namespace odbs::engine {

namespace {

template <class Real>
void resizeArrays(FieldBlock& block) {
  Storage& storage = block.database->storage;
  BlockArrays<Real>& arrays = block.arrays<Real>();
  const auto n = static_cast<std::size_t>(block.layout->nValues);
  const std::size_t numbers = n * static_cast<std::size_t>(block.width);
  arrays.data.edit(storage).resize(numbers);
  if (block.complex) arrays.conjugate.edit(storage).resize(numbers);
  if (block.oriented) arrays.orientation.edit(storage).resize(4 * n);
}

bool equalLabels(const int* a, const int* b, int n) {
  return a == b || (a && b && std::equal(a, a + n, b));
}

bool sameValues(BlockLayout& a, BlockLayout& b) {
  return &a == &b ||
         (a.entityRow == b.entityRow && a.position == b.position && a.nValues == b.nValues &&
          a.category == b.category && a.point == b.point && a.elementType == b.elementType &&
          equalLabels(elementLabels(a), elementLabels(b), a.nValues) &&
          equalLabels(nodeLabels(a), nodeLabels(b), a.nValues) &&
          equalLabels(integrationPoints(a), integrationPoints(b), a.nValues) &&
          equalLabels(faceNumbers(a), faceNumbers(b), a.nValues));
}

}  // namespace

void setNumber(FieldBlock& block, Part part, std::size_t i, double value) {
  Storage& storage = block.database->storage;
  const auto put = [&](auto& arrays) {
    auto& array = part == Part::kData        ? arrays.data
                  : part == Part::kConjugate ? arrays.conjugate
                                             : arrays.orientation;
    using Real = typename std::decay_t<decltype(array.edit(storage))>::value_type;
    array.edit(storage)[i] = static_cast<Real>(value);
  };
  if (block.precision == odb_Enum::DOUBLE_PRECISION) {
    put(block.doubles);
  } else {
    put(block.singles);
  }
}

// A block of results with room for its numbers.
Block resultBlock(const FieldBlock& like, const std::shared_ptr<const FieldDescriptor>& descriptor,
                  odb_Enum::odb_DataTypeEnum type, int width, bool complex, bool isDouble) {
  Block block = sameLayout(like, descriptor, type, width);
  block->precision = isDouble ? odb_Enum::DOUBLE_PRECISION : odb_Enum::SINGLE_PRECISION;
  block->complex = complex;
  block->oriented = like.oriented && width == like.width && type != odb_Enum::SCALAR;
  if (isDouble) {
    resizeArrays<double>(*block);
  } else {
    resizeArrays<float>(*block);
  }
  return block;
}

bool isDouble(const FieldBlock& block) {
  return block.precision == odb_Enum::DOUBLE_PRECISION;
}

void copyOrientation(FieldBlock& from, FieldBlock& to) {
  if (!to.oriented) return;
  const int n = from.layout->nValues;
  std::vector<double> all(4 * static_cast<std::size_t>(n));
  readValues(from, Part::kOrientation, 0, n, all.data());
  for (std::size_t i = 0; i < all.size(); ++i) setNumber(to, Part::kOrientation, i, all[i]);
}

// The block of `field` with the same values as `block`.
FieldBlock& partner(const FieldData& field, FieldBlock& block) {
  for (const Block& other : field.blocks) {
    if (sameValues(*block.layout, *other->layout)) return *other;
  }
  failUsage(std::string("field outputs ") + block.descriptor->name.CStr() + " and " +
            field.descriptor->name.CStr() + " have different blocks");
}

}  // namespace odbs::engine
