// SPDX-License-Identifier: BSD-3-Clause
// Random-response stresses on real mode shapes: importer, sample program and server together,
// against an evaluation from the solver's own files, and against drawing at random.
#include "tests/samples/modal_chain.h"

#include <odb_API.h>

#include <cmath>
#include <random>

#include "samples/modal_covariance/band_covariance.h"
#include "tests/support/sequences.h"

namespace odbs::tests {
namespace {

// Factors that let all six modes take part, two of them with the other sign.
const std::vector<std::string> kAllModes = {
    "--psd",    "962361",   "--participation", "0.0068,0.0051,-0.0038,0.0023,0.0047,-0.0019",
    "--band",   "100,9000", "--damping",       "0.05,0.05,0.03,0.03,0.02,0.02",
    "--frames", "4"};

TEST_F(ModalChain, TheMatrixIsThatOfTheSolversModesUnderWhiteNoise) {
  ASSERT_EQ(0, run({"--psd", "962361", "--direction", "3", "--damping", "0.05", "--band", "0,1e9",
                    "--frames", "1"}))
      << errors_;
  const Matrix matrix = storedMatrix(0);
  ASSERT_EQ(std::size_t{kModes}, matrix.size());
  const auto omega = [&](std::size_t m) { return 6.283185307179586 * modes_[m].frequency; };
  const auto deviation = [&](std::size_t m) {
    return modes_[m].participation[2] * std::sqrt(962361 / (8 * 0.05 * std::pow(omega(m), 3)));
  };
  for (std::size_t i = 0; i < kModes; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      // Der Kiureghian (1980), for equal damping. Seven printed digits of each factor.
      const double r = omega(j) / omega(i), z = 0.05;
      const double correlation = 8 * z * z * (1 + r) * std::pow(r, 1.5) /
                                 (std::pow(1 - r * r, 2) + 4 * z * z * r * std::pow(1 + r, 2));
      const double scale = deviation(i) * deviation(j);
      EXPECT_NEAR(scale * correlation, matrix[i][j], 2e-6 * std::fabs(scale)) << i << ' ' << j;
    }
  }
}

TEST_F(ModalChain, EveryValueIsTheSumOverTheModesInTheSolversFile) {
  ASSERT_EQ(0, run(kAllModes)) << errors_;
  for (const int frame : {1, 3}) {
    const Matrix matrix = storedMatrix(frame);
    const client::FieldValues squares = values("MATRIX Sqq", frame);
    const client::FieldValues roots = values("MATRIX RSqq", frame);
    ASSERT_EQ(std::size_t{120}, squares.components.size());  // 6 elements of 20 nodes
    ASSERT_EQ(std::size_t{120}, roots.components.size());
    for (std::size_t v = 0; v < squares.components.size(); ++v) {
      const int node = squares.thirdLabels[v];
      const Matrix b = products(node);
      long double expected = 0, size = 0;
      for (std::size_t i = 0; i < kModes; ++i) {
        for (std::size_t j = 0; j < kModes; ++j) {
          expected += static_cast<long double>(matrix[i][j]) * b[i][j];
          size += std::fabs(matrix[i][j]) * productSize(node, i, j);
        }
      }
      // Products of components are rounded to single precision, the result once more.
      const double bound = std::ldexp(static_cast<double>(size + std::fabs(expected)), -24);
      const auto square = static_cast<double>(expected);
      EXPECT_NEAR(square, static_cast<double>(squares.components[v]), bound);
      EXPECT_NEAR(std::sqrt(square), static_cast<double>(roots.components[v]),
                  bound / std::sqrt(square));
    }
  }
}

TEST_F(ModalChain, EachFrameHoldsWhatTheBandUpToItsFrequencyCauses) {
  ASSERT_EQ(0, run(kAllModes)) << errors_;
  const double damping[] = {0.05, 0.05, 0.03, 0.03, 0.02, 0.02};
  const double factors[] = {0.0068, 0.0051, -0.0038, 0.0023, 0.0047, -0.0019};
  for (int frame = 0; frame < 4; ++frame) {
    const Matrix matrix = storedMatrix(frame);
    const FlatBand band{962361, 100, 100 + 8900 * (frame + 1) / 4.};
    for (std::size_t i = 0; i < kModes; ++i) {
      for (std::size_t j = 0; j < kModes; ++j) {
        const ModalOscillator a{modes_[i].frequency, damping[i], factors[i]};
        const ModalOscillator b{modes_[j].frequency, damping[j], factors[j]};
        EXPECT_NEAR(modalCovariance(a, b, band), matrix[i][j],
                    1e-5 * std::sqrt(matrix[i][i] * matrix[j][j]))
            << frame << ' ' << i << ' ' << j;
      }
    }
  }
}

// Lower triangular F with F F^T = m. Directions without variance get a column of zeros.
Matrix factorOf(const Matrix& m) {
  Matrix f(m.size(), std::vector<double>(m.size(), 0));
  for (std::size_t j = 0; j < m.size(); ++j) {
    for (std::size_t i = j; i < m.size(); ++i) {
      double rest = m[i][j];
      for (std::size_t k = 0; k < j; ++k) rest -= f[i][k] * f[j][k];
      f[i][j] = i == j ? std::sqrt(std::max(rest, 0.)) : f[j][j] > 0 ? rest / f[j][j] : 0;
    }
  }
  return f;
}

Matrix operator*(const Matrix& a, const Matrix& b) {
  Matrix c(a.size(), std::vector<double>(b[0].size(), 0));
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t k = 0; k < b.size(); ++k) {
      for (std::size_t j = 0; j < b[0].size(); ++j) c[i][j] += a[i][k] * b[k][j];
    }
  }
  return c;
}

