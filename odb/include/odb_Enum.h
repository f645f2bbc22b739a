// SPDX-License-Identifier: BSD-3-Clause
// Every enumeration of the API, and the one place where their numbers stand. They are stored in
// databases and sent by the server: a number never changes.
#pragma once

struct odb_Enum {
  // Where a value sits.
  enum odb_ResultPositionEnum {
    UNDEFINED_POSITION = 0,
    NODAL = 1,
    ELEMENT_NODAL = 2,
    INTEGRATION_POINT = 3,
    CENTROID = 4,
    ELEMENT_FACE = 5,
    ELEMENT_FACE_INTEGRATION_POINT = 6,
    SURFACE_INTEGRATION_POINT = 7,
    WHOLE_ELEMENT = 8,
    WHOLE_REGION = 9,
    WHOLE_PART_INSTANCE = 10,
    WHOLE_MODEL = 11,
    // No values sit there.
    GENERAL_PARTICLE = 12,
    SURFACE_FACET = 13,
    SURFACE_NODAL = 14
  };

  // Data types of fields and histories: SCALAR to TENSOR_2D_SURFACE; the others name no field type.
  enum odb_DataTypeEnum {
    UNKNOWN_DATA_TYPE = 0,
    UNDEFINED_DATATYPE = 0,
    BOOLEAN = 1,
    SCALAR = 2,
    VECTOR = 3,
    MATRIX = 4,
    TENSOR_3D_FULL = 5,
    TENSOR_3D_PLANAR = 6,
    TENSOR_3D_SURFACE = 7,
    TENSOR_2D_PLANAR = 8,
    TENSOR_2D_SURFACE = 9,
    INTEGER = 10,
    QUATERNION_2D = 11,
    QUATERNION_3D = 12
  };

  enum odb_DataSubtypeEnum { UNDEFINED_SUBTYPE = 0 };

  enum odb_InvariantEnum {
    UNDEFINED_INVARIANT = 0,
    MAGNITUDE = 1,
    MISES = 2,
    TRESCA = 3,
    PRESS = 4,
    INV3 = 5,
    MAX_PRINCIPAL = 6,
    MID_PRINCIPAL = 7,
    MIN_PRINCIPAL = 8,
    MAX_INPLANE_PRINCIPAL = 9,
    MIN_INPLANE_PRINCIPAL = 10,
    OUTOFPLANE_PRINCIPAL = 11,
    // Never among a field's valid invariants.
    MAX_PRINCIPAL_ABS = 12
  };

  // What the frames of a step run over.
  enum odb_DomainEnum { TIME = 0, FREQUENCY = 1, MODAL = 2, ARC_LENGTH = 3 };

  enum odb_PrecisionEnum { SINGLE_PRECISION = 0, DOUBLE_PRECISION = 1 };

  enum odb_AnalysisCodeEnum {
    UNKNOWN_ANALYSIS_CODE = 0,
    ABAQUS_STANDARD = 1,
    ABAQUS_EXPLICIT = 2,
    ABAQUS_CFD = 3
  };

  enum odb_DimensionEnum { UNKNOWN_DIMENSION = 0, THREE_D = 1, TWO_D_PLANAR = 2, AXISYMMETRIC = 3 };

  enum odb_ElementFaceEnum {
    FACE_UNKNOWN = 0,
    END1 = 1,
    END2 = 2,
    END3 = 3,
    FACE1 = 11,
    FACE2 = 12,
    FACE3 = 13,
    FACE4 = 14,
    FACE5 = 15,
    FACE6 = 16,
    EDGE1 = 101,
    EDGE2 = 102,
    EDGE3 = 103,
    EDGE4 = 104,
    EDGE5 = 105,
    EDGE6 = 106,
    EDGE7 = 107,
    EDGE8 = 108,
    EDGE9 = 109,
    EDGE10 = 110,
    EDGE11 = 111,
    EDGE12 = 112,
    EDGE13 = 113,
    EDGE14 = 114,
    EDGE15 = 115,
    EDGE16 = 116,
    EDGE17 = 117,
    EDGE18 = 118,
    EDGE19 = 119,
    EDGE20 = 120,
    SIDE1 = 1001,
    SPOS = 1001,
    SIDE2 = 1002,
    SNEG = 1002,
    DOUBLE_SIDED = 1003
  };

  // Selector of odb_Odb::extendApi.
  enum odb_ApiExtensionEnum { odb_MATERIAL = 0, odb_SECTION = 1 };

  enum odb_SetTypeEnum { UNKNOWN_SET = 0, NODE_SET = 1, ELEMENT_SET = 2, SURFACE_SET = 3 };

  enum odb_PartTypeEnum {
    UNKNOWN_PART_TYPE = 0,
    DEFORMABLE_BODY = 1,
    ANALYTIC_RIGID_SURFACE = 2,
    DISCRETE_RIGID_SURFACE = 3
  };

  enum odb_ProductAddOnEnum {
    AQUA = 0,
    DESIGN = 1,
    BIORID = 2,
    CEL = 3,
    SOLITER = 4,
    CAVPARALLEL = 5
  };

  enum odb_MatchEnum { CLOSEST = 0, BEFORE = 1, AFTER = 2, EXACT = 3 };

  enum odb_AxisEnum { AXIS_1 = 1, AXIS_2 = 2, AXIS_3 = 3 };

  enum odb_StackDirectionEnum { STACK_1 = 1, STACK_2 = 2, STACK_3 = 3, STACK_ORIENTATION = 4 };

  enum odb_OrientationMethodEnum { N1_COSINES = 1, CSYS = 2, VECT = 3 };

  // Where the reference node of a rigid body lies.
  enum odb_PositionEnum { INPUT = 0, CENTER_OF_MASS = 1 };

  enum odb_ResultStateEnum { PROPAGATED = 0, MODIFIED = 1 };

  enum odb_DatumCsysTypeEnum { CARTESIAN = 0, CYLINDRICAL = 1, SPHERICAL = 2 };
};
