// SPDX-License-Identifier: BSD-3-Clause
// Decoders for elements without a name length, sections, materials and surfaces.
#include "client/records/model_records.h"

#include "base/text.h"
#include "client/records/cursor.h"

namespace odbs::client {

namespace {

constexpr std::size_t kNameField = 8;      // bytes of a padded type name
constexpr std::size_t kAfterName = 4 + 4;  // label, section number

bool isNameCharacter(unsigned char c) {
  return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

bool areNameCharacters(const unsigned char* bytes, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    if (!isNameCharacter(bytes[i])) return false;
  }
  return true;
}

bool holdsBlank(const unsigned char* bytes, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    if (bytes[i] == ' ') return true;
  }
  return false;
}

// The bytes that the type name takes; the header describes the rule. `size` is at least 16.
std::size_t nameLength(const unsigned char* body, std::size_t size) {
  if (holdsBlank(body, kNameField)) return kNameField;
  const std::size_t shortest = kNameField + size % 4;
  for (std::size_t n = shortest; n + kAfterName <= size; n += 4) {
    if (!areNameCharacters(body, n)) break;
    if (!areNameCharacters(body + n, 4)) return n;
  }
  return shortest;
}

FloatTable readTable(Cursor& cursor) {
  FloatTable table(cursor.count(4));
  for (std::vector<float>& row : table) {
    row.resize(cursor.count(4));
    for (float& value : row) value = cursor.f32();
  }
  return table;
}

template <std::size_t n>
std::array<float, n> readReals(Cursor& cursor) {
  std::array<float, n> values;
  for (float& value : values) value = cursor.f32();
  return values;
}

void readConnector(Cursor& cursor, Section& section) {
  // Without an orientation there is one empty text, so that two integers are left.
  section.hasOrientation = cursor.left() > 8;
  section.region = cursor.text();
  if (!section.hasOrientation) {
    if (!section.region.empty()) cursor.fail("a connector orientation cut short");
    return;
  }
  section.csys1 = cursor.text();
  section.csys2 = cursor.text();
}

void readLayers(Cursor& cursor, Section& section, std::int32_t nLayers) {
  constexpr std::int32_t kLeastBytes = 24;
  if (nLayers > static_cast<std::int32_t>(cursor.left()) / kLeastBytes) {
    cursor.fail(std::to_string(nLayers) + " layers in " + std::to_string(cursor.left()) + " bytes");
  }
  section.layers.resize(static_cast<std::size_t>(nLayers));
  for (Layer& layer : section.layers) {
    layer.layerNumber = cursor.u32();
    layer.nSectionPoints = cursor.u32();
    layer.material = cursor.text();
    layer.unused = cursor.text();
    layer.thickness = cursor.f32();
    layer.angle = cursor.f32();
  }
}

void expectZero(Cursor& cursor) {
  if (cursor.u32() != 0) cursor.fail("the closing integer is not 0");
}

void readFailures(Cursor& cursor, Elastic& elastic) {
  for (std::int32_t kind = cursor.i32(); kind != -1; kind = cursor.i32()) {
    if (kind == 0) {
      elastic.failStrain = readReals<5>(cursor);
    } else if (kind == 1) {
      elastic.failStress = readReals<7>(cursor);
    } else {
      cursor.fail("a failure entry of kind " + std::to_string(kind));
    }
  }
}

}  // namespace

const char* sectionKindName(SectionKind kind) {
  switch (kind) {
    case SectionKind::kLayered:
      return "composite";
    case SectionKind::kOther:
      return "other";
    case SectionKind::kConnector:
      return "connector";
    case SectionKind::kPoint:
      return "point";
    case SectionKind::kHomogeneousShell:
      return "homogeneous shell";
    case SectionKind::kHomogeneousSolid:
      return "homogeneous solid";
    case SectionKind::kTruss:
      return "truss";
    case SectionKind::kPeg:
      return "generalised plane strain";
    case SectionKind::kMembrane:
      return "membrane";
    case SectionKind::kGasket:
      return "gasket";
    case SectionKind::kCohesive:
      return "cohesive";
  }
  return "other";
}

std::vector<std::optional<Layer>> ownLayers(const Section& section) {
  const std::vector<Layer>& entries = section.layers;
  std::vector<std::optional<Layer>> own(entries.size());
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (i == 0 && entries.size() > 1) continue;
    own[i] = entries[i == 0 ? 0 : i - 1];
    own[i]->layerNumber = entries[i].layerNumber;
    own[i]->nSectionPoints = entries[i].nSectionPoints;
  }
  return own;
}

