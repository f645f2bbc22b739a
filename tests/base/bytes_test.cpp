// SPDX-License-Identifier: BSD-3-Clause
// Bytes come out lowest first and go back in unchanged.
#include "base/bytes.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>

namespace odbs {
namespace {

TEST(Bytes, IntegersAreStoredLowestByteFirst) {
  std::array<unsigned char, 8> b{};
  putU16(b.data(), 0x1234);
  EXPECT_EQ((std::array<unsigned char, 8>{0x34, 0x12}), b);
  putI32(b.data(), -2);
  EXPECT_EQ((std::array<unsigned char, 8>{0xFE, 0xFF, 0xFF, 0xFF}), b);
  putU64(b.data(), 0x0102030405060708u);
  EXPECT_EQ((std::array<unsigned char, 8>{8, 7, 6, 5, 4, 3, 2, 1}), b);
}

TEST(Bytes, RealsAreIeeeBits) {
  std::array<unsigned char, 8> b{};
  putF32(b.data(), 1.0F);
  EXPECT_EQ((std::array<unsigned char, 8>{0, 0, 0x80, 0x3F}), b);
  putF64(b.data(), -2.0);
  EXPECT_EQ((std::array<unsigned char, 8>{0, 0, 0, 0, 0, 0, 0, 0xC0}), b);
}

TEST(Bytes, WordsAreStoredOneAfterTheOther) {
  const int values[2] = {0x01020304, -2};
  std::array<unsigned char, 8> b{};
  putWords(b.data(), values, 2);
  EXPECT_EQ((std::array<unsigned char, 8>{4, 3, 2, 1, 0xFE, 0xFF, 0xFF, 0xFF}), b);
}

TEST(Bytes, WhatIsPutIsTakenBack) {
  unsigned char b[8];
  for (const std::int32_t v : {0, 1, -1, 0x7FFFFFFF, std::numeric_limits<std::int32_t>::min()}) {
    putI32(b, v);
    EXPECT_EQ(v, getI32(b));
  }
  putU64(b, std::numeric_limits<std::uint64_t>::max() - 5);
  EXPECT_EQ(std::numeric_limits<std::uint64_t>::max() - 5, getU64(b));
  putF32(b, std::numeric_limits<float>::denorm_min());
  EXPECT_EQ(std::numeric_limits<float>::denorm_min(), getF32(b));
  putF64(b, std::nan(""));
  EXPECT_TRUE(std::isnan(getF64(b)));
  putU16(b, 65535);
  EXPECT_EQ(65535, getU16(b));
}

}  // namespace
}  // namespace odbs
