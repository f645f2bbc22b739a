// SPDX-License-Identifier: BSD-3-Clause
// The Linux side of port.h.
#include <fcntl.h>
#include <limits.h>
#include <malloc.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/resource.h>
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
