#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

// The bulk decode's work on many fields at once. Where the machine has the instructions, the fields
// go through four or eight together; what does not fit that, and every other machine, takes them
// one by one with the functions of inp_FieldScan.h. The values are the same to the last bit.

struct inp_SeparatorCount {
  std::size_t all = 0;
  std::size_t feeds = 0; // line feeds among them
};

// Puts down the offsets of separators block by block. In a header to become part of the function
// that finds them, with its instructions.
class inp_SeparatorNotes {
public:
  inp_SeparatorNotes(std::uint32_t* places, std::uint32_t* feeds)
      : m_places(places), m_feeds(feeds), m_place(places), m_feed(feeds) {}

  // A block of 64 bytes, a bit per byte.
  void AddBlock(std::uint32_t offset, std::uint64_t commas, std::uint64_t feeds) {
    m_place = AddBits<8>(commas | feeds, offset, m_place);
    m_feed = AddBits<2>(feeds, offset, m_feed);
  }

  // The bytes [p, end) behind the last block, one by one.
  inp_SeparatorCount AddRest(const char* begin, const char* p, const char* end) {
    for (; p != end; ++p) {
      const auto offset = static_cast<std::uint32_t>(p - begin);
      if (*p == ',' || *p == '\n') *m_place++ = offset;
      if (*p == '\n') *m_feed++ = offset;
    }
    return {static_cast<std::size_t>(m_place - m_places),
            static_cast<std::size_t>(m_feed - m_feeds)};
  }

private:
  // So many as there usually are without asking; the surplus is overwritten.
  template <int usual>
  static std::uint32_t* AddBits(std::uint64_t bits, std::uint32_t offset, std::uint32_t* next) {
    constexpr std::uint64_t never = std::uint64_t{1} << 63; // or it is the bit itself
    const int count = std::popcount(bits);
    for (int i = 0; i < usual; ++i, bits &= bits - 1)
      next[i] = offset + static_cast<std::uint32_t>(std::countr_zero(bits | never));
    for (int i = usual; i < count; ++i, bits &= bits - 1)
      next[i] = offset + static_cast<std::uint32_t>(std::countr_zero(bits));
    return next + count;
  }

  std::uint32_t* const m_places;
  std::uint32_t* const m_feeds;
  std::uint32_t* m_place;
  std::uint32_t* m_feed;
};

// Elements to leave free behind the offsets and values that these functions write.
inline constexpr std::size_t inp_batchRoom = 64;
// Fields that go through together: so many offsets behind a stretch's last one may be looked at.
inline constexpr std::size_t inp_batchFields = 8;

// Whole lines and the offsets of their separators, commas and line feeds; the last one is a line
// feed. The inp_fieldReach bytes in front of the text may be loaded, too.
struct inp_Stretch {
  const char* text = nullptr;
  const std::uint32_t* places = nullptr; // places[-1] + 1 is 0; behind the last one it comes again
  std::size_t count = 0;
  const std::uint32_t* feeds = nullptr; // the offsets of the line feeds alone
  std::size_t lines = 0;

  const char* FieldBegin(std::size_t i) const { return text + std::uint32_t{(places + i)[-1] + 1}; }
  const char* FieldEnd(std::size_t i) const { return text + places[i]; }
};

// Offsets of the separators within [begin, end), in order; both arrays have room for one per byte.
// Quotes mean nothing here.
inp_SeparatorCount inp_findSeparators(const char* begin, const char* end, std::uint32_t* places,
                                      std::uint32_t* feeds);

// The value of every field that inp_fastSmallInt knows, -1 for the others; returns whether there is
// none of those.
bool inp_smallInts(const inp_Stretch& stretch, int* values);

// The next line to take: its first separator and its line feed.
struct inp_LinePlace {
  std::size_t separator = 0;
  std::size_t line = 0;
};

// Takes node lines of a label and two or three decimals of the plainest form, as many as there are
// in a row; returns how many, and moves `at` behind them. It takes none where the machine lacks
// the instructions.
std::size_t inp_takeNodeLines(const inp_Stretch& stretch, inp_LinePlace& at, int* labels,
                              double* coords);
