// SPDX-License-Identifier: BSD-3-Clause
// Section categories, sections, profiles and their extension.
#include "odb/src/model/database.h"
#include "odb/src/storage/errors.h"

namespace odbs::engine {

namespace {

const SectionPointData& noPoint() {
  static const SectionPointData none;
  return none;
}

const CategoryData& noCategoryData() {
  static const CategoryData none;
  return none;
}

const odb_String& noText() {
  static const odb_String none;
  return none;
}

void put(Properties& properties, const char* key, const odb_Union& value) {
  properties[key].value = value;
}

}  // namespace

SectionPointData& addPoint(CategoryData& category, int number, const odb_String& description) {
  SectionPointData& point = category.points.emplace_back();
  point.number = number;
  point.description = description;
  category.handles.append(odb_SectionPoint(&point));
  return point;
}

TypeIdentifier sectionType(const odb_String& name) {
  static const std::set<odb_String> known = {"odb_HomogeneousSolidSection",
                                             "odb_HomogeneousShellSection",
                                             "odb_CompositeShellSection",
                                             "odb_CompositeSolidSection",
                                             "odb_ConnectorSection",
                                             "odb_PointSection",
                                             "odb_CohesiveSection",
                                             "odb_TrussSection",
                                             "odb_PEGSection",
                                             "odb_MembraneSection",
                                             "odb_GasketSection",
                                             "odb_BeamSection",
                                             "odb_ShellSection",
                                             "odb_GeometryShellSection",
                                             "odb_Section"};
  if (known.count(name) == 0) failDamaged(std::string("no section class ") + name.CStr());
  return TypeIdentifier(name);
}

}  // namespace odbs::engine

using namespace odbs::engine;

// ---- Section points and categories ----

int odb_SectionPoint::number() const {
  return (data_ ? *data_ : noPoint()).number;
}
const odb_String& odb_SectionPoint::description() const {
  return (data_ ? *data_ : noPoint()).description;
}

const odb_String& odb_SectionCategory::name() const {
  return (data_ ? *data_ : noCategoryData()).name;
}
const odb_String& odb_SectionCategory::description() const {
  return (data_ ? *data_ : noCategoryData()).description;
}
const odb_SequenceSectionPoint& odb_SectionCategory::sectionPoints() const {
  return (data_ ? *data_ : noCategoryData()).handles;
}
const odb_SectionPoint& odb_SectionCategory::sectionPoints(int i) const {
  return sectionPoints()[i];
}
odb_SectionPoint& odb_SectionCategory::SectionPoint(int number, const odb_String& description) {
  CategoryData& category = need();
  category.database->needWritable();
  for (const SectionPointData& point : category.points) {
    if (point.number == number) {
      failUsage("section point " + std::to_string(number) + " exists already");
    }
  }
  addPoint(category, number, description);
  category.database->touch();
  return category.handles[category.handles.size() - 1];
}

// ---- Sections ----

const odb_String& odb_Section::name() const {
  return need().name;
}
const odbs::TypeIdentifier& odb_Section::subTypeIdentifier() const {
  return need().type;
}
std::shared_ptr<void>& odb_Section::engineCastSlot() const {
  return need().cast;
}

odb_Union odb_Section::value(const char* key) const {
  const auto at = need().properties.find(key);
  return at == need().properties.end() ? odb_Union() : at->second.value;
}

double odb_Section::number(const char* key, double fallback) const {
  const auto at = need().properties.find(key);
  if (at == need().properties.end() || at->second.value.type() == odb_UNION_STRING) return fallback;
  return at->second.value.getDouble();
}

const odb_String& odb_Section::text(const char* key) const {
  const auto at = need().properties.find(key);
  if (at == need().properties.end()) return noText();
  return at->second.value.engineText();
}

const odb_SequenceSectionLayer& odb_CompositeShellSection::layup() const {
  return need().layup;
}
const odb_SectionLayer& odb_CompositeShellSection::layup(int i) const {
  return need().layup[i];
}
const odb_SequenceSectionLayer& odb_CompositeSolidSection::layup() const {
  return need().layup;
}
const odb_SectionLayer& odb_CompositeSolidSection::layup(int i) const {
  return need().layup[i];
}

odb_SectionLayer SectionLayer(double thickness, const odb_String& material,
                              const odb_Union& orientAngle, int numIntPts, const odb_String& axis,
                              float angle, const odb_String& additionalRotationType,
                              const odb_String& thicknessType, const odb_String& plyName,
                              const odb_DatumCsys& orientation,
                              const odb_String& additionalRotationField,
                              const odb_String& thicknessField) {
  odb_SectionLayer layer;
  layer.thickness_ = thickness;
  layer.material_ = material;
  layer.orientAngle_ = orientAngle;
  layer.numIntPts_ = numIntPts;
  layer.axis_ = axis;
  layer.angle_ = angle;
  layer.additionalRotationType_ = additionalRotationType;
  layer.thicknessType_ = thicknessType;
  layer.plyName_ = plyName;
  layer.orientation_ = orientation;
  layer.additionalRotationField_ = additionalRotationField;
  layer.thicknessField_ = thicknessField;
  return layer;
}

