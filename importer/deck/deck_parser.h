// SPDX-License-Identifier: BSD-3-Clause
// The reader's inside: where in the deck's structure reading stands, the helpers that all keywords
// use, and one function per keyword. Functions are in read_*.cpp by subject.
#pragma once

#include <array>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "importer/deck/deck.h"
#include "importer/deck/element_types.h"
#include "importer/deck/line_source.h"

namespace odbs::importer {

using Vec3 = std::array<double, 3>;

class DeckParser {
 public:
  DeckParser(const std::string& path, std::function<void(double)> progress);
  Deck parse();

 private:
  enum class Level { flat, part, assembly, instance };
  using Handler = void (DeckParser::*)(const Keyword&);
  struct KeywordRow {
    std::string_view name;
    Handler handler;
  };
  static const KeywordRow kKeywords[];

  // ---- Helpers (deck_parser.cpp) ----
  [[noreturn]] void fail(const std::string& reason) const { lines_.fail(reason); }
  void checkSpelling(const Keyword& keyword);
  // Counts a keyword that leaves nothing in the database.
  void ignore(const Keyword& keyword);
  Scope& scope();
  // A required parameter's value; fails at the keyword's line when it is missing or empty.
  const std::string& required(const Keyword& keyword, std::string_view name) const;
  std::int32_t labelOf(std::string_view field) const;
  std::int64_t integerOf(std::string_view field) const;
  double realOf(std::string_view field) const;
  int pointsOf(std::string_view field, int fallback) const;
  // The reals of a data line, blank fields as 0; at most `limit`.
  std::vector<double> realsOf(std::string_view line, std::size_t limit) const;
  // All data lines up to the next keyword, each as its fields.
  std::vector<std::vector<std::string>> dataFields();
  // "12", "SET", "INSTANCE.12" or "INSTANCE.SET".
  Reference referenceOf(std::string_view field, std::int32_t owner = kOwn) const;
  std::int32_t instanceIndex(const std::string& name) const;  // or -1
  // The owner that the parameter INSTANCE names, kOwn without it.
  std::int32_t ownerOf(const Keyword& keyword) const;
  // The set that `reference` names, looked up where its owner keeps it; null when there is none.
  const Set* findSet(const Reference& reference, bool elements) const;
  void countGenerated(std::int64_t n);
  void warn(Place place, const std::string& text);

  // ---- Mesh (read_mesh.cpp) ----
  void readNode(const Keyword&);
  void readElement(const Keyword&);
  void readSystem(const Keyword&);
  void readNmap(const Keyword&);
  void readImperfection(const Keyword&);
  void readParameter(const Keyword&);
  void addElementLine(std::string_view line, std::size_t block, const DeckElementType& type,
                      Set* elset);
  void takeElementFields(std::string_view line, const DeckElementType& type);
  void checkNodeCount(Place place, const DeckElementType& type, const std::string& typeName);
  Vec3 toGlobal(const Vec3& point) const;

  // ---- Mesh generation (read_generation.cpp) ----
  void readNgen(const Keyword&);
  void readNfill(const Keyword&);
  void readNcopy(const Keyword&);
  void readElgen(const Keyword&);
  void readElcopy(const Keyword&);
  Vec3 nodeAt(std::int64_t label);
  void generateNode(std::int64_t label, const Vec3& at, Set* nset);
  void generateElement(std::int64_t label, ElementTable::Position master, std::int64_t nodeShift,
                       bool mirrored, Set* elset);
  std::vector<std::int32_t> membersInOrder(const std::string& setName, bool elements);

  // ---- Sets and surfaces (read_sets.cpp) ----
  void readNset(const Keyword&);
  void readElset(const Keyword&);
  void readSet(const Keyword&, bool elements);
  void addSetLine(std::string_view line, bool generate, bool elements, std::int32_t owner,
                  Set& set);
  void addNodesOfElements(const Keyword&, Set& set);
  void readSurface(const Keyword&);
  void readAnalyticSurface(const Keyword&);
  void combineSurfaces(const Keyword&, Surface& surface);

  // ---- Orientations (read_orientations.cpp) ----
  void readOrientation(const Keyword&);
  void readDistribution(const Keyword&);
  void readDistributionTable(const Keyword&);
  void finishOrientations(Scope& content);
  bool takeDistribution(const Distribution& distribution, Orientation& orientation);

  // ---- Sections (read_sections.cpp) ----
  void readSolidSection(const Keyword&);
  void readShellSection(const Keyword&);
  void readShellGeneralSection(const Keyword&);
  void readMembraneSection(const Keyword&);
  void readBeamSection(const Keyword&);
  void readGasketSection(const Keyword&);
  void readCohesiveSection(const Keyword&);
  void readConnectorSection(const Keyword&);
  void readMass(const Keyword&);
  void readRotaryInertia(const Keyword&);
  void readOtherSection(const Keyword&);
  void readTransform(const Keyword&);
  void readNodePrint(const Keyword&);
  void readElementFile(const Keyword& keyword);
  void readCyclicModes(const Keyword& keyword);
  Section startSection(const Keyword&, SectionKind kind, const std::string& word);
  void readLayers(Section& section);

