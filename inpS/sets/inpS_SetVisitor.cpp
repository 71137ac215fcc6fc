#include "inpS/sets/inpS_SetVisitor.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/sets/inpS_ScopedField.h"
#include "inpS/sets/inpS_SetServices.h"
#include "parser/inp_Utils.h"
#include <limits>

namespace {

KvoSimCSet membershipOf(const KvoSimPosition& set) {
  return set.DataRecord().GetSet(set.IsA(eds_RecordKind::NodeSet) ? eds_NodeSet_Membership
                                                                  : eds_ElementSet_Membership);
}

} // namespace

inpS_SetVisitor::inpS_SetVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                                 const inpS_Inventory& inventory)
    : m_nodes(nodes), m_elements(elements), m_inventory(inventory) {}

// ---- where the walk stands

KvoSimPosition inpS_SetVisitor::OwnerOf(const inp_Scope& scope) const {
  const KvoObjModel model = m_inventory.GetDocument().GetModel();
  if (scope.kind == inp_Scope::Kind::Part) return model.GetPart(scope.name);
  if (scope.kind == inp_Scope::Kind::Instance) return model.GetOccurence(scope.name);
  const KvoSimPosition assembly = model.GetAssembly();
  return assembly.IsNull() ? model.Position() : assembly;
}

KvoSimPosition inpS_SetVisitor::Model() const {
  return m_inventory.GetDocument().GetModel().Position();
}

KvoSimPosition inpS_SetVisitor::Holder() const {
  return !m_scope || m_scope->kind == inp_Scope::Kind::Model ? Model() : m_owner;
}

void inpS_SetVisitor::Visit(const inp_Keyword& keyword) {
  Enter(keyword);
  inpS_Visitor::Visit(keyword);
}

void inpS_SetVisitor::Enter(const inp_Keyword& keyword) {
  if (keyword.ScopePtr() != m_scope || m_owner.IsNull()) {
    m_scope = keyword.ScopePtr();
    const inp_Scope& scope = keyword.Scope();
    m_owner = OwnerOf(scope);
    m_part = scope.kind == inp_Scope::Kind::Part       ? scope.name
             : scope.kind == inp_Scope::Kind::Instance ? scope.partName
                                                       : cow_String();
    m_instance = scope.kind == inp_Scope::Kind::Instance ? scope.name : cow_String();
    m_step = scope.kind == inp_Scope::Kind::Step ? scope.name : cow_String();
    m_system.FillIdentity();
    if (m_instance.empty()) m_instanceSystem.FillIdentity();
  }
}

void inpS_SetVisitor::VisitSystem(const inp_Keyword& keyword) {
  m_system.ReadSystem(keyword);
}

void inpS_SetVisitor::VisitInstance(const inp_Keyword& keyword) {
  m_instanceSystem.ReadInstance(keyword);
}

// ---- sets by name

// An owner's own, else, of an instance, its part's.
inpS_SetVisitor::Found inpS_SetVisitor::FindIn(Kind kind, const KvoSimPosition& owner,
                                               const cow_String& key) const {
  using M = eds_Member;
  constexpr M members[3][2] = {{M::NodeSets, M::InternalNodeSets},
                               {M::ElementSets, M::InternalElementSets},
                               {M::Surfaces, M::InternalSurfaces}};
  if (owner.IsNull()) return {};
  const auto in = [&](const KvoSimPosition& place) {
    const auto [named, internal] = members[static_cast<int>(kind)];
    const KvoSimPosition set = place.FollowStringKey(named, key);
    return set.IsNull() ? place.FollowStringKey(internal, key) : set;
  };
  const KvoSimPosition scopedBy = owner == m_owner ? KvoSimPosition() : owner;
  if (const KvoSimPosition own = in(owner); !own.IsNull()) return {own, 0, scopedBy};
  if (!owner.IsA(eds_RecordKind::Instance)) return {};
  const KvoSimDataRecord instance = owner.DataRecord();
  const KvoSimPosition part = instance.GetReference(eds_Instance_Part);
  if (part.IsNull()) return {};
  const KvoSimPosition ofPart = in(part);
  if (ofPart.IsNull()) return {};
  return {
      ofPart,
      instance.GetInt64(kind == Kind::Nodes ? eds_Instance_FirstNode : eds_Instance_FirstElement),
      scopedBy};
}

