// SPDX-License-Identifier: BSD-3-Clause
// Local axes of trusses and beams, and the points of their cross-sections that have values.
//
// Source: CalculiX CrunchiX User's Manual, chapter on element types, three-node beam element: t is
// the tangent, n1 the direction that the section gives (0, 0, -1 by default) made normal to it,
// and n2 = t x n1.
#pragma once

#include <cstdint>
#include <unordered_map>

#include "importer/deck.h"
#include "importer/result_fields.h"
#include "importer/vectors.h"

namespace odbs::importer {

// A point of a cross-section: its place along n1 and n2, from -1 to 1 at the faces of the box
// around the section.
struct SectionCorner {
  double along1, along2;
};
constexpr int kCorners = 4;

// The corners of a beam section in the order of its section points; on the circle (ellipse) for
// SECTION=CIRC. Sections of other profiles have none: the solver integrates them in its own ways.
bool hasCorners(const Section& section);
SectionCorner cornerOf(const Section& section, int corner);

// True when the deck gives normals of its own (keyword *NORMAL).
bool hasUserNormals(const Deck& deck);

class LineAxes {
 public:
  // `mesh` must outlive this. With `userNormals` the axes of beams are not known.
  LineAxes(const Scope& mesh, bool userNormals);

  // The beam section of an element as an index in the mesh's sections, -1 for one without, or of a
  // profile without corners, or with normals of the user's.
  std::int32_t beamSection(std::int32_t label) const;
  // The axes t, n1 and n2 of element `at` of a block at `xi`, -1 at its first node to 1 at its
  // last; nothing known (false) for lines without length and beams along their own n1.
  bool axesAt(const ElementBlock& block, std::size_t at, double xi, Axes& axes) const;

 private:
  const Scope& mesh_;
  std::unordered_map<std::int32_t, std::int32_t> sectionOf_;  // beams, by element label
  std::unordered_map<std::int32_t, std::size_t> nodes_;       // of lines, by label
};

// True for elements that carry force along their line alone: their values are means over the
// cross-section.
bool isTruss(const std::string& type);

// Turns the components of one value from the global system into `axes`. Shear components are those
// of the tensor, of strains too.
void turn(FieldShape shape, const Axes& axes, float* components);

}  // namespace odbs::importer
