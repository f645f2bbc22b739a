// SPDX-License-Identifier: BSD-3-Clause
// Files are read whole and walked by views, so that a data line costs no allocation. Places are
// running numbers; a segment starts wherever the file or its line numbering changes.
#include "importer/deck/line_source.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "base/printable.h"
#include "base/text.h"
#include "importer/deck/keyword_table.h"

namespace odbs::importer {

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMaxDepth = 16;          // of includes in includes
constexpr std::size_t kMaxFiles = 2000;        // opened in all: ends include bombs
constexpr std::size_t kMaxLineLength = 65536;  // no deck of a person or a program comes near
constexpr std::uint64_t kMaxBytes = std::uint64_t{64} << 30;
constexpr std::size_t kMaxContinuations = 1000;  // lines of one keyword

bool isKeywordLine(std::string_view line) {
  return !line.empty() && line[0] == '*';
}

// The keyword of a keyword line, squeezed.
std::string keywordOf(std::string_view line) {
  return squeezed(line.substr(1, line.find(',') - 1));
}

// The start of a foreign text, for messages.
std::string startOf(std::string_view text) {
  constexpr std::size_t kMaxShown = 200;
  return std::string(text.substr(0, kMaxShown)) + (text.size() > kMaxShown ? "..." : "");
}

}  // namespace

struct LineSource::File {
  std::string text;
  std::size_t at = 0;      // offset of the next line
  std::uint32_t line = 0;  // number of the last line read
  std::size_t name = 0;    // index in names_
  fs::path path, folder;
};

const Parameter* Keyword::find(std::string_view wanted) const {
  for (const Parameter& parameter : parameters) {
    if (parameter.name == wanted) return &parameter;
  }
  return nullptr;
}

const std::string& Keyword::value(std::string_view wanted) const {
  static const std::string none;
  const Parameter* parameter = find(wanted);
  return parameter ? parameter->value : none;
}

LineSource::LineSource(const std::string& path) {
  open(path);
}

LineSource::~LineSource() = default;

void LineSource::fail(Place place, const std::string& reason) const {
  throw DeckError(printable(where(place) + ": " + reason));
}

std::string LineSource::where(Place place) const {
  const auto after = std::upper_bound(segments_.begin(), segments_.end(), place,
                                      [](Place p, const Segment& s) { return p < s.first; });
  if (after == segments_.begin()) return names_.empty() ? std::string("deck") : names_.front();
  const Segment& segment = *(after - 1);
  return names_[segment.file] + ":" + std::to_string(segment.line + (place - segment.first));
}

double LineSource::progress() const {
  std::uint64_t done = nBytesDone_;
  for (const auto& file : stack_) done += file->at;
  return nBytes_ == 0 ? 1.0 : static_cast<double>(done) / static_cast<double>(nBytes_);
}

void LineSource::open(const std::string& path) {
  const std::string at = stack_.empty() ? path : where(place_);
  const auto refuse = [&](const std::string& reason) {
    throw DeckError(printable(at + ": " + (stack_.empty() ? "" : startOf(path) + ": ") + reason));
  };
  std::error_code error;
  const fs::path file(path);
  const fs::file_status status = fs::status(file, error);
  if (status.type() == fs::file_type::not_found) refuse("there is no such file");
  if (error) refuse("cannot be opened: " + error.message());
  if (!fs::is_regular_file(status)) refuse("is not a regular file");
  const fs::path canonical = fs::weakly_canonical(file, error);
  for (const auto& open : stack_) {
    if (open->path == canonical) refuse("a file cannot include itself");
  }
  if (stack_.size() >= kMaxDepth) refuse("files are included too deep");
  if (++nOpened_ > kMaxFiles) refuse("the deck includes too many files");

  auto opened = std::make_unique<File>();
  std::ifstream in(path, std::ios::binary);
  const std::uint64_t size = fs::file_size(file, error);
  if (!in || error) refuse("cannot be read");
  nBytes_ += size;
  if (nBytes_ > kMaxBytes) refuse("the deck is too large");
  opened->text.resize(static_cast<std::size_t>(size));
  in.read(opened->text.data(), static_cast<std::streamsize>(size));
  opened->text.resize(static_cast<std::size_t>(std::max<std::streamsize>(in.gcount(), 0)));
  opened->path = canonical;
  opened->folder = file.parent_path();
  if (startsWith(opened->text, "\xEF\xBB\xBF")) opened->at = 3;  // byte-order mark
  opened->name = names_.size();
  names_.push_back(path);
  const std::size_t nul = opened->text.find('\0');
  if (nul != std::string::npos) {
    const auto line = std::count(opened->text.begin(),
                                 opened->text.begin() + static_cast<std::ptrdiff_t>(nul), '\n');
    throw DeckError(printable(path) + ":" + std::to_string(line + 1) +
                    ": holds a NUL byte: this is not a text file");
  }
  segments_.push_back({nextPlace_, opened->name, 1});
  stack_.push_back(std::move(opened));
}

