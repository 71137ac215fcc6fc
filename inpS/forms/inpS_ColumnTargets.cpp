#include "inpS/forms/inpS_ColumnTargets.h"
#include "database/KvoSimDataRecord.h"
#include <algorithm>

int inpS_TargetSets::PlaceOf(const KvoSimPosition& set, const KvoSimPosition& instance) {
  const auto [known, isNew] = m_places.try_emplace(
      {set.Object().Packed(), instance.Object().Packed()}, -1 - static_cast<int>(m_places.size()));
  if (isNew) {
    const KvoSimPosition target = m_record.CreateDataRecord(eds_RecordKind::Target);
    target.DataRecord().SetReference(eds_Target_Set, set);
    if (!instance.IsNull()) target.DataRecord().SetReference(eds_Target_Instance, instance);
    m_record.Associate(eds_Member::Targets, target);
  }
  return known->second;
}

inpS_ColumnTargets::inpS_ColumnTargets(const eds_FormItem& item, const inpS_FormNames& names,
                                       inpS_TargetSets& sets)
    : m_item(item), m_names(names), m_sets(sets), m_space(names.Labels(item)) {}

void inpS_ColumnTargets::Translate(std::span<int> slots) const {
  thread_local cow_List<int> ordinals;
  ordinals.resize(slots.size());
  if (m_space.labels)
    m_space.labels->Ordinals(slots, ordinals);
  else
    std::ranges::fill(ordinals, -1);
  const int offset = static_cast<int>(m_space.offset);
  for (std::size_t n = 0; n < slots.size(); ++n) {
    if (ordinals[n] >= 0)
      slots[n] = ordinals[n] + offset;
    else if (slots[n] != inp_blankInt && !inp_isNameCode(slots[n]))
      slots[n] = inpS_noTarget;
  }
}

void inpS_ColumnTargets::TranslateNames(const inp_ColumnPiece& piece, std::span<int> slots) {
  m_codes.Translate(piece, slots, [this](std::string_view name) { return OfName(name); });
}

int inpS_ColumnTargets::OfLabel(long long label) const {
  if (label != static_cast<int>(label) || !m_space.labels) return inpS_noTarget;
  const int ordinal = m_space.labels->Ordinal(static_cast<int>(label));
  return ordinal < 0 ? inpS_noTarget : ordinal + static_cast<int>(m_space.offset);
}

int inpS_ColumnTargets::OfName(std::string_view name) {
  if (const auto known = m_known.find(name); known != m_known.end()) return known->second;
  const auto known = m_known.emplace(name, inpS_noTarget).first;
  long long ordinal = -1;
  if (m_names.FindLabel(m_item, known->first, ordinal)) {
    if (ordinal >= 0) known->second = static_cast<int>(ordinal);
    return known->second;
  }
  for (const eds_FormItem::Alternative& one : m_item.alternatives) {
    if (!one.referable) continue;
    const inpS_SetVisitor::Found found = m_names.Find(*one.referable, known->first);
    if (!found.set.IsNull()) return known->second = m_sets.PlaceOf(found.set, found.instance);
  }
  return known->second;
}

bool inpS_ColumnTargets::IsLabel(const cow_String& name) const {
  long long ordinal = -1;
  return m_names.FindLabel(m_item, name, ordinal);
}

int inpS_ColumnTargets::Of(const inp_DataArray& data, long long row, int col) {
  switch (data.Type(row, col)) {
  case inp_FieldType::Integer:
    return OfLabel(data.AsInt64(row, col));
  case inp_FieldType::Double:
    return inpS_noTarget;
  default:
    return OfName(data.AsStringVerbatim(row, col));
  }
}
