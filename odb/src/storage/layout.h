// SPDX-License-Identifier: BSD-3-Clause
// Every stored name, shape and unit. A database is one HDF5 file:
//
//   /format            int64[4]   magic, release, and two numbers that no other save has
//   /texts.bytes       uint8[]    all texts, one after the other, without terminators
//   /texts.ends        int64[n]   position after the last byte of each text, ascending
//   /tables/NAME.ints  int64[rows][columns of the table]
//   /tables/NAME.reals float64[rows][real columns], only where the table has some
//   /arrays/TYPE.K     int32[], float32[] or float64[]: the bulk numbers, in pieces K = 0, 1, ...
//   /arrays/TYPE.sizes int64[pieces]
//
// Tables refer to texts by number (-1: empty text), to rows of other tables by number (-1: none),
// and to arrays by place and count, where the place counts through all pieces of that type; an
// array lies within one piece. A table that is missing has no rows.
#pragma once

#include <cstdint>

namespace odbs::engine::layout {

constexpr std::int64_t kMagic = 0x31424453424445LL;
constexpr int kRelease = 2;

constexpr const char* kFormat = "format";
constexpr const char* kTextBytes = "texts.bytes";
constexpr const char* kTextEnds = "texts.ends";
constexpr const char* kTables = "tables";
constexpr const char* kArrays = "arrays";

enum class Kind { kInt32 = 0, kFloat32 = 1, kFloat64 = 2 };
constexpr int kNKinds = 3;
constexpr const char* kKindNames[kNKinds] = {"int32", "float32", "float64"};

// Two neighbouring columns that refer to an array: place, count.
struct ArrayColumn {
  int column;
  Kind kind;
};

constexpr int kMaxArrayColumns = 6;

struct TableSpec {
  const char* name;
  int nInts;
  int nReals;
  int nArrays;
  ArrayColumn arrays[kMaxArrayColumns];
};

// One row about the database. Columns are texts unless said otherwise.
struct Database {
  enum Ints {
    kTitle,
    kDescription,
    kAssemblyName,
    kAnalysisCode,  // odb_Enum::odb_AnalysisCodeEnum
    kPrecision,     // odb_Enum::odb_PrecisionEnum
    kJobName,
    kJobVersion,
    kCreated,
    kModified,
    kMachine,
    kNSectors,  // sectors of a cyclic model, 0: not cyclic
    kAddOns,    // array int32: odb_Enum::odb_ProductAddOnEnum
    kNAddOns,
    kNInts
  };
  enum Reals { kAxis, kNReals = 6 };  // two points of the cyclic axis
  static constexpr TableSpec shape{"database", kNInts, kNReals, 1, {{kAddOns, Kind::kInt32}}};
};

// What has nodes or sets. Row 0 is the assembly; then parts and instances, each after its part.
struct Entities {
  enum Ints {
    kKind,  // 0 assembly, 1 part, 2 instance
    kName,
    kSpace,  // odb_Enum::odb_DimensionEnum
    kType,   // odb_Enum::odb_PartTypeEnum
    kPart,   // row of an instance's part, else -1
    // Arrays of parts and the assembly; instances have none.
    kNodeLabels,  // int32[n]
    kNNodeLabels,
    kCoordinates,  // float32[n][3], length unit of the model
    kNCoordinates,
    kElementLabels,  // int32[n]
    kNElementLabels,
    kConnectivity,  // int32: node labels, element by element
    kNConnectivity,
    kNodeEntities,  // int32, as long as connectivity: row of the entity that has the node, or
                    // empty when all nodes are of the elements' own entity
    kNNodeEntities,
    kFirstBlock,  // rows of ElementBlocks
    kNBlocks,
    kNInts
  };
  // Placement of an instance: unit vectors of its axes 1, 2, 3, then the translation.
  enum Reals { kAxes = 0, kTranslation = 9, kNReals = 12 };
  static constexpr TableSpec shape{"entities",
                                   kNInts,
                                   kNReals,
                                   5,
                                   {{kNodeLabels, Kind::kInt32},
                                    {kCoordinates, Kind::kFloat32},
                                    {kElementLabels, Kind::kInt32},
                                    {kConnectivity, Kind::kInt32},
                                    {kNodeEntities, Kind::kInt32}}};
};

// Runs of elements with the same type, category and number of nodes.
struct ElementBlocks {
  enum Ints { kNElements, kType, kCategory, kNNodes, kNInts };
  static constexpr TableSpec shape{"element_blocks", kNInts, 0, 0, {}};
};

struct Categories {
  enum Ints { kName, kDescription, kFirstPoint, kNPoints, kNInts };
  static constexpr TableSpec shape{"section_categories", kNInts, 0, 0, {}};
};

struct SectionPoints {
  enum Ints { kNumber, kDescription, kNInts };
  static constexpr TableSpec shape{"section_points", kNInts, 0, 0, {}};
};

struct Sets {
  enum Ints { kOwner, kType, kName, kFirstSegment, kNSegments, kNInts };  // type: odb_SetTypeEnum
  static constexpr TableSpec shape{"sets", kNInts, 0, 0, {}};
};

// The members of a set in one entity.
struct SetSegments {
  enum Ints {
    kEntity,
    kOfElements,  // 0: labels are of nodes, 1: of elements
    kLabels,      // int32[n]
    kNLabels,
    kFaces,  // int32[n], odb_Enum::odb_ElementFaceEnum; element-based surfaces only
    kNFaces,
    kNInts
  };
  static constexpr TableSpec shape{
      "set_segments", kNInts, 0, 2, {{kLabels, Kind::kInt32}, {kFaces, Kind::kInt32}}};
};

// References to sets are pairs: the entity that sees the set (an instance sees its part's), the
// row of the set.
struct Assignments {
  enum Ints { kOwner, kViewer, kSet, kSection, kNInts };  // section: its name
  static constexpr TableSpec shape{"section_assignments", kNInts, 0, 0, {}};
};

struct AnalyticSurfaces {
  enum Ints {
    kOwner,
    kName,
    kType,
    kFirstSegment,
    kNSegments,
    kLocalLengths,  // int32: numbers per row of the local coordinates
    kNLocalLengths,
    kLocalData,  // float32: the rows
    kNLocalData,
    kNInts
  };
  enum Reals { kFillet, kNReals };
  static constexpr TableSpec shape{"analytic_surfaces",
                                   kNInts,
                                   kNReals,
                                   2,
                                   {{kLocalLengths, Kind::kInt32}, {kLocalData, Kind::kFloat32}}};
};

struct SurfaceSegments {
  enum Ints { kType, kLengths, kNLengths, kData, kNData, kNInts };  // rows as above
  static constexpr TableSpec shape{
      "surface_segments", kNInts, 0, 2, {{kLengths, Kind::kInt32}, {kData, Kind::kFloat32}}};
};

struct RigidBodies {
  enum Ints {
    kOwner,
    kReferenceViewer,
    kReference,
    kElementsViewer,
    kElements,
    kTieViewer,
    kTie,
    kPinViewer,
    kPin,
    kPosition,  // odb_Enum::odb_PositionEnum
    kIsothermal,
    kSurface,  // row of AnalyticSurfaces or -1
    kNInts
  };
  static constexpr TableSpec shape{"rigid_bodies", kNInts, 0, 0, {}};
};

struct Csyses {
  enum Ints { kName, kType, kNInts };  // odb_Enum::odb_DatumCsysTypeEnum
  enum Reals { kOrigin = 0, kX = 3, kY = 6, kZ = 9, kNReals = 12 };
  static constexpr TableSpec shape{"datum_csyses", kNInts, kNReals, 0, {}};
};

struct Orientations {
  enum Ints {
    kOwner,
    kKind,  // 0 beam, 1 material, 2 rebar, 3 connector
    kViewer,
    kSet,
    kCsys1,
    kCsys2,
    kAxis1,  // odb_Enum::odb_AxisEnum
    kAxis2,
    kStack,   // odb_Enum::odb_StackDirectionEnum
    kMethod,  // odb_Enum::odb_OrientationMethodEnum
    kSame,    // 1: the second end of a connector uses the system of the first
    kVector,  // float32
    kNVector,
    kNInts
  };
  enum Reals { kAngle1, kAngle2, kNReals };  // degrees
  static constexpr TableSpec shape{"orientations", kNInts, kNReals, 1, {{kVector, Kind::kFloat32}}};
};

struct Sections {
  enum Ints { kType, kName, kFirstProperty, kNProperties, kFirstLayer, kNLayers, kNInts };
  static constexpr TableSpec shape{"sections", kNInts, 0, 0, {}};
};

struct Layers {
  enum Ints {
    kMaterial,
    kOrientIsText,
    kOrientText,
    kNumIntPts,
    kAxis,
    kRotationType,
    kThicknessType,
    kPlyName,
    kCsys,
    kRotationField,
    kThicknessField,
    kNInts
  };
  enum Reals { kThickness, kOrientNumber, kAngle, kNReals };  // angles in degrees
  static constexpr TableSpec shape{"section_layers", kNInts, kNReals, 0, {}};
};

// Named values of sections, behaviours and objects.
struct Properties {
  enum Ints {
    kKey,
    kType,    // odb_UnionType, or 5 for a set
    kValue,   // the text, or the row of the set
    kViewer,  // entity that sees the set
    kNInts
  };
  enum Reals { kNumber, kNReals };
  static constexpr int kSetType = 5;
  static constexpr TableSpec shape{"properties", kNInts, kNReals, 0, {}};
};

struct Materials {
  enum Ints { kName, kFirstBehaviour, kNBehaviours, kNInts };
  static constexpr TableSpec shape{"materials", kNInts, 0, 0, {}};
};

struct Behaviours {
  enum Ints {
    kKind,  // 0 density, 1 elastic, 2 fail stress, 3 fail strain, 4 acoustic medium
    kFirstProperty,
    kNProperties,
    kLengths,  // int32: numbers per row of the table
    kNLengths,
    kData,  // float64: the rows
    kNData,
    kNInts
  };
  static constexpr TableSpec shape{
      "behaviours", kNInts, 0, 2, {{kLengths, Kind::kInt32}, {kData, Kind::kFloat64}}};
};

// Profiles, constraints, interactions, interaction properties, amplitudes.
struct Objects {
  enum Ints { kKind, kType, kName, kFirstProperty, kNProperties, kNInts };
  static constexpr TableSpec shape{"objects", kNInts, 0, 0, {}};
};

// Rows of numbers that an object has beside its named values.
struct ObjectTables {
  enum Ints {
    kObject,   // row of Objects
    kKey,      // name of the getter
    kLengths,  // int32: numbers per row of the table
    kNLengths,
    kData,  // float64: the rows
    kNData,
    kNInts
  };
  static constexpr TableSpec shape{
      "object_tables", kNInts, 0, 2, {{kLengths, Kind::kInt32}, {kData, Kind::kFloat64}}};
};

struct Annotations {
  enum Ints { kKey, kText, kNInts };
  static constexpr TableSpec shape{"annotations", kNInts, 0, 0, {}};
};

struct Curves {
  enum Ints { kName, kTexts, kPoints = 8, kNPoints, kNInts };  // 7 texts; float32[n][2]
  static constexpr TableSpec shape{"curves", kNInts, 0, 1, {{kPoints, Kind::kFloat32}}};
};

// In the order of the analysis.
struct Steps {
  enum Ints {
    kName,
    kDescription,
    kProcedure,
    kDomain,  // odb_Enum::odb_DomainEnum
    kNlgeom,
    kFirstFrame,
    kNFrames,
    kFirstLoadCase,
    kNLoadCases,
    kDefaultField,
    kDefaultDeformedField,
    kMassParts,  // bits: 1 mass centre, 2 and 4 inertias, 8 acoustic centre are given
    kNInts
  };
  enum Reals {
    kTimePeriod,
    kTotalTime,
    kMass,
    kAcousticMass,
    kMassCenter,
    kInertiaAboutCenter = kMassCenter + 3,
    kInertiaAboutOrigin = kInertiaAboutCenter + 6,
    kAcousticCenter = kInertiaAboutOrigin + 6,
    kNReals = kAcousticCenter + 3
  };
  static constexpr TableSpec shape{"steps", kNInts, kNReals, 0, {}};
};

// Frames of all steps, step by step.
struct Frames {
  enum Ints {
    kIncrement,
    kMode,
    kCyclicMode,
    kId,
    kLoadCase,    // load case of the step, counted from 0, or -1
    kAssociated,  // frame of the step, counted from 0, or -1
    kDescription,
    kNInts
  };
  enum Reals { kValue, kFrequency, kNReals };
  static constexpr TableSpec shape{"frames", kNInts, kNReals, 0, {}};
};

struct LoadCases {
  enum Ints { kName, kNInts };
  static constexpr TableSpec shape{"load_cases", kNInts, 0, 0, {}};
};

}  // namespace odbs::engine::layout

