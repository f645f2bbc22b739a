// SPDX-License-Identifier: BSD-3-Clause
// Covariances of modal coordinates under a stationary random load whose spectral density is flat
// over a band of frequencies. Knows nothing of databases.
//
// With modal damping, the coordinate q of a mode obeys (Wirsching, Paez and Ortiz, Random
// Vibrations, 1995, on multi-degree-of-freedom systems)
//
//     q'' + 2 z w q' + w^2 q = -L a(t),      w = 2 pi f
//
// for a load a(t), here the acceleration of the base; L is the mode's participation factor. Its
// transfer function is -L H(W), H(W) = 1 / (w^2 - W^2 + 2 i z w W), and the covariance of two
// coordinates is
//
//     E[q_a q_b] = L_a L_b G  integral from f1 to f2 of Re(H_a(2 pi f) H_b*(2 pi f)) df
//
// where G is the load's one-sided density. The integrand is a rational function with four simple
// poles, so the integral is a sum of four logarithms: nothing is integrated numerically.
#pragma once

#include <vector>

namespace odbs {

// One mode, and how the load drives it.
struct ModalOscillator {
  double frequency = 0;      // natural frequency without damping, in cycles per time; above 0
  double damping = 0;        // fraction of critical damping; above 0, below 1
  double participation = 0;  // modal load per load: length for base acceleration, in mode units
};

// A one-sided spectral density: `density` (load squared per cycle per time) between two
// frequencies in cycles per time, 0 <= low <= high, and 0 elsewhere.
struct FlatBand {
  double density = 0;
  double low = 0, high = 0;
};

// E[q_a q_b], in the square of the coordinates' unit. For a band from 0 far beyond both frequencies
// this is the response to white noise: of one mode G L^2 / (8 z w^3), the mean square of Miles'
// equation, and of two the correlation coefficient of Der Kiureghian (1980).
double modalCovariance(const ModalOscillator& a, const ModalOscillator& b, const FlatBand& band);

// The covariances of all pairs as a packed lower triangle in single precision, row i holding the
// i + 1 entries (i, 0) ... (i, i). Throws std::runtime_error, naming the mode counted from 1, when
// an entry does not fit in single precision.
std::vector<float> packedCovariances(const std::vector<ModalOscillator>& modes,
                                     const FlatBand& band);

}  // namespace odbs
