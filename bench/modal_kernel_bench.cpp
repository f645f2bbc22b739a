// SPDX-License-Identifier: BSD-3-Clause
// Time and memory of the expected squares of the von Mises stress: the product form over all values
// against the plain double sum, which is measured on a part of them and scaled.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

#include "results/modal_kernel.h"

namespace {

template <typename Run>
double secondsOf(Run run) {
  const auto begin = std::chrono::steady_clock::now();
  run();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace

int main(int argc, char** argv) {
  const int order = argc > 1 ? std::atoi(argv[1]) : 200;
  const int nValues = argc > 2 ? std::atoi(argv[2]) : 100000;
  if (order < 1 || nValues < 1) {
    std::fprintf(stderr, "usage: bench_modal_kernel [modes [values]]\n");
    return 1;
  }
  std::mt19937 random(3);
  std::uniform_real_distribution<float> number(-1, 1);
  const auto n = static_cast<std::size_t>(order);
  const auto v = static_cast<std::size_t>(nValues);
  std::vector<float> matrix(n * (n + 1) / 2), stresses(n * v * 6);
  for (float& x : matrix) x = number(random);
  for (float& x : stresses) x = number(random);

  odbs::ModeStresses modes{stresses.data(), nValues, 6, {{0, 1, 2, 3, 4, 5}}};
  std::vector<double> product(v), plain(v);
  const double fast = secondsOf([&] {
    odbs::expectedMisesSquaresByProduct({matrix.data(), order}, modes, product.data());
  });
  // The plain form wants the modes of its own values behind one another.
  const int nPart = std::max(1, nValues / 20);
  std::vector<float> part;
  for (std::size_t m = 0; m < n; ++m) {
    const auto begin = stresses.begin() + static_cast<std::ptrdiff_t>(m * v * 6);
    part.insert(part.end(), begin, begin + std::ptrdiff_t{nPart} * 6);
  }
  modes.numbers = part.data();
  modes.nValues = nPart;
  const double slow = secondsOf([&] {
    odbs::expectedMisesSquaresPlain({matrix.data(), order}, modes, plain.data());
  });
  double difference = 0;
  for (int i = 0; i < nPart; ++i) {
    const auto at = static_cast<std::size_t>(i);
    difference = std::max(difference, std::abs(product[at] - plain[at]));
  }
  const double scaled = slow * nValues / nPart;
  std::printf("%d modes, %d values, gathered stresses %.0f MB\n", order, nValues,
              static_cast<double>(stresses.size()) * 4e-6);
  std::printf("product form %.3f s\n", fast);
  std::printf("plain form   %.3f s (%d values in %.3f s), %.1f times as long\n", scaled, nPart,
              slow, scaled / fast);
  std::printf("largest difference %.3g\n", difference);
  return 0;
}
