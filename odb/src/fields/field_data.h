// SPDX-License-Identifier: BSD-3-Clause
// The data of fields, blocks and values.
//
// A field is a descriptor and a list of blocks; a block is a layout (whose values) and arrays (the
// values). Descriptors, layouts and label arrays are shared by all frames that use them. Arrays are
// read or computed when they are first asked for.
#pragma once

#include "odb/src/model/database.h"

#include <odb_FieldOutput.h>

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace odbs::engine {

// What a field is, apart from its values; never changes.
struct FieldDescriptor {
  odb_String name;
  odb_String description;
  odb_Enum::odb_DataTypeEnum type = odb_Enum::SCALAR;
  int dim = 1;
  int dim2 = 1;
  bool engineering = false;
  odb_SequenceString labels;
  odb_SequenceInvariant invariants;
};

// An array of labels, shared. `hash` says whether two are equal without reading them; 0: unknown.
struct SharedInts {
  StoredArray<int> array;
  std::uint64_t hash[2] = {0, 0};
  bool pinned = false;   // a caller has a pointer into it: stays in memory
  bool checked = false;  // faces: every number is one of odb_ElementFaceEnum
};
using Ints = std::shared_ptr<SharedInts>;

struct BlockLayout {
  Database* database = nullptr;
  int entityRow = 0;
  odb_Enum::odb_ResultPositionEnum position = odb_Enum::UNDEFINED_POSITION;
  odb_String elementType;
  int category = -1;  // place among the model's categories
  int point = 0;      // place among the category's points
  int nValues = 0;
  int nElements = 0;
  int nNodes = 0;  // -1: not counted yet
  int valuesPerElement = 0;
  // Null where the position has no such labels.
  Ints elementLabels, nodeLabels, points, faces;
  // Fills the labels of a layout that is derived from another; called at most once.
  std::function<void(BlockLayout&)> compute;
  bool interned = false;
  std::int64_t row = -1;  // while saving

  // Resolved at first use.
  EntityData& entity();
  const odb_Instance& instance();
  const odb_SectionPoint& sectionPoint();

 private:
  EntityData* entity_ = nullptr;
  odb_Instance instance_;
  odb_SectionPoint sectionPoint_;
  bool pointResolved_ = false;
};

constexpr Ints BlockLayout::*kLabelArrays[] = {&BlockLayout::elementLabels,
                                               &BlockLayout::nodeLabels, &BlockLayout::points,
                                               &BlockLayout::faces};

template <class Real>
struct BlockArrays {
  StoredArray<Real> data, conjugate, orientation;
};

struct FieldBlock {
  Database* database = nullptr;
  FrameData* frame = nullptr;  // the frame whose values these are, or are computed from
  std::shared_ptr<BlockLayout> layout;
  std::shared_ptr<const FieldDescriptor> descriptor;
  odb_Enum::odb_DataTypeEnum type = odb_Enum::SCALAR;
  odb_Enum::odb_PrecisionEnum precision = odb_Enum::SINGLE_PRECISION;
  int width = 1;
  bool complex = false;
  bool oriented = false;
  BlockArrays<float> singles;
  BlockArrays<double> doubles;
  // Fills the arrays of a block that is derived from others.
  std::function<void(FieldBlock&)> compute;
  bool computed = false;
  bool pinned = false;   // a caller has a pointer into it: stays in memory
  bool derived = false;  // belongs to no field of the frame
  bool kept = false;     // by keepWithFrame
  Buffer<float> mises;
  odb_SequenceString labels;  // made at first use
  bool labelsReady = false;

  template <class Real>
  BlockArrays<Real>& arrays();
};
template <>
inline BlockArrays<float>& FieldBlock::arrays<float>() {
  return singles;
}
template <>
inline BlockArrays<double>& FieldBlock::arrays<double>() {
  return doubles;
}
using Block = std::shared_ptr<FieldBlock>;

struct FieldData {
  Database* database = nullptr;
  std::shared_ptr<const FieldDescriptor> descriptor;
  std::vector<Block> blocks;
  bool derived = false;  // computed, or released: takes no more data
  FrameData* frame = nullptr;
  // Views, made at first use.
  bool viewsReady = false;
  odb_SequenceFieldBulkData bulk;
  odb_SequenceFieldLocation locations;
  odb_SequenceString elementTypes;
};
using Field = std::shared_ptr<FieldData>;

// ---- Arrays of blocks (field_block.cpp) ----

enum class Part { kData, kConjugate, kOrientation };

// The numbers of a block in its own precision, read or computed if need be; null when it has none.
template <class Real>
Real* blockArray(FieldBlock& block, Part part);
// The same in double precision, whatever the block's, for values [first, first + n).
void readValues(FieldBlock& block, Part part, int first, int n, double* out);
// The same in the block's own precision, which must be Real, without keeping the rest in memory.
template <class Real>
void readOwnValues(FieldBlock& block, Part part, int first, int n, Real* out);
// Numbers per value of a part: the width, or 4.
int partWidth(const FieldBlock& block, Part part);
bool hasPart(const FieldBlock& block, Part part);
// Frees what can be read or computed again.
void dropArrays(FieldBlock& block);

// The labels of a layout, read or computed if need be; null when it has none.
int* elementLabels(BlockLayout& layout);
int* nodeLabels(BlockLayout& layout);
int* integrationPoints(BlockLayout& layout);
int* faceNumbers(BlockLayout& layout);

// Labels [first, first + n) of a layout that has them, read into `out` without keeping the rest.
void readLabels(BlockLayout& layout, Ints BlockLayout::*which, int first, int n, int* out);

Ints makeInts(const std::vector<int>& values);
// Counts elements and nodes from the labels in memory.
void countLabels(BlockLayout& layout);

const odb_SequenceString& componentLabels(FieldBlock& block);
// Labels of a field's components as a value of `width` components has them.
std::vector<odb_String> labelsFor(const FieldDescriptor& descriptor, int width);

// Keeps a derived block whose arrays a caller has pointers into, until its frame is released or
// its arrays are dropped; forgets it again (result_store.cpp).
void keepWithFrame(const Block& block);
void forgetBlock(FieldBlock& block);

// ---- Fields (field_output.cpp) ----

Field& fieldOf(const odb_FieldOutput& field);
// A computed field like `source`, without blocks.
Field derivedField(const FieldData& source);
odb_FieldOutput handleOf(Field field);
void makeViews(FieldData& field);
bool isComplex(const FieldData& field);

// A new block with the same labels as `source` and no values yet.
Block sameLayout(const FieldBlock& source, std::shared_ptr<const FieldDescriptor> descriptor,
                 odb_Enum::odb_DataTypeEnum type, int width);
// The values of `source` at `indices`; the labels are copied now, the values when asked for.
Block selectedValues(const Block& source, std::vector<int> indices);

// The quaternion that is stored for three rows of direction cosines as addData takes them. Throws
// odb_Exception when they are no system.
std::array<double, 4> quaternionOfRows(const odb_SequenceSequenceFloat& rows);

// The values at another position, computed from integration points (field_position.cpp).
Block extrapolatedBlock(const Block& source, bool centroid);

}  // namespace odbs::engine
