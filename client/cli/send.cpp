// SPDX-License-Identifier: BSD-3-Clause
// odb_client send: raw command lines, every record of their replies printed.
#include "client/cli/cli.h"
#include "client/describe.h"

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

void printRecord(const Record& record, const std::string& line, RecordFamily family,
                 Report& report) {
  const Description description = describe(record, family);
  const auto offset = static_cast<std::int64_t>(record.offset);
  const auto size = static_cast<std::int64_t>(record.size + 1);
  const std::string tag = tagText(record.tag);
  if (report.format() != Format::kJsonl) {
    report.row({line, offset, size, tag, description.kind, fieldTexts(description.fields)});
    return;
  }
  // In JSON each field is a member of its own.
  std::vector<std::string> columns{"line", "offset", "length", "tag", "kind"};
  std::vector<Value> cells{line, offset, size, tag, description.kind};
  for (const Field& field : description.fields) {
    columns.emplace_back(field.name);
    cells.push_back(field.value);
  }
  report.begin("record", columns);
  report.row(std::move(cells));
}

}  // namespace

void runSend(Call& call) {
  const std::unique_ptr<Connection> server = call.connect();
  const std::string& file = call.arguments.front();
  call.report.begin("record", {"line", "offset", "length", "tag", "kind", "fields"});
  std::uint64_t nRecords = 0;
  const auto endOfTable = [&] {
    call.report.end();
    call.report.note((nRecords > 0 ? "\n" : "") + std::to_string(nRecords) + " records, " +
                     std::to_string(server->bytesReceived()) + " bytes received");
  };
  try {
    for (std::size_t i = 1; i < call.arguments.size(); ++i) {
      const std::string line = withFile(call.arguments[i], file);
      server->send(line);
      for (Record record; server->next(record); ++nRecords) {
        printRecord(record, line, server->family(), call.report);
      }
    }
  } catch (...) {
    endOfTable();  // what came before the failure is what one wants to see
    throw;
  }
  endOfTable();
}

}  // namespace odbs::client
