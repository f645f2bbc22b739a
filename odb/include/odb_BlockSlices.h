// SPDX-License-Identifier: BSD-3-Clause
// BlockSlices: a block of field values read piece by piece, for programs that pass values on once.
// This library's own, like odb_embedded.h: the API has no such call.
// Nothing of the block stays in memory: a piece is small enough for the processor's cache, and its
// buffers are used again for the next one.
#pragma once

#include <odb_FieldBulkData.h>

#include <vector>

namespace odbs {
namespace engine {

// Values [first, first + n) of a block. Label arrays have n entries and are null where the block
// has no such labels; the numbers are those of odb_FieldBulkData's accessors, from value `first`
// on. Everything is valid until the next piece is read.
template <class Real>
struct BlockSlice {
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

// Reads the pieces of one block after another. The block must be in the precision of Real: next()
// throws odb_Exception when it is not, and when the database is damaged.
template <class Real>
class BlockSlices {
 public:
  explicit BlockSlices(const odb_FieldBulkData& block) : block_(block) {}
  // The next piece, or null after the last one.
  const BlockSlice<Real>* next();

 private:
  void readWhole();
  void readPiece(int first, int n);

  odb_FieldBulkData block_;
  BlockSlice<Real> slice_;
  std::vector<int> elementLabels_, nodeLabels_, integrationPoints_;
  std::vector<Real> data_, conjugate_, orientation_;
};

}  // namespace engine
}  // namespace odbs
