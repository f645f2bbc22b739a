// SPDX-License-Identifier: BSD-3-Clause
// The tables of expansions, and their look-up.
#include "importer/results/solid_expansions.h"

namespace odbs::importer {

namespace {

// In .frd files quadratic solids list the edges from bottom to top before those of the top.
constexpr Expansion kExpansions[] = {
    {3, 2, {0, 1, 2}, {-1, -1, -1}, {3, 4, 5}},
    {4, 1, {0, 1, 2, 3}, {-1, -1, -1, -1}, {4, 5, 6, 7}},
    {6, 5, {0, 1, 2, 6, 7, 8}, {9, 10, 11, -1, -1, -1}, {3, 4, 5, 12, 13, 14}},
    {8,
     4,
     {0, 1, 2, 3, 8, 9, 10, 11},
     {12, 13, 14, 15, -1, -1, -1, -1},
     {4, 5, 6, 7, 16, 17, 18, 19}},
};

constexpr LineExpansion kLineExpansions[] = {
    {2, 1, {{0, 3, 4, 7, -1}, {1, 2, 5, 6, -1}, {-1}}},
    {3, 4, {{0, 3, 4, 7, 11, 12, 15, 19}, {8, 10, 16, 18, -1}, {1, 2, 5, 6, 9, 13, 14, 17}}},
};

}  // namespace

const Expansion* expansionOf(int nDeckNodes, int frdType) {
  for (const Expansion& expansion : kExpansions) {
    if (expansion.nDeckNodes == nDeckNodes && expansion.frdType == frdType) return &expansion;
  }
  return nullptr;
}

const LineExpansion* lineExpansionOf(int nDeckNodes, int frdType) {
  for (const LineExpansion& expansion : kLineExpansions) {
    if (expansion.nDeckNodes == nDeckNodes && expansion.frdType == frdType) return &expansion;
  }
  return nullptr;
}

}  // namespace odbs::importer
