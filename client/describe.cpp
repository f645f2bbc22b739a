// SPDX-License-Identifier: BSD-3-Clause
// The tables of tags for the model, sets and regions, and the text of one record.
#include "client/describe.h"

#include "client/describe_rows.h"
#include "client/records/model_records.h"
#include "client/records/small_records.h"

namespace odbs::client {

namespace {

using Fields = std::vector<Field>;

constexpr RecordFamily kModel = RecordFamily::kModel;

std::string hexText(const unsigned char* bytes, std::size_t n) {
  static const char* const kDigits = "0123456789abcdef";
  std::string text;
  for (std::size_t i = 0; i < n; ++i) {
    if (i > 0) text += ' ';
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 15];
  }
  return text;
}

Value integer(std::int64_t value) {
  return Value(value);
}

Value flag(bool value) {
  return integer(value ? 1 : 0);
}

Fields titleFields(const Record& record) {
  return {{"title", decodeTitle(record)}};
}

Fields analysisKindFields(const Record& record) {
  const std::int32_t kind = decodeAnalysisKind(record);
  return {{"code", integer(kind)}, {"meaning", analysisKindName(kind)}};
}

Fields nameFields(const Record& record) {
  return {{"name", std::string(decodeName(record))}};
}

Fields markerFields(const Record& record) {
  decodeMarker(record);
  return {};
}

Fields messageFields(const Record& record) {
  return {{"text", decodeMessage(record)}};
}

Fields upgradeFields(const Record& record) {
  if (isUpgradeNeeded(record)) return {{"upgrade_needed", flag(true)}};
  return messageFields(record);
}

Fields processIdFields(const Record& record) {
  return {{"process_id", integer(decodeProcessId(record))}};
}

Fields throughputFields(const Record& record) {
  const ThroughputRecord decoded = decodeThroughput(record);
  return {{"index", integer(decoded.index)}, {"integers", integer(decoded.nIntegers)}};
}

Fields nodeFields(const Record& record) {
  const NodeView node = decodeNode(record);
  std::vector<float> coordinates(node.nCoordinates);
  for (std::uint32_t i = 0; i < node.nCoordinates; ++i) coordinates[i] = node.coordinate(i);
  return {{"label", integer(node.label)}, {"coordinates", coordinates}};
}

Fields elementFields(const Record& record) {
  const ElementView element = decodeElement(record);
  std::vector<std::int64_t> nodes(element.nNodes);
  for (std::uint32_t i = 0; i < element.nNodes; ++i) nodes[i] = element.node(i);
  return {{"type", std::string(element.type)},
          {"label", integer(element.label)},
          {"section", integer(element.sectionNumber)},
          {"nodes", nodes}};
}

Fields annotationFields(const Record& record) {
  return {{"line", std::string(decodeAnnotation(record))}};
}

void addLayerFields(const Section& section, Fields& fields) {
  std::vector<std::int64_t> numbers, nPoints;
  std::vector<std::string> materials;
  std::vector<float> thicknesses, angles;
  for (const Layer& layer : section.layers) {
    numbers.push_back(layer.layerNumber);
    nPoints.push_back(layer.nSectionPoints);
    materials.push_back(layer.material);
    thicknesses.push_back(layer.thickness);
    angles.push_back(layer.angle);
  }
  fields.push_back({"layers", numbers});
  fields.push_back({"points", nPoints});
  fields.push_back({"materials", materials});
  fields.push_back({"thicknesses", thicknesses});
  fields.push_back({"angles", angles});
}

Fields sectionFields(const Record& record) {
  const Section section = decodeSection(record);
  Fields fields{{"number", integer(section.number)},
                {"name", section.name},
                {"section_kind", std::string(sectionKindName(section.kind))}};
  switch (section.kind) {
    case SectionKind::kOther:
      break;
    case SectionKind::kLayered:
      addLayerFields(section, fields);
      break;
    case SectionKind::kPoint:
      fields.push_back({"mass", section.mass});
      break;
    case SectionKind::kConnector:
      if (section.hasOrientation) {
        fields.push_back({"region", section.region});
        fields.push_back({"csys1", section.csys1});
        fields.push_back({"csys2", section.csys2});
      }
      break;
    default:
      fields.push_back({"material", section.material});
      if (section.kind == SectionKind::kHomogeneousShell) {
        fields.push_back({"thickness", section.thickness});
      }
  }
  return fields;
}

template <typename Reals>
std::vector<float> asVector(const Reals& values) {
  return {values.begin(), values.end()};
}

Fields materialFields(const Record& record) {
  const Material material = decodeMaterial(record);
  Fields fields{{"name", material.name}, {"density", material.density}};
  if (material.elastic) {
    fields.push_back({"elastic", material.elastic->type});
    fields.push_back({"values", asVector(material.elastic->values)});
    if (material.elastic->failStrain) {
      fields.push_back({"fail_strain", asVector(*material.elastic->failStrain)});
    }
    if (material.elastic->failStress) {
      fields.push_back({"fail_stress", asVector(*material.elastic->failStress)});
    }
  }
  fields.push_back({"acoustic", flag(material.isAcoustic)});
  return fields;
}

Fields analyticSurfaceFields(const Record& record) {
  const AnalyticSurface surface = decodeAnalyticSurface(record);
  std::vector<std::string> types;
  std::vector<std::int64_t> nRows;
  FloatTable rows;
  for (const AnalyticSurface::Segment& segment : surface.segments) {
    types.push_back(segment.type);
    nRows.push_back(static_cast<std::int64_t>(segment.data.size()));
    rows.insert(rows.end(), segment.data.begin(), segment.data.end());
  }
  return {{"name", surface.name},
          {"type", surface.type},
          {"fillet_radius", surface.filletRadius},
          {"local_coordinates", surface.localCoordinates},
          {"segments", types},
          {"segment_rows", nRows},
          {"segment_data", rows}};
}

Fields rigidBodyFields(const Record& record) {
  const RigidBody body = decodeRigidBody(record);
  return {{"reference_node", integer(body.referenceNode)}, {"surface", body.surface}};
}

constexpr DescribeRow kRows[] = {
    {RecordFamily::kOther, kMessageTag, "message", messageFields},
    {RecordFamily::kOther, kProcessIdTag, "process id", processIdFields},
    {kModel, kNodeTag, "node", nodeFields},
    {kModel, kElementTag, "element", elementFields},
    {kModel, kMaterialTag, "material", materialFields},
    {kModel, kAnnotationTag, "annotation", annotationFields},
    {kModel, kSectionTag, "section", sectionFields},
    {kModel, kAnalyticSurfaceTag, "analytic surface", analyticSurfaceFields},
    {kModel, kRigidBodyTag, "rigid body", rigidBodyFields},
    {RecordFamily::kThroughput, kThroughputTag, "throughput", throughputFields},
    {RecordFamily::kUpgradeCheck, kMessageTag, "upgrade check", upgradeFields},
};

// The records that several families share.
constexpr DescribeRow kSharedRows[] = {
    {RecordFamily::kOther, kTitleTag, "title", titleFields},
    {RecordFamily::kOther, kAnalysisKindTag, "analysis kind", analysisKindFields},
    {RecordFamily::kOther, kNameTag, "name", nameFields},
    {RecordFamily::kOther, kMarkerTag, "marker", markerFields},
    {RecordFamily::kOther, kMessageTag, "message", messageFields},
};

bool usesSharedRows(RecordFamily family) {
  return family != RecordFamily::kOther && family != RecordFamily::kThroughput &&
         family != RecordFamily::kUpgradeCheck;
}

}  // namespace

Description describe(const Record& record, RecordFamily family) {
  for (const DescribeRow& row : kRows) {
    if (row.family == family && row.tag == record.tag) return {row.kind, row.fields(record)};
  }
  const DescribeRow* row = findResultRow(record.tag, family);
  if (row != nullptr) return {row->kind, row->fields(record)};
  for (const DescribeRow& shared : kSharedRows) {
    if (usesSharedRows(family) && shared.tag == record.tag) {
      return {shared.kind, shared.fields(record)};
    }
  }
  return {"unknown", {{"body", hexText(record.body, record.size)}}};
}

}  // namespace odbs::client
