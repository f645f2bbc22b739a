// SPDX-License-Identifier: BSD-3-Clause
// Blocks of field values as plain arrays: the fast way to read whole fields.
#pragma once

#include <odb_Instance.h>
#include <odb_SectionCategory.h>
#include <odb_Sequences.h>

#include <memory>

namespace odbs {
namespace engine {
struct FieldBlock;
}
}  // namespace odbs

// The values of one instance, element type and section point. A handle; copies share the block.
//
// Arrays belong to the block. They are read from the database at first use and stay valid until
// clearAll() of the sequence or release() of the frame, also when they belong to a subset that is
// gone; a field whose frame was released lives as long as its last handle. "Per value" means
// length() entries; the values of one element are neighbours, in the order of its integration
// points or nodes. Every accessor throws odb_Exception on a default-constructed object and when the
// database is damaged.
class odb_FieldBulkData {
 public:
  odb_FieldBulkData() = default;

  odb_Enum::odb_ResultPositionEnum position() const;
  // Type of this block's values, which may differ from the field's: in a field of stress tensors
  // shells have planar ones.
  odb_Enum::odb_DataTypeEnum type() const;
  // Determines which data accessors may be called.
  odb_Enum::odb_PrecisionEnum precision() const;
  // Number of values, and components per value.
  int length() const;
  int width() const;
  // Number of different elements; 0 in nodal blocks.
  int numberOfElements() const;
  // Number of nodeLabels(): one per value in nodal and element-nodal blocks, else 0.
  int numberOfNodes() const;
  // Values per element: integration points, or nodes in element-nodal blocks; 0 in nodal blocks and
  // where the elements differ.
  int valuesPerElement() const;

  // Per value, the label of its element (repeated for each point); null in nodal blocks and where
  // values belong to no element.
  int* elementLabels() const;
  // Per value, the label of its node, in nodal and element-nodal blocks; else null.
  int* nodeLabels() const;
  // Per value, the number of the integration point, counted from 1; null unless the position is
  // INTEGRATION_POINT.
  int* integrationPoints() const;
  // Per value; null unless the position is ELEMENT_FACE.
  odb_Enum::odb_ElementFaceEnum* faces() const;

  // length() x width() components, value by value. Each throws odb_Exception on a block of the
  // other precision. The conjugate (imaginary) parts are null when the field is not complex.
  float* data() const;
  double* dataDouble() const;
  float* conjugateData() const;
  double* conjugateDataDouble() const;
  // Per value, the Mises stress of the real part, in the field's unit; null when MISES is not among
  // the field's valid invariants or the values are no tensors.
  float* mises() const;
  // Per value, orientationWidth() numbers: a quaternion (x, y, z, scalar part last) whose rotation
  // matrix has the local axes as rows; null when the values are in the global system. Each throws
  // odb_Exception on a block of the other precision.
  float* localCoordSystem() const;
  double* localCoordSystemDouble() const;
  // 4, or 0 where there is no local system.
  int orientationWidth() const;

  // Element type such as "C3D8R"; empty in nodal blocks.
  const odb_String& baseElementType() const;
  // Owner of the labels: an instance, or the root assembly for its own nodes and elements.
  const odb_Instance& instance() const;
  // Number -1 when the values belong to no section point.
  const odb_SectionPoint& sectionPoint() const;
  const odb_SequenceString& componentLabels() const;

  // Same block, not same content.
  bool operator==(const odb_FieldBulkData& other) const { return block_ == other.block_; }

  // For the library itself.
  explicit odb_FieldBulkData(std::shared_ptr<odbs::engine::FieldBlock> block)
      : block_(std::move(block)) {}
  const std::shared_ptr<odbs::engine::FieldBlock>& engineBlock() const { return block_; }

 private:
  odbs::engine::FieldBlock& need() const;
  // The block, kept as long as its frame is open: a pointer into it is about to be handed out.
  odbs::engine::FieldBlock& kept() const;
  std::shared_ptr<odbs::engine::FieldBlock> block_;
};

class odb_SequenceFieldBulkData : public odbs::SequenceOf<odb_FieldBulkData> {
 public:
  using SequenceOf::SequenceOf;
  // Frees the arrays of all blocks; they are read again when asked for. Pointers that were got from
  // them become invalid.
  void clearAll() const;
};
