#include "parser/inp_Expression.h"
#include <cmath>
#include <gtest/gtest.h>

namespace {

const inp_ParameterValue* lookup(std::string_view name) {
  static const inp_ParameterValue four{false, true, 4, {}}, half{false, false, 0.5, {}},
      steel{true, false, 0, "steel"};
  if (name == "four") return &four;
  if (name == "half") return &half;
  return name == "mat" ? &steel : nullptr;
}

cow_String evaluated(std::string_view text) {
  inp_ExpressionFault fault;
  const auto value = inp_evaluate(text, lookup, fault);
  if (value) return value->AsDeckText();
  return "at " + std::to_string(fault.at.data() - text.data()) + ": " + fault.text;
}

} // namespace

TEST(Expression, Values) {
  const struct {
    const char* expression;
    const char* text; // as it goes into the deck
  } cases[] = {
      {"1", "1"},
      {" 1. ", "1."},
      {".5", "0.5"},
      {"2.5e-3", "0.0025"},
      {"1D2", "100."},
      {"1 + 2*3", "7"},
      {"(1 + 2)*3", "9"},
      {"10 - 4 - 3", "3"},
      {"2*3. ", "6."},
      {"6/3", "2"},
      {"7/2", "3.5"},
      {"7//2", "3"},
      {"-7//2", "-4"},
      {"7 % 3", "1"},
      {"-7 % 3", "2"},
      {"2**3**2", "512"},
      {"-2**2", "-4"},
      {"2**-1", "0.5"},
      {"--3", "3"},
      {"+3", "3"},
      {"3*-2", "-6"},
      {"-0", "0"},
      {"four*half", "2."},
      {"-four", "-4"},
      {"four*25", "100"},
      {"2**53", "9007199254740992"},
      {"2**53*2", "18014398509481984."},
      {"mat", "steel"},
      {"\"a b\"", "a b"},
      {"'x'", "x"},
      {"sqrt(16)", "4."},
      {"int(sqrt(16)) ", "4"},
      {"floor(-2.5)", "-3"},
      {"ceil(2.1)", "3"},
      {"round(2.5)", "3"},
      {"abs(-3)", "3"},
      {"abs(-3.)", "3."},
      {"max(1, 7, 3)", "7"},
      {"min(2., 3)", "2."},
      {"pow(2, 10)", "1024"},
      {"atan2(0., 1.)", "0."},
      {"log10(1000.)", "3."},
      {"log(exp(2.))", "2."},
      {"cos(0)", "1."},
      {"sin(pi/2)", "1."},
      {"hypot(3, 4)", "5."},
      {"degrees(pi)", "180."},
      {"float(3)", "3."},
  };
  for (const auto& c : cases) EXPECT_EQ(evaluated(c.expression), c.text) << c.expression;
}

TEST(Expression, Faults) {
  const struct {
    const char* expression;
    const char* fault;
  } cases[] = {
      {"", "at 0: the expression ends too early"},
      {"1 +", "at 3: the expression ends too early"},
      {"(1 + 2", "at 0: a parenthesis that is not closed"},
      {"sin(1", "at 3: a parenthesis that is not closed"},
      {"1/0", "at 1: a division by zero"},
      {"sqrt(-1)", "at 0: this has no finite value"},
      {"1e400", "at 0: this has no finite value"},
      {"10.**400", "at 3: this has no finite value"},
      {"2*x", "at 2: there is no parameter \"x\" before this line"},
      {"bessel(1)", "at 0: the function \"bessel\" is not known"},
      {"sin(1,2)", "at 0: the function \"sin\" takes 1 arguments, not 2"},
      {"pow(2)", "at 0: the function \"pow\" takes 2 arguments, not 1"},
      {"hypot(3)", "at 0: the function \"hypot\" takes 2 arguments, not 1"},
      {"max()", "at 0: the function \"max\" takes 1 or more arguments, not 0"},
      {"mat*2", "at 0: the parameter \"mat\" is a text; it cannot be calculated with"},
      {"'open", "at 0: a quote that is not closed"},
      {"[1]", "at 0: \"[\" is not understood here; only arithmetic with functions and earlier "
              "parameters is evaluated"},
      {"2 3", "at 2: \"3\" is not understood here; only arithmetic with functions and earlier "
              "parameters is evaluated"},
  };
  for (const auto& c : cases) EXPECT_EQ(evaluated(c.expression), c.fault) << c.expression;
}

TEST(Expression, DeepNestingIsAFault) {
  for (const char* piece : {"(", "-", "2**", "sin("}) {
    std::string text;
    for (int i = 0; i < 100000; ++i) text += piece;
    EXPECT_NE(evaluated(text).find("nested deeper than 200"), cow_String::npos) << piece;
  }
}
