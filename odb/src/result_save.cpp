// SPDX-License-Identifier: BSD-3-Clause
// Writing fields into the tables of a database that is being saved.
#include "odb/src/fields/result_rows.h"
#include "odb/src/history/history_data.h"
#include "odb/src/storage/errors.h"

#include <unordered_map>

namespace odbs::engine {

namespace {

using layout::FieldBlocks;
using layout::FieldKinds;
using layout::FieldLabels;
using layout::FieldLayouts;
using layout::Fields;

class FieldSaver {
 public:
  FieldSaver(Database& database, Saver& saver)
      : store_(resultsOf(database)),
        saver_(saver),
        kinds_(saver.table(FieldKinds::shape)),
        labels_(saver.table(FieldLabels::shape)),
        layouts_(saver.table(FieldLayouts::shape)),
        frames_(saver.table(layout::FrameFields::shape)),
        fields_(saver.table(Fields::shape)),
        singles_(saver.table(FieldBlocks::shape)),
        doubles_(saver.table(FieldBlocks::doubleSpec)) {
    store_.saving.clear();
  }
  ~FieldSaver() {
    for (const auto& layout : store_.saving) layout->row = -1;
  }
  FieldSaver(const FieldSaver&) = delete;
  FieldSaver& operator=(const FieldSaver&) = delete;

  void frame(FrameData& frame) {
    const std::int64_t row = frames_.addRow();
    frames_.integer(row, layout::FrameFields::kFirstField) = fields_.nRows;
    if (frame.fields && frame.fields->loaded) {
      auto& items = frame.fields->repository.engineBase().engineItems();
      for (int i = 0; i < items.size(); ++i) loaded(*fieldOf(items.at(i).value));
    } else if (frame.fields && frame.fields->hasRows) {
      for (const FieldRow& field : frame.fields->rows) rows(field);
    } else {
      for (const FieldRow& field : storedRows(frame)) rows(field);
    }
    frames_.integer(row, layout::FrameFields::kNFields) =
        fields_.nRows - frames_.integer(row, layout::FrameFields::kFirstField);
  }

 private:
  void loaded(FieldData& field) {
    internLayouts(field);
    const std::int64_t row = startField(*field.descriptor, field.descriptor);
    for (const Block& block : field.blocks) {
      if (block->layout->nValues == 0) continue;
      if (block->precision == odb_Enum::DOUBLE_PRECISION) {
        loadedBlock(doubles_, *block, block->doubles);
      } else {
        loadedBlock(singles_, *block, block->singles);
      }
    }
    endField(row);
  }

  template <class Real>
  void loadedBlock(Table& table, FieldBlock& block, BlockArrays<Real>& arrays) {
    const std::int64_t row = startBlock(table, block.layout, block.type);
    saver_.array(table, row, FieldBlocks::kData, arrays.data);
    saver_.array(table, row, FieldBlocks::kConjugate, arrays.conjugate);
    saver_.array(table, row, FieldBlocks::kOrientation, arrays.orientation);
  }

  void rows(const FieldRow& field) {
    const std::int64_t row = startField(*field.descriptor, field.descriptor);
    for (const BlockRow& block : field.blocks) {
      const bool isDouble = block.precision == odb_Enum::DOUBLE_PRECISION;
      const layout::Kind kind = isDouble ? layout::Kind::kFloat64 : layout::Kind::kFloat32;
      Table& table = isDouble ? doubles_ : singles_;
      const std::int64_t at = startBlock(table, block.layout, block.type);
      saver_.copy(table, at, FieldBlocks::kData, kind, block.data);
      saver_.copy(table, at, FieldBlocks::kConjugate, kind, block.conjugate);
      saver_.copy(table, at, FieldBlocks::kOrientation, kind, block.orientation);
    }
    endField(row);
  }

  std::int64_t startField(const FieldDescriptor& descriptor,
                          const std::shared_ptr<const FieldDescriptor>& shared) {
    const auto [at, added] = kindRows_.emplace(shared.get(), kinds_.nRows);
    if (added) addKind(descriptor);
    const std::int64_t row = fields_.addRow();
    fields_.integer(row, Fields::kKind) = at->second;
    fields_.integer(row, Fields::kFirstBlock) = singles_.nRows;
    fields_.integer(row, Fields::kFirstDouble) = doubles_.nRows;
    return row;
  }

