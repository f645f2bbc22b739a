// SPDX-License-Identifier: BSD-3-Clause
// The sets stream: what the commands `S` and `s` answer.
#pragma once

#include <odb_API.h>

namespace odbs {

// Sends the title and the analysis kind, then per instance the node sets, the element sets and,
// with `withSurfaces`, the surfaces: those of the root assembly, restricted to the instance, then
// the instance's own. Node sets of couplings go along only with `withCouplings`. Whatever the
// output buffer held before is dropped. Exceptions of the database library pass through, except
// where the stream has a record for them; records that were written before stay sent.
void sendSetsStream(odb_Odb& odb, int outputFd, bool withSurfaces, bool withCouplings);

}  // namespace odbs
