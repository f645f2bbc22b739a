// SPDX-License-Identifier: BSD-3-Clause
// The writer's inside. Functions are in write_*.cpp by subject.
#pragma once

#include <odb_API.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>

#include <array>
#include <map>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "importer/deck/deck.h"
#include "importer/deck/element_types.h"
#include "importer/write/database_writer.h"

namespace odbs::importer {

// Where an element label is in a mesh. Blocks must be finished (ascending).
class ElementFinder {
 public:
  explicit ElementFinder(const Scope& mesh) : mesh_(&mesh) {}
  // Block and index of a label that exists. Quick for labels asked in ascending order.
  ElementTable::Position operator()(std::int32_t label);

 private:
  const Scope* mesh_;
  std::size_t block_ = 0, at_ = 0;  // what was found last
};

// Corner nodes of a face, ascending; zeros in front for triangles.
using FaceNodes = std::array<std::int32_t, 4>;
struct FaceHash {
  std::size_t operator()(const FaceNodes& nodes) const {
    std::uint64_t h = 1469598103934665603ULL;
    for (const std::int32_t node : nodes) {
      h = (h ^ static_cast<std::uint32_t>(node)) * 1099511628211ULL;
    }
    return static_cast<std::size_t>(h ^ (h >> 32));
  }
};

class ModelWriter {
 public:
  ModelWriter(const Deck& deck, odb_Odb& odb) : deck_(deck), odb_(odb) {}
  WriteSummary write();

 private:
  // A section as it is named in the database; sections of several scopes may share one.
  struct NamedSection {
    std::string name;      // of the section
    std::string category;  // name of its section category
  };
  using Categories = std::vector<std::vector<std::int32_t>>;  // per block and element, -1: none

  // ---- write_model.cpp ----
  void writeParts();
  void writePart(const std::string& name, const Scope& content);
  void writeInstances();
  void writeSteps();
  void writeAnalyticSurface(odb_PartEntity& owner, const Scope& content);
  odb_Enum::odb_DimensionEnum spaceOf(const Scope& content) const;
  void warn(const std::string& text);

  // ---- write_mesh.cpp ----
  void writeNodes(odb_DiscreteEntity& entity, const DeckNodeTable& nodes);
  void writeElements(odb_DiscreteEntity& entity, const Scope& content);
  void writeAssemblyElements();
  Categories categoriesOf(const Scope& content) const;

  // ---- write_sets.cpp ----
  void writeSets(odb_DiscreteEntity& entity, const Scope& content);
  void writeSurfaces(odb_DiscreteEntity& entity, const Scope& content, const Scope& mesh);
  void writeAssemblySets();
  void writeAssemblySurfaces();
  void addFaces(const Scope& mesh, const SurfaceItem& item, const Members& members,
                odb_SequenceInt& labels, odb_SequenceElementFace& faces);
  void addFreeFaces(const Scope& mesh, const std::vector<std::int32_t>& elements,
                    odb_SequenceInt& labels, odb_SequenceElementFace& faces);

  // ---- write_sections.cpp ----
  void writeMaterials();
  void nameSections(const Scope& content, const std::string& owner);
  void writeSection(const Section& section, const NamedSection& named);
  void writeSectionPoints(const Section& section, odb_SectionCategory& category);
  void assignSections(odb_PartEntity& entity, const Scope& content);
  void assignAssemblySections();
  const Orientation* findOrientation(const Scope& content, const std::string& name) const;
  odb_DatumCsys csysOf(const Orientation& orientation, const CoordinateSystem& axes);
  void orient(odb_PartEntity& entity, const odb_Set& region, const Orientation& orientation);

  // ---- write_rigid_bodies.cpp ----
  // `partEntity` is `entity` as a part or instance, null for the assembly.
  void writeRigidBodies(odb_DiscreteEntity& entity, odb_PartEntity* partEntity,
                        const Scope& content);
  odb_Set setOf(odb_DiscreteEntity& entity, const Reference& reference, bool elements);
  std::string nodeSetFor(odb_DiscreteEntity& entity, const Reference& reference);

  // ---- write_interactions.cpp ----
  // Objects of a scope, with regions looked up on `entity`; `owner` goes before names that are
  // taken.
  void writeObjects(odb_DiscreteEntity& entity, const Scope& content, const std::string& owner);
  void writeObject(const NamedObject& object, odb_DiscreteEntity* entity, const std::string& owner);
  odb_Set regionOf(odb_DiscreteEntity& entity, const NamedObject& object,
                   const NamedObject::Region& region);

  const Deck& deck_;
  odb_Odb& odb_;
  odb_SectionApi sectionApi_;
  odb_MaterialApi materialApi_;
  WriteSummary summary_;
  std::map<const Section*, NamedSection> named_;
  std::map<std::string, const Section*> sectionsByName_;
  std::vector<std::string> categories_;  // names, by the index that elements carry
  std::map<const Section*, std::int32_t> categoryOf_;
  std::map<const CoordinateSystem*, std::string> csysOf_;  // names of the datum systems
  std::map<std::string, int> nCsyses_;                     // by the name of the orientation
  const Scope* sharedFacesOf_ = nullptr;                   // mesh whose inner faces these are
  std::unordered_set<FaceNodes, FaceHash> sharedFaces_;
  std::set<std::pair<NamedObject::Kind, std::string>> objectNames_;
  std::map<const Scope*, odb_Part> partOf_;  // by the scope that was written as a part
};

odb_String text(const std::string& s);
odb_SequenceInt sequence(const std::vector<std::int32_t>& labels);
odb_SequenceFloat floats(const std::array<double, 3>& v);

}  // namespace odbs::importer
