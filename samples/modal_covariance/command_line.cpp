// SPDX-License-Identifier: BSD-3-Clause
// Arguments, the table of modes that is printed, error messages of odb_modal_covariance.
#include "samples/modal_covariance/command_line.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <iostream>
#include <new>
#include <optional>
#include <stdexcept>

#include "base/arguments.h"
#include "base/text.h"
#include "samples/modal_covariance/random_response.h"

namespace odbs {

namespace {

constexpr const char* kHelp =
    R"(usage: odb_modal_covariance [options] --psd G MODES.odb

Adds a random-response step to a database with eigenmodes, so that a server can answer with
root-mean-square stresses. The structure stands on a base that is shaken by a random acceleration
whose power spectral density is flat over a band of frequencies. The step's frames follow the band;
the frame at frequency f holds the covariances of the modal coordinates that the band up to f causes,
as the fields "MATRIX Sqq" and "MATRIX RSqq". The database is changed in place: all of it or, when
anything is wrong, nothing.

  --psd G              acceleration density, one-sided, in (length/time^2)^2 per (cycle/time): with
                       mm and s, 0.01 g^2/Hz is 0.01 * 9810^2 = 962361 (mm/s^2)^2/Hz
  --direction N        the base moves in direction 1, 2 or 3 or turns about axis 4, 5 or 6
                       (angle/time^2); default 3. Participation factors are the history outputs PF1
                       to PF6 of the frequency step, which odb_import takes from the .dat file
  --participation L,.. these factors instead, one for each mode. For a random force at a node,
                       with modes of unit modal mass, they are the modes' displacements there, and
                       G is the density of the force
  --damping Z[,..]     fraction of critical damping, one for all modes or one for each; default 0.02
  --band F1,F2         ends of the band in cycles per time; default from 0 to twice the highest
                       frequency
  --frames N           number of frames, at equal steps through the band; default 20
  --modes N            takes the first N modes only; default all
  --step NAME          name of the new step; default Random-Response
  -q, --quiet          say nothing unless something is wrong
  -h, --help           print this text
      --version        print the version

The modes are those of the last step with the procedure *FREQUENCY, from the first one with
stresses S on. Their scale does not matter with factors from the solver, phi^T M r / phi^T M phi;
CalculiX makes phi^T M phi = 1. What modes above the last one would add is not there.

Exit status: 0 the step is written, 1 it is not, 2 the arguments are wrong; the reason is on
standard error.

