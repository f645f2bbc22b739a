// SPDX-License-Identifier: BSD-3-Clause
// Reading and writing release 1: its texts, its columns and its arrays.
#include "odb/src/storage/old_layout.h"

#include "odb/src/storage/errors.h"
#include "port/port.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <fstream>
#include <map>

namespace odbs::engine {

namespace {

constexpr int kOldRelease = 1;
constexpr const char* kTexts = "texts";
constexpr const char* kColumns = "columns";
constexpr const char* kBlocks = "blocks";

std::string columnName(const layout::TableSpec& shape, char type, int column) {
  return std::string(kColumns) + "/" + shape.name + "." + type + std::to_string(column);
}

std::string blockName(layout::Kind kind, std::int64_t number) {
  return std::string(kBlocks) + "/" + layout::kKindNames[static_cast<int>(kind)] + "." +
         std::to_string(number);
}

class OldReader {
 public:
  explicit OldReader(const std::string& path) : file_(Hdf5File::openForReading(path)) {
    const Format format = readFormat(file_);
    if (format.release != kOldRelease) {
      fail(odb_ERROR_USAGE, "the database " + path + " needs no upgrade");
    }
  }

  std::vector<std::string> texts() {
    const Hdf5File::Dataset dataset = file_.open(kTexts, Number::kUint8, 2);
    std::vector<char> bytes(static_cast<std::size_t>(dataset.count()));
    file_.read(dataset, 0, dataset.dims[0], bytes.data());
    std::vector<std::string> texts;
    const std::size_t width = static_cast<std::size_t>(dataset.dims[1]);
    for (std::size_t at = 0; at < bytes.size(); at += width) {
      const char* text = bytes.data() + at;
      texts.emplace_back(text, strnlen(text, width));
    }
    return texts;
  }

  // Its references to arrays are still those of the old layout.
  Table table(const layout::TableSpec& shape) {
    Table table = emptyTable(shape);
    if (!file_.has(columnName(shape, 'i', 0))) return table;
    for (int c = 0; c < shape.nInts; ++c) {
      const std::vector<std::int64_t> column = read<std::int64_t>(shape, 'i', c, Number::kInt64);
      if (c == 0) {
        table.nRows = static_cast<std::int64_t>(column.size());
        table.ints.resize(column.size() * static_cast<std::size_t>(shape.nInts));
        table.reals.resize(column.size() * static_cast<std::size_t>(shape.nReals));
      }
      checkRows(shape, table, column.size());
      for (std::int64_t r = 0; r < table.nRows; ++r) {
        table.integer(r, c) = column[static_cast<std::size_t>(r)];
      }
    }
    for (int c = 0; c < shape.nReals; ++c) {
      const std::vector<double> column = read<double>(shape, 'r', c, Number::kFloat64);
      checkRows(shape, table, column.size());
      for (std::int64_t r = 0; r < table.nRows; ++r) {
        table.real(r, c) = column[static_cast<std::size_t>(r)];
      }
    }
    return table;
  }

  std::vector<unsigned char> array(layout::Kind kind, std::int64_t number, std::int64_t count) {
    const Hdf5File::Dataset dataset = file_.open(blockName(kind, number), numberOf(kind), 1);
    if (dataset.dims[0] != count) failDamaged(file_.path() + ": an array has another length");
    std::vector<unsigned char> data(static_cast<std::size_t>(count) * sizeOf(numberOf(kind)));
    file_.read(dataset, 0, count, data.data());
    return data;
  }

 private:
  template <class T>
  std::vector<T> read(const layout::TableSpec& shape, char type, int column, Number number) {
    const Hdf5File::Dataset dataset = file_.open(columnName(shape, type, column), number, 1);
    std::vector<T> values(static_cast<std::size_t>(dataset.dims[0]));
    file_.read(dataset, 0, dataset.dims[0], values.data());
    return values;
  }

  void checkRows(const layout::TableSpec& shape, const Table& table, std::size_t n) {
    if (static_cast<std::int64_t>(n) != table.nRows) {
      failDamaged(file_.path() + ": the columns of table " + shape.name + " differ in length");
    }
  }

  Hdf5File file_;
};

// Copies the arrays that a table refers to, each once, and enters their new places.
class ArrayMover {
 public:
  ArrayMover(OldReader& reader, FileWriter& writer) : reader_(reader), writer_(writer) {}

  std::int64_t count() const { return static_cast<std::int64_t>(moved_.size()); }

