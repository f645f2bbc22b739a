// SPDX-License-Identifier: BSD-3-Clause
// Materials, sections with their categories and section points, section assignments, and the
// orientations that go with them.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "base/text.h"
#include "importer/results/line_axes.h"
#include "importer/write/model_writer.h"

namespace odbs::importer {

namespace {

constexpr std::size_t kMaxSystems = 1000;  // of one orientation on one section

odb_SequenceSequenceDouble rowsOf(const Table& table) {
  odb_SequenceSequenceDouble rows;
  for (const auto& values : table.rows) {
    odb_SequenceDouble row;
    for (const double value : values) row.append(value);
    rows.append(row);
  }
  return rows;
}

bool sameLayers(const std::vector<Layer>& a, const std::vector<Layer>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](const Layer& x, const Layer& y) {
    return x.thickness == y.thickness && x.nPoints == y.nPoints && x.material == y.material &&
           x.angle == y.angle && x.orientation == y.orientation;
  });
}

// True when two sections differ at most in where they are assigned.
bool sameProperties(const Section& a, const Section& b) {
  return a.kind == b.kind && a.word == b.word && a.material == b.material &&
         a.thickness == b.thickness && a.nPoints == b.nPoints && a.gauss == b.gauss &&
         a.symmetric == b.symmetric && a.mass == b.mass && sameLayers(a.layers, b.layers);
}

// The layers of a symmetric layup are given from the bottom to the middle.
std::vector<Layer> wholeLayup(const Section& section) {
  std::vector<Layer> layers = section.layers;
  if (section.symmetric) {
    layers.insert(layers.end(), section.layers.rbegin(), section.layers.rend());
  }
  return layers;
}

// Positions -1 to 1 of n integration points: those of Simpson's rule, which include both ends, or
// of Gauss's (abscissas of the Legendre polynomials, found by Newton's method).
std::vector<double> pointPositions(int n, bool gauss) {
  std::vector<double> positions;
  for (int i = 0; i < n; ++i) {
    if (!gauss) {
      positions.push_back(n == 1 ? 0.0 : -1.0 + 2.0 * i / (n - 1));
      continue;
    }
    double x = -std::cos(3.14159265358979323846 * (i + 0.75) / (n + 0.5));
    for (int round = 0; round < 30; ++round) {
      double p0 = 1, p1 = x;
      for (int k = 2; k <= n; ++k) {
        const double p2 = ((2 * k - 1) * x * p1 - (k - 1) * p0) / k;
        p0 = p1;
        p1 = p2;
      }
      if (n == 1) p0 = 1;
      const double slope = n * (x * p1 - p0) / (x * x - 1);
      x -= p1 / slope;
    }
    positions.push_back(std::fabs(x) < 1e-14 ? 0.0 : x);
  }
  return positions;
}

}  // namespace

void ModelWriter::writeMaterials() {
  for (const Material& material : deck_.materials) {
    odb_Material& written = materialApi_.Material(text(material.name));
    ++summary_.nMaterials;
    if (material.density.present) {
      written.Density(rowsOf(material.density), material.density.temperatureDependent);
    }
    if (material.acousticMedium.present) {
      written.AcousticMedium(rowsOf(material.acousticMedium),
                             material.acousticMedium.temperatureDependent);
    }
    if (!material.elastic.present) {
      if (material.failStress.present || material.failStrain.present) {
        warn("failure limits of material " + material.name + " are left out: it is not elastic");
      }
      continue;
    }
    odb_Elastic& elastic = written.Elastic(
        rowsOf(material.elastic), text(material.elasticType), material.noCompression,
        material.noTension, material.elastic.temperatureDependent, 0, text(material.moduli));
    if (material.failStress.present) {
      elastic.FailStress(rowsOf(material.failStress), material.failStress.temperatureDependent);
    }
    if (material.failStrain.present) {
      elastic.FailStrain(rowsOf(material.failStrain), material.failStrain.temperatureDependent);
    }
  }
}

