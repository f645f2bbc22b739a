// SPDX-License-Identifier: BSD-3-Clause
// The records of field values but the value record itself, which is inline.
#include "results/value_records.h"

#include <cmath>
#include <cstring>

namespace odbs {

namespace {

constexpr unsigned char kValueTypeTag = '%';
constexpr unsigned char kBlockTag = 0x1E;
constexpr unsigned char kDirectionsTag = '\'';

constexpr std::size_t kTypeBytes = 8;

}  // namespace

// Value-type record.
//   offset  size  content
//   0       1     '%'
//   1       4     value-type flag
void sendValueType(int outputFd, int flag) {
  unsigned char* p = reserveRecord(outputFd, 5);
  p[0] = kValueTypeTag;
  putI32(p + 1, flag);
}

// Block record.
//   offset  size  content
//   0       1     1E
//   1       8     element type, blank-padded, cut at 8
//   9       4     section-point field
//   13      4     section-point number
void sendBlockHeader(int outputFd, std::string_view elementType, int sectionPointField,
                     int sectionPointNumber) {
  unsigned char* p = reserveRecord(outputFd, 17);
  p[0] = kBlockTag;
  std::memset(p + 1, ' ', kTypeBytes);
  std::memcpy(p + 1, elementType.data(), std::min(elementType.size(), kTypeBytes));
  putI32(p + 9, sectionPointField);
  putI32(p + 13, sectionPointNumber);
}

// Directions record: rows 1 and 2 of the rotation that a unit quaternion stands for.
//   offset  size  content
//   0       1     '\''
//   1       12    local 1-direction, three singles
//   13      12    local 2-direction, three singles
void sendLocalDirections(int outputFd, const float* quaternion, int width) {
  float q[4] = {0, 0, 0, 0};
  std::copy(quaternion, quaternion + std::min(width, 4), q);
  const float norm = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
  if (norm != 0) {
    for (float& part : q) part /= norm;
  }
  const float directions[6] = {
      1 - 2 * (q[2] * q[2] + q[1] * q[1]), 2 * (q[0] * q[1] - q[3] * q[2]),
      2 * (q[0] * q[2] + q[3] * q[1]),     2 * (q[0] * q[1] + q[3] * q[2]),
      1 - 2 * (q[2] * q[2] + q[0] * q[0]), 2 * (q[2] * q[1] - q[0] * q[3])};
  unsigned char* p = reserveRecord(outputFd, 25);
  *p++ = kDirectionsTag;
  for (const float part : directions) {
    putF32(p, part);
    p += 4;
  }
}

}  // namespace odbs
