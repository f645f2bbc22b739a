// SPDX-License-Identifier: BSD-3-Clause
// The closed form of modal covariances, against integration by Simpson's rule and against what is
// known of white noise.
#include "samples/modal_covariance/band_covariance.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>

namespace odbs {
namespace {

constexpr double kTwoPi = 6.283185307179586;

std::complex<double> transfer(const ModalOscillator& mode, double frequency) {
  const double w = kTwoPi * mode.frequency, at = kTwoPi * frequency;
  return -mode.participation / std::complex<double>(w * w - at * at, 2 * mode.damping * w * at);
}

double simpson(const ModalOscillator& a, const ModalOscillator& b, const FlatBand& band) {
  constexpr int kIntervals = 100000;
  const double step = (band.high - band.low) / kIntervals;
  double sum = 0;
  for (int i = 0; i <= kIntervals; ++i) {
    const double f = band.low + i * step;
    const double weight = i == 0 || i == kIntervals ? 1 : i % 2 == 1 ? 4 : 2;
    sum += weight * (transfer(a, f) * std::conj(transfer(b, f))).real();
  }
  return band.density * sum * step / 3;
}

// The mean square of a coordinate under white noise: Miles (1954), in displacement.
double whiteNoiseVariance(const ModalOscillator& mode, double density) {
  const double w = kTwoPi * mode.frequency;
  return density * mode.participation * mode.participation / (8 * mode.damping * w * w * w);
}

// The correlation coefficient of two oscillators under white noise: Der Kiureghian (1980).
double whiteNoiseCorrelation(const ModalOscillator& a, const ModalOscillator& b) {
  const double r = b.frequency / a.frequency, za = a.damping, zb = b.damping;
  return 8 * std::sqrt(za * zb) * (za + r * zb) * std::pow(r, 1.5) /
         (std::pow(1 - r * r, 2) + 4 * za * zb * r * (1 + r * r) + 4 * (za * za + zb * zb) * r * r);
}

struct Pair {
  ModalOscillator a, b;
};
const Pair kPairs[] = {
    {{470, 0.02, 3}, {470, 0.02, 3}},      {{470, 0.02, 1}, {471, 0.02, -2}},
    {{470, 0.05, 1}, {586, 0.01, 5}},      {{586, 0.01, 5}, {470, 0.05, 1}},
    {{120, 0.9, 1}, {7000, 0.004, 0.001}}, {{0.01, 0.3, 100}, {0.02, 0.6, 100}},
};

TEST(BandCovariance, IsTheIntegralOverTheTransferFunctions) {
  const double bands[][2] = {{0, 3}, {0, 0.3}, {0.5, 1.01}, {0.99, 1.3}, {20, 21}};  // of a's
  for (const Pair& pair : kPairs) {
    for (const auto& ends : bands) {
      SCOPED_TRACE(testing::Message()
                   << pair.a.frequency << ' ' << pair.b.frequency << ' ' << ends[0]);
      const FlatBand band{7, ends[0] * pair.a.frequency, ends[1] * pair.a.frequency};
      const double scale = std::sqrt(simpson(pair.a, pair.a, band) * simpson(pair.b, pair.b, band));
      EXPECT_NEAR(simpson(pair.a, pair.b, band), modalCovariance(pair.a, pair.b, band),
                  1e-8 * scale);
    }
  }
}

TEST(BandCovariance, OfAWideBandIsThatOfWhiteNoise) {
  for (const Pair& pair : kPairs) {
    SCOPED_TRACE(pair.b.frequency);
    const FlatBand band{7, 0, 1e5 * std::max(pair.a.frequency, pair.b.frequency)};
    const double a = whiteNoiseVariance(pair.a, 7), b = whiteNoiseVariance(pair.b, 7);
    EXPECT_NEAR(1, modalCovariance(pair.a, pair.a, band) / a, 1e-10);
    const double sign = pair.a.participation * pair.b.participation < 0 ? -1 : 1;
    EXPECT_NEAR(sign * whiteNoiseCorrelation(pair.a, pair.b),
                modalCovariance(pair.a, pair.b, band) / std::sqrt(a * b), 1e-10);
  }
}

}  // namespace
}  // namespace odbs
