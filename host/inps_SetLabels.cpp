#include "host/inps_SetLabels.h"

#include "database/KvoSimPosition.h"

const inps_SetLabels::Space& inps_SetLabels::SpaceOf(eds_RecordKind setKind) {
  const bool ofNodes = setKind == eds_RecordKind::NodeSet;
  std::optional<Space>& space = ofNodes ? m_nodes : m_elements;
  if (space) return *space;
  space = Space{KvoObjLabeler(m_document, ofNodes ? 0 : 1), {}};
  space->labeler.Read();
  for (const KvoSimPosition& owner : space->labeler.Occurrences()) {
    const bool scoped = owner.IsA(eds_RecordKind::Instance);
    space->scopes.push_back(scoped ? owner.Name() + "." : cow_String());
  }
  return *space;
}

// Sets of a part count within it, all others over the flat mesh.
inps_SetLabels::Member inps_SetLabels::MemberOf(const Space& space, int part, int64_t ordinal) {
  int occurrence = part;
  if (part < 0) occurrence = space.labeler.OccurrenceOfFlat(ordinal, ordinal);
  if (occurrence < 0 || ordinal >= space.labeler.Size(occurrence)) return {-1, ordinal};
  return {occurrence, space.labeler.GetInstanceLabel(occurrence, ordinal)};
}

cow_List<cow_String> inps_SetLabels::Runs(const eds_ModelReader& model, eds_ObjectID set) {
  const eds_RecordKind kind = set.RecordKind();
  if (kind != eds_RecordKind::NodeSet && kind != eds_RecordKind::ElementSet) return {};
  const bool ofNodes = kind == eds_RecordKind::NodeSet;
  const eds_ObjectID membership =
      inps_refOf(model, ofNodes ? eds_NodeSet_Membership : eds_ElementSet_Membership, set.id);
  if (membership.IsNull()) return {};
  const eds_ObjectID owner =
      inps_refOf(model, ofNodes ? eds_NodeSet_Owner : eds_ElementSet_Owner, set.id);
  const Space& space = SpaceOf(kind);
  const bool inPart = owner.RecordKind() == eds_RecordKind::Part;
  const int part =
      inPart ? space.labeler.FindOccurrence(KvoSimPosition(m_document.ContextID().store, owner))
             : -1;

  cow_List<cow_String> runs;
  const eds_MemberSet members = model.CSet(membership.id);
  for (int64_t i = 0; i < members.Size();) {
    const Member first = MemberOf(space, part, members[i]);
    Member last = first;
    for (++i; i < members.Size(); ++i) {
      const Member next = MemberOf(space, part, members[i]);
      if (next.occurrence != last.occurrence || next.label != last.label + 1) break;
      last = next;
    }
    cow_String run = first.occurrence < 0
                         ? cow_String("without a label: ")
                         : space.scopes[static_cast<std::size_t>(first.occurrence)];
    run += std::to_string(first.label);
    if (last.label != first.label) run += " to " + std::to_string(last.label);
    runs.push_back(std::move(run));
  }
  return runs;
}
