// SPDX-License-Identifier: BSD-3-Clause
// One database file as HDF5 sees it: a driver below HDF5 that keeps the first failure.
//
// HDF5 caches what it reads and writes, goes on after errors, and closes files whatever was lost.
// So the driver remembers: after a failed read or write no later one is done, HDF5 is told that its
// remaining writes succeeded so that it can clean up, and whoever completes a file asks here.
// A stored database that ends before what is read of it has failed too; it gives no zeros.
#pragma once

#include <hdf5.h>

#include <cstdint>
#include <memory>
#include <string>

#include "port/port.h"

namespace odbs::engine {

class DiskFile {
 public:
  // Throw odb_Exception: CANNOT_OPEN for what is missing or no ordinary file, CANNOT_WRITE with the
  // system's reason.
  static std::unique_ptr<DiskFile> openForReading(const std::string& path);
  static std::unique_ptr<DiskFile> openForWriting(const std::string& path);
  // Nothing is returned when the name is taken. A failure names `shown`.
  static std::unique_ptr<DiskFile> createNew(const std::string& path, const std::string& shown);
  ~DiskFile();
  DiskFile(const DiskFile&) = delete;
  DiskFile& operator=(const DiskFile&) = delete;

  // The driver with this file, as H5Fopen and H5Fcreate take it. Negative: HDF5 refuses.
  int setDriver(hid_t accessList);

  std::int64_t sizeAtOpening() const { return atOpening_.size; }
  // What went wrong first; empty while nothing did.
  std::string failure() const;
  // True when nobody has written to the stored file since it was opened.
  bool isUnchanged() const;
  // Makes what was written durable.
  void sync();

  // For the driver. What HDF5 holds of the open file, its own part first; made ahead so that
  // opening allocates nothing.
  struct Handle {
    H5FD_t base{};
    DiskFile* disk = nullptr;  // null while HDF5 has it closed
    haddr_t endOfAllocation = 0;
  };
  Handle& newHandle();
  bool isWritable() const { return writable_; }
  std::int64_t end() const { return end_; }
  bool read(std::int64_t place, std::size_t size, void* to);
  bool write(std::int64_t place, std::size_t size, const void* from);
  bool setEnd(std::int64_t end);

 private:
  explicit DiskFile(bool writable) : writable_(writable) {}
  void take(int fd);
  bool failed() const { return error_ != 0; }
  bool fail(int error);

  int fd_ = -1;
  bool writable_;
  std::int64_t end_ = 0;
  std::unique_ptr<Handle> handle_ = std::make_unique<Handle>();
  port::FileStatus atOpening_;
  int error_ = 0;  // an errno, or kCutShort
};

}  // namespace odbs::engine
