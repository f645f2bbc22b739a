// SPDX-License-Identifier: BSD-3-Clause
// Invariants and rotations against closed forms.
#include "odb/src/numerics/tensor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using namespace odbs::engine;
using E = odb_Enum;

constexpr double kTight = 1e-12;

void expectEqual(const Matrix3& a, const Matrix3& b, double tolerance = kTight) {
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) EXPECT_NEAR(a[i][j], b[i][j], tolerance) << i << j;
  }
}

double of(E::odb_InvariantEnum which, const std::vector<double>& components,
          bool engineering = false) {
  const int n = static_cast<int>(components.size());
  const E::odb_DataTypeEnum type = n == 6   ? E::TENSOR_3D_FULL
                                   : n == 4 ? E::TENSOR_3D_PLANAR
                                            : E::TENSOR_3D_SURFACE;
  return invariant(which, type, components.data(), n, engineering);
}

TEST(Tensor, InvariantsHaveTheirClosedForms) {
  const struct {
    std::vector<double> tensor;
    std::vector<std::pair<E::odb_InvariantEnum, double>> expected;
  } rows[] = {
      {{90, 0, 0, 0, 0, 0}, {{E::MISES, 90}, {E::TRESCA, 90}, {E::INV3, 90}, {E::PRESS, -30}}},
      {{-90, 0, 0, 0, 0, 0}, {{E::INV3, -90}}},
      {{0, 0, 0, 0, 0, 10},
       {{E::MISES, 10 * std::sqrt(3.0)},
        {E::MAX_PRINCIPAL, 10},
        {E::MID_PRINCIPAL, 0},
        {E::MIN_PRINCIPAL, -10}}},
      // In the plane 3 and 1 about the mean 2, out of it 5.
      {{2, 2, 5, 1},
       {{E::MAX_INPLANE_PRINCIPAL, 3},
        {E::MIN_INPLANE_PRINCIPAL, 1},
        {E::OUTOFPLANE_PRINCIPAL, 5},
        {E::MAX_PRINCIPAL, 5},
        {E::MID_PRINCIPAL, 3}}},
      {{2, 2, 1}, {{E::MAX_PRINCIPAL, 3}, {E::MIN_PRINCIPAL, 1}, {E::MAGNITUDE, 0}}}};
  for (const auto& row : rows) {
    for (const auto& [which, value] : row.expected) {
      EXPECT_NEAR(of(which, row.tensor), value, 1e-10) << which;
    }
  }
  EXPECT_NEAR(of(E::MAX_PRINCIPAL, {0, 0, 0, 2, 0, 0}, true), 1, kTight) << "engineering shear";
}

TEST(Tensor, MagnitudeBelongsToVectorsAlone) {
  const double v[] = {2, 3, 6};
  EXPECT_DOUBLE_EQ(invariant(E::MAGNITUDE, E::VECTOR, v, 3, false), 7);
  EXPECT_DOUBLE_EQ(invariant(E::MISES, E::VECTOR, v, 3, false), 0);
}

TEST(Tensor, EigenvaluesSolveTheMatrixAlsoWhenEqualOrFarApart) {
  const Matrix3 matrices[] = {{{{2, -1, 0}, {-1, 2, -1}, {0, -1, 2}}},
                              {{{4, 0, 0}, {0, 4, 0}, {0, 0, 4}}},
                              {{{1, 1, 1}, {1, 1, 1}, {1, 1, 1}}},
                              {{{1e12, 1, 0}, {1, 1e-3, 2}, {0, 2, 1}}}};
  for (const Matrix3& m : matrices) {
    const Eigen3 e = symmetricEigen(m);
    const double scale = std::fabs(e.values[0]) + std::fabs(e.values[2]);
    EXPECT_GE(e.values[0], e.values[1]);
    EXPECT_GE(e.values[1], e.values[2]);
    Matrix3 diagonal{};
    for (std::size_t k = 0; k < 3; ++k) diagonal[k][k] = e.values[k];
    expectEqual(rotated(e.vectors, m), diagonal, 1e-14 * scale);
  }
  EXPECT_NEAR(symmetricEigen(matrices[0]).values[0], 2 + std::sqrt(2.0), kTight);
}

TEST(Tensor, EigenvaluesOfBrokenNumbersEnd) {
  symmetricEigen({{{std::nan(""), 1, 2}, {1, 3, 4}, {2, 4, INFINITY}}});
}

TEST(Tensor, QuaternionsAndMatricesConvertBothWays) {
  const std::array<double, 4> quaternions[] = {
      {0, 0, 0, 1},
      {1, 0, 0, 0},
      {0, 1, 0, 0},
      {0, 0, 1, 0},
      {0.5, -0.5, 0.5, 0.5},
      {0.18257418583505536, 0.36514837167011072, 0.54772255750516607, 0.73029674334022143},
      {0.9, 0.1, -0.3, std::sqrt(0.09)}};
  for (const auto& q : quaternions) {
    const Matrix3 r = rotationOf(q);
    expectEqual(product(r, transposed(r)), rotationOf({0, 0, 0, 1}));
    expectEqual(rotationOf(quaternionOf(r)), r);
    EXPECT_GE(quaternionOf(r)[3], 0);
  }
  // A quarter turn about z: the first row is what the server sends as local 1-direction.
  const double h = std::sqrt(0.5);
  expectEqual(rotationOf({0, 0, h, h}), {{{0, -1, 0}, {1, 0, 0}, {0, 0, 1}}});
  expectEqual(rotationOf({0, 0, 0, 0}), rotationOf({0, 0, 0, 5}));
}

TEST(Tensor, RotationKeepsInvariantsAndTurnsComponents) {
  const double stress[] = {10, -3, 5, 4, 1, -2};
  const Matrix3 t = tensorMatrix(stress, 6, false);
  double turned[6];
  tensorComponents(rotated(rotationOf({0.1, 0.5, -0.2, 0.7}), t), 6, false, turned);
  for (int k = E::MISES; k <= E::MIN_PRINCIPAL; ++k) {
    const auto which = static_cast<E::odb_InvariantEnum>(k);
    EXPECT_NEAR(invariant(which, E::TENSOR_3D_FULL, stress, 6, false),
                invariant(which, E::TENSOR_3D_FULL, turned, 6, false), 1e-10);
  }
  // Local 1 along global 2: then 11 in the local system is the global 22.
  tensorComponents(rotated({{{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}}, t), 6, false, turned);
  EXPECT_NEAR(turned[0], -3, kTight);
  EXPECT_NEAR(turned[3], -4, kTight);
}

TEST(Tensor, OrthonormalisingRefusesDegenerateAxes) {
  Matrix3 rows = {{{2, 0, 0}, {1, 1, 0}, {0, 0, 9}}};
  ASSERT_TRUE(orthonormalise(rows));
  expectEqual(rows, {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}});
  Matrix3 flat = {{{1, 0, 0}, {2, 0, 0}, {0, 0, 1}}};
  EXPECT_FALSE(orthonormalise(flat));
}

}  // namespace
