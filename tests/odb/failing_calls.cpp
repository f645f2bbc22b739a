// SPDX-License-Identifier: BSD-3-Clause
// Lets one call to the system fail, once: preloaded into a program, or linked into a test.
//
//     ODBS_FAIL="pwrite 17" LD_PRELOAD=... PROGRAM     the 17th pwrite fails with EIO
//     ODBS_FAIL="pwrite 17 2" LD_PRELOAD=... PROGRAM   signal 2 comes before it instead
//
// "a call failed" on standard error says that it came to that.
#include "tests/odb/failing_calls.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

char failing[16] = "";
int nLeft = 0;
int signalInstead = 0;

__attribute__((constructor)) void readEnvironment() {
  const char* const wish = std::getenv("ODBS_FAIL");
  if (wish) std::sscanf(wish, "%15s %d %d", failing, &nLeft, &signalInstead);
}

template <class Function, class... Arguments>
auto call(const char* name, const char* symbol, Function*, Arguments... arguments) {
  if (nLeft > 0 && std::strcmp(name, failing) == 0 && --nLeft == 0) {
    if (signalInstead != 0) std::raise(signalInstead);
    if (::write(2, "a call failed\n", 14) < 0) std::abort();
    errno = EIO;
    return static_cast<decltype(std::declval<Function>()(arguments...))>(-1);
  }
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, symbol))(arguments...);
}

}  // namespace

namespace odbs::test {

void failCall(const char* name, int n) {
  std::snprintf(failing, sizeof failing, "%s", name);
  nLeft = n;
}

bool callFailed() {
  return nLeft == 0;
}

}  // namespace odbs::test

extern "C" {

ssize_t pread(int fd, void* to, std::size_t size, off_t place) {
  return call("pread", "pread", &pread, fd, to, size, place);
}
ssize_t pwrite(int fd, const void* from, std::size_t size, off_t place) {
  return call("pwrite", "pwrite", &pwrite, fd, from, size, place);
}
int ftruncate(int fd, off_t size) noexcept {
  return call("ftruncate", "ftruncate", &ftruncate, fd, size);
}
int fsync(int fd) {
  return call("fsync", "fsync", &fsync, fd);
}
int rename(const char* from, const char* to) noexcept {
  return call("rename", "rename", &rename, from, to);
}
}
