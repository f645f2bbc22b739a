// SPDX-License-Identifier: BSD-3-Clause
// The chain from a solver's eigenmodes to random-response stresses: the sample's database, what the
// solver's files say, read without the importer, and the server's answers.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <string>
#include <vector>

#include "client/field_values.h"
#include "tests/support/server_process.h"

namespace odbs::tests {

using Stress = std::array<double, 6>;  // xx yy zz and three shears, in the file's order
using Matrix = std::vector<std::vector<double>>;

// What the solver printed about its modes.
struct SolvedMode {
  double frequency = 0;
  double participation[6] = {};
  std::map<int, Stress> stresses;  // by node label
};

class ModalChain : public ::testing::Test {
 protected:
  static constexpr int kModes = 6;

  // Imports the sample "bar_modes" and reads its files. Fatal failures where that does not work.
  void SetUp() override;

  // Runs the program on the database. Returns its exit status; its messages are kept.
  int run(std::vector<std::string> options);
  // The packed matrix of a frame of the step that was added, as it is stored.
  Matrix storedMatrix(int frame) const;
  // What the server sends for the variable in that frame; values of the regions alone if given.
  client::FieldValues values(const std::string& variable, int frame,
                             const std::vector<client::RegionQuery>& regions = {});

  // The bilinear form whose value for two equal states is the square of the von Mises stress.
  static long double product(const Stress& a, const Stress& b);
  // B(i, j) of the modes' stresses at a node.
  Matrix products(int node) const;
  // The sizes of what B(i, j) is the sum of, added up.
  double productSize(int node, std::size_t i, std::size_t j) const;

  TemporaryFolder folder_;
  std::string path_ = folder_.file("modes.odb");
  std::vector<SolvedMode> modes_;
  std::string errors_;  // of the last run
};

}  // namespace odbs::tests
