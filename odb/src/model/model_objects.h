// SPDX-License-Identifier: BSD-3-Clause
// The data of the handles of the model side. The database owns all of it; addresses are stable.
#pragma once

#include "odb/src/model/label_index.h"
#include "odb/src/storage/storage.h"

#include <odb_API.h>
#include <odb_MaterialTypes.h>
#include <odb_SectionTypes.h>

#include <deque>
#include <map>
#include <memory>
#include <set>

namespace odbs::engine {

class Database;
struct EntityData;
struct SetData;
struct Model;

struct SectionPointData {
  int number = -1;
  odb_String description;
};

struct CategoryData {
  Database* database = nullptr;
  odb_String name;
  odb_String description;
  const odb_SectionCategory* self = nullptr;  // the handle that elements give
  std::deque<SectionPointData> points;
  odb_SequenceSectionPoint handles;
  std::int64_t row = -1;  // while saving
};

struct CsysData {
  odb_String name;
  odb_Enum::odb_DatumCsysTypeEnum type = odb_Enum::CARTESIAN;
  float axes[4][3] = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};  // origin, x, y, z
  std::int64_t row = -1;
};

// The members of a set in one entity.
struct SetSegment {
  EntityData* entity = nullptr;
  bool ofElements = false;
  StoredArray<int> labels;
  StoredArray<int> faces;
  // Made at first use.
  bool ready = false;
  Buffer<int> indices;
};

// The views of a set that callers hold, made at first use.
struct SetViews {
  odb_SequenceNode nodes;
  odb_SequenceElement elements;
  odb_SequenceElementFace faces;
};

struct SetData {
  EntityData* owner = nullptr;
  odb_String name;
  odb_Enum::odb_SetTypeEnum type = odb_Enum::UNKNOWN_SET;
  SetData* source = nullptr;  // an instance's view of its part's set; it has no segments
  std::vector<std::unique_ptr<SetSegment>> segments;
  std::unique_ptr<SetViews> all;
  std::map<odb_String, std::unique_ptr<SetViews>> byInstance;
  std::int64_t row = -1;
};

struct AssignmentData {
  Database* database = nullptr;
  odb_Set region;
  odb_String sectionName;
};

struct SegmentData {
  odb_String type;
  odb_SequenceSequenceFloat data;
};

struct SurfaceData {
  EntityData* owner = nullptr;
  odb_String name;
  odb_String type;
  double filletRadius = 0;
  odb_SequenceSequenceFloat localCoordData;
  std::deque<SegmentData> segments;
  odb_SequenceAnalyticSurfaceSegment handles;
  std::int64_t row = -1;
};

struct RigidBodyData {
  odb_Set reference;
  odb_Set elements;
  odb_Set tieNodes;
  odb_Set pinNodes;
  odb_Enum::odb_PositionEnum position = odb_Enum::INPUT;
  bool isothermal = false;
  SurfaceData* surface = nullptr;
  odb_AnalyticSurface surfaceHandle;
};

enum class OrientationKind { kBeam = 0, kMaterial = 1, kRebar = 2, kConnector = 3 };

struct OrientationData {
  OrientationKind kind = OrientationKind::kBeam;
  odb_Set region;
  odb_DatumCsys csys1;
  odb_DatumCsys csys2;
  odb_Enum::odb_AxisEnum axis1 = odb_Enum::AXIS_1;
  odb_Enum::odb_AxisEnum axis2 = odb_Enum::AXIS_1;
  odb_Enum::odb_StackDirectionEnum stack = odb_Enum::STACK_3;
  odb_Enum::odb_OrientationMethodEnum method = odb_Enum::N1_COSINES;
  bool same = false;
  odb_SequenceFloat vector;
  float angle1 = 0;
  float angle2 = 0;
};

// What sections, behaviours and objects were made with, by name of the argument.
struct Property {
  odb_Union value;
  odb_Set set;
  bool isSet = false;
};
using Properties = std::map<odb_String, Property>;

