// SPDX-License-Identifier: BSD-3-Clause
// odb_client model: prints a summary of a database's model.
#include <algorithm>
#include <map>

#include "client/cli/cli.h"
#include "client/model.h"
#include "client/records/small_records.h"

namespace odbs::client {

namespace {

std::int64_t asInteger(std::size_t n) {
  return static_cast<std::int64_t>(n);
}

// A model of one instance does not bring its name.
std::string shownName(const Instance& instance) {
  if (instance.name.empty()) return "(the only one)";
  return instance.isRootAssembly ? instance.name + " (root assembly)" : instance.name;
}

// The least and the greatest coordinates, axis by axis.
struct Box {
  std::vector<float> least, greatest;
};

Box boundingBox(const Instance& instance) {
  Box box;
  const std::size_t n = instance.nCoordinates;
  for (std::size_t i = 0; i < instance.coordinates.size(); ++i) {
    const float x = instance.coordinates[i];
    if (i < n) {
      box.least.push_back(x);
      box.greatest.push_back(x);
    } else {
      box.least[i % n] = std::min(box.least[i % n], x);
      box.greatest[i % n] = std::max(box.greatest[i % n], x);
    }
  }
  return box;
}

void reportDatabase(const Model& model, const std::string& path, Report& report) {
  report.facts("database", {"path", "title", "analysis", "annotation_bytes"},
               {path, model.title, analysisKindName(model.analysisKind),
                asInteger(model.annotation.size())});
}

void reportInstances(const Model& model, Report& report) {
  report.begin("instance",
               {"instance", "nodes", "elements", "dimensions", "box_least", "box_greatest"},
               {{"box_least", numbered("least", 3)}, {"box_greatest", numbered("greatest", 3)}});
  for (const Instance& instance : model.instances) {
    const Box box = boundingBox(instance);
    report.row({shownName(instance), asInteger(instance.nodeLabels.size()),
                asInteger(instance.elementLabels.size()), std::int64_t{instance.nCoordinates},
                box.least, box.greatest});
  }
  report.end();
}

// The elements of one type in one instance.
struct TypeCount {
  std::int64_t nElements = 0;
  std::size_t leastNodes = 0, mostNodes = 0;
  std::int64_t nWithoutSection = 0;
};

std::map<std::uint32_t, TypeCount> countTypes(const Instance& instance) {
  std::map<std::uint32_t, TypeCount> counts;
  for (std::size_t i = 0; i < instance.elementLabels.size(); ++i) {
    TypeCount& count = counts[instance.elementTypes[i]];
    const std::size_t nNodes =
        instance.connectivityOffsets[i + 1] - instance.connectivityOffsets[i];
    count.leastNodes = count.nElements == 0 ? nNodes : std::min(count.leastNodes, nNodes);
    count.mostNodes = std::max(count.mostNodes, nNodes);
    ++count.nElements;
    if (instance.sectionNumbers[i] == 0) ++count.nWithoutSection;
  }
  return counts;
}

void reportElements(const Model& model, Report& report) {
  report.begin("elements", {"instance", "type", "elements", "nodes_each", "without_section"});
  for (const Instance& instance : model.instances) {
    for (const auto& [type, count] : countTypes(instance)) {
      std::string nodesEach = std::to_string(count.leastNodes);
      if (count.mostNodes != count.leastNodes) nodesEach += "-" + std::to_string(count.mostNodes);
      report.row({shownName(instance), model.elementTypes[type], count.nElements, nodesEach,
                  count.nWithoutSection});
    }
  }
  report.end();
}

// The stream leaves out what the first of several layers is made of.
const std::string kNotSent = "not sent";

// What a section's kind brings besides its material, in words.
std::string sectionDetail(const Section& section) {
  switch (section.kind) {
    case SectionKind::kHomogeneousShell:
      return "thickness " + plainText(section.thickness);
    case SectionKind::kPoint:
      return "mass " + plainText(section.mass);
    case SectionKind::kLayered:
      return std::to_string(section.layers.size()) + " layers";
    case SectionKind::kConnector:
      if (!section.hasOrientation) return "no orientation";
      return "region " + section.region + ", systems \"" + section.csys1 + "\" \"" + section.csys2 +
             "\"";
    default:
      return {};
  }
}

void reportSections(const Model& model, Report& report) {
  std::map<std::int32_t, std::int64_t> nElements;
  for (const Instance& instance : model.instances) {
    for (const std::int32_t number : instance.sectionNumbers) ++nElements[number];
  }
  report.begin("section",
               {"section", "name", "kind", "material", "detail", "elements", "instance"});
  for (const Section& section : model.sections) {
    report.row({std::int64_t{section.number}, section.name, sectionKindName(section.kind),
                section.material, sectionDetail(section), nElements[section.number],
                section.instance});
  }
  report.end();
  report.begin("layer", {"section", "layer", "points", "material", "thickness", "angle"});
  for (const Section& section : model.sections) {
    const std::vector<std::optional<Layer>> own = ownLayers(section);
    for (std::size_t i = 0; i < own.size(); ++i) {
      const Layer& entry = section.layers[i];
      std::vector<Value> cells{section.name, std::int64_t{entry.layerNumber},
                               std::int64_t{entry.nSectionPoints}};
      if (own[i]) {
        cells.insert(cells.end(), {own[i]->material, own[i]->thickness, own[i]->angle});
      } else {
        cells.insert(cells.end(), {kNotSent, kNotSent, kNotSent});
      }
      report.row(std::move(cells));
    }
  }
  report.end();
}

void reportMaterials(const Model& model, Report& report) {
  report.begin(
      "material",
      {"material", "density", "elastic", "values", "fail_strain", "fail_stress", "acoustic"},
      {{"values", numbered("value", 6)},
       {"fail_strain", numbered("fail_strain", 5)},
       {"fail_stress", numbered("fail_stress", 7)}});
  for (const Material& material : model.materials) {
    const Elastic elastic = material.elastic.value_or(Elastic{});
    std::vector<float> strain, stress;
    if (elastic.failStrain) strain.assign(elastic.failStrain->begin(), elastic.failStrain->end());
    if (elastic.failStress) stress.assign(elastic.failStress->begin(), elastic.failStress->end());
    std::vector<float> values;
    if (material.elastic) values.assign(elastic.values.begin(), elastic.values.end());
    report.row({material.name, material.density, elastic.type, values, strain, stress,
                std::int64_t{material.isAcoustic}});
  }
  report.end();
}

void reportRigidParts(const Model& model, Report& report) {
  report.begin("analytic surface", {"instance", "surface", "type", "fillet_radius", "segments"});
  for (const Instance& instance : model.instances) {
    for (const AnalyticSurface& surface : instance.analyticSurfaces) {
      report.row({shownName(instance), surface.name, surface.type, surface.filletRadius,
                  asInteger(surface.segments.size())});
    }
  }
  report.end();
  report.begin("rigid body", {"reference_node", "surface"});
  for (const Instance& instance : model.instances) {
    for (const RigidBody& body : instance.rigidBodies) {
      report.row({std::int64_t{body.referenceNode}, body.surface});
    }
  }
  report.end();
}

}  // namespace

void reportMessages(const std::vector<std::string>& messages, Report& report) {
  report.begin("message", {"message"});
  for (const std::string& message : messages) report.row({message});
  report.end();
}

void runModel(const Call& call) {
  const std::string& path = call.path();
  const Model model = readModel(*call.connect(), path);
  reportDatabase(model, path, call.report);
  reportMessages(model.messages, call.report);
  reportInstances(model, call.report);
  reportElements(model, call.report);
  reportSections(model, call.report);
  reportMaterials(model, call.report);
  reportRigidParts(model, call.report);
}

}  // namespace odbs::client
