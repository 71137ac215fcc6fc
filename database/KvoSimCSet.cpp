#include "database/KvoSimCSet.h"
#include "base/utl_Assert.h"
#include "database/KvoSimCollection.h"
#include "database/KvoSimPosition.h"
#include "database/engine/eds_Store.h"

int64_t KvoSimCSetID::CollectionID() const {
  return IsNull() ? 0 : m_store->CSetCollection(m_number);
}

KvoSimCSet::KvoSimCSet(const KvoSimCSetID& id)
    : m_store(id.Store()), m_collection(id.CollectionID()), m_id(id) {
  if (!id.IsNull()) m_members = m_store->CSet(id.Number());
}

KvoSimCSet::KvoSimCSet(const KvoSimCollection& collection, eds_MemberSet members)
    : m_store(collection.Store()), m_collection(collection.ID()),
      m_members(std::make_shared<const eds_MemberSet>(std::move(members))) {}

KvoSimCSet::KvoSimCSet(const KvoSimCollection& collection, int32_t first, int64_t count,
                       int32_t stride)
    : KvoSimCSet(collection, eds_MemberSet::Strided(first, count, stride)) {}

KvoSimPosition KvoSimCSet::Position() const {
  if (m_id.Number() <= 0) return {};
  return {m_store, {eds_RecordKind::CSet, m_id.Number()}};
}

const eds_MemberSet& KvoSimCSet::Set() const& {
  static const eds_MemberSet none;
  return m_members != nullptr ? *m_members : none;
}

eds_MemberSet KvoSimCSet::Set() const&& {
  return static_cast<const KvoSimCSet&>(*this).Set();
}

std::vector<int32_t> KvoSimCSet::Members() const {
  return IsAscending() ? Set().Members() : Set().AscendingSet().Members();
}

KvoSimCSet KvoSimCSet::Union(const KvoSimCSet& other) const {
  utl_ASSERT(m_collection == other.m_collection);
  return {KvoSimCollection(m_store, m_collection), Set().Union(other.Set())};
}

KvoSimCSet KvoSimCSet::Intersection(const KvoSimCSet& other) const {
  utl_ASSERT(m_collection == other.m_collection);
  return {KvoSimCollection(m_store, m_collection), Set().Intersection(other.Set())};
}

bool KvoSimCSet::SameSet(const KvoSimCSet& other) const {
  return m_collection == other.m_collection && Set().SameSet(other.Set());
}

bool KvoSimCSet::SameMembers(const KvoSimCSet& other) const {
  return m_collection == other.m_collection && Set().SameMembers(other.Set());
}

KvoSimCSet KvoSimCSet::AscendingSet() const {
  if (IsAscending()) return *this;
  return {KvoSimCollection(m_store, m_collection), Set().AscendingSet()};
}

KvoSimCSetID KvoSimCSet::AscendingID() const {
  KvoSimCSet ascending = AscendingSet();
  return ascending.m_id.IsNull() ? ascending.NewID() : ascending.m_id;
}

std::vector<bool> KvoSimCSet::AsBitVector() const {
  return Set().AsBitVector(m_store->Space(m_collection));
}

KvoSimCSetID KvoSimCSet::NewID() {
  utl_ASSERT(m_store != nullptr);
  m_id = {m_store, m_store->StoreCSet(m_collection, Set())};
  return m_id;
}

KvoSimCSetID KvoSimCSet::RegisterWithTempCollection() {
  utl_ASSERT(m_store != nullptr && m_members != nullptr);
  m_id = {m_store, m_store->KeepTempCSet(m_collection, m_members)};
  return m_id;
}
