// SPDX-License-Identifier: BSD-3-Clause
// The database side of the sample: finds the modes of a solved frequency step and writes the
// random-response step that a server computes root-mean-square stresses from. Uses the API's
// public names alone.
#pragma once

#include <odb_API.h>

#include <string>
#include <vector>

#include "samples/modal_covariance/band_covariance.h"

namespace odbs {

// The eigenmodes that carry stresses, in the order of their frames.
struct FrequencyModes {
  std::string stepName;
  std::vector<int> numbers;         // as the database counts them
  std::vector<double> frequencies;  // cycles per time
};

// The modes of the database's last step with the procedure "*FREQUENCY": from its first frame that
// has a mode number and stresses "S" to its last one, at most `nMost` where that is above 0.
// Throws std::runtime_error when there is no such step or mode, when there are fewer than `nMost`,
// and for a mode without "S", with complex "S", or with a frequency that is not above 0 (a rigid
// body's).
FrequencyModes frequencyModes(const odb_Odb& odb, int nMost);

// The participation factors of these modes in a direction (1 to 3 translations, 4 to 6 rotations):
// the step's history output "PF" and the direction's number over the mode. CalculiX sums the mass
// of free nodes only: on the sample bar its factors are 0.05 % above those of the whole mass in the
// first mode, 1 % in the sixth. Throws std::runtime_error when the output, or the value of a mode,
// is missing.
std::vector<double> participationFactors(const odb_Odb& odb, const FrequencyModes& modes,
                                         int direction);

// Appends a step "*RANDOM RESPONSE" whose frames are at `nFrames` equal steps through the band, the
// last one at its end. Each holds under both "MATRIX Sqq" and "MATRIX RSqq" the covariances that
// the band up to that frequency causes: what a viewer draws over the frames is the growth of the
// stress with frequency. Returns the step's number, counted from 1. Does not save. Throws
// std::runtime_error for a name that is taken, and what packedCovariances and the database library
// throw.
int addRandomResponse(odb_Odb& odb, const std::string& stepName,
                      const std::vector<ModalOscillator>& modes, const FlatBand& band, int nFrames);

}  // namespace odbs
