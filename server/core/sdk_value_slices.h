// SPDX-License-Identifier: BSD-3-Clause
// Field values in pieces, for the loops that pass millions of them on. The embedded library reads a
// block piece by piece; where a library cannot, the whole block is one piece. Part of the adapter:
// callers see no difference but speed and memory.
#pragma once

#include <odb_API.h>

#if !defined(ODBS_SDK)
#include <odb_BlockSlices.h>
#endif

namespace odbs::sdk {

#if !defined(ODBS_SDK)

template <typename Real>
using ValueSlice = engine::BlockSlice<Real>;

// Calls use(slice) for consecutive pieces of the block, which is in the precision of Real, until
// all its values were in one.
template <typename Real, typename Use>
void forEachValueSlice(const odb_FieldBulkData& block, bool, Use use) {
  engine::BlockSlices<Real> slices(block);
  while (const ValueSlice<Real>* slice = slices.next()) use(*slice);
}

#else

template <typename Real>
struct ValueSlice {
  int first = 0;
  int n = 0;
  const int* elementLabels = nullptr;
  const int* nodeLabels = nullptr;
  const int* integrationPoints = nullptr;
  const odb_Enum::odb_ElementFaceEnum* faces = nullptr;
  const Real* data = nullptr;
  const Real* conjugateData = nullptr;
  const Real* localCoordSystem = nullptr;
};

namespace detail {

inline void takeNumbers(const odb_FieldBulkData& block, bool complex, ValueSlice<float>& slice) {
  slice.data = block.data();
  if (complex) slice.conjugateData = block.conjugateData();
  if (block.orientationWidth() > 0) slice.localCoordSystem = block.localCoordSystem();
}

inline void takeNumbers(const odb_FieldBulkData& block, bool complex, ValueSlice<double>& slice) {
  slice.data = block.dataDouble();
  if (complex) slice.conjugateData = block.conjugateDataDouble();
  if (block.orientationWidth() > 0) slice.localCoordSystem = block.localCoordSystemDouble();
}

}  // namespace detail

template <typename Real, typename Use>
void forEachValueSlice(const odb_FieldBulkData& block, bool complex, Use use) {
  ValueSlice<Real> slice;
  slice.n = block.length();
  slice.elementLabels = block.elementLabels();
  slice.nodeLabels = block.nodeLabels();
  slice.integrationPoints = block.integrationPoints();
  slice.faces = block.faces();
  detail::takeNumbers(block, complex, slice);
  use(slice);
}

#endif

}  // namespace odbs::sdk
