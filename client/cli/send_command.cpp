// SPDX-License-Identifier: BSD-3-Clause
// odb_client send: raw command lines, every record of their replies printed.
#include "base/printable.h"
#include "client/cli/cli.h"
#include "client/describe.h"
#include "client/records/small_records.h"

namespace odbs::client {

namespace {

std::string withFile(std::string line, const std::string& file) {
  for (std::size_t at = line.find("{}"); at != std::string::npos;) {
    line.replace(at, 2, file);
    at = line.find("{}", at + file.size());
  }
  return line;
}

std::string fieldTexts(const std::vector<Field>& fields) {
  std::string text;
  for (const Field& field : fields) {
    const bool isText = std::holds_alternative<std::string>(field.value) ||
                        std::holds_alternative<std::vector<std::string>>(field.value);
    const std::string value = isText ? jsonText(field.value) : plainText(field.value);
    text += (text.empty() ? "" : " ") + std::string(field.name) + "=" + value;
  }
  return text;
}

std::string tagText(unsigned char tag) {
  static const char* const kDigits = "0123456789abcdef";
  return {'0', 'x', kDigits[tag >> 4], kDigits[tag & 15]};
}

// How the reply to a line ended, for people.
const char* endText(const Record& last, ReplyEnd end) {
  if (end == ReplyEnd::kNone) return "(no reply by nature)";
  if (end == ReplyEnd::kUpgradeCheck && isUpgradeNeeded(last)) return "(not acknowledged)";
  return "(acknowledged)";
}

// Prints records in each format's own way: people get a table a line, CSV one table of all lines,
// JSON the fields as members.
class RecordPrinter {
 public:
  explicit RecordPrinter(Report& report) : report_(report) {
    if (report_.format() == Format::kCsv) {
      report_.begin("record", {"line", "offset", "length", "tag", "kind", "fields"});
    }
  }

  void beginLine(const std::string& line) {
    line_ = line;
    report_.note("> " + printable(line));
    if (report_.format() == Format::kTable) {
      report_.begin("record", {"offset", "length", "tag", "kind", "fields"});
    }
  }

  void print(const Record& record, RecordFamily family) {
    const Description description = describe(record, family);
    std::vector<std::string> columns{"line", "offset", "length", "tag", "kind"};
    std::vector<Value> cells{line_, static_cast<std::int64_t>(record.offset),
                             static_cast<std::int64_t>(record.size + 1), tagText(record.tag),
                             description.kind};
    if (report_.format() == Format::kJsonl) {
      for (const Field& field : description.fields) {
        columns.emplace_back(field.name);
        cells.push_back(field.value);
      }
      report_.begin("record", columns);
    } else {
      cells.emplace_back(fieldTexts(description.fields));
      if (report_.format() == Format::kTable) cells.erase(cells.begin());
    }
    report_.row(std::move(cells));
  }

  void endLine(const std::string& note) {
    report_.end();
    report_.note(note + "\n");
  }

 private:
  Report& report_;
  std::string line_;
};

}  // namespace

void runSend(const Call& call) {
  const std::unique_ptr<Connection> server = call.connect();
  const std::string& file = call.path();
  RecordPrinter printer(call.report);
  std::uint64_t nRecords = 0;
  for (std::size_t i = 1; i < call.words.size(); ++i) {
    const std::string line = withFile(call.words[i], file);
    printer.beginLine(line);
    try {
      server->send(line);
      Record record;
      for (; server->next(record); ++nRecords) printer.print(record, server->family());
      printer.endLine(endText(record, replyRule(line).end));
    } catch (...) {
      printer.endLine("(cut short)");  // print what came before the failure
      throw;
    }
  }
  call.report.note(std::to_string(nRecords) + " records, " +
                   std::to_string(server->bytesReceived()) + " bytes received");
}

}  // namespace odbs::client
