#include "parser/inp_FieldBatchAvx2.h"
#include "parser/inp_FieldScan.h"
#include <limits>

#ifdef UTL_HAS_AVX2_CODE

#include <immintrin.h>

namespace {

UTL_AVX2 inline std::uint64_t bytesEqual(__m256i first, __m256i second, char byte) {
  const __m256i v = _mm256_set1_epi8(byte);
  const int low = _mm256_movemask_epi8(_mm256_cmpeq_epi8(first, v));
  const int high = _mm256_movemask_epi8(_mm256_cmpeq_epi8(second, v));
  return static_cast<std::uint32_t>(low) | std::uint64_t{static_cast<std::uint32_t>(high)} << 32;
}

// ---- integers ----------------------------------------------------------------------------------

// Characters are looked at with blanks as 0 and digits as 0x10 to 0x19: what does not belong to a
// field is cleared and counts as blanks in front.
constexpr char digitZero = '0' ^ ' ';
constexpr char pointSign = '.' ^ ' ';
constexpr char minusSign = '-' ^ ' ';

UTL_AVX2 inline __m256i isDigit(__m256i figures) {
  return _mm256_cmpeq_epi8(_mm256_min_epu8(figures, _mm256_set1_epi8(9)), figures);
}

// The eight characters that end `back` - 8 bytes before each of four places.
UTL_AVX2 inline __m256i fourWindows(const char* text, const std::uint32_t* places, int back) {
  std::int64_t words[4];
  for (int i = 0; i < 4; ++i) std::memcpy(&words[i], text + places[i] - back, 8);
  return _mm256_setr_epi64x(words[0], words[1], words[2], words[3]);
}

struct FourInts {
  __m256i figures; // eight digits per field, the first one in the lowest byte
  __m256i good;    // all bits where the field is blanks and then digits
};

UTL_AVX2 inline __m128i fourWidths(const std::uint32_t* places) {
  const __m128i ends = _mm_loadu_si128(reinterpret_cast<const __m128i*>(places));
  const __m128i before = _mm_loadu_si128(reinterpret_cast<const __m128i*>(places - 1));
  return _mm_sub_epi32(_mm_sub_epi32(ends, before), _mm_set1_epi32(1));
}

// Keeps the last characters of each window, as many as the width says.
UTL_AVX2 inline __m256i cutWindows(__m256i windows, __m128i widths) {
  const __m128i cut = _mm_max_epi32(_mm_sub_epi32(_mm_set1_epi32(8), widths), _mm_setzero_si128());
  const __m256i keep =
      _mm256_sllv_epi64(_mm256_set1_epi64x(-1), _mm256_slli_epi64(_mm256_cvtepu32_epi64(cut), 3));
  return _mm256_and_si256(_mm256_xor_si256(windows, _mm256_set1_epi8(' ')), keep);
}

// The four fields that end at places[0..3]. What of a field lies before its last eight characters
// must be blank, and within the last sixteen.
UTL_AVX2 inline FourInts fourInts(const char* text, const std::uint32_t* places) {
  const __m128i widths = fourWidths(places);
  const __m256i shown = cutWindows(fourWindows(text, places, 8), widths);
  const __m256i figures = _mm256_sub_epi8(shown, _mm256_set1_epi8(digitZero));
  const __m256i digit = isDigit(figures);
  // In a good field no digit is followed by something else: the bits without digit are a run from
  // the lowest one on, and not all.
  const __m256i other = _mm256_xor_si256(digit, _mm256_set1_epi64x(-1));
  const __m256i gap = _mm256_and_si256(other, _mm256_sub_epi64(other, _mm256_set1_epi64x(-1)));
  const __m256i top =
      _mm256_and_si256(other, _mm256_set1_epi64x(std::numeric_limits<std::int64_t>::min()));
  __m256i bad = _mm256_or_si256(_mm256_or_si256(gap, top), _mm256_and_si256(other, shown));
  if (_mm_movemask_epi8(_mm_cmpgt_epi32(widths, _mm_set1_epi32(8))) != 0) {
    const __m128i rest = _mm_sub_epi32(widths, _mm_set1_epi32(8));
    const __m128i tooLong = _mm_cmpgt_epi32(rest, _mm_set1_epi32(8));
    bad = _mm256_or_si256(bad, cutWindows(fourWindows(text, places, 16), rest));
    bad = _mm256_or_si256(bad, _mm256_cvtepi32_epi64(tooLong));
  }
  return {_mm256_and_si256(figures, digit), _mm256_cmpeq_epi64(bad, _mm256_setzero_si256())};
}

// Eight fields: their values in order, -1 for the bad ones.
UTL_AVX2 inline __m256i eightInts(const FourInts& a, const FourInts& b) {
  const __m256i tens = _mm256_set1_epi16(10 | (1 << 8));
  const __m256i hundreds = _mm256_set1_epi32(100 | (1 << 16));
  const __m256i fourA = _mm256_madd_epi16(_mm256_maddubs_epi16(a.figures, tens), hundreds);
  const __m256i fourB = _mm256_madd_epi16(_mm256_maddubs_epi16(b.figures, tens), hundreds);
  const __m256i eights =
      _mm256_madd_epi16(_mm256_packus_epi32(fourA, fourB), _mm256_set1_epi32(10000 | (1 << 16)));
  const __m256i good = _mm256_castps_si256(
      _mm256_shuffle_ps(_mm256_castsi256_ps(a.good), _mm256_castsi256_ps(b.good), 0x88));
  const __m256i values = _mm256_or_si256(eights, _mm256_xor_si256(good, _mm256_set1_epi64x(-1)));
  return _mm256_permutevar8x32_epi32(values, _mm256_setr_epi32(0, 1, 4, 5, 2, 3, 6, 7));
}

// ---- decimals ----------------------------------------------------------------------------------

// What to do with sixteen characters, given the place of the point among them; row 16: no point.
struct alignas(64) PointRow {
  std::uint8_t move[16] = {};    // those before the point up by one, onto it
  std::uint8_t figures[16] = {}; // once moved there must be digits: behind the point, at the end
  double power = 1;              // of ten, of the decimals
};

struct PointTable {
  PointRow row[17];
  constexpr PointTable() : row() {
    double power = 1;
    for (int point = 16; point >= 0; --point) {
      PointRow& r = row[point];
      for (int i = 0; i < 16; ++i) {
        const int from = point == 16 || i > point ? i : i - 1;
        r.move[i] = static_cast<std::uint8_t>(from < 0 ? 0x80 : from);
        r.figures[i] = i == 15 || i == point + 1 ? 0xFF : 0;
      }
      r.power = power; // 1 without a point and for one at the end
      if (point < 16) power *= 10;
    }
  }
};
constexpr PointTable pointTable;

// 16 bytes 0, then 16 bytes 0xFF: loaded from byte w on, the last w of 16 are set.
alignas(64) constexpr std::uint8_t lastBytes[32] = {
    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,    0,
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

UTL_AVX2 inline __m256i loadPair(const void* low, const void* high) {
  return _mm256_loadu2_m128i(static_cast<const __m128i*>(high), static_cast<const __m128i*>(low));
}

// Two fields, each of 1 to 16 characters.
UTL_AVX2 inline __m256i twoFields(const char* endA, std::size_t widthA, const char* endB,
                                  std::size_t widthB) {
  const __m256i text = loadPair(endA - 16, endB - 16);
  const __m256i keep = loadPair(lastBytes + widthA, lastBytes + widthB);
  return _mm256_and_si256(_mm256_xor_si256(text, _mm256_set1_epi8(' ')), keep);
}

struct TwoDecimals {
  __m256i figures; // sixteen digits each, the first one in the lowest byte
  __m256i minus;   // a byte of 0xFF where the minus stands
  __m256i good;    // bytes that may stand where they stand
};

// Two fields by their rows of the table: blanks, perhaps a minus, digits and at most one point.
UTL_AVX2 inline TwoDecimals twoDecimals(__m256i fields, const PointRow& a, const PointRow& b) {
  const __m256i moved = _mm256_shuffle_epi8(fields, loadPair(a.move, b.move));
  const __m256i figures = _mm256_sub_epi8(moved, _mm256_set1_epi8(digitZero));
  const __m256i digit = isDigit(figures);
  const __m256i minus = _mm256_cmpeq_epi8(moved, _mm256_set1_epi8(minusSign));
  const __m256i zero = _mm256_setzero_si256();
  // Blanks and the minus stand behind a blank or at the start; a second point is neither.
  const __m256i behindBlank = _mm256_cmpeq_epi8(_mm256_slli_si256(moved, 1), zero);
  const __m256i front =
      _mm256_and_si256(_mm256_or_si256(_mm256_cmpeq_epi8(moved, zero), minus), behindBlank);
  const __m256i good =
      _mm256_or_si256(digit, _mm256_andnot_si256(loadPair(a.figures, b.figures), front));
  return {_mm256_and_si256(figures, digit), minus, good};
}

UTL_AVX2 inline __m256i fourDigitValues(__m256i figures) {
  return _mm256_madd_epi16(_mm256_maddubs_epi16(figures, _mm256_set1_epi16(10 | (1 << 8))),
                           _mm256_set1_epi32(100 | (1 << 16)));
}

// Whole numbers below 2^32, each in eight bytes, as doubles.
UTL_AVX2 inline __m256d asDoubles(__m256i values) {
  const __m256d shift = _mm256_set1_pd(4503599627370496.); // 2^52: the number in its last bits
  return _mm256_sub_pd(_mm256_castsi256_pd(_mm256_or_si256(values, _mm256_castpd_si256(shift))),
                       shift);
}

// The mantissas of a's and b's fields, in the order a, b, a, b. Exact below 2^53: the upper half's
// product has at most 46 bits that count.
UTL_AVX2 inline __m256d mantissasOf(const TwoDecimals& a, const TwoDecimals& b) {
  const __m256i packed =
      _mm256_packus_epi32(fourDigitValues(a.figures), fourDigitValues(b.figures));
  const __m256i halves = _mm256_madd_epi16(packed, _mm256_set1_epi32(10000 | (1 << 16)));
  const __m256d upper = asDoubles(_mm256_blend_epi32(halves, _mm256_setzero_si256(), 0xAA));
  const __m256d lower = asDoubles(_mm256_srli_epi64(halves, 32));
  return _mm256_add_pd(_mm256_mul_pd(upper, _mm256_set1_pd(1e8)), lower);
}

UTL_AVX2 inline const PointRow& rowOf(std::uint32_t points) { // sixteen bits of them
  return pointTable.row[_tzcnt_u32(points | 0x10000)];
}

// One line: the fields that end at places[0], the label, and at places[1..decimals]. False, and the
// values mean nothing, when one of them is not of this form.
template <int decimals>
UTL_AVX2 inline bool takeNodeLine(const char* text, const std::uint32_t* places, int& label,
                                  double* xyz) {
  const char* ends[4] = {text + places[1], text + places[2], text + places[decimals],
                         text + places[0]};
  std::size_t widths[4] = {places[1] - places[0] - 1, places[2] - places[1] - 1,
                           places[decimals] - places[decimals - 1] - 1,
                           std::uint32_t{places[0] - places[-1] - 1}};
  const bool hasReturn = ends[2][-1] == '\r';
  ends[2] -= hasReturn;
  widths[2] -= hasReturn;
  if (decimals == 2) ends[1] = ends[2], widths[1] = widths[2];
  if (((widths[0] - 1) | (widths[1] - 1) | (widths[2] - 1) | (widths[3] - 1)) >= 16) return false;

  const __m256i first = twoFields(ends[0], widths[0], ends[2], widths[2]);
  const __m256i second = twoFields(ends[1], widths[1], ends[3], widths[3]);
  const __m256i point = _mm256_set1_epi8(pointSign);
  const auto pointsFirst =
      static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(first, point)));
  const auto pointsSecond =
      static_cast<std::uint32_t>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(second, point)));
  const PointRow& x = rowOf(pointsFirst & 0xFFFF);
  const PointRow& z = rowOf(pointsFirst >> 16);
  const PointRow& y = rowOf(pointsSecond & 0xFFFF);
  const PointRow& whole = pointTable.row[16]; // a label with a point is none
  const TwoDecimals xz = twoDecimals(first, x, z);
  const TwoDecimals yl = twoDecimals(second, y, whole);
  if (_mm256_movemask_epi8(_mm256_and_si256(xz.good, yl.good)) != -1) return false;

  const __m256d mantissas = mantissasOf(xz, yl);
  const __m256d tooLarge =
      _mm256_setr_pd(static_cast<double>(inp_exactMantissa), static_cast<double>(inp_exactMantissa),
                     static_cast<double>(inp_exactMantissa), 1e9);
  const __m256i either = _mm256_or_si256(_mm256_unpacklo_epi64(xz.minus, yl.minus),
                                         _mm256_unpackhi_epi64(xz.minus, yl.minus));
  const __m256d plus = _mm256_castsi256_pd(_mm256_cmpeq_epi64(either, _mm256_setzero_si256()));
  // Whether a nought keeps its minus depends on how it is spelled.
  const __m256d nought =
      _mm256_andnot_pd(plus, _mm256_cmp_pd(mantissas, _mm256_setzero_pd(), _CMP_EQ_OQ));
  const __m256d bad = _mm256_or_pd(nought, _mm256_cmp_pd(mantissas, tooLarge, _CMP_GE_OQ));
  if (_mm256_movemask_pd(bad) != 0) return false;

  const __m256d powers = _mm256_setr_pd(x.power, y.power, z.power, 1.);
  const __m256d values =
      _mm256_or_pd(_mm256_div_pd(mantissas, powers), _mm256_andnot_pd(plus, _mm256_set1_pd(-0.)));
  _mm256_storeu_pd(xyz, values); // the label lands in the next row, or behind the last one
  const __m128d upper = _mm256_extractf128_pd(values, 1);
  label = _mm_cvttsd_si32(_mm_unpackhi_pd(upper, upper));
  if (decimals == 2) xyz[2] = 0;
  return true;
}

} // namespace

