// SPDX-License-Identifier: BSD-3-Clause
// Expected squares of the von Mises stress, against an evaluation in long double.
#include "results/modal_kernel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>

namespace odbs {
namespace {

using Form = void (*)(const PackedMatrix&, const ModeStresses&, double*);

struct Reference {
  long double square = 0;
  long double bound = 0;  // of the plain form's rounding
};

class Problem {
 public:
  Problem(int order, int nValues, int width, const StressSlots& slots)
      : order_(order), nValues_(nValues), width_(width), slots_(slots) {
    std::uniform_real_distribution<float> entry(-1, 1);
    std::uniform_real_distribution<float> number(-300, 500);
    for (int i = 0; i < order * (order + 1) / 2; ++i) matrix_.push_back(entry(random_));
    for (int i = 0; i < order * nValues * width; ++i) stresses_.push_back(number(random_));
  }

  std::vector<double> squares(Form form, const std::vector<int>* chosen = nullptr) const {
    const ModeStresses modes{stresses_.data(), nValues_, width_, slots_, chosen};
    std::vector<double> result(static_cast<std::size_t>(nWanted(modes)));
    form({matrix_.data(), order_}, modes, result.data());
    return result;
  }

  Reference reference(int value) const {
    Reference sum;
    for (int i = 0; i < order_; ++i) {
      for (int j = 0; j < order_; ++j) {
        const int row = std::max(i, j), column = std::min(i, j);
        const long double m = matrix_[static_cast<std::size_t>(row * (row + 1) / 2 + column)];
        long double form = 0, size = 0;
        for (int k = 0; k < 6; ++k) {
          for (int l = 0; l < 6; ++l) {
            const long double q = k == l ? (k < 3 ? 1 : 3) : (k < 3 && l < 3 ? -0.5L : 0);
            const long double term = q * slot(i, value, k) * slot(j, value, l);
            form += term;
            size += std::fabs(term);
          }
        }
        sum.square += m * form;
        sum.bound += std::fabs(m) * size;
      }
    }
    const long double nTerms = order_ * (order_ + 1) / 2 + 20;
    sum.bound *= std::ldexp(1.0L, -24) + nTerms * std::ldexp(1.0L, -53);
    return sum;
  }

 private:
  long double slot(int mode, int value, int k) const {
    const int at = slots_.of[k];
    if (at < 0) return 0;
    return stresses_[static_cast<std::size_t>((mode * nValues_ + value) * width_ + at)];
  }

  int order_, nValues_, width_;
  StressSlots slots_;
  std::vector<float> matrix_, stresses_;
  std::mt19937 random_{7};
};

TEST(ModalKernel, BothFormsStayInThePlainBoundAndTheProductIsCloser) {
  const StressSlots full{{0, 1, 2, 3, 4, 5}};
  const StressSlots plane{{1, 0, 3, 2, -1, -1}};
  const struct {
    int order, nValues, width;
    const StressSlots& slots;
  } rows[] = {{1, 5, 6, full},   {2, 16, 4, plane},  {7, 33, 6, full},
              {16, 17, 6, full}, {17, 40, 4, plane}, {61, 37, 6, full}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.order);
    const Problem problem(row.order, row.nValues, row.width, row.slots);
    const std::vector<double> plain = problem.squares(expectedMisesSquaresPlain);
    const std::vector<double> product = problem.squares(expectedMisesSquaresByProduct);
    long double plainError = 0, productError = 0;
    for (int v = 0; v < row.nValues; ++v) {
      const auto at = static_cast<std::size_t>(v);
      const Reference reference = problem.reference(v);
      EXPECT_LE(std::fabs(plain[at] - reference.square), reference.bound);
      EXPECT_LE(std::fabs(product[at] - reference.square), reference.bound);
      plainError += std::fabs(plain[at] - reference.square);
      productError += std::fabs(product[at] - reference.square);
    }
    EXPECT_LT(productError, plainError / 100);
  }
}

TEST(ModalKernel, SmallOrdersRoundProductsToSinglePrecision) {
  const float one = 1;
  const float s11 = 1 + std::ldexp(1.0F, -12);  // its square needs 25 bits
  const ModeStresses stresses{&s11, 1, 1, {{0, -1, -1, -1, -1, -1}}};
  double square = 0;
  expectedMisesSquares({&one, 1}, stresses, &square);
  EXPECT_EQ(1 + std::ldexp(1.0, -11), square);
  expectedMisesSquaresByProduct({&one, 1}, stresses, &square);
  EXPECT_NEAR(1 + std::ldexp(1.0, -11) + std::ldexp(1.0, -24), square, 1e-15);
}

TEST(ModalKernel, ChosenValuesAreThoseOfAll) {
  const Problem problem(20, 50, 6, {{0, 1, 2, 3, 4, 5}});
  std::vector<int> chosen;
  for (int v = 1; v < 50; v += 2) chosen.push_back(v);
  for (const Form form : {expectedMisesSquaresPlain, expectedMisesSquaresByProduct}) {
    const std::vector<double> all = problem.squares(form);
    std::vector<double> expected;
    for (const int v : chosen) expected.push_back(all[static_cast<std::size_t>(v)]);
    EXPECT_EQ(expected, problem.squares(form, &chosen));
  }
}

TEST(ModalKernel, AnInfiniteStressSpoilsItsOwnValueOnly) {
  const int order = 20;
  std::vector<float> entries(order * (order + 1) / 2, 0.5F);
  std::vector<float> numbers(order * 3 * 6, 1.0F);
  numbers[6] = INFINITY;  // mode 0, value 1, S11
  double squares[3] = {};
  expectedMisesSquares({entries.data(), order},
                       {numbers.data(), 3, 6, StressSlots{{0, 1, 2, 3, 4, 5}}}, squares);
  EXPECT_TRUE(std::isfinite(squares[0]));
  EXPECT_FALSE(std::isfinite(squares[1]));
  EXPECT_TRUE(std::isfinite(squares[2]));
}

}  // namespace
}  // namespace odbs
