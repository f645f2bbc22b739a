// SPDX-License-Identifier: BSD-3-Clause
// The files of one open database, and saving.
#include "odb/src/storage/storage.h"

#include "odb/src/storage/errors.h"

namespace odbs::engine {

Storage::~Storage() {
  dropPending();
}

void Storage::setCurrent(std::unique_ptr<FileReader> reader) {
  reader->rest();
  current_ = ++lastFile_;
  files_[current_] = std::move(reader);
}

void Storage::read(layout::Kind kind, const ArrayRef& ref, std::int64_t first, std::int64_t count,
                   void* out) {
  if (first < 0 || count < 0 || first > ref.count - count) {
    failDamaged("a part of an array lies outside it");
  }
  if (ref.file == pendingFile_ && pending_) {
    pending_->readArray(kind, ref.start + first, count, out);
    return;
  }
  const auto file = files_.find(ref.file);
  if (file == files_.end()) failUsage("the data were written to a file that is gone");
  file->second->readArray(kind, ref.start + first, count, out);
}

FileWriter& Storage::pending(const std::string& target) {
  if (!pending_) {
    pending_ = std::make_unique<FileWriter>(target, compressed);
    pendingFile_ = ++lastFile_;
  }
  return *pending_;
}

void Storage::commitPending() {
  const int number = pendingFile_;
  std::unique_ptr<FileReader> reader = pending_->commit();
  pending_.reset();
  pendingFile_ = 0;
  // References may point at files of earlier saves only as long as those are the current one.
  files_.clear();
  files_[number] = std::move(reader);
  current_ = number;
}

void Storage::dropPending() {
  pending_.reset();
  pendingFile_ = 0;
}

Table& Saver::table(const layout::TableSpec& shape) {
  return tables_.emplace(&shape, emptyTable(shape)).first->second;
}

ArrayRef Saver::put(layout::Kind kind, const ArrayRef& ref, std::int64_t count,
                    const std::function<const void*()>& memory) {
  if (count == 0) return ArrayRef();
  if (ref.file != 0 && ref.file == targetFile_) return ref;
  const std::tuple<int, int, std::int64_t> key(static_cast<int>(kind), ref.file, ref.start);
  if (ref.file != 0) {
    const auto known = copied_.find(key);
    if (known != copied_.end() && known->second.count == count) return known->second;
  }
  const void* data = memory();
  std::vector<unsigned char> bytes;
  if (!data) {
    bytes.resize(static_cast<std::size_t>(count) * sizeOf(numberOf(kind)));
    storage_.read(kind, ref, 0, count, bytes.data());
    data = bytes.data();
  }
  const ArrayRef placed{target_.putArray(kind, data, count), count, targetFile_};
  if (ref.file != 0) copied_[key] = placed;
  return placed;
}

void Saver::finish() {
  target_.putTexts(texts_.texts());
  for (const auto& [shape, table] : tables_) target_.putTable(*shape, table);
  target_.finish();
}

void Saver::commit() {
  for (const Commit& change : commits_) *change.where = change.ref;
}

}  // namespace odbs::engine
