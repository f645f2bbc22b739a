// SPDX-License-Identifier: BSD-3-Clause
// The Windows side of port.h for files.
#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>
// After windows.h, which it needs.
#include <winnetwk.h>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

#include "port/port.h"

namespace odbs::port {

namespace {

constexpr DWORD kLargestTransfer = 1u << 30;

DWORD transferSize(std::size_t size) {
  return size > kLargestTransfer ? kLargestTransfer : static_cast<DWORD>(size);
}

}  // namespace

namespace {

FileStatus statusOf(const struct _stat64& s) {
  FileStatus status;
  status.exists = true;
  status.isRegular = (s.st_mode & _S_IFMT) == _S_IFREG;
  status.modificationTime = s.st_mtime;
  status.modificationSeconds = s.st_mtime;
  status.size = s.st_size;
  status.inode = static_cast<std::uint16_t>(s.st_ino);
  return status;
}

}  // namespace

FileStatus fileStatus(const std::string& path) {
  struct _stat64 s;
  return ::_stat64(path.c_str(), &s) == 0 ? statusOf(s) : FileStatus();
}

FileStatus descriptorStatus(int fd) {
  struct _stat64 s;
  return ::_fstat64(fd, &s) == 0 ? statusOf(s) : FileStatus();
}

bool isTakenByOther(const std::string& path) {
  constexpr DWORD kOthers =
      FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE | FILE_ATTRIBUTE_REPARSE_POINT;
  const DWORD attributes = ::GetFileAttributesA(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return false;
  return (attributes & kOthers) != 0 || !fileStatus(path).isRegular;  // the latter for "NUL", "CON"
}

bool removeFile(const std::string& path) {
  return ::_unlink(path.c_str()) == 0;
}

int renameFile(const std::string& from, const std::string& to) {
  return ::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

int replaceFile(const std::string& from, const std::string& to) {
  if (::MoveFileExA(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
    return 0;
  }
  return ::GetLastError() == ERROR_FILE_NOT_FOUND ? ENOENT : EACCES;
}

bool createExclusively(const std::string& path) {
  const int fd = ::_open(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT,
                         _S_IREAD | _S_IWRITE);
  if (fd >= 0) ::_close(fd);
  return fd >= 0;
}

namespace {

int errnoOf(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
      return ENOENT;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return EEXIST;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return ENOSPC;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
      return EACCES;
    default:
      return EIO;
  }
}

// The file offset of a transfer on a handle that is not overlapped.
OVERLAPPED at(std::int64_t place) {
  OVERLAPPED where{};
  where.Offset = static_cast<DWORD>(place & 0xFFFFFFFF);
  where.OffsetHigh = static_cast<DWORD>(place >> 32);
  return where;
}

HANDLE handleOf(int fd) {
  return reinterpret_cast<HANDLE>(::_get_osfhandle(fd));
}

// An open file can be deleted: an interruption does that.
int openHandle(const std::string& path, DWORD access, DWORD how, int flags) {
  const HANDLE handle =
      ::CreateFileA(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, how, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    errno = errnoOf(::GetLastError());
    return -1;
  }
  const int fd =
      ::_open_osfhandle(reinterpret_cast<std::intptr_t>(handle), flags | _O_BINARY | _O_NOINHERIT);
  if (fd < 0) ::CloseHandle(handle);
  return fd;
}

}  // namespace

int openNew(const std::string& path) {
  return openHandle(path, GENERIC_READ | GENERIC_WRITE, CREATE_NEW, _O_RDWR);
}

int openExisting(const std::string& path, bool writable) {
  const int fd = writable ? openHandle(path, GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING, _O_RDWR)
                          : openHandle(path, GENERIC_READ, OPEN_EXISTING, _O_RDONLY);
  if (fd < 0 || descriptorStatus(fd).isRegular) return fd;
  ::_close(fd);
  errno = EINVAL;
  return -1;
}

long long readAt(int fd, std::int64_t place, void* buffer, std::size_t size) {
  char* const to = static_cast<char*>(buffer);
  std::size_t nRead = 0;
  while (nRead < size) {
    OVERLAPPED where = at(place + static_cast<std::int64_t>(nRead));
    DWORD n = 0;
    if (!::ReadFile(handleOf(fd), to + nRead, transferSize(size - nRead), &n, &where) &&
        ::GetLastError() != ERROR_HANDLE_EOF) {
      errno = errnoOf(::GetLastError());
      return -1;
    }
    if (n == 0) break;
    nRead += n;
  }
  return static_cast<long long>(nRead);
}

bool writeAt(int fd, std::int64_t place, const void* buffer, std::size_t size) {
  const char* from = static_cast<const char*>(buffer);
  while (size > 0) {
    OVERLAPPED where = at(place);
    DWORD n = 0;
    if (!::WriteFile(handleOf(fd), from, transferSize(size), &n, &where) || n == 0) {
      errno = errnoOf(::GetLastError());
      return false;
    }
    from += n;
    place += n;
    size -= n;
  }
  return true;
}

bool setFileSize(int fd, std::int64_t size) {
  const errno_t error = ::_chsize_s(fd, size);
  if (error != 0) errno = error;
  return error == 0;
}

int duplicateDescriptor(int fd) {
  return ::_dup(fd);
}

bool syncDescriptor(int fd) {
  return ::_commit(fd) == 0;
}

void syncFolderOf(const std::string&) {}  // replaceFile writes through

// The system refuses to delete or rename a file that is open in this way: an open one is claimed.
int createClaimed(const std::string& path) {
  return ::_open(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT,
                 _S_IREAD | _S_IWRITE);
}

bool removeUnclaimed(const std::string& path) {
  return !isTakenByOther(path) && removeFile(path);
}

bool isNameOf(const std::string& path, int fd) {
  const HANDLE named = ::CreateFileA(
      path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
      OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (named == INVALID_HANDLE_VALUE) return false;
  BY_HANDLE_FILE_INFORMATION a, b;
  const bool asked = ::GetFileInformationByHandle(named, &a) != 0 &&
                     ::GetFileInformationByHandle(handleOf(fd), &b) != 0;
  ::CloseHandle(named);
  return asked && a.dwVolumeSerialNumber == b.dwVolumeSerialNumber &&
         a.nFileIndexHigh == b.nFileIndexHigh && a.nFileIndexLow == b.nFileIndexLow;
}

// An open file cannot be renamed here. One that another process makes under the name after the
// closing is open there, and the system refuses to rename it.
int renameClaimed(int fd, const std::string& from, const std::string& to) {
  const bool isOurs = isNameOf(from, fd);
  ::_close(fd);
  return isOurs ? renameFile(from, to) : ENOENT;
}

void discardClaimed(int fd, const std::string& path) {
  if (fd < 0) return;
  const bool isOurs = isNameOf(path, fd);
  ::_close(fd);
  if (isOurs) removeFile(path);
}

bool openFilesCanBeReplaced() {
  return false;
}

std::string universalName(const std::string& path) {
  alignas(UNIVERSAL_NAME_INFOA) char buffer[1024];
  DWORD size = sizeof buffer;
  if (::WNetGetUniversalNameA(path.c_str(), UNIVERSAL_NAME_INFO_LEVEL, buffer, &size) != NO_ERROR) {
    return {};
  }
  return reinterpret_cast<const UNIVERSAL_NAME_INFOA*>(buffer)->lpUniversalName;
}

}  // namespace odbs::port
