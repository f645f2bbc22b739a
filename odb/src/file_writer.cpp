// SPDX-License-Identifier: BSD-3-Clause
// Writing a database in the current layout.
#include "odb/src/errors.h"
#include "odb/src/storage.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace odbs::engine {

namespace {

// Small arrays are collected in pieces of this size; larger ones get a piece of their own.
constexpr std::size_t kPieceBytes = std::size_t(8) << 20;

std::string arrayName(layout::Kind kind, const std::string& part) {
  return std::string(layout::kArrays) + "/" + layout::kKindNames[static_cast<int>(kind)] + "." +
         part;
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

FileWriter::FileWriter(const std::string& path, bool compressed)
    : path_(path), file_(Hdf5File::create(path)), compressed_(compressed) {
  file_.makeGroup(layout::kTables);
  file_.makeGroup(layout::kArrays);
}

Hdf5File::Dataset FileWriter::makePiece(layout::Kind kind, std::int64_t count) {
  Pieces& pieces = pieces_[static_cast<int>(kind)];
  const std::string name = arrayName(kind, std::to_string(pieces.sizes.size()));
  Hdf5File::Dataset dataset = file_.create(name, numberOf(kind), {count}, compressed_);
  pieces.starts.push_back(pieces.starts.empty() ? 0 : pieces.starts.back() + pieces.sizes.back());
  pieces.sizes.push_back(count);
  return dataset;
}

void FileWriter::writePiece(layout::Kind kind, const void* data, std::int64_t count) {
  file_.write(makePiece(kind, count), 0, count, data);
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
  file_.write(piece.dataset, piece.nPut, count, data);
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
    file_.read(reserved->second.dataset, start - *at, count, out);
    return;
  }
  const std::string name = arrayName(kind, std::to_string(at - pieces.starts.begin()));
  file_.read(file_.open(name, numberOf(kind), 1), start - *at, count, out);
}

void FileWriter::putTable(const layout::TableSpec& shape, const Table& table) {
  const std::string base = std::string(layout::kTables) + "/" + shape.name;
  if (file_.has(base + ".ints")) file_.remove(base + ".ints");
  if (file_.has(base + ".reals")) file_.remove(base + ".reals");
  file_.write(file_.create(base + ".ints", Number::kInt64, {table.nRows, shape.nInts}, false), 0,
              table.nRows, table.ints.data());
  if (shape.nReals == 0) return;
  file_.write(file_.create(base + ".reals", Number::kFloat64, {table.nRows, shape.nReals}, false),
              0, table.nRows, table.reals.data());
}

void FileWriter::putTexts(const std::vector<std::string>& texts) {
  for (const char* name : {layout::kTextBytes, layout::kTextEnds}) {
    if (file_.has(name)) file_.remove(name);
  }
  std::string bytes;
  std::vector<std::int64_t> ends;
  for (const std::string& text : texts) {
    bytes += text;
    ends.push_back(static_cast<std::int64_t>(bytes.size()));
  }
  const std::int64_t nBytes = static_cast<std::int64_t>(bytes.size());
  const std::int64_t nTexts = static_cast<std::int64_t>(ends.size());
  file_.write(file_.create(layout::kTextBytes, Number::kUint8, {nBytes}, false), 0, nBytes,
              bytes.data());
  file_.write(file_.create(layout::kTextEnds, Number::kInt64, {nTexts}, false), 0, nTexts,
              ends.data());
}

void FileWriter::finish() {
  for (int k = 0; k < layout::kNKinds; ++k) {
    const layout::Kind kind = static_cast<layout::Kind>(k);
    flushSmall(kind);
    fillReserved(kind);
    const std::vector<std::int64_t>& sizes = pieces_[k].sizes;
    const std::string name = arrayName(kind, "sizes");
    if (file_.has(name)) file_.remove(name);
    const std::int64_t n = static_cast<std::int64_t>(sizes.size());
    file_.write(file_.create(name, Number::kInt64, {n}, false), 0, n, sizes.data());
  }
  std::random_device random;
  std::int64_t format[4] = {layout::kMagic, layout::kRelease, 0, 0};
  for (int i = 2; i < 4; ++i) {
    format[i] = static_cast<std::int64_t>(random()) << 31 ^ static_cast<std::int64_t>(random());
  }
  if (file_.has(layout::kFormat)) file_.remove(layout::kFormat);
  file_.write(file_.create(layout::kFormat, Number::kInt64, {4}, false), 0, 4, format);
  file_.flush();
  file_.close();
}

void FileWriter::reopen() {
  file_ = Hdf5File::openForWriting(path_);
}

}  // namespace odbs::engine
