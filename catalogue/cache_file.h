// SPDX-License-Identifier: BSD-3-Clause
// The catalogue cache file: the reply of one listing as gzip-compressed text lines, replayed as
// long as the database file has not changed. While it is being written it has two companions, a
// temporary file and a lock; several servers may share a folder of caches.
//
// The file, line by line:
//   1     "1.0", a carriage return, then "1.0A" (every frame) or "1.0" (last frame)
//   2     database path (not compared)
//   3, 4  modification time and size of the database file
//   5, 6  analysis title; analysis code less one
//   then one group of lines per catalogue entry, see CacheWriter::entry.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "catalogue/catalogue_records.h"
#include "port/port.h"

namespace odbs {

// What a cache must match to be replayed.
struct CacheKey {
  std::string databasePath;
  port::FileStatus databaseStatus;
  bool everyFrame = false;
};

enum class Replay {
  kNoCache,  // there is no file that can be opened: compute, and write one
  kStale,    // the file did not match and has been deleted: compute, and write a new one
  kServed,   // the reply, or what a file cut short holds of it, has been sent
};

// Answers a listing from the cache file at `path`. After kStale a title and an analysis record may
// have been sent already; the parent tolerates to receive them twice.
Replay replayCache(const std::string& path, const CacheKey& key, CatalogueListing listing,
                   int outputFd);

// A cache file being written. Where another writer is at work, or the file cannot be created, it
// writes nothing: listing goes on without a cache.
class CacheWriter {
 public:
  // Starts the cache of `path`: temporary file, lock, header lines 1 to 4. An empty optional path
  // (null) writes nothing.
  CacheWriter(const std::string* path, const CacheKey& key);
  // Closes the stream of a listing that failed and leaves its companions, as the protocol has it.
  ~CacheWriter();
  CacheWriter(const CacheWriter&) = delete;
  CacheWriter& operator=(const CacheWriter&) = delete;

  // Lines 5 and 6.
  void analysis(const std::string& title, int analysisCodeLessOne);
  // The lines of one entry, in this order: step number; total time; step text; procedure; field
  // name; field description; for element entries the number of component labels and the labels;
  // frame index; domain; mode; frame value; frequency; complex flag; the classification; frame
  // description.
  void entry(const CatalogueEntry& entry, CatalogueListing listing);
  // Nothing is kept: what was written until now and what follows.
  void abandon();
  // Removes the lock, closes the stream and gives the file its name; deletes it when it could not
  // be written whole or named.
  void finish();

 private:
  struct Stream;
  std::unique_ptr<Stream> stream_;  // null: nothing is written
};

}  // namespace odbs
