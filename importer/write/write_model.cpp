// SPDX-License-Identifier: BSD-3-Clause
// The order in which a model is written: materials and sections first, since sections name
// materials and elements name section categories; then parts, instances, the assembly, steps.
#include <odb_embedded.h>

#include <algorithm>

#include "base/printable.h"
#include "base/text.h"
#include "importer/write/model_writer.h"

namespace odbs::importer {

odb_String text(const std::string& s) {
  return odb_String(s.c_str());
}

odb_SequenceInt sequence(const std::vector<std::int32_t>& labels) {
  odb_SequenceInt result(static_cast<int>(labels.size()));
  for (const std::int32_t label : labels) result.append(label);
  return result;
}

odb_SequenceFloat floats(const std::array<double, 3>& v) {
  odb_SequenceFloat result(3);
  for (const double x : v) result.append(static_cast<float>(x));
  return result;
}

WriteSummary writeModel(const Deck& deck, odb_Odb& odb) {
  return ModelWriter(deck, odb).write();
}

void ModelWriter::warn(const std::string& what) {
  summary_.warnings.push_back(printable(what));
}

WriteSummary ModelWriter::write() {
  odb_.extendApi(odb_Enum::odb_SECTION, sectionApi_);
  odb_.extendApi(odb_Enum::odb_MATERIAL, materialApi_);
  odb_embedded::setAssemblyName(odb_, text(deck_.assemblyName));
  writeMaterials();
  for (const Part& part : deck_.parts) nameSections(part.content, part.name);
  for (const Instance& instance : deck_.instances) nameSections(instance.content, instance.name);
  nameSections(deck_.assembly, deck_.assemblyName);

  writeParts();
  writeInstances();
  odb_Assembly& assembly = odb_.rootAssembly();
  writeNodes(assembly, deck_.assembly.nodes);
  writeAssemblyElements();
  writeAssemblySets();
  writeAssemblySurfaces();
  assignAssemblySections();
  writeRigidBodies(assembly, nullptr, deck_.assembly);
  if (!deck_.assembly.analyticSurfaces.empty()) {
    warn("analytic surface " + deck_.assembly.analyticSurfaces[0].name +
         " of the assembly is left out: databases keep them in parts");
  }
  for (const NamedObject& object : deck_.objects) writeObject(object, nullptr, "");
  for (const Instance& instance : deck_.instances) {
    odb_Instance& written = assembly.instances()[text(instance.name)];
    writeObjects(written, deck_.parts[instance.part].content, instance.name);
    writeObjects(written, instance.content, instance.name);
  }
  writeObjects(assembly, deck_.assembly, deck_.assemblyName);
  writeSteps();
  odb_embedded::addInternalSets(odb_);
  return summary_;
}

odb_Enum::odb_DimensionEnum ModelWriter::spaceOf(const Scope& content) const {
  bool solid = false, planar = false, axisymmetric = false;
  for (const ElementBlock& block : content.elements.blocks) {
    const DeckElementType type = elementTypeOf(block.type);
    // Springs, masses and connectors live in any space.
    if (type.family == Family::point || type.family == Family::connector) continue;
    planar |= type.space == Space::planar;
    axisymmetric |= type.space == Space::axisymmetric;
    solid |= type.space == Space::threeD || type.space == Space::unknown;
  }
  if (content.elements.blocks.empty() && !content.analyticSurfaces.empty()) {
    planar = content.analyticSurfaces[0].type == "SEGMENTS";
    for (const Part& other : deck_.parts) {
      for (const ElementBlock& block : other.content.elements.blocks) {
        axisymmetric |= planar && elementTypeOf(block.type).space == Space::axisymmetric;
      }
    }
    if (axisymmetric) planar = false;
  }
  if (solid || planar == axisymmetric) return odb_Enum::THREE_D;
  // Third coordinates would be lost.
  for (std::size_t i = 2; i < content.nodes.xyz.size(); i += 3) {
    if (content.nodes.xyz[i] != 0) return odb_Enum::THREE_D;
  }
  return planar ? odb_Enum::TWO_D_PLANAR : odb_Enum::AXISYMMETRIC;
}

void ModelWriter::writeParts() {
  for (const Part& part : deck_.parts) {
    if (part.name.empty()) continue;
    // An instance with its own mesh becomes the instance of a new part.
    std::vector<const Instance*> meshes;
    for (const Instance& instance : deck_.instances) {
      const bool mine = &deck_.parts[instance.part] == &part;
      if (mine && instance.content.hasMesh()) meshes.push_back(&instance);
    }
    const bool replaced = meshes.size() == 1 && !part.content.hasMesh();
    if (!replaced) writePart(part.name, part.content);
    for (const Instance* instance : meshes) {
      writePart(replaced ? part.name : part.name + "_" + instance->name, instance->content);
    }
  }
}

void ModelWriter::writePart(const std::string& name, const Scope& content) {
  const bool analytic = !content.analyticSurfaces.empty() && content.elements.size() == 0;
  odb_Part part =
      odb_.Part(text(name), spaceOf(content),
                analytic ? odb_Enum::ANALYTIC_RIGID_SURFACE : odb_Enum::DEFORMABLE_BODY);
  writeNodes(part, content.nodes);
  writeElements(part, content);
  writeSets(part, content);
  writeSurfaces(part, content, content);
  assignSections(part, content);
  writeAnalyticSurface(part, content);
  writeRigidBodies(part, &part, content);
  partOf_.emplace(&content, part);
}

void ModelWriter::writeAnalyticSurface(odb_PartEntity& owner, const Scope& content) {
  if (content.analyticSurfaces.empty()) return;
  const AnalyticSurface& surface = content.analyticSurfaces[0];
  if (content.analyticSurfaces.size() > 1) {
    warn("a part has several analytic surfaces; " + surface.name + ", the first, is kept");
  }
  odb_SequenceAnalyticSurfaceSegment profile;
  for (const ProfileSegment& segment : surface.segments) {
    odb_SequenceSequenceFloat points;
    for (std::size_t i = 0; i + 1 < segment.values.size(); i += 2) {
      odb_SequenceFloat point;
      point.append(segment.values[i]);
      point.append(segment.values[i + 1]);
      points.append(point);
    }
    const char* type = segment.type == "CIRCL"   ? "CIRCLE"
                       : segment.type == "PARAB" ? "PARABOLA"
                                                 : segment.type.c_str();
    profile.append(odb_AnalyticSurfaceSegment(type, points));
  }
  odb_SequenceSequenceFloat local;
  for (const auto& point : surface.localPoints) {
    local.append(floats({point[0], point[1], point[2]}));
  }
  const odb_String name = text(surface.name);
  if (surface.type == "SEGMENTS" && owner.embeddedSpace() == odb_Enum::THREE_D) {
    warn("analytic surface " + surface.name + " is left out: a plane profile in a spatial part");
  } else if (surface.type == "SEGMENTS") {
    owner.AnalyticRigidSurf2DPlanar(name, profile, surface.filletRadius);
  } else if (owner.embeddedSpace() != odb_Enum::THREE_D) {
    warn("analytic surface " + surface.name + " is left out: a spatial surface in a plane part");
  } else if (surface.type == "CYLINDER") {
    owner.AnalyticRigidSurfExtrude(name, profile, surface.filletRadius, local);
  } else {
    owner.AnalyticRigidSurfRevolve(name, profile, surface.filletRadius, local);
  }
}

void ModelWriter::writeInstances() {
  for (const Instance& instance : deck_.instances) {
    const Scope& mesh = deck_.meshOf(instance);
    odb_SequenceSequenceFloat system;
    if (instance.moved) {
      for (const auto& axis : instance.axes) system.append(floats(axis));
      system.append(floats(instance.translation));
    }
    odb_Instance& written =
        odb_.rootAssembly().Instance(text(instance.name), partOf_.at(&mesh), system);
    ++summary_.nInstances;
    summary_.nNodes += static_cast<std::int64_t>(mesh.nodes.size());
    summary_.nElements += static_cast<std::int64_t>(mesh.elements.size());
    if (&mesh == &instance.content) continue;
    writeSets(written, instance.content);
    writeSurfaces(written, instance.content, mesh);
    assignSections(written, instance.content);
    writeRigidBodies(written, &written, instance.content);
  }
}

void ModelWriter::writeSteps() {
  for (const Step& step : deck_.steps) {
    const odb_Enum::odb_DomainEnum domain = step.domain == Domain::modal       ? odb_Enum::MODAL
                                            : step.domain == Domain::frequency ? odb_Enum::FREQUENCY
                                            : step.domain == Domain::arcLength
                                                ? odb_Enum::ARC_LENGTH
                                                : odb_Enum::TIME;
    odb_.Step(text(step.name), text(step.description), domain, step.timePeriod, "",
              text(step.procedure), -1, step.nlgeom);
    ++summary_.nSteps;
  }
}

}  // namespace odbs::importer
