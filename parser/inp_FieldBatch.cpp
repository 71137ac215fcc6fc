#include "parser/inp_FieldBatch.h"
#include "base/utl_InstructionSet.h"
#include "parser/inp_FieldBatchAvx2.h"
#include "parser/inp_FieldScan.h"

namespace {

inp_SeparatorCount findSeparators(const char* begin, const char* end, std::uint32_t* places,
                                  std::uint32_t* feeds) {
  inp_SeparatorNotes notes(places, feeds);
  const char* p = begin;
#ifdef INP_SSE2
  for (; end - p >= 64; p += 64) {
    const auto* at = reinterpret_cast<const __m128i*>(p);
    const __m128i a = _mm_loadu_si128(at), b = _mm_loadu_si128(at + 1);
    const __m128i c = _mm_loadu_si128(at + 2), d = _mm_loadu_si128(at + 3);
    const auto equal = [&](char byte) {
      const __m128i v = _mm_set1_epi8(byte);
      return inp_maskOf(_mm_cmpeq_epi8(a, v), _mm_cmpeq_epi8(b, v), _mm_cmpeq_epi8(c, v),
                        _mm_cmpeq_epi8(d, v));
    };
    notes.AddBlock(static_cast<std::uint32_t>(p - begin), equal(','), equal('\n'));
  }
#endif
  return notes.AddRest(begin, p, end);
}

bool smallInts(const inp_Stretch& stretch, int* values) {
  bool all = true;
  for (std::size_t i = 0; i < stretch.count; ++i) {
    const bool known = inp_fastSmallInt(stretch.FieldBegin(i), stretch.FieldEnd(i), values[i]);
    if (!known) values[i] = -1;
    all = all && known;
  }
  return all;
}

#ifdef UTL_HAS_AVX2_CODE
bool useAvx2() {
  return utl_instructionSet() == utl_InstructionSet::Avx2;
}
#endif

} // namespace

inp_SeparatorCount inp_findSeparators(const char* begin, const char* end, std::uint32_t* places,
                                      std::uint32_t* feeds) {
#ifdef UTL_HAS_AVX2_CODE
  if (useAvx2()) return inp_findSeparatorsAvx2(begin, end, places, feeds);
#endif
  return findSeparators(begin, end, places, feeds);
}

bool inp_smallInts(const inp_Stretch& stretch, int* values) {
#ifdef UTL_HAS_AVX2_CODE
  if (useAvx2()) return inp_smallIntsAvx2(stretch, values);
#endif
  return smallInts(stretch, values);
}

std::size_t inp_takeNodeLines([[maybe_unused]] const inp_Stretch& stretch,
                              [[maybe_unused]] inp_LinePlace& at, [[maybe_unused]] int* labels,
                              [[maybe_unused]] double* coords) {
#ifdef UTL_HAS_AVX2_CODE
  if (useAvx2()) return inp_takeNodeLinesAvx2(stretch, at, labels, coords);
#endif
  return 0;
}
