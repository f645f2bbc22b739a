// SPDX-License-Identifier: BSD-3-Clause
// One row for each command whose reply is special, and the selection line.
#include "client/records/command_rules.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "base/text.h"

namespace odbs::client {

namespace {

struct Row {
  std::string_view start;  // the line's first characters; the first row that fits counts
  ReplyEnd end;
  RecordFamily family;
};

// Whatever is not here is acknowledged and sends messages at most.
constexpr Row kRows[] = {
    {"C", ReplyEnd::kNone, RecordFamily::kOther},
    {"D", ReplyEnd::kNone, RecordFamily::kOther},
    {"d", ReplyEnd::kNone, RecordFamily::kOther},
    {"G", ReplyEnd::kAcknowledged, RecordFamily::kModel},
    {"g", ReplyEnd::kAcknowledged, RecordFamily::kModel},
    {"S", ReplyEnd::kAcknowledged, RecordFamily::kSets},
    {"s", ReplyEnd::kAcknowledged, RecordFamily::kSets},
    {"fd", ReplyEnd::kAcknowledged, RecordFamily::kNodalCatalogue},
    {"fD", ReplyEnd::kAcknowledged, RecordFamily::kNodalCatalogue},
    {"fs", ReplyEnd::kAcknowledged, RecordFamily::kElementCatalogue},
    {"fS", ReplyEnd::kAcknowledged, RecordFamily::kElementCatalogue},
    {"fv", ReplyEnd::kAcknowledged, RecordFamily::kElementCatalogue},
    {"fV", ReplyEnd::kAcknowledged, RecordFamily::kElementCatalogue},
    {"hb", ReplyEnd::kNone, RecordFamily::kOther},
    {"hi", ReplyEnd::kAcknowledged, RecordFamily::kHistory},
    {"ho", ReplyEnd::kNone, RecordFamily::kOther},
    {"hr", ReplyEnd::kAcknowledged, RecordFamily::kHistory},
    {"irc", ReplyEnd::kNone, RecordFamily::kOther},
    {"irf", ReplyEnd::kAcknowledged, RecordFamily::kRegions},
    {"irs", ReplyEnd::kAcknowledged, RecordFamily::kSets},
    {"is", ReplyEnd::kAcknowledged, RecordFamily::kSectionSummary},
    {"m", ReplyEnd::kAcknowledged, RecordFamily::kThroughput},
    {"q", ReplyEnd::kNone, RecordFamily::kOther},
    {"rd", ReplyEnd::kAcknowledged, RecordFamily::kNodalResults},
    {"r", ReplyEnd::kAcknowledged, RecordFamily::kFieldValues},
    {"u", ReplyEnd::kUpgradeCheck, RecordFamily::kUpgradeCheck},
};

// "M r n" sends r times n bytes; a count that is missing, zero or negative sends none.
std::uint64_t rawBytesOf(std::string_view line) {
  const std::string arguments(line.substr(line.size() < 2 ? line.size() : 2));
  int repetitions = 0, bytes = 0;
  if (std::sscanf(arguments.c_str(), "%d %d", &repetitions, &bytes) != 2) return 0;
  if (repetitions <= 0 || bytes <= 0) return 0;
  return static_cast<std::uint64_t>(repetitions) * static_cast<std::uint64_t>(bytes);
}

}  // namespace

ReplyRule replyRule(std::string_view line) {
  ReplyRule rule;
  for (const Row& row : kRows) {
    if (startsWith(line, row.start)) {
      rule.end = row.end;
      rule.family = row.family;
      break;
    }
  }
  if (startsWith(line, "M")) rule.nRawBytes = rawBytesOf(line);
  return rule;
}

std::string selectLine(char letter, std::int32_t step, std::int32_t frame, std::int32_t position,
                       const std::string& field) {
  constexpr std::size_t kLongestName = 199;
  if (field.empty() || field.size() > kLongestName ||
      field.find_first_of("\t\v\f\r^") != std::string::npos) {
    throw std::invalid_argument("the field name \"" + field + "\" cannot be sent");
  }
  std::string name = field;
  std::replace(name.begin(), name.end(), ' ', '^');
  return letter + (" " + std::to_string(step)) + " " + std::to_string(frame) + " " +
         std::to_string(position) + " " + name;
}

}  // namespace odbs::client
