#pragma once

// Number codecs: deck text to integers and doubles and back. Every path of the reader gives the
// correctly rounded double, every path of the printer the shortest digits that read back to it.

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

static_assert(std::endian::native == std::endian::little, "digits are packed little-endian");

// ---- reading -----------------------------------------------------------------------------------

inline const char* utl_skipBlanks(const char* p, const char* end) {
  while (p != end && (*p == ' ' || *p == '\t')) ++p;
  return p;
}

const char* utl_readLongInt(const char* digits, const char* end, bool negative,
                            std::int64_t& value);
void utl_readDoubleExact(const char* begin, const char* end, double& value);

// Both readers skip leading blanks and tabs, read the longest number that starts there and return
// the place just after it; nothing at or past `end` is looked at. They return null, and leave the
// value alone, when no number starts there. Whether the field ends at the returned place is for the
// caller to see: "12x" reads as 12 and stops at the x.

// An optional sign and digits. Null as well when the number does not fit 64 bits.
inline const char* utl_readInt(const char* p, const char* end, std::int64_t& value) {
  p = utl_skipBlanks(p, end);
  bool negative = false;
  if (p != end && (*p == '-' || *p == '+')) negative = *p++ == '-';
  const char* const first = p;
  std::uint64_t n = 0;
  for (unsigned digit; p != end && (digit = static_cast<unsigned>(*p - '0')) < 10; ++p)
    n = n * 10 + digit;
  if (p == first) return nullptr;
  if (p - first > 18) return utl_readLongInt(first, p, negative, value);
  const auto magnitude = static_cast<std::int64_t>(n);
  value = negative ? -magnitude : magnitude;
  return p;
}

