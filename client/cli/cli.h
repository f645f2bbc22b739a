// SPDX-License-Identifier: BSD-3-Clause
// The body of odb_client: the table of subcommands and their options. main.cpp adds nothing but the
// standard streams.
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "base/arguments.h"
#include "client/cli/report.h"
#include "client/connection.h"
#include "client/regions.h"

namespace odbs::client {

// What a subcommand works with.
struct Call {
  std::vector<std::string> words;  // what followed the subcommand's name, options taken out
  const Arguments& arguments;
  StartOptions start;
  Report& report;

  const std::string& path() const { return words.front(); }

  // The option's text, or `otherwise` when it was not given.
  std::string option(const std::string& name, const std::string& otherwise = {}) const {
    return arguments.value(name, otherwise);
  }

  // The option's text, which must be one of the words with bars between them, of which the first is
  // the default. Throws UsageError.
  std::string choice(const std::string& name, std::string_view words) const;

  // Starts the server.
  std::unique_ptr<Connection> connect() const { return std::make_unique<Connection>(start); }
};

// A subcommand is one row of the table in cli.cpp.
struct Subcommand {
  const char* name;
  const char* arguments;             // as in the synopsis
  const char* summary;               // one line, for the list
  const char* help;                  // a few lines, for `odb_client NAME --help`
  const char* mainTable;             // of its tables, the one that csv prints by default
  std::size_t leastWords;            // after the subcommand's name
  std::size_t mostWords;             //
  std::vector<const char*> options;  // names of its options, each of which takes a value
  void (*run)(const Call& call);     // throws to fail
};

// Runs one command line (without the program's name) and returns the exit status.
int runClient(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

// The subcommands, each in a separate file.
void runPing(const Call& call);
void runModel(const Call& call);
void runSend(const Call& call);
void runCatalogue(const Call& call);
void runValues(const Call& call);
void runNodal(const Call& call);
void runHistory(const Call& call);
void runSets(const Call& call);
void runSections(const Call& call);
void runRegions(const Call& call);

// parseRegionQuery for a command line: throws UsageError.
RegionQuery regionOf(const std::string& text);

// A table of sets, with --members yes their labels too.
void reportSets(const SetsReply& reply, bool showMembers, Report& report);

// The table of the messages that the server sent while opening.
void reportMessages(const std::vector<std::string>& messages, Report& report);

}  // namespace odbs::client
