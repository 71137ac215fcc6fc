#include "database/KvoSimPosition.h"
#include "base/utl_Assert.h"
#include "database/KvoSimDistribution.h"
#include "database/KvoSrvFsmFTable.h"
#include "database/engine/eds_Store.h"

namespace {

eds_Member memberOf(eds_TypeID type) {
  utl_ASSERT(type.fragment == eds_Fragment::Member);
  const auto member = static_cast<eds_Member>(type.index);
  utl_ASSERT(eds_schemaMember(member) != nullptr);
  return member;
}

eds_Member memberOf(eds_TypeID type, eds_MemberShape shape) {
  const eds_Member member = memberOf(type);
  utl_ASSERT(eds_schemaMember(member)->shape == shape);
  return member;
}

int nameField(const eds_RecordInfo& info) {
  for (size_t i = 0; i < info.fields.size(); ++i)
    if (info.fields[i].column == "name" && info.fields[i].type == eds_FieldType::Text)
      return static_cast<int>(i);
  return -1;
}

eds_ObjectID targetOf(eds_Store* store, int64_t link) {
  return store->Rows(eds_RecordKind::Link).Reference(link, eds_Link_Target);
}

} // namespace

KvoSimPosition::KvoSimPosition(const KvoSimContext& context)
    : m_store(context.ID().store), m_object(eds_RecordKind::Model, 1) {
  utl_ASSERT(m_store != nullptr);
  eds_RowTable& models = m_store->Rows(eds_RecordKind::Model);
  if (models.LastID() > 0) return;
  // Every document has one model; in a file opened for reading that lacks it there is none.
  if (m_store->IsReadOnly()) {
    m_object = {};
  } else {
    models.Create();
  }
}

eds_TypeID KvoSimPosition::TypePosition() const {
  if (IsNull()) return {};
  if (m_object.kind == eds_ObjectID::SymbolKind)
    return static_cast<eds_Vocabulary>(m_object.id >> 16);
  eds_RowTable& rows = m_store->RowsOf(m_object);
  switch (m_object.RecordKind()) {
  case eds_RecordKind::Collection:
    return static_cast<eds_CollectionKind>(rows.Int(m_object.id, eds_Collection_Type));
  case eds_RecordKind::DSet:
    return static_cast<eds_DataType>(rows.Int(m_object.id, eds_DSet_Type));
  case eds_RecordKind::Distribution:
    return static_cast<eds_DataType>(rows.Int(m_object.id, eds_Distribution_Type));
  default:
    return m_object.RecordKind();
  }
}

bool KvoSimPosition::IsA(eds_TypeID type) const {
  if (IsNull()) return false;
  return type == TypePosition() || type == eds_TypeID(m_object.RecordKind());
}

cow_String KvoSimPosition::Name() const {
  if (IsNull()) return {};
  if (m_object.kind == eds_ObjectID::SymbolKind) return GetSymbolName();
  eds_RowTable& links = m_store->Rows(eds_RecordKind::Link);
  for (int64_t link : m_store->Links().LinksTo(m_object))
    if (!links.IsNull(link, eds_Link_TextKey))
      return cow_String(links.Text(link, eds_Link_TextKey));
  eds_RowTable& rows = m_store->RowsOf(m_object);
  const int field = nameField(rows.Info());
  return field >= 0 ? cow_String(rows.Text(m_object.id, field)) : cow_String();
}

KvoSimPosition KvoSimPosition::Parent() const {
  const std::vector<KvoSimPosition> referrers = ReferrersSet();
  return referrers.empty() ? KvoSimPosition() : referrers.front();
}

std::vector<KvoSimPosition> KvoSimPosition::ReferrersSet() const {
  std::vector<KvoSimPosition> referrers;
  if (IsNull()) return referrers;
  eds_RowTable& links = m_store->Rows(eds_RecordKind::Link);
  for (int64_t link : m_store->Links().LinksTo(m_object))
    referrers.emplace_back(m_store, links.Reference(link, eds_Link_Owner));
  return referrers;
}

// ---- new objects

KvoSimPosition KvoSimPosition::CreateDataRecord(eds_TypeID kind) const {
  utl_ASSERT(kind.fragment == eds_Fragment::Record && m_store != nullptr);
  utl_ASSERT(!eds_isOwnKind(static_cast<eds_RecordKind>(kind.index)));
  eds_RowTable& rows = m_store->Rows(static_cast<eds_RecordKind>(kind.index));
  return {m_store, rows.Object(rows.Create())};
}

KvoSimPosition KvoSimPosition::CreateTypedCollection(eds_TypeID kind,
                                                     const cow_String& name) const {
  utl_ASSERT(kind.fragment == eds_Fragment::Collection);
  return Context().CreateCollection(kind, name).Position();
}

KvoSimPosition KvoSimPosition::CreateTypedDistribution(eds_TypeID type, const KvoSimGrid& grid,
                                                       const KvoSimRangeType& range) const {
  return Context().CreateDistribution(type, grid, range).Position();
}

// ---- members

