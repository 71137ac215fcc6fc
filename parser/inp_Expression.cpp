#include "parser/inp_Expression.h"
#include "base/utl_Number.h"
#include "parser/inp_TextLines.h"
#include "parser/inp_Utf8Text.h"
#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

namespace {

constexpr int deepestNesting = 200;
constexpr double largestInteger = 9007199254740992; // 2^53: beyond it not every integer is a double

struct Number {
  double value = 0;
  bool isInteger = false;
};

enum class Result { Real, Integer, Same }; // Same: an integer when all arguments are

struct Function {
  std::string_view name;
  std::size_t least, most;
  Result result;
  double (*call)(std::span<const double> x);
};

using Args = std::span<const double>;
constexpr std::size_t mostArguments = 64;

constexpr Function functions[] = {
    {"abs", 1, 1, Result::Same, [](Args x) { return std::fabs(x[0]); }},
    {"acos", 1, 1, Result::Real, [](Args x) { return std::acos(x[0]); }},
    {"asin", 1, 1, Result::Real, [](Args x) { return std::asin(x[0]); }},
    {"atan", 1, 1, Result::Real, [](Args x) { return std::atan(x[0]); }},
    {"atan2", 2, 2, Result::Real, [](Args x) { return std::atan2(x[0], x[1]); }},
    {"ceil", 1, 1, Result::Integer, [](Args x) { return std::ceil(x[0]); }},
    {"cos", 1, 1, Result::Real, [](Args x) { return std::cos(x[0]); }},
    {"cosh", 1, 1, Result::Real, [](Args x) { return std::cosh(x[0]); }},
    {"degrees", 1, 1, Result::Real, [](Args x) { return x[0] * 180 / std::numbers::pi; }},
    {"exp", 1, 1, Result::Real, [](Args x) { return std::exp(x[0]); }},
    {"float", 1, 1, Result::Real, [](Args x) { return x[0]; }},
    {"floor", 1, 1, Result::Integer, [](Args x) { return std::floor(x[0]); }},
    {"hypot", 2, 2, Result::Real, [](Args x) { return std::hypot(x[0], x[1]); }},
    {"int", 1, 1, Result::Integer, [](Args x) { return std::trunc(x[0]); }},
    {"log", 1, 1, Result::Real, [](Args x) { return std::log(x[0]); }},
    {"log10", 1, 1, Result::Real, [](Args x) { return std::log10(x[0]); }},
    {"max", 1, mostArguments, Result::Same,
     [](Args x) { return *std::max_element(x.begin(), x.end()); }},
    {"min", 1, mostArguments, Result::Same,
     [](Args x) { return *std::min_element(x.begin(), x.end()); }},
    {"pow", 2, 2, Result::Same, [](Args x) { return std::pow(x[0], x[1]); }},
    {"radians", 1, 1, Result::Real, [](Args x) { return x[0] * std::numbers::pi / 180; }},
    {"round", 1, 1, Result::Integer, [](Args x) { return std::round(x[0]); }},
    {"sin", 1, 1, Result::Real, [](Args x) { return std::sin(x[0]); }},
    {"sinh", 1, 1, Result::Real, [](Args x) { return std::sinh(x[0]); }},
    {"sqrt", 1, 1, Result::Real, [](Args x) { return std::sqrt(x[0]); }},
    {"tan", 1, 1, Result::Real, [](Args x) { return std::tan(x[0]); }},
    {"tanh", 1, 1, Result::Real, [](Args x) { return std::tanh(x[0]); }},
};

const Function* findFunction(std::string_view name) {
  const auto* const found = std::lower_bound(
      std::begin(functions), std::end(functions), name,
      [](const Function& function, std::string_view wanted) { return function.name < wanted; });
  return found != std::end(functions) && found->name == name ? found : nullptr;
}

Number made(double value, bool isInteger) {
  return {value, isInteger && value == std::trunc(value) && std::fabs(value) <= largestInteger};
}

// A recursive descent over the text; the first fault ends it by an exception of its own.
class Evaluator {
public:
  Evaluator(std::string_view text, const inp_ParameterLookup& lookup)
      : m_p(text.data()), m_end(text.data() + text.size()), m_lookup(lookup) {}

