#include "parser/inp_Structure.h"
#include "base/utl_BlockSize.h"
#include "base/utl_Threads.h"
#include "parser/inp_ByteBlock.h"
#include "parser/inp_TextLines.h"
#include <algorithm>
#include <bit>

namespace {

constexpr std::size_t usualPiece = 4 * 1024 * 1024; // texts of less than two are read in one go

// The pass over one piece of a text. Lines and comments of its marks count from the piece's start.
class PieceScan {
public:
  PieceScan(const char* textBegin, const char* textEnd, const char* begin, const char* end)
      : m_textBegin(textBegin), m_textEnd(textEnd), m_begin(begin), m_end(end) {}

  inp_Structure Run() {
    const char* p = m_begin;
    while (m_end - p >= inp_byteBlockSize) {
      p = inp_skipPlainBlocks(p, m_end, m_count);
      if (m_end - p < inp_byteBlockSize) break;
      TakeBlock(inp_lookAtBlock(p), p);
      p += inp_byteBlockSize;
    }
    if (p != m_end) TakeTail(p);
    m_found.lines = m_count.LineFeeds();
    if (m_count.HasZero())
      m_found.nul = static_cast<const char*>(
          std::memchr(m_begin, 0, static_cast<std::size_t>(m_end - m_begin)));
    return std::move(m_found);
  }

private:
  void TakeTail(const char* p) {
    char block[inp_byteBlockSize];
    const auto length = static_cast<std::size_t>(m_end - p);
    std::memset(block, ' ', sizeof block);
    std::memcpy(block, p, length);
    m_count.Zero(std::memchr(block, 0, length) != nullptr);
    TakeBlock(inp_lookAtBlock(block), p);
  }

  void TakeBlock(const inp_ByteBlock& block, const char* p) {
    std::uint64_t stars = block.stars;
    std::uint64_t high = block.high;
    while (stars) {
      const int bit = std::countr_zero(stars);
      stars &= stars - 1;
      const char* const star = p + bit;
      if (!BeginsLine(star)) continue;
      if (star + 1 != m_textEnd && star[1] == '*') {
        ++m_found.comments;
        continue;
      }
      const std::uint64_t before = (std::uint64_t{1} << bit) - 1;
      if (high & before) NoteHigh();
      high &= ~before;
      const long long line = m_count.LineFeeds() + std::popcount(block.lineFeeds & before);
      m_found.marks.push_back({star, line, m_found.comments, true});
    }
    if (high) NoteHigh();
    m_count.AddLineFeeds(std::popcount(block.lineFeeds));
  }

  bool BeginsLine(const char* star) const {
    while (star != m_textBegin && inp_isBlank(star[-1])) --star;
    return star == m_textBegin || star[-1] == '\n';
  }

  void NoteHigh() { (m_found.marks.empty() ? m_found.ascii : m_found.marks.back().ascii) = false; }

  const char* const m_textBegin;
  const char* const m_textEnd;
  const char* const m_begin;
  const char* const m_end;
  inp_ByteCount m_count;
  inp_Structure m_found;
};

void append(inp_Structure& whole, inp_Structure& piece) {
  if (!piece.ascii) (whole.marks.empty() ? whole.ascii : whole.marks.back().ascii) = false;
  for (inp_KeywordMark& mark : piece.marks) {
    mark.line += whole.lines;
    mark.commentsBefore += whole.comments;
  }
  whole.marks.insert(whole.marks.end(), piece.marks.begin(), piece.marks.end());
  whole.lines += piece.lines;
  whole.comments += piece.comments;
  if (!whole.nul) whole.nul = piece.nul;
}

cow_List<inp_Structure> scanPieces(const inp_DeckText& text, std::size_t pieceSize) {
  const std::size_t count = (text.Size() + pieceSize - 1) / pieceSize;
  cow_List<inp_Structure> pieces(count);
  utl_parallelFor(count, [&](std::size_t i) {
    const char* const begin = text.Begin() + i * pieceSize;
    const char* const end = i + 1 == count ? text.End() : begin + pieceSize;
    pieces[i] = PieceScan(text.Begin(), text.End(), begin, end).Run();
    text.Release(begin, end);
  });
  return pieces;
}

inp_Structure findInPieces(const inp_DeckText& text, std::size_t pieceSize) {
  cow_List<inp_Structure> pieces = scanPieces(text, pieceSize);
  cow_List<long long> lineFeeds;
  std::size_t marks = 0;
  for (const inp_Structure& piece : pieces) {
    lineFeeds.push_back(piece.lines);
    marks += piece.marks.size();
  }
  inp_UnreadTextFinder unread(text, static_cast<std::ptrdiff_t>(pieceSize), lineFeeds);
  inp_Structure whole;
  whole.marks.reserve(marks);
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    unread.Look(i, whole.lines, whole.comments);
    append(whole, pieces[i]);
    pieces[i].marks = {};
  }
  whole.unread = unread.Found();
  return whole;
}

} // namespace

inp_Structure inp_findStructure(const inp_DeckText& text) {
  const char* const begin = text.Begin();
  const char* const end = text.End();
  const std::size_t pieceSize = utl_blockSize(usualPiece);
  inp_Structure found = text.Size() < 2 * pieceSize ? PieceScan(begin, end, begin, end).Run()
                                                    : findInPieces(text, pieceSize);
  if (begin != end && end[-1] != '\n') ++found.lines;
  return found;
}