  // ---- Materials (read_materials.cpp) ----
  void readMaterial(const Keyword&);
  void readDensity(const Keyword&);
  void readElastic(const Keyword&);
  void readFailStress(const Keyword&);
  void readFailStrain(const Keyword&);
  void readAcousticMedium(const Keyword&);
  void readNoCompression(const Keyword&);
  void readNoTension(const Keyword&);
  Material& material(const Keyword&);
  void readTable(Table& table, std::size_t nConstants);

  // ---- Constraints, contact, amplitudes (read_interactions.cpp) ----
  void readTie(const Keyword&);
  void readCoupling(const Keyword&);
  void readCouplingKind(const Keyword&);
  void readKinematicCoupling(const Keyword&);
  void readMpc(const Keyword&);
  void readShellToSolidCoupling(const Keyword&);
  void readDisplayBody(const Keyword&);
  void readSurfaceInteraction(const Keyword&);
  void readFriction(const Keyword&);
  void readConnectorFriction(const Keyword&);
  void readContactPair(const Keyword&);
  void readAmplitude(const Keyword&);
  NamedObject startObject(const Keyword&, NamedObject::Kind kind, const char* type,
                          const std::string& name);
  // A free name in the manner of `base`: itself, or with a number after it.
  std::string freeName(const std::string& base, NamedObject::Kind kind);
  // "LENGTH_METHOD": SPECIFIED with the value of the parameter, or what it is otherwise.
  void addSpecified(const Keyword&, std::string_view parameter, const char* otherwise,
                    const std::string& methodGetter, const std::string& getter,
                    NamedObject& object);

  // ---- Structure (read_assembly.cpp) ----
  void readPart(const Keyword&);
  void readEndPart(const Keyword&);
  void readAssembly(const Keyword&);
  void readEndAssembly(const Keyword&);
  void readInstance(const Keyword&);
  void readEndInstance(const Keyword&);
  void readRigidBody(const Keyword&);

  // ---- Steps (read_steps.cpp) ----
  void readHeading(const Keyword&);
  void readStep(const Keyword&);
  void readEndStep(const Keyword&);
  void readProcedure(const Keyword&);

  // ---- Resolution (finish_deck.cpp) ----
  void finish();
  void finishStructure();
  void finishUses(Scope& content, const Scope& home);
  void finishMesh(Scope& content);
  void checkConnectivity(const Scope& content);
  const std::vector<std::int32_t>& sortedElements(const Scope& mesh);
  void finishSets(SetTable& sets, const Scope& home, bool elements);
  void finishMembers(Members& members, const Scope& home, bool elements, bool unsorted);
  void finishSurfaces(Scope& content, const Scope& home);
  void checkMaterials(const Section& section);
  void finishSections(Scope& content, const Scope& home);
  void finishRigidBodies(Scope& content);
  const Scope& homeOf(std::int32_t owner, const Scope& home) const;

  LineSource lines_;
  std::function<void(double)> progress_;
  Deck deck_;
  Level level_ = Level::flat;
  std::int32_t part_ = -1, instance_ = -1;  // being read, in their levels
  std::int32_t flatPart_ = -1;              // part that takes what stands outside of parts
  std::unordered_map<std::string, std::int32_t> instanceIndices_;
  bool assemblySeen_ = false;
  bool inStep_ = false;
  // The element being read; kept between elements, which are too many for an allocation each.
  struct ElementInput {
    std::int32_t label = 0;
    std::size_t nFields = 0;  // of nodes, those with label 0 and surplus ones included
    std::vector<std::int32_t> nodes, owners;
  } elementInput_;
  bool surplusWarned_ = false;  // elements with too many nodes: one warning a keyword
  std::int32_t material_ = -1;
  std::string property_;              // the *SURFACE INTERACTION being read; empty: none
  bool couplingOpen_ = false;         // the last of the scope's objects waits for its kind
  std::map<std::string, int> names_;  // of constraints and interactions, with the numbers given
  std::int64_t nGenerated_ = 0;
  std::int64_t nResolved_ = 0;
  std::unordered_map<const Scope*, std::vector<std::int32_t>> elementLabels_;
  // *SYSTEM in force: origin and axes of the coordinates that *NODE gives.
  bool systemSet_ = false;
  Vec3 systemOrigin_{};
  std::array<Vec3, 3> systemAxes_{};
};

// ---- Small vector algebra, shared by the reader's files ----

Vec3 operator+(const Vec3& a, const Vec3& b);
Vec3 operator-(const Vec3& a, const Vec3& b);
Vec3 operator*(double s, const Vec3& a);
double dot(const Vec3& a, const Vec3& b);
Vec3 cross(const Vec3& a, const Vec3& b);
double norm(const Vec3& a);
// `point` turned about the axis from a to b by `degrees`, right-handed; unchanged when a equals b.
Vec3 rotated(const Vec3& point, const Vec3& a, const Vec3& b, double degrees);

}  // namespace odbs::importer
