// SPDX-License-Identifier: BSD-3-Clause
// Parsing and routing of results requests.
#include "results/results_request.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "base/text.h"
#include "registry/open_database.h"
#include "results/block_writer.h"
#include "results/field_extractor.h"
#include "results/nodal_extractor.h"
#include "results/pair_extractor.h"
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

// The first blank-free word of `text`.
std::string_view firstWord(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\n\v\f\r";
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_first_of(kBlanks, begin) - begin);
}

// The forms whose only argument is the path.
constexpr struct {
  char letter;
  Extraction extraction;
} kPlainForms[] = {
    {'s', Extraction::kPicked}, {'m', Extraction::kAsStored}, {'v', Extraction::kEveryPoint},
    {'t', Extraction::kTop},    {'b', Extraction::kBottom},
};

odb_Odb& open(const std::string& path, int outputFd) {
  return openDatabase(sdk::openDatabases(), path, outputFd);
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
  const std::string_view word = firstWord(arguments);
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
  std::sscanf(arguments, "%d %d", &request.pick1, &request.pick2);
  request.path = text.substr(comma + 1);
  request.valid = true;
  return request;
}

void runResultsRequest(const char* line, int outputFd) {
  const std::string_view text = line;
  const char letter = text.size() > 1 ? text[1] : '\0';
  const bool upperCase = letter >= 'A' && letter <= 'Z';
  const char lower = upperCase ? static_cast<char>(letter - 'A' + 'a') : letter;
  const char* const arguments = text.size() > 3 ? line + 3 : "";

  if (lower == 'n' || lower == 'g') {
    const PairRequest pair = parsePairRequest(arguments, lower == 'n');
    if (!pair.valid) return;
    PairExtraction extraction;
    extraction.selection = &serverState.selection;
    extraction.first = pair.first;
    extraction.second = pair.second;
    extraction.byName = lower == 'n';
    extraction.sendOrientations = upperCase;
    extraction.selected = appliedSelection(serverState);
    extractPair(open(pair.path, outputFd), outputFd, extraction);
    return;
  }
  FieldRequest request;
  request.selection = &serverState.selection;
  request.sendOrientations = upperCase;
  request.selected = appliedSelection(serverState);
  if (lower == 'l') {
    const PickRequest picks = parsePickRequest(text.size() > 2 ? line + 2 : "");
    if (!picks.valid) return;
    request.pick1 = picks.pick1;
    request.pick2 = picks.pick2;
    extractField(open(picks.path, outputFd), outputFd, request);
    return;
  }
  odb_Odb& odb = open(arguments, outputFd);
  if (letter == 'd') {  // Contract: in lower case only.
    extractNodal(odb, outputFd, serverState.selection, serverState.labelList);
    return;
  }
  for (const auto& form : kPlainForms) {
    if (form.letter != lower) continue;
    request.extraction = form.extraction;
    extractField(odb, outputFd, request);
  }
}

}  // namespace odbs
