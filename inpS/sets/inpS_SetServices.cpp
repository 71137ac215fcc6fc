#include "inpS/sets/inpS_SetServices.h"
#include "base/utl_Assert.h"
#include "database/KvoObjLabeler.h"
#include <algorithm>

namespace {

template <class Set> Set added(const KvoSimPosition& owner, const cow_String& name, bool internal) {
  Set set(owner.Context(), name);
  set.Bind(owner, internal);
  return set;
}

void unite(inpS_SetDefinition& set, const eds_MemberSet& members, long long base) {
  if (members.IsStrided() && members.Stride() == 1) {
    if (!members.IsEmpty()) inpS_addRun(set, members.First() - base, members.Size());
    return;
  }
  for (long long n = 0; n < members.Size(); ++n) inpS_addRun(set, members[n] - base, 1);
}

eds_MemberSet byLabel(const KvoObjLabeler& labeler, int occurrence, const eds_MemberSet& members) {
  const long long size = members.Size();
  std::vector<int> sorted; // once labels are found that do not ascend
  for (long long begin = 0, end = 0; begin < size; begin = end) {
    int64_t first = members[begin];
    const int owner = occurrence >= 0 ? occurrence : labeler.OccurrenceOfFlat(first, first);
    if (owner < 0) return members; // a damaged model's
    const long long base = members[begin] - first;
    const eds_LabelMap& labels = labeler.Labels(owner);
    const auto isOwners = [&](long long member) {
      return member >= base && member - base < labels.Size();
    };
    const bool rising = labels.IsStrided() && labels.Stride() > 0;
    bool ascending = true;
    for (end = begin + 1; end < size && isOwners(members[end]); ++end)
      ascending = ascending && (rising ? members[end - 1] < members[end]
                                       : labels.Label(members[end - 1] - base) <
                                             labels.Label(members[end] - base));
    if (ascending) continue;
    if (sorted.empty()) sorted = members.Members();
    std::sort(sorted.begin() + begin, sorted.begin() + end,
              [&](int a, int b) { return labels.Label(a - base) < labels.Label(b - base); });
  }
  return sorted.empty() ? members : eds_MemberSet::Ordered(std::move(sorted));
}

} // namespace

// ---- in the database

KvoObjNodeSet inpS_SetServices::AddNodeSet(const KvoSimPosition& owner, const cow_String& name) {
  return added<KvoObjNodeSet>(owner, name, false);
}

KvoObjNodeSet inpS_SetServices::AddInternalNodeSet(const KvoSimPosition& owner,
                                                   const cow_String& name) {
  return added<KvoObjNodeSet>(owner, name, true);
}

KvoObjElementSet inpS_SetServices::AddElementSet(const KvoSimPosition& owner,
                                                 const cow_String& name) {
  return added<KvoObjElementSet>(owner, name, false);
}

KvoObjElementSet inpS_SetServices::AddInternalElementSet(const KvoSimPosition& owner,
                                                         const cow_String& name) {
  return added<KvoObjElementSet>(owner, name, true);
}

KvoObjNodeSet inpS_SetServices::InsertNodeSet(const KvoSimPosition& owner, const cow_String& name,
                                              bool internal) {
  const KvoSimPosition known =
      owner.FollowStringKey(internal ? eds_Member::InternalNodeSets : eds_Member::NodeSets, name);
  if (!known.IsNull()) return KvoObjNodeSet(known);
  return internal ? AddInternalNodeSet(owner, name) : AddNodeSet(owner, name);
}

KvoObjElementSet inpS_SetServices::InsertElementSet(const KvoSimPosition& owner,
                                                    const cow_String& name, bool internal) {
  const KvoSimPosition known = owner.FollowStringKey(
      internal ? eds_Member::InternalElementSets : eds_Member::ElementSets, name);
  if (!known.IsNull()) return KvoObjElementSet(known);
  return internal ? AddInternalElementSet(owner, name) : AddElementSet(owner, name);
}

// ---- under construction

void inpS_SetServices::UnionNodeSets(inpS_SetDefinition& set, const eds_MemberSet& nodes) {
  utl_ASSERT(set.kind == inpS_SetKind::Nodes);
  unite(set, nodes, 0);
}

void inpS_SetServices::UnionElementSets(inpS_SetDefinition& set, const eds_MemberSet& elements) {
  utl_ASSERT(set.kind == inpS_SetKind::Elements);
  unite(set, elements, 0);
}

void inpS_SetServices::CopySet(const KvoSimPosition& stored, long long base,
                               inpS_SetDefinition& set) {
  const KvoSimCSet members = set.kind == inpS_SetKind::Nodes
                                 ? KvoObjNodeSet(stored).Membership()
                                 : KvoObjElementSet(stored).Membership();
  if (!members.IsNull()) unite(set, members.Set(), base);
}

// ---- in order

eds_MemberSet inpS_SetServices::SortNodeSet(const KvoObjLabeler& nodes, int occurrence,
                                            const eds_MemberSet& members) {
  utl_ASSERT(nodes.Kind() == 0);
  return byLabel(nodes, occurrence, members);
}

eds_MemberSet inpS_SetServices::SortElementSet(const KvoObjLabeler& elements, int occurrence,
                                               const eds_MemberSet& members) {
  utl_ASSERT(elements.Kind() == 1);
  return byLabel(elements, occurrence, members);
}
