#pragma once

// Single fields in the inner loop of the bulk decode: each is converted from the bytes in front of
// its separator, without a branch that depends on how long it is. The functions named fast… answer
// false for every field that is not of the plain form they know, and leave it to the general
// readers.

#include "base/utl_Number.h"
#include "parser/inp_ByteBlock.h"
#include <bit>
#include <cstdint>

// The bytes in front of a field that its conversion may load.
inline constexpr std::ptrdiff_t inp_fieldReach = 16;

// Blanks and a carriage return behind the number.
inline const char* inp_trimFieldEnd(const char* begin, const char* end) {
  while (end != begin && (end[-1] == ' ' || end[-1] == '\r')) --end;
  return end;
}

// The value of eight digits, the first one in the lowest byte, each 0 to 9.
inline std::uint32_t inp_eightDigitValue(std::uint64_t digits) {
  digits = digits * 10 + (digits >> 8);
  constexpr std::uint64_t mask = 0x000000FF000000FF;
  constexpr std::uint64_t high = 100 + (std::uint64_t{1000000} << 32);
  constexpr std::uint64_t low = 1 + (std::uint64_t{10000} << 32);
  return static_cast<std::uint32_t>(((digits & mask) * high + ((digits >> 16) & mask) * low) >> 32);
}

// An integer of at most eight digits without a sign, blanks in front. Loads inp_fieldReach bytes
// in front of `end`.
inline bool inp_fastSmallInt(const char* begin, const char* end, int& value) {
  constexpr std::uint64_t blanks = 0x2020202020202020;
  constexpr std::uint64_t bit4 = 0x1010101010101010; // set in a blank once '0' is taken off
  end = inp_trimFieldEnd(begin, end);
  if (end - begin > 8) {
    while (*begin == ' ' && end - begin > 8) ++begin;
    if (end - begin > 8) return false;
  }
  if (end == begin) return false;
  std::uint64_t text;
  std::memcpy(&text, end - 8, 8);
  const std::uint64_t field = ~std::uint64_t{0} << (64 - 8 * (end - begin));
  std::uint64_t digits = ((text & field) | (blanks & ~field)) ^ utl_eightZeros;
  const std::uint64_t number = ~std::uint64_t{0} << (std::countr_zero(~digits & bit4) & 0x38);
  if ((~digits & bit4) == 0 || ((digits ^ bit4) & ~number) != 0) return false;
  digits &= number;
  constexpr std::uint64_t sixes = 0x0606060606060606;
  if (((digits | (digits + sixes)) & 0xF0F0F0F0F0F0F0F0) != 0) return false;
  value = static_cast<int>(inp_eightDigitValue(digits));
  return true;
}

#ifdef INP_SSE2

// 16 bytes 0xFF, then 16 bytes 0, loaded from some place on.
alignas(64) inline constexpr std::uint8_t inp_slidingMask[48] = {
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0,    0,    0,    0,    0,    0};

inline __m128i inp_firstBytes(unsigned count) { // 0xFF in the first `count` bytes, at most 16
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(inp_slidingMask + 16 - count));
}

// The value of sixteen digits, the first one in the lowest byte.
inline std::uint64_t inp_sixteenDigitValue(__m128i digits) {
  const __m128i first = _mm_and_si128(digits, _mm_set1_epi16(0xFF));
  const __m128i pairs =
      _mm_add_epi16(_mm_mullo_epi16(first, _mm_set1_epi16(10)), _mm_srli_epi16(digits, 8));
  const __m128i fours = _mm_madd_epi16(pairs, _mm_set1_epi32(100 | (1 << 16)));
  const __m128i packed = _mm_packs_epi32(fours, fours);
  const __m128i eights = _mm_madd_epi16(packed, _mm_set1_epi32(10000 | (1 << 16)));
  const auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
  return (both & 0xFFFFFFFF) * 100000000 + (both >> 32);
}

// A number without an exponent, taken apart: (minus) mantissa / 10^decimals.
struct inp_Decimal {
  std::uint64_t mantissa;
  int decimals; // digits behind the point
  unsigned minus;
  bool hasPoint;
};

