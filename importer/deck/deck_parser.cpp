// SPDX-License-Identifier: BSD-3-Clause
// The keyword table, the walk over the deck, and the helpers that all keywords share.
#include "importer/deck/deck_parser.h"

#include <cmath>
#include <limits>

#include "base/printable.h"
#include "base/text.h"
#include "importer/deck/deck_reader.h"

namespace odbs::importer {

namespace {

constexpr std::int64_t kMaxGenerated = 20'000'000;  // nodes and elements of *NGEN, *ELGEN, ...
constexpr std::size_t kMaxKeywordKinds = 2000;      // different ignored keywords that are listed
constexpr std::size_t kMaxWarnings = 20;

}  // namespace

// Names are without blanks: decks write both "*RIGID BODY" and "*RIGIDBODY".
const DeckParser::KeywordRow DeckParser::kKeywords[] = {
    {"HEADING", &DeckParser::readHeading},
    {"PART", &DeckParser::readPart},
    {"ENDPART", &DeckParser::readEndPart},
    {"ASSEMBLY", &DeckParser::readAssembly},
    {"ENDASSEMBLY", &DeckParser::readEndAssembly},
    {"INSTANCE", &DeckParser::readInstance},
    {"ENDINSTANCE", &DeckParser::readEndInstance},
    {"NODE", &DeckParser::readNode},
    {"ELEMENT", &DeckParser::readElement},
    {"SYSTEM", &DeckParser::readSystem},
    {"PARAMETER", &DeckParser::readParameter},
    {"NMAP", &DeckParser::readNmap},
    {"IMPERFECTION", &DeckParser::readImperfection},
    {"NGEN", &DeckParser::readNgen},
    {"NFILL", &DeckParser::readNfill},
    {"NCOPY", &DeckParser::readNcopy},
    {"ELGEN", &DeckParser::readElgen},
    {"ELCOPY", &DeckParser::readElcopy},
    {"NSET", &DeckParser::readNset},
    {"ELSET", &DeckParser::readElset},
    {"SURFACE", &DeckParser::readSurface},
    {"SOLIDSECTION", &DeckParser::readSolidSection},
    {"SHELLSECTION", &DeckParser::readShellSection},
    {"SHELLGENERALSECTION", &DeckParser::readShellGeneralSection},
    {"MEMBRANESECTION", &DeckParser::readMembraneSection},
    {"BEAMSECTION", &DeckParser::readBeamSection},
    {"BEAMGENERALSECTION", &DeckParser::readBeamSection},
    {"FRAMESECTION", &DeckParser::readBeamSection},
    {"GASKETSECTION", &DeckParser::readGasketSection},
    {"COHESIVESECTION", &DeckParser::readCohesiveSection},
    {"CONNECTORSECTION", &DeckParser::readConnectorSection},
    {"MASS", &DeckParser::readMass},
    {"ROTARYINERTIA", &DeckParser::readRotaryInertia},
    {"SPRING", &DeckParser::readOtherSection},
    {"DASHPOT", &DeckParser::readOtherSection},
    {"GAP", &DeckParser::readOtherSection},
    {"FLUIDSECTION", &DeckParser::readOtherSection},
    {"SURFACESECTION", &DeckParser::readOtherSection},
    {"ORIENTATION", &DeckParser::readOrientation},
    {"DISTRIBUTION", &DeckParser::readDistribution},
    {"DISTRIBUTIONTABLE", &DeckParser::readDistributionTable},
    {"TRANSFORM", &DeckParser::readTransform},
    {"NODEPRINT", &DeckParser::readNodePrint},
    {"ELFILE", &DeckParser::readElementFile},
    {"ELOUTPUT", &DeckParser::readElementFile},
    {"ELEMENTOUTPUT", &DeckParser::readElementFile},
    {"SELECTCYCLICSYMMETRYMODES", &DeckParser::readCyclicModes},
    {"MATERIAL", &DeckParser::readMaterial},
    {"GASKETBEHAVIOR", &DeckParser::readMaterial},
    {"DENSITY", &DeckParser::readDensity},
    {"ELASTIC", &DeckParser::readElastic},
    {"FAILSTRESS", &DeckParser::readFailStress},
    {"FAILSTRAIN", &DeckParser::readFailStrain},
    {"ACOUSTICMEDIUM", &DeckParser::readAcousticMedium},
    {"NOCOMPRESSION", &DeckParser::readNoCompression},
    {"NOTENSION", &DeckParser::readNoTension},
    {"RIGIDBODY", &DeckParser::readRigidBody},
    {"TIE", &DeckParser::readTie},
    {"COUPLING", &DeckParser::readCoupling},
    {"KINEMATIC", &DeckParser::readCouplingKind},
    {"DISTRIBUTING", &DeckParser::readCouplingKind},
    {"KINEMATICCOUPLING", &DeckParser::readKinematicCoupling},
    {"MPC", &DeckParser::readMpc},
    {"SHELLTOSOLIDCOUPLING", &DeckParser::readShellToSolidCoupling},
    {"DISPLAYBODY", &DeckParser::readDisplayBody},
    {"SURFACEINTERACTION", &DeckParser::readSurfaceInteraction},
    {"FRICTION", &DeckParser::readFriction},
    {"CONNECTORFRICTION", &DeckParser::readConnectorFriction},
    {"CONTACTPAIR", &DeckParser::readContactPair},
    {"AMPLITUDE", &DeckParser::readAmplitude},
    {"STEP", &DeckParser::readStep},
    {"ENDSTEP", &DeckParser::readEndStep},
    {"STATIC", &DeckParser::readProcedure},
    {"VISCO", &DeckParser::readProcedure},
    {"DYNAMIC", &DeckParser::readProcedure},
    {"FREQUENCY", &DeckParser::readProcedure},
    {"COMPLEXFREQUENCY", &DeckParser::readProcedure},
    {"BUCKLE", &DeckParser::readProcedure},
    {"MODALDYNAMIC", &DeckParser::readProcedure},
    {"STEADYSTATEDYNAMICS", &DeckParser::readProcedure},
    {"RANDOMRESPONSE", &DeckParser::readProcedure},
    {"RESPONSESPECTRUM", &DeckParser::readProcedure},
    {"HEATTRANSFER", &DeckParser::readProcedure},
    {"COUPLEDTEMPERATURE-DISPLACEMENT", &DeckParser::readProcedure},
    {"UNCOUPLEDTEMPERATURE-DISPLACEMENT", &DeckParser::readProcedure},
    {"COUPLEDTHERMAL-ELECTRICAL", &DeckParser::readProcedure},
    {"DYNAMICTEMPERATURE-DISPLACEMENT", &DeckParser::readProcedure},
    {"ELECTROMAGNETICS", &DeckParser::readProcedure},
    {"GEOSTATIC", &DeckParser::readProcedure},
    {"SOILS", &DeckParser::readProcedure},
    {"MASSDIFFUSION", &DeckParser::readProcedure},
    {"SUBSTRUCTUREGENERATE", &DeckParser::readProcedure},
    {"MATRIXGENERATE", &DeckParser::readProcedure},
    {"STEADYSTATETRANSPORT", &DeckParser::readProcedure},
    {"ANNEAL", &DeckParser::readProcedure},
    {"CFD", &DeckParser::readProcedure},
    {"GREEN", &DeckParser::readProcedure},
    {"SENSITIVITY", &DeckParser::readProcedure},
    {"CRACKPROPAGATION", &DeckParser::readProcedure},
    {"NOANALYSIS", &DeckParser::readProcedure},
};

DeckParser::DeckParser(const std::string& path, std::function<void(double)> progress)
    : lines_(path), progress_(std::move(progress)) {
  deck_.path = path;
}

Deck DeckParser::parse() {
  std::unordered_map<std::string_view, Handler> handlers;
  for (const KeywordRow& row : kKeywords) handlers.emplace(row.name, row.handler);
  Keyword keyword;
  bool any = false;
  while (lines_.keyword(keyword)) {
    any = true;
    checkSpelling(keyword);
    const auto handler = handlers.find(keyword.name);
    if (handler != handlers.end()) {
      (this->*handler->second)(keyword);
    } else {
      ignore(keyword);
    }
    if (progress_) progress_(lines_.progress());
  }
  if (!any) fail("there is no keyword line in this file: this is no input deck");
  finish();
  return std::move(deck_);
}

// An abbreviation of several keywords is read as none of them; so are unknown parameters.
void DeckParser::checkSpelling(const Keyword& keyword) {
  const auto unclear = [&](const std::string& text, const std::string& choices) {
    warn(keyword.place, text + " is left out: it may stand for " + choices);
  };
  if (!keyword.choices.empty()) unclear(keyword.text, keyword.choices);
  if (!hasParameterList(keyword.name)) return;
  for (const Parameter& parameter : keyword.parameters) {
    if (!parameter.spelling.choices.empty()) {
      unclear("parameter " + parameter.name + " of " + keyword.text, parameter.spelling.choices);
    } else if (parameter.spelling.name.empty()) {
      warn(keyword.place,
           "parameter " + parameter.name + " of " + keyword.text + " is unknown and left out");
    }
  }
}

void DeckParser::ignore(const Keyword& keyword) {
  const std::string text = printable(keyword.text);
  if (deck_.ignoredKeywords.size() >= kMaxKeywordKinds && deck_.ignoredKeywords.count(text) == 0) {
    lines_.fail(keyword.place, "too many different unknown keywords: this is no input deck");
  }
  ++deck_.ignoredKeywords[text];
}

Scope& DeckParser::scope() {
  switch (level_) {
    case Level::part:
      return deck_.parts[static_cast<std::size_t>(part_)].content;
    case Level::instance:
      return deck_.instances[static_cast<std::size_t>(instance_)].content;
    case Level::assembly:
      return deck_.assembly;
    case Level::flat:
      break;
  }
  if (flatPart_ < 0) {
    flatPart_ = static_cast<std::int32_t>(deck_.parts.size());
    deck_.parts.emplace_back();
  }
  return deck_.parts[static_cast<std::size_t>(flatPart_)].content;
}

const std::string& DeckParser::required(const Keyword& keyword, std::string_view name) const {
  const Parameter* parameter = keyword.find(name);
  if (!parameter || parameter->value.empty()) {
    lines_.fail(keyword.place, keyword.text + " without the parameter " + std::string(name));
  }
  return parameter->value;
}

std::int64_t DeckParser::integerOf(std::string_view field) const {
  if (const auto whole = parseInt(field)) return *whole;
  // "12." stands in decks that programs wrote.
  const auto real = numberOf(field);
  if (real && std::fabs(*real) < 1e15 && *real == std::floor(*real)) {
    return static_cast<std::int64_t>(*real);
  }
  fail("\"" + std::string(field.substr(0, 40)) + "\" is not a whole number");
}

std::int32_t DeckParser::labelOf(std::string_view field) const {
  const std::int64_t label = integerOf(field);
  if (label < 1 || label > std::numeric_limits<std::int32_t>::max()) {
    fail("label " + std::string(field.substr(0, 40)) + " is not between 1 and 2147483647");
  }
  return static_cast<std::int32_t>(label);
}

double DeckParser::realOf(std::string_view field) const {
  if (field.empty()) return 0;
  const auto real = numberOf(field);
  if (!real || !std::isfinite(*real)) {
    fail("\"" + std::string(field.substr(0, 40)) + "\" is not a number");
  }
  return *real;
}

int DeckParser::pointsOf(std::string_view field, int fallback) const {
  if (trimmed(field).empty()) return fallback;
  const std::int64_t n = integerOf(field);
  if (n < 1 || n > 1000) fail("a section cannot have " + std::to_string(n) + " section points");
  return static_cast<int>(n);
}

std::vector<double> DeckParser::realsOf(std::string_view line, std::size_t limit) const {
  std::vector<double> values;
  Fields fields(line);
  std::string_view field;
  while (values.size() < limit && fields.next(field)) values.push_back(realOf(field));
  return values;
}

std::vector<std::vector<std::string>> DeckParser::dataFields() {
  std::vector<std::vector<std::string>> result;
  std::string_view line;
  while (lines_.dataLine(line)) {
    result.emplace_back();
    Fields fields(line);
    std::string_view field;
    while (fields.next(field)) result.back().emplace_back(field);
  }
  return result;
}

std::int32_t DeckParser::instanceIndex(const std::string& name) const {
  const auto found = instanceIndices_.find(name);
  return found == instanceIndices_.end() ? -1 : found->second;
}

std::int32_t DeckParser::ownerOf(const Keyword& keyword) const {
  const Parameter* parameter = keyword.find("INSTANCE");
  if (!parameter || level_ != Level::assembly) return kOwn;
  const std::int32_t owner = instanceIndex(parameter->value);
  if (owner < 0) lines_.fail(keyword.place, "there is no instance " + parameter->value);
  return owner;
}

Reference DeckParser::referenceOf(std::string_view field, std::int32_t owner) const {
  Reference reference;
  reference.owner = owner;
  bool quoted = false;
  std::size_t point = 0;
  while (point < field.size() && (quoted || field[point] != '.')) {
    if (field[point] == '"') quoted = !quoted;
    ++point;
  }
  if (level_ == Level::assembly && point + 1 < field.size()) {
    const std::string instance = nameOf(field.substr(0, point));
    reference.owner = instanceIndex(instance);
    if (reference.owner < 0) fail("there is no instance " + instance);
    field = trimmed(field.substr(point + 1));
  }
  const char first = field.empty() ? ' ' : field[0];
  const bool number = (first >= '0' && first <= '9') || first == '-' || first == '+';
  if (number && numberOf(field)) {
    reference.label = labelOf(field);
  } else {
    reference.setName = nameOf(field);
  }
  return reference;
}

const Set* DeckParser::findSet(const Reference& reference, bool elements) const {
  const auto in = [&](const Scope& content) {
    return (elements ? content.elementSets : content.nodeSets).find(reference.setName);
  };
  if (reference.owner != kOwn) {
    const Instance& instance = deck_.instances[static_cast<std::size_t>(reference.owner)];
    if (const Set* own = in(instance.content)) return own;
    return in(deck_.parts[instance.part].content);
  }
  const Set* own = in(const_cast<DeckParser*>(this)->scope());
  if (own || level_ != Level::instance) return own;
  return in(deck_.parts[deck_.instances[static_cast<std::size_t>(instance_)].part].content);
}

void DeckParser::countGenerated(std::int64_t n) {
  nGenerated_ += n;
  if (n > kMaxGenerated || nGenerated_ > kMaxGenerated) {
    fail("the deck generates more than " + std::to_string(kMaxGenerated) + " nodes and elements");
  }
}

void DeckParser::warn(Place place, const std::string& text) {
  if (deck_.warnings.size() < kMaxWarnings) {
    deck_.warnings.push_back(printable(lines_.where(place) + ": " + text));
  } else if (deck_.warnings.size() == kMaxWarnings) {
    deck_.warnings.push_back("further warnings are left out");
  }
}

Deck readDeck(const std::string& path, const std::function<void(double)>& progress) {
  return DeckParser(path, progress).parse();
}

Vec3 operator+(const Vec3& a, const Vec3& b) {
  return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
Vec3 operator-(const Vec3& a, const Vec3& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
Vec3 operator*(double s, const Vec3& a) {
  return {s * a[0], s * a[1], s * a[2]};
}
double dot(const Vec3& a, const Vec3& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
Vec3 cross(const Vec3& a, const Vec3& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
double norm(const Vec3& a) {
  return std::sqrt(dot(a, a));
}

Vec3 rotated(const Vec3& point, const Vec3& a, const Vec3& b, double degrees) {
  const double length = norm(b - a);
  if (length == 0) return point;
  const Vec3 axis = (1 / length) * (b - a);
  const Vec3 r = point - a;
  const double angle = degrees * 3.14159265358979323846 / 180;
  const double c = std::cos(angle), s = std::sin(angle);
  // Rodrigues' formula.
  return a + c * r + s * cross(axis, r) + ((1 - c) * dot(axis, r)) * axis;
}

}  // namespace odbs::importer