// A part knows nothing of where it is placed: what it defines is each of its instances'.
KvoSimPosition inpS_SetVisitor::OccurrenceOf(const cow_String& instance) const {
  if (m_owner.IsA(eds_RecordKind::Part)) return {};
  return m_inventory.GetDocument().GetModel().GetOccurence(instance);
}

inpS_SetVisitor::Found inpS_SetVisitor::Find(Kind kind, const cow_String& name) const {
  // A name given in quotes may have a dot of its own.
  const Found whole = FindIn(kind, m_owner, RemoveQuotes(name));
  if (!whole.set.IsNull()) return whole;
  const cow_List<cow_String> parts = inp_Utils::SplitScopedSet(name);
  if (!inp_Utils::IsScopedSetName(parts)) return {};
  return FindIn(kind, OccurrenceOf(parts[parts.size() - 2]), parts.back());
}

inpS_SetVisitor::Found inpS_SetVisitor::FindField(Kind kind, std::string_view asWritten) const {
  const cow_List<cow_String> parts = inp_Utils::SplitScopedField(asWritten);
  if (parts.size() < 2) return FindIn(kind, m_owner, parts.back());
  return FindIn(kind, OccurrenceOf(parts[parts.size() - 2]), parts.back());
}

inpS_SetVisitor::LabelSpace inpS_SetVisitor::SpaceOf(Kind kind, const cow_String& instance) const {
  const KvoSimPosition owner = instance.empty() ? m_owner : OccurrenceOf(instance);
  if (owner.IsNull()) return {};
  const KvoObjLabeler& labeler = LabelerOf(kind);
  const int occurrence = labeler.FindOccurrence(owner);
  if (occurrence < 0) return {};
  const bool flat = !owner.IsA(eds_RecordKind::Part) && labeler.FlatFirst(occurrence) > 0;
  return {occurrence, flat ? labeler.FlatFirst(occurrence) : 0};
}

KvoSimPosition inpS_SetVisitor::GetNodeSet(const cow_String& name) {
  return Find(Kind::Nodes, name).set;
}

KvoSimPosition inpS_SetVisitor::GetElementSet(const cow_String& name) {
  return Find(Kind::Elements, name).set;
}

KvoSimPosition inpS_SetVisitor::GetSurface(const cow_String& name) {
  return Find(Kind::Surfaces, name).set;
}

// The members as the set has them: in the order of their labels, unless it is unsorted.
eds_MemberSet inpS_SetVisitor::InOrder(Kind kind, const KvoSimPosition& set) const {
  const KvoSimCSet stored = membershipOf(set);
  if (stored.IsNull()) return {};
  const KvoSimDataRecord record = set.DataRecord();
  const bool nodes = kind == Kind::Nodes;
  if (record.GetBool(nodes ? eds_NodeSet_Unsorted : eds_ElementSet_Unsorted)) return stored.Set();
  const KvoSimPosition owner =
      record.GetReference(nodes ? eds_NodeSet_Owner : eds_ElementSet_Owner);
  const KvoObjLabeler& labeler = LabelerOf(kind);
  const int occurrence = owner.IsA(eds_RecordKind::Part) ? labeler.FindOccurrence(owner) : -1;
  return nodes ? inpS_SetServices::SortNodeSet(labeler, occurrence, stored.Set())
               : inpS_SetServices::SortElementSet(labeler, occurrence, stored.Set());
}

