// SPDX-License-Identifier: BSD-3-Clause
// Sources: invariants as in O.C. Zienkiewicz, R.L. Taylor, "The Finite Element Method", vol. 2
// (stress invariants), with the third one as (27/2 det of the deviator)^(1/3), which equals the
// Mises stress in uniaxial tension; Jacobi's method: G.H. Golub, C.F. Van Loan, "Matrix
// Computations", 8.5; quaternion from matrix: S.W. Shepperd, J. Guidance and Control 1 (1978) 223.
#include "odb/src/numerics/tensor.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace odbs::engine {
namespace {

struct Place {
  std::size_t i, j;
};
const Place kFull[] = {{0, 0}, {1, 1}, {2, 2}, {0, 1}, {0, 2}, {1, 2}};
const Place kSurface[] = {{0, 0}, {1, 1}, {0, 1}};

const Place* places(int width) {
  return width == 3 ? kSurface : kFull;
}

// Makes entry (p, q) of `a` zero by a rotation, applied to `v` as well.
void jacobiRotate(Matrix3& a, Matrix3& v, std::size_t p, std::size_t q) {
  if (a[p][q] == 0) return;
  const double theta = (a[q][q] - a[p][p]) / (2 * a[p][q]);
  const double t = std::copysign(1.0, theta) / (std::fabs(theta) + std::hypot(theta, 1.0));
  const double c = 1 / std::hypot(t, 1.0), s = t * c;
  for (std::size_t k = 0; k < 3; ++k) {
    const double kp = a[k][p], kq = a[k][q];
    a[k][p] = c * kp - s * kq;
    a[k][q] = s * kp + c * kq;
  }
  for (std::size_t k = 0; k < 3; ++k) {
    const double pk = a[p][k], qk = a[q][k];
    a[p][k] = c * pk - s * qk;
    a[q][k] = s * pk + c * qk;
    const double vp = v[p][k], vq = v[q][k];
    v[p][k] = c * vp - s * vq;
    v[q][k] = s * vp + c * vq;
  }
  a[p][q] = a[q][p] = 0;
}

double mises(const Matrix3& t) {
  const double d1 = t[0][0] - t[1][1], d2 = t[1][1] - t[2][2], d3 = t[2][2] - t[0][0];
  const double shear = t[0][1] * t[0][1] + t[0][2] * t[0][2] + t[1][2] * t[1][2];
  return std::sqrt(0.5 * (d1 * d1 + d2 * d2 + d3 * d3) + 3 * shear);
}

double thirdInvariant(const Matrix3& t) {
  const double mean = (t[0][0] + t[1][1] + t[2][2]) / 3;
  const double a = t[0][0] - mean, b = t[1][1] - mean, c = t[2][2] - mean;
  const double d = t[0][1], e = t[0][2], f = t[1][2];
  const double det = a * (b * c - f * f) - d * (d * c - f * e) + e * (d * f - b * e);
  return std::cbrt(13.5 * det);
}

}  // namespace

Eigen3 symmetricEigen(const Matrix3& matrix) {
  Matrix3 a = matrix;
  Matrix3 v = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  // Converges quadratically; six sweeps are ample for 3 x 3, more can't happen but for NaN.
  for (int sweep = 0; sweep < 12; ++sweep) {
    if (a[0][1] == 0 && a[0][2] == 0 && a[1][2] == 0) break;
    jacobiRotate(a, v, 0, 1);
    jacobiRotate(a, v, 0, 2);
    jacobiRotate(a, v, 1, 2);
  }
  std::array<std::size_t, 3> order = {0, 1, 2};
  std::sort(order.begin(), order.end(),
            [&](std::size_t i, std::size_t j) { return a[i][i] > a[j][j]; });
  Eigen3 result;
  for (std::size_t k = 0; k < 3; ++k) {
    result.values[k] = a[order[k]][order[k]];
    result.vectors[k] = v[order[k]];
  }
  return result;
}

int componentCount(odb_Enum::odb_DataTypeEnum type) {
  switch (type) {
    case odb_Enum::SCALAR:
      return 1;
    case odb_Enum::VECTOR:
    case odb_Enum::TENSOR_3D_SURFACE:
    case odb_Enum::TENSOR_2D_SURFACE:
      return 3;
    case odb_Enum::TENSOR_3D_PLANAR:
    case odb_Enum::TENSOR_2D_PLANAR:
      return 4;
    case odb_Enum::TENSOR_3D_FULL:
      return 6;
    default:
      return 0;
  }
}

bool isTensor(odb_Enum::odb_DataTypeEnum type) {
  return type >= odb_Enum::TENSOR_3D_FULL;
}

Matrix3 tensorMatrix(const double* components, int width, bool engineering) {
  Matrix3 t{};
  for (int k = 0; k < std::min(width, 6); ++k) {
    const Place at = places(width)[k];
    const double value = engineering && at.i != at.j ? components[k] / 2 : components[k];
    t[at.i][at.j] = t[at.j][at.i] = value;
  }
  return t;
}

void tensorComponents(const Matrix3& matrix, int width, bool engineering, double* components) {
  for (int k = 0; k < std::min(width, 6); ++k) {
    const Place at = places(width)[k];
    const double value = matrix[at.i][at.j];
    components[k] = engineering && at.i != at.j ? 2 * value : value;
  }
}

