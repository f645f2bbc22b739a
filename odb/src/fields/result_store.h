// SPDX-License-Identifier: BSD-3-Clause
// How the fields of a frame are held. A frame's fields are in one of three states: in the file
// alone; as rows (descriptors, layouts and places of arrays, for frames that were written and
// released); or loaded, as field objects that callers have handles of.
#pragma once

#include "odb/src/fields/field_data.h"

#include <unordered_map>

namespace odbs::engine {

struct BlockRow {
  std::shared_ptr<BlockLayout> layout;
  odb_Enum::odb_DataTypeEnum type = odb_Enum::SCALAR;
  odb_Enum::odb_PrecisionEnum precision = odb_Enum::SINGLE_PRECISION;
  ArrayRef data, conjugate, orientation;
};

struct FieldRow {
  std::shared_ptr<const FieldDescriptor> descriptor;
  std::vector<BlockRow> blocks;
};

struct FrameFields {
  explicit FrameFields(FrameData* frame) : repository(frame) {}
  odb_FieldOutputRepository repository;
  bool loaded = false;
  // Rows that are not in the file yet.
  bool hasRows = false;
  std::vector<FieldRow> rows;
  std::map<const FieldBlock*, Block> kept;  // derived blocks that callers have pointers into
  bool touched = false;  // loaded fields were added or changed since the last save
};

// A run of rows of a stored table, kept because neighbours are asked for next.
class RowWindow {
 public:
  explicit RowWindow(const layout::TableSpec& shape) : spec_(shape) {}
  // Rows that hold [first, first + count) and the place of the first in them.
  const Rows& get(FileReader& reader, std::int64_t first, std::int64_t count, std::int64_t& place);
  std::int64_t size(FileReader& reader);

 private:
  const layout::TableSpec& spec_;
  std::int64_t nRows_ = -1;
  std::int64_t first_ = 0;
  std::unique_ptr<Rows> rows_;
};

// What the current file's fields share.
struct StoredFields {
  int file = 0;
  std::vector<std::shared_ptr<const FieldDescriptor>> kinds;
  std::vector<std::shared_ptr<BlockLayout>> layouts;
  RowWindow frames{layout::FrameFields::shape};
  RowWindow fields{layout::Fields::shape};
  RowWindow singles{layout::FieldBlocks::shape};
  RowWindow doubles{layout::FieldBlocks::doubleSpec};
};

struct ResultStore {
  std::unique_ptr<StoredFields> stored;
  std::unordered_map<std::string, std::shared_ptr<const FieldDescriptor>> kinds;  // by content
  std::unordered_multimap<std::uint64_t, std::weak_ptr<BlockLayout>> layouts;     // by hash
  std::unordered_multimap<std::uint64_t, std::weak_ptr<SharedInts>> ints;         // by hash
  std::vector<std::shared_ptr<BlockLayout>> saving;  // in row order, until the save is over
  std::vector<FrameData*> written;                   // frames with values in memory alone
  std::size_t nBytes = 0;                            // how many these are, about
};

ResultStore& resultsOf(Database& database);

// The frame's fields, loaded.
FrameFields& loadedFields(FrameData& frame);
FrameFields& fieldsOf(FrameData& frame);

// The one descriptor with that content.
std::shared_ptr<const FieldDescriptor> sharedDescriptor(Database& database,
                                                        const FieldDescriptor& content);
// Replaces the layouts of a field's blocks, and their labels, by equal ones that exist.
void internLayouts(FieldData& field);
// Moves values that are in memory alone to the pending file, but for those of `except`.
void spillFields(Database& database, const FieldBlock* except);
// Called when a field of a frame is added: values of other frames need not stay in memory.
void noteWritten(FrameData& frame);
// Called when a block has all its values: they need not stay in memory, nor its labels.
void finishBlock(FieldBlock& block);
// Called when values were added to a block.
void noteValues(FieldData& field, const FieldBlock& block, std::size_t nBytes);

}  // namespace odbs::engine
