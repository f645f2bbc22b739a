// SPDX-License-Identifier: BSD-3-Clause
// The checks of what a file holds, and the calls to HDF5.
#include "odb/src/storage/hdf5_file.h"

#include "odb/src/storage/errors.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
// HDF5 1.10 loses the header structure (424 bytes) of each object whose stored header is damaged.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libhdf5";
}
#endif

namespace odbs::engine {

namespace {

// Deflate cannot shrink more than this; a dataset that claims to be larger lies.
constexpr std::int64_t kMaxDeflateRatio = 1100;
constexpr std::int64_t kMaxChunkBytes = std::int64_t(64) << 20;
constexpr std::int64_t kChunkBytes = std::int64_t(1) << 20;

hid_t fileType(Number number) {
  switch (number) {
    case Number::kUint8:
      return H5T_STD_U8LE;
    case Number::kInt32:
      return H5T_STD_I32LE;
    case Number::kInt64:
      return H5T_STD_I64LE;
    case Number::kFloat32:
      return H5T_IEEE_F32LE;
    default:
      return H5T_IEEE_F64LE;
  }
}

hid_t memoryType(Number number) {
  switch (number) {
    case Number::kUint8:
      return H5T_NATIVE_UINT8;
    case Number::kInt32:
      return H5T_NATIVE_INT32;
    case Number::kInt64:
      return H5T_NATIVE_INT64;
    case Number::kFloat32:
      return H5T_NATIVE_FLOAT;
    default:
      return H5T_NATIVE_DOUBLE;
  }
}

// Fixed in size: no exception may pass through HDF5.
struct Reason {
  char text[256] = "no reason given";
  bool outOfMemory = false;
  bool isBroken = false;  // HDF5 damaged itself: see failForMemory
};

herr_t takeInnermost(unsigned n, const H5E_error2_t* error, void* out) {
  Reason& reason = *static_cast<Reason*>(out);
  if (n == 0) {
    std::snprintf(reason.text, sizeof reason.text, "%s: %s",
                  error->func_name ? error->func_name : "?",
                  error->desc ? error->desc : "no reason given");
  }
  if (error->min_num == H5E_NOSPACE || error->min_num == H5E_CANTALLOC) reason.outOfMemory = true;
  if (error->func_name && std::strcmp(error->func_name, "H5P__dup_prop") == 0) {
    reason.isBroken = true;
  }
  return 0;
}

// Why the last call failed.
Reason lastFailure() {
  Reason reason;
  // HDF5 does not always say that an allocation failed; the allocator does.
  reason.outOfMemory = errno == ENOMEM;
  errno = 0;
  H5Ewalk2(H5E_DEFAULT, H5E_WALK_UPWARD, takeInnermost, &reason);
  H5Eclear2(H5E_DEFAULT);
  return reason;
}

// Where HDF5 1.10 cannot copy a property for want of memory, it frees the original: all later calls
// fail or damage the heap. Contract: the process ends with 255 then, as HDF5 itself ends it when it
// has no memory for an identifier.
[[noreturn]] void failForMemory(const Reason& reason) {
  if (reason.isBroken) {
    std::fputs("out of memory: HDF5 cannot go on\n", stderr);
    port::endProcess(255);
  }
  throw std::bad_alloc();
}

// Newest format bounds: their metadata carries checksums.
Hid accessList(DiskFile& disk) {
  errno = 0;
  // HDF5's own handler at the exit would go on with files whose writing failed.
  static const herr_t withoutExitHandler = H5dont_atexit();
  static_cast<void>(withoutExitHandler);
  H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
  Hid list(H5Pcreate(H5P_FILE_ACCESS), H5Pclose);
  if (!list.valid() || disk.setDriver(list.get()) < 0 ||
      H5Pset_libver_bounds(list.get(), H5F_LIBVER_LATEST, H5F_LIBVER_LATEST) < 0 ||
      H5Pset_fclose_degree(list.get(), H5F_CLOSE_STRONG) < 0) {
    const Reason reason = lastFailure();
    if (reason.outOfMemory) failForMemory(reason);
    fail(odb_ERROR_CANNOT_OPEN, "HDF5 refuses the access properties");
  }
  return list;
}

int nFailedCloses = 0;

}  // namespace

std::size_t sizeOf(Number number) {
  switch (number) {
    case Number::kUint8:
      return 1;
    case Number::kInt32:
      return 4;
    case Number::kFloat32:
      return 4;
    default:
      return 8;
  }
}

Hid& Hid::operator=(Hid&& other) noexcept {
  if (this != &other) {
    reset();
    id_ = other.id_;
    closer_ = other.closer_;
    other.id_ = -1;
  }
  return *this;
}

void Hid::reset() {
  if (id_ >= 0 && closer_(id_) < 0) ++nFailedCloses;
  id_ = -1;
}

int Hid::nFailures() {
  return nFailedCloses;
}

Hdf5File::Hdf5File(std::unique_ptr<DiskFile> disk, const std::string& shown)
    : disk_(std::move(disk)), path_(shown), nFailuresBefore_(Hid::nFailures()) {}

Hdf5File& Hdf5File::operator=(Hdf5File&& other) noexcept {
  file_ = std::move(other.file_);
  disk_ = std::move(other.disk_);
  path_ = std::move(other.path_);
  nFailuresBefore_ = other.nFailuresBefore_;
  return *this;
}

void Hdf5File::failCall(const char* call, const std::string& object) const {
  const Reason reason = lastFailure();
  const std::string message = object + ": " + call + ": " + reason.text;
  const std::string cause = disk_->failure();
  if (disk_->isWritable()) {
    fail(odb_ERROR_CANNOT_WRITE,
         "cannot write " + path_ + ": " + (cause.empty() ? message : cause));
  }
  if (!cause.empty()) fail(odb_ERROR_DAMAGED, "cannot read " + path_ + ": " + cause);
  // No word about the file: whoever remembers what could not be read must not remember this.
  if (reason.outOfMemory) failForMemory(reason);
  failDamaged(path_ + ": " + message);
}

Hdf5File Hdf5File::openForReading(const std::string& path) {
  Hdf5File file(DiskFile::openForReading(path), path);
  const Hid access = accessList(*file.disk_);
  file.file_ = Hid(H5Fopen(path.c_str(), H5F_ACC_RDONLY, access.get()), H5Fclose);
  if (!file.file_.valid()) {
    const Reason reason = lastFailure();
    const std::string cause = file.disk_->failure();
    if (cause.empty() && reason.outOfMemory) failForMemory(reason);
    fail(odb_ERROR_CANNOT_OPEN,
         "cannot open " + path + ": " + (cause.empty() ? "no database, or cut short" : cause));
  }
  // Older file formats have no checksums over their metadata.
  H5F_info2_t info;
  if (H5Fget_info2(file.file_.get(), &info) < 0) file.failCall("H5Fget_info2", "/");
  if (info.super.version < 2) {
    fail(odb_ERROR_CANNOT_OPEN, "cannot open " + path + ": an HDF5 file, but no database");
  }
  return file;
}

std::unique_ptr<Hdf5File> Hdf5File::createNew(const std::string& path, const std::string& shown) {
  std::unique_ptr<DiskFile> disk = DiskFile::createNew(path, shown);
  if (!disk) return nullptr;
  port::UnfinishedFile unfinished(path);
  std::unique_ptr<Hdf5File> file(new Hdf5File(std::move(disk), shown));
  const Hid access = accessList(*file->disk_);
  file->file_ = Hid(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, access.get()), H5Fclose);
  if (!file->file_.valid()) file->failCall("H5Fcreate", "/");
  unfinished.keep();
  return file;
}

