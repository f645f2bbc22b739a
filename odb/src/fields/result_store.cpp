// SPDX-License-Identifier: BSD-3-Clause
// Fields of frames in memory: loading, sharing, spilling, releasing.
#include "odb/src/fields/result_store.h"

#include "odb/src/fields/result_rows.h"
#include "odb/src/storage/errors.h"

#include <algorithm>

namespace odbs::engine {

namespace {

// Values in memory beyond this are moved to the file while a frame is still being written.
constexpr std::size_t kMostBytes = std::size_t(64) << 20;

std::uint64_t mixed(std::uint64_t hash, std::uint64_t value) {
  hash = (hash ^ value) * 0x9E3779B97F4A7C15u;
  return hash ^ (hash >> 29);
}

void hashInts(SharedInts& ints, Storage& storage) {
  if (ints.hash[0] != 0) return;
  const Buffer<int>& values = ints.array.get(storage);
  std::uint64_t a = values.size(), b = 0x51ED270B7A3F5A17u;
  for (int value : values) {
    const auto v = static_cast<std::uint32_t>(value);
    a = mixed(a, v);
    b = (b + v) * 0xC2B2AE3D27D4EB4Fu;
  }
  ints.hash[0] = a | 1;
  ints.hash[1] = b;
}

// The one array with this content.
Ints sharedInts(ResultStore& store, Storage& storage, const Ints& ints) {
  if (!ints) return ints;
  hashInts(*ints, storage);
  const auto [first, last] = store.ints.equal_range(ints->hash[0]);
  for (auto at = first; at != last; ++at) {
    const Ints known = at->second.lock();
    if (known && known->hash[1] == ints->hash[1] && known->array.count() == ints->array.count()) {
      return known;
    }
  }
  store.ints.emplace(ints->hash[0], ints);
  return ints;
}

bool sameLayouts(const BlockLayout& a, const BlockLayout& b) {
  return a.entityRow == b.entityRow && a.position == b.position && a.category == b.category &&
         a.point == b.point && a.nValues == b.nValues && a.elementType == b.elementType &&
         a.elementLabels == b.elementLabels && a.nodeLabels == b.nodeLabels &&
         a.points == b.points && a.faces == b.faces;
}

std::uint64_t hashLayout(const BlockLayout& layout) {
  std::uint64_t hash = static_cast<std::uint64_t>(layout.entityRow);
  hash = mixed(hash, static_cast<std::uint64_t>(layout.position));
  hash = mixed(hash, static_cast<std::uint64_t>(layout.nValues));
  hash = mixed(hash, static_cast<std::uint64_t>(layout.category + 1) << 32 |
                         static_cast<std::uint32_t>(layout.point));
  for (Ints BlockLayout::*which : kLabelArrays) {
    hash = mixed(hash, reinterpret_cast<std::uintptr_t>((layout.*which).get()));
  }
  return hash;
}

std::shared_ptr<BlockLayout> sharedLayout(ResultStore& store, Storage& storage,
                                          const std::shared_ptr<BlockLayout>& layout) {
  for (Ints BlockLayout::*which : kLabelArrays) {
    (*layout).*which = sharedInts(store, storage, (*layout).*which);
  }
  const std::uint64_t hash = hashLayout(*layout);
  const auto [first, last] = store.layouts.equal_range(hash);
  for (auto at = first; at != last; ++at) {
    const auto known = at->second.lock();
    if (known && sameLayouts(*known, *layout)) return known;
  }
  countLabels(*layout);
  layout->interned = true;
  store.layouts.emplace(hash, layout);
  return layout;
}

template <class Real>
void spillArrays(BlockArrays<Real>& arrays, Storage& storage, const std::string& target) {
  arrays.data.spill(storage, target);
  arrays.conjugate.spill(storage, target);
  arrays.orientation.spill(storage, target);
}

void spillBlock(FieldBlock& block, bool force) {
  Database& database = *block.database;
  const std::string target = database.target.CStr();
  for (Ints BlockLayout::*which : kLabelArrays) {
    const Ints& ints = (*block.layout).*which;
    if (ints && !ints->pinned) ints->array.spill(database.storage, target);
  }
  if (block.pinned && !force) return;
  spillArrays(block.singles, database.storage, target);
  spillArrays(block.doubles, database.storage, target);
}

BlockRow rowOf(FieldBlock& block) {
  BlockRow row;
  row.layout = block.layout;
  row.type = block.type;
  row.precision = block.precision;
  const bool isDouble = block.precision == odb_Enum::DOUBLE_PRECISION;
  row.data = isDouble ? block.doubles.data.ref() : block.singles.data.ref();
  row.conjugate = isDouble ? block.doubles.conjugate.ref() : block.singles.conjugate.ref();
  row.orientation = isDouble ? block.doubles.orientation.ref() : block.singles.orientation.ref();
  return row;
}

template <class Real>
void refer(BlockArrays<Real>& arrays, const BlockRow& row) {
  arrays.data.refer(row.data);
  arrays.conjugate.refer(row.conjugate);
  arrays.orientation.refer(row.orientation);
}

Field fieldFrom(const FieldRow& row, FrameData& frame) {
  Field field = std::make_shared<FieldData>();
  field->database = frame.step->database;
  field->frame = &frame;
  field->descriptor = row.descriptor;
  for (const BlockRow& from : row.blocks) {
    Block block = std::make_shared<FieldBlock>();
    block->database = field->database;
    block->frame = &frame;
    block->layout = from.layout;
    block->descriptor = row.descriptor;
    block->type = from.type;
    block->precision = from.precision;
    block->width = static_cast<int>(from.data.count / from.layout->nValues);
    block->complex = from.conjugate.count > 0;
    block->oriented = from.orientation.count > 0;
    if (from.precision == odb_Enum::DOUBLE_PRECISION) {
      refer(block->doubles, from);
    } else {
      refer(block->singles, from);
    }
    field->blocks.push_back(std::move(block));
  }
  return field;
}

}  // namespace

ResultStore& resultsOf(Database& database) {
  if (!database.results) database.results = std::make_shared<ResultStore>();
  return *database.results;
}

FrameFields& fieldsOf(FrameData& frame) {
  if (!frame.fields) frame.fields = std::make_shared<FrameFields>(&frame);
  return *frame.fields;
}

FrameFields& loadedFields(FrameData& frame) {
  FrameFields& fields = fieldsOf(frame);
  if (fields.loaded) return fields;
  const std::vector<FieldRow> stored = fields.hasRows ? std::vector<FieldRow>() : storedRows(frame);
  auto& items = fields.repository.engineBase().engineItems();
  items.clear();
  for (const FieldRow& row : fields.hasRows ? fields.rows : stored) {
    if (items.find(row.descriptor->name)) {
      failDamaged(std::string("a frame has two fields ") + row.descriptor->name.CStr());
    }
    items.add(row.descriptor->name, odb_FieldOutput(fieldFrom(row, frame)));
  }
  fields.loaded = true;
  return fields;
}

std::shared_ptr<const FieldDescriptor> sharedDescriptor(Database& database,
                                                        const FieldDescriptor& given) {
  FieldDescriptor content = given;
  if (content.type == odb_Enum::SCALAR) content.labels = odb_SequenceString();
  std::string key;
  const auto add = [&key](const odb_String& text) {
    key.append(text.CStr(), static_cast<std::size_t>(text.Length())).push_back('\0');
  };
  add(content.name);
  add(content.description);
  for (int number : {static_cast<int>(content.type), content.dim, content.dim2,
                     static_cast<int>(content.engineering)}) {
    key += std::to_string(number) + ' ';
  }
  for (auto which : content.invariants.engineItems()) key += std::to_string(which) + ' ';
  for (const odb_String& label : content.labels.engineItems()) add(label);
  auto& shared = resultsOf(database).kinds[key];
  if (!shared) shared = std::make_shared<const FieldDescriptor>(content);
  return shared;
}

void internLayouts(FieldData& field) {
  for (const Block& block : field.blocks) {
    if (block->layout->interned) continue;
    block->layout =
        sharedLayout(resultsOf(*field.database), field.database->storage, block->layout);
  }
}

void finishBlock(FieldBlock& block) {
  if (!block.layout->interned) {
    Database& database = *block.database;
    block.layout = sharedLayout(resultsOf(database), database.storage, block.layout);
  }
  spillBlock(block, false);
}

void noteWritten(FrameData& frame) {
  ResultStore& store = resultsOf(*frame.step->database);
  if (!store.written.empty() && store.written.back() == &frame) return;
  spillFields(*frame.step->database, nullptr);
  store.written.assign(1, &frame);
}

void noteValues(FieldData& field, const FieldBlock& block, std::size_t nBytes) {
  ResultStore& store = resultsOf(*field.database);
  fieldsOf(*field.frame).touched = true;
  if (std::find(store.written.begin(), store.written.end(), field.frame) == store.written.end()) {
    store.written.push_back(field.frame);
  }
  store.nBytes += nBytes;
  if (store.nBytes > kMostBytes) spillFields(*field.database, &block);
}

void spillFields(Database& database, const FieldBlock* except) {
  ResultStore& store = resultsOf(database);
  store.nBytes = 0;
  for (FrameData* frame : store.written) {
    FrameFields& fields = fieldsOf(*frame);
    if (!fields.loaded) continue;
    auto& items = fields.repository.engineBase().engineItems();
    for (int i = 0; i < items.size(); ++i) {
      FieldData& field = *fieldOf(items.at(i).value);
      if (!except) internLayouts(field);
      for (const Block& block : field.blocks) {
        if (block.get() == except) continue;
        finishBlock(*block);
      }
    }
  }
}

void keepWithFrame(const Block& block) {
  if (!block->derived || block->kept || !block->frame) return;
  fieldsOf(*block->frame).kept.emplace(block.get(), block);
  block->kept = true;
}

void forgetBlock(FieldBlock& block) {
  if (!block.kept) return;
  block.kept = false;
  fieldsOf(*block.frame).kept.erase(&block);
}

void releaseFields(FrameData& frame) {
  if (frame.fields) {
    for (const auto& [place, block] : frame.fields->kept) block->kept = false;
    frame.fields->kept.clear();
  }
  if (!frame.fields || !frame.fields->loaded) return;
  FrameFields& fields = *frame.fields;
  auto& base = fields.repository.engineBase();
  std::vector<FieldRow> rows;
  for (int i = 0; i < base.engineItems().size(); ++i) {
    FieldData& field = *fieldOf(base.engineItems().at(i).value);
    if (fields.touched) {
      internLayouts(field);
      FieldRow row;
      row.descriptor = field.descriptor;
      for (const Block& block : field.blocks) {
        spillBlock(*block, true);
        row.blocks.push_back(rowOf(*block));
      }
      rows.push_back(std::move(row));
    }
    field.derived = true;  // handles that live on take no more values
  }
  if (fields.touched) {
    fields.rows.swap(rows);
    fields.hasRows = true;
    fields.touched = false;
  }
  fields.loaded = false;
  // Callers and iterators may hold the old contents.
  base = RepositoryOf<odb_FieldOutput>();
  auto& written = resultsOf(*frame.step->database).written;
  written.erase(std::remove(written.begin(), written.end(), &frame), written.end());
}

void openResults(Database&, FileReader&) {}

void resultsSaved(Database& database) {
  if (database.results) {
    ResultStore& store = *database.results;
    store.stored.reset();
    store.saving.clear();
    store.written.clear();
    store.nBytes = 0;
  }
  for (StepData& step : database.steps.items) {
    for (FrameData& frame : step.frames) {
      if (!frame.fields) continue;
      frame.fields->touched = false;
      frame.fields->hasRows = false;
      std::vector<FieldRow>().swap(frame.fields->rows);
    }
  }
}

}  // namespace odbs::engine