  odb_import bar_modes.inp --results bar_modes.frd --data bar_modes.dat
  odb_modal_covariance --psd 962361 --direction 3 bar_modes.odb
  odb_client values bar_modes.odb --step 2 --frame 19 --field "MATRIX RSqq" --show range
)";

struct Options {
  std::string database, stepName = "Random-Response";
  double density = 0;
  int direction = 3, nFrames = 20, nModes = 0;
  std::vector<double> participation, damping = {0.02};
  std::vector<double> band;  // empty, or two ends
  bool quiet = false;
};

[[noreturn]] void fail(const std::string& reason) {
  throw std::runtime_error(reason);
}

// Finite numbers with commas between.
std::vector<double> numbersOf(const std::string& option, const std::string& text) {
  std::vector<double> numbers;
  for (const std::string_view item : split(text, ',')) {
    const std::optional<double> number = parseReal(item);
    if (!number || !std::isfinite(*number)) {
      throw UsageError(option + ": \"" + std::string(item) + "\" is no number");
    }
    numbers.push_back(*number);
  }
  return numbers;
}

const std::vector<OptionRule> kOptions{{"--psd"},     {"--direction"}, {"--participation"},
                                       {"--damping"}, {"--band"},      {"--frames"},
                                       {"--modes"},   {"--step"},      {"--quiet", false, "-q"}};

void takeNumbers(const Arguments& arguments, const std::string& option,
                 std::vector<double>& numbers) {
  if (arguments.has(option)) numbers = numbersOf(option, arguments.value(option));
}

Options optionsOf(const Arguments& arguments) {
  Options options;
  if (arguments.words.empty()) throw UsageError("which database?");
  if (arguments.words.size() > 1) throw UsageError("more than one database: " + arguments.words[1]);
  options.database = arguments.words[0];
  std::vector<double> density;
  takeNumbers(arguments, "--psd", density);
  if (density.empty()) throw UsageError("--psd is missing, the density of the load");
  if (density.size() != 1 || density[0] < 0)
    throw UsageError("--psd wants one number, not below 0");
  options.density = density[0];
  takeNumbers(arguments, "--participation", options.participation);
  takeNumbers(arguments, "--damping", options.damping);
  for (const double z : options.damping) {
    if (!(z > 0 && z < 1)) throw UsageError("--damping wants fractions above 0 and below 1");
  }
  takeNumbers(arguments, "--band", options.band);
  const std::vector<double>& band = options.band;
  if (!band.empty() && (band.size() != 2 || band[0] < 0 || band[1] <= band[0])) {
    throw UsageError("--band wants two frequencies F1,F2 with 0 <= F1 < F2");
  }
  options.direction = static_cast<int>(integerValue(arguments, "--direction", 3, 1, 6));
  options.nFrames = static_cast<int>(integerValue(arguments, "--frames", 20, 1, 100000));
  options.nModes = static_cast<int>(integerValue(arguments, "--modes", 0, 1, 100000));
  options.stepName = arguments.value("--step", options.stepName);
  if (options.stepName.empty()) throw UsageError("--step wants a name");
  options.quiet = arguments.has("--quiet");
  return options;
}

// One number for each mode; a single one where `spread` allows it is for all.
std::vector<double> forEachMode(const std::string& option, std::vector<double> numbers,
                                std::size_t nModes, bool spread) {
  if (spread && numbers.size() == 1) numbers.resize(nModes, numbers[0]);
  if (numbers.size() != nModes) {
    fail(option + " has " + std::to_string(numbers.size()) + " numbers for " +
         std::to_string(nModes) + " modes");
  }
  return numbers;
}

void report(const Options& options, const FrequencyModes& modes,
            const std::vector<ModalOscillator>& oscillators, const FlatBand& band, int step) {
  std::printf("modes of step %s, density %g from %g to %g\n", modes.stepName.c_str(), band.density,
              band.low, band.high);
  std::printf("%6s %14s %9s %14s %14s\n", "mode", "frequency", "damping", "participation",
              "rms coordinate");
  for (std::size_t i = 0; i < oscillators.size(); ++i) {
    const ModalOscillator& mode = oscillators[i];
    std::printf("%6d %14.6g %9.4g %14.6g %14.6g\n", modes.numbers[i], mode.frequency, mode.damping,
                mode.participation, std::sqrt(std::max(0., modalCovariance(mode, mode, band))));
  }
  std::printf("%s: step %d, %s, has frames 0 to %d\n", options.database.c_str(), step,
              options.stepName.c_str(), options.nFrames - 1);
}

void run(const Options& options) {
  odb_Odb& odb = openOdb(options.database.c_str(), false);
  // Whatever happens: what is not saved must not be found by the next opening in this process.
  struct Closer {
    odb_Odb& odb;
    ~Closer() { odb.close(); }
  } closer{odb};
  const FrequencyModes modes = frequencyModes(odb, options.nModes);
  const std::size_t n = modes.numbers.size();
  const std::vector<double> factors =
      options.participation.empty()
          ? participationFactors(odb, modes, options.direction)
          : forEachMode("--participation", options.participation, n, false);
  const std::vector<double> damping = forEachMode("--damping", options.damping, n, true);
  std::vector<ModalOscillator> oscillators;
  FlatBand band{options.density, 0, 0};
  for (std::size_t i = 0; i < n; ++i) {
    oscillators.push_back({modes.frequencies[i], damping[i], factors[i]});
    band.high = std::max(band.high, 2 * modes.frequencies[i]);
  }
  if (!options.band.empty()) {
    band.low = options.band[0];
    band.high = options.band[1];
  }
  const int step = addRandomResponse(odb, options.stepName, oscillators, band, options.nFrames);
  odb.save();
  if (!options.quiet) report(options, modes, oscillators, band, step);
}

}  // namespace

int runModalCovariance(const std::vector<std::string>& texts) {
  const Program program{"odb_modal_covariance", [](const Arguments&) { return kHelp; }, kOptions};
  return runProgram(program, texts, std::cout, std::cerr, [](const Arguments& arguments) {
    const Options options = optionsOf(arguments);
    try {
      run(options);
    } catch (const std::bad_alloc&) {
      throw;
    } catch (const std::exception& error) {
      fail(options.database + ": " + error.what());
    }
    return kDone;
  });
}

}  // namespace odbs
