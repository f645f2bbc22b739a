// SPDX-License-Identifier: BSD-3-Clause
// Texts, tables and arrays in files: a reader for stored databases and a writer for new ones, and
// Storage, which knows both for one open database.
//
// Arrays are the bulk data. A StoredArray is in memory, in a file, or both: what was read from a
// file may be dropped and read again, what was made in memory may be spilled into the file that the
// next save() completes. Each file has a number, so that a reference says which file it means.
#pragma once

#include "odb/src/storage/hdf5_file.h"
#include "odb/src/storage/layout.h"
#include "port/port.h"

#include <odb_String.h>

#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <tuple>
#include <unordered_map>

namespace odbs::engine {

// Arrays of this size and more start on a large page and ask for large pages: filling an array of
// millions for the first time costs more in page faults than in copying otherwise.
constexpr std::size_t kLargeArray = std::size_t{2} << 20;
constexpr std::align_val_t kLargePage{std::size_t{2} << 20};

// Leaves new elements unset: bulk arrays are filled by a read right away.
template <class T>
struct UnsetAllocator : std::allocator<T> {
  T* allocate(std::size_t n) {
    const std::size_t nBytes = n * sizeof(T);  // containers have checked n against max_size
    if (nBytes < kLargeArray) return std::allocator<T>::allocate(n);
    void* array = ::operator new(nBytes, kLargePage);
    port::preferLargePages(array, nBytes);
    return static_cast<T*>(array);
  }
  void deallocate(T* array, std::size_t n) {
    if (n * sizeof(T) < kLargeArray) {
      std::allocator<T>::deallocate(array, n);
    } else {
      ::operator delete(array, kLargePage);
    }
  }
  template <class U>
  struct rebind {
    using other = UnsetAllocator<U>;
  };
  using std::allocator<T>::allocator;
  template <class U>
  void construct(U* p) {
    ::new (static_cast<void*>(p)) U;
  }
  template <class U, class... A>
  void construct(U* p, A&&... arguments) {
    ::new (static_cast<void*>(p)) U(std::forward<A>(arguments)...);
  }
};

template <class T>
using Buffer = std::vector<T, UnsetAllocator<T>>;

template <class T>
constexpr layout::Kind kindOf();
template <>
constexpr layout::Kind kindOf<int>() {
  return layout::Kind::kInt32;
}
template <>
constexpr layout::Kind kindOf<float>() {
  return layout::Kind::kFloat32;
}
template <>
constexpr layout::Kind kindOf<double>() {
  return layout::Kind::kFloat64;
}
Number numberOf(layout::Kind kind);

// Where an array is stored. File 0: nowhere.
struct ArrayRef {
  std::int64_t start = 0;
  std::int64_t count = 0;
  int file = 0;
};

// Rows of a table in memory, from `firstRow` of the stored one.
struct Table {
  std::int64_t firstRow = 0;
  std::int64_t nRows = 0;
  int nInts = 0;
  int nReals = 0;
  std::vector<std::int64_t> ints;
  std::vector<double> reals;

  // Appends a row of zeros and gives its number.
  std::int64_t addRow();
  std::int64_t& integer(std::int64_t row, int column) {
    return ints[static_cast<std::size_t>(row * nInts + column)];
  }
  std::int64_t integer(std::int64_t row, int column) const {
    return ints[static_cast<std::size_t>(row * nInts + column)];
  }
  double& real(std::int64_t row, int column) {
    return reals[static_cast<std::size_t>(row * nReals + column)];
  }
  double real(std::int64_t row, int column) const {
    return reals[static_cast<std::size_t>(row * nReals + column)];
  }
};
Table emptyTable(const layout::TableSpec& shape);

// Texts by number: each stored once. Number -1 is the empty text.
class TextWriter {
 public:
  std::int64_t put(const odb_String& text);
  const std::vector<std::string>& texts() const { return texts_; }

