// SPDX-License-Identifier: BSD-3-Clause
#include "tests/importer/plain_deck.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

namespace plain {

namespace {

std::string squeeze(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c != ' ' && c != '\t' && c != '\r') result += static_cast<char>(std::toupper(c));
  }
  return result;
}

std::vector<std::string> cells(const std::string& line) {
  std::vector<std::string> result;
  std::stringstream in(line);
  std::string cell;
  while (std::getline(in, cell, ',')) result.push_back(cell);
  return result;
}

double number(std::string text) {
  std::replace(text.begin(), text.end(), 'D', 'E');
  return std::strtod(text.c_str(), nullptr);
}

// How many nodes an element of the test decks has.
int nodeCount(const std::string& type) {
  static const std::map<std::string, int> counts = {
      {"C3D8", 8},   {"C3D8R", 8}, {"C3D8I", 8},   {"C3D20", 20},   {"C3D20R", 20}, {"C3D4", 4},
      {"C3D10", 10}, {"C3D6", 6},  {"C3D15", 15},  {"F3D8", 8},     {"CAX8", 8},    {"CAX8R", 8},
      {"CAX6", 6},   {"CPS8", 8},  {"CPS8R", 8},   {"CPS4", 4},     {"CPE4", 4},    {"CPE8", 8},
      {"CPE8R", 8},  {"S8", 8},    {"S8R", 8},     {"S6", 6},       {"B31", 2},     {"B32", 3},
      {"B32R", 3},   {"T3D2", 2},  {"SPRINGA", 2}, {"DASHPOTA", 2}, {"GAPUNI", 2},  {"DCOUP3D", 1},
      {"D", 3}};
  const auto found = counts.find(type);
  return found == counts.end() ? 0 : found->second;
}

bool isProcedure(const std::string& name) {
  static const std::set<std::string> names = {"*STATIC",
                                              "*VISCO",
                                              "*DYNAMIC",
                                              "*FREQUENCY",
                                              "*COMPLEXFREQUENCY",
                                              "*BUCKLE",
                                              "*MODALDYNAMIC",
                                              "*STEADYSTATEDYNAMICS",
                                              "*HEATTRANSFER",
                                              "*COUPLEDTEMPERATURE-DISPLACEMENT",
                                              "*UNCOUPLEDTEMPERATURE-DISPLACEMENT",
                                              "*ELECTROMAGNETICS",
                                              "*SUBSTRUCTUREGENERATE",
                                              "*CFD",
                                              "*SENSITIVITY",
                                              "*NOANALYSIS"};
  return names.count(name) > 0;
}

struct Card {
  std::string name;
  std::map<std::string, std::string> parameters;
};

Card card(const std::string& line) {
  Card result;
  for (const std::string& cell : cells(squeeze(line))) {
    if (result.name.empty()) {
      result.name = cell;
      continue;
    }
    const std::size_t equal = cell.find('=');
    result.parameters[cell.substr(0, equal)] =
        equal == std::string::npos ? "" : cell.substr(equal + 1);
  }
  return result;
}

class Reader {
 public:
  Deck read(const std::string& text) {
    std::stringstream in(text);
    std::string line;
    while (std::getline(in, line)) {
      const std::string plain = squeeze(line);
      if (plain.empty() || plain.compare(0, 2, "**") == 0) continue;
      if (plain[0] == '*') {
        card_ = card(plain);
        nLines_ = 0;
        begin();
      } else {
        data(plain);
        ++nLines_;
      }
    }
    keepExisting(deck_.nodeSets, deck_.nodes);
    keepExisting(deck_.elementSets, deck_.elements);
    return deck_;
  }

 private:
  template <class Known>
  static void keepExisting(std::map<std::string, std::set<int>>& sets, const Known& known) {
    for (auto& entry : sets) {
      std::set<int> kept;
      for (const int label : entry.second) {
        if (known.count(label) > 0) kept.insert(label);
      }
      entry.second = kept;
    }
  }

  void begin() {
    auto& p = card_.parameters;
    open_ = 0;
    if (card_.name == "*STEP") {
      deck_.procedures.emplace_back();
      step_ = true;
    }
    if (card_.name == "*ENDSTEP") step_ = false;
    if (step_ && deck_.procedures.back().empty() && isProcedure(card_.name)) {
      deck_.procedures.back() = card_.name;
    }
    if (card_.name == "*MATERIAL") material_ = p["NAME"];
    if (card_.name == "*SOLIDSECTION" || card_.name == "*SHELLSECTION") {
      deck_.sectionMaterials[p["ELSET"]] = p["MATERIAL"];
    }
    if (card_.name == "*NSET") deck_.nodeSets[p["NSET"]];
    if (card_.name == "*ELSET") deck_.elementSets[p["ELSET"]];
  }

  void data(const std::string& line) {
    if (card_.name == "*NODE") node(line);
    if (card_.name == "*ELEMENT") element(line);
    if (card_.name == "*NSET") member(line, deck_.nodeSets, card_.parameters["NSET"]);
    if (card_.name == "*ELSET") member(line, deck_.elementSets, card_.parameters["ELSET"]);
    if (nLines_ > 0) return;
    if (card_.name == "*ELASTIC") {
      for (const std::string& cell : cells(line)) deck_.elastic[material_].push_back(number(cell));
    }
    if (card_.name == "*DENSITY") deck_.density[material_] = number(line);
  }

  void node(const std::string& line) {
    const auto fields = cells(line);
    std::array<double, 3> at{};
    for (std::size_t i = 1; i < fields.size() && i < 4; ++i) at[i - 1] = number(fields[i]);
    const int label = std::atoi(fields[0].c_str());
    deck_.nodes[label] = at;
    if (card_.parameters.count("NSET") > 0) deck_.nodeSets[card_.parameters["NSET"]].insert(label);
  }

  void element(const std::string& line) {
    const std::string type = card_.parameters["TYPE"];
    for (const std::string& cell : cells(line)) {
      const int value = std::atoi(cell.c_str());
      if (open_ == 0) {
        label_ = value;
        open_ = nodeCount(type) + 2;
        deck_.elements[label_] = {type, {}};
        if (card_.parameters.count("ELSET") > 0) {
          deck_.elementSets[card_.parameters["ELSET"]].insert(label_);
        }
      } else if (open_ == 1) {
        continue;  // more cells than the type has nodes
      } else if (value != 0) {
        deck_.elements[label_].nodes.push_back(value);
      }
      --open_;
    }
    if (open_ == 1) open_ = 0;
  }

  void member(const std::string& line, std::map<std::string, std::set<int>>& sets,
              const std::string& name) {
    const auto fields = cells(line);
    std::set<int>& set = sets[name];
    if (card_.parameters.count("GENERATE") > 0) {
      const int last = std::atoi(fields[1].c_str());
      const int step = fields.size() > 2 ? std::atoi(fields[2].c_str()) : 1;
      for (int label = std::atoi(fields[0].c_str()); label <= last; label += std::max(step, 1)) {
        set.insert(label);
      }
      return;
    }
    for (const std::string& field : fields) {
      if (field.empty()) continue;
      const bool digits = field.find_first_not_of("0123456789") == std::string::npos;
      if (digits) {
        set.insert(std::atoi(field.c_str()));
      } else {
        const std::set<int> other = sets[field];
        set.insert(other.begin(), other.end());
      }
    }
  }

  Deck deck_;
  Card card_;
  std::string material_;
  int label_ = 0, open_ = 0, nLines_ = 0;
  bool step_ = false;
};

}  // namespace

Deck readDeck(const std::string& text) {
  return Reader().read(text);
}

}  // namespace plain