double invariant(odb_Enum::odb_InvariantEnum which, odb_Enum::odb_DataTypeEnum type,
                 const double* components, int width, bool engineering) {
  if (which == odb_Enum::MAGNITUDE) {
    double sum = 0;
    for (int k = 0; k < width; ++k) sum += components[k] * components[k];
    return isTensor(type) ? 0 : std::sqrt(sum);
  }
  if (!isTensor(type)) return 0;
  const Matrix3 t = tensorMatrix(components, width, engineering);
  const double middle = (t[0][0] + t[1][1]) / 2;
  const double radius = std::hypot((t[0][0] - t[1][1]) / 2, t[0][1]);
  // A surface tensor has two principal values, both in its plane.
  const bool surface = width == 3;
  switch (which) {
    case odb_Enum::MISES:
      return mises(t);
    case odb_Enum::PRESS:
      return -(t[0][0] + t[1][1] + t[2][2]) / 3;
    case odb_Enum::INV3:
      return thirdInvariant(t);
    case odb_Enum::MAX_INPLANE_PRINCIPAL:
      return width == 6 ? 0 : middle + radius;
    case odb_Enum::MIN_INPLANE_PRINCIPAL:
      return width == 6 ? 0 : middle - radius;
    case odb_Enum::OUTOFPLANE_PRINCIPAL:
      return width == 4 ? t[2][2] : 0;
    default:
      break;
  }
  const std::array<double, 3> p = symmetricEigen(t).values;
  switch (which) {
    case odb_Enum::TRESCA:
      return p[0] - p[2];
    case odb_Enum::MAX_PRINCIPAL:
      return surface ? middle + radius : p[0];
    case odb_Enum::MID_PRINCIPAL:
      return surface ? 0 : p[1];
    case odb_Enum::MIN_PRINCIPAL:
      return surface ? middle - radius : p[2];
    default:
      return 0;
  }
}

Matrix3 rotationOf(const std::array<double, 4>& q) {
  const double n = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
  if (!(n > 0)) return {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  const double x = q[0] / n, y = q[1] / n, z = q[2] / n, w = q[3] / n;
  return {{{1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)},
           {2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)},
           {2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)}}};
}

std::array<double, 4> quaternionOf(const Matrix3& r) {
  const double trace = r[0][0] + r[1][1] + r[2][2];
  // The largest of the four is found from a sum of positive terms, so nothing cancels.
  const std::array<double, 4> squares = {r[0][0], r[1][1], r[2][2], trace};
  const auto largest =
      static_cast<std::size_t>(std::max_element(squares.begin(), squares.end()) - squares.begin());
  std::array<double, 4> q{};
  if (largest == 3) {
    q[3] = std::sqrt(std::max(0.0, 1 + trace)) / 2;
    const double f = 1 / (4 * q[3]);
    q[0] = (r[2][1] - r[1][2]) * f;
    q[1] = (r[0][2] - r[2][0]) * f;
    q[2] = (r[1][0] - r[0][1]) * f;
    return q;
  }
  const std::size_t i = largest, j = (i + 1) % 3, k = (i + 2) % 3;
  q[i] = std::sqrt(std::max(0.0, 1 + 2 * r[i][i] - trace)) / 2;
  const double f = 1 / (4 * q[i]);
  q[j] = (r[i][j] + r[j][i]) * f;
  q[k] = (r[i][k] + r[k][i]) * f;
  q[3] = (r[k][j] - r[j][k]) * f;
  if (q[3] < 0) {
    for (double& part : q) part = -part;
  }
  return q;
}

Matrix3 transposed(const Matrix3& m) {
  Matrix3 result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) result[i][j] = m[j][i];
  }
  return result;
}

Matrix3 product(const Matrix3& a, const Matrix3& b) {
  Matrix3 result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      for (std::size_t k = 0; k < 3; ++k) result[i][j] += a[i][k] * b[k][j];
    }
  }
  return result;
}

Matrix3 rotated(const Matrix3& axes, const Matrix3& tensor) {
  return product(product(axes, tensor), transposed(axes));
}

bool orthonormalise(Matrix3& rows) {
  double scale = 0;
  for (const auto& row : rows) scale = std::max(scale, std::hypot(row[0], row[1], row[2]));
  for (std::size_t i = 0; i < 2; ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      double dot = 0;
      for (std::size_t k = 0; k < 3; ++k) dot += rows[i][k] * rows[j][k];
      for (std::size_t k = 0; k < 3; ++k) rows[i][k] -= dot * rows[j][k];
    }
    const double length = std::hypot(rows[i][0], rows[i][1], rows[i][2]);
    if (!(length > 1e-6 * scale)) return false;
    for (double& part : rows[i]) part /= length;
  }
  for (std::size_t k = 0; k < 3; ++k) {
    const std::size_t a = (k + 1) % 3, b = (k + 2) % 3;
    rows[2][k] = rows[0][a] * rows[1][b] - rows[0][b] * rows[1][a];
  }
  return true;
}

}  // namespace odbs::engine
