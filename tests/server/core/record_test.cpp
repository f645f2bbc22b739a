// SPDX-License-Identifier: BSD-3-Clause
// Records and the output buffer, seen from inside: what a record looks like, and when the buffer is
// written out.
#include "server/core/record.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

#include "tests/support/output_file.h"
#include "tests/support/server_process.h"

namespace odbs {
namespace {

using tests::hexOf;

class Records : public testing::Test {
 protected:
  Records() { outputBuffer.fill = 0; }
  ~Records() override { outputBuffer.fill = 0; }

  std::string written() { return file_.bytes(); }
  std::string flushed() {
    flushOutput(fd_);
    return written();
  }
  // Appends a record of `length` payload bytes.
  void append(std::uint32_t length) {
    beginRecord('x');
    putBytes(std::string(length - 1, '.').data(), length - 1);
    appendRecord(fd_);
  }

  tests::OutputFile file_;
  const int fd_ = file_.fd();
};

TEST_F(Records, AreFramedAndPackedBackToBack) {
  beginRecord('A');
  putU32(0x01020304);
  putBytes("xy", 2);
  putText("ab");
  appendRecord(fd_);
  beginRecord('B');
  putF32(1.0f);
  putF64(-2.0);
  appendRecord(fd_);
  EXPECT_EQ(hexOf(flushed()),
            "0d 00 41 04 03 02 01 78 79 02 00 00 00 61 62 "
            "0d 00 42 00 00 80 3f 00 00 00 00 00 00 00 c0");
}

TEST_F(Records, StayInTheBufferUntilItIsFlushed) {
  sendMarker(fd_);
  sendNameRecord(fd_, "N1");
  sendNameRecord(fd_, "");
  EXPECT_EQ(written(), "");
  EXPECT_EQ(hexOf(flushed()), "01 00 49 07 00 48 02 00 00 00 4e 31 05 00 48 00 00 00 00");
  EXPECT_EQ(outputBuffer.fill, 0u);
}

TEST_F(Records, DirectRecordsAreWrittenAtOnce) {
  sendMessage(fd_, "hi");
  sendAck(fd_);
  EXPECT_EQ(hexOf(written()), "07 00 7c 02 00 00 00 68 69 01 00 7e");
}

TEST_F(Records, ANameIsCutAt10235Bytes) {
  sendNameRecord(fd_, std::string(20000, 'n'));
  const std::string bytes = flushed();
  EXPECT_EQ(bytes.size(), 2u + 10240);
  EXPECT_EQ(hexOf(bytes.substr(0, 8)), "00 28 48 fb 27 00 00 6e");
}

TEST_F(Records, NumbersThatDoNotFitAreLeftOutWhole) {
  beginRecord('x');
  putBytes(std::string(10233, '.').data(), 10233);
  EXPECT_TRUE(putU32(1));
  EXPECT_FALSE(putU32(2));
  EXPECT_FALSE(putF32(2));
  putText("never");
  EXPECT_EQ(recordLength(), 10238u);
  putBytes("abcdef", 6);
  EXPECT_EQ(recordLength(), 10240u);
  appendRecord(fd_);
  EXPECT_EQ(flushed().substr(2 + 10234), std::string("\1\0\0\0ab", 6));
}

TEST_F(Records, ATextIsCutForWhatFollowsIt) {
  beginRecord('x');
  putText(std::string(20000, 'n'), 4 + 4);
  putText("cut to nothing", 4);
  EXPECT_TRUE(putU32(7));
  appendRecord(fd_);
  const std::string bytes = flushed();
  EXPECT_EQ(bytes.size(), 2u + 10240);
  EXPECT_EQ(hexOf(bytes.substr(2 + 10232)), "00 00 00 00 07 00 00 00");
}

TEST_F(Records, TheBufferIsWrittenFirstWhenFillAndPayloadReach40950) {
  for (int i = 0; i < 4; ++i) append(10198);  // 40800 bytes with their frames
  append(40949 - 40800);
  EXPECT_EQ(outputBuffer.fill, 40951u);
  EXPECT_EQ(written(), "");
  outputBuffer.fill = 40800;
  append(40950 - 40800);
  EXPECT_EQ(outputBuffer.fill, 152u);
  EXPECT_EQ(written().size(), 40800u);
}

TEST_F(Records, AReservedRecordObeysTheSameRule) {
  outputBuffer.fill = 40000;
  *reserveRecord(fd_, 949) = 'a';
  EXPECT_EQ(outputBuffer.fill, 40951u);
  outputBuffer.fill = 40000;
  unsigned char* place = reserveRecord(fd_, 950);
  EXPECT_EQ(place, outputBuffer.bytes + 2);
  EXPECT_EQ(outputBuffer.fill, 952u);
  EXPECT_EQ(written().size(), 40000u);
}

TEST_F(Records, ManyReservedRecordsFillTheBufferAsFarAsSingleOnesDo) {
  for (const std::uint32_t payload : {1u, 17u, 49u, 40u, kMaxPayload}) {
    for (const std::uint32_t fill : {0u, 1u, 30000u, 40949u - payload, 40950u - payload}) {
      std::uint32_t expected = fill + payload >= kFlushThreshold ? 0 : fill;
      int n = 0;
      for (; expected + payload < kFlushThreshold; expected += payload + 2) ++n;
      outputBuffer.fill = fill;
      const ReservedRecords room = reserveRecords(fd_, payload, 1000000);
      EXPECT_EQ(n, room.n) << payload << " bytes behind " << fill;
      EXPECT_EQ(expected, outputBuffer.fill);
      EXPECT_EQ(outputBuffer.bytes + outputBuffer.fill,
                room.frames + (payload + 2) * std::uint32_t(n));
      outputBuffer.fill = fill;
      EXPECT_EQ(1, reserveRecords(fd_, payload, 1).n);
    }
  }
}

class LabelChunks : public Records {
 protected:
  LabelChunks() : labels_(70) { std::iota(labels_.begin(), labels_.end(), 1); }
  // Payload lengths of the records written, in order.
  std::vector<int> payloads() {
    std::vector<int> lengths;
    const std::string bytes = flushed();
    for (std::size_t at = 0; at < bytes.size();) {
      lengths.push_back(getU16(reinterpret_cast<const unsigned char*>(bytes.data()) + at));
      at += 2 + static_cast<std::size_t>(lengths.back());
    }
    return lengths;
  }
  std::vector<int> labels_;
};

TEST_F(LabelChunks, HoldThirtyLabelsAndThenTheRest) {
  sendNodeLabels(fd_, labels_.data(), 30);
  sendElementLabels(fd_, labels_.data(), 31);
  sendElementLabelPairs(fd_, labels_.data(), labels_.data(), 30);
  sendElementLabelPairs(fd_, labels_.data(), labels_.data(), 61);
  EXPECT_EQ(payloads(), (std::vector<int>{121, 121, 5, 241, 241, 241, 9}));
}

TEST_F(LabelChunks, OfNothingSendNothing) {
  sendNodeLabels(fd_, labels_.data(), 0);
  sendElementLabels(fd_, labels_.data(), -5);
  EXPECT_EQ(flushed(), "");
}

TEST_F(LabelChunks, CarryTheirTagAndLittleEndianLabels) {
  const int labels[] = {1, 258, -1};
  const int faces[] = {11, 16, 1001};
  sendNodeLabels(fd_, labels, 2);
  sendElementLabels(fd_, labels, 3);
  sendElementLabelPairs(fd_, labels, faces, 2);
  EXPECT_EQ(hexOf(flushed()),
            "09 00 08 01 00 00 00 02 01 00 00 "
            "0d 00 09 01 00 00 00 02 01 00 00 ff ff ff ff "
            "11 00 0a 01 00 00 00 0b 00 00 00 02 01 00 00 10 00 00 00");
}

}  // namespace
}  // namespace odbs
