// SPDX-License-Identifier: BSD-3-Clause
// Section keywords, and those that say how values are printed.
#include <algorithm>
#include <array>

#include "base/text.h"
#include "importer/deck/deck_parser.h"

namespace odbs::importer {

namespace {

constexpr std::size_t kMaxLayers = 10000;

constexpr std::string_view kTranslational[] = {
    "AXIAL",         "CARTESIAN",   "JOIN", "LINK",         "PROJECTION CARTESIAN",
    "RADIAL-THRUST", "SLIDE-PLANE", "SLOT", "ACCELEROMETER"};
constexpr std::string_view kRotational[] = {"ALIGN",
                                            "CARDAN",
                                            "CONSTANT VELOCITY",
                                            "EULER",
                                            "FLEXION-TORSION",
                                            "FLOW-CONVERTER",
                                            "PROJECTION FLEXION-TORSION",
                                            "REVOLUTE",
                                            "ROTATION",
                                            "ROTATION-ACCELEROMETER",
                                            "UNIVERSAL"};

template <std::size_t n>
bool isOneOf(const std::string& text, const std::string_view (&list)[n]) {
  return std::find(std::begin(list), std::end(list), text) != std::end(list);
}

}  // namespace

Section DeckParser::startSection(const Keyword& keyword, SectionKind kind,
                                 const std::string& word) {
  Section section;
  section.kind = kind;
  section.word = word;
  section.place = keyword.place;
  section.abbreviated = keyword.abbreviated;
  section.elset = required(keyword, "ELSET");
  section.material = keyword.value("MATERIAL");
  section.orientation = keyword.value("ORIENTATION");
  section.profile = keyword.value("SECTION");
  section.gauss = keyword.value("SECTIONINTEGRATION") == "GAUSS";
  section.symmetric = keyword.has("SYMMETRIC");
  section.nPoints = section.gauss ? 3 : 5;
  return section;
}

// Layers from the bottom up: thickness, section points, material, orientation, name of the ply.
void DeckParser::readLayers(Section& section) {
  const bool solid = section.kind == SectionKind::compositeSolid;
  const int usualPoints = solid ? 1 : section.gauss ? 2 : 3;
  for (const auto& fields : dataFields()) {
    const auto field = [&](std::size_t i) { return i < fields.size() ? fields[i] : std::string(); };
    Layer layer;
    layer.thickness = realOf(field(0));
    layer.nPoints = pointsOf(field(1), usualPoints);
    layer.material = nameOf(field(2));
    if (layer.material.empty()) layer.material = section.material;
    if (const auto angle = numberOf(field(3))) {
      layer.angle = *angle;
    } else {
      layer.orientation = nameOf(field(3));
    }
    layer.plyName = nameOf(field(4));
    section.layers.push_back(std::move(layer));
    if (section.layers.size() > kMaxLayers) fail("a section with too many layers");
  }
  if (section.layers.empty()) lines_.fail(section.place, "a composite section without layers");
}

void DeckParser::readSolidSection(const Keyword& keyword) {
  const bool composite = keyword.has("COMPOSITE");
  Section section =
      startSection(keyword, composite ? SectionKind::compositeSolid : SectionKind::solid, "solid");
  if (composite) {
    readLayers(section);
  } else {
    std::string_view line;
    if (lines_.dataLine(line)) {
      const auto values = realsOf(line, 1);
      if (!values.empty()) section.thickness = values[0];
    }
  }
  scope().sections.push_back(std::move(section));
}

void DeckParser::readShellSection(const Keyword& keyword) {
  const bool composite = keyword.has("COMPOSITE");
  Section section =
      startSection(keyword, composite ? SectionKind::compositeShell : SectionKind::shell, "shell");
  if (composite) {
    readLayers(section);
  } else {
    std::string_view line;
    if (lines_.dataLine(line)) {
      Fields fields(line);
      std::string_view field;
      if (fields.next(field)) section.thickness = realOf(field);
      if (fields.next(field)) section.nPoints = pointsOf(field, section.nPoints);
    }
  }
  scope().sections.push_back(std::move(section));
}

// With a material it is a homogeneous shell; otherwise its stiffness is given by numbers.
void DeckParser::readShellGeneralSection(const Keyword& keyword) {
  const bool composite = keyword.has("COMPOSITE");
  const bool homogeneous = keyword.has("MATERIAL");
  Section section = startSection(keyword,
                                 composite     ? SectionKind::compositeShell
                                 : homogeneous ? SectionKind::shell
                                               : SectionKind::generalShell,
                                 "shell");
  if (composite) {
    readLayers(section);
  } else {
    std::string_view line;
    if (homogeneous && lines_.dataLine(line)) {
      const auto values = realsOf(line, 1);
      if (!values.empty()) section.thickness = values[0];
    }
    section.nPoints = 3;
  }
  scope().sections.push_back(std::move(section));
}

void DeckParser::readMembraneSection(const Keyword& keyword) {
  Section section = startSection(keyword, SectionKind::membrane, "membrane");
  std::string_view line;
  if (lines_.dataLine(line)) {
    const auto values = realsOf(line, 1);
    if (!values.empty()) section.thickness = values[0];
  }
  scope().sections.push_back(std::move(section));
}

void DeckParser::readBeamSection(const Keyword& keyword) {
  Section section = startSection(keyword, SectionKind::beam, "beam");
  std::string_view line;
  // The dimensions come first, the axis second.
  for (std::vector<double>* const list : {&section.dimensions, &section.beamAxis}) {
    if (!lines_.dataLine(line)) break;
    Fields fields(line);
    for (std::string_view field; fields.next(field);) {
      const auto value = numberOf(field);
      list->push_back(value ? *value : 0.0);
    }
  }
  if (!section.beamAxis.empty()) {
    // Profiles with more lines of dimensions have something else there.
    if (section.beamAxis.size() > 3) section.beamAxis.clear();
    if (!section.beamAxis.empty()) section.beamAxis.resize(3, 0.0);
  }
  scope().sections.push_back(std::move(section));
}

void DeckParser::readGasketSection(const Keyword& keyword) {
  Section section = startSection(keyword, SectionKind::gasket, "gasket");
  if (section.material.empty()) section.material = keyword.value("BEHAVIOR");
  scope().sections.push_back(std::move(section));
}

void DeckParser::readCohesiveSection(const Keyword& keyword) {
  scope().sections.push_back(startSection(keyword, SectionKind::cohesive, "cohesive"));
}

// First line: an assembled connection type, or a translational and a rotational one; second line:
// orientations at the first and the second node.
void DeckParser::readConnectorSection(const Keyword& keyword) {
  Section section = startSection(keyword, SectionKind::connector, "connector");
  const auto rows = dataFields();
  ConnectorData& connector = section.connector;
  if (!rows.empty()) {
    for (const std::string& field : rows[0]) {
      const std::string type = upperCase(field);
      if (type.empty()) continue;
      if (isOneOf(type, kTranslational)) {
        connector.translationalType = type;
      } else if (isOneOf(type, kRotational)) {
        connector.rotationalType = type;
      } else {
        connector.assembledType = type;
      }
    }
  }
  if (rows.size() > 1) {
    if (!rows[1].empty()) connector.orientation1 = nameOf(rows[1][0]);
    if (rows[1].size() > 1) connector.orientation2 = nameOf(rows[1][1]);
  }
  scope().sections.push_back(std::move(section));
}

void DeckParser::readMass(const Keyword& keyword) {
  Section section = startSection(keyword, SectionKind::point, "point");
  std::string_view line;
  if (lines_.dataLine(line)) {
    const auto values = realsOf(line, 1);
    if (!values.empty()) section.mass = values[0];
  }
  scope().sections.push_back(std::move(section));
}

void DeckParser::readRotaryInertia(const Keyword& keyword) {
  scope().sections.push_back(startSection(keyword, SectionKind::point, "point"));
}

// Springs, dashpots and the like: the elements get a category, but no section.
void DeckParser::readOtherSection(const Keyword& keyword) {
  if (!keyword.has("ELSET")) return;
  std::string word = keyword.text.substr(1);
  word = word.substr(0, word.find(' '));
  std::transform(word.begin(), word.end(), word.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  scope().sections.push_back(startSection(keyword, SectionKind::other, word));
}

// The systems themselves have no place; which nodes have one tells how printed values are meant.
void DeckParser::readTransform(const Keyword& keyword) {
  ignore(keyword);
  if (!keyword.value("NSET").empty()) scope().transformedSets.push_back(keyword.value("NSET"));
}

void DeckParser::readNodePrint(const Keyword& keyword) {
  ignore(keyword);
  if (upperCase(keyword.value("GLOBAL")) != "YES") deck_.printsLocally = true;
}

// Requests have no place either, but tell what the blocks of a result file hold.
void DeckParser::readElementFile(const Keyword& keyword) {
  ++deck_.ignoredKeywords[keyword.text];
  if (inStep_) deck_.steps.back().sectionForces = keyword.has("SECTIONFORCES");
}

void DeckParser::readCyclicModes(const Keyword& keyword) {
  ++deck_.ignoredKeywords[keyword.text];
  if (!inStep_) return;
  const auto last = parseInt(keyword.value("NMAX"));
  deck_.steps.back().lastDiameter = last ? static_cast<int>(*last) : 0;
}

}  // namespace odbs::importer
