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

// Behind the quoted text that opens at `quote`, up to the next one on its line; a single one
// (5" pipe) is a plain character.
inline const char* inp_behindQuoted(const char* quote, const char* lineEnd) {
  const void* close = std::memchr(quote + 1, '"', static_cast<std::size_t>(lineEnd - quote) - 1);
  return close ? static_cast<const char*>(close) + 1 : quote + 1;
}

// Commas that stand in quotes and so part no fields.
inline long long inp_quotedCommas(const char* line, const char* lineEnd) {
  long long commas = 0;
  for (const char* p = line; p != lineEnd;) {
    const void* quote = std::memchr(p, '"', static_cast<std::size_t>(lineEnd - p));
    if (!quote) break;
    const char* const open = static_cast<const char*>(quote);
    p = inp_behindQuoted(open, lineEnd);
    for (const char* q = open; q != p; ++q) commas += *q == ',';
  }
  return commas;
}

enum class inp_LineKind : unsigned char { Data, Comment, Keyword };

// The asterisk stands for itself: one begins a keyword line, two a comment line.
inline inp_LineKind inp_lineKind(const char* line, const char* end) {
  const char* p = inp_skipBlanks(line, end);
  if (p == end || *p != '*') return inp_LineKind::Data;
  return p + 1 != end && p[1] == '*' ? inp_LineKind::Comment : inp_LineKind::Keyword;
}
