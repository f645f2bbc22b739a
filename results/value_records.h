// SPDX-License-Identifier: BSD-3-Clause
// The records that carry field values: type and block headers, and values whose labels are sent
// only where they differ from those of the value before. All of them are buffered.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string_view>

#include "base/bytes.h"
#include "server/core/channel.h"

namespace odbs {

// What names one value inside a block. For nodal blocks the first label is the node's.
struct ValueKey {
  int elementLabel = std::numeric_limits<int>::max();
  int integrationPoint = std::numeric_limits<int>::max();
  int thirdLabel = std::numeric_limits<int>::max();  // node, or face, or -1
};

// The value type of the blocks that follow, one of `value_type`.
void sendValueType(int outputFd, int flag);

// A block's header. The type is padded with blanks to 8 characters, or cut at 8.
void sendBlockHeader(int outputFd, std::string_view elementType, int sectionPointField,
                     int sectionPointNumber);

// The local 1- and 2-directions of a value, from its orientation quaternion of `width` (1 to 4)
// numbers, scalar part last.
void sendLocalDirections(int outputFd, const float* quaternion, int width);

// Consecutive values of one block. Label arrays are null where the block has none.
template <typename Real>
struct ValueRun {
  int n = 0;
  const int* elementLabels = nullptr;
  const int* integrationPoints = nullptr;
  const int* thirdLabels = nullptr;
  const Real* components = nullptr;  // n times width
  int width = 0;
};

// Writes value records and remembers the labels of the last one.
class ValueWriter {
 public:
  explicit ValueWriter(int outputFd) : outputFd_(outputFd) {}

  // One value: `n` components, then `n` conjugate ones unless `conjugate` is null, narrowed to
  // single precision. What does not fit one record is cut at whole components.
  template <typename Real>
  void send(const ValueKey& key, const Real* components, const Real* conjugate, int n) {
    const int kept = std::min(n, conjugate ? kMostNumbers / 2 : kMostNumbers);
    RecordCursor cursor(outputFd_);
    unsigned char* p = putKey(cursor, previous_, key, conjugate ? 2 * kept : kept);
    p = putReals(p, components, kept);
    if (conjugate) putReals(p, conjugate, kept);
    previous_ = key;
  }

  // A run of real values: the same records, for the loops over millions of them.
  template <typename Real>
  void sendRun(const ValueRun<Real>& run) {
    switch (run.width) {
      case 1:
        return sendRunOf<1>(run);
      case 3:
        return sendRunOf<3>(run);
      case 4:
        return sendRunOf<4>(run);
      case 6:
        return sendRunOf<6>(run);
      default:
        return sendRunOf<0>(run);
    }
  }

 private:
  // Components that fit a record after its tag and three labels.
  static constexpr int kMostNumbers = static_cast<int>((kMaxPayload - 13) / 4);

  // By what changed: 4 element label, 2 integration point, 1 third label.
  static constexpr unsigned char kValueTags[8] = {0x15, 0x16, 0x17, 0x18, 0x22, 0x21, 0x20, 0x1F};

  static unsigned char* put(unsigned char* p, int value) {
    putI32(p, value);
    return p + 4;
  }

  static unsigned char* putReals(unsigned char* p, const float* values, int n) {
    putWords(p, values, static_cast<std::size_t>(n));
    return p + 4 * static_cast<std::ptrdiff_t>(n);
  }
  static unsigned char* putReals(unsigned char* p, const double* values, int n) {
    for (int i = 0; i < n; ++i, p += 4) putF32(p, static_cast<float>(values[i]));
    return p;
  }

  // Value record, buffered.
  //   offset  size  content
  //   0       1     tag, which says what follows
  //   1       4     element label, if it changed
  //   ...     4     third label, if it changed
  //   ...     4     integration point, if it changed
  //   ...     4*n   components, singles; then conjugate components of a complex field
  //
  // Puts it up to its labels and returns the place of its `nNumbers` numbers.
  static unsigned char* putKey(RecordCursor& cursor, const ValueKey& previous, const ValueKey& key,
                               int nNumbers) {
    const unsigned newElement = key.elementLabel != previous.elementLabel;
    const unsigned newPoint = key.integrationPoint != previous.integrationPoint;
    const unsigned newThird = key.thirdLabel != previous.thirdLabel;
    const unsigned nLabels = newElement + newPoint + newThird;
    unsigned char* p = cursor.reserveRecord(1 + 4 * (nLabels + static_cast<unsigned>(nNumbers)));
    *p++ = kValueTags[newElement << 2 | newPoint << 1 | newThird];
    if (newElement) p = put(p, key.elementLabel);
    if (newThird) p = put(p, key.thirdLabel);
    if (newPoint) p = put(p, key.integrationPoint);
    return p;
  }

  // kWidth: the run's width, or 0 for any. What the loop reads is held in local variables, since
  // the bytes that it writes might otherwise be any of it.
  template <int kWidth, typename Real>
  void sendRunOf(const ValueRun<Real>& run) {
    const int n = run.n;
    const int width = kWidth > 0 ? kWidth : run.width;
    const int kept = kWidth > 0 ? kWidth : std::min(width, kMostNumbers);
    const int* const elements = run.elementLabels;
    const int* const points = run.integrationPoints;
    const int* const thirds = run.thirdLabels;
    const Real* components = run.components;
    ValueKey previous = previous_;
    {
      RecordCursor cursor(outputFd_);
      for (int i = 0; i < n; ++i, components += width) {
        const ValueKey key{elements ? elements[i] : -1, points ? points[i] : 0,
                           thirds ? thirds[i] : -1};
        putReals(putKey(cursor, previous, key, kept), components, kept);
        previous = key;
      }
    }
    previous_ = previous;
  }

  int outputFd_;
  ValueKey previous_;
};

}  // namespace odbs