inp_SeparatorCount inp_findSeparatorsAvx2(const char* begin, const char* end, std::uint32_t* places,
                                          std::uint32_t* feeds) {
  inp_SeparatorNotes notes(places, feeds);
  const char* p = begin;
  for (; end - p >= 64; p += 64) {
    const auto* at = reinterpret_cast<const __m256i*>(p);
    _mm_prefetch(p + 1024, _MM_HINT_T0); // the machine's own prefetching ends at each page's end
    const __m256i first = _mm256_loadu_si256(at), second = _mm256_loadu_si256(at + 1);
    notes.AddBlock(static_cast<std::uint32_t>(p - begin), bytesEqual(first, second, ','),
                   bytesEqual(first, second, '\n'));
  }
  return notes.AddRest(begin, p, end);
}

bool inp_smallIntsAvx2(const inp_Stretch& stretch, int* values) {
  bool all = true;
  for (std::size_t i = 0; i < stretch.count; i += inp_batchFields) {
    const std::uint32_t* const places = stretch.places + i;
    const __m256i eight =
        eightInts(fourInts(stretch.text, places), fourInts(stretch.text, places + 4));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(values + i), eight);
    if (_mm256_movemask_ps(_mm256_castsi256_ps(eight)) == 0) continue;
    const std::size_t end =
        stretch.count - i < inp_batchFields ? stretch.count : i + inp_batchFields;
    for (std::size_t k = i; k < end; ++k) // carriage returns, blanks behind a number
      if (values[k] < 0 && !inp_fastSmallInt(stretch.FieldBegin(k), stretch.FieldEnd(k), values[k]))
        all = false;
  }
  return all;
}

std::size_t inp_takeNodeLinesAvx2(const inp_Stretch& stretch, inp_LinePlace& at, int* labels,
                                  double* coords) {
  std::size_t taken = 0;
  for (; at.line < stretch.lines; ++taken) {
    const std::uint32_t* const places = stretch.places + at.separator;
    const std::size_t left = stretch.count - at.separator;
    const std::uint32_t feed = stretch.feeds[at.line];
    const bool three = left > 3 && places[3] == feed;
    if (!three && !(left > 2 && places[2] == feed)) break;
    double* const xyz = coords + 3 * taken;
    if (!(three ? takeNodeLine<3>(stretch.text, places, labels[taken], xyz)
                : takeNodeLine<2>(stretch.text, places, labels[taken], xyz)))
      break;
    at.separator += three ? 4 : 3;
    ++at.line;
  }
  return taken;
}

#endif
