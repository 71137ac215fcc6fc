#include "inpS/history/inpS_DegreeLines.h"
#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_BulkColumns.h"
#include <algorithm>

namespace {

constexpr int degreeColumn = 1;
constexpr int magnitudeColumn = 2;

struct Range {
  eds_RecordKind form;
  int first;
  int last;
  bool needsMagnitude; // what is held is held at 0 where nothing else is said
};
constexpr Range ranges[] = {{eds_FormKind::ConcentratedFlux, 11, 30, true},
                            {eds_FormKind::ConcentratedFlow, 8, 8, true},
                            {eds_FormKind::ConcentratedCharge, 9, 9, true},
                            {eds_FormKind::ConcentratedCurrent, 9, 9, true},
                            {eds_FormKind::ConnectorLoad, 1, 6, true},
                            {eds_FormKind::ConnectorMotion, 1, 6, false},
                            {eds_FormKind::InitialVelocity, 1, 6, false},
                            {eds_FormKind::InitialAcceleration, 1, 6, false}};

const Range& rangeOf(eds_RecordKind form) {
  return *std::ranges::find(ranges, form, &Range::form);
}

} // namespace

inpS_DegreeLines::inpS_DegreeLines(const inp_Keyword& keyword, eds_RecordKind form)
    : m_first(rangeOf(form).first), m_last(rangeOf(form).last),
      m_what(m_last == 6 ? "Component" : "Degree of freedom"),
      m_needsMagnitude(rangeOf(form).needsMagnitude && !inpS_saysYes(keyword, "user")) {}

bool inpS_DegreeLines::Has(eds_RecordKind form) {
  return std::ranges::find(ranges, form, &Range::form) != std::end(ranges);
}

bool inpS_DegreeLines::IsSound(const inp_ColumnPiece& piece, Words) {
  bool isSound = true;
  for (const int degree : piece.columns[degreeColumn].ints.first(piece.count))
    isSound &= degree == inp_blankInt || (degree >= m_first && degree <= m_last);
  return isSound && !(m_needsMagnitude &&
                      inp_hasBlank(piece.columns[magnitudeColumn].reals.first(piece.count)));
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
