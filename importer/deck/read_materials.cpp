// SPDX-License-Identifier: BSD-3-Clause
// *MATERIAL and the behaviours that a database carries. Other behaviours are ignored keywords.
#include <algorithm>

#include "base/text.h"
#include "importer/deck/deck_parser.h"

namespace odbs::importer {

namespace {

struct ElasticKind {
  std::string_view deckName;  // without blanks
  std::string_view name;      // as the database spells it
  std::size_t nConstants;
};

constexpr ElasticKind kElasticKinds[] = {
    {"ISOTROPIC", "ISOTROPIC", 2},
    {"ORTHOTROPIC", "ORTHOTROPIC", 9},
    {"ANISOTROPIC", "ANISOTROPIC", 21},
    {"ENGINEERINGCONSTANTS", "ENGINEERING_CONSTANTS", 9},
    {"LAMINA", "LAMINA", 6},
    {"TRACTION", "TRACTION", 3},
    {"COUPLEDTRACTION", "COUPLED_TRACTION", 6},
    {"SHORTFIBER", "SHORT_FIBER", 21},
    {"SHEAR", "SHEAR", 1},
    {"BILAMINA", "BILAMINA", 12},
};

constexpr std::size_t kMaxRow = 64;
constexpr std::size_t kPerLine = 8;  // numbers on a data line; longer rows go on on the next

}  // namespace

void DeckParser::readMaterial(const Keyword& keyword) {
  const std::string& name = required(keyword, "NAME");
  const auto same = std::find_if(deck_.materials.begin(), deck_.materials.end(),
                                 [&](const Material& m) { return m.name == name; });
  if (same != deck_.materials.end()) {
    warn(keyword.place, "material " + name + " is defined twice; the last definition stands");
    *same = Material();
    same->name = name;
    material_ = static_cast<std::int32_t>(same - deck_.materials.begin());
    return;
  }
  material_ = static_cast<std::int32_t>(deck_.materials.size());
  deck_.materials.emplace_back();
  deck_.materials.back().name = name;
}

Material& DeckParser::material(const Keyword& keyword) {
  if (material_ < 0) lines_.fail(keyword.place, keyword.text + " without a *MATERIAL before it");
  return deck_.materials[static_cast<std::size_t>(material_)];
}

// Rows of `nConstants` numbers, followed by a temperature and field variables where the behaviour
// depends on them. A row takes as many lines as its constants and the temperature need.
void DeckParser::readTable(Table& table, std::size_t nConstants) {
  table = Table();
  table.present = true;
  const std::size_t nLines = nConstants < kPerLine ? 1 : nConstants / kPerLine + 1;
  std::string_view line;
  std::size_t widest = nConstants;
  for (std::size_t n = 0; lines_.dataLine(line); ++n) {
    const auto values = realsOf(line, kMaxRow);
    // A person may have put all constants of a long row on one line.
    const bool complete = nLines > 1 && n > 0 && table.rows.back().size() >= nConstants;
    if (n == nLines || n == 0 || complete) {
      table.rows.emplace_back();
      n = 0;
    }
    auto& row = table.rows.back();
    row.resize(n * kPerLine, 0.0);
    row.insert(row.end(), values.begin(), values.end());
    widest = std::max(widest, row.size());
  }
  table.temperatureDependent = widest > nConstants;
  for (auto& row : table.rows) row.resize(widest, 0.0);
}

void DeckParser::readDensity(const Keyword& keyword) {
  readTable(material(keyword).density, 1);
}

void DeckParser::readElastic(const Keyword& keyword) {
  Material& into = material(keyword);
  const std::string type = squeezed(keyword.value("TYPE"));
  const ElasticKind* kind = type.empty() ? &kElasticKinds[0] : nullptr;
  for (const ElasticKind& candidate : kElasticKinds) {
    // Solvers accept abbreviations.
    if (!kind && type.size() >= 3 && startsWith(candidate.deckName, type)) kind = &candidate;
  }
  if (!kind) lines_.fail(keyword.place, "unknown type of elasticity " + type.substr(0, 40));
  into.elasticType = kind->name;
  if (equalNoCase(keyword.value("MODULI"), "INSTANTANEOUS")) into.moduli = "INSTANTANEOUS";
  readTable(into.elastic, kind->nConstants);
}

void DeckParser::readFailStress(const Keyword& keyword) {
  readTable(material(keyword).failStress, 7);
}

void DeckParser::readFailStrain(const Keyword& keyword) {
  readTable(material(keyword).failStrain, 5);
}

// The bulk modulus is the behaviour's table; drag tables have no place in a database.
void DeckParser::readAcousticMedium(const Keyword& keyword) {
  Material& into = material(keyword);
  into.acousticMedium.present = true;
  if (keyword.parameters.empty() || keyword.has("BULKMODULUS")) {
    readTable(into.acousticMedium, 1);
  }
}

void DeckParser::readNoCompression(const Keyword& keyword) {
  material(keyword).noCompression = true;
}

void DeckParser::readNoTension(const Keyword& keyword) {
  material(keyword).noTension = true;
}

}  // namespace odbs::importer
