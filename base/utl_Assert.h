#pragma once

#include "base/cow_Value.h"
#include <stdexcept>

// A place in our own sources, with the names of std::source_location: the fuzzing compiler does
// not have that one yet.
class utl_SourcePlace {
public:
  static constexpr utl_SourcePlace current(const char* file = __builtin_FILE(),
                                           const char* function = __builtin_FUNCTION(),
                                           unsigned line = __builtin_LINE()) {
    return {file, function, line};
  }
  constexpr const char* file_name() const { return m_file; }
  constexpr const char* function_name() const { return m_function; }
  constexpr unsigned line() const { return m_line; }

private:
  constexpr utl_SourcePlace(const char* file, const char* function, unsigned line)
      : m_file(file), m_function(function), m_line(line) {}
  const char* m_file;
  const char* m_function;
  unsigned m_line;
};

// A broken internal assumption: our fault, never the user's. The text is the failed condition.
class utl_Assertion : public std::logic_error {
public:
  utl_Assertion(const char* condition, utl_SourcePlace where);
  const utl_SourcePlace& Where() const { return m_where; }

private:
  utl_SourcePlace m_where;
};

[[noreturn]] void utl_assertionFailed(const char* condition,
                                      utl_SourcePlace where = utl_SourcePlace::current());

// The condition's own spelling is the exception's text.
#define utl_ASSERT(condition)                                                                      \
  do {                                                                                             \
    if (!(condition)) utl_assertionFailed(#condition);                                             \
  } while (false)
