// SPDX-License-Identifier: BSD-3-Clause
// The model stream: what the commands `G` and `g` answer.
#pragma once

#include <odb_API.h>

namespace odbs {

// Sends the title and the analysis kind, then the nodes of every instance and, unless `nodesOnly`,
// the annotation text, sections, materials, elements, analytic surfaces and rigid bodies. Whatever
// the output buffer held before is dropped. Exceptions of the database library pass through;
// records that were written before stay sent.
void sendModelStream(odb_Odb& odb, int outputFd, bool nodesOnly);

}  // namespace odbs
