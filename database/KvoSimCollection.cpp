#include "database/KvoSimCollection.h"
#include "base/utl_Assert.h"
#include "database/KvoSimPosition.h"
#include "database/engine/eds_Store.h"
#include <algorithm>
#include <limits>

namespace {

std::vector<int32_t> copied(std::span<const int32_t> members) {
  return {members.begin(), members.end()};
}

} // namespace

KvoSimPosition KvoSimCollection::Position() const {
  return {m_store, {eds_RecordKind::Collection, m_id}};
}

eds_CollectionKind KvoSimCollection::Kind() const {
  return static_cast<eds_CollectionKind>(
      m_store->Rows(eds_RecordKind::Collection).Int(m_id, eds_Collection_Type));
}

int64_t KvoSimCollection::Space() const {
  return m_store->Space(m_id);
}

int64_t KvoSimCollection::ExtendSpace(int64_t count) {
  [[maybe_unused]] const eds_CollectionInfo* info = eds_schemaCollection(Kind());
  utl_ASSERT(info != nullptr && info->source.IsNull());
  const int64_t first = Space();
  utl_ASSERT(count >= 0 && first + count <= std::numeric_limits<int32_t>::max());
  m_store->Rows(eds_RecordKind::Collection).SetInt(m_id, eds_Collection_Space, first + count);
  return first;
}

KvoSimCSet KvoSimCollection::Checked(eds_MemberSet members) const {
  [[maybe_unused]] const int64_t space = Space();
  if (members.IsStrided() && !members.IsEmpty()) {
    [[maybe_unused]] const auto [low, high] =
        std::minmax({members[0], members[members.Size() - 1]});
    utl_ASSERT(low >= 0 && high < space);
  }
  for ([[maybe_unused]] int32_t member : members.List()) utl_ASSERT(member >= 0 && member < space);
  return {*this, std::move(members)};
}

KvoSimCSet KvoSimCollection::CreateCSet(eds_MemberSet members) {
  KvoSimCSet set = Checked(std::move(members));
  set.NewID();
  return set;
}

KvoSimCSet KvoSimCollection::CreateCSet(std::span<const int32_t> members) {
  return CreateCSet(eds_MemberSet::Ascending(copied(members)));
}

KvoSimCSet KvoSimCollection::CreateOrderedCSet(std::span<const int32_t> members) {
  return CreateCSet(eds_MemberSet::Ordered(copied(members)));
}

KvoSimCSet KvoSimCollection::CreateCSetStrided(int32_t first, int64_t count, int32_t stride) {
  return CreateCSet(eds_MemberSet::Strided(first, count, stride));
}

KvoSimCSet KvoSimCollection::CreateTempCSet(std::span<const int32_t> members) {
  KvoSimCSet set = CreateVolatileCSet(members);
  set.RegisterWithTempCollection();
  return set;
}

KvoSimCSet KvoSimCollection::CreateTempOrderedCSet(std::span<const int32_t> members) {
  KvoSimCSet set = CreateVolatileOrderedCSet(members);
  set.RegisterWithTempCollection();
  return set;
}

KvoSimCSet KvoSimCollection::CreateTempCSetStrided(int32_t first, int64_t count, int32_t stride) {
  KvoSimCSet set = CreateVolatileCSetStrided(first, count, stride);
  set.RegisterWithTempCollection();
  return set;
}

KvoSimCSet KvoSimCollection::CreateVolatileCSet(std::span<const int32_t> members) const {
  return Checked(eds_MemberSet::Ascending(copied(members)));
}

KvoSimCSet KvoSimCollection::CreateVolatileOrderedCSet(std::span<const int32_t> members) const {
  return Checked(eds_MemberSet::Ordered(copied(members)));
}

KvoSimCSet KvoSimCollection::CreateVolatileCSetStrided(int32_t first, int64_t count,
                                                       int32_t stride) const {
  return Checked(eds_MemberSet::Strided(first, count, stride));
}

KvoSimCSetID KvoSimCollection::EmptyCSetID() {
  return CreateCSet(eds_MemberSet()).ID();
}

KvoSimCSetID KvoSimCollection::BiggestCSetID() {
  return {m_store, m_store->StoreWholeCSet(m_id)};
}
