// SPDX-License-Identifier: BSD-3-Clause
// Writing a database in the current layout.
#include "odb/src/storage/errors.h"
#include "odb/src/storage/storage.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <random>
#include <string_view>

namespace odbs::engine {

namespace {

// Small arrays are collected in pieces of this size; larger ones get a separate piece.
constexpr std::size_t kPieceBytes = std::size_t(8) << 20;

std::string arrayName(layout::Kind kind, const std::string& part) {
  return std::string(layout::kArrays) + "/" + layout::kKindNames[static_cast<int>(kind)] + "." +
         part;
}

std::size_t hashOf(const void* data, std::int64_t count, Number number) {
  return std::hash<std::string_view>()(
      {static_cast<const char*>(data), static_cast<std::size_t>(count) * sizeOf(number)});
}

// The file that is to be replaced: what a symbolic link names, which may not exist yet.
std::string throughLinks(const std::string& target) {
  namespace fs = std::filesystem;
  constexpr int kMostLinks = 40;
  std::error_code error;
  fs::path path = target;
  int nLinks = 0;
  for (; nLinks < kMostLinks && fs::is_symlink(path, error); ++nLinks) {
    path = path.parent_path() / fs::read_symlink(path, error);
  }
  const fs::file_status status = fs::status(path, error);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    fail(odb_ERROR_CANNOT_WRITE, "cannot write " + target + ": it exists and is no ordinary file");
  }
  // A path cannot hold every name of the system's encoding: without a link the name stays as it is.
  return nLinks == 0 ? target : path.string();
}

}  // namespace

Table emptyTable(const layout::TableSpec& shape) {
  Table table;
  table.nInts = shape.nInts;
  table.nReals = shape.nReals;
  return table;
}

std::int64_t Table::addRow() {
  ints.resize(ints.size() + static_cast<std::size_t>(nInts));
  reals.resize(reals.size() + static_cast<std::size_t>(nReals));
  return nRows++;
}

std::int64_t TextWriter::put(const odb_String& text) {
  if (text.empty()) return -1;
  const auto [at, added] =
      numbers_.emplace(std::string(text.CStr(), static_cast<std::size_t>(text.Length())),
                       static_cast<std::int64_t>(texts_.size()));
  if (added) texts_.push_back(at->first);
  return at->second;
}

FileWriter::FileWriter(const std::string& target, bool compressed)
    : target_(target), finalPath_(throughLinks(target)), compressed_(compressed) {
  static int count = 0;
  const std::string start = finalPath_ + ".new" + std::to_string(port::currentProcessId()) + "-";
  // Whatever else has such a name is passed over.
  for (int tries = 0; !file_; ++tries) {
    if (tries == 1000) fail(odb_ERROR_CANNOT_WRITE, "cannot write " + target + ": no free name");
    const std::string path = start + std::to_string(++count);
    file_ = Hdf5File::createNew(path, target);
    if (file_) unfinished_ = std::make_unique<port::UnfinishedFile>(path);
  }
  file_->makeGroup(layout::kTables);
  file_->makeGroup(layout::kArrays);
}

void FileWriter::put(const std::string& name, Number number, const std::vector<std::int64_t>& dims,
                     const void* data) {
  if (file_->has(name)) file_->remove(name);
  const Hdf5File::Dataset dataset = file_->create(name, number, dims, false);
  file_->write(dataset, 0, dims[0], data);
  stored_[name] = {number, dims, hashOf(data, dataset.count(), number)};
}

Hdf5File::Dataset FileWriter::makePiece(layout::Kind kind, std::int64_t count) {
  Pieces& pieces = pieces_[static_cast<int>(kind)];
  const std::string name = arrayName(kind, std::to_string(pieces.sizes.size()));
  Hdf5File::Dataset dataset = file_->create(name, numberOf(kind), {count}, compressed_);
  stored_[name] = {numberOf(kind), {count}, std::nullopt};
  pieces.starts.push_back(pieces.starts.empty() ? 0 : pieces.starts.back() + pieces.sizes.back());
  pieces.sizes.push_back(count);
  return dataset;
}

void FileWriter::writePiece(layout::Kind kind, const void* data, std::int64_t count) {
  file_->write(makePiece(kind, count), 0, count, data);
}

void FileWriter::flushSmall(layout::Kind kind) {
  Pieces& pieces = pieces_[static_cast<int>(kind)];
  if (pieces.small.empty()) return;
  writePiece(kind, pieces.small.data(),
             static_cast<std::int64_t>(pieces.small.size() / sizeOf(numberOf(kind))));
  pieces.small.clear();
}

std::int64_t FileWriter::putArray(layout::Kind kind, const void* data, std::int64_t count) {
  if (count == 0) return 0;
  Pieces& pieces = pieces_[static_cast<int>(kind)];
  const std::size_t bytes = static_cast<std::size_t>(count) * sizeOf(numberOf(kind));
  const std::int64_t start = pieces.end;
  if (bytes + pieces.small.size() > kPieceBytes) flushSmall(kind);
  if (bytes > kPieceBytes / 2) {
    flushSmall(kind);
    writePiece(kind, data, count);
  } else {
    const unsigned char* from = static_cast<const unsigned char*>(data);
    pieces.small.insert(pieces.small.end(), from, from + bytes);
  }
  pieces.end += count;
  return start;
}

std::int64_t FileWriter::reserveArray(layout::Kind kind, std::int64_t count) {
  Pieces& pieces = pieces_[static_cast<int>(kind)];
  flushSmall(kind);
  const std::int64_t start = pieces.end;
  pieces.reserved[start].dataset = makePiece(kind, count);
  pieces.end += count;
  return start;
}

