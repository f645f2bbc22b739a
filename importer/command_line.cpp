// SPDX-License-Identifier: BSD-3-Clause
// Arguments, progress, closing report and error messages of odb_import.
#include "importer/command_line.h"

#include <odb_API.h>
#include <odb_embedded.h>

#include <cstdio>
#include <ctime>
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>

#include "base/arguments.h"
#include "importer/deck/deck_reader.h"
#include "importer/results/result_input.h"
#include "importer/write/database_writer.h"
#include "importer/write/result_writer.h"
#include "port/port.h"

namespace odbs::importer {

namespace {

namespace fs = std::filesystem;

constexpr const char* kHelp =
    R"(usage: odb_import [options] MODEL.inp [-o MODEL.odb]

Reads an input deck (Abaqus syntax) with everything that it includes and writes its model to an
output database: parts and instances, nodes, elements, sets, surfaces, sections, materials, rigid
bodies, connectors and the names of the steps.

  -o, --output FILE   the database; without it, the deck's name with .odb, beside the deck
      --results FILE  results of the solver (.frd): frames and fields
      --data FILE     what the solver printed (.dat): integration points, histories
  -q, --quiet         no progress and no closing report; warnings stay
      --compress      compress the arrays of the database: smaller, slower to read
      --version       print the version
  -h, --help          print this text

A database that exists is replaced, but only when the import succeeds; through a symbolic link, the
file that it names. A deck that is broken gives
one message, FILE:LINE: REASON, and no database. Keywords that a database has no place for (loads,
output requests, ...) are counted and listed at the end.

Exit status: 0 the database is written, 1 it is not, 2 the arguments are wrong.

  odb_import bracket.inp                   writes bracket.odb
  odb_import arm.inp --results arm.frd --data arm.dat
  odb_import wing/main.inp -o /tmp/w.odb   includes are looked for beside wing/main.inp
)";

struct Options {
  std::string deck, output, results, data;
  bool quiet = false, compress = false;
};

// Progress on a terminal: one line that is overwritten.
class Progress {
 public:
  explicit Progress(bool wanted) : on_(wanted && port::isTerminal(2)) {}
  ~Progress() { clear(); }
  void show(const char* what, double part) {
    const int percent = static_cast<int>(part * 100);
    if (!on_ || (percent == last_ && what == what_)) return;
    last_ = percent;
    what_ = what;
    std::fprintf(stderr, "\r%s %3d %%", what, percent);
    std::fflush(stderr);
    shown_ = true;
  }
  void clear() {
    if (shown_) std::fprintf(stderr, "\r%40s\r", "");
    shown_ = false;
  }

