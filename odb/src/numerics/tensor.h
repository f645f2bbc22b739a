// SPDX-License-Identifier: BSD-3-Clause
// Arithmetic on vectors, symmetric tensors and rotations: invariants, principal values, local
// systems. Components are given as the API stores them: 11, 22, 33, 12, 13, 23, planar tensors the
// first four, surface tensors 11, 22, 12.
#pragma once

#include <odb_Enum.h>

#include <array>

namespace odbs::engine {

using Matrix3 = std::array<std::array<double, 3>, 3>;

// Eigenvalues, largest first, and the eigenvector of each as a row.
struct Eigen3 {
  std::array<double, 3> values{};
  Matrix3 vectors{};
};

// Eigenvalues and vectors of a symmetric matrix, exact to rounding also for equal values.
Eigen3 symmetricEigen(const Matrix3& matrix);

// Number of components of a value of that type; 0 for types whose width is the field's own.
int componentCount(odb_Enum::odb_DataTypeEnum type);

bool isTensor(odb_Enum::odb_DataTypeEnum type);

// A tensor's components as a matrix. `width` is the number of components (6, 4 or 3); a strain-like
// ("engineering") tensor has doubled shear components, which are halved.
Matrix3 tensorMatrix(const double* components, int width, bool engineering);
// The reverse, into `width` components.
void tensorComponents(const Matrix3& matrix, int width, bool engineering, double* components);

// One invariant of a value; 0 where the type has none of that name.
double invariant(odb_Enum::odb_InvariantEnum which, odb_Enum::odb_DataTypeEnum type,
                 const double* components, int width, bool engineering);

// Rotation matrix of a quaternion (x, y, z, scalar last), whose rows are the local axes. A
// quaternion of length 0 gives the identity; others are normalised first.
Matrix3 rotationOf(const std::array<double, 4>& quaternion);
// The reverse, scalar part not negative. The rows must be orthonormal and right-handed.
std::array<double, 4> quaternionOf(const Matrix3& rotation);

Matrix3 transposed(const Matrix3& matrix);
Matrix3 product(const Matrix3& a, const Matrix3& b);
// Components of a tensor in the system whose axes are the rows of `axes`: axes * t * transposed.
Matrix3 rotated(const Matrix3& axes, const Matrix3& tensor);

// Makes the rows orthonormal and right-handed (Gram-Schmidt, the first row keeps its direction).
// False when they don't span space.
bool orthonormalise(Matrix3& rows);

}  // namespace odbs::engine
