#include "inpS/history/inpS_ActingConditions.h"
#include "inpS/history/inpS_GivenConditions.h"

inpS_ActingConditions::inpS_ActingConditions(const KvoObjDocument& document, int step)
    : m_inForce(inpS_givenConditions(document)), m_step(step) {
  for (const KvoSimPosition& one : document.Context().GetRecords(eds_RecordKind::HistoryStep))
    if (one.DataRecord().GetInt(eds_HistoryStep_Number) == step)
      m_isPerturbation = inpS_isPerturbation(one.DataRecord());
}

// A perturbation step has conditions of the state it starts from, but none of its loads.
bool inpS_ActingConditions::ActsIn(const inpS_InForce::Source& source) const {
  if (source.firstStep > m_step || source.lastStep < m_step) return false;
  return !m_isPerturbation || source.firstStep == m_step ||
         source.kind->lasting == inpS_ExcitationKind::Lasting::Held;
}

void inpS_ActingConditions::ForAll(const std::function<void(const Acting&)>& take) {
  inpS_InForce::Pieces pieces(m_inForce);
  for (std::size_t n = 0; n < m_inForce.Sources().size(); ++n) {
    const inpS_InForce::Source& source = m_inForce.Sources()[n];
    if (!ActsIn(source)) continue;
    inpS_ConditionRows rows(source.record, *source.kind);
    inpS_ConditionTargets targets(source.record, *source.kind);
    inpS_ConditionRow row;
    for (long long at = 0; rows.Next(row); ++at) {
      if (row.degrees == 0) continue;
      const inpS_InForce::Piece whole{source.firstStep, source.lastStep, row.degrees, nullptr};
      const auto* parts = pieces.Of(n, at, row, targets);
      const inpS_InForce::Region region = m_inForce.RegionOf(*source.kind, row.target, targets);
      const bool isNamed = row.target < 0 && row.target != inpS_ConditionRow::kAll;
      const auto tell = [&](const inpS_InForce::Piece& part) {
        if (part.firstStep > m_step || part.lastStep < m_step) return;
        take({*source.kind, source.record, source.loadCase, source.firstStep,
              source.firstStep == m_step, m_isPerturbation && source.firstStep != m_step,
              part.degrees, row.restraint, row.value, rows.Label(row.label),
              isNamed ? targets.At(row.target).set : KvoSimPosition(),
              isNamed ? targets.At(row.target).instance : KvoSimPosition(),
              row.target >= 0 ? row.target : -1, part.members ? part.members : region.members});
      };
      if (!parts) tell(whole);
      if (parts)
        for (const inpS_InForce::Piece& part : *parts) tell(part);
    }
  }
}