 private:
  bool on_, shown_ = false;
  int last_ = -1;
  const char* what_ = nullptr;
};

std::string counted(std::int64_t n, const char* one, const char* many) {
  return std::to_string(n) + " " + (n == 1 ? one : many);
}

void report(const Options& options, const Deck& deck, const WriteSummary& summary,
            const ResultSummary& results) {
  std::printf("%s: %s, %s, %s, %s, %s, %s, %s, %s\n", options.output.c_str(),
              counted(summary.nInstances, "instance", "instances").c_str(),
              counted(summary.nNodes, "node", "nodes").c_str(),
              counted(summary.nElements, "element", "elements").c_str(),
              counted(summary.nSets, "set", "sets").c_str(),
              counted(summary.nSurfaces, "surface", "surfaces").c_str(),
              counted(summary.nSections, "section", "sections").c_str(),
              counted(summary.nMaterials, "material", "materials").c_str(),
              counted(summary.nSteps, "step", "steps").c_str());
  if (!options.results.empty() || !options.data.empty()) {
    const auto n = [](std::size_t count) { return static_cast<std::int64_t>(count); };
    std::printf("results: %s, %s, %s\n", counted(n(results.nFrames), "frame", "frames").c_str(),
                counted(n(results.nFields), "field", "fields").c_str(),
                counted(n(results.nHistoryOutputs), "history", "histories").c_str());
  }
  if (deck.ignoredKeywords.empty()) return;
  std::string line;
  for (const auto& [keyword, n] : deck.ignoredKeywords) {
    line += (line.empty() ? "" : ", ") + keyword + " (" + std::to_string(n) + ")";
  }
  std::printf("keywords without a place in a database: %s\n", line.c_str());
}

std::string timeText() {
  const std::time_t now = std::time(nullptr);
  char buffer[64];
  const std::tm* const local = std::localtime(&now);
  const bool done =
      local && std::strftime(buffer, sizeof buffer, "%a %b %d %H:%M:%S %Y", local) > 0;
  return done ? buffer : "";
}

void importDeck(const Options& options) {
  port::returnLargeBlocks();
  Progress progress(!options.quiet);
  Deck deck = readDeck(options.deck, [&](double part) { progress.show("reading the deck", part); });
  const std::string job = fs::path(options.output).stem().string();
  odb_Odb& odb = Odb(job.c_str(), deck.title.c_str(), "", options.output.c_str());
  // Whatever happens: the next import of this process must find no database of this name.
  struct Closer {
    odb_Odb& odb;
    ~Closer() {
      if (!odb.isClosed()) odb.close();
    }
  } closer{odb};
  if (options.compress) odb_embedded::setCompression(odb, true);
  odb_embedded::JobData data;
  data.analysisCode = deck.isExplicit ? odb_Enum::ABAQUS_EXPLICIT : odb_Enum::ABAQUS_STANDARD;
  data.name = job.c_str();
  data.version = "odb_import " ODBS_VERSION;
  data.creationTime = data.modificationTime = timeText().c_str();
  odb_embedded::setJobData(odb, data);
  progress.show("writing the model", 0);
  const WriteSummary summary = writeModel(deck, odb);
  ResultSummary results;
  if (!options.results.empty() || !options.data.empty()) {
    results = writeResults(deck, odb, options.results, options.data,
                           [&](double part) { progress.show("writing results", part); });
  }
  progress.show("saving", 0);
  odb.save();
  progress.clear();
  for (const std::string& warning : deck.warnings) {
    std::fprintf(stderr, "%s\n", ("warning: " + warning).c_str());
  }
  for (const std::string& warning : summary.warnings) {
    std::fprintf(stderr, "%s\n", ("warning: " + options.deck + ": " + warning).c_str());
  }
  for (const std::string& warning : results.warnings) {
    std::fprintf(stderr, "%s\n", ("warning: " + warning).c_str());
  }
  if (!options.quiet) report(options, deck, summary, results);
}

const std::vector<OptionRule> kOptions{{"--output", true, "-o"},
                                       {"--results"},
                                       {"--data"},
                                       {"--quiet", false, "-q"},
                                       {"--compress", false}};

Options optionsOf(const Arguments& arguments) {
  if (arguments.words.empty()) throw UsageError("which deck?");
  if (arguments.words.size() > 1) throw UsageError("more than one deck: " + arguments.words[1]);
  Options options;
  options.deck = arguments.words[0];
  const std::string besideDeck = fs::path(options.deck).replace_extension(".odb").string();
  options.output = arguments.value("--output", besideDeck);
  options.results = arguments.value("--results");
  options.data = arguments.value("--data");
  options.quiet = arguments.has("--quiet");
  options.compress = arguments.has("--compress");
  std::error_code error;
  for (const std::string& input : {options.deck, options.results, options.data}) {
    if (!input.empty() && fs::equivalent(input, options.output, error)) {
      throw UsageError("the database would replace " + input);
    }
  }
  return options;
}

}  // namespace

int runImport(const std::vector<std::string>& texts) {
  const Program program{"odb_import", [](const Arguments&) { return kHelp; }, kOptions};
  return runProgram(program, texts, std::cout, std::cerr, [](const Arguments& arguments) {
    const Options options = optionsOf(arguments);
    std::error_code none;
    const fs::file_status target = fs::status(options.output, none);
    if (fs::exists(target) && !fs::is_regular_file(target)) {
      std::fprintf(stderr, "odb_import: %s: it exists and is no ordinary file\n",
                   options.output.c_str());
      return kFailed;
    }
    try {
      importDeck(options);
      return kDone;
    } catch (const DeckError& e) {
      std::fprintf(stderr, "%s\n", e.what());
    } catch (const ResultFileError& e) {
      std::fprintf(stderr, "%s\n", e.what());
    } catch (const std::bad_alloc&) {
      std::fprintf(stderr, "odb_import: %s: there is not enough memory\n", options.deck.c_str());
    } catch (const std::exception& e) {
      std::fprintf(stderr, "odb_import: %s: %s\n", options.deck.c_str(), e.what());
    }
    return kFailed;
  });
}

}  // namespace odbs::importer
