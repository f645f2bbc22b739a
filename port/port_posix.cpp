// SPDX-License-Identifier: BSD-3-Clause
// The Linux side of port.h.
#include <fcntl.h>
#include <limits.h>
#include <malloc.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "port/port.h"
#include "port/unfinished_files.h"

namespace odbs::port {

namespace {

// After a failed read or write: true when `fd` is one that does not block, as parents with an event
// loop hand down, and has become ready by now.
bool waitedUntilReady(int fd, short events) {
  if (errno != EAGAIN) return false;
  pollfd waited{fd, events, 0};
  return ::poll(&waited, 1, -1) >= 0;
}

}  // namespace

long readOnce(int fd, void* buffer, std::size_t size) {
  long n = 0;
  do {
    n = ::read(fd, buffer, size);
  } while (n < 0 && waitedUntilReady(fd, POLLIN));
  return n;
}

long writeOnce(int fd, const void* buffer, std::size_t size) {
  long n = 0;
  do {
    n = ::write(fd, buffer, size);
  } while (n < 0 && waitedUntilReady(fd, POLLOUT));
  return n;
}

bool writeAll(int fd, const void* buffer, std::size_t size) {
  const char* at = static_cast<const char*>(buffer);
  while (size > 0) {
    const long n = writeOnce(fd, at, size);
    if (n < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    at += n;
    size -= static_cast<std::size_t>(n);
  }
  return true;
}

void setBinaryMode(int) {}

void ignoreBrokenPipe() {
  ::signal(SIGPIPE, SIG_IGN);
}

void ignoreFileSizeLimit() {
  ::signal(SIGXFSZ, SIG_IGN);
}

long setPipeCapacity(int fd, long bytes) {
  ::fcntl(fd, F_SETPIPE_SZ, static_cast<int>(bytes));
  return ::fcntl(fd, F_GETPIPE_SZ);
}

bool waitReadable(int fd, int timeoutMs) {
  pollfd p{fd, POLLIN, 0};
  int n;
  do {
    n = ::poll(&p, 1, timeoutMs);
  } while (n < 0 && errno == EINTR);
  return n != 0;
}

void closeDescriptor(int fd) {
  ::close(fd);
}

bool isTerminal(int fd) {
  return ::isatty(fd) == 1;
}

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

bool syncFile(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return false;
  const bool done = ::fsync(fd) == 0;
  ::close(fd);
  return done;
}

// The lock goes with the last descriptor, also when the process is killed. Where a file system has
// no locks (errno is not EWOULDBLOCK then), creating exclusively has to do.
int createClaimed(const std::string& path) {
  const int fd = openNew(path);
  if (fd < 0 || ::flock(fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) return fd;
  ::close(fd);  // somebody took it for left behind, in the moment before it was locked
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
  // Whoever deletes files without asking may have let another writer in since the look at the name.
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

namespace {

// SA_RESETHAND has restored the default, which ends the process as the sender expects.
void endInterrupted(int signal) {
  removeUnfinishedFiles();
  ::raise(signal);
}

}  // namespace

void removeUnfinishedWhenInterrupted() {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction old;
    // What is ignored stays so: nohup relies on it.
    if (::sigaction(signal, nullptr, &old) != 0 || old.sa_handler == SIG_IGN) continue;
    struct sigaction action {};
    action.sa_handler = endInterrupted;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    ::sigemptyset(&action.sa_mask);
    ::sigaction(signal, &action, nullptr);
  }
}

bool openFilesCanBeReplaced() {
  return true;
}

std::string libraryPath(const std::string& path) {
  return path;
}

std::string universalName(const std::string&) {
  return {};
}

std::string executablePath() {
  char buffer[PATH_MAX];
  const ssize_t n = ::readlink("/proc/self/exe", buffer, sizeof buffer);
  return n > 0 ? std::string(buffer, static_cast<std::size_t>(n)) : std::string();
}

int currentProcessId() {
  return ::getpid();
}

void endProcess(int status) {
  ::_exit(status);
}

WatchedProcess openProcess(int id) {
  WatchedProcess process;
  process.id = id;
  process.handle = id > 0 ? ::syscall(SYS_pidfd_open, id, 0) : -1;
  // A kernel without pidfd: the process id is polled instead. Any other failure means that there is
  // no such process.
  if (process.handle < 0 && !(id > 0 && (errno == ENOSYS || errno == EPERM))) process.id = 0;
  return process;
}

bool hasEnded(const WatchedProcess& process) {
  if (process.handle >= 0) {
    pollfd p{static_cast<int>(process.handle), POLLIN, 0};
    return ::poll(&p, 1, 0) > 0;
  }
  return process.id <= 0 || (::kill(process.id, 0) != 0 && errno == ESRCH);
}

void waitForEnd(const WatchedProcess& process) {
  if (process.handle >= 0) {
    pollfd p{static_cast<int>(process.handle), POLLIN, 0};
    while (::poll(&p, 1, -1) < 0 && errno == EINTR) {
    }
    return;
  }
  while (!hasEnded(process)) sleepMs(50);
}

namespace {

// A pipe whose two ends are closed in programs that we start.
void makePipe(int ends[2]) {
  if (::pipe2(ends, O_CLOEXEC) != 0) {
    throw std::runtime_error(std::string("cannot make a pipe: ") + std::strerror(errno));
  }
}

std::string substituted(std::string text, const std::string& mark, int value) {
  const std::size_t at = text.find(mark);
  if (at != std::string::npos) text.replace(at, mark.size(), std::to_string(value));
  return text;
}

}  // namespace

Child startWithPipes(const std::string& program, const std::vector<std::string>& arguments) {
  int commands[2], replies[2];
  makePipe(commands);
  try {
    makePipe(replies);
  } catch (...) {
    ::close(commands[0]);
    ::close(commands[1]);
    throw;
  }
  std::vector<std::string> texts{program};
  for (const std::string& argument : arguments) {
    texts.push_back(substituted(substituted(argument, "{in}", commands[0]), "{out}", replies[1]));
  }
  std::vector<char*> argv;
  for (std::string& text : texts) argv.push_back(text.data());
  argv.push_back(nullptr);

  // Duplicating a descriptor onto itself in a file action clears its close-on-exec flag in the
  // child only: no other child that is started meanwhile inherits the pipes.
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, commands[0], commands[0]);
  ::posix_spawn_file_actions_adddup2(&actions, replies[1], replies[1]);
  pid_t id = 0;
  const int error = ::posix_spawn(&id, program.c_str(), &actions, nullptr, argv.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  ::close(commands[0]);
  ::close(replies[1]);
  if (error != 0) {
    ::close(commands[1]);
    ::close(replies[0]);
    throw std::runtime_error("cannot start " + program + ": " + std::strerror(error));
  }
  Child child;
  child.id = id;
  child.toChild = commands[1];
  child.fromChild = replies[0];
  return child;
}

int waitForChild(Child& child, int timeoutMs) {
  if (child.id <= 0) return -1;
  for (int waited = 0;; ++waited) {
    int status = 0;
    const pid_t id = ::waitpid(child.id, &status, timeoutMs < 0 ? 0 : WNOHANG);
    if (id == child.id) {
      child.id = 0;
      return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    if (id < 0 && errno != EINTR) return -1;
    if (timeoutMs >= 0 && waited >= timeoutMs) return -1;
    if (id == 0) sleepMs(1);
  }
}

void killProcess(const Child& child) {
  if (child.id > 0) ::kill(child.id, SIGKILL);
}

namespace {

struct ThreadStart {
  void (*function)(void*);
  void* argument;
};

void* runThread(void* argument) {
  const std::unique_ptr<ThreadStart> start(static_cast<ThreadStart*>(argument));
  start->function(start->argument);
  return nullptr;
}

}  // namespace

bool startThread(void (*function)(void*), void* argument, std::size_t stackBytes) {
  pthread_attr_t attributes;
  if (::pthread_attr_init(&attributes) != 0) return false;
  const long least = std::max<long>(::sysconf(_SC_THREAD_STACK_MIN), 256 * 1024);
  ::pthread_attr_setstacksize(&attributes, std::max(stackBytes, static_cast<std::size_t>(least)));
  ::pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
  auto start = std::make_unique<ThreadStart>(ThreadStart{function, argument});
  pthread_t thread;
  const bool started = ::pthread_create(&thread, &attributes, runThread, start.get()) == 0;
  if (started) start.release();
  ::pthread_attr_destroy(&attributes);
  return started;
}

void sleepMs(int milliseconds) {
  timespec rest{milliseconds / 1000, (milliseconds % 1000) * 1000000L};
  while (::nanosleep(&rest, &rest) != 0 && errno == EINTR) {
  }
}

void preferLargePages(void* memory, std::size_t bytes) {
  // Advice: a refusal changes nothing but speed. The system wants whole pages.
  const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
  const auto address = reinterpret_cast<std::uintptr_t>(memory);
  const std::uintptr_t first = (address + page - 1) / page * page;
  const std::uintptr_t end = (address + bytes) / page * page;
  if (first < end) ::madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
}

void returnLargeBlocks() {
#if defined(__GLIBC__)
  // Left alone, the limit rises to the largest block that was freed, and blocks below it stay in a
  // heap that shrinks from its end only.
  ::mallopt(M_MMAP_THRESHOLD, 1 << 20);
#endif
}

std::int64_t peakMemory() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  return std::int64_t{usage.ru_maxrss} * 1024;
}

std::int64_t peakMemoryOf(const Child& child) {
  const std::string path = "/proc/" + std::to_string(child.id) + "/status";
  std::FILE* status = std::fopen(path.c_str(), "r");
  if (status == nullptr) return -1;
  char line[256];
  long long kilobytes = -1;
  while (kilobytes < 0 && std::fgets(line, sizeof line, status) != nullptr) {
    if (std::sscanf(line, "VmHWM: %lld kB", &kilobytes) != 1) kilobytes = -1;
  }
  std::fclose(status);
  return kilobytes < 0 ? -1 : std::int64_t{kilobytes} * 1024;
}

}  // namespace odbs::port