// Gives every section of a scope its name and writes those that are new.
void ModelWriter::nameSections(const Scope& content, const std::string& owner) {
  for (const Section& section : content.sections) {
    std::string base = section.elset;
    for (int attempt = 0;; ++attempt) {
      if (attempt == 1) base = owner + "_" + section.elset;
      if (attempt > 1) base = owner + "_" + section.elset + "-" + std::to_string(attempt);
      NamedSection named;
      named.category = section.word + " < elset = " + base + " >";
      named.name = section.kind == SectionKind::connector ? base : "Section-" + base;
      // What has only a category takes no section's name.
      if (section.kind == SectionKind::other) named.name = named.category;
      const auto [taken, isNew] = sectionsByName_.emplace(named.name, &section);
      if (!isNew && !sameProperties(*taken->second, section)) continue;
      if (isNew) {
        categoryOf_[&section] = static_cast<std::int32_t>(categories_.size());
        writeSection(section, named);
      } else {
        categoryOf_[&section] = categoryOf_.at(taken->second);
      }
      named_[&section] = std::move(named);
      break;
    }
  }
}

void ModelWriter::writeSection(const Section& section, const NamedSection& named) {
  const odb_String name = text(named.name), material = text(section.material);
  odb_SectionCategory& category =
      odb_.SectionCategory(text(named.category), text(section.word + " section"));
  categories_.push_back(named.category);
  writeSectionPoints(section, category);
  odb_SequenceSectionLayer layup;
  for (const Layer& layer : wholeLayup(section)) {
    const odb_Union angle =
        layer.orientation.empty() ? odb_Union(layer.angle) : odb_Union(layer.orientation.c_str());
    layup.append(SectionLayer(layer.thickness, text(layer.material), angle, layer.nPoints, "AXIS_3",
                              0, "ROTATION_NONE", "SPECIFY_THICKNESS", text(layer.plyName)));
  }
  const char* const rule = section.gauss ? "GAUSS" : "SIMPSON";
  const ConnectorData& connector = section.connector;
  const auto typeText = [](const std::string& type) { return text(type.empty() ? "NONE" : type); };
  switch (section.kind) {
    case SectionKind::solid:
      sectionApi_.HomogeneousSolidSection(name, material,
                                          section.thickness > 0 ? section.thickness : 1.0);
      break;
    case SectionKind::compositeSolid:
      sectionApi_.CompositeSolidSection(name, layup);
      break;
    case SectionKind::shell:
      sectionApi_.HomogeneousShellSection(name, section.thickness, material, section.nPoints,
                                          "UNIFORM", false, "DEFAULT", 0.5, rule);
      break;
    case SectionKind::compositeShell:
      sectionApi_.CompositeShellSection(name, layup, false, "", "UNIFORM", false, "DEFAULT", 0.5,
                                        rule);
      break;
    case SectionKind::generalShell:
      sectionApi_.ShellSection(name);
      break;
    case SectionKind::membrane:
      sectionApi_.MembraneSection(name, material);
      break;
    case SectionKind::truss:
      sectionApi_.TrussSection(name, material);
      break;
    case SectionKind::peg:
      sectionApi_.PEGSection(name, material);
      break;
    case SectionKind::beam:
      sectionApi_.BeamSection(name, "", material);
      break;
    case SectionKind::gasket:
      sectionApi_.GasketSection(name, material);
      break;
    case SectionKind::cohesive:
      sectionApi_.CohesiveSection(name, material);
      break;
    case SectionKind::connector:
      sectionApi_.ConnectorSection(name, typeText(connector.assembledType),
                                   typeText(connector.rotationalType),
                                   typeText(connector.translationalType));
      break;
    case SectionKind::point:
      sectionApi_.PointSection(name, section.mass);
      break;
    case SectionKind::other:
      return;
  }
  ++summary_.nSections;
}

