// SPDX-License-Identifier: BSD-3-Clause
// Small vectors in double precision.
#pragma once

#include <array>
#include <cmath>

namespace odbs::importer {

using Vector3 = std::array<double, 3>;
// The directions of a local system, one a row.
using Axes = std::array<Vector3, 3>;

inline double dot(const Vector3& a, const Vector3& b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

inline Vector3 cross(const Vector3& a, const Vector3& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// Makes the length 1; false, and no change, when there is (nearly) none compared with `size`.
inline bool normalize(Vector3& v, double size) {
  const double length = std::sqrt(dot(v, v));
  if (!(length > 1e-6 * size)) return false;
  for (double& x : v) x /= length;
  return true;
}

}  // namespace odbs::importer
