// SPDX-License-Identifier: BSD-3-Clause
// Parsing of results requests, and the calls of the extractors.
#include "results/results_request.h"

#include <algorithm>
#include <cstdint>

#include "base/text.h"
#include "registry/open_database.h"
#include "results/nodal_extractor.h"
#include "results/selected_field.h"
#include "server/core/field_scanner.h"
#include "server/core/server_state.h"

namespace odbs {

namespace {

constexpr std::size_t kLongestName = 199;

constexpr struct {
  std::string_view suffix;
  int code;
} kSuffixes[] = {
    {".INNER", -1},
    {".OUTER", -2},
    {".MINIMUM", -3},
    {".MAXIMUM", -3},  // Contract: the same code as the minimum; the parent forms either.
};

// The absolute value of the integer at the start of `text`, 0 when there is none.
int absoluteInt(std::string_view text) {
  const int value = toIntOrZero(text);
  return value < 0 ? -(value + (value == INT32_MIN ? 1 : 0)) : value;
}

odb_Odb& open(const std::string& path, int outputFd) {
  return openDatabase(sdk::openDatabases(), path, outputFd);
}

// The selected result, restricted as selected.
FieldRequest fieldRequest(bool withDirections) {
  FieldRequest request;
  request.selection = &serverState.selection;
  request.sendOrientations = withDirections;
  request.selected = appliedSelection(serverState);
  return request;
}

}  // namespace

PairItem parsePairItem(std::string_view item, bool byName) {
  PairItem result;
  std::size_t cut = std::string_view::npos;
  for (const auto& [suffix, code] : kSuffixes) {
    cut = item.find(suffix);
    if (cut == std::string_view::npos) continue;
    result.code = code;
    break;
  }
  if (cut == std::string_view::npos) {
    cut = item.find('.');
    if (cut != std::string_view::npos) result.code = absoluteInt(item.substr(cut + 1));
  }
  if (byName) {
    result.name = item.substr(0, std::min(cut, kLongestName));
  } else {
    result.number = absoluteInt(item);
  }
  return result;
}

PairRequest parsePairRequest(const char* arguments, bool byName) {
  PairRequest request;
  const std::string_view word = FieldScanner(arguments).nextWord();
  const std::size_t colon1 = word.find(':');
  if (colon1 == std::string_view::npos) return request;
  const std::size_t colon2 = word.find(':', colon1 + 1);
  if (colon2 == std::string_view::npos) return request;
  request.first = parsePairItem(word.substr(0, colon1), byName);
  request.second = parsePairItem(word.substr(colon1 + 1, colon2 - colon1 - 1), byName);
  request.path = word.substr(colon2 + 1);
  request.valid = true;
  return request;
}

PickRequest parsePickRequest(const char* arguments) {
  PickRequest request;
  const std::string_view text = arguments;
  const std::size_t comma = text.find(',');
  if (comma == std::string_view::npos) return request;
  FieldScanner picks(text);
  request.pick1 = picks.nextInt(request.pick1);
  request.pick2 = picks.nextInt(request.pick2);
  request.path = text.substr(comma + 1);
  request.valid = true;
  return request;
}

void sendFieldValues(const std::string& path, int outputFd, Extraction extraction,
                     bool withDirections) {
  FieldRequest request = fieldRequest(withDirections);
  request.extraction = extraction;
  extractField(open(path, outputFd), outputFd, request);
}

void sendPickedValues(const char* arguments, int outputFd, bool withDirections) {
  const PickRequest picks = parsePickRequest(arguments);
  if (!picks.valid) return;
  FieldRequest request = fieldRequest(withDirections);
  request.pick1 = picks.pick1;
  request.pick2 = picks.pick2;
  extractField(open(picks.path, outputFd), outputFd, request);
}

void sendPairValues(const char* arguments, int outputFd, bool byName, bool withDirections) {
  const PairRequest pair = parsePairRequest(arguments, byName);
  if (!pair.valid) return;
  PairExtraction extraction;
  extraction.selection = &serverState.selection;
  extraction.first = pair.first;
  extraction.second = pair.second;
  extraction.byName = byName;
  extraction.sendOrientations = withDirections;
  extraction.selected = appliedSelection(serverState);
  extractPair(open(pair.path, outputFd), outputFd, extraction);
}

void sendNodalValues(const std::string& path, int outputFd) {
  extractNodal(open(path, outputFd), outputFd, serverState.selection, serverState.labelList);
}

}  // namespace odbs
