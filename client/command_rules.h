// SPDX-License-Identifier: BSD-3-Clause
// What a parent has to know about a command line before it reads the reply: how the reply ends, and
// which records it is made of (the same tag means different things in different replies).
#pragma once

#include <cstdint>
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
  kRegions,           // irf
};

struct ReplyRule {
  ReplyEnd end = ReplyEnd::kAcknowledged;
  RecordFamily family = RecordFamily::kOther;
  std::uint64_t nRawBytes = 0;  // unframed bytes ahead of the first record (the raw test, M)
};

// The rule of a command line (without its line end).
ReplyRule replyRule(std::string_view line);

// The most characters that a command line may have: the server cuts longer ones in two.
constexpr std::size_t kLongestLine = 4094;

}  // namespace odbs::client
