#pragma once

#include "base/utl_Buffer.h"
#include "parser/inp_DataPieces.h"
#include "parser/inp_FieldScan.h"
#include "parser/inp_TextLines.h"

// Feeds the lines of a piece with their separators to a decoder, so that a decoder's loop has no
// special cases: every line ends in a line feed, and the inp_fieldReach bytes in front of it may be
// loaded.
class inp_LineScan {
public:
  // Calls take(base, places, count) for stretches of whole lines: the separators of the stretch are
  // base[places[0]] … base[places[count - 1]], the last one a line feed. Returning false ends it.
  template <class Take> bool Run(const inp_DataPiece& piece, Take&& take) {
    for (const inp_TextRange& range : piece)
      if (!RunRange(range, take)) return false;
    return true;
  }

private:
  static constexpr std::ptrdiff_t usualStretch = 8 * 1024;

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
    std::ptrdiff_t stretch = usualStretch;
    while (begin != end) {
      stretch = end - begin < stretch ? end - begin : stretch;
      m_places.Resize(static_cast<std::size_t>(stretch) + 64);
      std::size_t count = inp_findSeparators(begin, begin + stretch, m_places.Data());
      while (count > 0 && begin[m_places[count - 1]] != '\n') --count;
      if (count == 0) { // a line that is longer than all this
        stretch *= 2;
        continue;
      }
      if (!take(begin, static_cast<const std::uint32_t*>(m_places.Data()), count)) return false;
      begin += m_places[count - 1] + 1;
      stretch = usualStretch;
    }
    return true;
  }

  utl_Buffer<std::uint32_t> m_places;
  cow_String m_copy;
};