// Points through the thickness, from the bottom up, as the solver would lay them: their fraction of
// the whole thickness runs from -1 to 1.
void ModelWriter::writeSectionPoints(const Section& section, odb_SectionCategory& category) {
  for (int corner = 0; hasCorners(section) && corner < kCorners; ++corner) {
    const SectionCorner at = cornerOf(section, corner);
    char description[80];
    std::snprintf(description, sizeof description, "x1 = %.6f, x2 = %.6f", at.along1, at.along2);
    category.SectionPoint(corner + 1, description);
  }
  std::vector<Layer> layers;
  if (section.kind == SectionKind::shell) {
    layers.emplace_back();
    layers.back().thickness = section.thickness;
    layers.back().nPoints = section.nPoints;
  } else if (section.kind == SectionKind::compositeShell ||
             section.kind == SectionKind::compositeSolid) {
    layers = wholeLayup(section);
  }
  double total = 0;
  for (const Layer& layer : layers) total += layer.thickness;
  double below = 0;
  int number = 0;
  for (std::size_t i = 0; i < layers.size(); ++i) {
    const bool gauss = section.gauss || section.kind == SectionKind::compositeSolid;
    for (const double position : pointPositions(layers[i].nPoints, gauss)) {
      const double height = below + (position + 1) / 2 * layers[i].thickness;
      const double fraction = total > 0 ? 2 * height / total - 1 : position;
      char description[80];
      std::snprintf(description, sizeof description, "fraction = %.6f, Layer = %d", fraction,
                    static_cast<int>(i + 1));
      category.SectionPoint(++number, description);
    }
    below += layers[i].thickness;
  }
}

const Orientation* ModelWriter::findOrientation(const Scope& content,
                                                const std::string& name) const {
  const auto in = [&](const Scope& scope) -> const Orientation* {
    const auto found = scope.orientations.find(name);
    return found == scope.orientations.end() ? nullptr : &found->second;
  };
  if (const Orientation* own = in(content)) return own;
  if (const Orientation* own = in(deck_.assembly)) return own;
  for (const Part& part : deck_.parts) {
    if (const Orientation* other = in(part.content)) return other;
  }
  return nullptr;
}

// The datum system with those axes of an orientation, made on first use. Systems of the same name
// get numbers.
odb_DatumCsys ModelWriter::csysOf(const Orientation& orientation, const CoordinateSystem& axes) {
  const auto known = csysOf_.find(&axes);
  if (known != csysOf_.end()) return odb_.rootAssembly().datumCsyses()[text(known->second)];
  int& n = nCsyses_[orientation.name];
  std::string name;
  do {
    name = ++n == 1 ? orientation.name : orientation.name + "-" + std::to_string(n);
  } while (odb_.rootAssembly().datumCsyses().isMember(text(name)));
  csysOf_.emplace(&axes, name);
  const auto type = orientation.system == "CYLINDRICAL" ? odb_Enum::CYLINDRICAL
                    : orientation.system == "SPHERICAL" ? odb_Enum::SPHERICAL
                                                        : odb_Enum::CARTESIAN;
  const auto plus = [&](const std::array<double, 3>& axis) {
    std::array<double, 3> point{};
    for (std::size_t i = 0; i < 3; ++i) point[i] = axes.origin[i] + axis[i];
    return floats(point);
  };
  return odb_.rootAssembly().DatumCsysByThreePoints(text(name), type, floats(axes.origin),
                                                    plus(axes.xAxis), plus(axes.yAxis));
}

void ModelWriter::assignSections(odb_PartEntity& entity, const Scope& content) {
  for (const Section& section : content.sections) {
    const NamedSection& named = named_.at(&section);
    const odb_String elset = text(section.elset);
    if (!entity.elementSets().isMember(elset)) continue;
    const odb_Set region = entity.elementSets()[elset];
    if (section.kind != SectionKind::other) {
      entity.assignSection(region, sectionApi_.sections()[text(named.name)]);
    }
    if (section.beamAxis.size() == 3) {
      entity.assignBeamOrientation(
          region, odb_Enum::N1_COSINES,
          floats({section.beamAxis[0], section.beamAxis[1], section.beamAxis[2]}));
    }
    if (section.orientation.empty() || section.kind == SectionKind::connector) continue;
    const Orientation* orientation = findOrientation(content, section.orientation);
    if (!orientation) {
      warn("orientation " + section.orientation + " of section " + named.name + " is not defined");
      continue;
    }
    orient(entity, region, *orientation);
  }
}

