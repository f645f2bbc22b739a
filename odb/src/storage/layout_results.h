// SPDX-License-Identifier: BSD-3-Clause
// Stored tables of the result side; included by layout.h, which has the rules. What many frames
// have in common (what a field is, which labels a block has) is stored once and referred to by row;
// labels are arrays that any number of blocks may share.
#pragma once

namespace odbs::engine::layout {

// What a field output is, apart from its values.
struct FieldKinds {
  enum Ints {
    kName,
    kDescription,
    kType,         // odb_Enum::odb_DataTypeEnum
    kDim,          // components, or rows of matrices
    kDim2,         // columns of matrices, else 1
    kEngineering,  // 1: shear components are doubled
    kInvariants,   // bit k: odb_Enum::odb_InvariantEnum k is valid
    kFirstLabel,   // rows of FieldLabels
    kNLabels,
    kNInts
  };
  static constexpr TableSpec shape{"field_kinds", kNInts, 0, 0, {}};
};

// Component labels.
struct FieldLabels {
  enum Ints { kText, kNInts };
  static constexpr TableSpec shape{"field_labels", kNInts, 0, 0, {}};
};

// Whose values a block has. Arrays have one entry per value or are empty.
struct FieldLayouts {
  enum Ints {
    kEntity,       // row of Entities: an instance, or 0
    kPosition,     // odb_Enum::odb_ResultPositionEnum
    kElementType,  // text
    kCategory,     // row of Categories, -1: no section point
    kPoint,        // place among the category's points
    kNValues,
    kNElements,         // different elements
    kNNodes,            // different nodes
    kValuesPerElement,  // 0 where elements differ
    kElementLabels,     // int32; all positions with elements
    kNElementLabels,
    kNodeLabels,  // int32; nodal and element-nodal
    kNNodeLabels,
    kPoints,  // int32, from 1; integration points
    kNPoints,
    kFaces,  // int32, odb_Enum::odb_ElementFaceEnum; element faces
    kNFaces,
    kNInts
  };
  static constexpr TableSpec shape{"field_layouts",
                                   kNInts,
                                   0,
                                   4,
                                   {{kElementLabels, Kind::kInt32},
                                    {kNodeLabels, Kind::kInt32},
                                    {kPoints, Kind::kInt32},
                                    {kFaces, Kind::kInt32}}};
};

// One row per row of Frames.
struct FrameFields {
  enum Ints { kFirstField, kNFields, kNInts };
  static constexpr TableSpec shape{"frame_fields", kNInts, 0, 0, {}};
};

// The fields of all frames, frame by frame.
struct Fields {
  enum Ints { kKind, kFirstBlock, kNBlocks, kFirstDouble, kNDoubles, kNInts };
  static constexpr TableSpec shape{"fields", kNInts, 0, 0, {}};
};

// Blocks of values in single precision, and in double precision: float32 or float64 arrays.
struct FieldBlocks {
  enum Ints {
    kLayout,
    kType,  // odb_Enum::odb_DataTypeEnum of the values
    kData,  // [values][width]
    kNData,
    kConjugate,  // as many, or empty
    kNConjugate,
    kOrientation,  // [values][4] quaternions x, y, z, scalar, or empty
    kNOrientation,
    kNInts
  };
  static constexpr TableSpec shape{
      "field_blocks",
      kNInts,
      0,
      3,
      {{kData, Kind::kFloat32}, {kConjugate, Kind::kFloat32}, {kOrientation, Kind::kFloat32}}};
  static constexpr TableSpec doubleSpec{
      "field_blocks_double",
      kNInts,
      0,
      3,
      {{kData, Kind::kFloat64}, {kConjugate, Kind::kFloat64}, {kOrientation, Kind::kFloat64}}};
};

// One row per row of Steps.
struct StepResults {
  enum Ints { kFirstRegion, kNRegions, kFirstFailures, kNFailures, kNInts };
  static constexpr TableSpec shape{"step_results", kNInts, 0, 0, {}};
};

struct HistoryRegions {
  enum Ints {
    kName,
    kDescription,
    kPosition,    // odb_Enum::odb_ResultPositionEnum
    kNodeEntity,  // row of Entities, -1: no node
    kNode,        // label
    kElementEntity,
    kElement,
    kIpNumber,
    kCategory,  // as in FieldLayouts
    kPoint,
    kFace,      // odb_Enum::odb_ElementFaceEnum
    kViewer,    // entity that sees the set, -1: no set
    kSetType,   // odb_Enum::odb_SetTypeEnum
    kSet,       // its name
    kEntity,    // the instance or assembly that the region is, -1: neither
    kLoadCase,  // load case of the step, counted from 0, or -1
    kFirstOutput,
    kNOutputs,
    kNInts
  };
  static constexpr TableSpec shape{"history_regions", kNInts, 0, 0, {}};
};

struct HistoryOutputs {
  enum Ints {
    kName,
    kDescription,
    kType,        // odb_Enum::odb_DataTypeEnum
    kInvariants,  // bits
    kData,        // float32[n][2]: time, frequency or mode, and value
    kNData,
    kConjugate,  // float32[n][2]
    kNConjugate,
    kNInts
  };
  static constexpr TableSpec shape{
      "history_outputs", kNInts, 0, 2, {{kData, Kind::kFloat32}, {kConjugate, Kind::kFloat32}}};
};

// When elements of one entity failed.
struct Failures {
  enum Ints {
    kEntity,
    kLabels,  // int32[n], of elements
    kNLabels,
    kTimes,  // float32[n], step time
    kNTimes,
    kNInts
  };
  static constexpr TableSpec shape{
      "element_failures", kNInts, 0, 2, {{kLabels, Kind::kInt32}, {kTimes, Kind::kFloat32}}};
};

}  // namespace odbs::engine::layout
