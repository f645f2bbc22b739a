// SPDX-License-Identifier: BSD-3-Clause
// Node and element records of model/mesh.h. Both walk arrays and fill the output buffer with as
// many records as fit it at a time.
#include "model/mesh.h"

#include <algorithm>
#include <cstring>

#include "base/bytes.h"
#include "server/core/channel.h"
#include "server/core/sdk_mesh_runs.h"

namespace odbs {

namespace {

constexpr unsigned char kNodeTag = 0x03;
constexpr unsigned char kElementTag = 0x04;

constexpr std::size_t kTypeWidth = 8;
constexpr std::size_t kPlainNodes = (kMaxPayload - 17) / 4;
constexpr std::size_t kLongestType = kMaxPayload / 2;
constexpr char kConnectorType[] = "CONN3D2";
constexpr std::size_t kConnectorTypeLength = sizeof kConnectorType - 1;

// Node record, buffered.
//   offset  size  content
//   0       1     kNodeTag
//   1       4     node label
//   5       4*k   coordinates; k is 2 or 3, the same for the whole sequence
template <std::size_t k>
void sendNodeRun(int n, const int* labels, const float* coordinates, int outputFd) {
  constexpr std::uint32_t kPayload = 5 + 4 * k;
  for (int i = 0; i < n;) {
    const ReservedRecords room = reserveRecords(outputFd, kPayload, n - i);
    unsigned char* p = room.frames;
    for (const int end = i + room.n; i < end; ++i, p += 2 + kPayload) {
      putU16(p, kPayload);
      p[2] = kNodeTag;
      putI32(p + 3, labels[i]);
      putWords(p + 7, coordinates + 3 * static_cast<std::ptrdiff_t>(i), k);
    }
  }
}

// Section numbers of the elements of one run: the instance's table first, then indirectly, through
// the category, which is the same for all of them and asked for when first needed.
class RunSections {
 public:
  RunSections(const odb_Element& first, const ElementSections& sections,
              CategorySections& categories)
      : first_(first), sections_(sections), categories_(categories) {}

  std::int32_t find(int label) {
    const std::int32_t number = sections_.find(label);
    return number != 0 ? number : byCategory();
  }

 private:
  std::int32_t byCategory() {
    if (!asked_) fallback_ = categories_.find(first_);
    asked_ = true;
    return fallback_;
  }

