#pragma once

#include <cfloat>
#include <cmath>
#include <string_view>

// Whether a number's text says more than its double holds, since it is nearer to zero than the
// numbers with all their digits (2.2e-308) are: it becomes zero or loses digits. Only where the
// double is so small is the text looked at, and zeros of bulk data never come here.
inline bool utl_isTinyNumber(std::string_view text, double value) {
  if (!(std::fabs(value) < DBL_MIN)) return false;
  return text.substr(0, text.find_first_of("eEdD")).find_first_of("123456789") != text.npos;
}
