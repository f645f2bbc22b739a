// SPDX-License-Identifier: BSD-3-Clause
// The command `r`: which extraction its second letter asks for, its section-point picks and items,
// and the way to the extractor.
#pragma once

#include <string>
#include <string_view>

#include "results/pair_extractor.h"

namespace odbs {

// Splits an item into its name or number and its section-point code. `byName` tells the form.
PairItem parsePairItem(std::string_view item, bool byName);

// Two items and a path, parsed from one word "item1:item2:path".
struct PairRequest {
  PairItem first, second;
  std::string path;
  bool valid = false;  // false: fewer than two colons
};
PairRequest parsePairRequest(const char* arguments, bool byName);

// Two section-point picks and a path, parsed from "pick1 pick2,path"; picks that do not scan are
// -1.
struct PickRequest {
  int pick1 = -1, pick2 = -1;
  std::string path;
  bool valid = false;  // false: no comma
};
PickRequest parsePickRequest(const char* arguments);

// Runs a results request. `line` is the whole command line, NUL-terminated. Reads the selection of
// the server state. Opens the database in every case. Throws what opening and the database library
// throw.
void runResultsRequest(const char* line, int outputFd);

}  // namespace odbs