// Elements of one system are one region. Where the orientation has systems of single elements, each
// region is an internal element set.
void ModelWriter::orient(odb_PartEntity& entity, const odb_Set& region,
                         const Orientation& orientation) {
  const auto assign = [&](const odb_Set& elements, const CoordinateSystem& axes) {
    entity.assignMaterialOrientation(
        elements, csysOf(orientation, axes),
        static_cast<odb_Enum::odb_AxisEnum>(std::max(orientation.rotationAxis, 1)),
        static_cast<float>(orientation.rotationAngle));
  };
  if (orientation.elementSystems.empty()) return assign(region, orientation.axes);
  std::map<std::size_t, std::vector<std::int32_t>> groups;  // by system, 0: that of the rest
  const odb_SequenceElement& elements = region.elements();
  for (int i = 0; i < elements.size(); ++i) {
    const std::int32_t label = elements[i].label();
    const auto found = orientation.elementSystems.find(label);
    groups[found == orientation.elementSystems.end() ? 0 : found->second + 1].push_back(label);
  }
  if (groups.size() > kMaxSystems) {
    warn("orientation " + orientation.name + " has more than " + std::to_string(kMaxSystems) +
         " different systems: it is not assigned to the elements; values keep their systems");
    return;
  }
  for (const auto& [system, labels] : groups) {
    const CoordinateSystem& axes = orientation.axesOf(labels.front());
    if (groups.size() == 1) return assign(region, axes);
    const odb_DatumCsys csys = csysOf(orientation, axes);
    const std::string base = "_" + std::string(region.name().CStr()) + "_" + csys.name().CStr();
    std::string name = base;
    for (int n = 2; entity.elementSets().isMember(text(name)); ++n) {
      name = base + "-" + std::to_string(n);
    }
    assign(entity.ElementSet(text(name), sequence(labels)), axes);
    ++summary_.nSets;
  }
}

// Connectors and point masses between instances, and the axes of all connectors.
void ModelWriter::assignAssemblySections() {
  odb_Assembly& assembly = odb_.rootAssembly();
  const auto orient = [&](const odb_Set& region, const Section& section, const Scope& content) {
    const auto system = [&](const std::string& name, const Orientation*& orientation) {
      orientation = name.empty() ? nullptr : findOrientation(content, name);
      if (orientation) return csysOf(*orientation, orientation->axes);
      if (!name.empty()) warn("orientation " + name + " of a connector is not defined");
      return odb_DatumCsys();
    };
    const Orientation *first = nullptr, *second = nullptr;
    const odb_DatumCsys csys1 = system(section.connector.orientation1, first);
    const odb_DatumCsys csys2 = system(section.connector.orientation2, second);
    if (!first && !second) return;
    const auto axis = [](const Orientation* o) {
      return static_cast<odb_Enum::odb_AxisEnum>(o ? std::max(o->rotationAxis, 1) : 1);
    };
    const auto angle = [](const Orientation* o) {
      return o ? static_cast<float>(o->rotationAngle) : 0.0F;
    };
    if (second) {
      assembly.ConnectorOrientation(region, csys1, axis(first), angle(first), csys2, axis(second),
                                    angle(second));
    } else {
      assembly.ConnectorOrientation(region, csys1, axis(first), angle(first));
    }
  };
  for (const Section& section : deck_.assembly.sections) {
    if (section.kind == SectionKind::other) continue;
    const odb_Set region = assembly.elementSets()[text(section.elset)];
    assembly.SectionAssignment(region, sectionApi_.sections()[text(named_.at(&section).name)]);
    if (section.kind == SectionKind::connector) orient(region, section, deck_.assembly);
  }
  // Connectors inside of parts: their orientations belong to the assembly all the same.
  for (const Instance& instance : deck_.instances) {
    const Scope& mesh = deck_.meshOf(instance);
    for (const Section& section : mesh.sections) {
      if (section.kind != SectionKind::connector) continue;
      const odb_Instance& written = assembly.instances()[text(instance.name)];
      orient(written.elementSets()[text(section.elset)], section, mesh);
    }
  }
}

}  // namespace odbs::importer
