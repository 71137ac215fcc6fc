#pragma once

#include "parser/inp_DataPieces.h"
#include "parser/inp_FieldScan.h"
#include "parser/inp_StretchFinder.h"
#include "parser/inp_TextLines.h"

// Feeds the lines of a piece with their separators to a decoder, so that a decoder's loop has no
// special cases: every line ends in a line feed, and the inp_fieldReach bytes in front of it may be
// loaded.
class inp_LineScan {
public:
  // Calls take(stretch) for stretches of whole lines. Returning false ends it.
  template <class Take> bool Run(const inp_DataPiece& piece, Take&& take) {
    for (const inp_TextRange& range : piece)
      if (!RunRange(range, take)) return false;
    return true;
  }

private:
  template <class Take> bool RunRange(const inp_TextRange& range, Take& take) {
    const char* begin = range.begin;
    const char* const end = range.end;
    while (begin != end && begin - range.text->Begin() < inp_fieldReach) {
      const char* const feed = inp_lineFeed(begin, end);
      if (!RunCopy({begin, static_cast<std::size_t>(feed - begin)}, take)) return false;
      begin = feed == end ? end : feed + 1;
    }
    const char* tail = end;
    while (tail != begin && tail[-1] != '\n') --tail;
    if (!RunLines(begin, tail, take)) return false;
    return tail == end || RunCopy({tail, static_cast<std::size_t>(end - tail)}, take);
  }

  // A line at the very start or end of its text, copied to where there is room around it.
  template <class Take> bool RunCopy(std::string_view line, Take& take) {
    m_copy.assign(inp_fieldReach, '\n');
    m_copy += line;
    m_copy += '\n';
    return RunLines(m_copy.data() + inp_fieldReach, m_copy.data() + m_copy.size(), take);
  }

  template <class Take> bool RunLines(const char* begin, const char* end, Take& take) {
    std::ptrdiff_t size = inp_StretchFinder::usualSize;
    while (begin != end) {
      size = end - begin < size ? end - begin : size;
      const inp_Stretch stretch = m_finder.Find(begin, begin + size);
      if (stretch.lines == 0) { // a line that is longer than all this
        size *= 2;
        continue;
      }
      if (!take(stretch)) return false;
      begin += stretch.feeds[stretch.lines - 1] + 1;
      size = inp_StretchFinder::usualSize;
    }
    return true;
  }

  inp_StretchFinder m_finder;
  cow_String m_copy;
};
