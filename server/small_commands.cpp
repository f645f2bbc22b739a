// SPDX-License-Identifier: BSD-3-Clause
// The commands that need no database.
#include "server/small_commands.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <new>

#include "port/port.h"
#include "server/core/allocation.h"
#include "server/core/cache_guard.h"
#include "server/core/field_scanner.h"
#include "server/core/process_end.h"
#include "server/core/record.h"
#include "server/core/result_codes.h"
#include "server/core/sdk_adapter.h"
#include "server/core/server_state.h"

namespace odbs {

namespace {

constexpr unsigned char kThroughputTag = '"';
constexpr unsigned char kProcessIdTag = '}';
constexpr std::size_t kMaxVariableName = 199;
constexpr int kMaxLabels = 1 << 28;  // 1 GiB of labels; more counts as memory that ran out
constexpr unsigned kMaxRegionKind = 8;

// The byte total of a throughput test, on standard error. The product wraps at 32 bits.
void reportTotal(std::uint32_t total) {
  std::fprintf(stderr, "\t%d\n", static_cast<int>(total));
}

// The parent sends 0, 1, 2 for centroid, element nodes, integration points; what is kept is the
// database's own position code. Other values pass unchanged.
int positionCode(int sent) {
  switch (sent) {
    case 0:
      return position::kCentroid;
    case 1:
      return position::kElementNodal;
    case 2:
      return position::kIntegrationPoint;
    default:
      return sent;
  }
}

void select(const Call& call, bool flag) {
  FieldScanner fields(call.arguments);
  Selection& selection = serverState.selection;
  selection = {};  // first: where memory runs out for the name, nothing is selected
  selection.flag = flag;
  selection.stepNumber = fields.nextInt(0);
  selection.frameIndex = fields.nextInt(0);
  selection.position = positionCode(fields.nextInt(0));
  selection.variableName = fields.nextWord().substr(0, kMaxVariableName);
  // A word cannot hold blanks, so the parent sends "^" for them.
  std::replace(selection.variableName.begin(), selection.variableName.end(), '^', ' ');
}

// Sends `nBytes` unframed bytes: the output buffer as it stands, then zeros. False when the parent
// takes no more.
bool sendRaw(int outputFd, std::uint32_t nBytes) {
  static const unsigned char zeros[kOutputBytes] = {};
  const unsigned char* source = outputBuffer.bytes;
  while (nBytes > 0) {
    const std::uint32_t n = std::min(nBytes, kOutputBytes);
    if (!writeDirect(outputFd, source, n)) return false;
    nBytes -= n;
    source = zeros;
  }
  return true;
}

}  // namespace

void freeModeStresses(Call&) {
  serverState.modeStress = {};
}

void selectFlagged(Call& call) {
  select(call, true);
}

void selectPlain(Call& call) {
  select(call, false);
}

void testRawThroughput(Call& call) {
  FieldScanner fields(call.arguments);
  const int nRepetitions = fields.nextInt(0);
  const int nBytes = fields.nextInt(0);
  for (int i = 0; nBytes > 0 && i < nRepetitions; ++i) {
    if (!sendRaw(call.outputFd, static_cast<std::uint32_t>(nBytes))) break;
  }
  reportTotal(static_cast<std::uint32_t>(nRepetitions) * static_cast<std::uint32_t>(nBytes));
}

// Throughput test record, buffered.
//   offset  size  content
//   0       1     kThroughputTag
//   1       4     record index
//   5       4*m   0, 1, ..., m-1
void testFramedThroughput(Call& call) {
  FieldScanner fields(call.arguments);
  const int nRecords = fields.nextInt(0);
  const int nIntegers = fields.nextInt(0);
  outputBuffer.fill = 0;  // contract: leftovers of a failed command are dropped
  for (int i = 0; i < nRecords; ++i) {
    beginRecord(kThroughputTag);
    putI32(i);
    for (int k = 0; k < nIntegers && putI32(k); ++k) {
    }
    appendRecord(call.outputFd);
  }
  flushOutput(call.outputFd);
  // Contract: computed from what was asked for, also where integers were left out.
  reportTotal((4 * static_cast<std::uint32_t>(nIntegers) + 7) *
              static_cast<std::uint32_t>(nRecords));
}

void nameCatalogueCache(Call& call) {
  setCachePath(call.arguments);
}

void createLabelList(Call& call) {
  LabelList fresh;
  const int n = FieldScanner(call.arguments).nextInt(0);
  serverState.labelList = {};  // freed first: both lists may not fit
  if (n < 1) return;
  if (n <= kMaxLabels) fresh.items.reset(new (std::nothrow) std::int32_t[static_cast<size_t>(n)]);
  if (!fresh.items) {
    reportAllocationFailure(kServerSourceName, __LINE__);
    return;
  }
  fresh.capacity = n;
  serverState.labelList = std::move(fresh);
}

void appendLabels(Call& call) {
  LabelList& list = serverState.labelList;
  // Contract: blanks alone separate; labels beyond the capacity are dropped without notice.
  for (const std::string_view token : split(call.arguments, ' ')) {
    if (list.count >= list.capacity) return;
    if (!token.empty()) list.items[static_cast<size_t>(list.count++)] = toIntOrZero(token);
  }
}

void createHistoryNames(Call& call) {
  serverState.historyNames = {};
  serverState.historyNames.capacity = std::max(0, FieldScanner(call.arguments).nextInt(0));
}

void appendHistoryName(Call& call) {
  HistoryNames& table = serverState.historyNames;
  if (table.names.size() < static_cast<std::size_t>(table.capacity)) {
    table.names.emplace_back(call.arguments);
  }
}

void appendRegionRequest(Call& call) {
  FieldScanner fields(call.arguments);
  RegionRequest request;
  request.kind = fields.nextInt(0);
  request.value = fields.nextInt(0);
  const std::string word(fields.nextWord());
  if (word.empty() || static_cast<unsigned>(request.kind) - 1 >= kMaxRegionKind) return;
  // Contract: the name starts where its first word is first found, even inside the numbers.
  request.name = std::strstr(call.arguments, word.c_str());
  serverState.regionRequests.push_back(std::move(request));
}

// Process id record, direct.
//   offset  size  content
//   0       1     kProcessIdTag
//   1       4     process id of the server
void ping(Call& call) {
  beginRecord(kProcessIdTag);
  putI32(port::currentProcessId());
  sendDirect(call.outputFd);
}

void quitServer(Call&) {
  try {
    sdk::guarded([] { odb_finalizeAPI(); });
  } catch (const std::exception&) {
    // A library that cannot finish does not keep the process from ending.
  }
  endServer();
}

void setVerbosity(Call& call) {
  serverState.verbosity = FieldScanner(call.arguments).nextInt(0) < 1 ? -1 : 1;
}

}  // namespace odbs