  const odb_Element& first_;
  const ElementSections& sections_;
  CategorySections& categories_;
  bool asked_ = false;
  std::int32_t fallback_ = 0;
};

// Element record of a type name of up to 8 characters, buffered.
//   offset  size  content
//   0       1     kElementTag
//   1       8     type name, padded with blanks
//   9       4     element label
//   13      4     section number
//   17      4*n   node labels
//
// nFixed is the number of node labels where that is worth a constant in the code, else 0.
template <std::size_t nFixed>
void sendPlainRun(const sdk::ElementRun& run, std::size_t nLabels, RunSections sections,
                  int outputFd) {
  if (nFixed > 0) nLabels = nFixed;
  const auto payload = static_cast<std::uint32_t>(9 + 8 + 4 * nLabels);
  unsigned char head[2 + 1 + kTypeWidth];
  putU16(head, static_cast<std::uint16_t>(payload));
  head[2] = kElementTag;
  std::memset(head + 3, ' ', kTypeWidth);
  const odb_String& type = run.first.type();
  std::memcpy(head + 3, type.CStr(), static_cast<std::size_t>(type.Length()));

  const int* nodeLabels = run.connectivity;
  for (int i = 0; i < run.n;) {
    const ReservedRecords room = reserveRecords(outputFd, payload, run.n - i);
    unsigned char* p = room.frames;
    for (const int end = i + room.n; i < end; ++i) {
      std::memcpy(p, head, sizeof head);
      putI32(p + sizeof head, run.labels[i]);
      putI32(p + sizeof head + 4, sections.find(run.labels[i]));
      putWords(p + sizeof head + 8, nodeLabels, nLabels);
      p += sizeof head + 8 + 4 * nLabels;
      nodeLabels += run.nNodes;
    }
  }
}

// Element record of any type, buffered.
//   size  content
//   1     kElementTag
//   8..   type name, padded with blanks to 8 characters, never cut
//   4     element label
//   4     section number
//   4     n                     connectors only
//   4*n   node labels
//   4*n   zeros                 connectors only: the lengths of the nodes' instance names, all
//   empty
void sendElement(const odb_String& type, bool isConnector, int label, std::int32_t section,
                 const int* nodeLabels, int nNodes, int outputFd) {
  const auto typeLength = std::min(static_cast<std::size_t>(type.Length()), kLongestType);
  const std::size_t typeWidth = std::max(typeLength, kTypeWidth);
  const std::size_t fixed = 1 + typeWidth + 8 + (isConnector ? 4 : 0);
  const std::size_t perNode = isConnector ? 8 : 4;
  // A record holds some 2500 nodes; superelements may have more.
  const std::size_t nSent =
      std::min(static_cast<std::size_t>(nNodes), (kMaxPayload - fixed) / perNode);

  unsigned char* p = reserveRecord(outputFd, static_cast<std::uint32_t>(fixed + perNode * nSent));
  *p++ = kElementTag;
  std::memset(p, ' ', typeWidth);
  std::memcpy(p, type.CStr(), typeLength);
  p += typeWidth;
  putI32(p, label);
  putI32(p + 4, section);
  p += 8;
  if (isConnector) {
    putI32(p, static_cast<std::int32_t>(nSent));
    p += 4;
  }
  putWords(p, nodeLabels, nSent);
  if (isConnector) std::memset(p + 4 * nSent, 0, 4 * nSent);
}

void sendElementRun(const sdk::ElementRun& run, RunSections sections, int outputFd) {
  if (run.nNodes <= 0) return;  // contract: elements without nodes are left out
  const odb_String& type = run.first.type();
  const bool isConnector = std::strncmp(type.CStr(), kConnectorType, kConnectorTypeLength) == 0;
  const auto nNodes = static_cast<std::size_t>(run.nNodes);
  if (isConnector || type.Length() > static_cast<int>(kTypeWidth) || nNodes > kPlainNodes) {
    for (int i = 0; i < run.n; ++i) {
      sendElement(type, isConnector, run.labels[i], sections.find(run.labels[i]),
                  run.connectivity + static_cast<std::ptrdiff_t>(i) * run.nNodes, run.nNodes,
                  outputFd);
    }
    return;
  }
  switch (nNodes) {
    case 4:
      return sendPlainRun<4>(run, nNodes, sections, outputFd);
    case 8:
      return sendPlainRun<8>(run, nNodes, sections, outputFd);
    case 10:
      return sendPlainRun<10>(run, nNodes, sections, outputFd);
    case 20:
      return sendPlainRun<20>(run, nNodes, sections, outputFd);
    default:
      return sendPlainRun<0>(run, nNodes, sections, outputFd);
  }
}

}  // namespace

void sendNodes(const odb_SequenceNode& nodes, int nCoordinates, int outputFd) {
  sdk::forEachNodeRun(nodes, [=](int n, const int* labels, const float* coordinates) {
    if (nCoordinates == 2) {
      sendNodeRun<2>(n, labels, coordinates, outputFd);
    } else {
      sendNodeRun<3>(n, labels, coordinates, outputFd);
    }
  });
}

void sendElements(const odb_SequenceElement& elements, const ElementSections& sections,
                  const SectionNumbers& numbers, int outputFd) {
  CategorySections categories(numbers);
  sdk::forEachElementRun(elements, [&](const sdk::ElementRun& run) {
    sendElementRun(run, RunSections(run.first, sections, categories), outputFd);
  });
}

}  // namespace odbs