void LineSource::close() {
  nBytesDone_ += stack_.back()->text.size();
  stack_.pop_back();
  if (!stack_.empty())
    segments_.push_back({nextPlace_, stack_.back()->name, stack_.back()->line + 1});
}

void LineSource::push(const std::string& file) {
  if (file.empty()) fail("the file to be included is not named");
  std::string plain = file;
  std::replace(plain.begin(), plain.end(), '\\', '/');
  std::error_code error;
  for (const std::string& name : {file, plain}) {
    for (const File* from : {stack_.back().get(), stack_.front().get()}) {
      const fs::path path = fs::path(name).is_absolute() ? fs::path(name) : from->folder / name;
      if (fs::exists(path, error)) return open(path.string());
    }
  }
  fail("included file " + startOf(file) + " does not exist");
}

bool LineSource::rawLine(std::string_view& line) {
  while (!stack_.empty() && stack_.back()->at >= stack_.back()->text.size()) {
    // The views of the last file's lines must outlive the deck's last keyword: it stays open.
    if (stack_.size() == 1) return false;
    close();
  }
  File& file = *stack_.back();
  const char* const begin = file.text.data() + file.at;
  const std::size_t left = file.text.size() - file.at;
  const void* const end = std::memchr(begin, '\n', left);
  std::size_t n = end ? static_cast<std::size_t>(static_cast<const char*>(end) - begin) : left;
  lineStart_ = file.at;
  file.at += n + (end ? 1 : 0);
  ++file.line;
  place_ = nextPlace_++;
  if (nextPlace_ == 0) fail("the deck has too many lines");
  if (n > kMaxLineLength) fail("a line of " + std::to_string(n) + " characters is too long");
  line = std::string_view(begin, n);
  if (!values_.empty() && line.find('<') != std::string_view::npos) {
    substituted_ = substituted(line);
    line = substituted_;
  }
  return true;
}

// `line` with values in place of the references to parameters; what names none stays.
std::string LineSource::substituted(std::string_view line) const {
  std::string result;
  while (!line.empty()) {
    const std::size_t open = std::min(line.find('<'), line.size());
    const std::size_t close = line.find('>', open);
    result += line.substr(0, open);
    line.remove_prefix(open);
    if (close == std::string_view::npos) break;
    const auto value = values_.find(std::string(trimmed(line.substr(1, close - open - 1))));
    const std::size_t used = value == values_.end() ? 1 : close - open + 1;
    result += value == values_.end() ? line.substr(0, 1) : std::string_view(value->second);
    line.remove_prefix(used);
  }
  return result + std::string(line);
}

// Puts the last raw line back.
void LineSource::unreadLine() {
  stack_.back()->at = lineStart_;
  --stack_.back()->line;
  --nextPlace_;
}

