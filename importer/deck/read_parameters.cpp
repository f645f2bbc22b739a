// SPDX-License-Identifier: BSD-3-Clause
// *PARAMETER: names for values, computed as Python computes them. Sums, products, powers,
// parentheses, the usual functions, and texts in quotes.
#include <array>
#include <charconv>
#include <cmath>

#include "base/text.h"
#include "importer/deck/deck_parser.h"

namespace odbs::importer {

namespace {

constexpr int kMaxDepth = 200;  // of parentheses and signs

struct ExpressionError {
  std::string reason;
};

struct Number {
  double value = 0;
  bool whole = false;
};

class Expression {
 public:
  Expression(std::string_view text, const std::map<std::string, Number>& known)
      : text_(text), known_(known) {}

  Number evaluate() {
    const Number result = sum();
    skip();
    if (at_ != text_.size()) unexpected();
    if (!std::isfinite(result.value)) throw ExpressionError{"it is not a finite number"};
    return result;
  }
  // A quotient of whole numbers that older solvers cut to a whole number.
  bool cutBySome() const { return cutBySome_; }

 private:
  void skip() {
    while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\t')) ++at_;
  }
  bool take(std::string_view token) {
    skip();
    if (!startsWith(text_.substr(at_), token)) return false;
    at_ += token.size();
    return true;
  }
  [[noreturn]] void unexpected() const {
    throw ExpressionError{at_ == text_.size()
                              ? std::string("it ends too early")
                              : "\"" + std::string(text_.substr(at_, 20)) + "\" is not understood"};
  }
  // Beyond that, integers are no longer exact in a double.
  static Number made(double value, bool whole) {
    return {value, whole && std::fabs(value) < 9007199254740992.0};
  }

  Number sum() {
    Number left = product();
    for (;;) {
      const bool plus = take("+");
      if (!plus && !take("-")) return left;
      const Number right = product();
      left = made(left.value + (plus ? right.value : -right.value), left.whole && right.whole);
    }
  }

  Number product() {
    Number left = signedPower();
    for (;;) {
      skip();
      if (startsWith(text_.substr(at_), "**")) return left;
      const bool floor = take("//"), quotient = !floor && take("/"), rest = take("%");
      if (!floor && !quotient && !rest && !take("*")) return left;
      const Number right = signedPower();
      const bool whole = left.whole && right.whole;
      if ((floor || quotient || rest) && right.value == 0) throw ExpressionError{"it divides by 0"};
      if (floor || rest) {
        const double n = std::floor(left.value / right.value);
        left = made(floor ? n : left.value - n * right.value, whole);
      } else if (quotient) {
        const double q = left.value / right.value;
        cutBySome_ = cutBySome_ || (whole && q != std::floor(q));
        left = made(q, whole && q == std::floor(q));
      } else {
        left = made(left.value * right.value, whole);
      }
    }
  }

  Number signedPower() {
    if (++depth_ > kMaxDepth) throw ExpressionError{"it is nested too deep"};
    Number result;
    if (take("-")) {
      result = signedPower();
      result.value = -result.value;
    } else if (take("+")) {
      result = signedPower();
    } else {
      result = operand();
      if (take("**")) {
        const Number exponent = signedPower();
        result = made(std::pow(result.value, exponent.value),
                      result.whole && exponent.whole && exponent.value >= 0);
      }
    }
    --depth_;
    return result;
  }

  Number operand() {
    skip();
    if (take("(")) {
      const Number inside = sum();
      if (!take(")")) unexpected();
      return inside;
    }
    const char first = at_ < text_.size() ? text_[at_] : ' ';
    if ((first >= '0' && first <= '9') || first == '.') return literal();
    std::size_t end = at_;
    const auto isName = [](char c) {
      return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    };
    while (end < text_.size() && isName(text_[end])) ++end;
    if (end == at_) unexpected();
    const std::string name(text_.substr(at_, end - at_));
    at_ = end;
    if (take("(")) return function(name);
    const auto found = known_.find(name);
    if (found != known_.end()) return found->second;
    throw ExpressionError{"there is no parameter " + name};
  }

  Number literal() {
    const char* const begin = text_.data() + at_;
    Number number;
    const auto [end, error] = std::from_chars(begin, text_.data() + text_.size(), number.value);
    if (error != std::errc()) unexpected();
    const std::string_view digits(begin, static_cast<std::size_t>(end - begin));
    at_ += digits.size();
    return made(number.value, digits.find_first_not_of("0123456789") == std::string_view::npos);
  }

