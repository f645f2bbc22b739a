// SPDX-License-Identifier: BSD-3-Clause
// The only door to HDF5: an owning handle, a check of every call, and datasets of plain numbers.
// Everything that is read has been checked for type, rank, size and storage first, so that a
// damaged or foreign file ends in an odb_Exception and allocations stay within what the file can
// hold.
#pragma once

#include "odb/src/storage/disk_file.h"

#include <cstdint>
#include <string>
#include <vector>

namespace odbs::engine {

// Owns an HDF5 identifier.
class Hid {
 public:
  using Closer = herr_t (*)(hid_t);
  Hid() = default;
  Hid(hid_t id, Closer closer) : id_(id), closer_(closer) {}
  Hid(Hid&& other) noexcept : id_(other.id_), closer_(other.closer_) { other.id_ = -1; }
  Hid& operator=(Hid&& other) noexcept;
  ~Hid() { reset(); }
  hid_t get() const { return id_; }
  bool valid() const { return id_ >= 0; }
  void reset();
  // How often HDF5 failed to close something since the process started.
  static int nFailures();

 private:
  hid_t id_ = -1;
  Closer closer_ = nullptr;
};

// Element types of datasets, little-endian in the file.
enum class Number { kUint8, kInt32, kInt64, kFloat32, kFloat64 };
std::size_t sizeOf(Number number);

class Hdf5File {
 public:
  // Opens for reading. Throws odb_Exception: missing (cannot open), no HDF5 file (cannot open).
  static Hdf5File openForReading(const std::string& path);
  // Creates a file; nothing is returned when the name is taken. Messages of failures name `shown`.
  static std::unique_ptr<Hdf5File> createNew(const std::string& path, const std::string& shown);
  // Opens for changing: to go on with a finished file, to stamp another release on it.
  static Hdf5File openForWriting(const std::string& path, const std::string& shown);
  Hdf5File(Hdf5File&&) = default;
  Hdf5File& operator=(Hdf5File&& other) noexcept;

  const std::string& path() const { return path_; }
  // Closes a written file once all of it is on the disk. Throws odb_Exception when anything of it
  // may be lost, however long ago that happened.
  void finish();

  // An open dataset of a file.
  struct Dataset {
    Hid id;
    std::vector<std::int64_t> dims;  // rank 1 or 2
    Number number = Number::kInt64;
    std::string name;
    std::int64_t count() const { return dims.size() == 2 ? dims[0] * dims[1] : dims[0]; }
  };

  bool has(const std::string& name) const;
  void makeGroup(const std::string& name);
  void remove(const std::string& name);
  // Opens a dataset that must have this type and rank. Names are "X" or "GROUP/X".
  Dataset open(const std::string& name, Number number, int rank) const;
  // Creates a dataset; `compressed` asks for chunks with deflate.
  Dataset create(const std::string& name, Number number, const std::vector<std::int64_t>& dims,
                 bool compressed);
  // Throws odb_Exception also when the stored file was changed meanwhile.
  // `count` numbers from flat place `first` of a rank-1 dataset, or whole rows of a rank-2 one.
  void read(const Dataset& dataset, std::int64_t firstRow, std::int64_t nRows, void* out) const;
  void write(const Dataset& dataset, std::int64_t firstRow, std::int64_t nRows, const void* in);

  // What HDF5 said last, innermost message first; fails with it.
  [[noreturn]] void failCall(const char* call, const std::string& object) const;

 private:
  Hdf5File(std::unique_ptr<DiskFile> disk, const std::string& shown);
  void checkLink(const std::string& name) const;
  void checkStorage(const Dataset& dataset) const;
  void transfer(const Dataset& dataset, std::int64_t firstRow, std::int64_t nRows, void* memory,
                bool writing) const;

  std::unique_ptr<DiskFile> disk_;
  Hid file_;  // closed before the file below it
  std::string path_;
  int nFailuresBefore_;
};

}  // namespace odbs::engine
