// SPDX-License-Identifier: BSD-3-Clause
// Node sets, element sets and surfaces, their repositories, and section assignments.
#pragma once

#include <odb_Element.h>
#include <odb_Node.h>
#include <odb_engine/handle.h>

namespace odbs {
namespace engine {
struct SetData;
struct AssignmentData;
}  // namespace engine
}  // namespace odbs

class odb_Section;

// A set of an instance, a part or the assembly. A default-constructed one is absent: its name is
// empty and it has no members.
class odb_Set : public odbs::Handle<odbs::engine::SetData> {
 public:
  using Handle::Handle;
  // Empty for an absent set.
  const odb_String& name() const;
  odb_Enum::odb_SetTypeEnum type() const;
  // Number of nodes of a node set or node-based surface, else of elements (a surface counts each of
  // its element faces).
  int size() const;
  // Names of the instances whose nodes or elements the set holds, in stored order; none for a
  // part's set, an empty name for members of the assembly itself.
  odb_SequenceString instanceNames() const;

  // Members in stored order, views that live as long as the database. The form with an instance's
  // name gives the members of that instance alone, none when it has none in the set; it also works
  // on an instance's own set with its own name. Element faces run parallel to elements.
  const odb_SequenceNode& nodes() const;
  odb_Node nodes(int i) const;
  const odb_SequenceNode& nodes(const odb_String& instance) const;
  const odb_SequenceElement& elements() const;
  odb_Element elements(int i) const;
  const odb_SequenceElement& elements(const odb_String& instance) const;
  const odb_SequenceElementFace& faces() const;
  odb_Enum::odb_ElementFaceEnum faces(int i) const;
  const odb_SequenceElementFace& faces(const odb_String& instance) const;
};

ODBS_REPOSITORY(odb_SetRepository, odb_Set);

// A section given to the elements of a set.
class odb_SectionAssignment : public odbs::Handle<odbs::engine::AssignmentData> {
 public:
  using Handle::Handle;
  odb_Set& region() const;
  const odb_String& sectionName() const;
  // Throws odb_Exception when the database has no section of that name.
  const odb_Section& section() const;
};

class odb_SequenceSectionAssignment
    : public odbs::SequenceOf<odb_SectionAssignment, std::deque<odb_SectionAssignment>> {
 public:
  using SequenceOf::SequenceOf;
};
