#include "database/KvoObjDocument.h"
#include "base/utl_Assert.h"
#include "database/KvoObjModel.h"
#include "database/KvoSrvFsmFTable.h"
#include "database/engine/eds_Store.h"

namespace {

eds_ModelSize modelSize(KvoSize size) {
  return size == KvoSize::Small ? eds_ModelSize::Small : eds_ModelSize::Large;
}

} // namespace

KvoObjDocument KvoObjDocument::Create(const std::filesystem::path& file, KvoSize size) {
  auto store = std::make_shared<eds_Store>();
  store->Create(file, modelSize(size));
  return KvoObjDocument(std::move(store));
}

KvoObjDocument KvoObjDocument::CreateReplacing(const std::filesystem::path& file, KvoSize size) {
  auto store = std::make_shared<eds_Store>();
  store->CreateReplacing(file, modelSize(size));
  return KvoObjDocument(std::move(store));
}

KvoObjDocument KvoObjDocument::Open(const std::filesystem::path& file, KvoAccess access) {
  auto store = std::make_shared<eds_Store>();
  store->Open(file, access == KvoAccess::ReadOnly);
  return KvoObjDocument(std::move(store));
}

KvoObjDocument KvoObjDocument::InMemory() {
  auto store = std::make_shared<eds_Store>();
  store->CreateInMemory();
  return KvoObjDocument(std::move(store));
}

bool KvoObjDocument::IsClosed() const {
  return m_store == nullptr || m_store->IsClosed();
}
bool KvoObjDocument::IsReadOnly() const {
  return m_store->IsReadOnly();
}
void KvoObjDocument::Finish() {
  m_store->Finish();
}
void KvoObjDocument::Close() {
  m_store->Close();
}
void KvoObjDocument::GiveUp() {
  m_store->GiveUp();
}

void KvoObjDocument::SetMeta(const cow_String& key, const cow_String& value) {
  utl_ASSERT(!IsReadOnly());
  m_store->SetMeta(key, value);
}

cow_String KvoObjDocument::GetMeta(const cow_String& key) const {
  return m_store->Meta(key);
}
bool KvoObjDocument::IsFinished() const {
  return m_store->Meta("finished") == "1";
}
const std::filesystem::path& KvoObjDocument::Path() const {
  return m_store->Path();
}

KvoObjModel KvoObjDocument::GetModel() const {
  return KvoObjModel(Focus());
}
KvoObjMesh KvoObjDocument::GetMesh() const {
  return GetModel().GetMesh();
}
KvoSimPosition KvoObjDocument::Focus() const {
  return KvoSimPosition(Context());
}

KvoSimDataRecord KvoObjDocument::GetRecord(eds_TypeID kind, int64_t id) const {
  return Context().GetRecord(kind, id);
}

bool KvoObjDocument::HasRecord(eds_TypeID kind, int64_t id) const {
  return !GetRecord(kind, id).IsNull();
}

KvoSimPosition KvoObjDocument::CreateDataRecord(eds_TypeID kind) const {
  return Focus().CreateDataRecord(kind);
}

KvoSimPosition KvoObjDocument::CreateTypedCollection(eds_TypeID kind,
                                                     const cow_String& name) const {
  return Focus().CreateTypedCollection(kind, name);
}

KvoSimDSet KvoObjDocument::CreateTypedDSet(eds_TypeID type, const KvoSimGrid& grid) const {
  return Context().CreateDSet(type, grid);
}

KvoSimDistribution KvoObjDocument::CreateTypedDistribution(eds_TypeID type, const KvoSimGrid& grid,
                                                           const KvoSimRangeType& range) const {
  return Context().CreateDistribution(type, grid, range);
}

KvoSimDistribution KvoObjDocument::CreateDistribution(const KvoSimGrid& grid,
                                                      const KvoSimRangeType& range) const {
  return Context().CreateDistribution(eds_DataType::General, grid, range);
}

KvoSimDistribution KvoObjDocument::CreateTempDistribution(const KvoSimGrid& grid,
                                                          const KvoSimRangeType& range) {
  const KvoSimDistribution distribution = CreateDistribution(grid, range);
  m_store->KeepTempDistribution(distribution.ID());
  return distribution;
}

KvoSrvFsmFTable KvoObjDocument::CreateTable(eds_TypeID kind) const {
  return KvoSrvFsmFTable(CreateDataRecord(kind));
}

// ---- standard collections

KvoSimCollection KvoObjDocument::GetStandardCollection(eds_CollectionKind kind) const {
  return {m_store.get(), m_store->Collection(kind, true)};
}

#define KVO_STANDARD_COLLECTION(name)                                                              \
  KvoSimCollection KvoObjDocument::Get##name##Collection() const {                                 \
    return GetStandardCollection(eds_CollectionKind::name);                                        \
  }
KVO_STANDARD_COLLECTION(Point)
KVO_STANDARD_COLLECTION(Component)
KVO_STANDARD_COLLECTION(Material)
KVO_STANDARD_COLLECTION(ElementSpec)
KVO_STANDARD_COLLECTION(Face)
KVO_STANDARD_COLLECTION(Edge)
KVO_STANDARD_COLLECTION(DofType)
KVO_STANDARD_COLLECTION(Quadrature)
KVO_STANDARD_COLLECTION(SectionPoint)
KVO_STANDARD_COLLECTION(SectionLayer)
KVO_STANDARD_COLLECTION(LayerPoint)
KVO_STANDARD_COLLECTION(TemperaturePoint)
KVO_STANDARD_COLLECTION(OrientationAxis)
KVO_STANDARD_COLLECTION(PropertyTable)
KVO_STANDARD_COLLECTION(PropertyTableRow)
KVO_STANDARD_COLLECTION(PropertyFieldVariableType)
KVO_STANDARD_COLLECTION(UserSubroutine)
KVO_STANDARD_COLLECTION(ConnectionType)
KVO_STANDARD_COLLECTION(ConnectorBehavior)
KVO_STANDARD_COLLECTION(DistributingCouplingMethod)
KVO_STANDARD_COLLECTION(DistributingWeightingMethod)
KVO_STANDARD_COLLECTION(Term)
#undef KVO_STANDARD_COLLECTION

KvoSimPosition KvoObjDocument::GetSymbol(const cow_String& name) const {
  return KvoSimPosition(m_store.get(), {}).GetSymbolPosition(name);
}

int32_t KvoObjDocument::GetCMemberIndex(const KvoSimCollection& collection,
                                        const KvoSimPosition& member) const {
  return Context().GetCMemberIndex(collection, member);
}

std::vector<int32_t>
KvoObjDocument::GetCMembersFromDynamicIDs(const KvoSimCollection& collection,
                                          const std::vector<int64_t>& ids) const {
  const eds_CollectionInfo* info = eds_schemaCollection(collection.Kind());
  utl_ASSERT(info != nullptr && info->source.fragment == eds_Fragment::Record);
  eds_RowTable& rows = m_store->Rows(static_cast<eds_RecordKind>(info->source.index));
  std::vector<int32_t> members;
  members.reserve(ids.size());
  for (int64_t id : ids) members.push_back(rows.Has(id) ? static_cast<int32_t>(id - 1) : -1);
  return members;
}
