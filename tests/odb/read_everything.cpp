// SPDX-License-Identifier: BSD-3-Clause
#include "tests/odb/read_everything.h"

#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>

namespace odbs::test {
namespace {

double sumOf(const odb_String& text) {
  double sum = 0;
  for (int i = 0; i < text.Length(); ++i) sum += text.CStr()[i];
  return sum;
}

double sumOf(const odb_SequenceNode& nodes) {
  double sum = 0;
  for (int i = 0, n = nodes.size(); i < n; ++i) {
    const odb_Node node = nodes[i];
    const float* x = node.coordinates();
    sum += node.label() + static_cast<double>(x[0] + x[1] + x[2]) + sumOf(node.instanceName());
  }
  return sum;
}

double sumOf(const odb_SequenceElement& elements) {
  double sum = 0;
  for (int i = 0, n = elements.size(); i < n; ++i) {
    const odb_Element element = elements[i];
    int nNodes = 0;
    const int* nodes = element.connectivity(nNodes);
    for (int k = 0; k < nNodes; ++k) sum += nodes[k];
    sum += element.label() + sumOf(element.type()) + sumOf(element.sectionCategory().name());
    sum += element.instanceNames().size();
  }
  return sum;
}

double sumOf(const odb_SequenceSequenceFloat& rows) {
  double sum = 0;
  for (int i = 0; i < rows.size(); ++i) {
    for (int k = 0; k < rows[i].size(); ++k) sum += static_cast<double>(rows[i][k]);
  }
  return sum;
}

double sumOf(const odb_Set& set) {
  double sum = sumOf(set.name()) + set.size() + sumOf(set.nodes()) + sumOf(set.elements());
  for (int i = 0; i < set.faces().size(); ++i) sum += set.faces()[i];
  const odb_SequenceString names = set.instanceNames();
  for (int i = 0; i < names.size(); ++i) {
    sum += set.nodes(names[i]).size() + set.elements(names[i]).size();
  }
  return sum;
}

double sumOf(const odb_SetRepository& sets) {
  double sum = 0;
  odb_SetRepositoryIT it(sets);
  for (it.first(); !it.isDone(); it.next()) sum += sumOf(it.currentValue());
  return sum;
}

double sumOf(const odb_RigidBody& body) {
  double sum = sumOf(body.referenceNodeSet());
  if (body.hasAnalyticSurface()) sum += sumOf(body.analyticSurface().name());
  return sum;
}

double sumOf(const odb_DiscreteEntity& entity) {
  double sum = sumOf(entity.name()) + sumOf(entity.nodes()) + sumOf(entity.elements());
  sum += sumOf(entity.nodeSets()) + sumOf(entity.elementSets()) + sumOf(entity.surfaces());
  const odb_SequenceSectionAssignment& assignments = entity.sectionAssignments();
  for (int i = 0; i < assignments.size(); ++i) {
    sum += sumOf(assignments[i].region()) + sumOf(assignments[i].sectionName());
  }
  for (int i = 0; i < entity.rigidBodies().size(); ++i) sum += sumOf(entity.rigidBodies()[i]);
  return sum;
}

double sumOf(const odb_PartEntity& entity) {
  double sum = sumOf(static_cast<const odb_DiscreteEntity&>(entity));
  if (entity.hasAnalyticSurface()) {
    const odb_AnalyticSurface& surface = entity.analyticSurface();
    sum += sumOf(surface.name()) + sumOf(surface.localCoordData());
    for (int i = 0; i < surface.segments().size(); ++i) sum += sumOf(surface.segments()[i].data());
  }
  for (int i = 0; i < entity.beamOrientations().size(); ++i) {
    sum += sumOf(entity.beamOrientations()[i].region());
  }
  for (int i = 0; i < entity.materialOrientations().size(); ++i) {
    sum += sumOf(entity.materialOrientations()[i].csys().name());
  }
  return sum;
}

double sumOfSections(odb_Odb& odb) {
  double sum = 0;
  odb_SectionApi api;
  odb.extendApi(odb_Enum::odb_SECTION, api);
  odb_SectionContainerIT it(api.sections());
  for (it.first(); !it.isDone(); it.next()) {
    const odb_Section& section = it.currentValue();
    sum += sumOf(section.name());
    if (odb_isA(odb_CompositeShellSection, section)) {
      const auto& layup = odb_dynamicCast(odb_CompositeShellSection, section).layup();
      for (int i = 0; i < layup.size(); ++i) sum += layup[i].thickness();
    }
    if (odb_isA(odb_PointSection, section)) {
      sum += odb_dynamicCast(odb_PointSection, section).mass();
    }
  }
  odb_MaterialApi materials;
  odb.extendApi(odb_Enum::odb_MATERIAL, materials);
  odb_MaterialContainerIT at(materials.materials());
  for (at.first(); !at.isDone(); at.next()) {
    const odb_Material& material = at.currentValue();
    sum += sumOf(odb_SequenceSequenceFloat(material.elastic().table()));
    sum += sumOf(material.elastic().type()) + material.density().dependencies();
  }
  return sum;
}

double sumOfFields(const odb_Frame& frame) {
  double sum = 0;
  odb_FieldOutputRepositoryIT it(frame.fieldOutputs());
  for (it.first(); !it.isDone(); it.next()) {
    const odb_FieldOutput& field = it.currentValue();
    sum += sumOf(field.name()) + sumOf(field.description()) + field.type();
    sum += field.componentLabels().size() + field.validInvariants().size();
    const odb_SequenceFieldBulkData& blocks = field.bulkDataBlocks();
    for (int b = 0; b < blocks.size(); ++b) {
      const odb_FieldBulkData& block = blocks[b];
      const int* elements = block.elementLabels();
      const int* nodes = block.nodeLabels();
      sum += sumOf(block.instance().name()) + sumOf(block.baseElementType());
      for (int i = 0; i < block.length(); ++i) {
        sum += (elements ? elements[i] : 0) + (nodes ? nodes[i] : 0);
        for (int k = 0; k < block.width(); ++k) {
          sum += block.precision() == odb_Enum::SINGLE_PRECISION
                     ? static_cast<double>(block.data()[i * block.width() + k])
                     : block.dataDouble()[i * block.width() + k];
        }
      }
    }
  }
  return sum;
}

double sumOfHistories(const odb_Step& step) {
  double sum = 0;
  odb_HistoryRegionRepositoryIT it(step.historyRegions());
  for (it.first(); !it.isDone(); it.next()) {
    const odb_HistoryRegion& region = it.currentValue();
    sum += sumOf(region.name()) + region.historyPoint().node().label();
    odb_HistoryOutputRepositoryIT at(region.historyOutputs());
    for (at.first(); !at.isDone(); at.next()) {
      sum += sumOf(at.currentValue().data()) + sumOf(at.currentValue().conjugateData());
    }
  }
  return sum;
}

double sumOfSteps(odb_Odb& odb) {
  double sum = 0;
  odb_StepRepositoryIT it(odb.steps());
  for (it.first(); !it.isDone(); it.next()) {
    const odb_Step& step = it.currentValue();
    sum += sumOf(step.name()) + sumOf(step.procedure()) + step.mass();
    sum += sumOfHistories(step);
    const odb_SequenceFrame& frames = step.frames();
    for (int i = 0; i < frames.size(); ++i) {
      const odb_Frame& frame = frames[i];
      sum += sumOf(frame.description()) + static_cast<double>(frame.frameValue());
      sum += sumOf(frame.loadCase().name()) + sumOfFields(frame);
    }
  }
  return sum;
}

}  // namespace

double readEverything(odb_Odb& odb) {
  double sum = sumOf(odb.analysisTitle()) + odb.jobData().analysisCode();
  odb_Assembly& root = odb.rootAssembly();
  sum += sumOf(static_cast<const odb_DiscreteEntity&>(root));
  odb_InstanceRepositoryIT instance(root.instances());
  for (instance.first(); !instance.isDone(); instance.next()) {
    sum += sumOf(static_cast<const odb_PartEntity&>(instance.currentValue()));
  }
  odb_PartRepositoryIT part(odb.parts());
  for (part.first(); !part.isDone(); part.next()) {
    sum += sumOf(static_cast<const odb_PartEntity&>(part.currentValue()));
  }
  for (int i = 0; i < root.connectorOrientations().size(); ++i) {
    sum += sumOf(root.connectorOrientations()[i].csys1().name());
  }
  odb_ConstraintRepositoryIT constraint(odb.constraints());
  for (constraint.first(); !constraint.isDone(); constraint.next()) {
    if (!odb_isA(odb_Coupling, constraint.currentValue())) continue;
    sum += sumOf(odb_dynamicCast(odb_Coupling, constraint.currentValue()).controlPoint());
  }
  odb_AmplitudeRepository& amplitudes = odb.amplitudes();
  for (int i = 0; i < amplitudes.size(); ++i) {
    if (!odb_isA(odb_TabularAmplitude, amplitudes[i])) continue;
    const odb_TabularAmplitude& amplitude = odb_dynamicCast(odb_TabularAmplitude, amplitudes[i]);
    for (int k = 0; k < amplitude.data().size(); ++k) sum += amplitude.data()[k].size();
  }
  if (odb.userData().annotationObjects().isMember("xml")) {
    sum += sumOf(odb.userData().annotationObjects()["xml"].text());
  }
  odb_SequenceSequenceFloat curve;
  odb_UserXYDataRepositoryIT curves(odb.userData().xyDataObjects());
  for (curves.first(); !curves.isDone(); curves.next()) curves.currentValue().getData(curve);
  return sum + sumOf(curve) + sumOfSections(odb) + sumOfSteps(odb);
}

}  // namespace odbs::test
