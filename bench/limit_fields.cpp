#include "bench/limit_program.h"

#include "base/utl_Number.h"

#include <bit>
#include <cstring>

#if defined(__x86_64__) && defined(__GNUC__)
#define LIMIT_AVX2 __attribute__((target("avx2,bmi,bmi2")))
#include <immintrin.h>
#endif

namespace {

constexpr std::size_t nodesPerBrick = limitNodesPerBrick;

bool useScalar = false;

// ---- portable: one loop over the text ----------------------------------------------------------

// These return the place behind the separator, and null for what they do not know.

const char* readInteger(const char* p, const char* end, char separator, std::int32_t& value) {
  std::int64_t wide = 0;
  if (p != nullptr) p = utl_readInt(p, end, wide);
  if (p == nullptr || p == end || *p != separator) return nullptr;
  value = static_cast<std::int32_t>(wide);
  return p + 1;
}

const char* readReal(const char* p, const char* end, char separator, double& value) {
  if (p != nullptr) p = utl_readDouble(p, end, value);
  if (p == nullptr || p == end || *p != separator) return nullptr;
  return p + 1;
}

const char* readLine(LimitSection section, const char* p, const char* end, LimitRows& rows) {
  const std::size_t row = rows.rows++;
  p = readInteger(p, end, ',', rows.labels[row]);
  if (section == LimitSection::Nodes) {
    double* reals = rows.reals.data() + 3 * row;
    p = readReal(p, end, ',', reals[0]);
    p = readReal(p, end, ',', reals[1]);
    return readReal(p, end, '\n', reals[2]);
  }
  std::int32_t* nodes = rows.integers.data() + nodesPerBrick * row;
  for (std::size_t i = 0; i + 1 < nodesPerBrick; ++i) p = readInteger(p, end, ',', nodes[i]);
  return readInteger(p, end, '\n', nodes[nodesPerBrick - 1]);
}

bool decodeScalar(LimitSection section, const char* p, const char* end, LimitRows& rows) {
  while (p != nullptr && p != end && *p != '*') p = readLine(section, p, end, rows);
  rows.stoppedAt = p;
  return p != nullptr;
}

#ifdef LIMIT_AVX2

// ---- separators first, then each field from the bytes before its separator ----------------------

// The places of all commas and line ends, counted from `begin`; reads whole blocks of 64 bytes, the
// rest one by one.
LIMIT_AVX2 std::size_t indexSeparators(const char* begin, const char* end, std::uint32_t* places) {
  std::uint32_t* next = places;
  const char* p = begin;
  const __m256i comma = _mm256_set1_epi8(',');
  const __m256i lineEnd = _mm256_set1_epi8('\n');
  const auto mask = [&](const char* at) LIMIT_AVX2 {
    const __m256i text = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
    const __m256i hit =
        _mm256_or_si256(_mm256_cmpeq_epi8(text, comma), _mm256_cmpeq_epi8(text, lineEnd));
    return static_cast<std::uint32_t>(_mm256_movemask_epi8(hit));
  };
  for (; end - p >= 64; p += 64) {
    std::uint64_t bits = mask(p) | (static_cast<std::uint64_t>(mask(p + 32)) << 32);
    const auto base = static_cast<std::uint32_t>(p - begin);
    const int count = std::popcount(bits);
    // Eight at once without asking whether there are so many; the surplus is overwritten.
    for (int i = 0; i < 8; ++i) {
      next[i] = base + static_cast<std::uint32_t>(_tzcnt_u64(bits));
      bits = _blsr_u64(bits);
    }
    for (int i = 8; i < count; ++i) {
      next[i] = base + static_cast<std::uint32_t>(_tzcnt_u64(bits));
      bits = _blsr_u64(bits);
    }
    next += count;
  }
  for (; p != end; ++p)
    if (*p == ',' || *p == '\n') *next++ = static_cast<std::uint32_t>(p - begin);
  return static_cast<std::size_t>(next - places);
}

// Digits from text: blanks and cleared bytes count as zero. Sets `bad` where anything else stands.
LIMIT_AVX2 inline __m256i digitsOf(__m256i text, __m256i& bad) {
  const __m256i digits = _mm256_subs_epu8(text, _mm256_set1_epi8('0'));
  const __m256i sign = _mm256_and_si256(_mm256_cmpgt_epi8(text, _mm256_set1_epi8(' ')),
                                        _mm256_cmpgt_epi8(_mm256_set1_epi8('0'), text));
  const __m256i letter = _mm256_cmpgt_epi8(digits, _mm256_set1_epi8(9));
  bad = _mm256_or_si256(bad, _mm256_or_si256(sign, letter));
  return digits;
}

LIMIT_AVX2 inline __m256i loadFour(const char* begin, const std::uint32_t* places, int back) {
  std::int64_t words[4];
  for (int i = 0; i < 4; ++i) std::memcpy(&words[i], begin + places[i] - back, 8);
  return _mm256_setr_epi64x(words[0], words[1], words[2], words[3]);
}

// The four fields before places[0..3], cut to their own characters (at most eight of each).
LIMIT_AVX2 inline __m256i fourFields(const char* begin, const std::uint32_t* places, int back,
                                     __m128i& longest) {
  const __m128i ends = _mm_loadu_si128(reinterpret_cast<const __m128i*>(places));
  const __m128i starts = _mm_loadu_si128(reinterpret_cast<const __m128i*>(places - 1));
  const __m128i widths = _mm_sub_epi32(_mm_sub_epi32(ends, starts), _mm_set1_epi32(back - 7));
  longest = _mm_max_epi32(longest, widths);
  const __m128i room = _mm_max_epi32(_mm_sub_epi32(_mm_set1_epi32(8), widths), _mm_setzero_si128());
  const __m256i shift = _mm256_slli_epi64(_mm256_cvtepu32_epi64(room), 3);
  const __m256i keep = _mm256_sllv_epi64(_mm256_set1_epi64x(-1), shift);
  return _mm256_and_si256(loadFour(begin, places, back), keep);
}

// Eight fields of at most eight digits each: the values, in order.
LIMIT_AVX2 inline __m256i eightValues(__m256i first, __m256i second) {
  const __m256i tens = _mm256_set1_epi16(10 | (1 << 8));
  const __m256i hundreds = _mm256_set1_epi32(100 | (1 << 16));
  const __m256i tenThousands = _mm256_set1_epi32(10000 | (1 << 16));
  const __m256i a = _mm256_madd_epi16(_mm256_maddubs_epi16(first, tens), hundreds);
  const __m256i b = _mm256_madd_epi16(_mm256_maddubs_epi16(second, tens), hundreds);
  const __m256i joined = _mm256_madd_epi16(_mm256_packus_epi32(a, b), tenThousands);
  return _mm256_permutevar8x32_epi32(joined, _mm256_setr_epi32(0, 1, 4, 5, 2, 3, 6, 7));
}

// Eight integers before the places [0, 8), each after the place before it. False when a field is
// not digits alone or longer than 16.
LIMIT_AVX2 inline bool readEight(const char* begin, const std::uint32_t* places,
                                 std::int32_t* values) {
  __m256i bad = _mm256_setzero_si256();
  __m128i longest = _mm_setzero_si128();
  const __m256i a = digitsOf(fourFields(begin, places, 8, longest), bad);
  const __m256i b = digitsOf(fourFields(begin, places + 4, 8, longest), bad);
  __m256i result = eightValues(a, b);
  if (_mm_movemask_epi8(_mm_cmpgt_epi32(longest, _mm_set1_epi32(8))) != 0) {
    __m128i rest = _mm_setzero_si128();
    const __m256i c = digitsOf(fourFields(begin, places, 16, rest), bad);
    const __m256i d = digitsOf(fourFields(begin, places + 4, 16, rest), bad);
    if (_mm_movemask_epi8(_mm_cmpgt_epi32(rest, _mm_set1_epi32(8))) != 0) return false;
    result = _mm256_add_epi32(result,
                              _mm256_mullo_epi32(eightValues(c, d), _mm256_set1_epi32(100000000)));
  }
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(values), result);
  return _mm256_testz_si256(bad, bad) != 0;
}

