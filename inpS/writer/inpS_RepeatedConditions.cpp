#include "inpS/writer/inpS_RepeatedConditions.h"
#include "base/utl_Stream.h"
#include "database/KvoObjDocument.h"
#include "inpS/forms/inpS_FormPrinter.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/history/inpS_GivenConditions.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/writer/inpS_AmplitudeSpan.h"
#include "inpS/writer/inpS_ColumnPrinter.h"
#include "inpS/writer/inpS_ConditionLines.h"
#include <algorithm>

using Kind = inpS_ExcitationKind;
using Piece = inpS_InForce::Piece;

namespace {

bool goesOn(const Kind& kind) {
  return kind.info->columnItems.back().isRepeated;
}

} // namespace

bool inpS_RepeatedConditions::IsMeant(const inpS_InForce::Source& source, const Kind& kind,
                                      long long variable, int step, bool isPerturbation) const {
  if (source.kind->number != kind.number || !source.loadCase.IsNull()) return false;
  if (source.firstStep >= step || source.lastStep < step) return false;
  if (isPerturbation && kind.lasting != Kind::Lasting::Held) return false;
  return kind.variable < 0 || source.variable == variable;
}

bool inpS_RepeatedConditions::Print(utl_Stream& out, const Kind& kind, long long variable, int step,
                                    bool isPerturbation, const inpS_DeckScope& scope) {
  if (!m_inForce) m_inForce.emplace(inpS_givenConditions(m_document));
  inpS_InForce::Pieces pieces(*m_inForce);
  bool hasPrinted = false;
  for (std::size_t place = 0; place < m_inForce->Sources().size(); ++place) {
    const inpS_InForce::Source& source = m_inForce->Sources()[place];
    if (!IsMeant(source, kind, variable, step, isPerturbation)) continue;
    const bool hasColumns = source.kind->info->data == eds_FormData::Columns;
    const cow_String lines = hasColumns ? LinesOf(place, step, pieces, scope) : cow_String();
    const bool isLeft =
        hasColumns ? source.rows == 0 || !lines.empty() : IsLeft(place, step, pieces);
    if (!isLeft) continue; // later ones have taken all of it
    inpS_ParameterTexts changed{{"OP", "NEW"}};
    const bool runs = source.firstStep < 1 && step == 1;
    for (const Kind::Amplitude& one : source.kind->amplitudes)
      if (const auto amplitude = source.record.DataRecord().GetReference(one.field);
          !amplitude.IsNull() && !runs && !inpS_isOverTotalTime(amplitude))
        changed[cow_String(one.parameter)] = std::nullopt;
    inpS_printKeywordWith(out, *inpS_FormTable::Instance().Find(source.kind->form), source.record,
                          m_parts, changed);
    if (hasColumns)
      out << lines;
    else
      inpS_printDataLines(out, source.record, m_parts);
    hasPrinted = true;
  }
  return hasPrinted;
}

// Of one that is about all at once; later ones that have taken some of it follow.
bool inpS_RepeatedConditions::IsLeft(std::size_t place, int step,
                                     inpS_InForce::Pieces& pieces) const {
  const inpS_InForce::Source& source = m_inForce->Sources()[place];
  inpS_ConditionRows rows(source.record, *source.kind);
  inpS_ConditionTargets targets(source.record, *source.kind);
  inpS_ConditionRow row;
  bool isLeft = false;
  for (long long at = 0; rows.Next(row); ++at) {
    const cow_List<Piece>* parts = pieces.Of(place, at, row, targets);
    isLeft |= !parts || std::ranges::any_of(*parts, [&](const Piece& piece) {
      return piece.firstStep <= step && piece.lastStep >= step;
    });
  }
  return isLeft;
}

cow_String inpS_RepeatedConditions::LinesOf(std::size_t place, int step,
                                            inpS_InForce::Pieces& pieces,
                                            const inpS_DeckScope& scope) {
  const inpS_InForce::Source& source = m_inForce->Sources()[place];
  cow_String lines;
  inpS_ConditionRows rows(source.record, *source.kind);
  inpS_ConditionTargets targets(source.record, *source.kind);
  const auto texts = inpS_rowTexts(*source.kind->info, source.record, m_labels, scope);
  inpS_ConditionRow row;
  for (long long at = 0; rows.Next(row); ++at) {
    if (row.degrees == 0) continue;
    const cow_List<Piece>* parts = pieces.Of(place, at, row, targets);
    if (!parts) inpS_ConditionLines::Add(lines, texts(at), goesOn(*source.kind));
    if (parts)
      for (const Piece& piece : *parts)
        if (piece.firstStep <= step && piece.lastStep >= step)
          AddPiece(lines, *source.kind, row, piece, texts(at));
  }
  return lines;
}

void inpS_RepeatedConditions::AddPiece(cow_String& lines, const Kind& kind,
                                       const inpS_ConditionRow& row, const Piece& piece,
                                       cow_List<cow_String> fields) const {
  const auto addDegrees = [&] {
    if (piece.degrees == row.degrees || kind.first < 0)
      return inpS_ConditionLines::Add(lines, fields, goesOn(kind));
    for (const auto& [first, last] : inpS_ConditionLines::Runs(piece.degrees)) {
      fields[static_cast<std::size_t>(kind.first)] = std::to_string(first);
      if (kind.last >= 0) fields[static_cast<std::size_t>(kind.last)] = std::to_string(last);
      inpS_ConditionLines::Add(lines, fields, goesOn(kind));
    }
  };
  if (!piece.members) return addDegrees();
  for (long long n = 0; n < piece.members->Size(); ++n) {
    fields[static_cast<std::size_t>(kind.target)] = inpS_ConditionLines::Label(
        m_labels, inpS_ConditionLines::IsOfNodes(kind), (*piece.members)[n]);
    addDegrees();
  }
}
