// SPDX-License-Identifier: BSD-3-Clause
// What commands set and later commands read. Process-wide, main thread only. Each value lives from
// the command that sets it until it is replaced, freed or the process ends; nothing resets it
// between commands. (The catalogue cache path is shared with the watchdog:
// server/core/cache_guard.h.)
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "server/core/selection_set.h"

namespace odbs {

// Which result the parent asks for. Set by `D` and `d`; read by the results request.
struct Selection {
  int stepNumber = 0;        // 1-based
  int frameIndex = 0;        // 0-based
  int position = 0;          // result position code
  std::string variableName;  // at most 199 characters, blanks decoded
  bool flag = false;         // true after `D`, false after `d`
};

// Node or element labels. Created by `a`, filled by `b`; read by the results request `rd`.
struct LabelList {
  std::unique_ptr<std::int32_t[]> items;  // null when capacity is 0; first `count` are set
  int capacity = 0;
  int count = 0;
};

// History region names. Created by `ho`, filled by `hb`; read and emptied by `hr`.
struct HistoryNames {
  std::vector<std::string> names;  // at most `capacity`
  int capacity = 0;                // 0: no table
};

// Gathered stresses of the eigenmodes, one array for each block of the stress field, empty until
// first used. Filled by the modal stress measures; freed by `C`.
struct ModeStressCache {
  std::vector<std::vector<float>> blocks;
};

// How much the result catalogue lists. Set by the sub-letter of `f`; read by the catalogue.
enum class CatalogueMode { kLastFrame = 0, kEveryFrame = 1 };

// One region that the parent asks about. Appended by `irc`; read by `irf`, which empties the list,
// and by `irs`, which keeps it.
struct RegionRequest {
  int kind = 0;  // 1 to 8
  int value = 0;
  std::string name;
};

struct ServerState {
  Selection selection;
  LabelList labelList;
  HistoryNames historyNames;
  ModeStressCache modeStress;
  CatalogueMode catalogueMode = CatalogueMode::kLastFrame;
  std::vector<RegionRequest> regionRequests;
  SelectionSet regionSelection;  // replaced by `irf`; read by the results requests after `D`
  int verbosity = -1;            // set by `v`: -1 or 1; nothing reads it
};
inline ServerState serverState;

}  // namespace odbs