 private:
  std::unordered_map<std::string, std::int64_t> numbers_;
  std::vector<std::string> texts_;
};

// The first numbers of a file: what it is and which save made it.
struct Format {
  std::int64_t magic = 0;
  std::int64_t release = 0;
  std::int64_t saveId[2] = {0, 0};
};
// Reads it from any file. Throws odb_Exception when `path` is no database.
Format readFormat(const std::string& path);
Format readFormat(const Hdf5File& file);

// A stored database of the current release. The file stays open where open files can be replaced;
// elsewhere it is opened for each group of reads, and must still be the same one.
class FileReader {
 public:
  explicit FileReader(const std::string& path);

  const std::string& path() const { return path_; }
  const Format& format() const { return format_; }
  std::int64_t nRows(const layout::TableSpec& shape);
  Table readTable(const layout::TableSpec& shape);
  Table readTable(const layout::TableSpec& shape, std::int64_t firstRow, std::int64_t nRows);
  void readArray(layout::Kind kind, std::int64_t start, std::int64_t count, void* out);
  // Throws odb_Exception when the place does not exist; nothing is read of the array itself.
  void checkArray(layout::Kind kind, std::int64_t start, std::int64_t count);
  // Throws odb_Exception for a number outside -1 .. texts - 1.
  odb_String text(std::int64_t number);

  // Closes the file until the next read where open files cannot be replaced.
  void rest();

  // The file has another name from now on.
  void moved(const std::string& path);

  // Keeps the file open over several reads. After an exception it is closed, for HDF5 would take
  // buffers that it could not fill for what is stored; the next read opens it afresh.
  class Use {
   public:
    explicit Use(FileReader& reader) : reader_(reader) { reader_.begin(); }
    ~Use() { reader_.end(std::uncaught_exceptions() > nExceptions_); }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

   private:
    FileReader& reader_;
    int nExceptions_ = std::uncaught_exceptions();
  };

 private:
  void begin();
  void end(bool failed);
  void drop();
  void readTexts();
  void readPieces(layout::Kind kind);
  int pieceOf(layout::Kind kind, std::int64_t start, std::int64_t count);

  struct Pieces {
    bool known = false;
    std::vector<std::int64_t> ends;         // running sums of the sizes
    std::map<int, Hdf5File::Dataset> open;  // by piece
  };

  std::string path_;
  std::unique_ptr<Hdf5File> file_;
  Format format_;
  int depth_ = 0;
  bool textsRead_ = false;
  Buffer<char> textBytes_;
  Buffer<std::int64_t> textEnds_;
  Pieces pieces_[layout::kNKinds];
};

// Where a database is written to: the current layout, or the old one.
class SaveTarget {
 public:
  virtual ~SaveTarget() = default;
  // Appends an array; gives its place.
  virtual std::int64_t putArray(layout::Kind kind, const void* data, std::int64_t count) = 0;
  virtual void putTable(const layout::TableSpec& shape, const Table& table) = 0;
  virtual void putTexts(const std::vector<std::string>& texts) = 0;
  // Completes and closes the file.
  virtual void finish() = 0;
};

// A new database in the current layout.
class FileWriter : public SaveTarget {
 public:
  // Begins a file beside `target`, or beside what `target` links to; it is deleted with the object
  // unless commit() came through. Throws odb_Exception when the target is no ordinary file.
  FileWriter(const std::string& target, bool compressed);

  std::int64_t putArray(layout::Kind kind, const void* data, std::int64_t count) override;
  void putTable(const layout::TableSpec& shape, const Table& table) override;
  void putTexts(const std::vector<std::string>& texts) override;
  void finish() override;
  // Checks the finished file, puts it in the target's place and gives its reader. Throws
  // odb_Exception; the target is untouched then.
  std::unique_ptr<FileReader> commit();
  // Makes room for an array of `count` numbers, at least 1, that come later in order; gives its
  // place. Numbers that have not come when the file is finished are zeros.
  std::int64_t reserveArray(layout::Kind kind, std::int64_t count);
  // The next numbers, at least 1, of the reserved array that begins at `start`. Returns false when
  // it takes no more: it is full, or the file was finished.
  bool putNext(layout::Kind kind, std::int64_t start, const void* data, std::int64_t count);
  // Reads back what putArray and putNext took.
  void readArray(layout::Kind kind, std::int64_t start, std::int64_t count, void* out);

