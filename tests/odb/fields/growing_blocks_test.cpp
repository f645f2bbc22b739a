// SPDX-License-Identifier: BSD-3-Clause
// Large blocks that are added in several calls, whose values go to the file as they come.
#include "tests/odb/fields/results_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

namespace odbs::test {
namespace {

using E = odb_Enum;

constexpr int kCalls = 3, kRows = 40000, kWidth = 6;  // 2.9 MB, and as much of imaginary parts

struct Growth {
  const char* name;
  int nInAll;  // as announced
  bool compressed;
  int conjugateFrom;  // first call with imaginary parts
  bool lookBetween;   // values are asked for before all have come
  int saveAfter;      // calls before a save in between; 0: none
};

const Growth kGrowths[] = {
    {"AsAnnounced", kCalls* kRows, false, 0, false, 0},
    {"Compressed", kCalls* kRows, true, 0, false, 0},
    {"NotAnnounced", 0, false, kCalls, false, 0},
    {"FewerThanAnnounced", 2 * kCalls* kRows, false, 1, false, 0},
    {"MuchFewerThanAnnouncedAndCompressed", 20 * kCalls* kRows, true, kCalls, false, 0},
    {"MoreThanAnnounced", 2 * kRows + 5, false, 0, false, 0},
    {"LookedAtBetween", kCalls* kRows, false, 0, true, 0},
    {"SavedBetween", kCalls* kRows, false, 0, false, 2},
};

class GrowingBlock : public testing::TestWithParam<Growth> {
 protected:
  void add(odb_FieldOutput& field, int call) {
    const auto n = static_cast<std::size_t>(kRows);
    const std::vector<int> elements(n, 10);
    std::vector<int> points(n);
    std::iota(points.begin(), points.end(), call * kRows + 1);
    std::vector<float> data(n * kWidth);
    std::iota(data.begin(), data.end(), static_cast<float>(call) * kRows * kWidth);
    const std::vector<float> conjugate(n * kWidth, 7);
    odb_embedded::FieldValues<float> values;
    values.position = E::INTEGRATION_POINT;
    values.instance = model_.instance();
    values.labels = elements.data();
    values.nLabels = values.nRows = kRows;
    values.data = data.data();
    values.conjugate = call >= GetParam().conjugateFrom ? conjugate.data() : nullptr;
    values.integrationPoints = points.data();
    values.width = kWidth;
    values.nRowsInAll = GetParam().nInAll;
    odb_embedded::addData(field, values);
  }
  void expectWhole(const odb_FieldOutput& field) {
    ASSERT_EQ(field.bulkDataBlocks().size(), 1);
    const odb_FieldBulkData& block = field.bulkDataBlocks(0);
    ASSERT_EQ(block.length(), kCalls * kRows);
    int wrong = 0;
    for (int i = 0; i < block.length(); ++i) {
      wrong += block.integrationPoints()[i] == i + 1 && block.elementLabels()[i] == 10 ? 0 : 1;
    }
    for (int i = 0; i < block.length() * kWidth; ++i) {
      wrong += block.data()[i] == static_cast<float>(i) ? 0 : 1;
      const bool imaginary = i >= GetParam().conjugateFrom * kRows * kWidth;
      if (block.conjugateData()) wrong += block.conjugateData()[i] == (imaginary ? 7 : 0) ? 0 : 1;
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(block.conjugateData() != nullptr, GetParam().conjugateFrom < kCalls);
  }
  ResultsModel model_;
};

TEST_P(GrowingBlock, HasAllValues) {
  odb_embedded::setCompression(*model_.odb, GetParam().compressed);
  odb_FieldOutput& s = model_.step().Frame(1, 1).FieldOutput("S", "", E::TENSOR_3D_FULL);
  for (int call = 0; call < kCalls; ++call) {
    add(s, call);
    if (GetParam().lookBetween) {
      EXPECT_EQ(s.bulkDataBlocks(0).data()[7], 7);
    }
    if (call + 1 == GetParam().saveAfter) model_.odb->save();
  }
  expectWhole(s);
  model_.reopen();
  expectWhole(model_.step().frames(0).fieldOutputs()["S"]);
}

INSTANTIATE_TEST_SUITE_P(Calls, GrowingBlock, testing::ValuesIn(kGrowths),
                         [](const auto& growth) { return std::string(growth.param.name); });

}  // namespace
}  // namespace odbs::test
