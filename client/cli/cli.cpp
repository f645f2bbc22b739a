// SPDX-License-Identifier: BSD-3-Clause
// The table of subcommands, the help texts, and running one of them.
#include "client/cli/cli.h"

#include <algorithm>
#include <climits>
#include <cmath>

#include "base/text.h"

namespace odbs::client {

namespace {

constexpr const char* kDefaultTimeoutSeconds = "300";
constexpr std::size_t kAnyNumber = static_cast<std::size_t>(-1);

const std::vector<Subcommand>& subcommands() {
  // clang-format off
  static const std::vector<Subcommand> table{
      {"ping", "", "start a server and ask for its process id",
       "Starts a server, asks for its process id and ends it: shows that it can be found, started\n"
       "and talked to.\n",
       "ping", 0, 0, {}, runPing},
      {"model", "FILE", "summarise the model that a database holds",
       "Prints title and analysis kind, and for each part instance its nodes, bounding box and\n"
       "elements by type; sections with kind, material and layers; materials with density and\n"
       "elastic data; rigid bodies, analytic surfaces, and what the server said while opening.\n",
       "instance", 1, 1, {}, runModel},
      {"catalogue", "FILE", "list steps, frames and the fields that they hold",
       "Options: --listing all|nodal|element|tensor (default all: fields at nodes and elements);\n"
       "--frames last|every: what the last frame of a step holds stands for all of its frames\n"
       "(default, fast), or each frame is examined; --cache PATH: name a catalogue cache file, one\n"
       "for each database and listing.\n",
       "field", 1, 1, {"--listing", "--frames", "--cache"}, runCatalogue},
      {"values", "FILE", "print the values of one field in one frame, and their range",
       "Options: --field NAME (needed); --step N, from 1 (default 1); --frame N, from 0 (default\n"
       "0); --position stored|element-node|centroid (default stored); --letter v|s|m|t|b|l: which\n"
       "section points (default v: every one, and values without; s: only values without; m: all\n"
       "as stored; t, b: top, bottom; l: those of --pick1 and --pick2), upper case: local\n"
       "directions too; --show both|range|values.\n"
       "--layers A:B or --plies A:B instead of --letter: the points of two layers, by number or by\n"
       "ply, material or section name, each with .INNER, .OUTER, .MINIMUM, .MAXIMUM, a number, or\n"
       "nothing for the middle. --region REGION, once for each, as in `regions`: values there only;\n"
       "section:N=NAME is section point N.\n"
       "  odb_client values job.odb --field S --plies PLY-1.INNER:PLY-4.OUTER --region elements=TIP\n"
       "  odb_client values job.odb --field S --step 1 --frame 5 --position centroid --show range\n",
       "value", 1, 1,
       {"--field", "--step", "--frame", "--position", "--letter", "--pick1", "--pick2", "--show",
        "--layers", "--plies", "--region"},
       runValues},
      {"nodal", "FILE", "print one variable at its nodes, with displacements the failed elements",
       "Options: --field NAME (needed), such as U, NT11, CPRESS; --step N, from 1 (default 1);\n"
       "--frame N, from 0 (default 0). With U and UT the rotations UR or UR1, UR2, UR3 follow, and\n"
       "the elements that have failed: until the frame with --position centroid (the default), in\n"
       "the frame itself with any other; --labels N,N,...: of these elements only.\n"
       "  odb_client nodal job.odb --field U --step 1 --frame 5 --labels 17,18\n"
       "  odb_client nodal job.odb --field 'CPRESS   SLAVE/MASTER' --format csv\n",
       "value", 1, 1, {"--field", "--step", "--frame", "--position", "--labels"}, runNodal},
      {"history", "FILE", "list histories, or print the values of some",
       "Without options: steps, regions and outputs. --region NAME, once for each region, or\n"
       "--region all: their values; --step N: in this step only.\n",
       "history", 1, 1, {"--region", "--step"}, runHistory},
      {"sets", "FILE", "list node sets, element sets and surfaces",
       "Options: --surfaces yes|no (default yes); --coupling yes|no: node sets of couplings too\n"
       "(default no); --members yes|no: print the labels (default no).\n",
       "set", 1, 1, {"--surfaces", "--coupling", "--members"}, runSets},
      {"sections", "FILE", "list sections with their numbers and coarse kinds",
       "Then the elements of each section, by instance; --members yes prints their labels.\n",
       "section", 1, 1, {"--members"}, runSections},
      {"regions", "FILE REGION...", "count elements and nodes of parts of a model",
       "REGION is KIND=NAME, KIND one of elements, nodes, surface (names of sets), instance,\n"
       "section, material, type (of elements); layer:N=SECTION is layer N of a section. NAME may\n"
       "be INSTANCE.NAME. --members yes prints the labels by instance (default no).\n"
       "  odb_client regions job.odb elements=BLADE type=S4R layer:2=SKIN\n",
       "region", 2, kAnyNumber, {"--members"}, runRegions},
      {"send", "FILE LINE...", "send raw command lines, print every record of the replies",
       "Sends each LINE as it stands, after replacing every {} in it by FILE, and prints each\n"
       "record of its reply decoded: the record's position in the stream, its kind, its fields.\n"
       "Lines that have no reply by nature (C, D, d, ho, hb, irc, q) print none.\n"
       "  odb_client send job.odb 'u {}' 'g {}'\n"
       "  odb_client send - p 'm 2 3'\n",
       "record", 2, kAnyNumber, {}, runSend},
  };
  // clang-format on
  return table;
}

const char* const kCommonHelp =
    "Options of every command:\n"
    "  --server PATH     the server program; default: odb_server beside this program, else the\n"
    "                    one that the environment variable ODB_SERVER names\n"
    "  --timeout SECONDS give up when the server is silent for so long; default 300, 0: never\n"
    "  --format FORMAT   table (default); csv: one table with a header row, a column for each\n"
    "                    component; jsonl: one JSON object a line\n"
    "  --table NAME      print this table only, by its name in jsonl; csv prints the command's\n"
    "                    main one without it\n"
    "  -h, --help        this text, or a command's own after its name\n"
    "      --version     print the version\n"
    "Exit status: 0 answered; 1 failed (no server, a database that does not open, nothing found, "
    "a\n"
    "malformed reply, a time-out; the reason is on standard error); 2 the command line is wrong.\n";

std::string generalHelp() {
  std::string text =
      "odb_client starts an odb_server, asks it, prints the answer and ends it.\n\n"
      "Usage: odb_client COMMAND [ARGUMENTS] [OPTIONS]\n\nCommands:\n";
  for (const Subcommand& row : subcommands()) {
    std::string synopsis = std::string("  ") + row.name + " " + row.arguments;
    synopsis.resize(std::max<std::size_t>(synopsis.size() + 2, 22), ' ');
    text += synopsis + row.summary + "\n";
  }
  return text + "\n" + kCommonHelp + "\nExample:\n  odb_client model job.odb --format jsonl\n";
}

const Subcommand& findSubcommand(const Arguments& arguments) {
  if (arguments.words.empty()) throw UsageError("a command is missing");
  const std::string& name = arguments.words.front();
  std::vector<std::string> names;
  for (const Subcommand& row : subcommands()) {
    if (name == row.name) return row;
    names.emplace_back(row.name);
  }
  throw UsageError("there is no command \"" + name + "\"" + didYouMean(name, names));
}

std::string helpFor(const Arguments& arguments) {
  if (arguments.words.empty()) return generalHelp();
  const Subcommand& row = findSubcommand(arguments);
  return std::string("Usage: odb_client ") + row.name + " " + row.arguments + " [OPTIONS]\n\n" +
         row.help + "\n" + kCommonHelp;
}

int timeoutOf(const std::string& seconds) {
  const std::optional<double> value = parseReal(seconds);
  if (!value || !std::isfinite(*value) || *value < 0) {
    throw UsageError("--timeout wants a number of seconds, not \"" + seconds + "\"");
  }
  if (*value == 0) return -1;
  return static_cast<int>(std::min(std::ceil(*value * 1000), double{INT_MAX}));
}

const std::vector<const char*> kCommonOptions{"--server", "--timeout", "--format", "--table"};

// The options of all subcommands: which of them a subcommand has is checked when it is known.
std::vector<OptionRule> allOptions() {
  std::vector<OptionRule> rules;
  for (const char* name : kCommonOptions) rules.push_back({name});
  for (const Subcommand& row : subcommands()) {
    for (const char* name : row.options) rules.push_back({name});
  }
  return rules;
}

void checkOptions(const Subcommand& row, const Arguments& arguments) {
  std::vector<std::string> known(kCommonOptions.begin(), kCommonOptions.end());
  known.insert(known.end(), row.options.begin(), row.options.end());
  for (const auto& [name, value] : arguments.options) {
    if (std::find(known.begin(), known.end(), name) != known.end()) continue;
    throw UsageError(std::string(row.name) + " has no option " + name + didYouMean(name, known));
  }
}

StartOptions startOptions(const Arguments& arguments) {
  StartOptions start;
  start.server = arguments.value("--server");
  start.timeoutMs = timeoutOf(arguments.value("--timeout", kDefaultTimeoutSeconds));
  return start;
}

int runSubcommand(const Arguments& arguments, std::ostream& out) {
  const Subcommand& row = findSubcommand(arguments);
  checkOptions(row, arguments);
  const std::size_t nWords = arguments.words.size() - 1;
  if (nWords < row.leastWords || nWords > row.mostWords) {
    throw UsageError(std::string("the command is: odb_client ") + row.name + " " + row.arguments);
  }
  const StartOptions start = startOptions(arguments);
  const std::vector<std::string> words(arguments.words.begin() + 1, arguments.words.end());
  Report report(out, Format::kTable);
  const Call call{words, arguments, start, report};
  const std::string format = call.choice("--format", "table|csv|jsonl");
  if (format == "csv") report.setFormat(Format::kCsv, row.mainTable);
  if (format == "jsonl") report.setFormat(Format::kJsonl);
  if (arguments.has("--table")) report.only(arguments.value("--table"));
  row.run(call);
  report.finish();
  return kDone;
}

}  // namespace

std::string Call::choice(const std::string& name, std::string_view allowed) const {
  const std::vector<std::string_view> all = split(allowed, '|');
  const std::string text = option(name, std::string(all.front()));
  if (std::find(all.begin(), all.end(), text) != all.end()) return text;
  std::string list;
  for (std::size_t i = 0; i < all.size(); ++i) {
    list += (i == 0 ? "" : i + 1 < all.size() ? ", " : " or ") + std::string(all[i]);
  }
  throw UsageError(name + " wants " + list + ", not \"" + text + "\"");
}

int runClient(const std::vector<std::string>& texts, std::ostream& out, std::ostream& err) {
  const Program program{"odb_client", helpFor, allOptions()};
  return runProgram(program, texts, out, err,
                    [&out](const Arguments& arguments) { return runSubcommand(arguments, out); });
}

}  // namespace odbs::client
