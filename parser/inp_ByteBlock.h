#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__) || defined(_M_X64)
#define INP_SSE2 1
#include <emmintrin.h>
#endif

// Sixty-four bytes of text looked at together: one bit per byte.
struct inp_ByteBlock {
  std::uint64_t stars; // asterisks
  std::uint64_t lineFeeds;
  std::uint64_t high; // bytes above 127
};

inline constexpr std::ptrdiff_t inp_byteBlockSize = 64;

// What is gathered over many blocks.
class inp_ByteCount {
public:
  long long LineFeeds() const { return m_lineFeeds; }
  void AddLineFeeds(long long count) { m_lineFeeds += count; }
  bool HasZero() const { return m_zero; }
  void Zero(bool found) { m_zero = m_zero || found; }

private:
  long long m_lineFeeds = 0;
  bool m_zero = false;
};

#ifdef INP_SSE2

inline std::uint64_t inp_maskOf(__m128i a, __m128i b, __m128i c, __m128i d) {
  const auto bits = [](__m128i v) { return static_cast<std::uint64_t>(_mm_movemask_epi8(v)); };
  return bits(a) | bits(b) << 16 | bits(c) << 32 | bits(d) << 48;
}

inline inp_ByteBlock inp_lookAtBlock(const char* p) {
  const auto* at = reinterpret_cast<const __m128i*>(p);
  const __m128i a = _mm_loadu_si128(at), b = _mm_loadu_si128(at + 1);
  const __m128i c = _mm_loadu_si128(at + 2), d = _mm_loadu_si128(at + 3);
  const auto equal = [&](char byte) {
    const __m128i v = _mm_set1_epi8(byte);
    return inp_maskOf(_mm_cmpeq_epi8(a, v), _mm_cmpeq_epi8(b, v), _mm_cmpeq_epi8(c, v),
                      _mm_cmpeq_epi8(d, v));
  };
  return {equal('*'), equal('\n'), inp_maskOf(a, b, c, d)};
}

// Goes on to the first block with an asterisk or a byte above 127, counting on the way; such a
// block is not counted, but for its zero bytes. Stops where less than a block is left.
inline const char* inp_skipPlainBlocks(const char* p, const char* end, inp_ByteCount& count) {
  const __m128i star = _mm_set1_epi8('*');
  const __m128i feed = _mm_set1_epi8('\n');
  const __m128i zero = _mm_setzero_si128();
  __m128i least = _mm_set1_epi8(-1); // 255: the unsigned minimum of all bytes
  bool plain = true;
  while (plain && end - p >= inp_byteBlockSize) {
    // Line feeds are counted per byte column, which holds 255 of them.
    const std::ptrdiff_t blocks = std::min<std::ptrdiff_t>((end - p) / inp_byteBlockSize, 63);
    const char* const stop = p + blocks * inp_byteBlockSize;
    __m128i feeds = zero;
    for (; p != stop; p += inp_byteBlockSize) {
      const auto* at = reinterpret_cast<const __m128i*>(p);
      const __m128i a = _mm_loadu_si128(at), b = _mm_loadu_si128(at + 1);
      const __m128i c = _mm_loadu_si128(at + 2), d = _mm_loadu_si128(at + 3);
      const __m128i stars =
          _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(a, star), _mm_cmpeq_epi8(b, star)),
                       _mm_or_si128(_mm_cmpeq_epi8(c, star), _mm_cmpeq_epi8(d, star)));
      const __m128i any = _mm_or_si128(_mm_or_si128(a, b), _mm_or_si128(c, d));
      least = _mm_min_epu8(least, _mm_min_epu8(_mm_min_epu8(a, b), _mm_min_epu8(c, d)));
      plain = _mm_movemask_epi8(_mm_or_si128(stars, any)) == 0;
      if (!plain) break;
      feeds = _mm_sub_epi8(feeds, _mm_cmpeq_epi8(a, feed));
      feeds = _mm_sub_epi8(feeds, _mm_cmpeq_epi8(b, feed));
      feeds = _mm_sub_epi8(feeds, _mm_cmpeq_epi8(c, feed));
      feeds = _mm_sub_epi8(feeds, _mm_cmpeq_epi8(d, feed));
    }
    const __m128i sums = _mm_sad_epu8(feeds, zero);
    count.AddLineFeeds(_mm_extract_epi16(sums, 0) + _mm_extract_epi16(sums, 4));
  }
  count.Zero(_mm_movemask_epi8(_mm_cmpeq_epi8(least, zero)) != 0);
  return p;
}

#else

inline inp_ByteBlock inp_lookAtBlock(const char* p) {
  inp_ByteBlock block{0, 0, 0};
  for (int i = 0; i < inp_byteBlockSize; ++i) {
    block.stars |= static_cast<std::uint64_t>(p[i] == '*') << i;
    block.lineFeeds |= static_cast<std::uint64_t>(p[i] == '\n') << i;
    block.high |= static_cast<std::uint64_t>(static_cast<unsigned char>(p[i]) >> 7) << i;
  }
  return block;
}

// Loops over bytes that compilers turn into vector code of their machine.
inline const char* inp_skipPlainBlocks(const char* p, const char* end, inp_ByteCount& count) {
  for (; end - p >= inp_byteBlockSize; p += inp_byteBlockSize) {
    unsigned char feeds = 0, odd = 0, zeros = 0;
    for (int i = 0; i < inp_byteBlockSize; ++i) {
      const auto byte = static_cast<unsigned char>(p[i]);
      feeds = static_cast<unsigned char>(feeds + (byte == '\n'));
      odd = static_cast<unsigned char>(odd | (byte == '*') | (byte >> 7));
      zeros = static_cast<unsigned char>(zeros | (byte == 0));
    }
    count.Zero(zeros != 0);
    if (odd) break;
    count.AddLineFeeds(feeds);
  }
  return p;
}

#endif
