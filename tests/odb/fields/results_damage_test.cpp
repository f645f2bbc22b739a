// SPDX-License-Identifier: BSD-3-Clause
// Fields and histories of damaged databases: an exception of the library or readable data. Numbers
// are changed through HDF5, so that its checksums fit.
#include "tests/odb/fields/results_model.h"

#include <gtest/gtest.h>
#include <hdf5.h>

#include <climits>
#include <cstdint>
#include <random>

namespace odbs::test {
namespace {

using E = odb_Enum;

double touch(const odb_FieldBulkData& block) {
  double sum = 0;
  const int n = block.length();
  for (const int* list : {block.elementLabels(), block.nodeLabels(), block.integrationPoints()}) {
    for (int i = 0; list && i < n; ++i) sum += list[i];
  }
  for (int i = 0; block.faces() && i < n; ++i) sum += block.faces()[i];
  sum += block.numberOfElements() + block.numberOfNodes() + block.valuesPerElement();
  const bool isDouble = block.precision() == E::DOUBLE_PRECISION;
  for (int i = 0; i < n * block.width(); ++i) {
    sum += isDouble ? block.dataDouble()[i] : static_cast<double>(block.data()[i]);
  }
  for (int i = 0; !isDouble && block.localCoordSystem() && i < 4 * n; ++i) {
    sum += static_cast<double>(block.localCoordSystem()[i]);
  }
  if (const float* mises = block.mises()) sum += static_cast<double>(mises[n - 1]);
  sum += block.sectionPoint().number() + block.instance().name().Length();
  return sum + block.componentLabels().size() + block.baseElementType().Length();
}

double touch(const odb_FieldOutput& field) {
  double sum = field.isComplex() + field.validInvariants().size() + field.locations().size();
  for (int i = 0; i < field.bulkDataBlocks().size(); ++i) sum += touch(field.bulkDataBlocks(i));
  const odb_SequenceFieldValue values = field.values();
  for (int i = 0; i < values.size(); ++i) {
    sum += values[i].elementLabel() + static_cast<double>(values[i].maxPrincipal());
  }
  return sum;
}

double touch(const odb_HistoryRegion& region) {
  const odb_HistoryPoint& point = region.historyPoint();
  double sum = point.node().label() + point.element().label() + point.ipNumber() +
               point.sectionPoint().number() + point.face() + region.loadCase().name().Length() +
               point.region().name().Length() + point.instance().name().Length();
  odb_HistoryOutputRepositoryIT it(region.historyOutputs());
  for (it.first(); !it.isDone(); it.next()) {
    sum += it.currentValue().data().size() + it.currentValue().conjugateData().size();
  }
  return sum;
}

double touchAll(odb_Odb& odb) {
  double sum = 0;
  odb_StepRepositoryIT steps(odb.steps());
  for (steps.first(); !steps.isDone(); steps.next()) {
    const odb_Step& step = steps.currentValue();
    for (int f = 0; f < step.frames().size(); ++f) {
      odb_FieldOutputRepositoryIT fields(step.frames(f).fieldOutputs());
      for (fields.first(); !fields.isDone(); fields.next()) {
        const odb_FieldOutput& field = fields.currentValue();
        sum += touch(field);
        for (auto position : {E::ELEMENT_NODAL, E::CENTROID}) {
          sum += touch(field.getSubset(position));
        }
      }
    }
    odb_HistoryRegionRepositoryIT regions(step.historyRegions());
    for (regions.first(); !regions.isDone(); regions.next()) sum += touch(regions.currentValue());
    for (const auto& failure : odbs::engine::failureTimes(step)) {
      sum += failure.elementLabel + failure.instance.name().Length();
    }
  }
  return sum;
}

void makeResults(ResultsModel& model) {
  const odb_Instance& p = model.instance();
  odb_SequenceInvariant mises;
  mises.append(E::MISES);
  for (int i = 0; i < 2; ++i) {
    odb_Frame frame = model.step().Frame(i, static_cast<float>(i));
    odb_FieldOutput& s = frame.FieldOutput("S", "", E::TENSOR_3D_FULL, odb_SequenceString(), mises);
    s.addData(E::INTEGRATION_POINT, p, ints({10, 20, 30}), counted(18, 6));
    s.addData(E::INTEGRATION_POINT, p, ints({40, 50}), counted(2, 4), model.point(5),
              rows({{0, 1, 0}, {-1, 0, 0}, {0, 0, 1}}));
    odb_FieldOutput& u = frame.FieldOutput("U", "", E::VECTOR);
    u.addData(E::NODAL, p, ints({1, 2}), counted(2, 3), odb_SectionPoint(),
              odb_SequenceSequenceFloat(), counted(2, 3));
    frame.FieldOutput("D", "", E::SCALAR)
        .addData(E::NODAL, p, ints({1, 2}), doubleRows({{1}, {2}}));
    frame.FieldOutput("F", "", E::SCALAR)
        .addData(E::ELEMENT_FACE, p.surfaces()["ENDS"], counted(2, 1));
  }
  odb_HistoryRegion& region = model.step().HistoryRegion(
      "Element", "", odb_HistoryPoint(p.getElementFromLabel(40), 1, model.point(1)));
  odb_HistoryOutput& output = region.HistoryOutput("S11", "");
  output.addData(rows({{0, 1}, {1, 2}}));
  odb_embedded::addConjugateData(output, rows({{0, 1}, {1, 2}}));
  model.step().HistoryRegion("Node", "", odb_HistoryPoint(p.getNodeFromLabel(3)));
  model.step().HistoryRegion("Set", "", odb_HistoryPoint(p.nodeSets()["BASE"]));
  odb_embedded::addFailureTimes(model.step(), p, {10}, {0.5F});
}

// One number of an integer dataset.
struct Cell {
  std::string dataset;
  std::vector<hsize_t> place;
};

const char* const kTables[] = {"field_kinds",         "field_labels",    "field_layouts",
                               "frame_fields",        "fields",          "field_blocks",
                               "field_blocks_double", "step_results",    "history_regions",
                               "history_outputs",     "element_failures"};

std::vector<Cell> cellsOf(const std::string& path, const std::vector<std::string>& datasets) {
  std::vector<Cell> cells;
  const hid_t file = H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT);
  for (const std::string& name : datasets) {
    const hid_t dataset = H5Dopen2(file, name.c_str(), H5P_DEFAULT);
    const hid_t space = H5Dget_space(dataset);
    hsize_t dims[2] = {0, 1};
    const bool isTable = H5Sget_simple_extent_dims(space, dims, nullptr) == 2;
    for (hsize_t r = 0; r < dims[0]; ++r) {
      for (hsize_t c = 0; c < dims[1]; ++c) {
        cells.push_back({name, isTable ? std::vector<hsize_t>{r, c} : std::vector<hsize_t>{r}});
      }
    }
    H5Sclose(space);
    H5Dclose(dataset);
  }
  H5Fclose(file);
  return cells;
}

// Writes a number and gives the old one.
std::int64_t exchange(const std::string& path, const Cell& cell, std::int64_t value) {
  const hid_t file = H5Fopen(path.c_str(), H5F_ACC_RDWR, H5P_DEFAULT);
  const hid_t dataset = H5Dopen2(file, cell.dataset.c_str(), H5P_DEFAULT);
  const hid_t space = H5Dget_space(dataset);
  const hsize_t one[2] = {1, 1};
  H5Sselect_hyperslab(space, H5S_SELECT_SET, cell.place.data(), nullptr, one, nullptr);
  const hid_t memory = H5Screate_simple(static_cast<int>(cell.place.size()), one, nullptr);
  std::int64_t old = 0;
  EXPECT_GE(H5Dread(dataset, H5T_NATIVE_INT64, memory, space, H5P_DEFAULT, &old), 0);
  EXPECT_GE(H5Dwrite(dataset, H5T_NATIVE_INT64, memory, space, H5P_DEFAULT, &value), 0);
  H5Sclose(memory);
  H5Sclose(space);
  H5Dclose(dataset);
  H5Fclose(file);
  return old;
}

class DamagedResults : public testing::Test {
 protected:
  DamagedResults() {
    makeResults(model_);
    model_.odb->save();
    model_.odb->close();
  }