// Moves the bytes before the dot at place d one to the right, onto the dot. Row 16: no dot.
struct DropDot {
  alignas(16) std::uint8_t row[17][16];
  constexpr DropDot() : row() {
    for (int dot = 0; dot <= 16; ++dot)
      for (int i = 0; i < 16; ++i)
        row[dot][i] = static_cast<std::uint8_t>(dot == 16 || i > dot ? i : i == 0 ? 0x80 : i - 1);
  }
};
constexpr DropDot dropDot;

// The real before `separator`, of `width` characters at most 16: blanks, a minus, digits and a dot.
LIMIT_AVX2 inline bool readShortReal(const char* separator, std::ptrdiff_t width, double& value) {
  if (width > 16 || width <= 0) return false;
  const __m128i raw = _mm_loadu_si128(reinterpret_cast<const __m128i*>(separator - 16));
  const unsigned inField = 0xFFFFU << (16 - width);
  const auto where = [&](char c) LIMIT_AVX2 {
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(raw, _mm_set1_epi8(c)))) &
           inField;
  };
  const unsigned dots = where('.');
  const unsigned minus = where('-');
  const __m128i place = _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
  const __m128i kept =
      _mm_and_si128(raw, _mm_cmpgt_epi8(place, _mm_set1_epi8(static_cast<char>(15 - width))));
  const int dot = dots != 0 ? std::countr_zero(dots) : 16;
  const __m128i text =
      _mm_shuffle_epi8(kept, _mm_load_si128(reinterpret_cast<const __m128i*>(dropDot.row[dot])));
  const __m128i digits = _mm_subs_epu8(text, _mm_set1_epi8('0'));
  const __m128i letter = _mm_cmpgt_epi8(digits, _mm_set1_epi8(9));
  if (_mm_movemask_epi8(letter) != 0 || where('+') != 0) return false;
  const __m128i twos = _mm_maddubs_epi16(digits, _mm_set1_epi16(10 | (1 << 8)));
  const __m128i fours = _mm_madd_epi16(twos, _mm_set1_epi32(100 | (1 << 16)));
  const __m128i eights =
      _mm_madd_epi16(_mm_packus_epi32(fours, fours), _mm_set1_epi32(10000 | (1 << 16)));
  const auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
  const std::uint64_t mantissa = (both & 0xFFFFFFFFU) * 100000000U + (both >> 32);
  const double magnitude = static_cast<double>(mantissa) / utl_powersOf10[dots != 0 ? 15 - dot : 0];
  value = minus != 0 ? -magnitude : magnitude;
  return true;
}

