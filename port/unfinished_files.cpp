// SPDX-License-Identifier: BSD-3-Clause
// A fixed table of names, without locks, that a signal handler can read.
#include "port/unfinished_files.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstring>

#include "port/port.h"

namespace odbs::port {

namespace {

constexpr std::size_t kLongestPath = 4096;

struct Slot {
  std::atomic<bool> taken{false};
  std::atomic<bool> listed{false};
  char path[kLongestPath] = "";
};

// Few databases are written at a time; a file too many is not listed.
std::array<Slot, 16> slots;

}  // namespace

void removeUnfinishedFiles() {
  for (Slot& slot : slots) {
    if (slot.listed.load()) std::remove(slot.path);
  }
}

UnfinishedFile::UnfinishedFile(const std::string& path) : path_(path) {
  if (path.size() >= kLongestPath) return;
  for (std::size_t i = 0; i < slots.size(); ++i) {
    if (slots[i].taken.exchange(true)) continue;
    std::memcpy(slots[i].path, path.c_str(), path.size() + 1);
    slots[i].listed = true;
    slot_ = static_cast<int>(i);
    return;
  }
}

UnfinishedFile::~UnfinishedFile() {
  if (kept_) return;
  removeFile(path_);
  keep();
}

void UnfinishedFile::keep() {
  kept_ = true;
  if (slot_ == kUnlisted) return;
  Slot& slot = slots[static_cast<std::size_t>(slot_)];
  slot.listed = false;
  slot.taken = false;
  slot_ = kUnlisted;
}

}  // namespace odbs::port
