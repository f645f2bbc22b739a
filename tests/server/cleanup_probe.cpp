// SPDX-License-Identifier: BSD-3-Clause
// A process whose second thread does after some milliseconds what the watchdog does, and ends the
// process, while the main thread is at work.
//
//   cleanup_probe CACHE_PATH DELAY_MS      the main thread makes and unmakes cache companions
//   cleanup_probe DATABASE DELAY_MS IN     it reads a line from the descriptor IN
//
// The second form ends with status 10, plus the number of open databases, when the watchdog's
// thread claimed them; with 20, plus that number, when it did not; with 1 when the main thread got
// its line all the same.
#include <cstdio>
#include <string>

#include "port/port.h"
#include "server/core/cache_guard.h"
#include "server/core/channel.h"
#include "server/core/sdk_adapter.h"
#include "server/parent_watchdog.h"
#include "tests/support/output_file.h"

namespace {

int delayMs = 0;

void cleanUp(void*) {
  odbs::port::sleepMs(delayMs);
  odbs::removeCacheCompanions();
  odbs::port::sleepMs(20);  // room for the main thread to do harm
  odbs::port::endProcess(0);
}

void closeDatabases(void*) {
  odbs::port::sleepMs(delayMs);
  const bool claimed = odbs::closeIdleDatabases();
  odbs::port::sleepMs(300);  // room for a line to arrive, and for the main thread to do harm
  odbs::port::endProcess((claimed ? 10 : 20) + odbs::sdk::nOpen(odbs::sdk::openDatabases()));
}

// Reads one line; with the input empty from the start the databases are idle until then.
[[noreturn]] void readLine(const std::string& database, int inputFd) {
  odbs::sdk::openReadOnly(odbs::sdk::openDatabases(), database);
  if (!odbs::port::startThread(closeDatabases, nullptr, 0)) odbs::port::endProcess(2);
  const bool busy = odbs::readCommandLine(inputFd) == "work";
  for (; busy;) odbs::port::sleepMs(1);
  odbs::port::endProcess(1);
}

[[noreturn]] void writeCaches(const std::string& path) {
  const std::string temporary = odbs::cacheTemporaryName(path);
  const std::string lock = odbs::cacheLockName(path);
  for (;;) {
    odbs::setCachePath(path.c_str());
    std::FILE* stream = nullptr;
    {
      const odbs::CacheGuard guard;
      stream = std::fopen(temporary.c_str(), "wb");
      if (!stream) odbs::port::endProcess(3);
      odbs::registerCacheStream(odbs::tests::descriptorOf(stream));
      std::FILE* lockFile = std::fopen(lock.c_str(), "wb");
      if (!lockFile) odbs::port::endProcess(4);
      std::fclose(lockFile);
    }
    for (int i = 0; i < 100; ++i) std::fputs("line of a cache\n", stream);
    {
      const odbs::CacheGuard guard;
      odbs::port::removeFile(lock);
      odbs::clearCacheStream();
      std::fclose(stream);
      odbs::port::removeFile(temporary);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  delayMs = std::stoi(argv[2]);
  if (argc > 3) readLine(argv[1], std::stoi(argv[3]));
  if (!odbs::port::startThread(cleanUp, nullptr, 0)) return 2;
  writeCaches(argv[1]);
}