Hdf5File Hdf5File::openForWriting(const std::string& path, const std::string& shown) {
  Hdf5File file(DiskFile::openForWriting(path), shown);
  const Hid access = accessList(*file.disk_);
  file.file_ = Hid(H5Fopen(path.c_str(), H5F_ACC_RDWR, access.get()), H5Fclose);
  if (!file.file_.valid()) file.failCall("H5Fopen", "/");
  return file;
}

void Hdf5File::finish() {
  if (H5Fflush(file_.get(), H5F_SCOPE_GLOBAL) < 0) failCall("H5Fflush", "/");
  file_.reset();
  disk_->sync();
  if (!disk_->failure().empty() || Hid::nFailures() != nFailuresBefore_) failCall("H5Fclose", "/");
  disk_.reset();
}

bool Hdf5File::has(const std::string& name) const {
  const htri_t found = H5Lexists(file_.get(), name.c_str(), H5P_DEFAULT);
  if (found < 0) {
    const std::size_t slash = name.find('/');
    if (slash != std::string::npos && !has(name.substr(0, slash))) {
      H5Eclear2(H5E_DEFAULT);
      return false;
    }
    failCall("H5Lexists", name);
  }
  return found > 0;
}

void Hdf5File::makeGroup(const std::string& name) {
  const Hid group(H5Gcreate2(file_.get(), name.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                  H5Gclose);
  if (!group.valid()) failCall("H5Gcreate2", name);
}

void Hdf5File::remove(const std::string& name) {
  if (H5Ldelete(file_.get(), name.c_str(), H5P_DEFAULT) < 0) failCall("H5Ldelete", name);
}

// Only hard links: others may lead to another file.
void Hdf5File::checkLink(const std::string& name) const {
  H5L_info_t info;
  if (H5Lget_info(file_.get(), name.c_str(), &info, H5P_DEFAULT) < 0) failCall("H5Lget_info", name);
  if (info.type != H5L_TYPE_HARD) failDamaged(path_ + ": " + name + " is a link");
}

Hdf5File::Dataset Hdf5File::open(const std::string& name, Number number, int rank) const {
  const std::size_t slash = name.find('/');
  if (slash != std::string::npos) checkLink(name.substr(0, slash));
  checkLink(name);
  Dataset dataset;
  dataset.name = name;
  dataset.number = number;
  dataset.id = Hid(H5Dopen2(file_.get(), name.c_str(), H5P_DEFAULT), H5Dclose);
  if (!dataset.id.valid()) failCall("H5Dopen2", name);
  const Hid type(H5Dget_type(dataset.id.get()), H5Tclose);
  if (!type.valid()) failCall("H5Dget_type", name);
  if (H5Tequal(type.get(), fileType(number)) <= 0) {
    failDamaged(path_ + ": " + name + " has another number type");
  }
  const Hid space(H5Dget_space(dataset.id.get()), H5Sclose);
  if (!space.valid()) failCall("H5Dget_space", name);
  if (H5Sis_simple(space.get()) <= 0 || H5Sget_simple_extent_ndims(space.get()) != rank) {
    failDamaged(path_ + ": " + name + " has another rank");
  }
  hsize_t dims[2] = {0, 0};
  if (H5Sget_simple_extent_dims(space.get(), dims, nullptr) < 0) {
    failCall("H5Sget_simple_extent_dims", name);
  }
  // The product of both, in bytes, stays far below what 64 bits hold.
  constexpr hsize_t kMost = hsize_t(1) << 44;
  for (int i = 0; i < rank; ++i) {
    if (dims[i] > (i == 0 ? kMost : 4096)) {
      failDamaged(path_ + ": " + name + " has an absurd extent");
    }
    dataset.dims.push_back(static_cast<std::int64_t>(dims[i]));
  }
  checkStorage(dataset);
  return dataset;
}

void Hdf5File::checkStorage(const Dataset& dataset) const {
  const std::string where = path_ + ": " + dataset.name;
  const Hid plist(H5Dget_create_plist(dataset.id.get()), H5Pclose);
  if (!plist.valid()) failCall("H5Dget_create_plist", dataset.name);
  const std::int64_t bytes = dataset.count() * static_cast<std::int64_t>(sizeOf(dataset.number));
  const std::int64_t stored = static_cast<std::int64_t>(H5Dget_storage_size(dataset.id.get()));
  const H5D_layout_t kind = H5Pget_layout(plist.get());
  if (H5Pget_external_count(plist.get()) != 0) failDamaged(where + " lies in another file");
  // A file that is being written grows, and only by our own hand.
  if (stored < 0 || (!disk_->isWritable() && stored > disk_->sizeAtOpening()))
    failDamaged(where + " is larger than the file");
  if (kind == H5D_CHUNKED) {
    hsize_t chunk[2] = {1, 1};
    if (H5Pget_chunk(plist.get(), 2, chunk) < 0) failCall("H5Pget_chunk", dataset.name);
    const hsize_t most = static_cast<hsize_t>(kMaxChunkBytes);
    if (chunk[0] > most || chunk[1] > most || chunk[0] * chunk[1] * sizeOf(dataset.number) > most) {
      failDamaged(where + " has absurd chunks");
    }
    const int nFilters = H5Pget_nfilters(plist.get());
    for (int i = 0; i < nFilters; ++i) {
      unsigned flags = 0;
      unsigned info = 0;
      std::size_t nValues = 0;
      const H5Z_filter_t filter = H5Pget_filter2(plist.get(), static_cast<unsigned>(i), &flags,
                                                 &nValues, nullptr, 0, nullptr, &info);
      if (filter != H5Z_FILTER_DEFLATE && filter != H5Z_FILTER_SHUFFLE &&
          filter != H5Z_FILTER_FLETCHER32) {
        failDamaged(where + " uses an unknown filter");
      }
    }
    if (bytes / kMaxDeflateRatio > stored) failDamaged(where + " has less data than it claims");
  } else if (kind == H5D_CONTIGUOUS || kind == H5D_COMPACT) {
    if (bytes > 0 && stored != bytes) failDamaged(where + " has less data than it claims");
  } else {
    failDamaged(where + " has an unknown storage");
  }
}

Hdf5File::Dataset Hdf5File::create(const std::string& name, Number number,
                                   const std::vector<std::int64_t>& dims, bool compressed) {
  Dataset dataset;
  dataset.name = name;
  dataset.number = number;
  dataset.dims = dims;
  hsize_t extent[2] = {0, 0};
  for (std::size_t i = 0; i < dims.size(); ++i) extent[i] = static_cast<hsize_t>(dims[i]);
  const Hid space(H5Screate_simple(static_cast<int>(dims.size()), extent, nullptr), H5Sclose);
  if (!space.valid()) failCall("H5Screate_simple", name);
  const Hid plist(H5Pcreate(H5P_DATASET_CREATE), H5Pclose);
  // Without times the same content gives the same bytes.
  if (!plist.valid() || H5Pset_obj_track_times(plist.get(), false) < 0) failCall("H5Pcreate", name);
  if (compressed && dataset.count() > 0) {
    const std::int64_t row = dims.size() == 2 ? dims[1] : 1;
    const std::int64_t rows = std::min(
        dims[0],
        std::max<std::int64_t>(1, kChunkBytes / (row * static_cast<std::int64_t>(sizeOf(number)))));
    const hsize_t chunk[2] = {static_cast<hsize_t>(rows), static_cast<hsize_t>(row)};
    if (H5Pset_chunk(plist.get(), static_cast<int>(dims.size()), chunk) < 0 ||
        H5Pset_shuffle(plist.get()) < 0 || H5Pset_deflate(plist.get(), 4) < 0) {
      failCall("H5Pset_deflate", name);
    }
  }
  H5Pset_fill_time(plist.get(), H5D_FILL_TIME_NEVER);
  dataset.id = Hid(H5Dcreate2(file_.get(), name.c_str(), fileType(number), space.get(), H5P_DEFAULT,
                              plist.get(), H5P_DEFAULT),
                   H5Dclose);
  if (!dataset.id.valid()) failCall("H5Dcreate2", name);
  return dataset;
}

void Hdf5File::transfer(const Dataset& dataset, std::int64_t firstRow, std::int64_t nRows,
                        void* memory, bool writing) const {
  if (firstRow < 0 || nRows < 0 || firstRow > dataset.dims[0] - nRows) {
    failDamaged(path_ + ": " + dataset.name + ": rows outside the dataset");
  }
  const std::int64_t columns = dataset.dims.size() == 2 ? dataset.dims[1] : 1;
  if (nRows == 0 || columns == 0) return;
  const Hid space(H5Dget_space(dataset.id.get()), H5Sclose);
  const hsize_t start[2] = {static_cast<hsize_t>(firstRow), 0};
  const hsize_t count[2] = {static_cast<hsize_t>(nRows), static_cast<hsize_t>(columns)};
  if (!space.valid() ||
      H5Sselect_hyperslab(space.get(), H5S_SELECT_SET, start, nullptr, count, nullptr) < 0) {
    failCall("H5Sselect_hyperslab", dataset.name);
  }
  const Hid memorySpace(H5Screate_simple(static_cast<int>(dataset.dims.size()), count, nullptr),
                        H5Sclose);
  if (!memorySpace.valid()) failCall("H5Screate_simple", dataset.name);
  const hid_t type = memoryType(dataset.number);
  const herr_t status =
      writing
          ? H5Dwrite(dataset.id.get(), type, memorySpace.get(), space.get(), H5P_DEFAULT, memory)
          : H5Dread(dataset.id.get(), type, memorySpace.get(), space.get(), H5P_DEFAULT, memory);
  if (status < 0) failCall(writing ? "H5Dwrite" : "H5Dread", dataset.name);
}

void Hdf5File::read(const Dataset& dataset, std::int64_t firstRow, std::int64_t nRows,
                    void* out) const {
  transfer(dataset, firstRow, nRows, out, false);
  if (!disk_->isWritable() && !disk_->isUnchanged()) {
    fail(odb_ERROR_DAMAGED, "the database " + path_ + " was changed while it was read");
  }
}

void Hdf5File::write(const Dataset& dataset, std::int64_t firstRow, std::int64_t nRows,
                     const void* in) {
  transfer(dataset, firstRow, nRows, const_cast<void*>(in), true);
}

}  // namespace odbs::engine
