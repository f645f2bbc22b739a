// SPDX-License-Identifier: BSD-3-Clause
// Decks as texts: a folder of temporary files, and reading what is in them.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "importer/deck_reader.h"
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

// Labels of a set of the deck's first part.
inline std::vector<std::int32_t> nodeSet(const Deck& deck, const std::string& name) {
  const Set* set = deck.parts.front().content.nodeSets.find(name);
  return set && !set->members.empty() ? set->members[0].labels : std::vector<std::int32_t>();
}

inline std::vector<std::int32_t> elementSet(const Deck& deck, const std::string& name) {
  const Set* set = deck.parts.front().content.elementSets.find(name);
  return set && !set->members.empty() ? set->members[0].labels : std::vector<std::int32_t>();
}

}  // namespace odbs::importer
