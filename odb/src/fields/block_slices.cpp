// SPDX-License-Identifier: BSD-3-Clause
// Reading blocks piece by piece.
#include <odb_BlockSlices.h>

#include <algorithm>
#include <type_traits>

#include "odb/src/fields/field_data.h"
#include "odb/src/storage/errors.h"

namespace odbs::engine {

namespace {

// Bytes of a piece's numbers: with its labels it fits the cache of one processor core, and the call
// that reads it is small beside the copying.
constexpr std::size_t kPieceBytes = 512 * 1024;

const int* readSlice(BlockLayout& layout, Ints BlockLayout::*which, int first, int n,
                     std::vector<int>& buffer) {
  if (!(layout.*which)) return nullptr;
  buffer.resize(static_cast<std::size_t>(n));
  readLabels(layout, which, first, n, buffer.data());
  return buffer.data();
}

template <class Real>
const Real* readSlice(FieldBlock& block, Part part, int first, int n, std::vector<Real>& buffer) {
  if (!hasPart(block, part)) return nullptr;
  const auto width = static_cast<std::size_t>(partWidth(block, part));
  buffer.resize(static_cast<std::size_t>(n) * width);
  readOwnValues<Real>(block, part, first, n, buffer.data());
  return buffer.data();
}

}  // namespace

// Values that are computed, or in memory already, are one piece.
template <class Real>
void BlockSlices<Real>::readWhole() {
  slice_.first = 0;
  slice_.n = block_.length();
  slice_.elementLabels = block_.elementLabels();
  slice_.nodeLabels = block_.nodeLabels();
  slice_.integrationPoints = block_.integrationPoints();
  slice_.faces = block_.faces();
  FieldBlock& block = *block_.engineBlock();
  slice_.data = blockArray<Real>(block, Part::kData);
  slice_.conjugateData = blockArray<Real>(block, Part::kConjugate);
  slice_.localCoordSystem = blockArray<Real>(block, Part::kOrientation);
}

template <class Real>
void BlockSlices<Real>::readPiece(int first, int n) {
  FieldBlock& block = *block_.engineBlock();
  BlockLayout& layout = *block.layout;
  slice_.first = first;
  slice_.n = n;
  slice_.elementLabels = readSlice(layout, &BlockLayout::elementLabels, first, n, elementLabels_);
  slice_.nodeLabels = readSlice(layout, &BlockLayout::nodeLabels, first, n, nodeLabels_);
  slice_.integrationPoints =
      layout.position == odb_Enum::INTEGRATION_POINT
          ? readSlice(layout, &BlockLayout::points, first, n, integrationPoints_)
          : nullptr;
  // Faces are checked as a whole.
  const odb_Enum::odb_ElementFaceEnum* faces = block_.faces();
  slice_.faces = faces ? faces + first : nullptr;
  slice_.data = readSlice(block, Part::kData, first, n, data_);
  slice_.conjugateData = readSlice(block, Part::kConjugate, first, n, conjugate_);
  slice_.localCoordSystem = readSlice(block, Part::kOrientation, first, n, orientation_);
}

template <class Real>
const BlockSlice<Real>* BlockSlices<Real>::next() {
  const int first = slice_.first + slice_.n;
  const int rest = block_.length() - first;
  if (rest <= 0) return nullptr;
  FieldBlock& block = *block_.engineBlock();
  const bool isDouble = block.precision == odb_Enum::DOUBLE_PRECISION;
  if (block.compute || isDouble != std::is_same_v<Real, double>) {
    readWhole();  // which refuses the other precision
    return &slice_;
  }
  const std::size_t valueBytes = static_cast<std::size_t>(block.width) * sizeof(Real);
  const std::size_t most = std::max<std::size_t>(1024, kPieceBytes / valueBytes);
  readPiece(first, static_cast<int>(std::min(most, static_cast<std::size_t>(rest))));
  return &slice_;
}

template class BlockSlices<float>;
template class BlockSlices<double>;

}  // namespace odbs::engine
