// SPDX-License-Identifier: BSD-3-Clause
// The Linux side of port.h for files.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "port/port.h"

namespace odbs::port {

namespace {

FileStatus statusOf(const struct stat& s) {
  FileStatus status;
  status.exists = true;
  status.isRegular = S_ISREG(s.st_mode);
  status.modificationTime = std::int64_t{s.st_mtim.tv_sec} * 1000000000 + s.st_mtim.tv_nsec;
  status.modificationSeconds = s.st_mtim.tv_sec;
  status.size = s.st_size;
  status.inode = static_cast<std::uint16_t>(s.st_ino);
  return status;
}

}  // namespace

FileStatus fileStatus(const std::string& path) {
  struct stat s;
  return ::stat(path.c_str(), &s) == 0 ? statusOf(s) : FileStatus();
}

FileStatus descriptorStatus(int fd) {
  struct stat s;
  return ::fstat(fd, &s) == 0 ? statusOf(s) : FileStatus();
}

bool isTakenByOther(const std::string& path) {
  struct stat s;
  return ::lstat(path.c_str(), &s) == 0 && !S_ISREG(s.st_mode);
}

bool removeFile(const std::string& path) {
  return ::unlink(path.c_str()) == 0;
}

int renameFile(const std::string& from, const std::string& to) {
  return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

int replaceFile(const std::string& from, const std::string& to) {
  return renameFile(from, to);
}

bool createExclusively(const std::string& path) {
  const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (fd >= 0) ::close(fd);
  return fd >= 0;
}

int openNew(const std::string& path) {
  return ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
}

int openExisting(const std::string& path, bool writable) {
  // Opening a pipe for reading would wait for a writer.
  const int fd =
      ::open(path.c_str(), (writable ? O_RDWR : O_RDONLY) | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
  if (fd < 0 || descriptorStatus(fd).isRegular) return fd;
  ::close(fd);
  errno = EINVAL;
  return -1;
}

long long readAt(int fd, std::int64_t place, void* buffer, std::size_t size) {
  char* to = static_cast<char*>(buffer);
  std::size_t nRead = 0;
  while (nRead < size) {
    const ssize_t n = ::pread(fd, to + nRead, size - nRead,
                              static_cast<off_t>(place) + static_cast<off_t>(nRead));
    if (n == 0) break;
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return -1;
    nRead += static_cast<std::size_t>(n);
  }
  return static_cast<long long>(nRead);
}

bool writeAt(int fd, std::int64_t place, const void* buffer, std::size_t size) {
  const char* from = static_cast<const char*>(buffer);
  while (size > 0) {
    const ssize_t n = ::pwrite(fd, from, size, static_cast<off_t>(place));
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    from += n;
    place += n;
    size -= static_cast<std::size_t>(n);
  }
  return true;
}

bool setFileSize(int fd, std::int64_t size) {
  return ::ftruncate(fd, static_cast<off_t>(size)) == 0;
}

int duplicateDescriptor(int fd) {
  return ::fcntl(fd, F_DUPFD_CLOEXEC, 0);
}

bool syncDescriptor(int fd) {
  return ::fsync(fd) == 0;
}

void syncFolderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  // Some file systems refuse; the rename has happened in any case.
  ::fsync(fd);
  ::close(fd);
}

// The lock goes with the last descriptor, also when the process is killed. Where a file system has
// no locks (errno is not EWOULDBLOCK then), creating exclusively has to do.
int createClaimed(const std::string& path) {
  const int fd = openNew(path);
  if (fd < 0 || ::flock(fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) return fd;
  ::close(fd);  // another process deleted it before it was locked
  errno = EEXIST;
  return -1;
}

// Between the look at the name and its deletion only a holder of the lock may touch it: us.
bool removeUnclaimed(const std::string& path) {
  if (isTakenByOther(path)) return false;
  const int fd = openExisting(path, false);
  if (fd < 0) return false;
  const bool removed =
      ::flock(fd, LOCK_EX | LOCK_NB) == 0 && isNameOf(path, fd) && removeFile(path);
  ::close(fd);
  return removed;
}

bool isNameOf(const std::string& path, int fd) {
  struct stat named, opened;
  return ::lstat(path.c_str(), &named) == 0 && ::fstat(fd, &opened) == 0 &&
         named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

int renameClaimed(int fd, const std::string& from, const std::string& to) {
  int error = isNameOf(from, fd) ? renameFile(from, to) : ENOENT;
  // If somebody deleted the file since its name was checked, another writer may have made a new
  // one.
  if (error == 0 && !isNameOf(to, fd)) {
    removeFile(to);
    error = ENOENT;
  }
  ::close(fd);
  return error;
}

void discardClaimed(int fd, const std::string& path) {
  if (fd < 0) return;
  if (isNameOf(path, fd)) removeFile(path);
  ::close(fd);
}

bool openFilesCanBeReplaced() {
  return true;
}

std::string universalName(const std::string&) {
  return {};
}

}  // namespace odbs::port
