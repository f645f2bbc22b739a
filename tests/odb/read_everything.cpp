// SPDX-License-Identifier: BSD-3-Clause
// One function for each kind of object that is written as text.
#include "tests/odb/read_everything.h"

#include <odb_FailureTimes.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>

#include <sstream>
#include <type_traits>

namespace odbs::test {
namespace {

class Text {
 public:
  std::string text() const { return out_.str(); }

  // A line of these values.
  template <class... Values>
  void line(const Values&... values) {
    (put(values), ...);
    out_ << "\n";
  }
  // A line for each member; a name alone says what they are.
  template <class T>
  void lines(const char* what, const odbs::RepositoryOf<T>& repository) {
    for (odbs::RepositoryIterator<T> it(repository); !it.isDone(); it.next()) {
      line(what, it.currentValue());
    }
  }
  template <class Sequence>
  auto lines(const char* what, const Sequence& sequence) -> decltype(sequence[0], void()) {
    for (int i = 0; i < sequence.size(); ++i) line(what, sequence[i]);
  }

  void put(const char* words) { out_ << words << " "; }
  void put(const odb_String& value) { out_ << '"' << value.CStr() << "\" "; }
  template <class Number>
  std::enable_if_t<std::is_arithmetic_v<Number> || std::is_enum_v<Number>> put(Number number) {
    out_ << number << " ";
  }
  template <class Sequence>
  auto put(const Sequence& sequence) -> decltype(sequence.size(), sequence[0], void()) {
    out_ << "[ ";
    for (int i = 0; i < sequence.size(); ++i) put(sequence[i]);
    out_ << "] ";
  }
  void put(const odb_SectionPoint& point) { items(point.number(), point.description()); }
  void put(const odb_SectionCategory& category) {
    items(category.name(), category.description(), category.sectionPoints());
  }
  void put(const odb_Node& node) {
    const float* const x = node.coordinates();
    items(node.label(), x[0], x[1], x[2], node.instanceName());
  }
  void put(const odb_Element& element) {
    items(element.label(), element.type(), element.sectionCategory().name(),
          element.instanceNames());
    int n = 0;
    const int* const nodes = element.connectivity(n);
    for (int i = 0; i < n; ++i) put(nodes[i]);
  }
  void put(const odb_Set& set) {
    items(set.type(), set.name(), set.size(), set.instanceNames(), set.nodes(), set.elements(),
          set.faces());
    const odb_SequenceString names = set.instanceNames();
    for (int i = 0; i < names.size(); ++i) {
      items(set.nodes(names[i]).size(), set.elements(names[i]).size(), set.faces(names[i]));
    }
  }
  void put(const odb_DatumCsys& csys) {
    items(csys.name(), csys.type());
    for (const float* const vector : {csys.origin(), csys.xAxis(), csys.yAxis(), csys.zAxis()}) {
      for (int i = 0; vector && i < 3; ++i) put(vector[i]);
    }
  }
  void put(const odb_SectionAssignment& assignment) {
    items(assignment.region(), assignment.sectionName());
  }
  void put(const odb_BeamOrientation& beam) {
    items(beam.method(), beam.region().name(), beam.vector());
  }
  void put(const odb_MaterialOrientation& material) {
    items(material.region().name(), material.csys(), material.axis(), material.angle(),
          material.stackDirection());
  }
  void put(const odb_RebarOrientation& rebar) {
    items(rebar.region().name(), rebar.csys(), rebar.axis(), rebar.angle());
  }
  void put(const odb_ConnectorOrientation& connector) {
    items(connector.region().name(), connector.csys1(), connector.axis1(), connector.angle1(),
          connector.hasCsys2(), connector.csys2().name());
  }
  void put(const odb_AnalyticSurfaceSegment& segment) { items(segment.type(), segment.data()); }
  void put(const odb_AnalyticSurface& surface) {
    items(surface.name(), surface.type(), surface.filletRadius(), surface.localCoordData(),
          surface.segments());
  }
  void put(const odb_RigidBody& body) {
    items(body.referenceNodeSet(), body.isothermal());
    if (body.hasAnalyticSurface()) {
      put(body.analyticSurface().name());
    } else {
      put(body.elements());
    }
  }
  void put(const odb_SectionLayer& layer) {
    items(layer.thickness(), layer.material(), layer.numIntPts());
    odb_Union angle = layer.orientAngle();
    if (angle.type() == odb_UNION_STRING) {
      put(angle.getString());
    } else {
      put(angle.getDouble());
    }
  }
  void put(const odb_FieldLocation& location) {
    items(location.position(), location.sectionPoint());
  }
  void put(const odb_FieldBulkData& block) {
    const int n = block.length();
    items(block.instance().name(), block.position(), block.baseElementType(), n, block.width());
    items(block.type(), block.sectionPoint().number(), block.numberOfElements(),
          block.numberOfNodes(), block.valuesPerElement(), block.componentLabels().size());
    list("elements", block.elementLabels(), n);
    list("nodes", block.nodeLabels(), n);
    list("points", block.integrationPoints(), n);
    list("faces", block.faces(), n);
    if (block.precision() == odb_Enum::SINGLE_PRECISION) {
      list("data", block.data(), n * block.width());
      list("conjugate", block.conjugateData(), n * block.width());
      list("axes", block.localCoordSystem(), n * block.orientationWidth());
      list("mises", block.mises(), n);
    } else {
      list("doubles", block.dataDouble(), n * block.width());
      list("conjugate", block.conjugateDataDouble(), n * block.width());
    }
  }
  void put(const odb_FieldValue& value) {
    items(value.elementLabel(), value.nodeLabel(), value.integrationPoint(), value.face(),
          value.mises(), value.maxPrincipal());
  }
  void put(const odb_HistoryPoint& point) {
    items(point.node().label(), point.element().label(), point.ipNumber(),
          point.sectionPoint().number(), point.face(), point.region().name(),
          point.instance().name(), point.assembly().name());
  }

