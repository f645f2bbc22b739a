// SPDX-License-Identifier: BSD-3-Clause
// The node and element records of the model stream: the two loops that decide how fast a model of
// millions of nodes leaves the server.
#pragma once

#include <odb_API.h>

#include "model/element_sections.h"

namespace odbs {

// Appends one node record per node, each with `nCoordinates` (2 or 3) coordinates. Does not flush.
void sendNodes(const odb_SequenceNode& nodes, int nCoordinates, int outputFd);

// Appends one element record per element that has connected nodes. The section number is that of
// `sections`, else that of the element's section category in `numbers`, else 0. Does not flush.
void sendElements(const odb_SequenceElement& elements, const ElementSections& sections,
                  const SectionNumbers& numbers, int outputFd);

}  // namespace odbs
