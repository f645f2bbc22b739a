// SPDX-License-Identifier: BSD-3-Clause
// The body of odb_client: options, the table of subcommands, exit statuses. main.cpp adds nothing
// but the standard streams, so tests call runClient.
#pragma once

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "client/cli/report.h"
#include "client/connection.h"
#include "client/regions.h"

namespace odbs::client {

// Exit statuses of odb_client.
constexpr int kDone = 0;    // the question was answered
constexpr int kFailed = 1;  // no server, no such database, a reply that makes no sense, a time-out
constexpr int kUsage = 2;   // the command line was not understood

// Thrown by a subcommand whose arguments make no sense; ends with kUsage.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What a subcommand works with.
struct Call {
  std::vector<std::string> arguments;  // what followed the subcommand's name, options taken out
  std::vector<std::pair<std::string, std::string>> options;  // its own options, by name with "--"
  StartOptions start;
  Report& report;
  std::ostream& err;

  // The option's text, or `otherwise` when it was not given.
  std::string option(const std::string& name, const std::string& otherwise = {}) const;

  // Starts the server.
  std::unique_ptr<Connection> connect() const { return std::make_unique<Connection>(start); }
};

// A subcommand is one row of the table in cli.cpp.
struct Subcommand {
  const char* name;
  const char* arguments;             // as in the synopsis
  const char* summary;               // one line, for the list
  const char* help;                  // a few lines, for `odb_client NAME --help`
  std::size_t leastArguments;        //
  std::size_t mostArguments;         //
  std::vector<const char*> options;  // names of its own options, each of which takes a value
  void (*run)(Call& call);           // throws to fail
};

// Runs one command line (without the program's name) and returns the exit status.
int runClient(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err);

// The subcommands, each in a file of its own.
void runPing(Call& call);
void runModel(Call& call);
void runSend(Call& call);
void runCatalogue(Call& call);
void runValues(Call& call);
void runNodal(Call& call);
void runHistory(Call& call);
void runSets(Call& call);
void runSections(Call& call);
void runRegions(Call& call);

// parseRegionQuery for a command line: throws UsageError.
RegionQuery regionOf(const std::string& text);

// A number and a position for a command line, as `values` takes them: throw UsageError.
std::int32_t integerOf(const Call& call, const std::string& option, const char* otherwise);
std::int32_t positionOf(const std::string& text);

// A table of sets, with --members yes their labels too.
void reportSets(const SetsReply& reply, bool showMembers, Report& report);

// The table of what the server said while opening.
void reportMessages(const std::vector<std::string>& messages, Report& report);

}  // namespace odbs::client
