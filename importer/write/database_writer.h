// SPDX-License-Identifier: BSD-3-Clause
// Puts a deck into a database.
#pragma once

#include <odb_API.h>

#include <functional>
#include <string>
#include <vector>

#include "importer/deck/deck.h"

namespace odbs::importer {

// What was written, for the closing line.
struct WriteSummary {
  std::int64_t nInstances = 0;
  std::int64_t nNodes = 0, nElements = 0;  // of all instances and the assembly
  std::int64_t nSets = 0, nSurfaces = 0;   // of parts, instances and the assembly
  std::int64_t nSections = 0, nMaterials = 0, nSteps = 0;
  std::vector<std::string> warnings;  // one line each
};

// Fills `odb`, which must be new and empty, with the model of `deck` and its steps without frames.
// Nothing is saved.
//
// A flat deck becomes part PART-1 with instance PART-1-1. An instance with its own mesh gets a
// part for itself: the part that the deck names, or PART_INSTANCE when several instances share it.
// A section goes by "Section-" and the name of its element set (connectors: the name alone); a
// section of another part with the same set name and other properties has the part's name between.
//
// Throws DeckError where the deck cannot be expressed, and what the API throws.
WriteSummary writeModel(const Deck& deck, odb_Odb& odb);

}  // namespace odbs::importer
