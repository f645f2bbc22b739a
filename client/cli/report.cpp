// SPDX-License-Identifier: BSD-3-Clause
// Tables as aligned text, csv and JSON lines.
#include "client/cli/report.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <type_traits>

#include "base/arguments.h"
#include "base/printable.h"

namespace odbs::client {

namespace {

constexpr std::size_t kHeldRows = 1000;

template <typename Real>
std::string realText(Real value) {
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return {buffer, result.ptr};
}

std::string scalarText(const std::string& value) {
  return printable(value);
}
std::string scalarText(std::int64_t value) {
  return std::to_string(value);
}
std::string scalarText(float value) {
  return realText(value);
}
// Most doubles of the protocol were singles in the database: those print as such.
std::string scalarText(double value) {
  const auto single = static_cast<float>(value);
  return static_cast<double>(single) == value ? realText(single) : realText(value);
}

// Bytes that are not UTF-8 are taken as Latin-1, as JSON has no other way to hold them.
std::string jsonScalar(const std::string& text) {
  std::string result = "\"";
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = static_cast<unsigned char>(text[i]);
    std::size_t n = 1;
    if (byte == '"' || byte == '\\') {
      result += {'\\', text[i]};
    } else if (byte >= 0x20 && byte < 0x7F) {
      result += text[i];
    } else if (byte >= 0x80 && (n = utf8Length(text, i)) > 0) {
      result += text.substr(i, n);
    } else {
      n = 1;
      result += "\\u00" + hexByte(byte);
    }
    i += n;
  }
  return result + "\"";
}
std::string jsonScalar(std::int64_t value) {
  return std::to_string(value);
}
template <typename Real>
std::enable_if_t<std::is_floating_point_v<Real>, std::string> jsonScalar(Real value) {
  return std::isfinite(value) ? realText(value) : "null";
}

std::string csvText(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
  return quoted + "\"";
}

template <typename Item>
std::string listText(const std::vector<Item>& list);
template <typename Item>
std::string jsonList(const std::vector<Item>& list);

// The rows of a table, each in parentheses.
std::string scalarText(const std::vector<float>& row) {
  return "(" + listText(row) + ")";
}
std::string jsonScalar(const std::vector<float>& row) {
  return jsonList(row);
}

template <typename Item>
std::string listText(const std::vector<Item>& list) {
  std::string text;
  for (const Item& item : list) text += (text.empty() ? "" : " ") + scalarText(item);
  return text;
}

template <typename Item>
std::string jsonList(const std::vector<Item>& list) {
  std::string text = "[";
  for (const Item& item : list) text += (text.size() == 1 ? "" : ",") + jsonScalar(item);
  return text + "]";
}

bool isNumber(const Value& value) {
  return std::holds_alternative<std::int64_t>(value) || std::holds_alternative<float>(value) ||
         std::holds_alternative<double>(value);
}

}  // namespace

std::string plainText(const Value& value) {
  return std::visit(
      [](const auto& held) -> std::string {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_arithmetic_v<Held> || std::is_same_v<Held, std::string>) {
          return scalarText(held);
        } else {
          return listText(held);
        }
      },
      value);
}

std::string jsonText(const Value& value) {
  return std::visit(
      [](const auto& held) -> std::string {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_arithmetic_v<Held> || std::is_same_v<Held, std::string>) {
          return jsonScalar(held);
        } else {
          return jsonList(held);
        }
      },
      value);
}

std::vector<std::string> numbered(const std::string& name, std::size_t n) {
  std::vector<std::string> names;
  for (std::size_t i = 1; i <= n; ++i) names.push_back(name + "_" + std::to_string(i));
  return names;
}

void Report::setFormat(Format format, const std::string& mainTable) {
  format_ = format;
  setMainTable(mainTable);
}

void Report::setMainTable(const std::string& table) {
  if (!onlyWasAsked_ && format_ == Format::kCsv) only_ = table;
}

void Report::only(const std::string& table) {
  only_ = table;
  onlyWasAsked_ = true;
}

void Report::finish() const {
  if (!onlyWasAsked_ || std::find(names_.begin(), names_.end(), only_) != names_.end()) return;
  std::string all;
  for (const std::string& name : names_) {
    if (all.find(name) == std::string::npos) all += (all.empty() ? "" : ", ") + name;
  }
  throw UsageError("there is no table \"" + only_ + "\" here" + didYouMean(only_, names_) +
                   " (the tables are " + all + ")");
}

