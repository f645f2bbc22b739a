// SPDX-License-Identifier: BSD-3-Clause
// The records of the model stream (commands G and g), as typed values. Nodes and elements, which
// come by the million, are views into the record; the others own their texts.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "client/records/record_stream.h"

namespace odbs::client {

constexpr unsigned char kNodeTag = 0x03;
constexpr unsigned char kElementTag = 0x04;
constexpr unsigned char kMaterialTag = 0x11;
constexpr unsigned char kAnnotationTag = 0x15;
constexpr unsigned char kSectionTag = '$';
constexpr unsigned char kAnalyticSurfaceTag = 'L';
constexpr unsigned char kRigidBodyTag = 'M';

// A node. The record has no count: the number of coordinates follows from its length.
struct NodeView {
  std::int32_t label = 0;
  std::uint32_t nCoordinates = 0;
  const unsigned char* coordinates = nullptr;  // nCoordinates little-endian singles
  float coordinate(std::uint32_t i) const { return getF32(coordinates + 4 * i); }
};

// An element. `type` is the element type's name without the blanks that pad it.
struct ElementView {
  std::string_view type;
  std::int32_t label = 0;
  std::int32_t sectionNumber = 0;        // 0: no section was found
  std::uint32_t nNodes = 0;              // at least 1
  const unsigned char* nodes = nullptr;  // nNodes little-endian node labels
  std::int32_t node(std::uint32_t i) const { return getI32(nodes + 4 * i); }
};

// The section kinds, with the codes that the stream carries for them.
enum class SectionKind : std::int32_t {
  kLayered = 0,  // not a code: a composite shell or solid, the value that came is its layer count
  kOther = -1,   // not a code: 0 came; a beam or another kind, or a composite without any layer
  kConnector = -3,
  kPoint = -4,
  kHomogeneousShell = -5,
  kHomogeneousSolid = -6,
  kTruss = -7,
  kPeg = -8,
  kMembrane = -9,
  kGasket = -10,
  kCohesive = -11,
};

// A phrase for a section kind: "homogeneous solid", "composite", ...
const char* sectionKindName(SectionKind kind);

// One run of section points of a composite. Material, thickness and angle of every entry but the
// last are those of the layer that begins the NEXT run; the stream's contract has it so, and this
// library hands them on as they came.
struct Layer {
  std::uint32_t layerNumber = 0;     // from 1
  std::uint32_t nSectionPoints = 0;  // in the run
  std::string material;
  std::string unused;  // always empty today
  float thickness = 0;
  float angle = 0;  // degrees; 0 when given by a named orientation
};

struct Section {
  std::int32_t number = 0;  // what element records refer to
  std::string name;         // without a leading "Section-"
  std::string instance;     // whose group it came in; empty in a model of one instance
  SectionKind kind = SectionKind::kOther;
  std::string material;         // homogeneous kinds, truss, PEG, membrane, gasket, cohesive
  float thickness = 0;          // homogeneous shell
  float mass = 0;               // point
  std::vector<Layer> layers;    // composite
  bool hasOrientation = false;  // connector: the three texts below came
  std::string region, csys1, csys2;
};

// What each layer of a composite itself is made of, in the order of `section.layers`: the shift of
// the entries undone. The first of several layers is nothing, for its own data are not sent.
std::vector<std::optional<Layer>> ownLayers(const Section& section);

struct Elastic {
  std::string type;                                // "ISOTROPIC", ...
  std::array<float, 6> values{};                   // first row of the table, missing ones 0
  std::optional<std::array<float, 5>> failStrain;  //
  std::optional<std::array<float, 7>> failStress;  //
};

struct Material {
  std::string name;
  float density = 0;  // 0 also when there is none
  std::optional<Elastic> elastic;
  bool isAcoustic = false;
};

using FloatTable = std::vector<std::vector<float>>;

struct AnalyticSurface {
  struct Segment {
    std::string type;
    FloatTable data;
  };
  std::string name;
  std::string type;
  float filletRadius = 0;
  FloatTable localCoordinates;
  std::vector<Segment> segments;
};

struct RigidBody {
  std::int32_t referenceNode = 0;  // node label
  std::string surface;             // name of its analytic surface
};

// Each decoder takes a record of its tag and throws MalformedRecord when the body does not fit.
NodeView decodeNode(const Record& record);
Section decodeSection(const Record& record);
Material decodeMaterial(const Record& record);
AnalyticSurface decodeAnalyticSurface(const Record& record);
RigidBody decodeRigidBody(const Record& record);

// One line of the annotation text, its line break included; it points into the record.
std::string_view decodeAnnotation(const Record& record);

// The element record has neither the type name's length nor (but for connectors) a node count, so
// both are derived:
//  - A name of up to 8 characters takes 8 bytes, padded with blanks. A longer one is written whole.
//    A blank among the first 8 bytes means 8. Otherwise the name's length and the body's length
//    leave the same remainder by 4, and the shortest such length counts whose following four
//    bytes, the label, are not all characters of a name (upper-case letters, digits, underscore).
//    A label whose four bytes are all such characters is above 800 million: such a label after an
//    unpadded name of 8 or more characters would be taken for a part of the name.
//  - Types whose name begins with "CONN3D2" bring a count, that many labels and as many zeros; for
//    every other type the rest of the record is node labels.
ElementView decodeElement(const Record& record);

}  // namespace odbs::client