  void endField(std::int64_t row) {
    fields_.integer(row, Fields::kNBlocks) =
        singles_.nRows - fields_.integer(row, Fields::kFirstBlock);
    fields_.integer(row, Fields::kNDoubles) =
        doubles_.nRows - fields_.integer(row, Fields::kFirstDouble);
  }

  void addKind(const FieldDescriptor& d) {
    const std::int64_t row = kinds_.addRow();
    kinds_.integer(row, FieldKinds::kName) = saver_.text(d.name);
    kinds_.integer(row, FieldKinds::kDescription) = saver_.text(d.description);
    kinds_.integer(row, FieldKinds::kType) = d.type;
    kinds_.integer(row, FieldKinds::kDim) = d.dim;
    kinds_.integer(row, FieldKinds::kDim2) = d.dim2;
    kinds_.integer(row, FieldKinds::kEngineering) = d.engineering;
    kinds_.integer(row, FieldKinds::kInvariants) = bitsOf(d.invariants);
    kinds_.integer(row, FieldKinds::kFirstLabel) = labels_.nRows;
    kinds_.integer(row, FieldKinds::kNLabels) = d.labels.size();
    for (const odb_String& label : d.labels.engineItems()) {
      labels_.integer(labels_.addRow(), FieldLabels::kText) = saver_.text(label);
    }
  }

  std::int64_t startBlock(Table& table, const std::shared_ptr<BlockLayout>& layout,
                          odb_Enum::odb_DataTypeEnum type) {
    if (layout->row < 0) addLayout(layout);
    const std::int64_t row = table.addRow();
    table.integer(row, FieldBlocks::kLayout) = layout->row;
    table.integer(row, FieldBlocks::kType) = type;
    return row;
  }

  void addLayout(const std::shared_ptr<BlockLayout>& layout) {
    const BlockLayout& l = *layout;
    const std::int64_t row = layouts_.addRow();
    layout->row = row;
    store_.saving.push_back(layout);
    layouts_.integer(row, FieldLayouts::kEntity) = l.entityRow;
    layouts_.integer(row, FieldLayouts::kPosition) = l.position;
    layouts_.integer(row, FieldLayouts::kElementType) = saver_.text(l.elementType);
    layouts_.integer(row, FieldLayouts::kCategory) = l.category;
    layouts_.integer(row, FieldLayouts::kPoint) = l.point;
    layouts_.integer(row, FieldLayouts::kNValues) = l.nValues;
    layouts_.integer(row, FieldLayouts::kNElements) = l.nElements;
    layouts_.integer(row, FieldLayouts::kNNodes) = l.nNodes;
    layouts_.integer(row, FieldLayouts::kValuesPerElement) = l.valuesPerElement;
    addInts(row, FieldLayouts::kElementLabels, l.elementLabels);
    addInts(row, FieldLayouts::kNodeLabels, l.nodeLabels);
    addInts(row, FieldLayouts::kPoints, l.points);
    addInts(row, FieldLayouts::kFaces, l.faces);
  }

  void addInts(std::int64_t row, int column, const Ints& ints) {
    if (!ints) return;
    const auto known = intRows_.find(ints.get());
    if (known == intRows_.end()) {
      saver_.array(layouts_, row, column, ints->array);
      intRows_[ints.get()] = {layouts_.integer(row, column), layouts_.integer(row, column + 1)};
      return;
    }
    layouts_.integer(row, column) = known->second.first;
    layouts_.integer(row, column + 1) = known->second.second;
  }

  ResultStore& store_;
  Saver& saver_;
  Table& kinds_;
  Table& labels_;
  Table& layouts_;
  Table& frames_;
  Table& fields_;
  Table& singles_;
  Table& doubles_;
  std::unordered_map<const FieldDescriptor*, std::int64_t> kindRows_;
  std::unordered_map<const SharedInts*, std::pair<std::int64_t, std::int64_t>> intRows_;
};

}  // namespace

void saveResults(Database& database, Saver& saver) {
  FieldSaver fields(database, saver);
  HistorySaver histories(saver);
  const auto& steps = database.steps.handles.engineItems();
  for (int i = 0; i < steps.size(); ++i) {
    StepData& step = *steps.at(i).value.engineData();
    histories.step(step);
    loadFrames(step);
    for (FrameData& frame : step.frames) fields.frame(frame);
  }
}

}  // namespace odbs::engine