bool inpS_SetVisitor::MembersOf(Kind kind, const Found& found, eds_MemberSet& ordinals) const {
  if (found.set.IsNull()) return false;
  ordinals = Moved(InOrder(kind, found.set), found.offset);
  return true;
}

eds_MemberSet inpS_SetVisitor::Moved(const eds_MemberSet& members, long long offset) {
  if (offset == 0 || members.IsEmpty()) return members;
  if (members.IsStrided())
    return eds_MemberSet::Strided(static_cast<int>(members.First() + offset), members.Size(),
                                  members.Stride());
  std::vector<int> moved = members.Members();
  for (int& member : moved) member += static_cast<int>(offset);
  return eds_MemberSet::Ordered(std::move(moved));
}

bool inpS_SetVisitor::GetNodeSetMembers(const cow_String& name, eds_MemberSet& ordinals) {
  return MembersOf(Kind::Nodes, Find(Kind::Nodes, name), ordinals);
}

bool inpS_SetVisitor::GetElementSetMembers(const cow_String& name, eds_MemberSet& ordinals) {
  return MembersOf(Kind::Elements, Find(Kind::Elements, name), ordinals);
}

void inpS_SetVisitor::LabelsOf(Kind kind, const KvoSimPosition& set, cow_List<int>& labels) const {
  labels.clear();
  const eds_MemberSet members = InOrder(kind, set);
  const KvoObjLabeler& labeler = LabelerOf(kind);
  const KvoSimPosition owner =
      set.DataRecord().GetReference(kind == Kind::Nodes ? eds_NodeSet_Owner : eds_ElementSet_Owner);
  if (owner.IsA(eds_RecordKind::Part)) {
    labels = labeler.GetInstanceSetLabels(labeler.FindOccurrence(owner), members);
    return;
  }
  labels.reserve(static_cast<std::size_t>(members.Size()));
  for (long long n = 0; n < members.Size(); ++n) {
    int64_t ordinal = 0;
    const int occurrence = labeler.OccurrenceOfFlat(members[n], ordinal);
    labels.push_back(labeler.GetInstanceLabel(occurrence, ordinal));
  }
}

void inpS_SetVisitor::GetNodeLabels(const KvoSimPosition& set, cow_List<int>& labels) const {
  LabelsOf(Kind::Nodes, set, labels);
}

void inpS_SetVisitor::GetElementLabels(const KvoSimPosition& set, cow_List<int>& labels) const {
  LabelsOf(Kind::Elements, set, labels);
}

// ---- labels

int inpS_SetVisitor::LabelOf(Kind kind, long long ordinal) const {
  const KvoObjLabeler& labeler = LabelerOf(kind);
  int64_t local = ordinal;
  const int occurrence = m_owner.IsA(eds_RecordKind::Part)
                             ? labeler.FindOccurrence(m_owner)
                             : labeler.OccurrenceOfFlat(ordinal, local);
  return labeler.GetInstanceLabel(occurrence, local);
}

int inpS_SetVisitor::GetNodeLabel(long long ordinal) const {
  return LabelOf(Kind::Nodes, ordinal);
}

int inpS_SetVisitor::GetElementLabel(long long ordinal) const {
  return LabelOf(Kind::Elements, ordinal);
}

bool inpS_SetVisitor::OrdinalOf(Kind kind, const KvoSimPosition& owner, long long label,
                                long long& ordinal) const {
  using Label = std::numeric_limits<int32_t>;
  if (label < Label::min() || label > Label::max()) return false;
  const KvoObjLabeler& labeler = LabelerOf(kind);
  const int occurrence = owner.IsNull() ? -1 : labeler.FindOccurrence(owner);
  if (occurrence < 0) return false;
  const int local = labeler.ConvertInstanceLabel(occurrence, static_cast<int32_t>(label));
  if (local < 0) return false;
  const bool flat = !owner.IsA(eds_RecordKind::Part) && labeler.FlatFirst(occurrence) > 0;
  ordinal = local + (flat ? labeler.FlatFirst(occurrence) : 0);
  return true;
}