struct SectionData {
  Database* database = nullptr;
  odb_String name;
  TypeIdentifier type;
  Properties properties;
  odb_SequenceSectionLayer layup;
  std::shared_ptr<void> cast;
};

struct BehaviourData {
  Database* database = nullptr;
  bool hasValue = false;
  odb_SequenceSequenceDouble table;
  Properties properties;
  struct MaterialData* material = nullptr;
};

enum BehaviourKind { kDensity, kElastic, kFailStress, kFailStrain, kAcousticMedium, kNBehaviours };

struct MaterialData {
  Database* database = nullptr;
  odb_String name;
  BehaviourData behaviours[kNBehaviours];
  odb_Density density;
  odb_Elastic elastic;
  odb_FailStress failStress;
  odb_FailStrain failStrain;
  odb_AcousticMedium acousticMedium;
};

enum class ObjectKind {
  kProfile = 0,
  kConstraint = 1,
  kInteraction = 2,
  kInteractionProperty = 3,
  kAmplitude = 4
};

struct PropertyData {
  ObjectKind kind = ObjectKind::kProfile;
  odb_String name;
  TypeIdentifier type;
  Properties properties;
  std::map<odb_String, odb_SequenceSequenceDouble> tables;
  std::shared_ptr<void> cast;
};

struct CurveData {
  odb_String name;
  odb_String texts[7];  // source, content, position, x label, y label, legend, description
  odb_SequenceSequenceFloat points;
};

struct AnnotationData {
  odb_String text;
};

enum class EntityKind { kAssembly = 0, kPart = 1, kInstance = 2 };

// A run of elements as stored.
struct BlockData {
  int nElements = 0;
  int nNodes = 0;
  const odb_String* type = nullptr;
  CategoryData* category = nullptr;
};

struct EntityData {
  Database* database = nullptr;
  Model* model = nullptr;
  EntityKind kind = EntityKind::kPart;
  odb_String name;
  odb_Enum::odb_DimensionEnum space = odb_Enum::THREE_D;
  odb_Enum::odb_PartTypeEnum type = odb_Enum::DEFORMABLE_BODY;
  int row = 0;                 // place in Model::entities
  EntityData* part = nullptr;  // of an instance
  double axes[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  double translation[3] = {0, 0, 0};
  bool placed = false;  // an instance that is not where its part is

  // Stored, of parts and the assembly.
  StoredArray<int> nodeLabels;
  StoredArray<float> coordinates;
  StoredArray<int> elementLabels;
  StoredArray<int> connectivity;
  StoredArray<int> nodeEntities;
  std::vector<BlockData> blocks;

  // Made from that at first use.
  bool nodesReady = false;
  bool elementsReady = false;
  NodeTable nodeTable;
  ElementTable elementTable;
  Buffer<float> placedCoordinates;
  Buffer<int> blockOf;
  std::vector<ElementBlock> elementBlocks;
  LabelIndex nodeIndex;
  LabelIndex elementIndex;
  odb_SequenceNode nodes;
  odb_SequenceElement elements;

  std::deque<SetData> sets;
  int nInherited[4] = {0, 0, 0, 0};  // by set type: how many of the part's sets are taken over
  odb_SetRepository nodeSets;
  odb_SetRepository elementSets;
  odb_SetRepository surfaces;

  // Of each kind the entity's own, what it shows of its part, and both as callers see them.
  std::deque<AssignmentData> assignments;
  std::deque<AssignmentData> inheritedAssignments;
  odb_SequenceSectionAssignment assignmentHandles;
  int nInheritedAssignments = 0;
  std::deque<RigidBodyData> rigidBodies;
  std::deque<RigidBodyData> inheritedRigidBodies;
  odb_SequenceRigidBody rigidBodyHandles;
  int nInheritedRigidBodies = 0;
  std::unique_ptr<SurfaceData> surface;
  odb_AnalyticSurface surfaceHandle;
  std::deque<OrientationData> orientations;
  std::deque<OrientationData> inheritedOrientations;
  odb_SequenceBeamOrientation beamOrientations;
  odb_SequenceMaterialOrientation materialOrientations;
  odb_SequenceRebarOrientation rebarOrientations;
  odb_SequenceConnectorOrientation connectorOrientations;
  int nInheritedOrientations = 0;
};

// Everything but steps and results.
struct Model {
  std::deque<EntityData> entities;  // the assembly first
  odb_Assembly assembly;
  odb_PartRepository parts;
  odb_InstanceRepository instances;
  odb_SequencePretensionSection pretensionSections;

