// SPDX-License-Identifier: BSD-3-Clause
// Decoders for records of one text or one number.
#include "client/records/small_records.h"

#include "client/records/cursor.h"

namespace odbs::client {

namespace {

std::string_view onlyText(const Record& record, const char* kind) {
  Cursor cursor(record, kind);
  const std::string_view text = cursor.text();
  cursor.expectEnd();
  return text;
}

std::int32_t onlyInteger(const Record& record, const char* kind) {
  Cursor cursor(record, kind);
  const std::int32_t value = cursor.i32();
  cursor.expectEnd();
  return value;
}

}  // namespace

std::string decodeTitle(const Record& record) {
  return std::string(onlyText(record, "title record"));
}

std::int32_t decodeAnalysisKind(const Record& record) {
  return onlyInteger(record, "analysis-kind record");
}

std::string analysisKindName(std::int32_t kind) {
  switch (kind) {
    case -1:
      return "unknown";
    case 0:
      return "standard";
    case 1:
      return "explicit";
    case 2:
      return "fluid dynamics";
    default:
      return "kind " + std::to_string(kind);
  }
}

std::string_view decodeName(const Record& record) {
  return onlyText(record, "name record");
}

void decodeMarker(const Record& record) {
  Cursor(record, "marker record").expectEnd();
}

std::string decodeMessage(const Record& record) {
  return std::string(onlyText(record, "message record"));
}

bool isUpgradeNeeded(const Record& record) {
  return record.tag == kMessageTag && record.size == 4 && getU32(record.body) == 1;
}

std::int32_t decodeProcessId(const Record& record) {
  return onlyInteger(record, "process-id record");
}

ThroughputRecord decodeThroughput(const Record& record) {
  Cursor cursor(record, "throughput record");
  ThroughputRecord result;
  result.index = cursor.u32();
  while (cursor.left() > 0) {
    if (cursor.u32() != result.nIntegers) cursor.fail("the integers are not 0, 1, 2, ...");
    ++result.nIntegers;
  }
  return result;
}

}  // namespace odbs::client