  void move(const layout::TableSpec& shape, Table& table) {
    for (int a = 0; a < shape.nArrays; ++a) {
      const layout::ArrayColumn& column = shape.arrays[a];
      for (std::int64_t row = 0; row < table.nRows; ++row) {
        std::int64_t& place = table.integer(row, column.column);
        const std::int64_t n = table.integer(row, column.column + 1);
        if (n < 0 || n > INT_MAX) failDamaged("an array has an absurd length");
        if (n > 0) place = movedTo(column.kind, place, n);
      }
    }
  }

 private:
  std::int64_t movedTo(layout::Kind kind, std::int64_t number, std::int64_t n) {
    const auto key = std::make_pair(static_cast<int>(kind), number);
    const auto known = moved_.find(key);
    if (known != moved_.end()) return known->second;
    const std::vector<unsigned char> data = reader_.array(kind, number, n);
    return moved_[key] = writer_.putArray(kind, data.data(), n);
  }

  OldReader& reader_;
  FileWriter& writer_;
  std::map<std::pair<int, std::int64_t>, std::int64_t> moved_;
};

std::string logPath(const std::string& path) {
  const std::size_t name = path.find_last_of("/\\") + 1;
  const std::size_t dot = path.rfind('.');
  return (dot == std::string::npos || dot <= name ? path : path.substr(0, dot)) + ".log";
}

}  // namespace

OldWriter::OldWriter(const std::string& path) {
  port::removeFile(path);
  file_ = Hdf5File::createNew(path, path);
  if (!file_) fail(odb_ERROR_CANNOT_WRITE, "cannot write " + path + ": it cannot be replaced");
  file_->makeGroup(kColumns);
  file_->makeGroup(kBlocks);
}

std::int64_t OldWriter::putArray(layout::Kind kind, const void* data, std::int64_t count) {
  const std::int64_t number = nArrays_[static_cast<int>(kind)]++;
  file_->write(file_->create(blockName(kind, number), numberOf(kind), {count}, false), 0, count,
               data);
  return number;
}

void OldWriter::putTable(const layout::TableSpec& shape, const Table& table) {
  for (int c = 0; c < shape.nInts; ++c) {
    std::vector<std::int64_t> column;
    for (std::int64_t r = 0; r < table.nRows; ++r) column.push_back(table.integer(r, c));
    file_->write(file_->create(columnName(shape, 'i', c), Number::kInt64, {table.nRows}, false), 0,
                 table.nRows, column.data());
  }
  for (int c = 0; c < shape.nReals; ++c) {
    std::vector<double> column;
    for (std::int64_t r = 0; r < table.nRows; ++r) column.push_back(table.real(r, c));
    file_->write(file_->create(columnName(shape, 'r', c), Number::kFloat64, {table.nRows}, false),
                 0, table.nRows, column.data());
  }
}

void OldWriter::putTexts(const std::vector<std::string>& texts) {
  std::size_t longest = 1;
  for (const std::string& text : texts) longest = std::max(longest, text.size());
  std::string bytes;
  for (std::string text : texts) {
    text.resize(longest, '\0');
    bytes += text;
  }
  const std::int64_t n = static_cast<std::int64_t>(texts.size());
  file_->write(
      file_->create(kTexts, Number::kUint8, {n, static_cast<std::int64_t>(longest)}, false), 0, n,
      bytes.data());
}

void OldWriter::finish() {
  const std::int64_t format[4] = {layout::kMagic, kOldRelease, 0, 0};
  file_->write(file_->create(layout::kFormat, Number::kInt64, {4}, false), 0, 4, format);
  file_->finish();
}

void upgradeOldLayout(const std::string& from, const std::string& to) {
  OldReader reader(from);
  std::ofstream log(logPath(to));
  log << "upgrade of " << from << " (release " << kOldRelease << ") to " << to << " (release "
      << layout::kRelease << ")\n";
  try {
    FileWriter writer(to, false);
    ArrayMover mover(reader, writer);
    writer.putTexts(reader.texts());
    for (const layout::TableSpec* shape : layout::kAllTables) {
      Table table = reader.table(*shape);
      mover.move(*shape, table);
      writer.putTable(*shape, table);
      if (table.nRows > 0) log << "table " << shape->name << ": " << table.nRows << " rows\n";
    }
    writer.finish();
    log << mover.count() << " arrays\n";
    writer.commit();
    log << "upgrade completed\n";
  } catch (const std::exception& error) {
    log << "upgrade failed: " << error.what() << "\n";
    throw;
  }
}

}  // namespace odbs::engine
