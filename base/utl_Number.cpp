#include "base/utl_Number.h"
#include "base/utl_Assert.h"

#include <algorithm>
#include <charconv>
#include <fast_float/fast_float.h>
#include <limits>
#include <string>

const char* utl_readLongInt(const char* digits, const char* end, bool negative,
                            std::int64_t& value) {
  constexpr auto highest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  const std::uint64_t limit = highest + (negative ? 1 : 0);
  std::uint64_t n = 0;
  for (const char* p = digits; p != end; ++p) {
    const auto digit = static_cast<unsigned>(*p - '0');
    if (n > (limit - digit) / 10) return nullptr;
    n = n * 10 + digit;
  }
  value = static_cast<std::int64_t>(negative ? 0 - n : n);
  return end;
}

namespace {

bool isExponentD(char c) {
  return c == 'd' || c == 'D';
}

double readC(const char* begin, const char* end) {
  double value = 0;
  const auto result = fast_float::from_chars(begin, end, value);
  utl_ASSERT(result.ptr == end);
  return value;
}

} // namespace

// [begin, end) is known to spell a number; what is left is to make it the spelling of C.
void utl_readDoubleExact(const char* begin, const char* end, double& value) {
  if (*begin == '+') ++begin;
  const char* letter = std::find_if(begin, end, isExponentD);
  if (letter == end) {
    value = readC(begin, end);
    return;
  }
  char text[128];
  const auto length = static_cast<std::size_t>(end - begin);
  const auto at = static_cast<std::size_t>(letter - begin);
  if (length <= sizeof text) {
    std::memcpy(text, begin, length);
    text[at] = 'e';
    value = readC(text, text + length);
    return;
  }
  std::string longText(begin, length);
  longText[at] = 'e';
  value = readC(longText.data(), longText.data() + length);
}

utl_Field utl_classifyField(const char* begin, const char* end) {
  const auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
  while (begin != end && isSpace(*begin)) ++begin;
  while (begin != end && isSpace(end[-1])) --end;
  utl_Field field;
  field.text = {begin, static_cast<std::size_t>(end - begin)};
  if (begin == end) return field;
  if (utl_readInt(begin, end, field.integer) == end) {
    field.kind = utl_FieldKind::Integer;
    field.real = static_cast<double>(field.integer);
    return field;
  }
  field.integer = 0;
  if (utl_readDouble(begin, end, field.real) == end) {
    field.kind = std::isinf(field.real) ? utl_FieldKind::String : utl_FieldKind::Double;
    return field;
  }
  field.real = 0;
  field.kind = utl_FieldKind::String;
  return field;
}

char* utl_printLargeInt(char* p, std::uint64_t magnitude) {
  constexpr std::uint64_t block = 100000000;
  if (magnitude >= block * block) {
    p = utl_printSmall(p, static_cast<std::uint32_t>(magnitude / (block * block)));
    magnitude %= block * block;
    const std::uint64_t high =
        utl_eightDigits(static_cast<std::uint32_t>(magnitude / block)) | utl_eightZeros;
    std::memcpy(p, &high, 8);
    p += 8;
  } else {
    p = utl_printSmall(p, static_cast<std::uint32_t>(magnitude / block));
  }
  const std::uint64_t low =
      utl_eightDigits(static_cast<std::uint32_t>(magnitude % block)) | utl_eightZeros;
  std::memcpy(p, &low, 8);
  return p + 8;
}

namespace {

// The fast path of utl_printDouble once more, with as many decimals as 15 digits leave, at most 16.
// Null when they are not enough, or not needed.
char* printUpTo15Digits(char* p, double value) {
  const double magnitude = std::fabs(value);
  if (!(magnitude >= 1e-3 && magnitude < 1e6)) return nullptr;
  int decimals = 16;
  while (magnitude * utl_powersOf10[decimals] >= 1e15) --decimals;
  const double scale = utl_powersOf10[decimals];
  // NOLINTNEXTLINE(bugprone-incorrect-roundings): the division below rejects a wrong guess
  const auto scaled = static_cast<std::uint64_t>(magnitude * scale + 0.5);
  if (static_cast<double>(scaled) / scale != magnitude) return nullptr;

  const auto unit = static_cast<std::uint64_t>(scale);
  const std::uint64_t fraction =
      scaled % unit * static_cast<std::uint64_t>(utl_powersOf10[16 - decimals]);
  if (fraction == 0) return nullptr;
  const auto upper = static_cast<std::uint32_t>(fraction / 100000000);
  const auto lower = static_cast<std::uint32_t>(fraction % 100000000);
  *p = '-';
  p += std::signbit(value);
  p = utl_printSmall(p, static_cast<std::uint32_t>(scaled / unit));
  *p++ = '.';
  if (lower == 0) return utl_printFraction(p, upper);
  const std::uint64_t text = utl_eightDigits(upper) | utl_eightZeros;
  std::memcpy(p, &text, 8);
  return utl_printFraction(p + 8, lower);
}

} // namespace

char* utl_printDoubleShortest(char* p, double value) {
  if (char* const shortEnd = printUpTo15Digits(p, value)) return shortEnd;
  char* const end = std::to_chars(p, p + utl_doubleTextRoom, value).ptr;
  if (!std::isfinite(value)) return end;
  char* const letter = std::find(p, end, 'e');
  if (letter == end) {
    if (std::find(p, end, '.') != end) return end;
    *end = '.';
    return end + 1;
  }
  // "e+05" to "e5", "e-05" to "e-5"
  char* to = letter + 1;
  const char* from = to + 1;
  if (*to == '-') ++to;
  while (*from == '0') ++from; // an exponent is never zero here
  while (from != end) *to++ = *from++;
  return to;
}