 private:
  // A piece whose numbers have not all come.
  struct Reserved {
    Hdf5File::Dataset dataset;
    std::int64_t nPut = 0;
  };
  struct Pieces {
    std::vector<std::int64_t> starts;
    std::vector<std::int64_t> sizes;
    std::int64_t end = 0;              // position after the last number
    std::vector<unsigned char> small;  // not yet written: numbers from place end - small numbers on
    std::map<std::int64_t, Reserved> reserved;  // by place
  };
  Hdf5File::Dataset makePiece(layout::Kind kind, std::int64_t count);
  void fillReserved(layout::Kind kind);
  void writePiece(layout::Kind kind, const void* data, std::int64_t count);
  void flushSmall(layout::Kind kind);
  // A whole dataset, in the place of an older one.
  void put(const std::string& name, Number number, const std::vector<std::int64_t>& dims,
           const void* data);
  void checkStored() const;

  // What must be found in the finished file; the hash of arrays is not kept.
  struct Stored {
    Number number;
    std::vector<std::int64_t> dims;
    std::optional<std::size_t> hash;
  };

  std::string target_;
  std::string finalPath_;
  std::unique_ptr<port::UnfinishedFile> unfinished_;  // deleted after the file was closed
  std::unique_ptr<Hdf5File> file_;
  bool compressed_;
  std::map<std::string, Stored> stored_;
  Pieces pieces_[layout::kNKinds];
};

// The files of one open database.
class Storage {
 public:
  Storage() = default;
  ~Storage();
  Storage(const Storage&) = delete;
  Storage& operator=(const Storage&) = delete;

  // The stored database, null for one that was never saved.
  FileReader* current() { return current_ ? files_[current_].get() : nullptr; }
  int currentFile() const { return current_; }
  // Takes a file as the current one; older ones stay readable.
  void setCurrent(std::unique_ptr<FileReader> reader);

  void read(layout::Kind kind, const ArrayRef& ref, std::int64_t first, std::int64_t count,
            void* out);

  // The file being written beside `target`; made when there is none.
  FileWriter& pending(const std::string& target);
  int pendingFile() const { return pendingFile_; }
  // Puts the finished pending file in the target's place and makes it the current one.
  void commitPending();
  void dropPending();

  bool compressed = false;

 private:
  std::map<int, std::unique_ptr<FileReader>> files_;
  int current_ = 0;
  std::unique_ptr<FileWriter> pending_;
  int pendingFile_ = 0;
  int lastFile_ = 0;
};

template <class T>
class StoredArray {
 public:
  // Number of elements.
  std::int64_t count() const {
    return loaded_ ? static_cast<std::int64_t>(data_.size()) : ref_.count;
  }
  // Takes a stored array whose place has been checked.
  void refer(const ArrayRef& ref) {
    Buffer<T>().swap(data_);
    ref_ = ref;
    loaded_ = ref.count == 0;
    room_ = 0;
  }
  // The elements, read at first use.
  const Buffer<T>& get(Storage& storage) {
    if (!loaded_) {
      data_.resize(static_cast<std::size_t>(ref_.count));
      storage.read(kindOf<T>(), ref_, 0, ref_.count, data_.data());
      loaded_ = true;
    }
    return data_;
  }
  // The elements, to be changed: the stored copy is forgotten.
  Buffer<T>& edit(Storage& storage) {
    get(storage);
    ref_ = ArrayRef();
    room_ = 0;
    return data_;
  }
  // Forgets the elements in memory when they are stored.
  void drop() {
    if (ref_.file) refer(ref_);
  }
  // Appends n elements. `total`, when it is not 0, is how many there will be when all have come:
  // large arrays then go to the pending file as they come and are never whole in memory.
  void append(Storage& storage, const std::string& target, const T* from, std::size_t n,
              std::size_t total) {
    const auto count = static_cast<std::int64_t>(n);
    if (n == 0) return;
    const bool large = total * sizeof(T) >= kLargeArray;
    if (large && n <= total && data_.empty() && ref_.file == 0) {
      room_ = static_cast<std::int64_t>(total);
      ref_.start = storage.pending(target).reserveArray(kindOf<T>(), room_);
      ref_.file = storage.pendingFile();
      loaded_ = false;
    }
    if (!loaded_ && ref_.count + count <= room_ && ref_.file == storage.pendingFile() &&
        storage.pending(target).putNext(kindOf<T>(), ref_.start, from, count)) {
      ref_.count += count;
      return;
    }
    Buffer<T>& all = edit(storage);
    if (all.empty()) all.reserve(total);
    all.insert(all.end(), from, from + n);
  }
  bool loaded() const { return loaded_; }
  ArrayRef& ref() { return ref_; }
  // Writes the elements to the pending file and forgets them in memory.
  void spill(Storage& storage, const std::string& target) {
    if (ref_.file || data_.empty()) return;
    const std::int64_t n = count();
    const std::int64_t start = storage.pending(target).putArray(kindOf<T>(), data_.data(), n);
    refer(ArrayRef{start, n, storage.pendingFile()});
  }