  inp_ParameterValue Run() {
    inp_ParameterValue value;
    if (Peek() == '"' || Peek() == '\'') {
      value.isText = true;
      value.text = Text();
    } else if (const inp_ParameterValue* other = WholeName(); other && other->isText) {
      return *other;
    } else {
      const Number number = Sum();
      value.number = number.value;
      value.isInteger = number.isInteger;
    }
    if (Peek() != '\0') Unexpected();
    return value;
  }

private:
  char Peek() { // the next character that is no blank; '\0' at the end
    m_p = inp_skipBlanks(m_p, m_end);
    return m_p == m_end ? '\0' : *m_p;
  }
  bool Take(std::string_view sign) {
    Peek();
    if (!std::string_view(m_p, static_cast<std::size_t>(m_end - m_p)).starts_with(sign))
      return false;
    m_p += sign.size();
    return true;
  }
  [[noreturn]] void Fail(cow_String text, const char* from, const char* to) const {
    throw inp_ExpressionFault{std::move(text), {from, static_cast<std::size_t>(to - from)}};
  }
  [[noreturn]] void Unexpected() {
    if (Peek() == '\0') Fail("the expression ends too early", m_end, m_end);
    const std::size_t length = std::max<std::size_t>(inp_utf8CharLength(m_p, m_end), 1);
    Fail("\"" + inp_printable({m_p, length}) +
             "\" is not understood here; only arithmetic with "
             "functions and earlier parameters is evaluated",
         m_p, m_p + length);
  }

  cow_String Text() {
    const char* const quote = m_p;
    const char* const close = std::find(quote + 1, m_end, *quote);
    if (close == m_end) Fail("a quote that is not closed", quote, m_end);
    m_p = close + 1;
    return {quote + 1, close};
  }

  std::string_view Name() {
    const char* const from = m_p;
    while (m_p != m_end && inp_isNameChar(*m_p)) ++m_p;
    return {from, static_cast<std::size_t>(m_p - from)};
  }

  // The parameter whose name is all there is.
  const inp_ParameterValue* WholeName() {
    const char* const from = m_p;
    if (!inp_isNameStart(Peek())) return nullptr;
    const std::string_view name = Name();
    const inp_ParameterValue* found = Peek() == '\0' ? m_lookup(name) : nullptr;
    if (!found || !found->isText) m_p = from;
    return found;
  }

  Number Sum() {
    Number left = Product();
    for (;;) {
      const char* const at = m_p;
      if (Take("+")) {
        const Number right = Product();
        left = Checked(left.value + right.value, left.isInteger && right.isInteger, at);
      } else if (Take("-")) {
        const Number right = Product();
        left = Checked(left.value - right.value, left.isInteger && right.isInteger, at);
      } else {
        return left;
      }
    }
  }

  Number Product() {
    Number left = Signed();
    for (;;) {
      const char* const at = m_p;
      if (Take("//")) {
        const Number right = Divisor(at);
        left = Checked(std::floor(left.value / right.value), left.isInteger && right.isInteger, at);
      } else if (Take("*")) {
        const Number right = Signed();
        left = Checked(left.value * right.value, left.isInteger && right.isInteger, at);
      } else if (Take("/")) {
        const Number right = Divisor(at);
        left = Checked(left.value / right.value, left.isInteger && right.isInteger, at);
      } else if (Take("%")) { // takes the sign of the divisor
        const Number right = Divisor(at);
        double rest = std::fmod(left.value, right.value);
        if (rest != 0 && std::signbit(rest) != std::signbit(right.value)) rest += right.value;
        left = Checked(rest, left.isInteger && right.isInteger, at);
      } else {
        return left;
      }
    }
  }

  Number Divisor(const char* from) {
    const Number divisor = Signed();
    if (divisor.value == 0) Fail("a division by zero", inp_skipBlanks(from, m_end), m_p);
    return divisor;
  }

  Number Signed() {
    const Nesting nesting(*this);
    if (Take("-")) {
      const Number number = Signed();
      return {number.isInteger ? 0 - number.value : -number.value, number.isInteger};
    }
    if (Take("+")) return Signed();
    return Power();
  }

