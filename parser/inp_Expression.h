#pragma once

#include "base/cow_Value.h"
#include <functional>
#include <optional>
#include <string_view>

// The value of a deck parameter: a text, or a number that may be an integer.
struct inp_ParameterValue {
  bool isText = false;
  bool isInteger = false;
  double number = 0; // integers up to 2^53
  cow_String text;

  cow_String AsDeckText() const; // as it stands in the place of <name>
};

// What is wrong with an expression, and where in its text.
struct inp_ExpressionFault {
  cow_String text;
  std::string_view at;
};

using inp_ParameterLookup = std::function<const inp_ParameterValue*(std::string_view name)>;

// Evaluates what stands behind the equal sign of a deck parameter:
// + - * / // % **, parentheses, numbers (with E or D exponents), earlier parameters, pi and e, and
// abs acos asin atan atan2 ceil cos cosh degrees exp float floor hypot int log log10 max min pow
// radians round sin sinh sqrt tan tanh (angles in radians); or one text in quotes.
//
// Operators bind as in mathematics: ** first and from the right, so that -2**2 is -4. A quotient of
// integers is an integer where it comes out even and a real else, never cut off; ceil, floor, int
// and round give integers.
std::optional<inp_ParameterValue> inp_evaluate(std::string_view expression,
                                               const inp_ParameterLookup& lookup,
                                               inp_ExpressionFault& fault);

bool inp_isNameStart(char c);
bool inp_isNameChar(char c);