#include "odb/src/storage/layout_results.h"

namespace odbs::engine::layout {

// Every table, for the upgrade of an older release.
constexpr const TableSpec* kAllTables[] = {&Database::shape,
                                           &Entities::shape,
                                           &ElementBlocks::shape,
                                           &Categories::shape,
                                           &SectionPoints::shape,
                                           &Sets::shape,
                                           &SetSegments::shape,
                                           &Assignments::shape,
                                           &AnalyticSurfaces::shape,
                                           &SurfaceSegments::shape,
                                           &RigidBodies::shape,
                                           &Csyses::shape,
                                           &Orientations::shape,
                                           &Sections::shape,
                                           &Layers::shape,
                                           &Properties::shape,
                                           &Materials::shape,
                                           &Behaviours::shape,
                                           &Objects::shape,
                                           &ObjectTables::shape,
                                           &Annotations::shape,
                                           &Curves::shape,
                                           &Steps::shape,
                                           &Frames::shape,
                                           &LoadCases::shape,
                                           &FieldKinds::shape,
                                           &FieldLabels::shape,
                                           &FieldLayouts::shape,
                                           &FrameFields::shape,
                                           &Fields::shape,
                                           &FieldBlocks::shape,
                                           &FieldBlocks::doubleSpec,
                                           &StepResults::shape,
                                           &HistoryRegions::shape,
                                           &HistoryOutputs::shape,
                                           &Failures::shape};

}  // namespace odbs::engine::layout