  Number function(const std::string& name) {
    struct Row {
      std::string_view name;
      double (*of)(double);
    };
    constexpr Row kFunctions[] = {
        {"sqrt", std::sqrt}, {"exp", std::exp},   {"log", std::log},    {"log10", std::log10},
        {"sin", std::sin},   {"cos", std::cos},   {"tan", std::tan},    {"asin", std::asin},
        {"acos", std::acos}, {"atan", std::atan}, {"sinh", std::sinh},  {"cosh", std::cosh},
        {"tanh", std::tanh}, {"ceil", std::ceil}, {"floor", std::floor}};
    std::array<Number, 2> arguments{};
    std::size_t n = 0;
    do {
      if (n == arguments.size()) unexpected();
      arguments[n++] = sum();
    } while (take(","));
    if (!take(")")) unexpected();
    const Number a = arguments[0], b = arguments[1];
    if (n == 2) {
      if (name == "pow") return made(std::pow(a.value, b.value), false);
      if (name == "atan2") return made(std::atan2(a.value, b.value), false);
      if (name == "min") return a.value < b.value ? a : b;
      if (name == "max") return a.value > b.value ? a : b;
    } else {
      if (name == "abs") return made(std::fabs(a.value), a.whole);
      if (name == "int") return made(std::trunc(a.value), true);
      if (name == "float") return made(a.value, false);
      for (const Row& row : kFunctions) {
        if (row.name == name) return made(row.of(a.value), false);
      }
    }
    throw ExpressionError{"there is no function " + name + " of " + std::to_string(n) +
                          (n == 1 ? " number" : " numbers")};
  }

  std::string_view text_;
  const std::map<std::string, Number>& known_;
  std::size_t at_ = 0;
  int depth_ = 0;
  bool cutBySome_ = false;
};

// The shortest digits that read back as the same number.
std::string digitsOf(const Number& number) {
  char buffer[40];
  const auto end = number.whole ? std::to_chars(buffer, buffer + sizeof buffer,
                                                static_cast<std::int64_t>(number.value))
                                : std::to_chars(buffer, buffer + sizeof buffer, number.value);
  return std::string(buffer, end.ptr);
}

}  // namespace

void DeckParser::readParameter(const Keyword& keyword) {
  if (keyword.has("TABLE")) {
    lines_.fail(keyword.place, "*PARAMETER cannot be read from a TABLE");
  }
  std::string_view line;
  while (lines_.dataLine(line)) {
    const std::string_view text = trimmed(line.substr(0, line.find('#')));
    if (text.empty()) continue;
    const std::size_t equal = text.find('=');
    if (equal == std::string_view::npos) fail("*PARAMETER needs NAME = VALUE");
    const std::string name(trimmed(text.substr(0, equal)));
    const std::string_view value = trimmed(text.substr(equal + 1));
    const bool quoted = value.size() >= 2 && value.front() == value.back() &&
                        (value.front() == '\'' || value.front() == '"');
    if (quoted) {
      lines_.setValue(name, std::string(value.substr(1, value.size() - 2)));
      continue;
    }
    std::map<std::string, Number> known;
    for (const auto& [other, digits] : lines_.values()) {
      const auto number = parseReal(digits);
      if (number) known[other] = {*number, parseInt(digits).has_value()};
    }
    try {
      Expression expression(value, known);
      lines_.setValue(name, digitsOf(expression.evaluate()));
      if (expression.cutBySome()) {
        warn(lines_.place(), "parameter " + name +
                                 " divides whole numbers: the quotient keeps its fraction, which "
                                 "some solvers cut off");
      }
    } catch (const ExpressionError& error) {
      fail("parameter " + name + " cannot be evaluated: " + error.reason);
    }
  }
}

// The mapping is not carried out.
void DeckParser::readNmap(const Keyword& keyword) {
  const std::string& set = keyword.value("NSET");
  warn(keyword.place, "*NMAP is not carried out: the nodes" + (set.empty() ? "" : " of " + set) +
                          " have the coordinates before the mapping, which are wrong");
}

// Each line: a node and what is added to its coordinates.
void DeckParser::readImperfection(const Keyword& keyword) {
  const std::string& system = keyword.value("SYSTEM");
  const bool fromResults = keyword.has("FILE") || keyword.has("STEP");
  if (fromResults || (!system.empty() && system[0] != 'R')) {
    warn(keyword.place,
         fromResults
             ? "the imperfection is left out: its shape is in results of another analysis; "
               "the coordinates are those of the perfect structure"
             : "the imperfection is left out: its coordinate system is not rectangular; the "
               "coordinates are those of the perfect structure");
    return;
  }
  if (const Parameter* input = keyword.find("INPUT")) lines_.push(input->raw);
  std::string_view line;
  while (lines_.dataLine(line)) {
    Fields fields(line);
    std::string_view field;
    if (!fields.next(field)) continue;
    const Reference node = referenceOf(field);
    DeckNodeTable& nodes =
        node.owner == kOwn
            ? scope().nodes
            : deck_.meshOf(deck_.instances[static_cast<std::size_t>(node.owner)]).nodes;
    const std::int64_t at = node.label != 0 ? nodes.find(node.label) : -1;
    if (at < 0) fail("\"" + std::string(field) + "\" is not a node that is defined");
    for (std::size_t d = 0; d < 3 && fields.next(field); ++d) {
      nodes.xyz[3 * static_cast<std::size_t>(at) + d] += realOf(field);
    }
  }
}

}  // namespace odbs::importer