void KvoSimPosition::SetPosition(eds_TypeID member, const KvoSimPosition& target) const {
  if (target.IsNull()) return UnsetPosition(member);
  utl_ASSERT(!IsNull() && target.m_store == m_store);
  m_store->Links().Enter(m_object, memberOf(member, eds_MemberShape::One), {}, 0, target.m_object);
}

void KvoSimPosition::UnsetPosition(eds_TypeID member) const {
  const eds_LinkIndex::List* list =
      m_store->Links().Find(m_object, memberOf(member, eds_MemberShape::One));
  if (list != nullptr) m_store->Links().Remove(list->links.front());
}

KvoSimPosition KvoSimPosition::Follow(eds_TypeID member) const {
  if (IsNull()) return {};
  const eds_LinkIndex::List* list = m_store->Links().Find(m_object, memberOf(member));
  if (list == nullptr) return {};
  return {m_store, targetOf(m_store, list->links.front())};
}

void KvoSimPosition::Associate(eds_TypeID member, const KvoSimPosition& target) const {
  utl_ASSERT(!IsNull() && !target.IsNull() && target.m_store == m_store);
  const eds_Member which = memberOf(member);
  const eds_MemberShape shape = eds_schemaMember(which)->shape;
  utl_ASSERT(shape == eds_MemberShape::Set || shape == eds_MemberShape::List);
  m_store->Links().Enter(m_object, which, {}, 0, target.m_object);
}

void KvoSimPosition::Associate(eds_TypeID member, int64_t key, const KvoSimPosition& target) const {
  utl_ASSERT(!IsNull() && !target.IsNull() && target.m_store == m_store);
  m_store->Links().Enter(m_object, memberOf(member, eds_MemberShape::IntMap), {}, key,
                         target.m_object);
}

void KvoSimPosition::AssociateStringKey(eds_TypeID member, std::string_view key,
                                        const KvoSimPosition& target) const {
  utl_ASSERT(!IsNull() && !target.IsNull() && target.m_store == m_store);
  m_store->Links().Enter(m_object, memberOf(member, eds_MemberShape::TextMap), key, 0,
                         target.m_object);
}

void KvoSimPosition::Dissociate(eds_TypeID member, const KvoSimPosition& target) const {
  const eds_LinkIndex::List* list = m_store->Links().Find(m_object, memberOf(member));
  if (list == nullptr) return;
  for (int64_t link : std::vector<int64_t>(list->links))
    if (targetOf(m_store, link) == target.m_object) m_store->Links().Remove(link);
}

KvoSimPosition KvoSimPosition::FollowIntKey(eds_TypeID member, int64_t key) const {
  if (IsNull()) return {};
  const int64_t link = m_store->Links().FindKey(m_object, memberOf(member, eds_MemberShape::IntMap),
                                                eds_linkKey(static_cast<uint64_t>(key)));
  return link != 0 ? KvoSimPosition(m_store, targetOf(m_store, link)) : KvoSimPosition();
}

KvoSimPosition KvoSimPosition::FollowStringKey(eds_TypeID member, std::string_view key) const {
  if (IsNull()) return {};
  const int64_t link =
      m_store->Links().FindKey(m_object, memberOf(member, eds_MemberShape::TextMap), key);
  return link != 0 ? KvoSimPosition(m_store, targetOf(m_store, link)) : KvoSimPosition();
}

KvoSimPosition KvoSimPosition::FollowList(eds_TypeID member, int64_t index) const {
  if (IsNull()) return {};
  const eds_LinkIndex::List* list = m_store->Links().Find(m_object, memberOf(member));
  const bool isThere =
      list != nullptr && index >= 0 && index < static_cast<int64_t>(list->links.size());
  if (!isThere) return {};
  return {m_store, targetOf(m_store, list->links[static_cast<size_t>(index)])};
}

std::vector<KvoSimPosition> KvoSimPosition::FollowMap(eds_TypeID member) const {
  std::vector<KvoSimPosition> targets;
  if (IsNull()) return targets;
  const eds_LinkIndex::List* list = m_store->Links().Find(m_object, memberOf(member));
  if (list == nullptr) return targets;
  targets.reserve(list->links.size());
  for (int64_t link : list->links) targets.emplace_back(m_store, targetOf(m_store, link));
  return targets;
}

cow_Map<cow_String, KvoSimPosition> KvoSimPosition::GetMap(eds_TypeID member) const {
  cow_Map<cow_String, KvoSimPosition> map;
  const std::vector<cow_String> keys = GetStringKeys(member);
  const std::vector<KvoSimPosition> targets = FollowMap(member);
  for (size_t i = 0; i < keys.size(); ++i) map.emplace(keys[i], targets[i]);
  return map;
}

std::vector<int64_t> KvoSimPosition::GetIntKeys(eds_TypeID member) const {
  std::vector<int64_t> keys;
  const eds_LinkIndex::List* list =
      m_store->Links().Find(m_object, memberOf(member, eds_MemberShape::IntMap));
  if (list == nullptr) return keys;
  eds_RowTable& rows = m_store->Rows(eds_RecordKind::Link);
  for (int64_t link : list->links) keys.push_back(rows.Int(link, eds_Link_IntKey));
  return keys;
}

