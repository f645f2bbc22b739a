// SPDX-License-Identifier: BSD-3-Clause
// What a parent has to know about a command line before it reads the reply: how the reply ends, and
// which records it is made of (the same tag means different things in different replies).
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace odbs::client {

// How a reply ends.
enum class ReplyEnd {
  kAcknowledged,  // with the acknowledgement
  kNone,          // the command has no reply: do not wait
  kUpgradeCheck,  // with the upgrade-needed record or the acknowledgement, never both
};

// Which family of records a reply is made of.
enum class RecordFamily {
  kOther,             // messages at most
  kModel,             // G, g
  kThroughput,        // m
  kUpgradeCheck,      // u
  kSets,              // S, s, irs
  kSectionSummary,    // is
  kNodalCatalogue,    // fd, fD
  kElementCatalogue,  // fs, fS, fv, fV
  kHistory,           // hi, hr
  kFieldValues,       // r but rd
  kNodalResults,      // rd
  kRegions,           // irf
};

struct ReplyRule {
  ReplyEnd end = ReplyEnd::kAcknowledged;
  RecordFamily family = RecordFamily::kOther;
  std::uint64_t nRawBytes = 0;  // unframed bytes ahead of the first record (the raw test, M)
};

// The rule of a command line (without its line end).
ReplyRule replyRule(std::string_view line);

// The line that selects a result for the next request of values: step from 1, frame from 0,
// position as the protocol counts it (0 centroids, 1 element nodes, 2 as stored). `letter` is d, or
// D to apply the selection set. Blanks in the field's name are escaped. Throws
// std::invalid_argument for a name that no line can carry: an empty one, one of more than 199
// characters, or with other white space or "^" in it.
std::string selectLine(char letter, std::int32_t step, std::int32_t frame, std::int32_t position,
                       const std::string& field);

// The most characters that a command line may have: the server cuts longer ones in two.
constexpr std::size_t kLongestLine = 4094;

}  // namespace odbs::client
