#include "inpS/history/inpS_DegreeLines.h"
#include "inpS/forms/inpS_ColumnTargets.h"
#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_BulkColumns.h"
#include <algorithm>

namespace {

constexpr int targetColumn = 0;
constexpr int degreeColumn = 1;
constexpr int lastColumn = 2;      // of motions
constexpr int magnitudeColumn = 2; // of all others

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
                            {eds_FormKind::Motion, 1, 6, false},
                            {eds_FormKind::InitialVelocity, 1, 6, true},
                            {eds_FormKind::InitialAcceleration, 1, 6, true}};

bool isConnector(inpS_LoadedElements::Type type) {
  return !type || type->Is(inp_ElemConnector);
}

const Range& rangeOf(eds_RecordKind form) {
  return *std::ranges::find(ranges, form, &Range::form);
}

} // namespace

inpS_DegreeLines::inpS_DegreeLines(const inp_Keyword& keyword, eds_RecordKind form)
    : m_first(rangeOf(form).first), m_last(rangeOf(form).last),
      m_what(m_last == 6 ? "Component" : "Degree of freedom"),
      m_needsMagnitude(rangeOf(form).needsMagnitude && !inpS_saysYes(keyword, "user")),
      m_isRange(form == eds_FormKind::Motion) {}

bool inpS_DegreeLines::Has(eds_RecordKind form) {
  return std::ranges::find(ranges, form, &Range::form) != std::end(ranges);
}

bool inpS_DegreeLines::IsOfConnectors(eds_RecordKind form) {
  return form == eds_FormKind::ConnectorLoad || form == eds_FormKind::ConnectorMotion;
}

void inpS_DegreeLines::SetElements(inpS_LoadedElements& elements, const KvoSimPosition& record) {
  m_elements = &elements;
  m_record = record;
  m_areAllConnectors = std::ranges::all_of(elements.Types(), isConnector);
}

inpS_LoadedElements::Type inpS_DegreeLines::NoConnector(int target) {
  if (m_areAllConnectors || target == inp_blankInt || target == inpS_noTarget) return nullptr;
  if (target >= 0) {
    const int type = m_elements->TypeOf(target);
    if (type < 0) return nullptr;
    const auto found = m_elements->Types()[static_cast<std::size_t>(type)];
    return isConnector(found) ? nullptr : found;
  }
  const auto [known, isNew] = m_sets.try_emplace(target, nullptr);
  if (!isNew) return known->second;
  const auto types = m_elements->TypesOf(m_record, static_cast<std::size_t>(-1 - target));
  const auto against = std::ranges::find_if_not(types, isConnector);
  return known->second = against == types.end() ? nullptr : *against;
}

bool inpS_DegreeLines::IsSound(const inp_ColumnPiece& piece, Words) {
  bool isSound = true;
  for (const int degree : piece.columns[degreeColumn].ints.first(piece.count))
    isSound &= (degree == inp_blankInt && !m_isRange) || (degree >= m_first && degree <= m_last);
  if (m_isRange) {
    const auto first = piece.columns[degreeColumn].ints;
    const auto last = piece.columns[lastColumn].ints;
    for (std::size_t n = 0; n < piece.count; ++n)
      isSound &= last[n] == inp_blankInt || (last[n] >= first[n] && last[n] <= m_last);
  }
  if (m_needsMagnitude)
    isSound &= !inp_hasBlank(piece.columns[magnitudeColumn].reals.first(piece.count));
  if (m_elements && !m_areAllConnectors)
    for (const int target : piece.columns[targetColumn].ints.first(piece.count))
      isSound &= NoConnector(target) == nullptr;
  return isSound;
}

std::optional<inpS_LineFault> inpS_DegreeLines::FaultOf(const inpS_LineView& line) {
  const int first = line.slots[degreeColumn];
  if (m_isRange && first == inp_blankInt)
    return inpS_LineFault{-1, "The line does not tell its component."};
  for (const int col : {degreeColumn, lastColumn}) {
    if (col == lastColumn && !m_isRange) continue;
    const int degree = line.slots[static_cast<std::size_t>(col)];
    if (degree == inp_blankInt) continue;
    if (degree < m_first || degree > m_last)
      return inpS_LineFault{
          col, m_what + " " + std::to_string(degree) +
                   (m_first == m_last ? " is not " : " is none of ") + std::to_string(m_first) +
                   (m_first == m_last ? "" : " to " + std::to_string(m_last)) + "."};
    if (col == lastColumn && degree < first)
      return inpS_LineFault{col, "The last component, " + std::to_string(degree) +
                                     ", is below the first, " + std::to_string(first) + "."};
  }
  if (m_elements)
    if (const auto type = NoConnector(line.slots[targetColumn]))
      return inpS_LineFault{targetColumn,
                            "Elements of type " + cow_String(type->name) +
                                " are no connectors: they have no such components.",
                            false, false};
  if (m_needsMagnitude && !line.Has(magnitudeColumn))
    return inpS_LineFault{-1, "The line gives no magnitude, which is 0.", false, false};
  return {};
}
