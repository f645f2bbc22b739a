// SPDX-License-Identifier: BSD-3-Clause
// Partial fractions of the product of two transfer functions.
#include "samples/modal_covariance/band_covariance.h"

#include <cmath>
#include <complex>
#include <limits>
#include <stdexcept>
#include <string>

namespace odbs {

namespace {

using Complex = std::complex<double>;

constexpr double kTwoPi = 6.283185307179586476925286766559;

}  // namespace

double modalCovariance(const ModalOscillator& a, const ModalOscillator& b, const FlatBand& band) {
  // Frequencies are counted in that of the first mode, which keeps the powers below in range.
  const double ratio = b.frequency / a.frequency;
  const double from = band.low / a.frequency, to = band.high / a.frequency;
  // H_a has its poles above the real axis, the conjugate of H_b below it: no two coincide, and
  // along the real axis no logarithm comes to its branch cut.
  const double damped = std::sqrt(1 - a.damping * a.damping);
  const double dampedB = ratio * std::sqrt(1 - b.damping * b.damping);
  const Complex poles[4] = {{damped, a.damping},
                            {-damped, a.damping},
                            {dampedB, -b.damping * ratio},
                            {-dampedB, -b.damping * ratio}};
  Complex integral = 0;
  for (const Complex& pole : poles) {
    Complex others = 1;
    for (const Complex& other : poles) {
      if (&other != &pole) others *= pole - other;
    }
    integral += (std::log(to - pole) - std::log(from - pole)) / others;
  }
  // Of W / w_a; H_a H_b* carries 1 / w_a^4, dW one w_a, and df is dW / (2 pi).
  const double omega = kTwoPi * a.frequency;
  return a.participation * b.participation * band.density * integral.real() / kTwoPi /
         (omega * omega * omega);
}

std::vector<float> packedCovariances(const std::vector<ModalOscillator>& modes,
                                     const FlatBand& band) {
  std::vector<float> packed;
  packed.reserve(modes.size() * (modes.size() + 1) / 2);
  for (std::size_t i = 0; i < modes.size(); ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      const double entry = modalCovariance(modes[i], modes[j], band);
      if (!(std::abs(entry) <= std::numeric_limits<float>::max())) {
        throw std::runtime_error("the covariance of modes " + std::to_string(i + 1) + " and " +
                                 std::to_string(j + 1) + " is beyond single precision");
      }
      packed.push_back(static_cast<float>(entry));
    }
  }
  return packed;
}

}  // namespace odbs