  std::set<odb_String> typeNames;
  std::deque<CategoryData> categories;
  odb_SectionCategoryRepository categoryHandles;
  std::deque<CsysData> csyses;
  odb_DatumCsysRepository csysHandles;

  std::deque<SectionData> sections;
  odb_SectionContainer sectionHandles;
  std::deque<MaterialData> materials;
  odb_MaterialContainer materialHandles;
  std::deque<PropertyData> objects;
  odb_ProfileContainer profiles;
  odb_ConstraintRepository constraints;
  odb_InteractionRepository interactions;
  odb_InteractionPropertyRepository interactionProperties;
  odb_AmplitudeRepository amplitudes;

  std::deque<AnnotationData> annotations;
  odb_AnnotationRepository annotationHandles;
  std::deque<CurveData> curves;
  odb_UserXYDataRepository curveHandles;

  EntityData& root() { return entities.front(); }
};

// ---- Entities ----

// Makes the tables of nodes and elements ready; of an instance also when its part has grown.
void loadNodes(EntityData& entity);
void loadElements(EntityData& entity);
// Index of a label, -1 when unknown.
int findNode(EntityData& entity, int label);
int findElement(EntityData& entity, int label);
// The entity that owns the arrays: the part of an instance, else itself.
inline EntityData& arraysOf(EntityData& entity) {
  return entity.part ? *entity.part : entity;
}
// Brings the tables up to date after the arrays of `entity` grew.
void refreshNodes(EntityData& entity);
void refreshElements(EntityData& entity);

// ---- Sets ----

odb_SetRepository& repositoryOf(EntityData& entity, odb_Enum::odb_SetTypeEnum type);
// An instance takes over what its part has.
void inheritSets(EntityData& entity);
void inheritAssignments(EntityData& entity);
void inheritRigidBodies(EntityData& entity);
void inheritOrientations(EntityData& entity);
// The set of that name and type as `entity` sees it, null when there is none.
SetData* findSet(EntityData& entity, odb_Enum::odb_SetTypeEnum type, const odb_String& name);
// A set of a part as one of its instances sees it; sets of others as they are.
odb_Set seenFrom(EntityData& entity, const odb_Set& set);
// Adds an empty set. Throws odb_Exception when the name is taken.
SetData& addSet(EntityData& owner, odb_Enum::odb_SetTypeEnum type, const odb_String& name);
// Adds members; throws odb_Exception on an unknown label.
void addSegment(SetData& set, EntityData& entity, bool ofElements, const std::vector<int>& labels,
                const std::vector<int>& faces);
odb_Set& handleOf(SetData& set);

// ---- Lists ----

// Adds an orientation to the list of its kind.
void addHandle(EntityData& entity, OrientationData& orientation);
odb_Set& addNodeSurface(EntityData& owner, const odb_String& name,
                        const odb_SequenceString& instances, const odb_SequenceSequenceInt& labels);
odb_Set& addNodeSurface(EntityData& owner, const odb_String& name, const odb_SequenceInt& labels);
// Adds a rigid body after checking its sets.
RigidBodyData& addRigidBody(EntityData& owner, const RigidBodyData& body);
SectionPointData& addPoint(CategoryData& category, int number, const odb_String& description);
void setUpSurface(SurfaceData& surface);
void setUpMaterial(MaterialData& material);
// Throws odb_Exception when the type is not one of the API's section classes.
TypeIdentifier sectionType(const odb_String& name);
// Adds a named object. Returns false when the name is taken.
bool addObject(Model& model, const PropertyData& object);

EntityData& addEntity(Model& model, Database& database, EntityKind kind, const odb_String& name);

}  // namespace odbs::engine
