#include "inpS/mesh/inpS_BaseSets.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/mesh/inpS_MeshStore.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"

void inpS_BaseSets::Judge(const inpS_MeshScope& scope, const inpS_SetDefinition& set,
                          eds_MemberSet& members) {
  if (set.isStored || !scope.isStored || set.keywords.empty()) return;
  const KvoSimPosition stored =
      scope.owner.FollowStringKey(inpS_MeshStore::MemberOf(set), set.name);
  if (stored.IsNull()) return;
  const bool nodes = set.kind == inpS_SetKind::Nodes;
  const KvoSimCSet had =
      stored.DataRecord().GetSet(nodes ? eds_NodeSet_Membership : eds_ElementSet_Membership);
  const eds_MemberSet before = had.IsNull() ? eds_MemberSet() : had.Set();
  const eds_MemberSet sorted = before.AscendingSet();
  std::vector<int32_t> added;
  for (int64_t n = 0; n < members.Size(); ++n)
    if (!sorted.IsMember(members[n])) added.push_back(members[n]);
  if (added.empty()) return;
  const eds_MemberSet more = eds_MemberSet::Ascending(std::move(added));
  if (MayGrow(scope, set, stored, more)) return TellSurface(set, stored);
  m_messages.AddError(inp_Utils::MessageInKeyword(
      set.keywords.back(),
      "Set \"" + set.name +
          "\" would grow, and the model that is restarted stands on it: its steps would change. "
          "The "
          "set keeps what it had; under another name this one can be used from here on."));
  m_messages.LeaveOut("set entry", more.Size());
  members = before;
}

bool inpS_BaseSets::MayGrow(const inpS_MeshScope& scope, const inpS_SetDefinition& set,
                            const KvoSimPosition& stored, const eds_MemberSet& more) {
  using Use = inpS_BaseReferences::Use;
  if (!m_base) m_base.emplace(m_document);
  const Use use = m_base->Of(stored, set.name);
  if (use != Use::Described) return use == Use::None;
  const bool nodes = set.kind == inpS_SetKind::Nodes;
  const long long ofBase =
      nodes ? scope.nodeBase + scope.storedNodes : scope.elementBase + scope.storedElements;
  return more[0] >= ofBase;
}

void inpS_BaseSets::TellSurface(const inpS_SetDefinition& set, const KvoSimPosition& stored) {
  if (!m_surfaces) {
    m_surfaces.emplace();
    for (const KvoSimPosition& piece :
         m_document.Context().GetRecords(eds_RecordKind::SurfacePiece)) {
      const KvoSimDataRecord record = piece.DataRecord();
      const KvoSimPosition source = record.GetReference(eds_SurfacePiece_Source);
      if (source.IsNull()) continue;
      const KvoSimPosition surface = record.GetReference(eds_SurfacePiece_Surface);
      m_surfaces->emplace(source.Object().Packed(),
                          surface.DataRecord().ReturnString(eds_Surface_Name));
    }
  }
  const auto known = m_surfaces->find(stored.Object().Packed());
  if (known != m_surfaces->end())
    m_messages.AddWarning(inp_Utils::MessageInKeyword(
        set.keywords.back(), "Set \"" + set.name + "\" grows; surface \"" + known->second +
                                 "\" of the model that is restarted, which names it, keeps what it "
                                 "had."));
}
