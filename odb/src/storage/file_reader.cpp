// SPDX-License-Identifier: BSD-3-Clause
// Reading a stored database.
#include "odb/src/storage/errors.h"
#include "odb/src/storage/storage.h"
#include "port/port.h"

#include <algorithm>

namespace odbs::engine {

Number numberOf(layout::Kind kind) {
  switch (kind) {
    case layout::Kind::kInt32:
      return Number::kInt32;
    case layout::Kind::kFloat32:
      return Number::kFloat32;
    default:
      return Number::kFloat64;
  }
}

namespace {

std::string tableName(const layout::TableSpec& shape, const char* part) {
  return std::string(layout::kTables) + "/" + shape.name + part;
}

std::string arrayName(layout::Kind kind, const std::string& part) {
  return std::string(layout::kArrays) + "/" + layout::kKindNames[static_cast<int>(kind)] + "." +
         part;
}

}  // namespace

Format readFormat(const Hdf5File& file) {
  if (!file.has(layout::kFormat)) {
    fail(odb_ERROR_CANNOT_OPEN, "cannot open " + file.path() + ": an HDF5 file, but no database");
  }
  const Hdf5File::Dataset dataset = file.open(layout::kFormat, Number::kInt64, 1);
  if (dataset.dims[0] != 4) failDamaged(file.path() + ": the format mark has another length");
  std::int64_t values[4];
  file.read(dataset, 0, 4, values);
  Format format;
  format.magic = values[0];
  format.release = values[1];
  format.saveId[0] = values[2];
  format.saveId[1] = values[3];
  if (format.magic != layout::kMagic) {
    fail(odb_ERROR_CANNOT_OPEN, "cannot open " + file.path() + ": an HDF5 file, but no database");
  }
  return format;
}

Format readFormat(const std::string& path) {
  return readFormat(Hdf5File::openForReading(path));
}

FileReader::FileReader(const std::string& path) : path_(path) {
  file_ = std::make_unique<Hdf5File>(Hdf5File::openForReading(path));
  format_ = readFormat(*file_);
  if (format_.release < layout::kRelease) {
    fail(odb_ERROR_OLD_RELEASE, "the database " + path + " was written by release " +
                                    std::to_string(format_.release) +
                                    " and must be upgraded: see upgradeOdb");
  }
  if (format_.release > layout::kRelease) {
    fail(odb_ERROR_NEW_RELEASE, "the database " + path + " was written by release " +
                                    std::to_string(format_.release) +
                                    ", which is newer than this installation: upgrade that");
  }
}

void FileReader::begin() {
  if (!file_) {
    auto file = std::make_unique<Hdf5File>(Hdf5File::openForReading(path_));
    const Format now = readFormat(*file);
    if (now.saveId[0] != format_.saveId[0] || now.saveId[1] != format_.saveId[1]) {
      fail(odb_ERROR_CANNOT_OPEN, "the database " + path_ + " was replaced since it was opened");
    }
    file_ = std::move(file);
  }
  ++depth_;
}

void FileReader::end(bool failed) {
  --depth_;
  if (failed) {
    drop();
  } else {
    rest();
  }
}

void FileReader::rest() {
  if (depth_ == 0 && !port::openFilesCanBeReplaced()) drop();
}

void FileReader::drop() {
  for (Pieces& pieces : pieces_) pieces.open.clear();
  file_.reset();
}

void FileReader::moved(const std::string& path) {
  path_ = path;
}

std::int64_t FileReader::nRows(const layout::TableSpec& shape) {
  const Use use(*this);
  const std::string name = tableName(shape, ".ints");
  if (!file_->has(name)) return 0;
  return file_->open(name, Number::kInt64, 2).dims[0];
}

Table FileReader::readTable(const layout::TableSpec& shape) {
  return readTable(shape, 0, -1);
}

Table FileReader::readTable(const layout::TableSpec& shape, std::int64_t firstRow,
                            std::int64_t nRows) {
  const Use use(*this);
  Table table = emptyTable(shape);
  const std::string name = tableName(shape, ".ints");
  if (!file_->has(name)) {
    if (firstRow > 0 || nRows > 0) failDamaged(path_ + ": table " + shape.name + " is missing");
    return table;
  }
  const Hdf5File::Dataset ints = file_->open(name, Number::kInt64, 2);
  if (ints.dims[1] != shape.nInts) failDamaged(path_ + ": " + name + " has other columns");
  if (nRows < 0) nRows = ints.dims[0];
  if (firstRow < 0 || firstRow > ints.dims[0] - nRows) {
    failDamaged(path_ + ": rows outside table " + shape.name);
  }
  table.firstRow = firstRow;
  table.nRows = nRows;
  table.ints.resize(static_cast<std::size_t>(nRows * shape.nInts));
  file_->read(ints, firstRow, nRows, table.ints.data());
  if (shape.nReals > 0) {
    const std::string realName = tableName(shape, ".reals");
    const Hdf5File::Dataset reals = file_->open(realName, Number::kFloat64, 2);
    if (reals.dims[0] != ints.dims[0] || reals.dims[1] != shape.nReals) {
      failDamaged(path_ + ": " + realName + " has another shape");
    }
    table.reals.resize(static_cast<std::size_t>(nRows * shape.nReals));
    file_->read(reals, firstRow, nRows, table.reals.data());
  }
  return table;
}

void FileReader::readTexts() {
  const Use use(*this);
  if (!file_->has(layout::kTextEnds)) {
    textsRead_ = true;
    return;
  }
  const Hdf5File::Dataset ends = file_->open(layout::kTextEnds, Number::kInt64, 1);
  const Hdf5File::Dataset bytes = file_->open(layout::kTextBytes, Number::kUint8, 1);
  Buffer<std::int64_t> places;
  places.resize(static_cast<std::size_t>(ends.dims[0]));
  file_->read(ends, 0, ends.dims[0], places.data());
  std::int64_t last = 0;
  for (const std::int64_t place : places) {
    if (place < last || place > bytes.dims[0]) failDamaged(path_ + ": the texts overlap");
    last = place;
  }
  textBytes_.resize(static_cast<std::size_t>(bytes.dims[0]));
  file_->read(bytes, 0, bytes.dims[0], textBytes_.data());
  textEnds_.swap(places);
  textsRead_ = true;
}

odb_String FileReader::text(std::int64_t number) {
  if (!textsRead_) readTexts();
  if (number == -1) return odb_String();
  if (number < -1 || number >= static_cast<std::int64_t>(textEnds_.size())) {
    failDamaged(path_ + ": no text number " + std::to_string(number));
  }
  const std::size_t i = static_cast<std::size_t>(number);
  const std::int64_t first = i == 0 ? 0 : textEnds_[i - 1];
  return odb_String(textBytes_.data() + first, static_cast<std::size_t>(textEnds_[i] - first));
}

void FileReader::readPieces(layout::Kind kind) {
  Pieces& pieces = pieces_[static_cast<int>(kind)];
  if (pieces.known) return;
  const Use use(*this);
  const std::string name = arrayName(kind, "sizes");
  std::vector<std::int64_t> sizes;
  if (file_->has(name)) {
    const Hdf5File::Dataset dataset = file_->open(name, Number::kInt64, 1);
    sizes.resize(static_cast<std::size_t>(dataset.dims[0]));
    file_->read(dataset, 0, dataset.dims[0], sizes.data());
  }
  std::vector<std::int64_t> ends;
  std::int64_t end = 0;
  for (const std::int64_t size : sizes) {
    if (size < 0 || size > (std::int64_t(1) << 50)) failDamaged(path_ + ": absurd array sizes");
    end += size;
    if (end > (std::int64_t(1) << 52)) failDamaged(path_ + ": absurd array sizes");
    ends.push_back(end);
  }
  pieces.ends.swap(ends);
  pieces.known = true;
}

int FileReader::pieceOf(layout::Kind kind, std::int64_t start, std::int64_t count) {
  readPieces(kind);
  const Pieces& pieces = pieces_[static_cast<int>(kind)];
  const auto at = std::upper_bound(pieces.ends.begin(), pieces.ends.end(), start);
  if (start < 0 || count < 0 || at == pieces.ends.end() || count > *at - start) {
    failDamaged(path_ + ": an array lies outside the stored numbers");
  }
  return static_cast<int>(at - pieces.ends.begin());
}

void FileReader::checkArray(layout::Kind kind, std::int64_t start, std::int64_t count) {
  if (count != 0) pieceOf(kind, start, count);
}

void FileReader::readArray(layout::Kind kind, std::int64_t start, std::int64_t count, void* out) {
  if (count == 0) return;
  const Use use(*this);
  const int piece = pieceOf(kind, start, count);
  Pieces& pieces = pieces_[static_cast<int>(kind)];
  auto found = pieces.open.find(piece);
  const std::int64_t end = pieces.ends[static_cast<std::size_t>(piece)];
  const std::int64_t first = piece == 0 ? 0 : pieces.ends[static_cast<std::size_t>(piece - 1)];
  if (found == pieces.open.end()) {
    constexpr std::size_t kMostOpen = 64;
    if (pieces.open.size() >= kMostOpen) pieces.open.clear();
    Hdf5File::Dataset dataset =
        file_->open(arrayName(kind, std::to_string(piece)), numberOf(kind), 1);
    if (dataset.dims[0] != end - first) failDamaged(path_ + ": an array piece has another size");
    found = pieces.open.emplace(piece, std::move(dataset)).first;
  }
  file_->read(found->second, start - first, count, out);
}

}  // namespace odbs::engine