LIMIT_AVX2 inline bool readShortLabel(const char* separator, std::ptrdiff_t width,
                                      std::int32_t& value) {
  if (width <= 0 || width > 8) return false;
  std::uint64_t text;
  std::memcpy(&text, separator - 8, 8);
  text =
      (text & (~std::uint64_t{0} << (64 - 8 * width))) | (utl_eightZeros >> (8 * width - 8) >> 8);
  std::uint64_t digits = text - utl_eightZeros;
  if (((digits + 0x7676767676767676) | digits) & 0x8080808080808080) return false;
  digits = digits * 10 + (digits >> 8);
  value =
      static_cast<std::int32_t>((((digits & 0x000000FF000000FF) * 0x000F424000000064) +
                                 (((digits >> 16) & 0x000000FF000000FF) * 0x0000271000000001)) >>
                                32);
  return true;
}

// One line by its separators: places[-1] is the line end before it.
LIMIT_AVX2 inline bool readIndexedLine(LimitSection section, const char* begin,
                                       const std::uint32_t* places, LimitRows& rows) {
  const std::size_t row = rows.rows;
  const auto width = [&](int i) {
    return static_cast<std::ptrdiff_t>(places[i]) - static_cast<std::ptrdiff_t>(places[i - 1]) - 1;
  };
  if (!readShortLabel(begin + places[0], width(0), rows.labels[row])) return false;
  if (section == LimitSection::Elements)
    return readEight(begin, places + 1, rows.integers.data() + nodesPerBrick * row);
  double* reals = rows.reals.data() + 3 * row;
  return readShortReal(begin + places[1], width(1), reals[0]) &&
         readShortReal(begin + places[2], width(2), reals[1]) &&
         readShortReal(begin + places[3], width(3), reals[2]);
}

template <LimitSection section>
LIMIT_AVX2 bool decodeIndexed(const char* begin, const char* end, LimitRows& rows) {
  constexpr std::size_t fields = section == LimitSection::Nodes ? 4 : 1 + nodesPerBrick;
  // The index starts with the line end before the block, so that every field has one before it.
  std::uint32_t* const places = rows.separators.data();
  const std::size_t count = indexSeparators(begin - 1, end, places);
  const char* const origin = begin - 1;
  std::size_t next = 1;
  const char* p = begin;
  while (p != end && *p != '*') {
    const std::size_t last = next + fields - 1;
    if (last >= count || origin[places[last]] != '\n') return false;
    if (readIndexedLine(section, origin, places + next, rows))
      ++rows.rows;
    else if (readLine(section, p, end, rows) == nullptr)
      return false;
    p = origin + places[last] + 1;
    next = last + 1;
  }
  rows.stoppedAt = p;
  return true;
}

bool hasAvx2() {
  static const bool has = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi2");
  return has;
}
#endif

} // namespace

void limitUseScalarDecoder(bool scalar) {
  useScalar = scalar;
}

const char* limitDecoderName() {
#ifdef LIMIT_AVX2
  if (!useScalar && hasAvx2()) return "avx2";
#endif
  return "scalar";
}

bool limitDecode(LimitSection section, const char* textBegin, const char* begin, const char* end,
                 LimitRows& rows) {
  const auto size = static_cast<std::size_t>(end - begin);
  const std::size_t mostRows = size / 8 + 1; // "1,0,0,0" and a line end
  rows.rows = 0;
  if (rows.labels.size() < mostRows) rows.labels.resize(mostRows);
  if (section == LimitSection::Nodes && rows.reals.size() < 3 * mostRows)
    rows.reals.resize(3 * mostRows);
  if (section == LimitSection::Elements && rows.integers.size() < nodesPerBrick * mostRows)
    rows.integers.resize(nodesPerBrick * mostRows);
#ifdef LIMIT_AVX2
  if (!useScalar && hasAvx2() && begin - textBegin >= 32) {
    if (rows.separators.size() < size + 64) rows.separators.resize(size + 64);
    return section == LimitSection::Nodes ? decodeIndexed<LimitSection::Nodes>(begin, end, rows)
                                          : decodeIndexed<LimitSection::Elements>(begin, end, rows);
  }
#endif
  (void)textBegin;
  return decodeScalar(section, begin, end, rows);
}
