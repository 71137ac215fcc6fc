#include "parser/inp_UnreadText.h"
#include "base/utl_Assert.h"
#include "parser/inp_TextLines.h"
#include <algorithm>

namespace {

// The first byte that is no blank, nor a line feed when they count as blanks.
template <bool feedsToo> const char* skipBlankText(const char* p, const char* end) {
  constexpr std::ptrdiff_t block = 64; // a loop without an early end, which compilers make vectors
  const auto isBlank = [](char c) { return inp_isBlank(c) || (feedsToo && c == '\n'); };
  for (; end - p >= block; p += block) {
    int inked = 0;
    for (int i = 0; i < block; ++i) inked |= isBlank(p[i]) ? 0 : 1;
    if (inked) break;
  }
  while (p != end && isBlank(*p)) ++p;
  return p;
}

} // namespace

inp_UnreadTextFinder::inp_UnreadTextFinder(const inp_DeckText& text, std::ptrdiff_t pieceSize,
                                           std::span<const long long> lineFeeds)
    : m_text(text), m_pieceSize(pieceSize), m_lineFeeds(lineFeeds) {
  utl_ASSERT(2 * pieceSize <= inp_longestDataLine);
}

const char* inp_UnreadTextFinder::PieceBegin(std::size_t piece) const {
  return m_text.Begin() + static_cast<std::ptrdiff_t>(piece) * m_pieceSize;
}

const char* inp_UnreadTextFinder::PieceEnd(std::size_t piece) const {
  return piece + 1 >= m_lineFeeds.size() ? m_text.End() : PieceBegin(piece + 1);
}

bool inp_UnreadTextFinder::IsBlank(std::size_t piece) const {
  const char* const begin = PieceBegin(piece);
  const char* const end = PieceEnd(piece);
  if (skipBlankText<true>(begin, end) != end) return false;
  m_text.Release(begin, end);
  return true;
}

// Of a line; what is read on the way leaves memory.
const char* inp_UnreadTextFinder::FirstInk(const char* begin, const char* end) const {
  for (const char* p = begin;; p += m_pieceSize) {
    const char* const stop = end - p > m_pieceSize ? p + m_pieceSize : end;
    const char* const ink = skipBlankText<false>(p, stop);
    if (ink != stop || stop == end) return ink;
    m_text.Release(p, stop);
  }
}

void inp_UnreadTextFinder::Look(std::size_t piece, long long linesBefore,
                                long long commentsBefore) {
  if (piece < m_next) return;
  inp_UnreadText found;
  found.line = linesBefore;
  found.commentsBefore = commentsBefore;
  if (m_lineFeeds[piece] == 0)
    LookAtLine(piece, found);
  else if (IsBlank(piece))
    LookAtBlanks(piece, found);
}

// The line that covers the piece, and any behind it without a line feed.
void inp_UnreadTextFinder::LookAtLine(std::size_t piece, inp_UnreadText found) {
  const char* const covered = PieceBegin(piece);
  m_next = piece;
  while (m_next != m_lineFeeds.size() && m_lineFeeds[m_next] == 0) ++m_next;
  const bool isLast = m_next == m_lineFeeds.size();
  found.begin = inp_lineBegin(covered, m_text.Begin());
  const char* const feed = isLast ? m_text.End() : inp_lineFeed(PieceBegin(m_next), m_text.End());
  found.size = feed - found.begin;
  if (found.size <= inp_longestDataLine) return;
  found.end = isLast ? feed : feed + 1;
  found.lines = 1;
  const char* const ink = FirstInk(found.begin, feed);
  const inp_LineKind kind = inp_lineKind(ink, feed);
  if (kind == inp_LineKind::Keyword) return;
  if (kind == inp_LineKind::Comment) {
    found.kind = inp_UnreadText::Kind::LongComment;
    found.comments = 1;
    if (ink < covered) --found.commentsBefore; // it is counted with the piece it begins in
  }
  m_found.push_back(found);
}

// The blank lines that begin in the piece, and in all blank ones behind it.
void inp_UnreadTextFinder::LookAtBlanks(std::size_t piece, inp_UnreadText found) {
  m_next = piece;
  for (; m_next != m_lineFeeds.size() && m_lineFeeds[m_next] > 0 && IsBlank(m_next); ++m_next)
    found.lines += m_lineFeeds[m_next];
  found.kind = inp_UnreadText::Kind::BlankLines;
  found.begin = PieceBegin(piece);
  found.end = inp_lineBegin(PieceEnd(m_next - 1), m_text.Begin());
  if (inp_lineBegin(found.begin, m_text.Begin()) != found.begin) { // the line may hold something
    found.begin = inp_lineFeed(found.begin, m_text.End()) + 1;
    ++found.line;
    --found.lines;
  }
  // What is nearly as long is told or not by where it stands, and does no harm either way.
  found.size = found.end - found.begin - 1;
  if (found.size > inp_longestDataLine) m_found.push_back(found);
}
