#pragma once

#include <cstring>
#include <string_view>

// What a line of deck text is. Blanks and tabs may stand before anything; a carriage return before
// the line feed belongs to the line end.

inline bool inp_isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

inline const char* inp_skipBlanks(const char* p, const char* end) {
  while (p != end && inp_isBlank(*p)) ++p;
  return p;
}

inline std::string_view inp_trim(const char* begin, const char* end) {
  begin = inp_skipBlanks(begin, end);
  while (end != begin && inp_isBlank(end[-1])) --end;
  return {begin, static_cast<std::size_t>(end - begin)};
}

// The line feed that ends the line p stands in, or end.
inline const char* inp_lineFeed(const char* p, const char* end) {
  if (p == end) return end;
  const void* at = std::memchr(p, '\n', static_cast<std::size_t>(end - p));
  return at ? static_cast<const char*>(at) : end;
}

// The start of the line p stands in.
inline const char* inp_lineBegin(const char* p, const char* textBegin) {
  while (p != textBegin && p[-1] != '\n') --p;
  return p;
}

enum class inp_LineKind : unsigned char { Data, Comment, Keyword };

// The asterisk stands for itself: one begins a keyword line, two a comment line.
inline inp_LineKind inp_lineKind(const char* line, const char* end) {
  const char* p = inp_skipBlanks(line, end);
  if (p == end || *p != '*') return inp_LineKind::Data;
  return p + 1 != end && p[1] == '*' ? inp_LineKind::Comment : inp_LineKind::Keyword;
}
