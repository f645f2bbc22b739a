// SPDX-License-Identifier: BSD-3-Clause
// Where values of a field sit: a position and, for shells, beams and layered solids, the section
// points of one section category at which there are values.
#pragma once

#include <odb_SectionCategory.h>
#include <odb_Sequences.h>

class odb_FieldLocation {
 public:
  odb_FieldLocation() = default;
  explicit odb_FieldLocation(odb_Enum::odb_ResultPositionEnum position,
                             const odb_SequenceSectionPoint& points = odb_SequenceSectionPoint())
      : position_(position), points_(points) {}

  odb_Enum::odb_ResultPositionEnum position() const { return position_; }
  // The section points, empty where the values belong to none.
  const odb_SequenceSectionPoint& sectionPoint() const { return points_; }
  const odb_SequenceSectionPoint& sectionPoints() const { return points_; }
  // Point `i`, counted from 0. Throws odb_Exception outside the list.
  const odb_SectionPoint& sectionPoint(int i) const { return points_[i]; }
  const odb_SectionPoint& sectionPoints(int i) const { return points_[i]; }

  bool operator==(const odb_FieldLocation& other) const {
    return position_ == other.position_ && points_.engineItems() == other.points_.engineItems();
  }

 private:
  odb_Enum::odb_ResultPositionEnum position_ = odb_Enum::UNDEFINED_POSITION;
  odb_SequenceSectionPoint points_;
};

class odb_SequenceFieldLocation : public odbs::SequenceOf<odb_FieldLocation> {
 public:
  using SequenceOf::SequenceOf;
};
