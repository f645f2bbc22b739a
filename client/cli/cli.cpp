// SPDX-License-Identifier: BSD-3-Clause
#include "client/cli/cli.h"

#include <climits>
#include <cmath>

#include "base/text.h"

namespace odbs::client {

namespace {

constexpr double kDefaultTimeoutSeconds = 300;
constexpr std::size_t kAnyNumber = static_cast<std::size_t>(-1);

const std::vector<Subcommand>& subcommands() {
  // clang-format off
  static const std::vector<Subcommand> table{
      {"ping", "", "start a server and ask for its process id",
       "Starts a server, asks for its process id and ends it: shows that it can be found, started\n"
       "and talked to.\n",
       0, 0, {}, runPing},
      {"model", "FILE", "summarise the model that a database holds",
       "Prints title and analysis kind, and for each part instance its nodes, bounding box and\n"
       "elements by type; sections with kind, material and layers; materials with density and\n"
       "elastic data; rigid bodies, analytic surfaces, and what the server said while opening.\n",
       1, 1, {}, runModel},
      {"catalogue", "FILE", "list steps, frames and the fields that they hold",
       "Options: --listing all|nodal|element|tensor (default all: fields at nodes and elements);\n"
       "--frames last|every: what the last frame of a step holds stands for all of its frames\n"
       "(default, fast), or each frame is examined; --cache PATH: name a catalogue cache file, one\n"
       "for each database and listing.\n",
       1, 1, {"--listing", "--frames", "--cache"}, runCatalogue},
      {"values", "FILE", "print the values of one field in one frame, and their range",
       "Options: --field NAME (needed); --step N, from 1 (default 1); --frame N, from 0 (default\n"
       "0); --position stored|element-node|centroid (default stored); --letter s|l|m|v|t|b: which\n"
       "section points (default s: none; m: all as stored; v: every one; t, b: top, bottom; l:\n"
       "those of --pick1 and --pick2), upper case: local directions too; --show both|range|values.\n"
       "--layers A:B or --plies A:B instead of --letter: the points of two layers, by number or by\n"
       "ply, material or section name, each with .INNER, .OUTER, .MINIMUM, .MAXIMUM, a number, or\n"
       "nothing for the middle. --region REGION, once for each, as in `regions`: values there only;\n"
       "section:N=NAME is section point N.\n"
       "  odb_client values job.odb --field S --plies PLY-1.INNER:PLY-4.OUTER --region elements=TIP\n"
       "  odb_client values job.odb --field S --step 1 --frame 5 --position centroid --show range\n",
       1, 1,
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
       1, 1, {"--field", "--step", "--frame", "--position", "--labels"}, runNodal},
      {"history", "FILE", "list histories, or print the values of some",
       "Without options: steps, regions and outputs. --region NAME, once for each region, or\n"
       "--region all: their values; --step N: in this step only.\n",
       1, 1, {"--region", "--step"}, runHistory},
      {"sets", "FILE", "list node sets, element sets and surfaces",
       "Options: --surfaces yes|no (default yes); --coupling yes|no: node sets of couplings too\n"
       "(default no); --members yes|no: print the labels (default no).\n",
       1, 1, {"--surfaces", "--coupling", "--members"}, runSets},
      {"sections", "FILE", "list sections with their numbers and coarse kinds",
       "Then the elements of each section, by instance; --members yes prints their labels.\n",
       1, 1, {"--members"}, runSections},
      {"regions", "FILE REGION...", "count elements and nodes of parts of a model",
       "REGION is KIND=NAME, KIND one of elements, nodes, surface (names of sets), instance,\n"
       "section, material, type (of elements); layer:N=SECTION is layer N of a section. NAME may\n"
       "be INSTANCE.NAME. --members yes prints the labels by instance (default no).\n"
       "  odb_client regions job.odb elements=BLADE type=S4R layer:2=SKIN\n",
       2, kAnyNumber, {"--members"}, runRegions},
      {"send", "FILE LINE...", "send raw command lines, print every record of the replies",
       "Sends each LINE as it stands, after replacing every {} in it by FILE, and prints each\n"
       "record of its reply decoded: the record's position in the stream, its kind, its fields.\n"
       "Lines that have no reply by nature (C, D, d, ho, hb, irc, q) print none.\n"
       "  odb_client send job.odb 'u {}' 'g {}'\n"
       "  odb_client send - p 'm 2 3'\n",
       2, kAnyNumber, {}, runSend},
  };
  // clang-format on
  return table;
}

const char* const kCommonHelp =
    "Options of every command:\n"
    "  --server PATH     the server program; default: odb_server beside this program, else the\n"
    "                    one that the environment variable ODB_SERVER names\n"
    "  --timeout SECONDS give up when the server is silent for so long; default 300, 0: never\n"
    "  --format FORMAT   table (default), csv, or jsonl: one JSON object a line\n"
    "  --help            this text, or a command's own after its name\n"
    "  --version         print the version\n"
    "Exit status: 0 answered; 1 failed (no server, a database that does not open, a malformed\n"
    "reply, a time-out; the reason is on standard error); 2 the command line is wrong.\n";

void printHelp(std::ostream& out) {
  out << "odb_client starts an odb_server, asks it, prints the answer and ends it.\n\n"
         "Usage: odb_client COMMAND [ARGUMENTS] [OPTIONS]\n\nCommands:\n";
  for (const Subcommand& row : subcommands()) {
    std::string synopsis = std::string("  ") + row.name + " " + row.arguments;
    synopsis.resize(std::max<std::size_t>(synopsis.size() + 2, 22), ' ');
    out << synopsis << row.summary << "\n";
  }
  out << "\n" << kCommonHelp << "\nExample:\n  odb_client model job.odb --format jsonl\n";
}

void printCommandHelp(const Subcommand& row, std::ostream& out) {
  out << "Usage: odb_client " << row.name << " " << row.arguments << " [OPTIONS]\n\n"
      << row.help << "\n"
      << kCommonHelp;
}

const Subcommand& findSubcommand(const std::string& name) {
  for (const Subcommand& row : subcommands()) {
    if (name == row.name) return row;
  }
  throw UsageError("there is no command \"" + name + "\"");
}

Format formatOf(const std::string& name) {
  if (name == "table") return Format::kTable;
  if (name == "csv") return Format::kCsv;
  if (name == "jsonl") return Format::kJsonl;
  throw UsageError("--format wants table, csv or jsonl, not \"" + name + "\"");
}

int timeoutOf(const std::string& seconds) {
  const std::optional<double> value = parseReal(seconds);
  if (!value || !std::isfinite(*value) || *value < 0) {
    throw UsageError("--timeout wants a number of seconds, not \"" + seconds + "\"");
  }
  if (*value == 0) return -1;
  return static_cast<int>(std::min(std::ceil(*value * 1000), double{INT_MAX}));
}

struct CommandLine {
  const Subcommand* subcommand = nullptr;
  std::vector<std::string> arguments;
  std::vector<std::pair<std::string, std::string>> options;
  StartOptions start;
  Format format = Format::kTable;
  bool help = false;
  bool version = false;
};

bool isOwnOption(const CommandLine& line, const std::string& name) {
  if (line.subcommand == nullptr) return false;
  for (const char* own : line.subcommand->options) {
    if (name == own) return true;
  }
  return false;
}

void takeOption(CommandLine& line, const std::string& name, const std::string& value) {
  if (name == "--server") {
    line.start.server = value;
  } else if (name == "--timeout") {
    line.start.timeoutMs = timeoutOf(value);
  } else if (name == "--format") {
    line.format = formatOf(value);
  } else if (isOwnOption(line, name)) {
    line.options.emplace_back(name, value);
  } else {
    throw UsageError("there is no option \"" + name + "\"");
  }
}

// Options may stand anywhere, as "--name value" or "--name=value"; after "--" nothing is one.
CommandLine parse(const std::vector<std::string>& arguments) {
  CommandLine line;
  line.start.timeoutMs = static_cast<int>(kDefaultTimeoutSeconds * 1000);
  bool optionsEnded = false;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (optionsEnded || !startsWith(argument, "--")) {
      if (line.subcommand == nullptr) {
        line.subcommand = &findSubcommand(argument);
      } else {
        line.arguments.push_back(argument);
      }
    } else if (argument == "--") {
      optionsEnded = true;
    } else if (argument == "--help") {
      line.help = true;
    } else if (argument == "--version") {
      line.version = true;
    } else if (const std::size_t equals = argument.find('='); equals != std::string::npos) {
      takeOption(line, argument.substr(0, equals), argument.substr(equals + 1));
    } else if (i + 1 < arguments.size()) {
      takeOption(line, argument, arguments[i + 1]);
      ++i;
    } else {
      throw UsageError(argument + " wants a value");
    }
  }
  return line;
}

void checkArguments(const CommandLine& line) {
  if (line.subcommand == nullptr) throw UsageError("a command is missing");
  const Subcommand& row = *line.subcommand;
  if (line.arguments.size() >= row.leastArguments && line.arguments.size() <= row.mostArguments) {
    return;
  }
  throw UsageError(std::string("the command is: odb_client ") + row.name + " " + row.arguments);
}

}  // namespace

std::string Call::option(const std::string& name, const std::string& otherwise) const {
  std::string text = otherwise;
  for (const auto& [given, value] : options) {
    if (given == name) text = value;
  }
  return text;
}

int runClient(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
  try {
    const CommandLine line = parse(arguments);
    if (line.help) {
      line.subcommand ? printCommandHelp(*line.subcommand, out) : printHelp(out);
      return kDone;
    }
    if (line.version) {
      out << "odb_client " << ODBS_VERSION << "\n";
      return kDone;
    }
    checkArguments(line);
    Report report(out, line.format);
    Call call{line.arguments, line.options, line.start, report, err};
    line.subcommand->run(call);
    return kDone;
  } catch (const UsageError& error) {
    err << "odb_client: " << error.what() << "\nTry: odb_client --help\n";
    return kUsage;
  } catch (const std::exception& error) {
    err << "odb_client: " << printable(error.what()) << "\n";
    return kFailed;
  }
}

}  // namespace odbs::client
