// SPDX-License-Identifier: BSD-3-Clause
// The records that replies begin with, and the error of a database that did not open.
#include "client/read_reply.h"

#include "client/database_file.h"
#include "client/records/small_records.h"

namespace odbs::client {

namespace {

std::string notOpenedText(const std::string& path, const std::vector<std::string>& messages) {
  std::string what = "the server could not open " + path;
  for (const std::string& message : messages) what += " (it said: " + message + ")";
  return what + ": " + whyNotOpened(path);
}

}  // namespace

DatabaseNotOpened::DatabaseNotOpened(const std::string& path,
                                     const std::vector<std::string>& messages)
    : Error(notOpenedText(path, messages)), path_(path) {}

bool takeHead(const Record& record, ReplyHead& head) {
  switch (record.tag) {
    case kTitleTag:
      head.title = decodeTitle(record);
      head.hasTitle = true;
      return true;
    case kAnalysisKindTag:
      head.analysisKind = decodeAnalysisKind(record);
      return true;
    case kMessageTag:
      head.messages.push_back(decodeMessage(record));
      return true;
    default:
      return false;
  }
}

void failUnexpected(const Record& record, const char* where) {
  throw MalformedRecord(record.offset,
                        "a record of tag " + std::to_string(record.tag) + " " + where);
}

}  // namespace odbs::client
