// SPDX-License-Identifier: BSD-3-Clause
// The blocks of a .frd file. Columns below count from 0; the format's first column is blank.
#include "importer/results/frd_reader.h"

#include <algorithm>
#include <array>
#include <limits>

#include "base/bytes.h"
#include "base/text.h"

namespace odbs::importer {

namespace {

constexpr std::size_t kKeyWidth = 3;         // " -1"
constexpr std::size_t kValueWidth = 12;      // E12.5
constexpr std::size_t kValuesPerLine = 6;    //
constexpr std::size_t kHeadCount = 24;       // first column of the count in 2C, 3C and 100C
constexpr std::size_t kHeadCountWidth = 12;  //
constexpr int kMaxComponents = 999;          // three digits in the file

// `line` from `start`, at most `width` characters; empty beyond its end.
std::string_view columns(std::string_view line, std::size_t start, std::size_t width) {
  return start < line.size() ? line.substr(start, width) : std::string_view();
}

// The record's key with the blanks around it removed: "2C", "-1", "9999".
std::string_view keyOf(std::string_view line) {
  const std::size_t start = line.find_first_not_of(' ');
  if (start == std::string_view::npos) return {};
  if (line[start] == '-') return line.substr(start, 2);
  std::size_t end = start;
  while (end < line.size() && line[end] >= '0' && line[end] <= '9') ++end;
  const std::string_view digits = line.substr(start, end - start);
  if (digits == "9999") return digits;
  return line.substr(start, end - start + 1);
}

// Takes the numbers of a line whose columns have shifted: a C program prints an exponent of three
// digits in 13 characters where 12 are meant. Each number has one digit before its point, so
// the points tell where it begins. Returns an empty list when there are no such numbers.
std::vector<std::string_view> shiftedFields(std::string_view text) {
  std::vector<std::size_t> starts;
  for (std::size_t dot = text.find('.'); dot != std::string_view::npos;
       dot = text.find('.', dot + 1)) {
    if (dot == 0) return {};
    std::size_t start = dot - 1;
    if (start > 0 && (text[start - 1] == '-' || text[start - 1] == '+')) --start;
    starts.push_back(start);
  }
  std::vector<std::string_view> fields;
  for (std::size_t i = 0; i < starts.size(); ++i) {
    const std::size_t end = i + 1 < starts.size() ? starts[i + 1] : text.size();
    if (end <= starts[i]) return {};
    fields.push_back(text.substr(starts[i], end - starts[i]));
  }
  return fields;
}

}  // namespace

std::size_t FrdReader::textLabelWidth(Format format) {
  return format == Format::shortText ? 5 : 10;
}

int frdNodesPerElement(int type) {
  constexpr std::array<int, 13> kNodes = {0, 8, 6, 4, 20, 15, 10, 3, 6, 4, 8, 2, 3};
  return type >= 1 && type <= 12 ? kNodes[static_cast<std::size_t>(type)] : 0;
}

FrdReader::FrdReader(const std::string& path) : input_(path) {
  if (input_.remaining() == 0) throw ResultFileError(path + ": the file is empty");
}

FrdReader::Block FrdReader::next() {
  skimming_ = false;
  return advance();
}

FrdReader::Block FrdReader::skim() {
  skimming_ = true;
  return advance();
}

FrdReader::Block FrdReader::readAt(const ResultPlace& place) {
  input_.seek(place);
  complete_ = false;
  return next();
}

FrdReader::Block FrdReader::advance() {
  nodes_ = {};
  elements_ = {};
  result_ = {};
  while (!complete_ && input_.nextLine()) {
    const std::string_view line = input_.line();
    const std::string_view key = keyOf(line);
    if (key.empty()) continue;
    place_ = input_.place();
    if (key == "9999") {
      complete_ = true;
    } else if (key == "1C" || key == "1U") {
      header_.push_back({key[1], std::string(trimmed(line.substr(line.find(key) + 2)))});
    } else if (key == "1P") {
      readParameter(line.substr(line.find(key) + 2));
    } else if (key == "2C") {
      readNodes(line);
      return Block::nodes;
    } else if (key == "3C") {
      readElements(line);
      return Block::elements;
    } else if (key == "100C") {
      readResult(line);
      return Block::result;
    } else {
      input_.fail("a record of unknown kind: \"" + std::string(line.substr(0, 20)) + "\"");
    }
  }
  return Block::end;
}

std::int64_t FrdReader::integer(std::string_view field, const char* what) const {
  const auto value = parseInt(field);
  if (!value) {
    input_.fail(std::string(what) + " expected, found \"" + std::string(trimmed(field)) + "\"");
  }
  return *value;
}

std::int32_t FrdReader::label(std::string_view field, const char* what) const {
  const std::int64_t value = integer(field, what);
  if (value < 1 || value > std::numeric_limits<std::int32_t>::max()) {
    input_.fail(std::string(what) + " " + std::to_string(value) + " is out of range");
  }
  return static_cast<std::int32_t>(value);
}

double FrdReader::real(std::string_view field, const char* what) const {
  const auto value = parseReal(field);
  if (!value) {
    input_.fail(std::string(what) + " expected, found \"" + std::string(trimmed(field)) + "\"");
  }
  return *value;
}

// Count and format of a 2C, 3C or 100C record.
FrdReader::BlockHeader FrdReader::blockHeader(std::string_view line, std::size_t countColumn,
                                              std::size_t formatColumn) const {
  BlockHeader header;
  const std::string_view countField = trimmed(columns(line, countColumn, kHeadCountWidth));
  header.hasCount = !countField.empty();
  const std::int64_t count = header.hasCount ? integer(countField, "a count") : 0;
  if (count < 0) input_.fail("a negative count");
  header.count = static_cast<std::uint64_t>(count);
  const std::string_view format = trimmed(columns(line, formatColumn, line.size()));
  if (format.empty()) return header;  // files of before the field: short text
  const std::int64_t number = integer(format, "a format number");
  if (number < 0 || number > 3) input_.fail("format number " + std::to_string(number));
  header.format = static_cast<Format>(number);
  if (header.format >= Format::binaryFloat && !header.hasCount) {
    input_.fail("a binary block without a count");
  }
  return header;
}

// A parameter record: what precedes the next result block. Those without use here are passed over.
void FrdReader::readParameter(std::string_view text) {
  const auto words = [&] {
    std::vector<std::string_view> found;
    for (const std::string_view word : split(text, ' ')) {
      if (!trimmed(word).empty()) found.push_back(trimmed(word));
    }
    return found;
  }();
  if (words.size() < 2) return;
  const auto number = [&](std::size_t i) {
    return i < words.size() ? static_cast<int>(toIntOrZero(words[i])) : 0;
  };
  if (words[0] == "STEP") {
    parameters_.dataSet = number(1);
    parameters_.increment = number(2);
    parameters_.step = number(3);
  } else if (words[0] == "MODE") {
    parameters_.mode = number(1);
  } else if (words[0] == "HID") {
    parameters_.hasNodalDiameter = true;
    parameters_.nodalDiameter = number(1);
  } else if (words[0] == "GM") {
    parameters_.generalizedMass = real(words[1], "a generalized mass");
  } else if (words[0] == "GK") {
    parameters_.generalizedStiffness = real(words[1], "a generalized stiffness");
  }
}

void FrdReader::checkCount(const BlockHeader& header, std::size_t found) const {
  // A field without any active node is an empty block that announces all nodes.
  if (!header.hasCount || header.count == found || found == 0) return;
  input_.fail("the block announces " + std::to_string(header.count) + " entries and holds " +
              std::to_string(found));
}

// Node block.
//   " -1", label (5 or 10), x, y, z (12 each)      binary: label (4), x, y, z (4 or 8 each)
void FrdReader::readNodes(std::string_view line) {
  const BlockHeader header = blockHeader(line, kHeadCount, kHeadCount + kHeadCountWidth);
  if (header.format >= Format::binaryFloat) {
    readBinaryRows(header, 3, nodes_.labels, nodes_.coordinates);
    return;
  }
  readTextRows(header, 3, nodes_.labels, nodes_.coordinates);
}

// Element block.
//   " -1", label (5 or 10), type, group, material (5 each)    binary: the same and the nodes,
//   " -2", nodes (15 of 5, or 10 of 10, a line)               4 bytes each
void FrdReader::readElements(std::string_view line) {
  const BlockHeader header = blockHeader(line, kHeadCount, kHeadCount + kHeadCountWidth);
  if (header.format >= Format::binaryFloat) {
    readBinaryElements();
    return;
  }
  readTextElements(header);
}

// The announced count is not used: the solver counts a composite shell as one element and writes
// one for each layer.
void FrdReader::readTextElements(const BlockHeader& header) {
  const std::size_t labelWidth = textLabelWidth(header.format);
  const std::size_t nodesPerLine = labelWidth == 5 ? 15 : 10;
  while (input_.nextLine()) {
    std::string_view line = input_.line();
    const std::string_view key = keyOf(line);
    if (key == "-3") return;
    if (key != "-1") input_.fail("an element record (-1) or the block's end (-3) expected");
    elements_.labels.push_back(label(columns(line, kKeyWidth, labelWidth), "an element label"));
    std::size_t at = kKeyWidth + labelWidth;
    const std::int64_t type = integer(columns(line, at, 5), "an element type");
    const int nNodes = type >= 1 && type <= 12 ? frdNodesPerElement(static_cast<int>(type)) : 0;
    if (nNodes == 0) input_.fail("element type " + std::to_string(type) + " is unknown");
    elements_.types.push_back(static_cast<std::uint8_t>(type));
    elements_.groups.push_back(toIntOrZero(columns(line, at + 5, 5)));
    for (std::size_t i = 0; i < static_cast<std::size_t>(nNodes); ++i) {
      if (i % nodesPerLine == 0) {
        if (!input_.nextLine()) input_.failCut("the file ends inside an element");
        line = input_.line();
        if (keyOf(line) != "-2") input_.fail("a record of nodes (-2) expected");
      }
      at = kKeyWidth + i % nodesPerLine * labelWidth;
      elements_.nodes.push_back(label(columns(line, at, labelWidth), "a node label"));
    }
  }
  input_.failCut("the file ends inside the block of elements");
}

// True where a text record begins. As labels its first four bytes would be beyond 500 million, so
// that it is told from another row of a binary block.
bool FrdReader::atText() {
  return input_.continuesWith("    ") || input_.continuesWith("  10") ||
         input_.continuesWith(" 999");
}

// The end of the block is where text begins again: the announced count may be too small, see above.
void FrdReader::readBinaryElements() {
  constexpr std::size_t kHead = 16;
  std::array<unsigned char, kHead + 4 * 20> bytes;
  while (!atText() && input_.remaining() > 0) {
    input_.readBytes(bytes.data(), kHead);
    const std::int32_t elementLabel = getI32(bytes.data());
    const std::int32_t type = getI32(bytes.data() + 4);
    const std::size_t nNodes = static_cast<std::size_t>(frdNodesPerElement(type));
    if (elementLabel < 1) input_.fail("element label " + std::to_string(elementLabel));
    if (nNodes == 0) input_.fail("element type " + std::to_string(type) + " is unknown");
    elements_.labels.push_back(elementLabel);
    elements_.types.push_back(static_cast<std::uint8_t>(type));
    elements_.groups.push_back(getI32(bytes.data() + 8));
    input_.readBytes(bytes.data(), 4 * nNodes);
    for (std::size_t n = 0; n < nNodes; ++n) {
      const std::int32_t node = getI32(bytes.data() + 4 * n);
      if (node < 1) input_.fail("node label " + std::to_string(node));
      elements_.nodes.push_back(node);
    }
  }
}

// Result block.
//   offset  width  content of the 100C record
//   5       6      name of the step, unused
//   12      12     time, frequency or factor
//   24      12     nodes
//   36      20     text
//   56      2      analysis type
//   58      5      step number
//   63      10     name of the analysis
//   73      2      format
void FrdReader::readResult(std::string_view line) {
  const BlockHeader header = blockHeader(line, kHeadCount, 73);
  result_.value = real(columns(line, 12, kValueWidth), "a time or frequency");
  result_.text = std::string(trimmed(columns(line, 36, 20)));
  const std::int64_t analysis = integer(columns(line, 56, 2), "an analysis type");
  if (analysis < 0 || analysis > 4) input_.fail("analysis type " + std::to_string(analysis));
  result_.analysis = static_cast<FrdAnalysis>(analysis);
  result_.number = toIntOrZero(columns(line, 58, 5));
  result_.analysisName = std::string(trimmed(columns(line, 63, 10)));
  result_.parameters = parameters_;
  parameters_ = {};

  // " -4", two blanks, name (8), number of components (5), kind of values (5)
  if (!input_.nextLine() || keyOf(input_.line()) != "-4") input_.fail("a field name (-4) expected");
  const std::string_view second = input_.line();
  result_.name = std::string(trimmed(columns(second, 5, 8)));
  const std::int64_t nComponents = integer(columns(second, 13, 5), "a number of components");
  if (nComponents < 1 || nComponents > kMaxComponents) {
    input_.fail("a field of " + std::to_string(nComponents) + " components");
  }
  if (toIntOrZero(columns(second, 18, 5)) > 2) input_.fail("values that are not nodal");
  readComponents(static_cast<int>(nComponents));

  const std::size_t nStored = static_cast<std::size_t>(result_.nStored);
  if (skimming_) return skipRows(header, nStored);
  if (header.format >= Format::binaryFloat) {
    readBinaryRows(header, nStored, result_.labels, result_.values);
    return;
  }
  readTextRows(header, nStored, result_.labels, result_.values);
}

// To the end of the block without a look at its numbers.
void FrdReader::skipRows(const BlockHeader& header, std::size_t nValues) {
  if (header.format >= Format::binaryFloat) {
    if (header.count == 0 || atText()) return;
    const std::uint64_t rowSize = 4 + nValues * (header.format == Format::binaryDouble ? 8 : 4);
    if (header.count > input_.remaining() / rowSize) input_.failCut("the file ends inside a block");
    return input_.skipBytes(header.count * rowSize);
  }
  while (input_.nextLine()) {
    if (startsWith(input_.line(), " -3")) return;
  }
  input_.failCut("the file ends inside a block");
}

// " -5", two blanks, name (8), menu (5), type (5), row (5), column (5), derived (5), name (8)
void FrdReader::readComponents(int nComponents) {
  for (int i = 0; i < nComponents; ++i) {
    if (!input_.nextLine() || keyOf(input_.line()) != "-5")
      input_.fail("a component (-5) expected");
    const std::string_view line = input_.line();
    FrdComponent component;
    component.name = std::string(trimmed(columns(line, 5, 8)));
    component.type = toIntOrZero(columns(line, 18, 5));
    component.row = toIntOrZero(columns(line, 23, 5));
    component.column = toIntOrZero(columns(line, 28, 5));
    component.derived = toIntOrZero(columns(line, 33, 5)) != 0;
    if (!component.derived) ++result_.nStored;
    result_.components.push_back(std::move(component));
  }
  if (result_.nStored == 0) input_.fail("a field without any stored component");
}

// Lines of one node each, values beyond the sixth on lines of key -2, up to the line of key -3.
void FrdReader::readTextRows(const BlockHeader& header, std::size_t nValues,
                             std::vector<std::int32_t>& labels, std::vector<double>& values) {
  const std::size_t labelWidth = textLabelWidth(header.format);
  const std::size_t start = kKeyWidth + labelWidth;
  // As many as announced, but never more than the rest of the file can hold.
  const std::size_t nRows = static_cast<std::size_t>(
      std::min<std::uint64_t>(header.count, input_.remaining() / (start + nValues * kValueWidth)));
  labels.reserve(nRows);
  values.reserve(nRows * nValues);
  while (input_.nextLine()) {
    const std::string_view key = keyOf(input_.line());
    if (key == "-3") return checkCount(header, labels.size());
    if (key != "-1") input_.fail("a node (-1) or the block's end (-3) expected");
    labels.push_back(label(columns(input_.line(), kKeyWidth, labelWidth), "a node label"));
    for (std::size_t done = 0; done < nValues; done += kValuesPerLine) {
      if (done > 0 && (!input_.nextLine() || keyOf(input_.line()) != "-2")) {
        input_.fail("a continuation (-2) expected");
      }
      appendFields(input_.line(), start, std::min(kValuesPerLine, nValues - done), values);
    }
  }
  input_.failCut("the file ends inside a block");
}

// The `nFields` numbers of `line` from column `start`: by columns, and where those have shifted by
// the numbers themselves.
void FrdReader::appendFields(std::string_view line, std::size_t start, std::size_t nFields,
                             std::vector<double>& values) {
  const std::size_t end = line.find_last_not_of(' ') + 1;
  if (end > start + nFields * kValueWidth) {
    const auto fields = shiftedFields(columns(line, start, line.size()));
    if (fields.size() != nFields) input_.fail("more values than the field has components");
    for (const std::string_view field : fields) values.push_back(real(field, "a value"));
    return;
  }
  for (std::size_t i = 0; i < nFields; ++i) {
    values.push_back(real(columns(line, start + i * kValueWidth, kValueWidth), "a value"));
  }
}

void FrdReader::readBinaryRows(const BlockHeader& header, std::size_t nValues,
                               std::vector<std::int32_t>& labels, std::vector<double>& values) {
  const bool isDouble = header.format == Format::binaryDouble;
  const std::size_t rowSize = 4 + nValues * (isDouble ? 8 : 4);
  if (header.count == 0 || atText()) return;  // empty, whatever is announced; see checkCount
  if (header.count > input_.remaining() / rowSize) input_.failCut("the file ends inside a block");
  labels.reserve(static_cast<std::size_t>(header.count));
  values.reserve(static_cast<std::size_t>(header.count) * nValues);
  std::vector<unsigned char> row(rowSize);
  for (std::uint64_t i = 0; i < header.count; ++i) {
    input_.readBytes(row.data(), rowSize);
    const std::int32_t node = getI32(row.data());
    if (node < 1) input_.fail("node label " + std::to_string(node));
    labels.push_back(node);
    for (std::size_t v = 0; v < nValues; ++v) {
      const unsigned char* const p = row.data() + 4 + v * (isDouble ? 8 : 4);
      values.push_back(isDouble ? getF64(p) : static_cast<double>(getF32(p)));
    }
  }
}

}  // namespace odbs::importer
