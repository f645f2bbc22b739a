// SPDX-License-Identifier: BSD-3-Clause
// Shared records that are made from the database API's own objects.
#pragma once

#include <string_view>

#include "server/core/record.h"
#include "server/core/sdk_adapter.h"

namespace odbs {

// Title and analysis kind, direct: the first two records of every reply about a model or results.
void sendTitleAndKind(int outputFd, odb_Odb& odb);

// The two by themselves. The analysis kind is the analysis code less one.
void sendAnalysisTitle(int outputFd, std::string_view title);
void sendAnalysisKind(int outputFd, int kind);
int analysisKindOf(odb_Odb& odb);

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