// The next line that means something: comments and blank lines skipped, includes entered.
bool LineSource::anyLine(std::string_view& line) {
  while (rawLine(line)) {
    line = trimmed(line);
    if (line.empty() || startsWith(line, "**") || line == "*") continue;
    if (!isKeywordLine(line) || keywordSpelled(keywordOf(line)).name != "INCLUDE") return true;
    Keyword include;
    parseKeyword(line, include);
    place_ = include.place;
    const Parameter* input = include.find("INPUT");
    if (!input) fail("*INCLUDE without the parameter INPUT");
    push(input->raw);
  }
  return false;
}

bool LineSource::dataLine(std::string_view& line) {
  const Place before = place_;
  if (!anyLine(line)) return false;
  if (!isKeywordLine(line)) return true;
  unreadLine();
  place_ = before;
  return false;
}

bool LineSource::keyword(Keyword& keyword) {
  std::string_view line;
  do {
    if (!anyLine(line)) return false;
  } while (!isKeywordLine(line));
  parseKeyword(line, keyword);
  return true;
}

// A keyword line with the lines that continue it: each but the last ends in a comma.
std::string LineSource::gather(std::string_view line) {
  std::string whole(line);
  for (std::size_t n = 0; !whole.empty() && whole.back() == ','; ++n) {
    const Place last = place_;
    std::string_view next;
    if (!rawLine(next)) break;
    next = trimmed(next);
    if (startsWith(next, "**")) continue;
    if (isKeywordLine(next)) {
      unreadLine();
      break;
    }
    if (n >= kMaxContinuations) fail(last, "the keyword goes on over too many lines");
    if (next.empty()) break;
    whole += next;
  }
  return whole;
}

void LineSource::parseKeyword(std::string_view line, Keyword& keyword) {
  keyword = Keyword();
  keyword.place = place_;
  const std::string whole = gather(line.substr(1));
  Fields fields(whole);
  std::string_view field;
  bool first = true;
  while (fields.next(field)) {
    if (first) {
      Spelling spelling = keywordSpelled(squeezed(field));
      const bool known = !spelling.name.empty();
      keyword.name = known ? spelling.name : squeezed(field);
      keyword.text = "*" + (known ? spelling.text : startOf(upperCase(field)));
      keyword.choices = std::move(spelling.choices);
      keyword.abbreviated = known && spelling.name != squeezed(field);
      first = false;
      if (keyword.name.empty()) fail(keyword.place, "a keyword line without a keyword");
      continue;
    }
    if (field.empty()) continue;
    Parameter parameter;
    const std::size_t equal = field.find('=');
    parameter.name = squeezed(field.substr(0, equal));
    parameter.spelling = parameterSpelled(keyword.name, parameter.name);
    if (!parameter.spelling.name.empty()) parameter.name = parameter.spelling.name;
    if (equal != std::string_view::npos) {
      const std::string_view value = trimmed(field.substr(equal + 1));
      parameter.hasValue = true;
      parameter.value = nameOf(value);
      const bool quoted = value.size() >= 2 && value.front() == '"' && value.back() == '"';
      parameter.raw = std::string(quoted ? value.substr(1, value.size() - 2) : value);
    }
    keyword.parameters.push_back(std::move(parameter));
  }
}

bool Fields::next(std::string_view& field) {
  if (trimmed(rest_).empty()) return false;
  bool quoted = false;
  std::size_t end = 0;
  for (; end < rest_.size() && (quoted || rest_[end] != ','); ++end) {
    if (rest_[end] == '"') quoted = !quoted;
  }
  field = trimmed(rest_.substr(0, end));
  rest_.remove_prefix(std::min(end + 1, rest_.size()));
  return true;
}

std::optional<double> numberOf(std::string_view field) {
  const auto number = parseReal(field);
  if (number) return number;
  // Programs that write "1." write "1e-3." too.
  field = trimmed(field);
  const bool exponent = field.find_first_of("eEdD") != std::string_view::npos;
  return exponent && field.back() == '.' ? parseReal(field.substr(0, field.size() - 1)) : number;
}

std::string nameOf(std::string_view text) {
  text = trimmed(text);
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
    return std::string(text.substr(1, text.size() - 2));
  }
  return upperCase(text);
}

}  // namespace odbs::importer
