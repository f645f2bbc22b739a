// SPDX-License-Identifier: BSD-3-Clause
// Reads an input deck into memory.
#pragma once

#include <functional>
#include <string>

#include "importer/deck/deck.h"

namespace odbs::importer {

// Reads the deck at `path` with all that it includes, resolves every name and label in it and
// checks that elements have nodes and sections have elements. `progress`, when given, is called
// now and then with the part that is read, 0 to 1.
//
// A node that is defined twice keeps its last definition; an element that is defined twice is an
// error. Labels in sets that name nothing are left out and counted. Keywords without a place in a
// database are counted in Deck::ignoredKeywords.
//
// Throws DeckError ("file:line: reason") for a broken deck; std::bad_alloc may pass.
Deck readDeck(const std::string& path, const std::function<void(double)>& progress = {});

}  // namespace odbs::importer
