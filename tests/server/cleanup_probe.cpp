// SPDX-License-Identifier: BSD-3-Clause
// A process whose main thread makes and unmakes cache companions without pause, as a listing does,
// while a second thread cleans up after some milliseconds and ends the process, as the watchdog
// does.
//
//   cleanup_probe CACHE_PATH DELAY_MS
#include <cstdio>
#include <string>

#include "port/port.h"
#include "server/shutdown.h"
#include "tests/support/output_file.h"

namespace {

int delayMs = 0;

void cleanUp(void*) {
  odbs::port::sleepMs(delayMs);
  odbs::removeCacheCompanions();
  odbs::port::sleepMs(20);  // room for the main thread to do harm
  odbs::port::endProcess(0);
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
  if (!odbs::port::startThread(cleanUp, nullptr, 0)) return 2;
  writeCaches(argv[1]);
}
