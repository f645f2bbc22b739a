// SPDX-License-Identifier: BSD-3-Clause
// Section categories group the elements that share a set of section points; section points are the
// points through the thickness of shells, beams and layered solids at which results are given.
#pragma once

#include <odb_Sequences.h>
#include <odb_engine/handle.h>
#include <odb_engine/repository.h>

#include <deque>

namespace odbs {
namespace engine {
struct CategoryData;
struct SectionPointData;
}  // namespace engine
}  // namespace odbs

class odb_SectionPoint : public odbs::Handle<odbs::engine::SectionPointData> {
 public:
  using Handle::Handle;
  // The point's number; -1 for a default-constructed object, which means "no section point".
  int number() const;
  // Composite points carry text such as "fraction = -0.57, Layer = 2".
  const odb_String& description() const;
};

class odb_SequenceSectionPoint
    : public odbs::SequenceOf<odb_SectionPoint, std::deque<odb_SectionPoint>> {
 public:
  using SequenceOf::SequenceOf;
};

class odb_SectionCategory : public odbs::Handle<odbs::engine::CategoryData> {
 public:
  using Handle::Handle;
  // Empty for the category of an element that has none.
  const odb_String& name() const;
  const odb_String& description() const;
  // In the order in which they were added.
  const odb_SequenceSectionPoint& sectionPoints() const;
  const odb_SectionPoint& sectionPoints(int i) const;
  // Adds a point. Throws odb_Exception when the number is taken or the database is read-only.
  odb_SectionPoint& SectionPoint(int number, const odb_String& description);
};

ODBS_REPOSITORY(odb_SectionCategoryRepository, odb_SectionCategory);
