// SPDX-License-Identifier: BSD-3-Clause
// Decks as texts: a folder of temporary files, and reading what is in them.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "importer/deck/deck_reader.h"
#include "tests/support/temporary_folder.h"

namespace odbs::importer {

using DeckFolder = tests::TemporaryFolder;

class DeckTest : public ::testing::Test {
 protected:
  Deck read(const std::string& text) { return readDeck(files_.write("model.inp", text)); }
  // The message of a deck that is refused, without the folder; empty when it is accepted.
  std::string refusal(const std::string& text) {
    try {
      read(text);
    } catch (const DeckError& e) {
      const std::string message = e.what();
      const std::size_t at = message.find("model.inp");
      return at == std::string::npos ? message : message.substr(at);
    }
    return {};
  }

  DeckFolder files_;
};

// Eight nodes of a unit cube and one element, on eleven lines.
const std::string kCube =
    "*NODE, NSET=NALL\n1,0,0,0\n2,1,0,0\n3,1,1,0\n4,0,1,0\n5,0,0,1\n6,1,0,1\n7,1,1,1\n8,0,1,1\n"
    "*ELEMENT, TYPE=C3D8, ELSET=EALL\n1,1,2,3,4,5,6,7,8\n";

// Labels of a set of the deck's first part.
inline std::vector<std::int32_t> labelsIn(const SetTable& sets, const std::string& name) {
  const Set* set = sets.find(name);
  return set && !set->members.empty() ? set->members[0].labels : std::vector<std::int32_t>();
}
inline std::vector<std::int32_t> nodeSet(const Deck& deck, const std::string& name) {
  return labelsIn(deck.parts.front().content.nodeSets, name);
}
inline std::vector<std::int32_t> elementSet(const Deck& deck, const std::string& name) {
  return labelsIn(deck.parts.front().content.elementSets, name);
}

}  // namespace odbs::importer