// ---- The extension ----

namespace {

void checkMaterial(Database& database, const odb_String& material) {
  if (!material.empty() && !database.model().materialHandles.isMember(material)) {
    failUsage(std::string("no material ") + material.CStr());
  }
}

// Adds the section and gives it as its own class.
template <class T>
T& addSection(Database& database, const odb_String& name, const Properties& properties,
              const odb_SequenceSectionLayer& layup = odb_SequenceSectionLayer()) {
  database.needWritable();
  Model& model = database.model();
  if (name.empty() || model.sectionHandles.isMember(name)) {
    failUsage(std::string("section \"") + name.CStr() + "\" has no name or exists already");
  }
  const auto material = properties.find("material");
  if (material != properties.end()) checkMaterial(database, material->second.value.getString());
  for (int i = 0; i < layup.size(); ++i) checkMaterial(database, layup[i].material());
  SectionData& section = model.sections.emplace_back();
  section.database = &database;
  section.name = name;
  section.type = T::typeIdentifier();
  section.properties = properties;
  section.layup = layup;
  database.touch();
  const odb_Section& handle = model.sectionHandles.engineItems().add(name, odb_Section(&section));
  return const_cast<T&>(odb_dynamicCast(T, handle));
}

template <class T>
T& addMaterialSection(Database& database, const odb_String& name, const odb_String& material) {
  Properties properties;
  put(properties, "material", material);
  return addSection<T>(database, name, properties);
}

}  // namespace

odb_SectionContainer& odb_SectionApi::sections() const {
  return need().model().sectionHandles;
}
odb_ProfileContainer& odb_SectionApi::profiles() const {
  return need().model().profiles;
}
int odb_SectionApi::numProfiles() const {
  return profiles().size();
}

odb_HomogeneousSolidSection& odb_SectionApi::HomogeneousSolidSection(const odb_String& name,
                                                                     const odb_String& material,
                                                                     double thickness) {
  Properties properties;
  put(properties, "material", material);
  put(properties, "thickness", thickness);
  return addSection<odb_HomogeneousSolidSection>(need(), name, properties);
}

namespace {

Properties shellProperties(const odb_String& thicknessType, bool preIntegrate,
                           const odb_String& poissonDefinition, double poisson,
                           const odb_String& integrationRule, const odb_String& temperature,
                           const odb_String& idealization, const odb_Union& nTemp,
                           const odb_Union& thicknessModulus, bool useDensity, double density,
                           const odb_String& thicknessField,
                           const odb_String& nodalThicknessField) {
  Properties properties;
  put(properties, "thicknessType", thicknessType);
  put(properties, "preIntegrate", preIntegrate);
  put(properties, "poissonDefinition", poissonDefinition);
  put(properties, "poisson", poisson);
  put(properties, "integrationRule", integrationRule);
  put(properties, "temperature", temperature);
  put(properties, "idealization", idealization);
  put(properties, "nTemp", nTemp);
  put(properties, "thicknessModulus", thicknessModulus);
  put(properties, "useDensity", useDensity);
  put(properties, "density", density);
  put(properties, "thicknessField", thicknessField);
  put(properties, "nodalThicknessField", nodalThicknessField);
  return properties;
}

}  // namespace

odb_HomogeneousShellSection& odb_SectionApi::HomogeneousShellSection(
    const odb_String& name, double thickness, const odb_String& material, int numIntPts,
    const odb_String& thicknessType, bool preIntegrate, const odb_String& poissonDefinition,
    double poisson, const odb_String& integrationRule, const odb_String& temperature,
    const odb_String& idealization, const odb_Union& nTemp, const odb_Union& thicknessModulus,
    bool useDensity, double density, const odb_String& thicknessField,
    const odb_String& nodalThicknessField) {
  Properties properties =
      shellProperties(thicknessType, preIntegrate, poissonDefinition, poisson, integrationRule,
                      temperature, idealization, nTemp, thicknessModulus, useDensity, density,
                      thicknessField, nodalThicknessField);
  put(properties, "thickness", thickness);
  put(properties, "material", material);
  put(properties, "numIntPts", numIntPts);
  return addSection<odb_HomogeneousShellSection>(need(), name, properties);
}

