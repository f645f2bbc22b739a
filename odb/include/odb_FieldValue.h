// SPDX-License-Identifier: BSD-3-Clause
// Single values of fields, and the sequence of all values of a field. Comfortable, but slow next to
// the blocks of odb_FieldBulkData.
#pragma once

#include <odb_FieldBulkData.h>

#include <deque>
#include <unordered_map>
#include <vector>

// One value. A handle into a block of the field; labels that don't apply are -1.
class odb_FieldValue {
 public:
  odb_FieldValue() = default;

  odb_Enum::odb_ResultPositionEnum position() const;
  odb_Enum::odb_DataTypeEnum type() const;
  odb_Enum::odb_PrecisionEnum precision() const;
  const odb_Instance& instance() const;
  int elementLabel() const;
  int nodeLabel() const;
  // Counted from 1.
  int integrationPoint() const;
  odb_Enum::odb_ElementFaceEnum face() const;
  const odb_SectionPoint& sectionPoint() const;
  const odb_String& baseElementType() const;

  // Components: pointers into the block, with their number in `n`, or new lists. Each
  // throws odb_Exception on a value of the other precision. The conjugate part is null or empty
  // when the field is not complex.
  const float* data(int& n) const;
  const double* dataDouble(int& n) const;
  const float* conjugateData(int& n) const;
  const double* conjugateDataDouble(int& n) const;
  odb_SequenceFloat data() const;
  odb_SequenceDouble dataDouble() const;
  odb_SequenceFloat conjugateData() const;
  odb_SequenceDouble conjugateDataDouble() const;

  // The local system as three rows of direction cosines, its axes 1, 2, 3; empty when the value is
  // in the global system. Each throws odb_Exception on a value of the other precision.
  odb_SequenceSequenceFloat localCoordSystem() const;
  odb_SequenceSequenceDouble localCoordSystemDouble() const;

  // Invariants of the real part; 0 where the value's type has none of that name.
  float magnitude() const;
  float mises() const;
  float tresca() const;
  float press() const;
  float inv3() const;
  float maxPrincipal() const;
  float midPrincipal() const;
  float minPrincipal() const;
  float maxInPlanePrincipal() const;
  float minInPlanePrincipal() const;
  float outOfPlanePrincipal() const;

  bool operator==(const odb_FieldValue& other) const {
    return block_ == other.block_ && index_ == other.index_;
  }

  // For the library itself.
  odb_FieldValue(std::shared_ptr<odbs::engine::FieldBlock> block, int index)
      : block_(std::move(block)), index_(index) {}

 private:
  odb_FieldBulkData bulk() const;
  float invariant(odb_Enum::odb_InvariantEnum which) const;

  std::shared_ptr<odbs::engine::FieldBlock> block_;
  int index_ = 0;
};

// All values of a field, block by block: a view that makes values as they are asked for, or a list
// that a caller appends to.
class odb_SequenceFieldValue {
 public:
  odb_SequenceFieldValue() = default;
  explicit odb_SequenceFieldValue(int) {}

  int size() const { return static_cast<int>(ends_.empty() ? 0 : ends_.back()) + nOwn(); }
  // Value `i`, counted from 0. Throws odb_Exception outside the sequence.
  odb_FieldValue value(int i) const;
  odb_FieldValue operator[](int i) const { return value(i); }
  odb_FieldValue get(int i) const { return value(i); }
  odb_FieldValue constGet(int i) const { return value(i); }
  // The same as a reference, valid as long as this sequence object.
  odb_FieldValue& operator[](int i);
  odb_FieldValue& get(int i) { return (*this)[i]; }

  void append(const odb_FieldValue& value) { own_.push_back(value); }
  bool isMember(const odb_FieldValue& value) const;

  // For the library itself: a view of these blocks.
  explicit odb_SequenceFieldValue(std::vector<std::shared_ptr<odbs::engine::FieldBlock>> blocks);

 private:
  int nOwn() const { return static_cast<int>(own_.size()); }

  std::vector<std::shared_ptr<odbs::engine::FieldBlock>> blocks_;
  std::vector<long long> ends_;  // running sums of the blocks' lengths
  std::deque<odb_FieldValue> own_;
  std::unordered_map<int, odb_FieldValue> handedOut_;
};
