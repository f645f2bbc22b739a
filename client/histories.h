// SPDX-License-Identifier: BSD-3-Clause
// History output (commands hi and hr): values recorded over time at single points.
#pragma once

#include <string>
#include <vector>

#include "client/read_reply.h"

namespace odbs::client {

constexpr unsigned char kHistoryStepTag = '2';
constexpr unsigned char kHistoryRegionTag = '4';
constexpr unsigned char kHistoryOutputTag = '6';
constexpr unsigned char kHistoryValueTag = '8';

struct HistoryOutput {
  std::string name;
  std::string description;
  std::int32_t type = 0;   // data type code: 2 scalar
  bool isComplex = false;  // each point has a conjugate value too
  std::vector<float> times, values;
  std::vector<float> conjugates;  // as many as values when complex, else none
};

struct HistoryRegion {
  std::string name;
  std::string set;                      // name of the point's set, may be empty
  std::int32_t position = 0;            // position code of the protocol
  std::int32_t numbers[3] = {0, 0, 0};  // labels and numbers of the point, 0 where there are none
  std::vector<HistoryOutput> outputs;
};

struct HistoryStep {
  std::int32_t number = 0;  // from 1
  std::int32_t domain = 0;
  double totalTime = 0;
  std::string name;
  std::string description;
  std::vector<HistoryRegion> regions;
};

struct History {
  std::vector<std::string> messages;
  std::vector<HistoryStep> steps;
};

HistoryStep decodeHistoryStep(const Record& record);
HistoryRegion decodeHistoryRegion(const Record& record);
HistoryOutput decodeHistoryOutput(const Record& record);
float decodeHistoryValue(const Record& record);

class HistoryBuilder {
 public:
  // Throws MalformedRecord for a record that is malformed or out of order.
  void add(const Record& record);
  // Throws MalformedRecord when the last output ends in the middle of a point.
  History finish();

 private:
  void addValue(const Record& record);
  void endOutput(std::uint64_t offset);
  HistoryOutput* openOutput();

  History history_;
  std::size_t nMembers_ = 0;  // of the last output's point in progress
  std::uint64_t lastOffset_ = 0;
};

// The overview: every step, region and output, no values. A database that does not open gives no
// steps, as one without steps does.
History readHistoryOverview(Connection& server, const std::string& path);

// The values of the named regions in one step, or in all steps for number 0.
History readHistory(Connection& server, const std::string& path, std::int32_t stepNumber,
                    const std::vector<std::string>& regions);

}  // namespace odbs::client
