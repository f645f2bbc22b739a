// SPDX-License-Identifier: BSD-3-Clause
// Three places say how a command line is laid out and answered: the server's table, the protocol
// page, and the client's rules. They agree.
#include <gtest/gtest.h>

#include <fstream>
#include <map>

#include "base/text.h"
#include "client/records/command_rules.h"
#include "server/command_table.h"

namespace odbs::client::test {
namespace {

// The cells of the page's command table, by the letters of the first cell: "`M` *r n*" has "M",
// "`rs` `rS` *path*" both "rs" and "rS".
std::map<std::string, std::vector<std::string>> rowsOfProtocolPage() {
  std::ifstream page(std::string(ODBS_SOURCE_DIR) + "/docs/protocol.md");
  std::map<std::string, std::vector<std::string>> rows;
  bool isInside = false;
  for (std::string line; std::getline(page, line);) {
    if (startsWith(line, "#")) isInside = line == "## The commands";
    if (!isInside || !startsWith(line, "| `")) continue;
    std::vector<std::string> cells;
    for (const std::string_view cell : split(line, '|')) cells.emplace_back(trimmed(cell));
    const std::vector<std::string_view> letters = split(cells.at(1), '`');
    for (std::size_t i = 1; i < letters.size(); i += 2) rows[std::string(letters[i])] = cells;
  }
  return rows;
}

ReplyEnd endOf(Acknowledge acknowledge) {
  switch (acknowledge) {
    case Acknowledge::kNever:
      return ReplyEnd::kNone;
    case Acknowledge::kUnlessAnswered:
      return ReplyEnd::kUpgradeCheck;
    default:
      return ReplyEnd::kAcknowledged;
  }
}

const char* const kEndTexts[] = {"ack", "**nothing**", "record **or** ack"};

TEST(CommandRows, AreTheSameInTheServerTheClientAndTheProtocolPage) {
  auto page = rowsOfProtocolPage();
  for (const Command& command : allCommands()) {
    const std::string letters(command.letters);
    EXPECT_EQ(replyRule(letters).end, endOf(command.acknowledge)) << letters;
    ASSERT_EQ(page.count(letters), 1u) << letters << " is missing on the page";
    const std::vector<std::string>& cells = page[letters];
    EXPECT_EQ(cells.at(4), kEndTexts[static_cast<int>(replyRule(letters).end)]) << letters;
    if (!std::string(command.parameters).empty()) {
      EXPECT_NE(cells.at(2).find(std::to_string(command.column)), std::string::npos) << letters;
    }
    page.erase(letters);
  }
  EXPECT_TRUE(page.empty()) << page.begin()->first << " is on the page alone";
}

}  // namespace
}  // namespace odbs::client::test
