// SPDX-License-Identifier: BSD-3-Clause
// The table of all commands: one row is one command. Lines that start with no row's letters are
// unknown commands: they do nothing and are acknowledged, such as "h" and "i" with a second letter
// that has no row.
//
// To give a command its work, change its handler: server/small_commands.cpp for what needs no
// database, server/database_commands.cpp for what opens one.
#include "server/command_table.h"

#include "server/database_commands.h"
#include "server/small_commands.h"

namespace odbs {

namespace {

constexpr Acknowledge kAck = Acknowledge::kAlways;
constexpr Acknowledge kSilent = Acknowledge::kNever;
constexpr Acknowledge kUnless = Acknowledge::kUnlessAnswered;
constexpr Guard kDiscard = Guard::kDiscard;
constexpr Guard kAll = Guard::kDiscardAll;

// clang-format off
constexpr Command kCommands[] = {
    // letters column ack guard     handler                 parameters             synopsis
    {"C",   1, kSilent, kDiscard, freeModeStresses,        "",                    "free the gathered stresses of eigenmodes"},
    {"D",   1, kSilent, kDiscard, selectFlagged,           "step frame pos var",  "select a result, restricted to the region selection"},
    {"d",   1, kSilent, kDiscard, selectPlain,             "step frame pos var",  "select a result"},
    {"G",   2, kAck,    kDiscard, sendNodesOnly,           "path",                "model stream, nodes only"},
    {"g",   2, kAck,    kDiscard, sendModel,               "path",                "model stream"},
    {"M",   2, kAck,    kDiscard, testRawThroughput,       "repetitions bytes",   "raw throughput test"},
    {"m",   2, kAck,    kDiscard, testFramedThroughput,    "records integers",    "framed throughput test"},
    {"S",   6, kAck,    kDiscard, sendSetsOnly,            "x y path",            "node and element sets"},
    {"s",   6, kAck,    kDiscard, sendSetsAndSurfaces,     "x y path",            "node and element sets, and surfaces"},
    {"T",   2, kAck,    kDiscard, nameCatalogueCache,      "path",                "name the catalogue cache file"},
    {"a",   1, kAck,    kDiscard, createLabelList,         "capacity",            "create the label list"},
    {"b",   1, kAck,    kDiscard, appendLabels,            "label...",            "append to the label list"},
    {"c",   2, kAck,    kAll,     closeOne,                "path",                "close a database"},
    {"fd",  3, kAck,    kDiscard, listNodal,               "path",                "result catalogue: nodal results, of the last frame"},
    {"fD",  3, kAck,    kDiscard, listNodal,               "path",                "result catalogue: nodal results, of every frame"},
    {"fs",  3, kAck,    kDiscard, listElement,             "path",                "result catalogue: results at elements, of the last frame"},
    {"fS",  3, kAck,    kDiscard, listElement,             "path",                "result catalogue: results at elements, of every frame"},
    {"fv",  3, kAck,    kDiscard, listVectorTensor,        "path",                "result catalogue: vectors and tensors at elements, of the last frame"},
    {"fV",  3, kAck,    kDiscard, listVectorTensor,        "path",                "result catalogue: vectors and tensors at elements, of every frame"},
    {"fn",  3, kAck,    kDiscard, listNothing,             "path",                "result catalogue: nothing, of the last frame"},
    {"fN",  3, kAck,    kDiscard, listNothing,             "path",                "result catalogue: nothing, of every frame"},
    {"f",   3, kAck,    kDiscard, openOne,                 "path",                "with another letter: open the database"},
    {"hb",  3, kSilent, kDiscard, appendHistoryName,       "name",                "append to the history region names"},
    {"hi",  3, kAck,    kDiscard, listHistory,             "path",                "history overview"},
    {"ho",  3, kSilent, kDiscard, createHistoryNames,      "capacity",            "start a table of history region names"},
    {"hr",  3, kAck,    kDiscard, sendHistoryValues,       "step path",           "history values of the named regions"},
    {"irc", 3, kSilent, kDiscard, appendRegionRequest,     "kind value name",     "append a region request"},
    {"irf", 4, kAck,    kDiscard, resolveRegions,          "path",                "answer the region requests, empty the list"},
    {"irs", 6, kAck,    kDiscard, sendRegionSets,          "x path",              "answer the region requests as sets, keep the list"},
    {"is",  5, kAck,    kDiscard, sendSectionSummary,      "path",                "section summary"},
    {"l",   1, kAck,    kAll,     walkOpen,                "",                    "walk the open databases"},
    {"o",   2, kAck,    kDiscard, openOne,                 "path",                "open a database"},
    {"p",   1, kAck,    kDiscard, ping,                    "",                    "ask for the server's process id"},
    {"q",   1, kSilent, kDiscard, quitServer,              "",                    "quit"},
    {"rs",  3, kAck,    kDiscard, sendValuesWithoutPoint,  "path",                "values of the selected result without a section point"},
    {"rS",  3, kAck,    kDiscard, sendValuesWithoutPoint,  "path",                "the same, with local directions"},
    {"rl",  2, kAck,    kDiscard, sendValuesAtPicks,       "point point,path",    "those and the values at two section points"},
    {"rL",  2, kAck,    kDiscard, sendValuesAtPicks,       "point point,path",    "the same, with local directions"},
    {"rv",  3, kAck,    kDiscard, sendValuesAtEveryPoint,  "path",                "values at every section point"},
    {"rV",  3, kAck,    kDiscard, sendValuesAtEveryPoint,  "path",                "the same, with local directions"},
    {"rt",  3, kAck,    kDiscard, sendValuesAtTop,         "path",                "values at the top section points"},
    {"rT",  3, kAck,    kDiscard, sendValuesAtTop,         "path",                "the same, with local directions"},
    {"rb",  3, kAck,    kDiscard, sendValuesAtBottom,      "path",                "values at the bottom section points"},
    {"rB",  3, kAck,    kDiscard, sendValuesAtBottom,      "path",                "the same, with local directions"},
    {"rm",  3, kAck,    kDiscard, sendValuesAsStored,      "path",                "values as they are stored"},
    {"rM",  3, kAck,    kDiscard, sendValuesAsStored,      "path",                "the same, with local directions"},
    {"rg",  3, kAck,    kDiscard, sendValuesOfLayers,      "item:item:path",      "values at two places of numbered layers"},
    {"rG",  3, kAck,    kDiscard, sendValuesOfLayers,      "item:item:path",      "the same, with local directions"},
    {"rn",  3, kAck,    kDiscard, sendValuesOfNamedLayers, "item:item:path",      "values at two places of named layers"},
    {"rN",  3, kAck,    kDiscard, sendValuesOfNamedLayers, "item:item:path",      "the same, with local directions"},
    {"rd",  3, kAck,    kDiscard, sendValuesAtNodes,       "path",                "values at nodes"},
    {"r",   3, kAck,    kDiscard, openForResults,          "path",                "with another letter: open the database"},
    {"u",   2, kUnless, kAll,     checkUpgradeOf,          "path",                "does opening this database run an upgrade?"},
    {"v",   2, kAck,    kDiscard, setVerbosity,            "level",               "set the verbosity"},
};
// clang-format on

constexpr std::string_view lettersOf(const Command& command) {
  return command.letters;
}

constexpr bool tableIsSound() {
  for (const Command& row : kCommands) {
    const std::string_view letters = lettersOf(row);
    if (letters.empty() || letters[0] < 'C' || letters[0] > 'v') return false;
    if (row.column < letters.size()) return false;
    int nSame = 0;
    for (const Command& other : kCommands) nSame += lettersOf(other) == letters;
    if (nSame != 1) return false;
  }
  return true;
}
static_assert(tableIsSound(), "a row without letters, out of range, or given twice");

}  // namespace

const Command* findCommand(std::string_view line) {
  const Command* found = nullptr;
  for (const Command& row : kCommands) {
    const std::string_view letters = lettersOf(row);
    if (line.substr(0, letters.size()) == letters &&
        (!found || letters.size() > lettersOf(*found).size())) {
      found = &row;
    }
  }
  return found;
}

CommandRows allCommands() {
  return {kCommands, sizeof kCommands / sizeof kCommands[0]};
}

}  // namespace odbs
