#pragma once

#include "base/cow_Value.h"
#include <source_location>
#include <stdexcept>

// A broken internal assumption: our fault, never the user's. The text is the failed condition.
class utl_Assertion : public std::logic_error {
public:
  utl_Assertion(const char* condition, std::source_location where);
  const std::source_location& Where() const { return m_where; }

private:
  std::source_location m_where;
};

[[noreturn]] void utl_assertionFailed(const char* condition,
                                      std::source_location where = std::source_location::current());

// The condition's own spelling is the exception's text.
#define utl_ASSERT(condition)                                                                      \
  do {                                                                                             \
    if (!(condition)) utl_assertionFailed(#condition);                                             \
  } while (false)