bool FileWriter::putNext(layout::Kind kind, std::int64_t start, const void* data,
                         std::int64_t count) {
  auto& reserved = pieces_[static_cast<int>(kind)].reserved;
  const auto at = reserved.find(start);
  if (at == reserved.end()) return false;
  Reserved& piece = at->second;
  file_->write(piece.dataset, piece.nPut, count, data);
  piece.nPut += count;
  if (piece.nPut == piece.dataset.count()) reserved.erase(at);
  return true;
}

// No part of a file is left to chance, and a compressed piece must be as large as it claims.
void FileWriter::fillReserved(layout::Kind kind) {
  auto& reserved = pieces_[static_cast<int>(kind)].reserved;
  if (reserved.empty()) return;
  const std::vector<unsigned char> zeros(kPieceBytes);
  const auto most = static_cast<std::int64_t>(kPieceBytes / sizeOf(numberOf(kind)));
  while (!reserved.empty()) {
    const auto& [start, piece] = *reserved.begin();
    putNext(kind, start, zeros.data(), std::min(most, piece.dataset.count() - piece.nPut));
  }
}

void FileWriter::readArray(layout::Kind kind, std::int64_t start, std::int64_t count, void* out) {
  if (count == 0) return;
  Pieces& pieces = pieces_[static_cast<int>(kind)];
  const std::size_t width = sizeOf(numberOf(kind));
  const std::int64_t nSmall = static_cast<std::int64_t>(pieces.small.size() / width);
  const std::int64_t written = pieces.end - nSmall;
  if (start >= written) {
    std::memcpy(out, pieces.small.data() + static_cast<std::size_t>(start - written) * width,
                static_cast<std::size_t>(count) * width);
    return;
  }
  const auto at = std::upper_bound(pieces.starts.begin(), pieces.starts.end(), start) - 1;
  const auto reserved = pieces.reserved.find(*at);
  if (reserved != pieces.reserved.end()) {
    file_->read(reserved->second.dataset, start - *at, count, out);
    return;
  }
  const std::string name = arrayName(kind, std::to_string(at - pieces.starts.begin()));
  file_->read(file_->open(name, numberOf(kind), 1), start - *at, count, out);
}

void FileWriter::putTable(const layout::TableSpec& shape, const Table& table) {
  const std::string base = std::string(layout::kTables) + "/" + shape.name;
  put(base + ".ints", Number::kInt64, {table.nRows, shape.nInts}, table.ints.data());
  if (shape.nReals == 0) return;
  put(base + ".reals", Number::kFloat64, {table.nRows, shape.nReals}, table.reals.data());
}

void FileWriter::putTexts(const std::vector<std::string>& texts) {
  std::string bytes;
  std::vector<std::int64_t> ends;
  for (const std::string& text : texts) {
    bytes += text;
    ends.push_back(static_cast<std::int64_t>(bytes.size()));
  }
  put(layout::kTextBytes, Number::kUint8, {static_cast<std::int64_t>(bytes.size())}, bytes.data());
  put(layout::kTextEnds, Number::kInt64, {static_cast<std::int64_t>(ends.size())}, ends.data());
}

void FileWriter::finish() {
  for (int k = 0; k < layout::kNKinds; ++k) {
    const layout::Kind kind = static_cast<layout::Kind>(k);
    flushSmall(kind);
    fillReserved(kind);
    const std::vector<std::int64_t>& sizes = pieces_[k].sizes;
    put(arrayName(kind, "sizes"), Number::kInt64, {static_cast<std::int64_t>(sizes.size())},
        sizes.data());
  }
  std::random_device random;
  std::int64_t format[4] = {layout::kMagic, layout::kRelease, 0, 0};
  for (int i = 2; i < 4; ++i) {
    format[i] = static_cast<std::int64_t>(random()) << 31 ^ static_cast<std::int64_t>(random());
  }
  put(layout::kFormat, Number::kInt64, {4}, format);
  file_->finish();
}

// Each write was seen to succeed; this finds what went wrong between them.
void FileWriter::checkStored() const {
  const Hdf5File file = Hdf5File::openForReading(unfinished_->path());
  std::vector<unsigned char> bytes;
  for (const auto& [name, stored] : stored_) {
    const Hdf5File::Dataset dataset =
        file.open(name, stored.number, static_cast<int>(stored.dims.size()));
    bool same = dataset.dims == stored.dims;
    if (same && stored.hash) {
      bytes.resize(static_cast<std::size_t>(dataset.count()) * sizeOf(stored.number));
      file.read(dataset, 0, dataset.dims[0], bytes.data());
      same = hashOf(bytes.data(), dataset.count(), stored.number) == *stored.hash;
    }
    if (!same) failDamaged(name + " is not what was written");
  }
}

std::unique_ptr<FileReader> FileWriter::commit() {
  std::unique_ptr<FileReader> reader;
  try {
    checkStored();
    reader = std::make_unique<FileReader>(unfinished_->path());
    reader->rest();
  } catch (const odb_Exception& error) {
    fail(odb_ERROR_CANNOT_WRITE,
         "cannot write " + target_ + ": it cannot be read back: " + error.UserReport().CStr());
  }
  const int error = port::replaceFile(unfinished_->path(), finalPath_);
  if (error != 0) {
    // For another try.
    reader.reset();
    *file_ = Hdf5File::openForWriting(unfinished_->path(), target_);
    fail(odb_ERROR_CANNOT_WRITE, "cannot write " + target_ + ": " + std::strerror(error));
  }
  unfinished_->keep();
  port::syncFolderOf(finalPath_);
  reader->moved(target_);
  return reader;
}

}  // namespace odbs::engine
