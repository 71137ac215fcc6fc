#pragma once

#include "parser/inp_DeckText.h"
#include <span>

// Machine-written decks put whole sets on one line, of some megabytes at most. A longer line is
// damage, or no deck at all; since a line is split as a whole, its fields take eight times its
// length in memory.
inline constexpr std::ptrdiff_t inp_longestDataLine = 8 * 1024 * 1024;

// Whole lines between keywords that are left out, so that gigabytes of nothing cost no more than
// the look at them.
struct inp_UnreadText {
  enum class Kind : unsigned char {
    LongLine,    // a data line beyond the limit
    LongComment, // a comment line as long
    BlankLines,  // as much text of nothing but blank lines
  };
  Kind kind = Kind::LongLine;
  const char* begin = nullptr;
  const char* end = nullptr; // behind the last one's line feed
  long long line = 0;        // of the text, from 0
  long long lines = 0;
  long long commentsBefore = 0;
  long long comments = 0;  // among the lines
  std::ptrdiff_t size = 0; // without the last line feed
};

// Finds it in a text whose pieces of equal size have been looked at: what is so long covers whole
// pieces, and these tell by their counts of line feeds.
class inp_UnreadTextFinder {
public:
  // Half of what is too long, at most. lineFeeds: of each piece; the last one may be short.
  inp_UnreadTextFinder(const inp_DeckText& text, std::ptrdiff_t pieceSize,
                       std::span<const long long> lineFeeds);

  // To be called for all pieces in turn, with the counts of all pieces before it.
  void Look(std::size_t piece, long long linesBefore, long long commentsBefore);
  cow_List<inp_UnreadText> Found() { return std::move(m_found); }

private:
  const char* PieceBegin(std::size_t piece) const;
  const char* PieceEnd(std::size_t piece) const;
  bool IsBlank(std::size_t piece) const;
  const char* FirstInk(const char* begin, const char* end) const;
  void LookAtLine(std::size_t piece, inp_UnreadText found);
  void LookAtBlanks(std::size_t piece, inp_UnreadText found);

  const inp_DeckText& m_text;
  std::ptrdiff_t m_pieceSize;
  std::span<const long long> m_lineFeeds;
  std::size_t m_next = 0; // the first piece behind those looked at
  cow_List<inp_UnreadText> m_found;
};
