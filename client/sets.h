// SPDX-License-Identifier: BSD-3-Clause
// Named sets (commands S and s) and the section summary (command is): their records, and whole
// replies put together.
#pragma once

#include <string>
#include <vector>

#include "client/read_reply.h"

namespace odbs::client {

constexpr unsigned char kNodeSetTag = 0x05;
constexpr unsigned char kElementSetTag = 0x06;
constexpr unsigned char kSurfaceTag = 0x07;
constexpr unsigned char kNodeLabelsTag = 0x08;
constexpr unsigned char kElementLabelsTag = 0x09;
constexpr unsigned char kElementPairsTag = 0x0A;
constexpr unsigned char kEndOfSetTag = 0x0B;
constexpr unsigned char kSectionSummaryTag = '$';

enum class SetKind { kNodes, kElements, kSurface };

// "node set", "element set", "surface".
const char* setKindName(SetKind kind);

// The members of one set, or of one instance's share of a set of the assembly.
struct NamedSet {
  SetKind kind = SetKind::kNodes;
  std::string name;
  std::string instance;  // empty in a model of one instance, whose name is not sent
  // True for a set of the assembly; false also in a model of one instance, where the stream does
  // not show it.
  bool isOfAssembly = false;
  std::vector<std::int32_t> labels;  // of nodes or elements
  std::vector<std::int32_t> faces;   // of a surface: one for each element
};

struct SectionSummary {
  std::int32_t number = 0;
  std::string name;
  std::int32_t kind = 0;
};

// A word for the summary's coarse kind: 1 shell, 2 solid, 3 beam, 4 point, 5 truss, 6 connector.
std::string coarseKindName(std::int32_t kind);

// The name in a set's header record.
std::string decodeSetName(const Record& record);

// Appends the labels of a member record, 1 to 30 of them. For pairs `faces` gets the second of
// each.
void decodeMembers(const Record& record, std::vector<std::int32_t>& labels,
                   std::vector<std::int32_t>& faces);

SectionSummary decodeSectionSummary(const Record& record);

// What S, s and is answer; `is` sends no title and no analysis kind.
struct SetsReply : ReplyHead {
  std::vector<NamedSet> sets;  // in the order of the stream; for `is` the elements of each section
  std::vector<SectionSummary> sections;  // `is` only
};

class SetsBuilder {
 public:
  // Throws MalformedRecord for a record that is malformed or out of order.
  void add(const Record& record);
  // Throws MalformedRecord when a set has not been ended.
  SetsReply finish();

 private:
  void addMembers(const Record& record);
  void open(const Record& record, SetKind kind);

  SetsReply reply_;
  std::string instance_;  // of the group in progress
  bool isOpen_ = false;   // the last set has not been ended
  std::uint64_t lastOffset_ = 0;
};

struct SetsRequest {
  bool surfaces = true;       // s, else S
  bool perDatabase = false;   // the flag that the server keeps for the database
  bool couplingSets = false;  // node sets whose name holds "COUPLING_" too
};

// Asks for the sets of a database. Throws DatabaseNotOpened and what Connection and the decoders
// throw.
SetsReply readSets(Connection& server, const std::string& path, const SetsRequest& request);

// Asks for the section summary. A database that does not open gives an empty one: the protocol does
// not distinguish the two.
SetsReply readSectionSummary(Connection& server, const std::string& path);

}  // namespace odbs::client
