// SPDX-License-Identifier: BSD-3-Clause
// How the solver turns elements that are no solids into solids: the nodes of those that stand for a
// node of the deck's element.
//
// Source: CalculiX CrunchiX User's Manual, chapter on element types.
#pragma once

namespace odbs::importer {

constexpr int kMaxNodes = 8;  // of an element that is expanded

// Nodes of a solid (positions from 0) that stand for the nodes of the element it was made from,
// in the order of that element; -1: none. The middle ones lie between bottom and top.
struct Expansion {
  int nDeckNodes;
  int frdType;
  int bottom[kMaxNodes], middle[kMaxNodes], top[kMaxNodes];
};

// Lines become solids whose cross-sections stand for their nodes, the first four of each section
// with their mean.
struct LineExpansion {
  int nDeckNodes;
  int frdType;
  int sections[3][kMaxNodes];  // -1: no more
};

// The expansion of an element with so many nodes to a solid of that type of the result file; null
// when there is none.
const Expansion* expansionOf(int nDeckNodes, int frdType);
const LineExpansion* lineExpansionOf(int nDeckNodes, int frdType);

}  // namespace odbs::importer
