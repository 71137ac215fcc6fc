#include "inpS/history/inpS_ActingConditions.h"
#include "inpS/history/inpS_GivenConditions.h"

namespace {

// The values of rows behind the first one, in ascending order of rows.
class MoreValues {
public:
  MoreValues(const KvoSimPosition& position, const inpS_ExcitationKind& kind) {
    if ((kind.field != "NT" && kind.field != "FV") || kind.value < 0) return;
    const KvoSimDataRecord record = position.DataRecord();
    m_rows = record.GetInt64(kind.info->rowsField);
    const auto& items = kind.info->columnItems;
    for (auto item = items.begin() + kind.value + 1; item != items.end(); ++item) {
      const int field = item->alternatives.front().field;
      const int perRow = item->perRowField >= 0 ? record.GetInt(item->perRowField) : 1;
      if (perRow < 1) eds_tellDamaged(position, "a column has rows of no value");
      m_columns.push_back(
          {inpS_StoredColumn<double>(
               record, *item, m_rows, perRow,
               record.IsMemberNull(field) ? inp_blankReal : record.GetDouble(field), *m_guard),
           static_cast<std::size_t>(perRow),
           {}});
      m_hasAny |= !m_columns.back().stored.IsOne() || !record.IsMemberNull(field);
    }
  }

  std::span<const double> Of(long long row) {
    if (!m_hasAny || row >= m_rows) return {};
    if (row >= m_end) Load(row);
    m_values.clear();
    const auto n = static_cast<std::size_t>(row - m_begin);
    for (const Column& column : m_columns)
      m_values.insert(m_values.end(),
                      column.values.begin() + static_cast<std::ptrdiff_t>(n * column.perRow),
                      column.values.begin() + static_cast<std::ptrdiff_t>((n + 1) * column.perRow));
    return m_values;
  }

private:
  struct Column {
    inpS_StoredColumn<double> stored;
    std::size_t perRow;
    cow_List<double> values; // of the rows at hand
  };
  void Load(long long row) {
    constexpr long long rows = 4096;
    m_begin = row;
    m_end = std::min(m_rows, row + rows);
    for (Column& column : m_columns) {
      column.values.resize(static_cast<std::size_t>(m_end - m_begin) * column.perRow);
      column.stored.Read(m_begin, column.values);
    }
  }

  std::unique_ptr<std::mutex> m_guard = std::make_unique<std::mutex>();
  long long m_rows = 0;
  bool m_hasAny = false;
  long long m_begin = 0;
  long long m_end = 0;
  cow_List<Column> m_columns;
  cow_List<double> m_values; // of the row at hand
};

} // namespace

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
    MoreValues more(source.record, *source.kind);
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
              row.target >= 0 ? row.target : -1, part.members ? part.members : region.members,
              more.Of(at)});
      };
      if (!parts) tell(whole);
      if (parts)
        for (const inpS_InForce::Piece& part : *parts) tell(part);
    }
  }
}
