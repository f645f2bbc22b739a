// SPDX-License-Identifier: BSD-3-Clause
// The fixture of tests/samples/modal_chain.h.
#include "tests/samples/modal_chain.h"

#include <odb_API.h>

#include <cmath>
#include <fstream>
#include <sstream>

#include "importer/command_line.h"
#include "samples/modal_covariance/command_line.h"

namespace odbs::tests {

namespace {

// The stresses of each mode: lines " -1", a node, six numbers of 12 columns.
void readStresses(const std::string& path, std::vector<SolvedMode>& modes) {
  std::ifstream file(path);
  std::size_t mode = 0;
  bool stress = false;
  for (std::string line; std::getline(file, line);) {
    const std::string key = line.substr(0, 3);
    if (key == " -4") stress = line.compare(5, 6, "STRESS") == 0;
    if (key == " -3" && stress) {
      stress = false;
      ++mode;
    }
    if (key != " -1" || !stress) continue;
    Stress& at = modes.at(mode).stresses[std::stoi(line.substr(3, 10))];
    for (std::size_t i = 0; i < 6; ++i) {
      // Databases hold single precision.
      at[i] = static_cast<double>(std::stof(line.substr(13 + 12 * i, 12)));
    }
  }
  ASSERT_EQ(modes.size(), mode);
}

// The rows behind the first line that begins with `heading`: numbers, as many as there are modes.
std::vector<std::vector<double>> rowsBehind(const std::string& path, const std::string& heading,
                                            std::size_t nRows) {
  std::ifstream file(path);
  std::vector<std::vector<double>> rows;
  bool found = false;
  for (std::string line; rows.size() < nRows && std::getline(file, line);) {
    found = found || line.find(heading) != std::string::npos;
    std::istringstream words(line);
    std::vector<double> row;
    for (double number = 0; words >> number;) row.push_back(number);
    if (found && row.size() >= 5) rows.push_back(row);
  }
  return rows;
}

}  // namespace

void ModalChain::SetUp() {
  const std::string base = std::string(ODBS_SOURCE_DIR) + "/samples/bar_modes/bar_modes";
  ASSERT_EQ(0, importer::runImport({base + ".inp", "--results", base + ".frd", "--data",
                                    base + ".dat", "--quiet", "-o", path_}));
  modes_.resize(kModes);
  readStresses(base + ".frd", modes_);
  const auto eigenvalues = rowsBehind(base + ".dat", "E I G E N V A L U E   O U T P U T", kModes);
  const auto factors = rowsBehind(base + ".dat", "P A R T I C I P A T I O N", kModes);
  ASSERT_EQ(std::size_t{kModes}, factors.size());
  for (std::size_t m = 0; m < kModes; ++m) {
    modes_[m].frequency = eigenvalues[m].at(3);
    for (std::size_t k = 0; k < 6; ++k) modes_[m].participation[k] = factors[m].at(k + 1);
  }
}

int ModalChain::run(std::vector<std::string> options) {
  options.push_back(path_);
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const int status = runModalCovariance(options);
  testing::internal::GetCapturedStdout();
  errors_ = testing::internal::GetCapturedStderr();
  return status;
}

Matrix ModalChain::storedMatrix(int frame) const {
  odb_Odb& odb = openOdb(path_.c_str(), true);
  const odb_FieldOutput field =
      odb.steps().stepList().Get(1).frames()[frame].fieldOutputs()["MATRIX Sqq"];
  const float* entry = field.bulkDataBlocks()[0].data();
  Matrix matrix(static_cast<std::size_t>(field.dim()), std::vector<double>(kModes));
  for (std::size_t i = 0; i < matrix.size(); ++i) {
    for (std::size_t j = 0; j <= i; ++j)
      matrix[i][j] = matrix[j][i] = static_cast<double>(*entry++);
  }
  odb.close();
  return matrix;
}

client::FieldValues ModalChain::values(const std::string& variable, int frame,
                                       const std::vector<client::RegionQuery>& regions) {
  client::Connection server({});
  client::ValuesRequest request;
  request.step = 2;
  request.frame = frame;
  request.field = variable;
  request.regions = regions;
  return client::readFieldValues(server, path_, request);
}

long double ModalChain::product(const Stress& a, const Stress& b) {
  long double sum = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    const std::size_t k = (i + 1) % 3;
    sum += 0.5L * (a[i] - a[k]) * (b[i] - b[k]) + 3.0L * a[i + 3] * b[i + 3];
  }
  return sum;
}

Matrix ModalChain::products(int node) const {
  Matrix b(kModes, std::vector<double>(kModes));
  for (std::size_t i = 0; i < kModes; ++i) {
    for (std::size_t j = 0; j < kModes; ++j) {
      b[i][j] =
          static_cast<double>(product(modes_[i].stresses.at(node), modes_[j].stresses.at(node)));
    }
  }
  return b;
}

double ModalChain::productSize(int node, std::size_t i, std::size_t j) const {
  const Stress& a = modes_[i].stresses.at(node);
  const Stress& b = modes_[j].stresses.at(node);
  double size = 0;
  for (std::size_t k = 0; k < 3; ++k) {
    for (std::size_t l = 0; l < 3; ++l) size += (k == l ? 1 : 0.5) * std::fabs(a[k] * b[l]);
    size += 3 * std::fabs(a[k + 3] * b[k + 3]);
  }
  return size;
}

}  // namespace odbs::tests
