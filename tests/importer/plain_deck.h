// SPDX-License-Identifier: BSD-3-Clause
// A second, deliberately plain reading of flat decks, to compare imports with. It shares no code
// with the importer: lines by getline, containers of the standard library, no speed, no errors.
#pragma once

#include <array>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace plain {

struct Element {
  std::string type;
  std::vector<int> nodes;
};

struct Deck {
  std::map<int, std::array<double, 3>> nodes;
  std::map<int, Element> elements;
  std::map<std::string, std::set<int>> nodeSets, elementSets;  // labels that exist
  std::map<std::string, std::string> sectionMaterials;         // solid and shell sections: by set
  std::map<std::string, std::vector<double>> elastic;          // first two constants, by material
  std::map<std::string, double> density;
  std::vector<std::string> procedures;  // of steps, in order, without blanks
};

// Reads a flat deck. `nNodesOf` tells how many nodes a type has.
Deck readDeck(const std::string& text);

}  // namespace plain
