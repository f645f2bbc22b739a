// SPDX-License-Identifier: BSD-3-Clause
// The rows of sets, section summary, catalogue, history, field values and nodal results.
#include "client/describe_rows.h"
#include "client/field_values.h"
#include "client/histories.h"
#include "client/nodal_results.h"
#include "client/regions.h"
#include "client/result_catalogue.h"
#include "client/sets.h"

namespace odbs::client {

namespace {

using Fields = std::vector<Field>;

Value integer(std::int64_t value) {
  return Value(value);
}

std::vector<std::int64_t> wide(const std::vector<std::int32_t>& values) {
  return {values.begin(), values.end()};
}

Fields setFields(const Record& record) {
  return {{"name", decodeSetName(record)}};
}

Fields memberFields(const Record& record) {
  std::vector<std::int32_t> labels, faces;
  decodeMembers(record, labels, faces);
  Fields fields{{"labels", wide(labels)}};
  if (!faces.empty()) fields.push_back({"faces", wide(faces)});
  return fields;
}

Fields noFields(const Record& record) {
  if (record.size != 0) throw MalformedRecord(record.offset, "end-of-set record: too long");
  return {};
}

Fields sectionSummaryFields(const Record& record) {
  const SectionSummary summary = decodeSectionSummary(record);
  return {{"number", integer(summary.number)},
          {"name", summary.name},
          {"kind", coarseKindName(summary.kind)}};
}

Fields stepFields(const Record& record) {
  const CatalogueStep step = decodeStep(record);
  return {{"number", integer(step.number)},
          {"total_time", step.totalTime},
          {"name", step.name},
          {"description", step.description}};
}

Fields procedureFields(const Record& record) {
  return {{"procedure", decodeProcedure(record)}};
}

Fields fieldFields(const Record& record) {
  const CatalogueField field = decodeField(record);
  return {{"name", field.name}, {"description", field.description}};
}

Fields componentsFields(const Record& record) {
  return {{"components", decodeComponents(record)}};
}

Fields frameFields(const Record& record, bool isNodal) {
  const CatalogueEntry entry = decodeFrame(record, isNodal);
  Fields fields{{"frame", integer(entry.frameIndex)}, {"domain", integer(entry.domain)},
                {"mode", integer(entry.mode)},        {"value", entry.frameValue},
                {"frequency", entry.frequency},       {"complex", integer(entry.isComplex)}};
  if (isNodal) {
    fields.push_back({"scalar", integer(entry.isScalar)});
  } else {
    fields.push_back({"positions", integer(entry.positions)});
    fields.push_back({"invariants", integer(entry.invariants)});
    fields.push_back({"tensor_kinds", integer(entry.tensorKinds)});
    fields.push_back({"section_points", integer(entry.hasSectionPoints)});
  }
  fields.push_back({"description", entry.frameDescription});
  return fields;
}

Fields nodalFrameFields(const Record& record) {
  return frameFields(record, true);
}

Fields elementFrameFields(const Record& record) {
  return frameFields(record, false);
}

Fields historyStepFields(const Record& record) {
  const HistoryStep step = decodeHistoryStep(record);
  return {{"number", integer(step.number)},
          {"domain", integer(step.domain)},
          {"total_time", step.totalTime},
          {"name", step.name},
          {"description", step.description}};
}

Fields historyRegionFields(const Record& record) {
  const HistoryRegion region = decodeHistoryRegion(record);
  const std::vector<std::int64_t> numbers(region.numbers, region.numbers + 3);
  return {{"name", region.name},
          {"set", region.set},
          {"position", integer(region.position)},
          {"numbers", numbers}};
}

Fields historyOutputFields(const Record& record) {
  const HistoryOutput output = decodeHistoryOutput(record);
  return {{"name", output.name},
          {"description", output.description},
          {"type", integer(output.type)},
          {"complex", integer(output.isComplex)}};
}

Fields historyValueFields(const Record& record) {
  return {{"value", decodeHistoryValue(record)}};
}

Fields valueTypeFields(const Record& record) {
  const std::uint32_t flag = decodeValueType(record);
  return {{"flag", integer(flag)}, {"meaning", valueTypeName(flag)}};
}

Fields blockFields(const Record& record) {
  const ValueBlockHead head = decodeBlock(record);
  return {{"element_type", head.elementType},
          {"section_point_field", integer(head.sectionPointField)},
          {"section_point", integer(head.sectionPoint)}};
}

Fields directionFields(const Record& record) {
  return {{"directions", decodeDirections(record)}};
}

Fields valueFields(const Record& record) {
  ValueView value;
  decodeValue(record, value);
  const ValueLayout layout = *valueLayout(record.tag);
  Fields fields;
  if (layout.hasElement) fields.push_back({"element", integer(value.elementLabel)});
  if (layout.hasThird) fields.push_back({"third", integer(value.thirdLabel)});
  if (layout.hasPoint) fields.push_back({"point", integer(value.integrationPoint)});
  std::vector<float> components(value.nComponents);
  for (std::uint32_t i = 0; i < value.nComponents; ++i) components[i] = value.component(i);
  fields.push_back({"components", components});
  return fields;
}

Fields nodalValueFields(const Record& record) {
  const NodalView value = decodeNodalValue(record);
  std::vector<float> components, conjugates;
  for (std::uint32_t i = 0; i < value.nComponents; ++i) {
    components.push_back(value.component(i));
    if (value.conjugates != nullptr) conjugates.push_back(value.conjugate(i));
  }
  Fields fields{{"node", integer(value.nodeLabel)}, {"components", components}};
  if (value.conjugates != nullptr) fields.push_back({"conjugates", conjugates});
  return fields;
}

Fields failedElementFields(const Record& record) {
  return {{"element", integer(decodeFailedElement(record))}};
}

Fields regionFields(const Record& record) {
  const RegionCount count = decodeRegion(record);
  return {{"kind", regionKindName(count.query.kind)},
          {"value", integer(count.query.value)},
          {"name", count.query.name},
          {"elements", integer(count.nElements)},
          {"nodes", integer(count.nNodes)}};
}

constexpr RecordFamily kSets = RecordFamily::kSets;
constexpr RecordFamily kSummary = RecordFamily::kSectionSummary;
constexpr RecordFamily kNodal = RecordFamily::kNodalCatalogue;
constexpr RecordFamily kElement = RecordFamily::kElementCatalogue;
constexpr RecordFamily kHistory = RecordFamily::kHistory;
constexpr RecordFamily kValues = RecordFamily::kFieldValues;
constexpr RecordFamily kNodalValues = RecordFamily::kNodalResults;

constexpr DescribeRow kRows[] = {
    {kSets, kNodeSetTag, "node set", setFields},
    {kSets, kElementSetTag, "element set", setFields},
    {kSets, kSurfaceTag, "surface", setFields},
    {kSets, kNodeLabelsTag, "node labels", memberFields},
    {kSets, kElementLabelsTag, "element labels", memberFields},
    {kSets, kElementPairsTag, "element faces", memberFields},
    {kSets, kEndOfSetTag, "end of set", noFields},
    {kSummary, kSectionSummaryTag, "section summary", sectionSummaryFields},
    {kSummary, kElementSetTag, "element set", setFields},
    {kSummary, kElementLabelsTag, "element labels", memberFields},
    {kSummary, kEndOfSetTag, "end of set", noFields},
    {kNodal, kStepTag, "step", stepFields},
    {kNodal, kProcedureTag, "procedure", procedureFields},
    {kNodal, kFieldTag, "field", fieldFields},
    {kNodal, kFrameTag, "frame", nodalFrameFields},
    {kElement, kStepTag, "step", stepFields},
    {kElement, kProcedureTag, "procedure", procedureFields},
    {kElement, kFieldTag, "field", fieldFields},
    {kElement, kComponentsTag, "components", componentsFields},
    {kElement, kFrameTag, "frame", elementFrameFields},
    {kHistory, kHistoryStepTag, "history step", historyStepFields},
    {kHistory, kHistoryRegionTag, "history region", historyRegionFields},
    {kHistory, kHistoryOutputTag, "history output", historyOutputFields},
    {kHistory, kHistoryValueTag, "history value", historyValueFields},
    {kValues, kValueTypeTag, "value type", valueTypeFields},
    {kValues, kBlockTag, "block", blockFields},
    {kValues, kDirectionsTag, "directions", directionFields},
    {kValues, 0x15, "value", valueFields},
    {kValues, 0x16, "value", valueFields},
    {kValues, 0x17, "value", valueFields},
    {kValues, 0x18, "value", valueFields},
    {kValues, 0x1F, "value", valueFields},
    {kValues, 0x20, "value", valueFields},
    {kValues, 0x21, "value", valueFields},
    {kValues, 0x22, "value", valueFields},
    {kNodalValues, 0x11, "nodal value", nodalValueFields},
    {kNodalValues, 0x12, "nodal value", nodalValueFields},
    {kNodalValues, 0x13, "rotation UR", nodalValueFields},
    {kNodalValues, 0x14, "rotation UR", nodalValueFields},
    {kNodalValues, 0x26, "rotation UR1", nodalValueFields},
    {kNodalValues, 0x28, "rotation UR1", nodalValueFields},
    {kNodalValues, 0x39, "rotation UR2", nodalValueFields},
    {kNodalValues, 0x3C, "rotation UR2", nodalValueFields},
    {kNodalValues, 0x4C, "rotation UR3", nodalValueFields},
    {kNodalValues, 0x50, "rotation UR3", nodalValueFields},
    {kNodalValues, kFailedElementTag, "failed element", failedElementFields},
    {RecordFamily::kRegions, kRegionTag, "region", regionFields},
};

}  // namespace

const DescribeRow* findResultRow(unsigned char tag, RecordFamily family) {
  for (const DescribeRow& row : kRows) {
    if (row.family == family && row.tag == tag) return &row;
  }
  return nullptr;
}

}  // namespace odbs::client
