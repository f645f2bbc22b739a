// SPDX-License-Identifier: BSD-3-Clause
// Decoders for the records of nodal results, their builder, and the request.
#include "client/nodal_results.h"

#include <algorithm>

#include "client/records/cursor.h"
#include "client/records/small_records.h"

namespace odbs::client {

namespace {

constexpr NodalTag kTags[] = {
    {0x11, "", false},    {0x12, "", true},    {0x13, "UR", false},  {0x14, "UR", true},
    {0x26, "UR1", false}, {0x28, "UR1", true}, {0x39, "UR2", false}, {0x3C, "UR2", true},
    {0x4C, "UR3", false}, {0x50, "UR3", true},
};

}  // namespace

const NodalTag* nodalTag(unsigned char tag) {
  for (const NodalTag& row : kTags) {
    if (row.tag == tag) return &row;
  }
  return nullptr;
}

NodalView decodeNodalValue(const Record& record) {
  Cursor cursor(record, "nodal value record");
  const NodalTag* tag = nodalTag(record.tag);
  if (tag == nullptr) cursor.fail("the tag " + std::to_string(record.tag));
  NodalView value;
  value.nodeLabel = cursor.i32();
  const std::uint32_t itemBytes = tag->isComplex ? 8 : 4;
  if (cursor.left() == 0 || cursor.left() % itemBytes != 0) {
    cursor.fail(std::to_string(cursor.left()) + " bytes of components");
  }
  value.nComponents = cursor.left() / itemBytes;
  value.components = cursor.bytes(std::size_t{4} * value.nComponents, "components");
  if (tag->isComplex) value.conjugates = cursor.bytes(cursor.left(), "conjugate components");
  return value;
}

std::int32_t decodeFailedElement(const Record& record) {
  Cursor cursor(record, "failed-element record");
  const std::int32_t label = cursor.i32();
  const std::int32_t zero = cursor.i32();
  if (zero != 0) cursor.fail("the closing integer " + std::to_string(zero));
  cursor.expectEnd();
  return label;
}

void NodalResultsBuilder::add(const Record& record) {
  if (const NodalTag* tag = nodalTag(record.tag)) return addValue(record, *tag);
  switch (record.tag) {
    case kNameTag:
      instance_ = decodeName(record);
      return;
    case kFailedElementTag:
      return addFailed(record);
    default:
      if (!takeHead(record, results_)) failUnexpected(record, "among nodal results");
  }
}

// The stream does not mark where a block of the database ends, so a value that differs in kind from
// the one before begins a new block.
void NodalResultsBuilder::addValue(const Record& record, const NodalTag& tag) {
  if (!results_.hasTitle) throw MalformedRecord(record.offset, "a nodal value ahead of the title");
  const NodalView value = decodeNodalValue(record);
  const std::string_view rotation = tag.rotation;
  const std::string_view quantity = rotation.empty() ? std::string_view(variable_) : rotation;
  std::vector<NodalBlock>& blocks = results_.blocks;
  if (blocks.empty() || blocks.back().quantity != quantity ||
      blocks.back().isComplex != tag.isComplex || blocks.back().nComponents != value.nComponents ||
      blocks.back().instance != instance_) {
    NodalBlock block;
    block.quantity = quantity;
    block.instance = instance_;
    block.isComplex = tag.isComplex;
    block.nComponents = value.nComponents;
    block.firstValue = results_.nodeLabels.size();
    block.firstComponent = results_.components.size();
    block.firstConjugate = results_.conjugates.size();
    blocks.push_back(std::move(block));
  }
  ++blocks.back().nValues;
  results_.nodeLabels.push_back(value.nodeLabel);
  for (std::uint32_t i = 0; i < value.nComponents; ++i) {
    results_.components.push_back(value.component(i));
    if (tag.isComplex) results_.conjugates.push_back(value.conjugate(i));
  }
}

void NodalResultsBuilder::addFailed(const Record& record) {
  if (!results_.hasTitle)
    throw MalformedRecord(record.offset, "a failed element ahead of the title");
  const std::int32_t label = decodeFailedElement(record);
  std::vector<FailedElements>& failed = results_.failed;
  auto at = std::find_if(failed.begin(), failed.end(),
                         [this](const FailedElements& f) { return f.instance == instance_; });
  if (at == failed.end()) at = failed.insert(failed.end(), {instance_, {}});
  at->labels.push_back(label);
}

NodalResults NodalResultsBuilder::finish() {
  for (FailedElements& one : results_.failed) {
    std::sort(one.labels.begin(), one.labels.end());
    one.labels.erase(std::unique(one.labels.begin(), one.labels.end()), one.labels.end());
  }
  NodalResults results = std::move(results_);
  *this = NodalResultsBuilder(std::move(variable_));
  return results;
}

namespace {

// Makes these labels the server's list.
void sendLabels(Connection& server, const std::vector<std::int32_t>& labels) {
  server.command("a " + std::to_string(labels.size()));
  std::string line = "b";
  for (const std::int32_t label : labels) {
    const std::string text = " " + std::to_string(label);
    if (line.size() + text.size() > kLongestLine) {
      server.command(line);
      line = "b";
    }
    line += text;
  }
  if (line.size() > 1) server.command(line);
}

}  // namespace

NodalResults readNodalResults(Connection& server, const std::string& path,
                              const NodalRequest& request) {
  const std::string select =
      selectLine('d', request.step, request.frame, request.position, request.field);
  sendLabels(server, request.labels);  // none: what others left there is dropped
  server.send(select);
  server.send("rd " + path);
  NodalResults results = readReply(server, NodalResultsBuilder(request.field));
  if (!request.labels.empty()) sendLabels(server, {});
  return requireOpened(path, std::move(results));
}

}  // namespace odbs::client
