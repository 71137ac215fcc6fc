#include "database/KvoSimContext.h"
#include "base/utl_Assert.h"
#include "database/KvoSimDistribution.h"
#include "database/KvoSimPosition.h"
#include "database/engine/eds_Store.h"

namespace {

cow_String gridText(const KvoSimGrid& grid) {
  cow_String text;
  for (const KvoSimCollection& collection : grid.Collections())
    text += (text.empty() ? "" : " ") + std::to_string(collection.ID());
  return text;
}

} // namespace

bool KvoSimContext::IsReadOnly() const {
  return m_store->IsReadOnly();
}

int KvoSimContext::Schema() const {
  return eds_formatVersion; // no other is opened
}

KvoSimCollection KvoSimContext::CreateCollection(eds_TypeID type, const cow_String& name) const {
  utl_ASSERT(type.fragment == eds_Fragment::Collection);
  eds_RowTable& rows = m_store->Rows(eds_RecordKind::Collection);
  const int64_t id = rows.Create();
  rows.SetInt(id, eds_Collection_Type, type.index);
  if (!name.empty()) rows.SetText(id, eds_Collection_Name, name);
  return {m_store, id};
}

KvoSimDSet KvoSimContext::CreateDSet(eds_TypeID type, const KvoSimGrid& grid) const {
  utl_ASSERT(type.fragment == eds_Fragment::Data);
  eds_RowTable& rows = m_store->Rows(eds_RecordKind::DSet);
  const int64_t id = rows.Create();
  rows.SetInt(id, eds_DSet_Type, type.index);
  rows.SetText(id, eds_DSet_Grid, gridText(grid));
  return {m_store, id};
}

void KvoSimContext::UpdateDSet(const KvoSimDSet& dset, const KvoSimGrid& grid) const {
  m_store->Rows(eds_RecordKind::DSet).SetText(dset.ID(), eds_DSet_Grid, gridText(grid));
}

KvoSimDistribution KvoSimContext::CreateDistribution(eds_TypeID type, const KvoSimGrid& grid,
                                                     const KvoSimRangeType& range) const {
  utl_ASSERT(type.fragment == eds_Fragment::Data && !grid.IsNull());
  eds_RowTable& rows = m_store->Rows(eds_RecordKind::Distribution);
  const int64_t id = rows.Create();
  rows.SetInt(id, eds_Distribution_Type, type.index);
  rows.SetText(id, eds_Distribution_Grid, gridText(grid));
  rows.SetInt(id, eds_Distribution_ValueType, static_cast<int64_t>(range.ValueType()));
  rows.SetInt(id, eds_Distribution_Values, range.NumValues());
  return {m_store, id};
}

KvoSimDataRecord KvoSimContext::GetRecord(eds_TypeID kind, int64_t id) const {
  utl_ASSERT(kind.fragment == eds_Fragment::Record);
  const eds_ObjectID object(static_cast<eds_RecordKind>(kind.index), id);
  return m_store->Exists(object) ? KvoSimDataRecord(m_store, object) : KvoSimDataRecord();
}

std::vector<KvoSimPosition> KvoSimContext::GetRecords(eds_TypeID kind) const {
  utl_ASSERT(kind.fragment == eds_Fragment::Record);
  eds_RowTable& rows = m_store->Rows(static_cast<eds_RecordKind>(kind.index));
  std::vector<KvoSimPosition> records;
  records.reserve(static_cast<size_t>(rows.Count()));
  for (int64_t id = 1; id <= rows.LastID(); ++id)
    if (rows.Has(id)) records.emplace_back(m_store, rows.Object(id));
  return records;
}

int64_t KvoSimContext::GetCollectionID(const KvoSimCSetID& cset) const {
  return cset.CollectionID();
}

int32_t KvoSimContext::GetCMemberIndex(const KvoSimCollection& collection,
                                       const KvoSimPosition& member) const {
  const eds_CollectionInfo* info = eds_schemaCollection(collection.Kind());
  utl_ASSERT(info != nullptr);
  if (member.IsNull()) return -1;
  if (info->source.fragment == eds_Fragment::Symbol)
    return member.IsA(info->source) ? member.GetSymbol() : -1;
  if (info->source.fragment == eds_Fragment::Record)
    return member.IsA(info->source) ? static_cast<int32_t>(member.ID() - 1) : -1;
  return -1; // positions are their own index
}

KvoSimCSet KvoSimContext::GetCMembership(const KvoSimCSetID& cset) const {
  return KvoSimCSet(cset);
}

void KvoSimContext::Save() const {
  m_store->Save();
}