void Report::writeLine(std::string line) {
  line += '\n';
  errno = 0;
  if (!out_.write(line.data(), static_cast<std::streamsize>(line.size()))) throw OutputError(errno);
}

void Report::begin(const std::string& name, const std::vector<std::string>& columns,
                   const Lists& lists) {
  name_ = name;
  names_.push_back(name);
  columns_ = columns;
  lists_ = lists;
  held_.clear();
  released_ = false;
  if (format_ != Format::kCsv || !isWanted()) return;
  std::string header;
  for (const std::string& column : columns_) {
    const auto list = lists_.find(column);
    const std::vector<std::string> names =
        list == lists_.end() ? std::vector<std::string>{column} : list->second;
    for (const std::string& one : names) header += (header.empty() ? "" : ",") + csvText(one);
  }
  writeLine(header);
}

void Report::writeCsvRow(const std::vector<Value>& cells) {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const auto list = lists_.find(columns_[i]);
    if (list == lists_.end()) {
      line += csvText(plainText(cells[i])) + ',';
      continue;
    }
    const auto& items = std::get<std::vector<float>>(cells[i]);
    for (std::size_t k = 0; k < list->second.size(); ++k) {
      if (k < items.size() && !std::isnan(items[k])) line += realText(items[k]);
      line += ',';
    }
  }
  line.pop_back();
  writeLine(line);
}

void Report::row(std::vector<Value> cells) {
  if (!isWanted()) return;
  if (format_ == Format::kCsv) {
    writeCsvRow(cells);
  } else if (format_ == Format::kJsonl) {
    std::string line = "{\"table\":" + jsonScalar(name_);
    for (std::size_t i = 0; i < cells.size(); ++i) {
      line += ',' + jsonScalar(columns_[i]) + ':' + jsonText(cells[i]);
    }
    writeLine(line + '}');
  } else {
    held_.push_back(std::move(cells));
    if (released_ || held_.size() == kHeldRows) release();
  }
}

void Report::end() {
  if (format_ == Format::kTable && !held_.empty()) release();
}

void Report::facts(const std::string& name, const std::vector<std::string>& columns,
                   std::vector<Value> cells, const Lists& lists) {
  if (format_ != Format::kTable) {
    begin(name, columns, lists);
    row(std::move(cells));
    return end();
  }
  name_ = name;
  names_.push_back(name);
  if (!isWanted()) return;
  std::size_t width = 0;
  for (const std::string& column : columns) width = std::max(width, column.size());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::string blanks(width - columns[i].size() + 2, ' ');
    writeLine(columns[i] + blanks + plainText(cells[i]));
  }
  isFirst_ = false;
}

void Report::note(const std::string& line) {
  if (format_ != Format::kTable || !only_.empty()) return;
  writeLine(line);
  isFirst_ = true;
}

// Writes the rows that are held; the first time the header too, with widths for these rows.
void Report::release() {
  if (!released_) {
    widths_.clear();
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      std::size_t width = columns_[i].size();
      for (const std::vector<Value>& cells : held_) {
        width = std::max(width, plainText(cells[i]).size());
      }
      widths_.push_back(width);
    }
    std::vector<bool> toTheRight;
    for (const Value& cell : held_.front()) toTheRight.push_back(isNumber(cell));
    if (!isFirst_) writeLine("");
    isFirst_ = false;
    writeAligned(columns_, toTheRight);
    released_ = true;
  }
  for (const std::vector<Value>& cells : held_) {
    std::vector<std::string> texts;
    std::vector<bool> toTheRight;
    for (const Value& cell : cells) {
      texts.push_back(plainText(cell));
      toTheRight.push_back(isNumber(cell));
    }
    writeAligned(texts, toTheRight);
  }
  held_.clear();
}

void Report::writeAligned(const std::vector<std::string>& texts,
                          const std::vector<bool>& toTheRight) {
  std::string line;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (i > 0) line += "  ";
    const std::size_t nBlanks = widths_[i] > texts[i].size() ? widths_[i] - texts[i].size() : 0;
    if (toTheRight[i]) line.append(nBlanks, ' ');
    line += texts[i];
    if (!toTheRight[i]) line.append(nBlanks, ' ');
  }
  line.erase(line.find_last_not_of(' ') + 1);
  writeLine(line);
}

}  // namespace odbs::client
