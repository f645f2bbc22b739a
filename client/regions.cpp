// SPDX-License-Identifier: BSD-3-Clause
// The request lines, the text form of queries, and the two replies.
#include "client/regions.h"

#include "base/text.h"
#include "client/records/cursor.h"
#include "client/records/small_records.h"

namespace odbs::client {

namespace {

constexpr struct {
  std::int32_t kind;
  const char* word;  // in a query's text
  const char* name;
} kKinds[] = {
    {1, "elements", "element set"}, {2, "nodes", "node set"},  {3, "surface", "surface"},
    {4, "instance", "instance"},    {5, "section", "section"}, {6, "material", "material"},
    {7, "type", "element type"},    {8, "layer", "layer"},
};

// The server looks for the name's first word from the start of the arguments, numbers included.
std::string requestLine(const RegionQuery& query) {
  const std::string numbers = std::to_string(query.kind) + " " + std::to_string(query.value) + " ";
  const std::string line = numbers + query.name;
  const std::string word = query.name.substr(0, query.name.find(' '));
  const bool isOneLine = query.name.find_first_of("\t\n\v\f\r") == std::string::npos &&
                         query.name.find('\0') == std::string::npos;
  if (word.empty() || !isOneLine || line.find(word) != numbers.size()) {
    throw std::invalid_argument("the region name \"" + query.name + "\" cannot be asked for");
  }
  return "irc " + line;
}

void sendQueries(Connection& server, const std::vector<RegionQuery>& queries) {
  std::vector<std::string> lines;
  for (const RegionQuery& query : queries) lines.push_back(requestLine(query));
  for (const std::string& line : lines) server.send(line);
}

// Sends irf and collects its answers.
std::vector<RegionCount> readCounts(Connection& server, const std::string& path,
                                    std::vector<std::string>& messages) {
  server.send("irf " + path);
  std::vector<RegionCount> counts;
  for (Record record; server.next(record);) {
    if (record.tag == kMessageTag) {
      messages.push_back(decodeMessage(record));
    } else {
      counts.push_back(decodeRegion(record));
    }
  }
  return counts;
}

}  // namespace

std::string regionKindName(std::int32_t kind) {
  for (const auto& row : kKinds) {
    if (row.kind == kind) return row.name;
  }
  return "kind " + std::to_string(kind);
}

RegionQuery parseRegionQuery(const std::string& text) {
  const std::size_t equals = text.find('=');
  const std::string head = text.substr(0, equals);
  const std::size_t colon = head.find(':');
  RegionQuery query;
  query.kind = 0;
  for (const auto& row : kKinds) {
    if (head.substr(0, colon) == row.word) query.kind = row.kind;
  }
  bool isSound = equals != std::string::npos && query.kind != 0;
  if (isSound && colon != std::string::npos) {
    const std::optional<std::int64_t> value = parseInt(head.substr(colon + 1));
    isSound = value && *value >= 0 && *value <= INT32_MAX;
    if (isSound) query.value = static_cast<std::int32_t>(*value);
  }
  if (isSound) query.name = text.substr(equals + 1);
  if (query.name.empty()) {
    throw std::invalid_argument(
        "a region is KIND=NAME or KIND:VALUE=NAME, KIND one of elements, nodes, surface, instance, "
        "section, material, type, layer; not \"" +
        text + "\"");
  }
  return query;
}

RegionCount decodeRegion(const Record& record) {
  Cursor cursor(record, "region record");
  if (record.tag != kRegionTag) cursor.fail("the tag " + std::to_string(record.tag));
  RegionCount count;
  count.query.kind = cursor.i32();
  count.query.value = cursor.i32();
  count.query.name = cursor.text();
  count.nElements = cursor.u32();
  count.nNodes = cursor.u32();
  cursor.expectEnd();
  return count;
}

std::vector<RegionCount> selectRegions(Connection& server, const std::string& path,
                                       const std::vector<RegionQuery>& queries,
                                       std::vector<std::string>& messages) {
  sendQueries(server, queries);
  return readCounts(server, path, messages);
}

RegionsReply readRegions(Connection& server, const std::string& path,
                         const std::vector<RegionQuery>& queries) {
  sendQueries(server, queries);
  server.send("irs 0 " + path);  // keeps the queries for irf
  RegionsReply reply;
  reply.members = readReply(server, SetsBuilder());
  reply.counts = readCounts(server, path, reply.members.messages);
  if (reply.counts.size() < queries.size()) {
    throw DatabaseNotOpened(path, reply.members.messages);
  }
  return reply;
}

}  // namespace odbs::client
