// SPDX-License-Identifier: BSD-3-Clause
// The sets stream: what the commands `S` and `s` answer.
#pragma once

#include <odb_API.h>

#include <functional>

namespace odbs {

// How one kind of sets is asked for, of the assembly or of an instance. May throw what the database
// library throws.
using SetLookUp = std::function<const odb_SetRepository&(const odb_DiscreteEntity&)>;

struct SetLookUps {
  SetLookUp nodeSets, elementSets, surfaces;
};

// The database library's own.
SetLookUps librarySets();

// Sends the title and the analysis kind, then per instance the node sets, the element sets and,
// with `withSurfaces`, the surfaces: those of the root assembly, restricted to the instance, then
// the instance's own. Node sets of couplings go along only with `withCouplings`. Whatever the
// output buffer held before is dropped. Exceptions of the database library pass through, except
// where the stream has a record for them; records that were written before stay sent. `lookUps` is
// given by tests, which make look-ups fail.
void sendSetsStream(odb_Odb& odb, int outputFd, bool withSurfaces, bool withCouplings,
                    const SetLookUps& lookUps = librarySets());

}  // namespace odbs
