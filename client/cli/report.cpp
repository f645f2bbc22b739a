// SPDX-License-Identifier: BSD-3-Clause
#include "client/cli/report.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <type_traits>

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

// The length of the UTF-8 sequence at text[at], or 0 when there is none.
std::size_t utf8Length(const std::string& text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(at);
  const std::size_t n = first >= 0xF0 && first < 0xF5   ? 4
                        : first >= 0xE0 && first < 0xF0 ? 3
                        : first >= 0xC2 && first < 0xE0 ? 2
                                                        : 0;
  if (n == 0 || at + n > text.size()) return 0;
  for (std::size_t i = 1; i < n; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return 0;
  }
  // Overlong forms and surrogates are not UTF-8.
  if (first == 0xE0 && byte(at + 1) < 0xA0) return 0;
  if (first == 0xED && byte(at + 1) > 0x9F) return 0;
  if (first == 0xF0 && byte(at + 1) < 0x90) return 0;
  if (first == 0xF4 && byte(at + 1) > 0x8F) return 0;
  return n;
}

std::string hexByte(unsigned char byte) {
  static const char* const kDigits = "0123456789abcdef";
  return {kDigits[byte >> 4], kDigits[byte & 15]};
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

std::string printable(const std::string& text) {
  std::string result;
  for (std::size_t i = 0; i < text.size();) {
    const auto byte = static_cast<unsigned char>(text[i]);
    std::size_t n = 1;
    if (byte >= 0x20 && byte < 0x7F) {
      result += text[i];
    } else if (byte == '\n') {
      result += "\\n";
    } else if (byte == '\t') {
      result += "\\t";
    } else if (byte >= 0x80 && (n = utf8Length(text, i)) > 0 &&
               !(byte == 0xC2 && static_cast<unsigned char>(text[i + 1]) < 0xA0)) {
      result += text.substr(i, n);  // but for the control characters U+0080 to U+009F
    } else {
      n = 1;
      result += "\\x" + hexByte(byte);
    }
    i += n;
  }
  return result;
}

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

void Report::begin(const std::string& name, const std::vector<std::string>& columns) {
  name_ = name;
  columns_ = columns;
  held_.clear();
  released_ = false;
  if (format_ != Format::kCsv) return;
  if (!isFirst_) out_ << "\n";
  isFirst_ = false;
  out_ << "table";
  for (const std::string& column : columns_) out_ << ',' << csvText(column);
  out_ << "\n";
}

void Report::row(std::vector<Value> cells) {
  if (format_ == Format::kCsv) {
    out_ << csvText(name_);
    for (const Value& cell : cells) out_ << ',' << csvText(plainText(cell));
    out_ << "\n";
  } else if (format_ == Format::kJsonl) {
    out_ << "{\"table\":" << jsonScalar(name_);
    for (std::size_t i = 0; i < cells.size(); ++i) {
      out_ << ',' << jsonScalar(columns_[i]) << ':' << jsonText(cells[i]);
    }
    out_ << "}\n";
  } else {
    held_.push_back(std::move(cells));
    if (released_ || held_.size() == kHeldRows) release();
  }
}

void Report::end() {
  if (format_ == Format::kTable && !held_.empty()) release();
}

void Report::facts(const std::string& name, const std::vector<std::string>& columns,
                   std::vector<Value> cells) {
  if (format_ != Format::kTable) {
    begin(name, columns);
    row(std::move(cells));
    return end();
  }
  std::size_t width = 0;
  for (const std::string& column : columns) width = std::max(width, column.size());
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::string blanks(width - columns[i].size() + 2, ' ');
    out_ << columns[i] << blanks << plainText(cells[i]) << "\n";
  }
  isFirst_ = false;
}

void Report::note(const std::string& line) {
  if (format_ != Format::kTable) return;
  out_ << line << "\n";
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
    if (!isFirst_) out_ << "\n";
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
  out_ << line << "\n";
}

}  // namespace odbs::client
