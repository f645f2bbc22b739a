// SPDX-License-Identifier: BSD-3-Clause
// The shared records that are made from the database API's own objects.
#pragma once

#include "server/core/record.h"
#include "server/core/sdk_adapter.h"

namespace odbs {

// Name record, buffered, from the name of an instance, a part or the assembly.
void sendEntityName(int outputFd, const odb_DiscreteEntity& entity);

// Label chunks, buffered, of the labels of nodes or elements. The pair form sends each element's
// label with the number of the same place in `faces`, as far as both go.
void sendNodeLabels(int outputFd, const odb_SequenceNode& nodes);
void sendElementLabels(int outputFd, const odb_SequenceElement& elements);
void sendElementLabelPairs(int outputFd, const odb_SequenceElement& elements,
                           const odb_SequenceElementFace& faces);
void sendElementLabelPairs(int outputFd, const odb_SequenceElement& elements,
                           const odb_SequenceInt& associated);

}  // namespace odbs
