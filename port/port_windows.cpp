// SPDX-License-Identifier: BSD-3-Clause
// The Windows side of port.h.
#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>
// After windows.h, which it needs.
#include <psapi.h>

#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "port/port.h"
#include "port/unfinished_files.h"

namespace odbs::port {

namespace {

constexpr unsigned kLargestTransfer = 1u << 30;

unsigned transferSize(std::size_t size) {
  return size > kLargestTransfer ? kLargestTransfer : static_cast<unsigned>(size);
}

}  // namespace

long readOnce(int fd, void* buffer, std::size_t size) {
  return ::_read(fd, buffer, transferSize(size));
}

long writeOnce(int fd, const void* buffer, std::size_t size) {
  return ::_write(fd, buffer, transferSize(size));
}

bool writeAll(int fd, const void* buffer, std::size_t size) {
  const char* at = static_cast<const char*>(buffer);
  while (size > 0) {
    const long n = writeOnce(fd, at, size);
    if (n <= 0) {
      if (n < 0 && errno == EINTR) continue;
      return false;
    }
    at += n;
    size -= static_cast<std::size_t>(n);
  }
  return true;
}

void setBinaryMode(int fd) {
  ::_setmode(fd, _O_BINARY);
}

void ignoreBrokenPipe() {}

void ignoreFileSizeLimit() {}

long setPipeCapacity(int, long) {
  return -1;
}

bool waitReadable(int fd, int timeoutMs) {
  const HANDLE pipe = reinterpret_cast<HANDLE>(::_get_osfhandle(fd));
  for (int waited = 0;; ++waited) {
    DWORD available = 0;
    // A failure means that the writer closed its end: the next read reports it.
    if (!::PeekNamedPipe(pipe, nullptr, 0, nullptr, &available, nullptr)) return true;
    if (available > 0) return true;
    if (timeoutMs >= 0 && waited >= timeoutMs) return false;
    ::Sleep(1);
  }
}

void closeDescriptor(int fd) {
  ::_close(fd);
}

bool isTerminal(int fd) {
  return ::_isatty(fd) != 0;
}

namespace {

// FALSE lets the system's own handler end the process.
BOOL WINAPI endInterrupted(DWORD) {
  removeUnfinishedFiles();
  return FALSE;
}

}  // namespace

void removeUnfinishedWhenInterrupted() {
  ::SetConsoleCtrlHandler(endInterrupted, TRUE);
}

std::string executablePath() {
  char buffer[4096];
  const DWORD n = ::GetModuleFileNameA(nullptr, buffer, sizeof buffer);
  return std::string(buffer, n);
}

int currentProcessId() {
  return ::_getpid();
}

void endProcess(int status) {
  ::TerminateProcess(::GetCurrentProcess(), static_cast<UINT>(status));
  std::abort();  // not reached
}

WatchedProcess openProcess(int id) {
  constexpr DWORD kAllAccess = 0x1F0FFF;
  WatchedProcess process;
  process.id = id;
  const HANDLE handle = ::OpenProcess(kAllAccess, FALSE, static_cast<DWORD>(id));
  process.handle = handle ? reinterpret_cast<std::intptr_t>(handle) : -1;
  return process;
}

void waitForEnd(const WatchedProcess& process) {
  if (process.handle == -1) return;
  ::WaitForSingleObject(reinterpret_cast<HANDLE>(process.handle), INFINITE);
}

bool hasEnded(const WatchedProcess& process) {
  if (process.handle == -1) return true;
  return ::WaitForSingleObject(reinterpret_cast<HANDLE>(process.handle), 0) == WAIT_OBJECT_0;
}

namespace {

// A binary pipe. Both ends are made uninheritable; the child's ends are duplicated as inheritable.
void makePipe(int ends[2]) {
  constexpr unsigned kPipeBytes = 1u << 20;
  if (::_pipe(ends, kPipeBytes, _O_BINARY | _O_NOINHERIT) != 0) {
    throw std::runtime_error(std::string("cannot make a pipe: ") + std::strerror(errno));
  }
}

std::string substituted(std::string text, const std::string& mark, int value) {
  const std::size_t at = text.find(mark);
  if (at != std::string::npos) text.replace(at, mark.size(), std::to_string(value));
  return text;
}

// An argument as the runtime's start-up code reads it back: quoted where it holds blanks or quotes,
// backslashes doubled ahead of a quote.
std::string quoted(const std::string& argument) {
  if (!argument.empty() && argument.find_first_of(" \t\"") == std::string::npos) return argument;
  std::string result = "\"";
  std::size_t nBackslashes = 0;
  for (const char c : argument) {
    if (c == '\\') {
      ++nBackslashes;
      continue;
    }
    result.append(c == '"' ? 2 * nBackslashes + 1 : nBackslashes, '\\');
    nBackslashes = 0;
    result += c;
  }
  result.append(2 * nBackslashes, '\\');
  return result + '"';
}

}  // namespace

Child startWithPipes(const std::string& program, const std::vector<std::string>& arguments) {
  int commands[2], replies[2];
  makePipe(commands);
  try {
    makePipe(replies);
  } catch (...) {
    ::_close(commands[0]);
    ::_close(commands[1]);
    throw;
  }
  // _dup makes inheritable descriptors; the child gets them under the same numbers.
  const int childIn = ::_dup(commands[0]);
  const int childOut = ::_dup(replies[1]);
  ::_close(commands[0]);
  ::_close(replies[1]);
  std::vector<std::string> texts{quoted(program)};
  for (const std::string& argument : arguments) {
    texts.push_back(quoted(substituted(substituted(argument, "{in}", childIn), "{out}", childOut)));
  }
  std::vector<const char*> argv;
  for (const std::string& text : texts) argv.push_back(text.c_str());
  argv.push_back(nullptr);
  const std::intptr_t handle = ::_spawnv(_P_NOWAIT, program.c_str(), argv.data());
  const int error = errno;
  ::_close(childIn);
  ::_close(childOut);
  if (handle == -1) {
    ::_close(commands[1]);
    ::_close(replies[0]);
    throw std::runtime_error("cannot start " + program + ": " + std::strerror(error));
  }
  Child child;
  child.handle = handle;
  child.id = static_cast<int>(::GetProcessId(reinterpret_cast<HANDLE>(handle)));
  child.toChild = commands[1];
  child.fromChild = replies[0];
  return child;
}

int waitForChild(Child& child, int timeoutMs) {
  if (child.handle == -1) return -1;
  const HANDLE handle = reinterpret_cast<HANDLE>(child.handle);
  const DWORD limit = timeoutMs < 0 ? INFINITE : static_cast<DWORD>(timeoutMs);
  if (::WaitForSingleObject(handle, limit) != WAIT_OBJECT_0) return -1;
  DWORD status = 0;
  ::GetExitCodeProcess(handle, &status);
  ::CloseHandle(handle);
  child.handle = -1;
  child.id = 0;
  return static_cast<int>(status);
}

void killProcess(const Child& child) {
  if (child.handle != -1) ::TerminateProcess(reinterpret_cast<HANDLE>(child.handle), 137);
}

namespace {

struct ThreadStart {
  void (*function)(void*);
  void* argument;
};

DWORD WINAPI runThread(void* argument) {
  const std::unique_ptr<ThreadStart> start(static_cast<ThreadStart*>(argument));
  start->function(start->argument);
  return 0;
}

}  // namespace

bool startThread(void (*function)(void*), void* argument, std::size_t stackBytes) {
  auto start = std::make_unique<ThreadStart>(ThreadStart{function, argument});
  const HANDLE thread = ::CreateThread(nullptr, stackBytes, runThread, start.get(), 0, nullptr);
  if (!thread) return false;
  start.release();
  ::CloseHandle(thread);
  return true;
}

void sleepMs(int milliseconds) {
  ::Sleep(static_cast<DWORD>(milliseconds));
}

void preferLargePages(void*, std::size_t) {}

void returnLargeBlocks() {}  // the heap does so anyway

std::int64_t peakMemory() {
  PROCESS_MEMORY_COUNTERS counters{};
  ::GetProcessMemoryInfo(::GetCurrentProcess(), &counters, sizeof counters);
  return static_cast<std::int64_t>(counters.PeakWorkingSetSize);
}

std::int64_t peakMemoryOf(const Child& child) {
  PROCESS_MEMORY_COUNTERS counters{};
  const auto process = reinterpret_cast<HANDLE>(child.handle);
  if (!::GetProcessMemoryInfo(process, &counters, sizeof counters)) return -1;
  return static_cast<std::int64_t>(counters.PeakWorkingSetSize);
}

}  // namespace odbs::port
