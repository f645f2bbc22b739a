// SPDX-License-Identifier: BSD-3-Clause
// Decks as texts: a folder of temporary files, and reading what is in them.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "importer/deck_reader.h"
#include "port/port.h"

namespace odbs::importer {

// A folder that lives as long as the object.
class DeckFolder {
 public:
  DeckFolder() {
    static int n = 0;
    folder_ =
        std::filesystem::temp_directory_path() /
        ("odbs_importer_" + std::to_string(port::currentProcessId()) + "_" + std::to_string(++n));
    std::filesystem::create_directories(folder_);
  }
  ~DeckFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  DeckFolder(const DeckFolder&) = delete;
  DeckFolder& operator=(const DeckFolder&) = delete;

  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  std::string write(const std::string& name, const std::string& text) const {
    const std::filesystem::path file = folder_ / name;
    std::filesystem::create_directories(file.parent_path());
    // A fresh file: some file systems flush a file that is cut and written again.
    std::filesystem::remove(file);
    std::ofstream(file, std::ios::binary) << text;
    return file.string();
  }

 private:
  std::filesystem::path folder_;
};

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