  Number Power() {
    const Number base = Atom();
    const char* const at = m_p;
    if (!Take("**")) return base;
    const Number exponent = Signed();
    return Checked(std::pow(base.value, exponent.value), base.isInteger && exponent.isInteger, at);
  }

  Number Atom() {
    const char next = Peek();
    const char* const from = m_p;
    if (Take("(")) {
      const Number inner = Sum();
      if (!Take(")")) Fail("a parenthesis that is not closed", from, from + 1);
      return inner;
    }
    if (inp_isNameStart(next)) return Named(Name());
    double value = 0;
    const char* const behind =
        next == '+' || next == '-' ? nullptr : utl_readDouble(m_p, m_end, value);
    if (!behind) Unexpected();
    m_p = behind;
    const bool isInteger = std::all_of(from, behind, [](char c) { return c >= '0' && c <= '9'; });
    return Checked(value, isInteger, from);
  }

  Number Named(std::string_view name) {
    if (Peek() == '(') return Call(name);
    if (const inp_ParameterValue* value = m_lookup(name)) {
      if (!value->isText) return {value->number, value->isInteger};
      Fail("the parameter \"" + cow_String(name) + "\" is a text; it cannot be calculated with",
           name.data(), name.data() + name.size());
    }
    if (name == "pi") return {std::numbers::pi, false};
    if (name == "e") return {std::numbers::e, false};
    Fail("there is no parameter \"" + inp_printable(name, 80) + "\" before this line", name.data(),
         name.data() + name.size());
  }

  Number Call(std::string_view name) {
    const char* const open = m_p++;
    double values[mostArguments];
    std::size_t count = 0;
    bool allIntegers = true;
    if (!Take(")")) {
      do {
        if (count == mostArguments) Fail("too many arguments", m_p, m_end);
        const Number value = Sum();
        values[count++] = value.value;
        allIntegers = allIntegers && value.isInteger;
      } while (Take(","));
      if (!Take(")")) Fail("a parenthesis that is not closed", open, open + 1);
    }
    const Function* function = findFunction(name);
    if (!function)
      Fail("the function \"" + inp_printable(name, 80) + "\" is not known", name.data(),
           name.data() + name.size());
    if (count < function->least || count > function->most)
      Fail("the function \"" + cow_String(name) + "\" takes " + std::to_string(function->least) +
               (function->most > function->least ? " or more" : "") + " arguments, not " +
               std::to_string(count),
           name.data(), m_p);
    const bool integer =
        function->result == Result::Integer || (function->result == Result::Same && allIntegers);
    return Checked(function->call({values, count}), integer, name.data());
  }

  Number Checked(double value, bool isInteger, const char* from) {
    if (!std::isfinite(value)) Fail("this has no finite value", inp_skipBlanks(from, m_end), m_p);
    return made(value, isInteger);
  }

  struct Nesting {
    explicit Nesting(Evaluator& in) : owner(in) {
      if (++owner.m_depth > deepestNesting)
        owner.Fail("the expression is nested deeper than 200 levels", owner.m_p, owner.m_end);
    }
    ~Nesting() { --owner.m_depth; }
    Evaluator& owner;
  };

  const char* m_p;
  const char* const m_end;
  const inp_ParameterLookup& m_lookup;
  int m_depth = 0;
};

} // namespace

cow_String inp_ParameterValue::AsDeckText() const {
  if (isText) return text;
  char digits[utl_doubleTextRoom];
  static_assert(utl_doubleTextRoom >= utl_intTextRoom);
  char* const end = isInteger ? utl_printInt(digits, static_cast<std::int64_t>(number))
                              : utl_printDouble(digits, number);
  return {digits, end};
}

std::optional<inp_ParameterValue> inp_evaluate(std::string_view expression,
                                               const inp_ParameterLookup& lookup,
                                               inp_ExpressionFault& fault) {
  try {
    return Evaluator(expression, lookup).Run();
  } catch (inp_ExpressionFault& found) {
    fault = std::move(found);
    return std::nullopt;
  }
}

bool inp_isNameStart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool inp_isNameChar(char c) {
  return inp_isNameStart(c) || (c >= '0' && c <= '9');
}
