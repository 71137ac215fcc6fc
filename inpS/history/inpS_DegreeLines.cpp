#include "inpS/history/inpS_DegreeLines.h"
#include "parser/inp_BulkColumns.h"
#include <algorithm>

namespace {

constexpr int degreeColumn = 1;
constexpr int magnitudeColumn = 2;

struct Range {
  inp_KeywordEnm keyword;
  int first;
  int last;
  bool needsMagnitude; // what is held is held at 0 where nothing else is said
};
constexpr Range ranges[] = {
    {inp_KwCflux, 11, 30, true},       {inp_KwCflow, 8, 8, true},
    {inp_KwCecharge, 9, 9, true},      {inp_KwCecurrent, 9, 9, true},
    {inp_KwConnectorLoad, 1, 6, true}, {inp_KwConnectorMotion, 1, 6, false}};

const Range& rangeOf(inp_KeywordEnm keyword) {
  return *std::ranges::find(ranges, keyword, &Range::keyword);
}

} // namespace

inpS_DegreeLines::inpS_DegreeLines(const inp_Keyword& keyword)
    : m_first(rangeOf(keyword.Kind()).first), m_last(rangeOf(keyword.Kind()).last),
      m_what(m_last == 6 ? "Component" : "Degree of freedom"),
      m_needsMagnitude(rangeOf(keyword.Kind()).needsMagnitude && !keyword.HasParameter("user")) {}

bool inpS_DegreeLines::Has(inp_KeywordEnm keyword) {
  return std::ranges::find(ranges, keyword, &Range::keyword) != std::end(ranges);
}

bool inpS_DegreeLines::IsSound(const inp_ColumnPiece& piece, Words) {
  bool isSound = true;
  for (const int degree : piece.columns[degreeColumn].ints.first(piece.count))
    isSound &= degree == inp_blankInt || (degree >= m_first && degree <= m_last);
  if (m_needsMagnitude)
    for (const double magnitude : piece.columns[magnitudeColumn].reals.first(piece.count))
      isSound &= !inp_isBlankReal(magnitude);
  return isSound;
}

std::optional<inpS_LineFault> inpS_DegreeLines::FaultOf(const inpS_LineView& line) {
  const int degree = line.slots[degreeColumn];
  if (degree != inp_blankInt && (degree < m_first || degree > m_last))
    return inpS_LineFault{degreeColumn,
                          m_what + " " + std::to_string(degree) +
                              (m_first == m_last ? " is not " : " is none of ") +
                              std::to_string(m_first) +
                              (m_first == m_last ? "" : " to " + std::to_string(m_last)) + "."};
  if (m_needsMagnitude && !line.Has(magnitudeColumn))
    return inpS_LineFault{-1, "The line gives no magnitude, which is 0.", false, false};
  return {};
}