std::vector<cow_String> KvoSimPosition::GetStringKeys(eds_TypeID member) const {
  std::vector<cow_String> keys;
  const eds_LinkIndex::List* list =
      m_store->Links().Find(m_object, memberOf(member, eds_MemberShape::TextMap));
  if (list == nullptr) return keys;
  eds_RowTable& rows = m_store->Rows(eds_RecordKind::Link);
  for (int64_t link : list->links) keys.emplace_back(rows.Text(link, eds_Link_TextKey));
  return keys;
}

int64_t KvoSimPosition::MemberCount(eds_TypeID member) const {
  if (IsNull()) return 0;
  const eds_LinkIndex::List* list = m_store->Links().Find(m_object, memberOf(member));
  return list != nullptr ? static_cast<int64_t>(list->links.size()) : 0;
}

// ---- seen as what it is

KvoSimCollection KvoSimPosition::AsCollection() const {
  if (IsNull()) return {};
  utl_ASSERT(m_object.RecordKind() == eds_RecordKind::Collection);
  return {m_store, m_object.id};
}

KvoSimDistribution KvoSimPosition::AsDistribution() const {
  if (IsNull()) return {};
  utl_ASSERT(m_object.RecordKind() == eds_RecordKind::Distribution);
  return {m_store, m_object.id};
}

KvoSimCollection KvoSimPosition::GetCollection(eds_TypeID member) const {
  return Follow(member).AsCollection();
}

KvoSimDistribution KvoSimPosition::GetDistribution(eds_TypeID member) const {
  return Follow(member).AsDistribution();
}

KvoSimDSet KvoSimPosition::GetDSet(eds_TypeID member) const {
  const KvoSimPosition dset = Follow(member);
  if (dset.IsNull()) return {};
  utl_ASSERT(dset.m_object.RecordKind() == eds_RecordKind::DSet);
  return {m_store, dset.m_object.id};
}

KvoSimCSet KvoSimPosition::GetCSet(int field) const {
  return DataRecord().GetSet(field);
}

KvoSrvFsmFTable KvoSimPosition::CreateFTable(eds_TypeID kind) const {
  utl_ASSERT(kind == eds_TypeID(eds_RecordKind::PropertyTable));
  const KvoSimPosition table = CreateDataRecord(kind);
  table.DataRecord().SetReference(eds_PropertyTable_Property, *this);
  SetPosition(eds_Member::PropertyTable, table);
  return KvoSrvFsmFTable(table);
}

KvoSrvFsmFTable KvoSimPosition::GetFTable() const {
  return KvoSrvFsmFTable(Follow(eds_Member::PropertyTable));
}

// ---- annotations: a record of their own, found by a link

void KvoSimPosition::SetAnnotation(std::string_view text) const {
  utl_ASSERT(!IsNull());
  eds_RowTable& rows = m_store->Rows(eds_RecordKind::Annotation);
  KvoSimPosition note = Follow(eds_Member::Annotation);
  if (note.IsNull()) {
    note = {m_store, rows.Object(rows.Create())};
    rows.SetReference(note.ID(), eds_Annotation_Owner, m_object);
    SetPosition(eds_Member::Annotation, note);
  }
  rows.SetText(note.ID(), eds_Annotation_Text, text);
}

cow_String KvoSimPosition::GetAnnotation() const {
  const KvoSimPosition note = Follow(eds_Member::Annotation);
  return note.IsNull() ? cow_String() : note.DataRecord().ReturnString(eds_Annotation_Text);
}

bool KvoSimPosition::HasAnnotation() const {
  return !Follow(eds_Member::Annotation).IsNull();
}

// ---- symbols

KvoSimPosition KvoSimPosition::GetSymbolPosition(std::string_view name) const {
  for (const eds_SymbolInfo& symbol : eds_schemaSymbols()) {
    if (symbol.name != name) continue;
    eds_ObjectID object;
    object.kind = eds_ObjectID::SymbolKind;
    object.id = static_cast<int64_t>(symbol.vocabulary) << 16 | symbol.number;
    return {m_store, object};
  }
  return {};
}

int KvoSimPosition::GetSymbol() const {
  utl_ASSERT(m_object.kind == eds_ObjectID::SymbolKind);
  return static_cast<int>(m_object.id & 0xffff);
}

cow_String KvoSimPosition::GetSymbolName() const {
  utl_ASSERT(m_object.kind == eds_ObjectID::SymbolKind);
  const auto symbols = eds_schemaSymbols(static_cast<eds_Vocabulary>(m_object.id >> 16));
  return cow_String(symbols[static_cast<size_t>(GetSymbol())].name);
}

void KvoSimPosition::Remove() const {
  utl_ASSERT(!IsNull());
  const KvoSimPosition note = Follow(eds_Member::Annotation);
  if (!note.IsNull()) m_store->RemoveObject(note.m_object);
  m_store->RemoveObject(m_object);
}
