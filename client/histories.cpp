// SPDX-License-Identifier: BSD-3-Clause
// Decoders for the records of histories, their builder, and the requests.
#include "client/histories.h"

#include "client/records/cursor.h"
#include "client/records/small_records.h"

namespace odbs::client {

HistoryStep decodeHistoryStep(const Record& record) {
  Cursor cursor(record, "history step record");
  HistoryStep step;
  step.number = cursor.i32();
  step.domain = cursor.i32();
  step.totalTime = cursor.f64();
  step.name = cursor.text();
  step.description = cursor.text();
  cursor.expectEnd();
  return step;
}

HistoryRegion decodeHistoryRegion(const Record& record) {
  Cursor cursor(record, "history region record");
  HistoryRegion region;
  region.name = cursor.text();
  region.set = cursor.text();
  region.position = cursor.i32();
  for (std::int32_t& number : region.numbers) number = cursor.i32();
  cursor.expectEnd();
  return region;
}

HistoryOutput decodeHistoryOutput(const Record& record) {
  Cursor cursor(record, "history output record");
  HistoryOutput output;
  output.name = cursor.text();
  output.description = cursor.text();
  output.type = cursor.i32();
  const std::int32_t flag = cursor.i32();
  if (flag != 0 && flag != 1) cursor.fail("the conjugate flag " + std::to_string(flag));
  output.isComplex = flag == 1;
  cursor.expectEnd();
  return output;
}

float decodeHistoryValue(const Record& record) {
  Cursor cursor(record, "history value record");
  const float value = cursor.f32();
  cursor.expectEnd();
  return value;
}

HistoryOutput* HistoryBuilder::openOutput() {
  if (history_.steps.empty() || history_.steps.back().regions.empty()) return nullptr;
  std::vector<HistoryOutput>& outputs = history_.steps.back().regions.back().outputs;
  return outputs.empty() ? nullptr : &outputs.back();
}

void HistoryBuilder::add(const Record& record) {
  lastOffset_ = record.offset;
  if (record.tag == kHistoryValueTag) return addValue(record);
  if (record.tag == kMessageTag) {
    history_.messages.push_back(decodeMessage(record));
    return;
  }
  endOutput(record.offset);
  if (record.tag == kHistoryStepTag) {
    history_.steps.push_back(decodeHistoryStep(record));
  } else if (record.tag == kHistoryRegionTag && !history_.steps.empty()) {
    history_.steps.back().regions.push_back(decodeHistoryRegion(record));
  } else if (record.tag == kHistoryOutputTag && !history_.steps.empty() &&
             !history_.steps.back().regions.empty()) {
    history_.steps.back().regions.back().outputs.push_back(decodeHistoryOutput(record));
  } else {
    failUnexpected(record, "out of place in a history");
  }
}

// Time, value, and for complex outputs the conjugate value; then the next point.
void HistoryBuilder::addValue(const Record& record) {
  HistoryOutput* output = openOutput();
  if (output == nullptr) throw MalformedRecord(record.offset, "a history value without an output");
  const float value = decodeHistoryValue(record);
  if (nMembers_ == 0) output->times.push_back(value);
  if (nMembers_ == 1) output->values.push_back(value);
  if (nMembers_ == 2) output->conjugates.push_back(value);
  nMembers_ = (nMembers_ + 1) % (output->isComplex ? 3 : 2);
}

void HistoryBuilder::endOutput(std::uint64_t offset) {
  if (nMembers_ != 0) throw MalformedRecord(offset, "a history point cut short");
}

History HistoryBuilder::finish() {
  endOutput(lastOffset_);
  History history = std::move(history_);
  *this = HistoryBuilder();
  return history;
}

History readHistoryOverview(Connection& server, const std::string& path) {
  server.send("hi " + path);
  return readReply(server, HistoryBuilder());
}

History readHistory(Connection& server, const std::string& path, std::int32_t stepNumber,
                    const std::vector<std::string>& regions) {
  server.send("ho " + std::to_string(regions.size()));
  for (const std::string& region : regions) server.send("hb " + region);
  server.send("hr " + std::to_string(stepNumber) + " " + path);
  return readReply(server, HistoryBuilder());
}

}  // namespace odbs::client
