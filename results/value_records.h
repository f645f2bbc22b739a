// SPDX-License-Identifier: BSD-3-Clause
// The records that carry field values: type and block headers, and values whose labels are sent
// only where they differ from those of the value before. All of them are buffered.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

#include "base/bytes.h"
#include "server/channel.h"

namespace odbs {

// What names one value inside a block. For nodal blocks the first label is the node's.
struct ValueKey {
  int elementLabel = std::numeric_limits<int>::max();
  int integrationPoint = std::numeric_limits<int>::max();
  int thirdLabel = std::numeric_limits<int>::max();  // node, or face, or -1
};

// Title and analysis kind, direct: the first two records of every results reply.
void sendResultTitle(int outputFd, std::string_view title, int analysisCodeLessOne);

// The value-type flag of a block, from its data type code and its number of components.
int valueTypeFlag(int dataType, int nComponents);

void sendValueType(int outputFd, int flag);

// A block's header. The type is padded with blanks to 8 characters, or cut at 8.
void sendBlockHeader(int outputFd, std::string_view elementType, int sectionPointField,
                     int sectionPointNumber);

// The local 1- and 2-directions of a value, from its orientation quaternion of `width` (1 to 4)
// numbers, scalar part last.
void sendLocalDirections(int outputFd, const float* quaternion, int width);

// Writes value records and remembers the labels of the last one.
class ValueWriter {
 public:
  explicit ValueWriter(int outputFd) : outputFd_(outputFd) {}

  // One value: `n` components, then `n` conjugate ones unless `conjugate` is null, narrowed to
  // single precision. What does not fit one record is cut at whole components.
  template <typename Real>
  void send(const ValueKey& key, const Real* components, const Real* conjugate, int n) {
    constexpr int kMostNumbers = static_cast<int>((kMaxPayload - 13) / 4);
    n = std::min(n, conjugate ? kMostNumbers / 2 : kMostNumbers);
    const int nNumbers = conjugate ? 2 * n : n;
    const bool newElement = key.elementLabel != previous_.elementLabel;
    const bool newPoint = key.integrationPoint != previous_.integrationPoint;
    const bool newThird = key.thirdLabel != previous_.thirdLabel;
    const unsigned change = (newElement ? 4u : 0u) | (newPoint ? 2u : 0u) | (newThird ? 1u : 0u);
    const std::uint32_t nLabels =
        (newElement ? 1u : 0u) + (newPoint ? 1u : 0u) + (newThird ? 1u : 0u);
    unsigned char* p =
        reserveRecord(outputFd_, 1 + 4 * (nLabels + static_cast<std::uint32_t>(nNumbers)));
    *p++ = kValueTags[change];
    if (newElement) p = put(p, key.elementLabel);
    if (newThird) p = put(p, key.thirdLabel);
    if (newPoint) p = put(p, key.integrationPoint);
    for (int i = 0; i < n; ++i, p += 4) putF32(p, static_cast<float>(components[i]));
    for (int i = 0; i < nNumbers - n; ++i, p += 4) putF32(p, static_cast<float>(conjugate[i]));
    previous_ = key;
  }

 private:
  // By what changed: 4 element label, 2 integration point, 1 third label.
  static constexpr unsigned char kValueTags[8] = {0x15, 0x16, 0x17, 0x18, 0x22, 0x21, 0x20, 0x1F};

  static unsigned char* put(unsigned char* p, int value) {
    putI32(p, value);
    return p + 4;
  }

  int outputFd_;
  ValueKey previous_;
};

}  // namespace odbs
