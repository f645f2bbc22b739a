// SPDX-License-Identifier: BSD-3-Clause
// The arithmetic of random-response stresses: expected squares of the von Mises stress from a
// covariance matrix of modes and the modes' stresses. Knows nothing of databases.
//
// For two stress states a and b, B(a, b) is the bilinear form whose B(s, s) is the square of the
// von Mises stress. Of one value the expected square is the sum over all pairs of modes of
// M[i][j] B(s_i, s_j).
#pragma once

#include <cstddef>
#include <vector>

namespace odbs {

// Where the stress components S11, S22, S33, S12, S13, S23 stand in a value; -1: missing, taken
// as 0.
struct StressSlots {
  int of[6] = {-1, -1, -1, -1, -1, -1};
};

// The lower triangle of a symmetric matrix, row by row: row i holds M[i][0] ... M[i][i].
struct PackedMatrix {
  const float* entries = nullptr;  // order (order + 1) / 2
  int order = 0;
};

// The stresses of all modes at the values of one block: of mode m its nValues * width numbers,
// value by value, from numbers[m * nValues * width] on.
struct ModeStresses {
  const float* numbers = nullptr;
  int nValues = 0;
  int width = 0;
  StressSlots slots;
  // The values that are wanted, by their place in the block; null: all of them.
  const std::vector<int>* chosen = nullptr;
};

// How many values are wanted.
inline int nWanted(const ModeStresses& stresses) {
  return stresses.chosen ? static_cast<int>(stresses.chosen->size()) : stresses.nValues;
}

// Up to this order both forms cost about the same, and the plain one is used.
constexpr int kLargestPlainOrder = 16;

// Adds nothing up but what it says: `squares` gets one expected square for each wanted value; it is
// negative where an indefinite matrix makes it so. Takes the plain form up to kLargestPlainOrder,
// the product form above. Throws std::bad_alloc.
void expectedMisesSquares(const PackedMatrix& matrix, const ModeStresses& stresses,
                          double* squares);

// The double sum over pairs of modes. Contract: products of components are rounded to single
// precision, everything else is double.
void expectedMisesSquaresPlain(const PackedMatrix& matrix, const ModeStresses& stresses,
                               double* squares);

// The same value from a matrix product. B is a quadratic form of rank 5: with two deviatoric
// components and the three shears, scaled, B(a, b) is the scalar product of five numbers each, so
// that the sum is t^T M t for five vectors t over the modes. They are taken for many values at a
// time, in double precision throughout.
void expectedMisesSquaresByProduct(const PackedMatrix& matrix, const ModeStresses& stresses,
                                   double* squares);

}  // namespace odbs
