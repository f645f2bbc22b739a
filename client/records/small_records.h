// SPDX-License-Identifier: BSD-3-Clause
// The records that replies of several commands share, and those of the small commands: title,
// analysis kind, name, marker, message, process id, throughput test.
#pragma once

#include <string>
#include <string_view>

#include "client/records/record_stream.h"

namespace odbs::client {

constexpr unsigned char kTitleTag = 0x01;
constexpr unsigned char kAnalysisKindTag = 0x02;
constexpr unsigned char kNameTag = 'H';
constexpr unsigned char kMarkerTag = 'I';
constexpr unsigned char kMessageTag = '|';
constexpr unsigned char kProcessIdTag = '}';
constexpr unsigned char kThroughputTag = '"';

// Each decoder takes a record whose tag the caller has checked, and throws MalformedRecord when the
// body does not fit.

std::string decodeTitle(const Record& record);

// The analysis code less one: 0 standard, 1 explicit, 2 fluid dynamics, -1 unknown.
std::int32_t decodeAnalysisKind(const Record& record);

// A word for an analysis kind: "standard", "explicit", "fluid dynamics", "unknown", "kind 7".
std::string analysisKindName(std::int32_t kind);

// The text of a name record; it points into the record.
std::string_view decodeName(const Record& record);

void decodeMarker(const Record& record);

std::string decodeMessage(const Record& record);

// True for the record that answers the upgrade check with "needed": the tag of a message, the
// number 1 and no text. It means that only in the reply to that command.
bool isUpgradeNeeded(const Record& record);

std::int32_t decodeProcessId(const Record& record);

// A record of the framed throughput test: its index, then the integers 0, 1, 2, ...
struct ThroughputRecord {
  std::uint32_t index = 0;      // from 0
  std::uint32_t nIntegers = 0;  // how many followed, each checked to be its own position
};
ThroughputRecord decodeThroughput(const Record& record);

}  // namespace odbs::client