odb_CompositeShellSection& odb_SectionApi::CompositeShellSection(
    const odb_String& name, const odb_SequenceSectionLayer& layup, bool symmetric,
    const odb_String& layupName, const odb_String& thicknessType, bool preIntegrate,
    const odb_String& poissonDefinition, double poisson, const odb_String& integrationRule,
    const odb_String& temperature, const odb_String& idealization, const odb_Union& nTemp,
    const odb_Union& thicknessModulus, bool useDensity, double density,
    const odb_String& thicknessField, const odb_String& nodalThicknessField) {
  Properties properties =
      shellProperties(thicknessType, preIntegrate, poissonDefinition, poisson, integrationRule,
                      temperature, idealization, nTemp, thicknessModulus, useDensity, density,
                      thicknessField, nodalThicknessField);
  put(properties, "symmetric", symmetric);
  put(properties, "layupName", layupName);
  return addSection<odb_CompositeShellSection>(need(), name, properties, layup);
}

odb_CompositeSolidSection& odb_SectionApi::CompositeSolidSection(
    const odb_String& name, const odb_SequenceSectionLayer& layup, bool symmetric,
    const odb_String& layupName) {
  Properties properties;
  put(properties, "symmetric", symmetric);
  put(properties, "layupName", layupName);
  return addSection<odb_CompositeSolidSection>(need(), name, properties, layup);
}

odb_ConnectorSection& odb_SectionApi::ConnectorSection(
    const odb_String& name, const odb_String& assembledType, const odb_String& rotationalType,
    const odb_String& translationalType, const odb_String& integration,
    const odb_Union& u1ReferenceLength, const odb_Union& u2ReferenceLength,
    const odb_Union& u3ReferenceLength, const odb_Union& ur1ReferenceAngle,
    const odb_Union& ur2ReferenceAngle, const odb_Union& ur3ReferenceAngle,
    const odb_Union& massPerLength, const odb_Union& contactAngle, double materialFlowFactor,
    bool regularize, bool defaultTolerance, double regularization,
    const odb_String& extrapolation) {
  Properties properties;
  put(properties, "assembledType", assembledType);
  put(properties, "rotationalType", rotationalType);
  put(properties, "translationalType", translationalType);
  put(properties, "integration", integration);
  put(properties, "u1ReferenceLength", u1ReferenceLength);
  put(properties, "u2ReferenceLength", u2ReferenceLength);
  put(properties, "u3ReferenceLength", u3ReferenceLength);
  put(properties, "ur1ReferenceAngle", ur1ReferenceAngle);
  put(properties, "ur2ReferenceAngle", ur2ReferenceAngle);
  put(properties, "ur3ReferenceAngle", ur3ReferenceAngle);
  put(properties, "massPerLength", massPerLength);
  put(properties, "contactAngle", contactAngle);
  put(properties, "materialFlowFactor", materialFlowFactor);
  put(properties, "regularize", regularize);
  put(properties, "defaultTolerance", defaultTolerance);
  put(properties, "regularization", regularization);
  put(properties, "extrapolation", extrapolation);
  return addSection<odb_ConnectorSection>(need(), name, properties);
}

odb_PointSection& odb_SectionApi::PointSection(const odb_String& name, double mass) {
  Properties properties;
  put(properties, "mass", mass);
  return addSection<odb_PointSection>(need(), name, properties);
}

odb_CohesiveSection& odb_SectionApi::CohesiveSection(const odb_String& name,
                                                     const odb_String& material) {
  return addMaterialSection<odb_CohesiveSection>(need(), name, material);
}
odb_TrussSection& odb_SectionApi::TrussSection(const odb_String& name, const odb_String& material) {
  return addMaterialSection<odb_TrussSection>(need(), name, material);
}
odb_PEGSection& odb_SectionApi::PEGSection(const odb_String& name, const odb_String& material) {
  return addMaterialSection<odb_PEGSection>(need(), name, material);
}
odb_MembraneSection& odb_SectionApi::MembraneSection(const odb_String& name,
                                                     const odb_String& material) {
  return addMaterialSection<odb_MembraneSection>(need(), name, material);
}
odb_GasketSection& odb_SectionApi::GasketSection(const odb_String& name,
                                                 const odb_String& material) {
  return addMaterialSection<odb_GasketSection>(need(), name, material);
}

odb_BeamSection& odb_SectionApi::BeamSection(const odb_String& name, const odb_String& profile,
                                             const odb_String& material) {
  Properties properties;
  put(properties, "profile", profile);
  put(properties, "material", material);
  return addSection<odb_BeamSection>(need(), name, properties);
}

odb_ShellSection& odb_SectionApi::ShellSection(const odb_String& name) {
  return addSection<odb_ShellSection>(need(), name, Properties());
}