TEST_F(ModalChain, DrawingTheModesAtRandomGivesTheSameMeanSquare) {
  constexpr int kDraws = 50000;
  ASSERT_EQ(0, run(kAllModes)) << errors_;
  const Matrix covariance = storedMatrix(3);
  const Matrix factor = factorOf(covariance);
  const client::FieldValues squares = values("MATRIX Sqq", 3);
  std::mt19937 random(2024);
  std::normal_distribution<double> normal;
  for (const std::size_t v : {0u, 17u, 45u, 74u, 101u}) {
    const int node = squares.thirdLabels.at(v);
    double sum = 0;
    for (int draw = 0; draw < kDraws; ++draw) {
      double z[kModes];
      for (double& x : z) x = normal(random);
      Stress stress = {};
      for (std::size_t i = 0; i < kModes; ++i) {
        double amplitude = 0;
        for (std::size_t k = 0; k <= i; ++k) amplitude += factor[i][k] * z[k];
        for (std::size_t c = 0; c < 6; ++c) stress[c] += amplitude * modes_[i].stresses[node][c];
      }
      sum += static_cast<double>(product(stress, stress));
    }
    // The variance of the quadratic form q^T B q of Gaussian q is 2 tr(B C B C).
    const Matrix bc = products(node) * covariance;
    const Matrix square = bc * bc;
    double trace = 0;
    for (std::size_t i = 0; i < kModes; ++i) trace += square[i][i];
    const double standardError = std::sqrt(2 * trace / kDraws);
    const auto expected = static_cast<double>(squares.components.at(v));
    EXPECT_NEAR(expected, sum / kDraws, 5 * standardError) << "node " << node;
    EXPECT_LT(5 * standardError, 0.04 * expected) << "too few draws to tell";
  }
}

TEST_F(ModalChain, ASelectionOfElementsRestrictsTheValuesAlone) {
  ASSERT_EQ(0, run(kAllModes)) << errors_;
  odb_Odb& odb = openOdb(path_.c_str(), false);
  odb.rootAssembly().instances()["PART-1-1"].ElementSet("ENDS", ints({1, 6}));
  odb.save();
  odb.close();
  const client::FieldValues all = values("MATRIX RSqq", 3);
  std::vector<float> ends;
  for (std::size_t v = 0; v < all.components.size(); ++v) {
    if (all.elementLabels[v] == 1 || all.elementLabels[v] == 6) ends.push_back(all.components[v]);
  }
  ASSERT_EQ(std::size_t{40}, ends.size());
  EXPECT_EQ(ends, values("MATRIX RSqq", 3, {{1, 0, "ENDS"}}).components);
  // A node set selects no element: the block's header comes, no value.
  const client::FieldValues none = values("MATRIX RSqq", 3, {{2, 0, "TIP"}});
  EXPECT_EQ(std::size_t{1}, none.blocks.size());
  EXPECT_TRUE(none.components.empty());
}

TEST_F(ModalChain, WhatCannotBeDoneIsSaidAndTheDatabaseStays) {
  const struct {
    std::vector<std::string> options;
    const char* reason;
    int status = 1;
  } rows[] = {
      {{}, "--psd is missing", 2},
      {{"--psd", "-1"}, "--psd wants", 2},
      {{"--psd", "1", "--direction", "7"}, "from 1 to 6", 2},
      {{"--psd", "1", "--damping", "0"}, "above 0 and below 1", 2},
      {{"--psd", "1", "--damping", "0.1,0.2"}, "2 numbers for 6 modes"},
      {{"--psd", "1", "--participation", "1"}, "1 numbers for 6 modes"},
      {{"--psd", "1", "--band", "9,9"}, "0 <= F1 < F2", 2},
      {{"--psd", "1", "--modes", "7"}, "has 6 modes"},
      {{"--psd", "1", "--step", "Step-1"}, "there is a step Step-1"},
      {{"--psd", "1e300"}, "beyond single precision"},
      {{"--psd", "1", "other.odb"}, "more than one database", 2},
  };
  const std::string before = readFile(path_);
  for (const auto& row : rows) {
    EXPECT_EQ(row.status, run(row.options)) << row.reason;
    EXPECT_NE(std::string::npos, errors_.find(row.reason)) << errors_;
    EXPECT_EQ(before, readFile(path_)) << row.reason;
  }
}

TEST_F(ModalChain, AModelWithoutModesIsRefused) {
  odb_Odb& odb = Odb("bare", "", "", path_.c_str());
  odb_Step& step = odb.Step("Step-1", "", odb_Enum::MODAL, 0, "", "*FREQUENCY");
  step.Frame(1, 0.0F);
  odb.save();
  odb.close();
  EXPECT_EQ(1, run({"--psd", "1"}));
  EXPECT_NE(std::string::npos, errors_.find("no mode of step Step-1 has stresses S")) << errors_;
}

}  // namespace
}  // namespace odbs::tests