 private:
  Buffer<T> data_;
  ArrayRef ref_;
  bool loaded_ = true;
  std::int64_t room_ = 0;  // elements that fit the stored array, while it is being appended to
};

// One save: texts, tables and arrays on their way into a target. References of arrays change only
// when commit() is called, after the file is in its place.
class Saver {
 public:
  // `targetFile`: number of the pending file that the target is, 0 for another one.
  Saver(Storage& storage, SaveTarget& target, int targetFile)
      : storage_(storage), target_(target), targetFile_(targetFile) {}

  std::int64_t text(const odb_String& text) { return texts_.put(text); }
  // The table of that name, to be filled.
  Table& table(const layout::TableSpec& shape);
  // Puts an array and enters its place and count in two columns of a row.
  template <class T>
  void array(Table& table, std::int64_t row, int column, StoredArray<T>& array) {
    const ArrayRef ref = put(kindOf<T>(), array.ref(), array.count(), [&] {
      return static_cast<const void*>(array.loaded() ? array.get(storage_).data() : nullptr);
    });
    table.integer(row, column) = ref.start;
    table.integer(row, column + 1) = ref.count;
    if (ref.count > 0) commits_.push_back({&array.ref(), ref});
  }
  // The same for an array that is stored already, whose old place stays in use.
  void copy(Table& table, std::int64_t row, int column, layout::Kind kind, const ArrayRef& ref) {
    const ArrayRef placed =
        put(kind, ref, ref.count, [] { return static_cast<const void*>(nullptr); });
    table.integer(row, column) = placed.start;
    table.integer(row, column + 1) = placed.count;
  }
  // Puts numbers that live nowhere else.
  template <class T>
  void numbers(Table& table, std::int64_t row, int column, const std::vector<T>& data) {
    const std::int64_t n = static_cast<std::int64_t>(data.size());
    table.integer(row, column) = n ? target_.putArray(kindOf<T>(), data.data(), n) : 0;
    table.integer(row, column + 1) = n;
  }
  // Writes texts and tables and completes the file.
  void finish();
  void commit();

 private:
  ArrayRef put(layout::Kind kind, const ArrayRef& ref, std::int64_t count,
               const std::function<const void*()>& memory);

  Storage& storage_;
  SaveTarget& target_;
  int targetFile_;
  TextWriter texts_;
  std::map<const layout::TableSpec*, Table> tables_;
  struct Commit {
    ArrayRef* where;
    ArrayRef ref;
  };
  std::vector<Commit> commits_;
  // Places of the stored arrays that were copied, by kind, file and place: many frames share one.
  std::map<std::tuple<int, int, std::int64_t>, ArrayRef> copied_;
};

}  // namespace odbs::engine