bool inpS_SetVisitor::GetNodeOrdinal(int label, long long& ordinal) const {
  return OrdinalOf(Kind::Nodes, m_owner, label, ordinal);
}

bool inpS_SetVisitor::GetElementOrdinal(int label, long long& ordinal) const {
  return OrdinalOf(Kind::Elements, m_owner, label, ordinal);
}

// ---- fields and parameters that are labels or names of sets

bool inpS_SetVisitor::AddLabel(Kind kind, const KvoSimPosition& owner, long long label,
                               cow_List<int>& ordinals) const {
  long long ordinal = 0;
  if (!OrdinalOf(kind, owner, label, ordinal)) return false;
  ordinals.push_back(static_cast<int>(ordinal));
  return true;
}

// What is no plain label.
bool inpS_SetVisitor::AddNamed(Kind kind, std::string_view asWritten,
                               cow_List<int>& ordinals) const {
  const inpS_ScopedField field = inpS_scopedField(asWritten);
  if (field.isLabel) return AddLabel(kind, OccurrenceOf(field.instance), field.Label(), ordinals);
  eds_MemberSet members;
  if (!MembersOf(kind, FindField(kind, asWritten), members)) return false;
  for (long long n = 0; n < members.Size(); ++n) ordinals.push_back(members[n]);
  return true;
}

void inpS_SetVisitor::ReadData(Kind kind, const inp_Keyword& keyword, long long row, int col,
                               cow_List<int>& ordinals, cow_List<cow_String>& unknown) {
  const inp_DataArray& data = keyword.Data();
  for (int cols = data.Cols(row); col < cols; ++col) {
    if (!data.HasValue(row, col)) continue;
    const bool isKnown = data.IsInteger(row, col)
                             ? AddLabel(kind, m_owner, data.AsInt64(row, col), ordinals)
                             : AddNamed(kind, data.FieldText(row, col), ordinals);
    if (!isKnown) unknown.push_back(data.AsString(row, col));
  }
}

void inpS_SetVisitor::ReadParameter(Kind kind, const inp_Keyword& keyword,
                                    std::string_view parameter, cow_List<int>& ordinals,
                                    cow_List<cow_String>& unknown) {
  const inp_Item* item = keyword.Find(parameter);
  if (!item || item->IsFlag()) return;
  const bool isKnown = item->IsInteger() ? AddLabel(kind, m_owner, item->AsInt(), ordinals)
                                         : AddNamed(kind, item->Verbatim(), ordinals);
  if (!isKnown) unknown.push_back(item->AsString());
}

void inpS_SetVisitor::ReadNodeData(const inp_Keyword& keyword, long long row, int col,
                                   cow_List<int>& ordinals, cow_List<cow_String>& unknown) {
  ReadData(Kind::Nodes, keyword, row, col, ordinals, unknown);
}

void inpS_SetVisitor::ReadElementData(const inp_Keyword& keyword, long long row, int col,
                                      cow_List<int>& ordinals, cow_List<cow_String>& unknown) {
  ReadData(Kind::Elements, keyword, row, col, ordinals, unknown);
}

void inpS_SetVisitor::ReadNodeParameter(const inp_Keyword& keyword, std::string_view parameter,
                                        cow_List<int>& ordinals, cow_List<cow_String>& unknown) {
  ReadParameter(Kind::Nodes, keyword, parameter, ordinals, unknown);
}

void inpS_SetVisitor::ReadElementParameter(const inp_Keyword& keyword, std::string_view parameter,
                                           cow_List<int>& ordinals, cow_List<cow_String>& unknown) {
  ReadParameter(Kind::Elements, keyword, parameter, ordinals, unknown);
}

cow_String inpS_SetVisitor::RemoveQuotes(const cow_String& name) {
  return inp_Utils::RemoveQuotes(name);
}