 private:
  template <class... Values>
  void items(const Values&... values) {
    out_ << "( ";
    (put(values), ...);
    out_ << ") ";
  }
  template <class Number>
  void list(const char* what, const Number* numbers, int n) {
    if (numbers) put(what);
    const auto usual = out_.precision(std::is_same_v<Number, double> ? 15 : 6);
    for (int i = 0; numbers && i < n; ++i) put(numbers[i]);
    out_.precision(usual);
  }

  std::ostringstream out_;
};

void addEntity(Text& text, const char* what, const odb_DiscreteEntity& entity) {
  text.line(what, entity.name(), entity.embeddedSpace());
  text.lines("node", entity.nodes());
  text.lines("element", entity.elements());
  text.lines("set", entity.nodeSets());
  text.lines("set", entity.elementSets());
  text.lines("set", entity.surfaces());
  text.lines("assigned", entity.sectionAssignments());
  text.lines("rigid", entity.rigidBodies());
}

void addPartEntity(Text& text, const char* what, const odb_PartEntity& entity) {
  addEntity(text, what, entity);
  if (entity.hasAnalyticSurface()) text.line("surface", entity.analyticSurface());
  text.lines("beam", entity.beamOrientations());
  text.lines("material", entity.materialOrientations());
  text.lines("rebar", entity.rebarOrientations());
}

void addSections(Text& text, odb_Odb& odb) {
  odb_SectionApi api;
  odb.extendApi(odb_Enum::odb_SECTION, api);
  for (odb_SectionContainerIT it(api.sections()); !it.isDone(); it.next()) {
    const odb_Section& section = it.currentValue();
    text.line("section", section.name());
    if (odb_isA(odb_HomogeneousShellSection, section)) {
      const auto& shell = odb_dynamicCast(odb_HomogeneousShellSection, section);
      text.line("shell", shell.thickness(), shell.numIntPts(), shell.material(),
                shell.integrationRule());
    } else if (odb_isA(odb_CompositeShellSection, section)) {
      const auto& shell = odb_dynamicCast(odb_CompositeShellSection, section);
      text.line("plies", shell.layup(), shell.symmetric());
    } else if (odb_isA(odb_PointSection, section)) {
      text.line("mass", odb_dynamicCast(odb_PointSection, section).mass());
    } else if (odb_isA(odb_ConnectorSection, section)) {
      text.line("assembled", odb_dynamicCast(odb_ConnectorSection, section).assembledType());
    }
  }
}

void addMaterials(Text& text, odb_Odb& odb) {
  odb_MaterialApi api;
  odb.extendApi(odb_Enum::odb_MATERIAL, api);
  for (odb_MaterialContainerIT it(api.materials()); !it.isDone(); it.next()) {
    const odb_Material& material = it.currentValue();
    const odb_Elastic elastic = material.elastic();
    text.line("material", material.name(), odb_SequenceSequenceDouble(material.density().table()),
              material.acousticMedium().hasValue(), elastic.hasValue());
    if (!elastic.hasValue()) continue;
    text.line("elastic", elastic.type(), elastic.noTension(), elastic.noCompression(),
              elastic.temperatureDependency(), odb_SequenceSequenceDouble(elastic.table()),
              odb_SequenceSequenceDouble(elastic.failStress().table()),
              odb_SequenceSequenceDouble(elastic.failStrain().table()));
  }
}

void addStep(Text& text, const odb_Step& step) {
  text.line("step", step.number(), step.name(), step.description(), step.domain(),
            step.previousStepName(), step.procedure(), step.timePeriod(), step.mass(),
            step.inertiaAboutOrigin(), step.inertiaAboutCenter());
  for (odb_HistoryRegionRepositoryIT it(step.historyRegions()); !it.isDone(); it.next()) {
    const odb_HistoryRegion& region = it.currentValue();
    text.line("history", region.name(), region.description(), region.position(),
              region.historyPoint(), region.loadCase().name());
    for (odb_HistoryOutputRepositoryIT at(region.historyOutputs()); !at.isDone(); at.next()) {
      const odb_HistoryOutput& output = at.currentValue();
      text.line("output", output.name(), output.description(), output.data(),
                output.conjugateData());
    }
  }
  for (const engine::FailureTime& failure : engine::failureTimes(step)) {
    text.line("failure", failure.instance.name(), failure.elementLabel, failure.time);
  }
  const odb_SequenceFrame& frames = step.frames();
  for (int i = 0; i < frames.size(); ++i) {
    const odb_Frame& frame = frames[i];
    text.line("frame", frame.incrementNumber(), frame.mode(), frame.frameValue(), frame.frequency(),
              frame.description(), frame.loadCase().name());
    for (odb_FieldOutputRepositoryIT it(frame.fieldOutputs()); !it.isDone(); it.next()) {
      const odb_FieldOutput& field = it.currentValue();
      text.line("field", field.name(), field.description(), field.type(), field.dim(), field.dim2(),
                field.componentLabels(), field.validInvariants(), field.isComplex(),
                field.hasOrientation(), field.locations(), field.baseElementTypes());
      text.lines("block", field.bulkDataBlocks());
      text.lines("value", field.values());
      text.lines("at nodes", field.getSubset(odb_Enum::ELEMENT_NODAL).bulkDataBlocks());
      text.lines("in the middle", field.getSubset(odb_Enum::CENTROID).bulkDataBlocks());
    }
  }
}

void addObjects(Text& text, odb_Odb& odb) {
  for (odb_ConstraintRepositoryIT it(odb.constraints()); !it.isDone(); it.next()) {
    text.line("constraint", it.currentKey());
    if (!odb_isA(odb_Coupling, it.currentValue())) continue;
    text.line("to", odb_dynamicCast(odb_Coupling, it.currentValue()).controlPoint());
  }
  const odb_AmplitudeRepository& amplitudes = odb.amplitudes();
  for (int i = 0; i < amplitudes.size(); ++i) {
    if (!odb_isA(odb_TabularAmplitude, amplitudes[i])) continue;
    text.line("amplitude", odb_dynamicCast(odb_TabularAmplitude, amplitudes[i]).data());
  }
  odb_UserData& user = odb.userData();
  if (user.annotationObjects().isMember("xml")) {
    text.line("annotation", user.annotationObjects()["xml"].text());
  }
  for (odb_UserXYDataRepositoryIT it(user.xyDataObjects()); !it.isDone(); it.next()) {
    odb_SequenceSequenceFloat curve;
    it.currentValue().getData(curve);
    text.line("curve", it.currentValue().yAxisLabel(), curve);
  }
}

}  // namespace

std::string readEverything(odb_Odb& odb) {
  Text text;
  const odb_JobData job = odb.jobData();
  text.line("title", odb.analysisTitle(), odb.description(), job.analysisCode(), job.precision(),
            job.name(), job.productAddOns());
  if (odb.hasSectorDefinition()) {
    text.line("sectors", odb.sectorDefinition().numSectors(),
              odb.sectorDefinition().symmetryAxis());
  }
  text.lines("category", odb.sectionCategories());
  const odb_Assembly& root = odb.rootAssembly();
  addEntity(text, "assembly", root);
  text.lines("connector", root.connectorOrientations());
  for (odb_InstanceRepositoryIT it(root.instances()); !it.isDone(); it.next()) {
    addPartEntity(text, "instance", it.currentValue());
  }
  for (odb_PartRepositoryIT it(odb.parts()); !it.isDone(); it.next()) {
    addPartEntity(text, "part", it.currentValue());
  }
  addSections(text, odb);
  addMaterials(text, odb);
  addObjects(text, odb);
  for (odb_StepRepositoryIT it(odb.steps()); !it.isDone(); it.next()) {
    addStep(text, it.currentValue());
  }
  return text.text();
}

}  // namespace odbs::test