NodeView decodeNode(const Record& record) {
  Cursor cursor(record, "node record");
  NodeView node;
  node.label = cursor.i32();
  if (cursor.left() == 0 || cursor.left() % 4 != 0) {
    cursor.fail(std::to_string(cursor.left()) + " bytes of coordinates");
  }
  node.nCoordinates = cursor.left() / 4;
  node.coordinates = record.body + 4;
  return node;
}

ElementView decodeElement(const Record& record) {
  Cursor cursor(record, "element record");
  if (record.size < kNameField + kAfterName) cursor.fail("too short");
  const std::size_t nName = nameLength(record.body, record.size);
  ElementView element;
  element.type = {reinterpret_cast<const char*>(cursor.bytes(nName, "a type name")), nName};
  while (!element.type.empty() && element.type.back() == ' ') element.type.remove_suffix(1);
  element.label = cursor.i32();
  element.sectionNumber = cursor.i32();
  if (startsWith(element.type, "CONN3D2")) {
    element.nNodes = cursor.count(8);
    element.nodes = cursor.bytes(4 * std::size_t{element.nNodes}, "node labels");
    for (std::uint32_t i = 0; i < element.nNodes; ++i) expectZero(cursor);
    cursor.expectEnd();
  } else {
    if (cursor.left() % 4 != 0) cursor.fail("the node labels end in the middle of one");
    element.nNodes = cursor.left() / 4;
    element.nodes = cursor.bytes(cursor.left(), "node labels");
  }
  if (element.nNodes == 0) cursor.fail("no nodes");
  return element;
}

Section decodeSection(const Record& record) {
  Cursor cursor(record, "section record");
  Section section;
  section.number = cursor.i32();
  section.name = cursor.text();
  const std::int32_t code = cursor.i32();
  if (code >= 0) {
    section.kind = code == 0 ? SectionKind::kOther : SectionKind::kLayered;
    readLayers(cursor, section, code);
    cursor.expectEnd();
    return section;
  }
  if (code < -11 || code > -3) cursor.fail("the kind " + std::to_string(code));
  section.kind = static_cast<SectionKind>(code);
  if (section.kind == SectionKind::kConnector) {
    readConnector(cursor, section);
  } else if (section.kind == SectionKind::kPoint) {
    section.mass = cursor.f32();
  } else {
    if (section.kind == SectionKind::kHomogeneousShell) section.thickness = cursor.f32();
    section.material = cursor.text();
  }
  expectZero(cursor);
  cursor.expectEnd();
  return section;
}

Material decodeMaterial(const Record& record) {
  Cursor cursor(record, "material record");
  Material material;
  material.name = cursor.text();
  material.density = cursor.f32();
  const std::string_view type = cursor.text();
  // An empty type ends the elastic part, unless more than the acoustic flag is left: an elastic
  // behaviour whose type is the empty text.
  if (!type.empty() || cursor.left() > 4) {
    Elastic& elastic = material.elastic.emplace();
    elastic.type = type;
    elastic.values = readReals<6>(cursor);
    readFailures(cursor, elastic);
  }
  const std::uint32_t acoustic = cursor.u32();
  if (acoustic > 1) cursor.fail("the acoustic flag " + std::to_string(acoustic));
  material.isAcoustic = acoustic == 1;
  cursor.expectEnd();
  return material;
}

AnalyticSurface decodeAnalyticSurface(const Record& record) {
  Cursor cursor(record, "analytic surface record");
  AnalyticSurface surface;
  surface.name = cursor.text();
  surface.type = cursor.text();
  surface.filletRadius = cursor.f32();
  surface.localCoordinates = readTable(cursor);
  surface.segments.resize(cursor.count(8));
  for (AnalyticSurface::Segment& segment : surface.segments) {
    segment.type = cursor.text();
    segment.data = readTable(cursor);
  }
  cursor.expectEnd();
  return surface;
}

RigidBody decodeRigidBody(const Record& record) {
  Cursor cursor(record, "rigid body record");
  RigidBody body;
  body.referenceNode = cursor.i32();
  body.surface = cursor.text();
  cursor.expectEnd();
  return body;
}

std::string_view decodeAnnotation(const Record& record) {
  Cursor cursor(record, "annotation record");
  const std::string_view line = cursor.text();
  cursor.expectEnd();
  return line;
}

}  // namespace odbs::client
