// SPDX-License-Identifier: BSD-3-Clause
// What the name of an element type tells: its number of nodes, its space, its family.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace odbs::importer {

enum class Space { unknown, threeD, planar, axisymmetric };

enum class Family {
  solid,      // three-dimensional continua, and gaskets and cohesive elements of their shape
  planar,     // plane and axisymmetric continua: their faces are edges
  shell,      // shells, membranes, surface and rigid elements with two sides
  line,       // beams, pipes, trusses, axisymmetric shells
  connector,  // CONN3D2, springs, dashpots, gaps: two ends
  point,      // masses and the like
  other       // not known here
};

struct DeckElementType {
  int nNodes = 0;  // 0: not known, the deck's continuation lines decide
  Space space = Space::unknown;
  Family family = Family::other;
  bool zeroNodes = false;   // label 0 stands for "no node" (ends of fluid networks)
  bool grounded = false;    // a node left out stands for the ground (connectors)
  bool extraNodes = false;  // a further node may follow: the orientation node of beams
};

// `name` is in upper case. Never fails: an unknown name gives an empty DeckElementType.
DeckElementType elementTypeOf(std::string_view name);

// Corner-node positions (from 0) of a solid's face 1 to 6, at most 4; returns their number, 0 when
// there is no such face. Faces are numbered as decks number them (S1 to S6).
int faceCorners(const DeckElementType& type, int face, int corners[4]);

// The order in which the nodes of an element's mirror image make a valid element: node i is node
// order[i] (from 0) of the element. The image starts with the same node. Empty for types whose
// shape is not known here.
std::vector<std::size_t> mirroredOrder(const DeckElementType& type, std::size_t nNodes);

}  // namespace odbs::importer