  bool readable() {
    bool good = true;
    try {
      touchAll(openOdb(model_.path.c_str(), true));
    } catch (const odb_Exception& error) {
      EXPECT_GT(error.UserReport().Length(), 0);
      good = false;
    }
    odb_finalizeAPI();
    return good;
  }

  // How many of `nRounds` single changes were refused.
  int damage(const std::vector<Cell>& cells, int nRounds) {
    const std::int64_t values[] = {
        -2, -1, 0, 1, 2, 3, 7, 11, 48, 1000, INT_MAX, INT64_MAX, INT64_MIN, std::int64_t(1) << 32};
    std::mt19937 random(20260101);
    int nRefused = 0;
    for (int round = 0; round < nRounds; ++round) {
      const Cell& cell = cells[random() % cells.size()];
      const std::int64_t value = values[random() % std::size(values)];
      SCOPED_TRACE(cell.dataset + " " + std::to_string(cell.place[0]) + " = " +
                   std::to_string(value));
      const std::int64_t old = exchange(model_.path, cell, value);
      if (!readable()) ++nRefused;
      exchange(model_.path, cell, old);
    }
    EXPECT_TRUE(readable());
    return nRefused;
  }

  ResultsModel model_;
};

TEST_F(DamagedResults, WithWrongNumbersInTablesThrowOrRead) {
  std::vector<std::string> names;
  for (const char* table : kTables) names.push_back(std::string("tables/") + table + ".ints");
  const std::vector<Cell> cells = cellsOf(model_.path, names);
  ASSERT_GT(cells.size(), 150U);
  EXPECT_GT(damage(cells, 800), 250);
}

TEST_F(DamagedResults, WithWrongLabelsThrowOrRead) {
  damage(cellsOf(model_.path, {"arrays/int32.0"}), 200);
}

}  // namespace
}  // namespace odbs::test
