// SPDX-License-Identifier: BSD-3-Clause
// Both forms of the double sum over modes.
#include "results/modal_kernel.h"

#include <algorithm>
#include <cmath>
#include <cstring>

// The wide-register copy of the inner loop. Not on Windows, where the compiler cannot align the
// stack for registers that wide.
#if defined(__GNUC__) && defined(__x86_64__) && !defined(_WIN32)
#define ODBS_WIDE_REGISTERS 1
#endif

namespace odbs {

namespace {

// ---- Plain form ----

double misesProduct(const float* a, const float* b) {
  const float s11 = a[0] * b[0], s22 = a[1] * b[1], s33 = a[2] * b[2];
  const float s12 = a[3] * b[3], s13 = a[4] * b[4], s23 = a[5] * b[5];
  const float n12 = a[0] * b[1], n13 = a[0] * b[2], n21 = a[1] * b[0];
  const float n23 = a[1] * b[2], n31 = a[2] * b[0], n32 = a[2] * b[1];
  const auto wide = [](float x) { return static_cast<double>(x); };
  const double squares = wide(s11) + wide(s22) + wide(s33);
  const double shears = wide(s12) + wide(s13) + wide(s23);
  const double mixed = wide(n12) + wide(n13) + wide(n21) + wide(n23) + wide(n31) + wide(n32);
  return squares + 3 * shears - 0.5 * mixed;
}

// The components of a wanted value in a mode.
const float* componentsOf(const ModeStresses& stresses, int mode, int wanted) {
  const int value = stresses.chosen ? (*stresses.chosen)[static_cast<std::size_t>(wanted)] : wanted;
  return stresses.numbers + (std::ptrdiff_t{mode} * stresses.nValues + value) * stresses.width;
}

void takeSlots(const ModeStresses& stresses, int mode, int wanted, float* six) {
  const float* const own = componentsOf(stresses, mode, wanted);
  for (int k = 0; k < 6; ++k) six[k] = stresses.slots.of[k] < 0 ? 0 : own[stresses.slots.of[k]];
}

// ---- Product form ----

constexpr int kPanelRows = 4;     // rows of the matrix that are worked on together
constexpr int kLanes = 8;         // numbers of a row of T that stay in registers
constexpr int kBatchValues = 16;  // values whose components make one T: a multiple of kLanes

// The matrix as its lower triangle in panels of kPanelRows rows, column by column, entries below
// the diagonal doubled, zeros above it and in rows beyond the order.
std::vector<double> panelsOf(const PackedMatrix& matrix) {
  std::vector<double> panels;
  const int n = matrix.order;
  const auto nPanels = static_cast<std::size_t>((n + kPanelRows - 1) / kPanelRows);
  panels.reserve(nPanels * (nPanels + 1) / 2 * kPanelRows * kPanelRows);
  for (int first = 0; first < n; first += kPanelRows) {
    for (int j = 0; j < first + kPanelRows; ++j) {
      for (int i = first; i < first + kPanelRows; ++i) {
        const bool inside = i < n && j <= i;
        const std::ptrdiff_t row = std::ptrdiff_t{i} * (i + 1) / 2;
        const double entry = inside ? static_cast<double>(matrix.entries[row + j]) : 0.0;
        panels.push_back(j < i ? 2 * entry : entry);
      }
    }
  }
  return panels;
}

// Adds t_i * (sum over j of W[i][j] t_j) to `sums`, lane by lane, for the rows i of one panel.
// `t` has `nLanes` numbers a row. Inlined into each variant below.
__attribute__((always_inline)) inline void addPanel(const double* panel, int first, const double* t,
                                                    std::ptrdiff_t nLanes, double* sums) {
  for (std::ptrdiff_t lane = 0; lane < nLanes; lane += kLanes) {
    double acc[kPanelRows][kLanes] = {};
    const double* entries = panel;
    const double* row = t + lane;
    for (int j = 0; j < first + kPanelRows; ++j, entries += kPanelRows, row += nLanes) {
#pragma GCC unroll 4
      for (int r = 0; r < kPanelRows; ++r) {
#pragma GCC unroll 8
        for (int k = 0; k < kLanes; ++k) acc[r][k] += entries[r] * row[k];
      }
    }
    const double* own = t + first * nLanes + lane;
    for (int r = 0; r < kPanelRows; ++r, own += nLanes) {
      for (int k = 0; k < kLanes; ++k) sums[lane + k] += own[k] * acc[r][k];
    }
  }
}

using AddPanel = void (*)(const double*, int, const double*, std::ptrdiff_t, double*);

void addPanelNarrow(const double* panel, int first, const double* t, std::ptrdiff_t nLanes,
                    double* sums) {
  addPanel(panel, first, t, nLanes, sums);
}

#if defined(ODBS_WIDE_REGISTERS)

typedef double FourDoubles __attribute__((vector_size(32)));

__attribute__((target("avx2,fma"))) void addPanelWide(const double* panel, int first,
                                                      const double* t, std::ptrdiff_t nLanes,
                                                      double* sums) {
  static_assert(kPanelRows == 4 && kLanes == 8, "the registers below are named one by one");
  for (std::ptrdiff_t lane = 0; lane < nLanes; lane += kLanes) {
    FourDoubles a0 = {}, a1 = {}, b0 = {}, b1 = {}, c0 = {}, c1 = {}, d0 = {}, d1 = {};
    const double* entries = panel;
    const double* row = t + lane;
    for (int j = 0; j < first + kPanelRows; ++j, entries += kPanelRows, row += nLanes) {
      FourDoubles x0, x1;
      std::memcpy(&x0, row, sizeof x0);
      std::memcpy(&x1, row + 4, sizeof x1);
      a0 += entries[0] * x0;
      a1 += entries[0] * x1;
      b0 += entries[1] * x0;
      b1 += entries[1] * x1;
      c0 += entries[2] * x0;
      c1 += entries[2] * x1;
      d0 += entries[3] * x0;
      d1 += entries[3] * x1;
    }
    double acc[kPanelRows][kLanes];
    const FourDoubles registers[] = {a0, a1, b0, b1, c0, c1, d0, d1};
    std::memcpy(acc, registers, sizeof acc);
    const double* own = t + first * nLanes + lane;
    for (int r = 0; r < kPanelRows; ++r, own += nLanes) {
      for (int k = 0; k < kLanes; ++k) sums[lane + k] += own[k] * acc[r][k];
    }
  }
}

AddPanel chosenAddPanel() {
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") ? addPanelWide
                                                                         : addPanelNarrow;
}

#else

AddPanel chosenAddPanel() {
  return addPanelNarrow;
}

#endif

// The five numbers of a stress state: B of two states is the scalar product of theirs. `step` is
// the distance between them in `five`; of the shears only those that the field has are put.
void putFive(const float* value, const StressSlots& slots, std::ptrdiff_t step, double* five) {
  static const double kDifference = std::sqrt(0.75);
  static const double kShear = std::sqrt(3.0);
  const auto slot = [value, &slots](int k) {
    return slots.of[k] < 0 ? 0.0 : static_cast<double>(value[slots.of[k]]);
  };
  five[0] = kDifference * (slot(0) - slot(1));
  five[step] = slot(2) - 0.5 * (slot(0) + slot(1));
  five += 2 * step;
  for (int k = 3; k < 6; ++k) {
    if (slots.of[k] < 0) continue;
    *five = kShear * slot(k);
    five += step;
  }
}

}  // namespace

void expectedMisesSquaresPlain(const PackedMatrix& matrix, const ModeStresses& stresses,
                               double* squares) {
  const int n = matrix.order;
  std::vector<float> six(6 * static_cast<std::size_t>(n));
  for (int value = 0; value < nWanted(stresses); ++value) {
    for (int m = 0; m < n; ++m) takeSlots(stresses, m, value, &six[6 * static_cast<size_t>(m)]);
    double sum = 0;
    for (int i = 0; i < n; ++i) {
      const float* const own = &six[6 * static_cast<std::size_t>(i)];
      for (int j = i; j < n; ++j) {
        // M[i][j] of the upper triangle is the entry (j, i) of the lower one.
        const float entry = matrix.entries[std::ptrdiff_t{j} * (j + 1) / 2 + i];
        const double weight = j == i ? 1.0 : 2.0;
        sum += weight * static_cast<double>(entry) *
               misesProduct(own, &six[6 * static_cast<std::size_t>(j)]);
      }
    }
    squares[value] = sum;
  }
}

void expectedMisesSquaresByProduct(const PackedMatrix& matrix, const ModeStresses& stresses,
                                   double* squares) {
  const std::vector<double> panels = panelsOf(matrix);
  const AddPanel add = chosenAddPanel();
  const int nRows = (matrix.order + kPanelRows - 1) / kPanelRows * kPanelRows;
  const int* const shears = stresses.slots.of + 3;
  const std::ptrdiff_t nComponents =
      2 + std::count_if(shears, shears + 3, [](int slot) { return slot >= 0; });
  const std::ptrdiff_t nLanes = nComponents * kBatchValues;
  std::vector<double> t(static_cast<std::size_t>(nRows * nLanes));
  std::vector<double> sums(static_cast<std::size_t>(nLanes));
  const int nValues = nWanted(stresses);
  for (int begin = 0; begin < nValues; begin += kBatchValues) {
    // Lanes of a shorter last batch keep the numbers of the batch before, and are not read.
    const int nBatch = std::min(kBatchValues, nValues - begin);
    for (int m = 0; m < matrix.order; ++m) {
      double* const row = t.data() + m * nLanes;
      for (int i = 0; i < nBatch; ++i) {
        putFive(componentsOf(stresses, m, begin + i), stresses.slots, kBatchValues, row + i);
      }
    }
    std::fill(sums.begin(), sums.end(), 0.0);
    const double* panel = panels.data();
    for (int first = 0; first < matrix.order; first += kPanelRows) {
      add(panel, first, t.data(), nLanes, sums.data());
      panel += (first + kPanelRows) * kPanelRows;
    }
    for (int i = 0; i < nBatch; ++i) {
      double sum = 0;
      for (std::ptrdiff_t c = 0; c < nComponents; ++c) {
        sum += sums[static_cast<std::size_t>(c * kBatchValues + i)];
      }
      squares[begin + i] = sum;
    }
  }
}

void expectedMisesSquares(const PackedMatrix& matrix, const ModeStresses& stresses,
                          double* squares) {
  if (matrix.order <= kLargestPlainOrder) {
    expectedMisesSquaresPlain(matrix, stresses, squares);
  } else {
    expectedMisesSquaresByProduct(matrix, stresses, squares);
  }
}

}  // namespace odbs
