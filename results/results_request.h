// SPDX-License-Identifier: BSD-3-Clause
// The forms of the command `r`: their section-point picks and items, and the extractor of each.
#pragma once

#include <string>
#include <string_view>

#include "results/field_extractor.h"
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

// The forms of `r`, each for the selected result (see Selection in server/core/server_state.h) and
// the database of the path. Local directions precede the values that have them if `withDirections`.
// They throw what opening and the database library throw.
void sendFieldValues(const std::string& path, int outputFd, Extraction extraction,
                     bool withDirections);

// Those at two section points: "pick1 pick2,path". Nothing is opened or sent without a comma.
void sendPickedValues(const char* arguments, int outputFd, bool withDirections);

// Those at two places of layers: "item1:item2:path". Nothing is opened or sent without two colons.
void sendPairValues(const char* arguments, int outputFd, bool byName, bool withDirections);

// Those at nodes.
void sendNodalValues(const std::string& path, int outputFd);

}  // namespace odbs
