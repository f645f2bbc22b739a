// SPDX-License-Identifier: BSD-3-Clause
// The driver's functions that HDF5 calls, and the first failure that they keep.
#include "odb/src/storage/disk_file.h"

#include "odb/src/storage/errors.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>

namespace odbs::engine {

namespace {

constexpr int kCutShort = -1;

using Handle = DiskFile::Handle;

// Null for a file that HDF5 failed to close.
DiskFile* diskOf(const H5FD_t* file) {
  return reinterpret_cast<const Handle*>(file)->disk;
}

H5FD_t* openHandle(const char*, unsigned, hid_t accessList, haddr_t) {
  const auto* const disk = static_cast<DiskFile* const*>(H5Pget_driver_info(accessList));
  return disk ? &(*disk)->newHandle().base : nullptr;
}

herr_t closeHandle(H5FD_t* file) {
  reinterpret_cast<Handle*>(file)->disk = nullptr;
  return 0;
}

// Files are never the same: each opening reads afresh instead of sharing what another one cached.
int compareHandles(const H5FD_t* a, const H5FD_t* b) {
  return std::less<const H5FD_t*>()(a, b) ? -1 : a != b;
}

// No sieve buffer and no accumulator for writing: they delay writes, and with them failures.
// Without a file the question is what all files have.
herr_t queryFeatures(const H5FD_t* file, unsigned long* features) {
  *features = H5FD_FEAT_AGGREGATE_METADATA | H5FD_FEAT_AGGREGATE_SMALLDATA |
              H5FD_FEAT_DEFAULT_VFD_COMPATIBLE;
  if (file && !diskOf(file)->isWritable()) {
    *features |= H5FD_FEAT_DATA_SIEVE | H5FD_FEAT_ACCUMULATE_METADATA;
  }
  return 0;
}

haddr_t endOfAllocation(const H5FD_t* file, H5FD_mem_t) {
  return reinterpret_cast<const Handle*>(file)->endOfAllocation;
}

herr_t setEndOfAllocation(H5FD_t* file, H5FD_mem_t, haddr_t end) {
  reinterpret_cast<Handle*>(file)->endOfAllocation = end;
  return 0;
}

haddr_t endOfFile(const H5FD_t* file, H5FD_mem_t) {
  return diskOf(file) ? static_cast<haddr_t>(diskOf(file)->end()) : 0;
}

herr_t readHandle(H5FD_t* file, H5FD_mem_t, hid_t, haddr_t place, std::size_t size, void* to) {
  return diskOf(file) && diskOf(file)->read(static_cast<std::int64_t>(place), size, to) ? 0 : -1;
}

herr_t writeHandle(H5FD_t* file, H5FD_mem_t, hid_t, haddr_t place, std::size_t size,
                   const void* from) {
  return diskOf(file) && diskOf(file)->write(static_cast<std::int64_t>(place), size, from) ? 0 : -1;
}

herr_t truncateHandle(H5FD_t* file, hid_t, hbool_t) {
  const haddr_t end = reinterpret_cast<Handle*>(file)->endOfAllocation;
  return diskOf(file) && diskOf(file)->setEnd(static_cast<std::int64_t>(end)) ? 0 : -1;
}

hid_t driver() {
  static const hid_t id = [] {
    static H5FD_class_t all{};
    all.name = "odb";
    all.maxaddr = static_cast<haddr_t>(INT64_MAX);
    all.fc_degree = H5F_CLOSE_STRONG;
    all.fapl_size = sizeof(DiskFile*);
    all.open = openHandle;
    all.close = closeHandle;
    all.cmp = compareHandles;
    all.query = queryFeatures;
    all.get_eoa = endOfAllocation;
    all.set_eoa = setEndOfAllocation;
    all.get_eof = endOfFile;
    all.read = readHandle;
    all.write = writeHandle;
    all.truncate = truncateHandle;
    const H5FD_mem_t map[H5FD_MEM_NTYPES] = H5FD_FLMAP_DICHOTOMY;
    std::copy(std::begin(map), std::end(map), all.fl_map);
    return H5FDregister(&all);
  }();
  return id;
}

}  // namespace

void DiskFile::take(int fd) {
  fd_ = fd;
  atOpening_ = port::descriptorStatus(fd);
  end_ = atOpening_.size;
}

DiskFile::~DiskFile() {
  // After some failures HDF5 loses a file without closing it, and still looks at its handle.
  if (handle_->disk) {
    handle_->disk = nullptr;
    static_cast<void>(handle_.release());
  }
  if (fd_ >= 0) port::closeDescriptor(fd_);
}

std::unique_ptr<DiskFile> DiskFile::openForReading(const std::string& path) {
  std::unique_ptr<DiskFile> file(new DiskFile(false));
  const int fd = port::openExisting(path, false);
  if (fd < 0) {
    const char* const reason = errno == ENOENT   ? "no such file"
                               : errno == EINVAL ? "not a file"
                                                 : std::strerror(errno);
    engine::fail(odb_ERROR_CANNOT_OPEN, "cannot open " + path + ": " + reason);
  }
  file->take(fd);
  return file;
}

std::unique_ptr<DiskFile> DiskFile::openForWriting(const std::string& path) {
  std::unique_ptr<DiskFile> file(new DiskFile(true));
  const int fd = port::openExisting(path, true);
  if (fd < 0) {
    engine::fail(odb_ERROR_CANNOT_WRITE, "cannot write " + path + ": " + std::strerror(errno));
  }
  file->take(fd);
  return file;
}

std::unique_ptr<DiskFile> DiskFile::createNew(const std::string& path, const std::string& shown) {
  std::unique_ptr<DiskFile> file(new DiskFile(true));
  const int fd = port::openNew(path);
  if (fd < 0 && errno == EEXIST) return nullptr;
  if (fd < 0) {
    engine::fail(odb_ERROR_CANNOT_WRITE, "cannot write " + shown + ": " + std::strerror(errno));
  }
  file->take(fd);
  return file;
}

DiskFile::Handle& DiskFile::newHandle() {
  *handle_ = Handle();
  handle_->disk = this;
  return *handle_;
}

int DiskFile::setDriver(hid_t accessList) {
  const DiskFile* const self = this;
  return H5Pset_driver(accessList, driver(), &self);
}

std::string DiskFile::failure() const {
  if (!failed()) return {};
  return error_ == kCutShort ? "the file ends early" : std::strerror(error_);
}

bool DiskFile::fail(int error) {
  if (!failed()) error_ = error;
  return false;
}

bool DiskFile::isUnchanged() const {
  const port::FileStatus now = port::descriptorStatus(fd_);
  return now.size == atOpening_.size && now.modificationTime == atOpening_.modificationTime;
}

void DiskFile::sync() {
  if (!failed() && !port::syncDescriptor(fd_)) fail(errno);
}

bool DiskFile::read(std::int64_t place, std::size_t size, void* to) {
  if (failed()) return false;
  const long long n = port::readAt(fd_, place, to, size);
  if (n < 0) return fail(errno);
  const std::size_t nRead = static_cast<std::size_t>(n);
  // Space of a new file that HDF5 has given out but not written yet.
  if (nRead < size && !writable_) return fail(kCutShort);
  std::memset(static_cast<char*>(to) + nRead, 0, size - nRead);
  return true;
}

bool DiskFile::write(std::int64_t place, std::size_t size, const void* from) {
  if (failed()) return true;
  if (!port::writeAt(fd_, place, from, size)) return fail(errno);
  end_ = std::max(end_, place + static_cast<std::int64_t>(size));
  return true;
}

bool DiskFile::setEnd(std::int64_t end) {
  if (!failed() && end != end_ && !port::setFileSize(fd_, end)) return fail(errno);
  end_ = end;
  return true;
}

}  // namespace odbs::engine
