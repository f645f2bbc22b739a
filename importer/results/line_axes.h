// SPDX-License-Identifier: BSD-3-Clause
// Local axes of trusses and beams, and the points of their cross-sections that have values.
//
// Source: CalculiX CrunchiX User's Manual, chapter on element types, three-node beam element: t is
// the tangent, n1 the direction that the section gives (0, 0, -1 by default) made normal to it,
// and n2 = t x n1.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include "importer/deck/deck.h"
#include "importer/deck/vectors.h"
#include "importer/results/result_fields.h"

namespace odbs::importer {

// A point of a cross-section: its place along n1 and n2, from -1 to 1 at the faces of the box
// around the section.
struct SectionCorner {
  double along1, along2;
};
constexpr int kCorners = 4;

// The corners of a beam section in the order of its section points; on the outer circle (ellipse)
// for SECTION=CIRC and PIPE. Sections of other profiles than RECT, CIRC, PIPE and BOX have none.
bool hasCorners(const Section& section);
SectionCorner cornerOf(const Section& section, int corner);

// What the value at a corner is made of: a position and its share.
using CornerShares = std::vector<std::pair<std::size_t, double>>;

// Shares of the four corner nodes of the solid that the beam becomes, in the order of cornerOf. The
// nodes around a pipe are the corners of the square around it.
CornerShares nodeShares(const Section& section, int corner);

// Shares of the integration points of a cross-section of a pipe (8) or box (16) that the solver
// integrates around its wall; empty for other profiles. They run from n1 to n2: in pipes from -n2
// on, in boxes from the corner at n1 and -n2. Pipes: the function 1, x1, x2, x1 x2 of least
// squares; boxes: the same function through the corners of the wall's middle line.
CornerShares wallShares(const Section& section, int corner);
constexpr std::size_t kPipePoints = 8, kBoxPoints = 16;

// True when the deck gives normals (keyword *NORMAL).
bool hasUserNormals(const Deck& deck);

class LineAxes {
 public:
  // `mesh` must outlive this. With `userNormals` the axes of beams are not known.
  LineAxes(const Scope& mesh, bool userNormals);

  // The beam section of an element as an index in the mesh's sections, -1 for one without, or of a
  // profile without corners, or with normals of the user's.
  std::int32_t beamSection(std::int32_t label) const;
  // A section by that index.
  const Section& section(std::int32_t index) const {
    return mesh_.sections[static_cast<std::size_t>(index)];
  }
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