inline constexpr double utl_powersOf10[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                            1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                            1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// Reads the exponent that may follow a mantissa: a letter of eEdD, an optional sign and digits.
// Stops before the letter when no digit follows it.
inline const char* utl_readExponent(const char* p, const char* end, std::int64_t& exponent) {
  const char* q = p;
  if (q == end) return p;
  const char letter = static_cast<char>(*q | 0x20);
  if (letter != 'e' && letter != 'd') return p;
  ++q;
  bool negative = false;
  if (q != end && (*q == '-' || *q == '+')) negative = *q++ == '-';
  const char* const first = q;
  std::int64_t n = 0;
  for (unsigned digit; q != end && (digit = static_cast<unsigned>(*q - '0')) < 10; ++q)
    if (n < 1000000) n = n * 10 + digit; // beyond that only its being huge matters
  if (q == first) return p;
  exponent += negative ? -n : n;
  return q;
}

inline constexpr std::uint64_t utl_intPowersOf10[] = {1,      10,      100,      1000,     10000,
                                                      100000, 1000000, 10000000, 100000000};

// Appends the digits that stand at p, eight at most, to the mantissa; eight bytes can be read
// there. No branch depends on how many they are, which in coordinates changes from field to field.
inline const char* utl_readUpToEightDigits(const char* p, std::uint64_t& mantissa) {
  std::uint64_t bytes;
  std::memcpy(&bytes, p, 8);
  bytes ^= 0x3030303030303030; // digits become 0 to 9
  const std::uint64_t others = ((bytes & 0x7F7F7F7F7F7F7F7F) + 0x7676767676767676) | bytes;
  const int count = std::countr_zero(others & 0x8080808080808080) / 8;
  bytes = count == 0 ? 0 : bytes << (64 - 8 * count); // zeros before the digits, nothing behind
  bytes = bytes * 10 + (bytes >> 8);                  // pairs, in every other byte
  const std::uint64_t upper = (bytes & 0x000000FF000000FF) * (100 + (std::uint64_t{1000000} << 32));
  const std::uint64_t lower =
      ((bytes >> 16) & 0x000000FF000000FF) * (1 + (std::uint64_t{10000} << 32));
  const auto number = static_cast<std::uint32_t>((upper + lower) >> 32);
  mantissa = mantissa * utl_intPowersOf10[count] + number;
  return p + count;
}

// A real as decks write it: "1", "1.", ".5", "+1.5E-3", "1D+5", "1d5". An exponent needs its letter
// ("1+5" stops at the plus); "inf" and "nan" are not numbers. A number too large for a double gives
// an infinity of its sign, so std::isinf(value) is the test for out of range; one too small
// gives the nearest double, at last zero.
inline const char* utl_readDouble(const char* p, const char* end, double& value) {
  p = utl_skipBlanks(p, end);
  const char* const start = p;
  bool negative = false;
  if (p != end && (*p == '-' || *p == '+')) negative = *p++ == '-';

  std::uint64_t mantissa = 0;
  std::int64_t exponent = 0;
  unsigned digit;
  const char* const first = p;
  for (; p != end && (digit = static_cast<unsigned>(*p - '0')) < 10; ++p)
    mantissa = mantissa * 10 + digit;
  std::ptrdiff_t digits = p - first;
  if (p != end && *p == '.') {
    const char* const fraction = ++p;
    if (end - p >= 8) p = utl_readUpToEightDigits(p, mantissa);
    for (; p != end && (digit = static_cast<unsigned>(*p - '0')) < 10; ++p)
      mantissa = mantissa * 10 + digit;
    exponent = fraction - p;
    digits -= exponent;
  }
  if (digits == 0) return nullptr;
  p = utl_readExponent(p, end, exponent);

  // Mantissa and power of ten are both exact doubles, so one operation rounds once.
  constexpr std::uint64_t exactLimit = std::uint64_t{1} << 53;
  if (digits <= 19 && mantissa <= exactLimit && exponent >= -22 && exponent <= 22) {
    const double m = static_cast<double>(mantissa);
    const double magnitude =
        exponent < 0 ? m / utl_powersOf10[-exponent] : m * utl_powersOf10[exponent];
    value = negative ? -magnitude : magnitude;
    return p;
  }
  utl_readDoubleExact(start, p, value);
  return p;
}

enum class utl_FieldKind : std::uint8_t { None, Integer, Double, String };

// One field of a data line, looked at once. `text` is the field without surrounding blanks.
struct utl_Field {
  utl_FieldKind kind = utl_FieldKind::None;
  std::int64_t integer = 0; // kind Integer
  double real = 0;          // kinds Integer and Double; an infinity when out of range
  std::string_view text;

  bool IsNumber() const { return kind == utl_FieldKind::Integer || kind == utl_FieldKind::Double; }
  // A number without a fraction that 64 bits hold, however it is spelled: 3, 3. or 3.0.
  bool IsWhole() const {
    constexpr double most = 9007199254740992.0; // 2^53: beyond it there are no fractions to tell
    return kind == utl_FieldKind::Integer ||
           (kind == utl_FieldKind::Double && real == std::trunc(real) && std::fabs(real) <= most);
  }
  bool IsOutOfRange() const { return std::isinf(real); } // a number too large for a double
};

// Blanks, tabs and carriage returns around the field do not count. An integer beyond 64 bits is a
// double. A number too large for a double is a string, so that whoever wants a number tells of it
// as of a word: no model holds an infinity.
utl_Field utl_classifyField(const char* begin, const char* end);
inline utl_Field utl_classifyField(std::string_view field) {
  return utl_classifyField(field.data(), field.data() + field.size());
}

// ---- printing ----------------------------------------------------------------------------------

// Room to leave at the place a number is printed to; the printers may scribble over all of it.
inline constexpr std::size_t utl_intTextRoom = 24;
inline constexpr std::size_t utl_doubleTextRoom = 32;

// The eight digits of a number below 10^8, one per byte, the first one lowest; no '0' added yet.
inline std::uint64_t utl_eightDigits(std::uint32_t n) {
  const std::uint64_t fours = (n / 10000) | (std::uint64_t{n % 10000} << 32);
  const std::uint64_t hundreds = ((fours * 10486) >> 20) & 0x0000007F0000007F;
  const std::uint64_t twos = hundreds | ((fours - hundreds * 100) << 16);
  const std::uint64_t tens = ((twos * 103) >> 10) & 0x000F000F000F000F;
  return tens | ((twos - tens * 10) << 8);
}

inline constexpr std::uint64_t utl_eightZeros = 0x3030303030303030;

// Prints a number below 10^8 without leading zeros.
inline char* utl_printSmall(char* p, std::uint32_t n) {
  const std::uint64_t digits = utl_eightDigits(n);
  const int leading = std::countr_zero(digits | (std::uint64_t{1} << 56)) & ~7;
  const std::uint64_t text = (digits | utl_eightZeros) >> leading;
  std::memcpy(p, &text, 8);
  return p + 8 - leading / 8;
}

// Prints the eight decimals of a fraction of 10^8 without trailing zeros.
inline char* utl_printFraction(char* p, std::uint32_t n) {
  const std::uint64_t digits = utl_eightDigits(n);
  const std::uint64_t text = digits | utl_eightZeros;
  std::memcpy(p, &text, 8);
  return p + 8 - std::countl_zero(digits) / 8;
}

char* utl_printLargeInt(char* p, std::uint64_t magnitude);

// These print an integer and return the place after it. No terminating null.
inline char* utl_printUnsigned(char* p, std::uint64_t value) {
  if (value < 100000000) return utl_printSmall(p, static_cast<std::uint32_t>(value));
  return utl_printLargeInt(p, value);
}
inline char* utl_printInt(char* p, std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  *p = '-';
  p += value < 0;
  return utl_printUnsigned(p, value < 0 ? 0 - bits : bits);
}

char* utl_printDoubleShortest(char* p, double value);

// Prints a real and returns the place after it. No terminating null.
//
// The digits are the fewest that read back to the same double; they stand in fixed notation unless
// the scientific one is shorter, as std::to_chars has it, except that a real always shows to be
// one and exponents carry no plus and no leading zero: "1.", "-0.25", "100000." is "1e5", "1e-5".
// Decks have no word for values that are not finite: they print as "inf", "-inf" and "nan", which
// no reader takes for a number; whoever may hold such values reports them before printing.
//
// Fast path: the text of n / 10^8 with n below 10^15. The division rounds correctly, so when it
// gives the value the text reads back to it; and no two decimals of at most 15 digits share a
// double, so once its trailing zeros are gone there is no shorter one.
inline char* utl_printDouble(char* p, double value) {
  const double magnitude = std::fabs(value);
  if (!(magnitude < 1e7 && (magnitude >= 1e-3 || magnitude == 0)))
    return utl_printDoubleShortest(p, value);
  // NOLINTNEXTLINE(bugprone-incorrect-roundings): the division below rejects a wrong guess
  const auto scaled = static_cast<std::int64_t>(magnitude * 1e8 + 0.5);
  if (static_cast<double>(scaled) / 1e8 != magnitude) return utl_printDoubleShortest(p, value);
  const auto whole = static_cast<std::uint32_t>(scaled / 100000000);
  const auto fraction = static_cast<std::uint32_t>(scaled % 100000000);
  if (fraction == 0 && whole != 0 && whole % 100000 == 0) return utl_printDoubleShortest(p, value);
  *p = '-';
  p += std::signbit(value);
  p = utl_printSmall(p, whole);
  *p++ = '.';
  return utl_printFraction(p, fraction);
}
