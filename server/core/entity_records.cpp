// SPDX-License-Identifier: BSD-3-Clause
// Shared records that are made from the database API's own objects.
#include "server/core/entity_records.h"

#include <algorithm>

#include "server/core/label_chunks.h"

namespace odbs {

namespace {

constexpr unsigned char kTitleTag = 0x01;
constexpr unsigned char kAnalysisKindTag = 0x02;

template <typename Numbers>
void sendPairs(int outputFd, const odb_SequenceElement& elements, const Numbers& numbers) {
  const int n = std::min(elements.size(), numbers.size());
  sendLabelChunks(outputFd, kElementLabelPairsTag, n, 8, [&](unsigned char* p, int i) {
    const odb_Element& element = elements[i];
    putI32(p, element.label());
    putI32(p + 4, static_cast<int>(numbers[i]));
  });
}

}  // namespace

void sendTitleAndKind(int outputFd, odb_Odb& odb) {
  const odb_String title = odb.analysisTitle();
  sendAnalysisTitle(outputFd, {title.CStr(), static_cast<std::size_t>(title.Length())});
  sendAnalysisKind(outputFd, analysisKindOf(odb));
}

// Title record, direct.
//   offset  size  content
//   0       1     01
//   1       4+n   text: analysis title
void sendAnalysisTitle(int outputFd, std::string_view title) {
  beginRecord(kTitleTag);
  putText(title);
  sendDirect(outputFd);
}

// Analysis kind record, direct.
//   offset  size  content
//   0       1     02
//   1       4     analysis code less one
void sendAnalysisKind(int outputFd, int kind) {
  beginRecord(kAnalysisKindTag);
  putI32(kind);
  sendDirect(outputFd);
}

int analysisKindOf(odb_Odb& odb) {
  return static_cast<int>(odb.jobData().analysisCode()) - 1;
}

void sendEntityName(int outputFd, const odb_DiscreteEntity& entity) {
  const odb_String name = entity.name();
  sendNameRecord(outputFd, name.CStr());
}

void sendNodeLabels(int outputFd, const odb_SequenceNode& nodes) {
  sendLabelChunks(outputFd, kNodeLabelsTag, nodes.size(), 4, [&](unsigned char* p, int i) {
    const odb_Node& node = nodes[i];
    putI32(p, node.label());
  });
}

void sendElementLabels(int outputFd, const odb_SequenceElement& elements) {
  sendLabelChunks(outputFd, kElementLabelsTag, elements.size(), 4, [&](unsigned char* p, int i) {
    const odb_Element& element = elements[i];
    putI32(p, element.label());
  });
}

void sendElementLabelPairs(int outputFd, const odb_SequenceElement& elements,
                           const odb_SequenceElementFace& faces) {
  sendPairs(outputFd, elements, faces);
}

void sendElementLabelPairs(int outputFd, const odb_SequenceElement& elements,
                           const odb_SequenceInt& associated) {
  sendPairs(outputFd, elements, associated);
}

}  // namespace odbs