// At most 16 characters, blanks in front. Loads inp_fieldReach bytes in front of `end`.
inline bool inp_fastTakeApart(const char* begin, const char* end, inp_Decimal& number) {
  if (end - begin > 16) {
    while (*begin == ' ' && end - begin > 16) ++begin;
    if (end - begin > 16) return false;
  }
  const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(end - 16));
  const __m128i digits = _mm_sub_epi8(text, _mm_set1_epi8('0'));
  const __m128i isDigit = _mm_cmpeq_epi8(_mm_min_epu8(digits, _mm_set1_epi8(9)), digits);
  const auto bits = [](__m128i v) { return static_cast<unsigned>(_mm_movemask_epi8(v)); };
  const unsigned field = 0xFFFF0000u >> (end - begin) & 0xFFFF;
  const unsigned digitBits = bits(isDigit);
  const unsigned blankBits = bits(_mm_cmpeq_epi8(text, _mm_set1_epi8(' ')));
  const unsigned shown = field & ~blankBits;
  const auto from = static_cast<unsigned>(std::countr_zero(shown | 0x10000));
  const unsigned minus = bits(_mm_cmpeq_epi8(text, _mm_set1_epi8('-'))) >> from & 1;
  const unsigned start = from + minus;
  const unsigned place = 0xFFFFu << start & 0xFFFF;
  const unsigned point = bits(_mm_cmpeq_epi8(text, _mm_set1_epi8('.'))) & place;
  const unsigned figures = place & ~point;
  if ((figures & ~digitBits) != 0 || figures == 0 || (point & (point - 1)) != 0) return false;

  // The digits in front of the point move up by one byte.
  const auto at = static_cast<unsigned>(std::countr_zero(point | 0x8000)); // 15: none behind it
  const __m128i kept = _mm_andnot_si128(inp_firstBytes(start), digits);
  const __m128i head = inp_firstBytes(point ? at + 1 : 0);
  const __m128i joined =
      _mm_or_si128(_mm_and_si128(head, _mm_slli_si128(kept, 1)), _mm_andnot_si128(head, kept));
  number = {inp_sixteenDigitValue(joined), 15 - static_cast<int>(at), minus, point != 0};
  return true;
}

// Mantissa and power of ten are both exact doubles, so the one operation rounds correctly.
inline constexpr std::uint64_t inp_exactMantissa = std::uint64_t{1} << 53;
inline constexpr int inp_exactPower = 22;

inline double inp_signed(double magnitude, unsigned minus) {
  return std::bit_cast<double>(std::bit_cast<std::uint64_t>(magnitude) | std::uint64_t{minus}
                                                                             << 63);
}

// An exponent of a letter, a sign and two digits, as "%e" prints it.
inline bool inp_fastScientific(const char* begin, const char* end, double& value) {
  if (end - begin < 5) return false;
  const char letter = static_cast<char>(end[-4] | 0x20);
  const auto tens = static_cast<unsigned>(end[-2] - '0');
  const auto ones = static_cast<unsigned>(end[-1] - '0');
  const bool known = (letter == 'e' || letter == 'd') && (end[-3] == '+' || end[-3] == '-') &&
                     tens < 10 && ones < 10;
  inp_Decimal number;
  if (!known || !inp_fastTakeApart(begin, end - 4, number)) return false;
  const int exponent = static_cast<int>(10 * tens + ones);
  const int power = (end[-3] == '-' ? -exponent : exponent) - number.decimals;
  if (number.mantissa > inp_exactMantissa || power > inp_exactPower || power < -inp_exactPower)
    return false;
  const auto mantissa = static_cast<double>(static_cast<std::int64_t>(number.mantissa));
  value =
      inp_signed(power < 0 ? mantissa / utl_powersOf10[-power] : mantissa * utl_powersOf10[power],
                 number.minus);
  return true;
}

// A decimal of at most 16 characters, or a mantissa of as many with a plain exponent. Loads
// inp_fieldReach bytes in front of `end`.
inline bool inp_fastReal(const char* begin, const char* end, double& value) {
  end = inp_trimFieldEnd(begin, end);
  inp_Decimal number;
  if (!inp_fastTakeApart(begin, end, number)) return inp_fastScientific(begin, end, value);
  if (number.mantissa > inp_exactMantissa) return false;
  const double magnitude = static_cast<double>(static_cast<std::int64_t>(number.mantissa)) /
                           utl_powersOf10[number.decimals];
  // "-0" is the integer nought, which has no sign; "-0." keeps its own.
  value = inp_signed(magnitude, number.minus & (number.hasPoint || number.mantissa != 0));
  return true;
}

// An integer of at most 16 characters.
inline bool inp_fastLongInt(const char* begin, const char* end, std::int64_t& value) {
  inp_Decimal number;
  if (!inp_fastTakeApart(begin, inp_trimFieldEnd(begin, end), number) || number.hasPoint)
    return false;
  const auto magnitude = static_cast<std::int64_t>(number.mantissa);
  value = number.minus ? -magnitude : magnitude;
  return true;
}

#else

inline bool inp_fastReal(const char*, const char*, double&) {
  return false;
}
inline bool inp_fastLongInt(const char*, const char*, std::int64_t&) {
  return false;
}

#endif
