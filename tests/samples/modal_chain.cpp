// SPDX-License-Identifier: BSD-3-Clause
// The fixture of tests/samples/modal_chain.h.
#include "tests/samples/modal_chain.h"

#include <odb_API.h>

#include <algorithm>
#include <cmath>

#include "importer/command_line.h"
#include "importer/results/dat_reader.h"
#include "importer/results/frd_reader.h"
#include "samples/modal_covariance/command_line.h"

namespace odbs::tests {

namespace {

// The stresses of each mode, in single precision like those of databases.
void readStresses(const std::string& path, std::vector<SolvedMode>& modes) {
  importer::FrdReader reader(path);
  std::size_t mode = 0;
  for (auto block = reader.next(); block != importer::FrdReader::Block::end;
       block = reader.next()) {
    const importer::FrdResult& result = reader.result();
    if (result.name != "STRESS") continue;
    for (std::size_t row = 0; row < result.labels.size(); ++row) {
      for (std::size_t i = 0; i < 6; ++i) {
        modes.at(mode).stresses[result.labels[row]][i] =
            static_cast<double>(static_cast<float>(result.values[6 * row + i]));
      }
    }
    ++mode;
  }
  ASSERT_EQ(modes.size(), mode);
}

}  // namespace

void ModalChain::SetUp() {
  const std::string base = std::string(ODBS_SOURCE_DIR) + "/samples/bar_modes/bar_modes";
  ASSERT_EQ(0, importer::runImport({base + ".inp", "--results", base + ".frd", "--data",
                                    base + ".dat", "--quiet", "-o", path_}));
  modes_.resize(kModes);
  readStresses(base + ".frd", modes_);
  importer::DatReader printed(base + ".dat");
  while (printed.next()) {
    const importer::DatTable& table = printed.table();
    const bool factors = table.quantity == importer::kDatParticipation;
    if (!factors && table.quantity != importer::kDatEigenvalues) continue;
    ASSERT_EQ(table.nRows(), std::size_t{kModes});
    for (std::size_t m = 0; m < kModes; ++m) {
      const double* const row = table.values.data() + m * table.columns.size();
      if (!factors) modes_[m].frequency = row[2];
      if (factors) std::copy(row, row + 6, modes_[m].participation);
    }
  }
  ASSERT_GT(modes_[0].frequency, 0);
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
