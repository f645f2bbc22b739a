// SPDX-License-Identifier: BSD-3-Clause
// Value records in the output buffer, byte by byte.
#include "results/value_records.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "server/core/result_codes.h"

namespace odbs {
namespace {

constexpr int kNowhere = -1;  // nothing is written as long as the buffer does not fill

class ValueRecords : public ::testing::Test {
 protected:
  void SetUp() override { outputBuffer.fill = 0; }
  void TearDown() override { outputBuffer.fill = 0; }

  // The payloads in the buffer.
  static std::vector<std::vector<unsigned char>> records() {
    std::vector<std::vector<unsigned char>> result;
    for (std::uint32_t at = 0; at < outputBuffer.fill;) {
      const unsigned char* frame = outputBuffer.bytes + at;
      result.emplace_back(frame + 2, frame + 2 + getU16(frame));
      at += 2u + getU16(frame);
    }
    return result;
  }
};

TEST_F(ValueRecords, OnlyLabelsThatChangedAreSent) {
  const float one = 1.0F;
  ValueWriter writer(kNowhere);
  const struct {
    ValueKey key;
    unsigned char tag;
    std::vector<int> labels;
  } rows[] = {
      {{5, 1, -1}, 0x1F, {5, -1, 1}}, {{5, 1, -1}, 0x15, {}},    {{5, 2, -1}, 0x17, {2}},
      {{5, 2, 9}, 0x16, {9}},         {{5, 3, 8}, 0x18, {8, 3}}, {{6, 3, 8}, 0x22, {6}},
      {{7, 3, 9}, 0x21, {7, 9}},      {{8, 1, 9}, 0x20, {8, 1}}, {{9, 2, 1}, 0x1F, {9, 1, 2}}};
  for (const auto& row : rows) writer.send(row.key, &one, static_cast<const float*>(nullptr), 1);
  const auto sent = records();
  ASSERT_EQ(std::size(rows), sent.size());
  for (std::size_t i = 0; i < sent.size(); ++i) {
    ASSERT_EQ(1 + 4 * (rows[i].labels.size() + 1), sent[i].size()) << i;
    EXPECT_EQ(rows[i].tag, sent[i][0]) << i;
    for (std::size_t k = 0; k < rows[i].labels.size(); ++k) {
      EXPECT_EQ(rows[i].labels[k], getI32(&sent[i][1 + 4 * k])) << i;
    }
    EXPECT_EQ(1.0F, getF32(&sent[i][sent[i].size() - 4]));
  }
}

TEST_F(ValueRecords, WideValuesAreCutToOneRecord) {
  const std::vector<float> wide(20100, 2.0F);
  ValueWriter(kNowhere).send({1, 2, 3}, wide.data(), wide.data(), 20100);
  const auto sent = records();
  ASSERT_EQ(1u, sent.size());
  EXPECT_LE(sent[0].size(), kMaxPayload);
  EXPECT_EQ(1u, (sent[0].size() - 13) / 4 % 2 + 1) << "as many conjugate numbers as real ones";
}

TEST_F(ValueRecords, ABlocksHeadersSayItsValueTypeAndEightCharactersOfItsElementType) {
  const struct {
    int dataType, nComponents, flag;
  } rows[] = {{2, 1, 1}, {3, 3, 16}, {4, 3, 1}, {5, 6, 2}, {6, 4, 4}, {7, 3, 8},
              {8, 4, 4}, {9, 6, 2},  {7, 5, 0}, {0, 1, 0}, {1, 1, 0}, {10, 3, 0}};
  for (const auto& row : rows)
    sendValueType(kNowhere, valueTypeFlag(row.dataType, row.nComponents));
  sendBlockHeader(kNowhere, "S4R", 1, -1);
  sendBlockHeader(kNowhere, "SURFACE10", 2, 30);
  const auto sent = records();
  ASSERT_EQ(std::size(rows) + 2, sent.size());
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    ASSERT_EQ(5u, sent[i].size());
    EXPECT_EQ('%', sent[i][0]);
    EXPECT_EQ(rows[i].flag, getI32(&sent[i][1])) << "data type " << rows[i].dataType;
  }
  const auto textOf = [](const std::vector<unsigned char>& record) {
    return std::string(record.begin(), record.end());
  };
  using namespace std::string_literals;
  EXPECT_EQ("\x1ES4R     \x01\0\0\0\xFF\xFF\xFF\xFF"s, textOf(sent[std::size(rows)]));
  EXPECT_EQ("\x1ESURFACE1\x02\0\0\0\x1E\0\0\0"s, textOf(sent.back()));
}

}  // namespace
}  // namespace odbs
