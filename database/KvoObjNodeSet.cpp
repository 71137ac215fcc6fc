#include "database/KvoObjNodeSet.h"
#include "base/utl_Assert.h"

// Node sets and element sets number their fields alike.
static_assert(eds_NodeSet_Name == int(eds_ElementSet_Name));
static_assert(eds_NodeSet_Owner == int(eds_ElementSet_Owner));
static_assert(eds_NodeSet_Internal == int(eds_ElementSet_Internal));
static_assert(eds_NodeSet_Unsorted == int(eds_ElementSet_Unsorted));
static_assert(eds_NodeSet_Membership == int(eds_ElementSet_Membership));

eds_MeshSet::eds_MeshSet(const KvoSimPosition& position, [[maybe_unused]] eds_RecordKind kind)
    : m_position(position) {
  utl_ASSERT(position.IsNull() || position.IsA(kind));
}

eds_MeshSet::eds_MeshSet(const KvoSimContext& context, std::string_view name, eds_RecordKind kind)
    : m_position(KvoSimPosition(context).CreateDataRecord(kind)) {
  m_position.DataRecord().SetString(eds_NodeSet_Name, name);
}

cow_String eds_MeshSet::Name() const {
  return m_position.DataRecord().ReturnString(eds_NodeSet_Name);
}

KvoSimPosition eds_MeshSet::Owner() const {
  return m_position.DataRecord().GetReference(eds_NodeSet_Owner);
}

bool eds_MeshSet::IsInternal() const {
  return m_position.DataRecord().GetBool(eds_NodeSet_Internal);
}

bool eds_MeshSet::IsUnsorted() const {
  return m_position.DataRecord().GetBool(eds_NodeSet_Unsorted);
}

void eds_MeshSet::SetUnsorted(bool unsorted) {
  m_position.DataRecord().SetBool(eds_NodeSet_Unsorted, unsorted);
}

KvoSimCSet eds_MeshSet::Membership() const {
  return m_position.DataRecord().GetSet(eds_NodeSet_Membership);
}

void eds_MeshSet::Bind(const KvoSimPosition& owner, bool internal) {
  KvoSimDataRecord record = m_position.DataRecord();
  record.SetReference(eds_NodeSet_Owner, owner);
  if (internal) record.SetBool(eds_NodeSet_Internal, true);
  const bool isNodes = m_position.IsA(eds_RecordKind::NodeSet);
  const eds_Member member =
      internal ? (isNodes ? eds_Member::InternalNodeSets : eds_Member::InternalElementSets)
               : (isNodes ? eds_Member::NodeSets : eds_Member::ElementSets);
  owner.AssociateStringKey(member, Name(), m_position);
}

void eds_MeshSet::SetMembership(const KvoSimCSetID& cset) {
  m_position.DataRecord().SetSet(eds_NodeSet_Membership, cset);
}

void eds_MeshSet::SetMembership(KvoSimCollection collection, std::span<const int32_t> ordinals) {
  SetMembership(collection.CreateCSet(ordinals).ID());
}

void eds_MeshSet::SetOrderedMembership(KvoSimCollection collection,
                                       std::span<const int32_t> ordinals) {
  SetMembership(collection.CreateOrderedCSet(ordinals).ID());
}

void eds_MeshSet::SetMembershipStrided(KvoSimCollection collection, int32_t first, int64_t count,
                                       int32_t stride) {
  SetMembership(collection.CreateCSetStrided(first, count, stride).ID());
}
