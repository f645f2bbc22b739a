// SPDX-License-Identifier: BSD-3-Clause
// Decoders for the records of sets, and the builder that handles both uses of a name.
#include "client/sets.h"

#include "client/records/cursor.h"
#include "client/records/small_records.h"

namespace odbs::client {

namespace {

constexpr std::uint32_t kMostMembers = 30;

unsigned char memberTag(SetKind kind) {
  switch (kind) {
    case SetKind::kNodes:
      return kNodeLabelsTag;
    case SetKind::kElements:
      return kElementLabelsTag;
    default:
      return kElementPairsTag;
  }
}

}  // namespace

const char* setKindName(SetKind kind) {
  switch (kind) {
    case SetKind::kNodes:
      return "node set";
    case SetKind::kElements:
      return "element set";
    default:
      return "surface";
  }
}

std::string coarseKindName(std::int32_t kind) {
  static const char* const kNames[] = {"shell", "solid", "beam", "point", "truss", "connector"};
  if (kind < 1 || kind > 6) return "kind " + std::to_string(kind);
  return kNames[kind - 1];
}

std::string decodeSetName(const Record& record) {
  Cursor cursor(record, "set record");
  std::string name(cursor.text());
  cursor.expectEnd();
  return name;
}

void decodeMembers(const Record& record, std::vector<std::int32_t>& labels,
                   std::vector<std::int32_t>& faces) {
  Cursor cursor(record, "member record");
  const bool arePairs = record.tag == kElementPairsTag;
  const std::uint32_t itemBytes = arePairs ? 8 : 4;
  if (cursor.left() == 0 || cursor.left() % itemBytes != 0 ||
      cursor.left() / itemBytes > kMostMembers) {
    cursor.fail(std::to_string(cursor.left()) + " bytes of members");
  }
  while (cursor.left() > 0) {
    labels.push_back(cursor.i32());
    if (arePairs) faces.push_back(cursor.i32());
  }
}

SectionSummary decodeSectionSummary(const Record& record) {
  Cursor cursor(record, "section summary record");
  SectionSummary summary;
  summary.number = cursor.i32();
  summary.name = cursor.text();
  summary.kind = cursor.i32();
  cursor.expectEnd();
  return summary;
}

void SetsBuilder::add(const Record& record) {
  lastOffset_ = record.offset;
  if (takeHead(record, reply_)) {
    // "Error in Sets definition" may come in the middle of a set.
    if (record.tag == kMessageTag) isOpen_ = false;
    return;
  }
  switch (record.tag) {
    case kSectionSummaryTag:
      reply_.sections.push_back(decodeSectionSummary(record));
      return;
    case kNodeSetTag:
      return open(record, SetKind::kNodes);
    case kElementSetTag:
      return open(record, SetKind::kElements);
    case kSurfaceTag:
      return open(record, SetKind::kSurface);
    case kNameTag:
      // Inside a set: whose share of an assembly's set it is. Elsewhere: whose own sets follow.
      if (isOpen_) {
        reply_.sets.back().instance = decodeName(record);
        reply_.sets.back().isOfAssembly = true;
      } else {
        instance_ = decodeName(record);
      }
      return;
    case kMarkerTag:
      decodeMarker(record);
      instance_.clear();
      return;
    case kEndOfSetTag:
      // Without a header: a set of a kind that is not sent.
      Cursor(record, "end-of-set record").expectEnd();
      isOpen_ = false;
      return;
    default:
      return addMembers(record);
  }
}

void SetsBuilder::open(const Record& record, SetKind kind) {
  if (isOpen_) throw MalformedRecord(record.offset, "a set in a set");
  NamedSet set;
  set.kind = kind;
  set.name = decodeSetName(record);
  set.instance = instance_;
  reply_.sets.push_back(std::move(set));
  isOpen_ = true;
}

void SetsBuilder::addMembers(const Record& record) {
  if (!isOpen_ || record.tag != memberTag(reply_.sets.back().kind)) {
    failUnexpected(record, "in a stream of sets");
  }
  decodeMembers(record, reply_.sets.back().labels, reply_.sets.back().faces);
}

SetsReply SetsBuilder::finish() {
  if (isOpen_) throw MalformedRecord(lastOffset_, "a set without its end");
  SetsReply reply = std::move(reply_);
  *this = SetsBuilder();
  return reply;
}

SetsReply readSets(Connection& server, const std::string& path, const SetsRequest& request) {
  std::string line = request.surfaces ? "s " : "S ";
  line += request.perDatabase ? "1 " : "0 ";
  line += request.couplingSets ? "1 " : "0 ";
  server.send(line + path);
  return requireOpened(path, readReply(server, SetsBuilder()));
}

SetsReply readSectionSummary(Connection& server, const std::string& path) {
  server.send("is   " + path);  // the path's column is 5
  return readReply(server, SetsBuilder());
}

}  // namespace odbs::client
