#include "inpS/history/inpS_LoadedElements.h"
#include "inpS/sets/inpS_SetVisitor.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>

inpS_LoadedElements::inpS_LoadedElements(const KvoObjDocument& document)
    : m_mesh(document.GetMesh()), m_elements(m_mesh), m_runs(m_elements.RunsOf({})) {
  for (const inpS_SurfaceElements::Run& run : m_runs) {
    const Type type = inp_KeywordTable::Instance().FindElement(run.type);
    const auto known = std::ranges::find(m_types, type);
    m_ofRuns.push_back(static_cast<int>(known - m_types.begin()));
    if (known == m_types.end()) m_types.push_back(type);
  }
}

int inpS_LoadedElements::TypeOf(long long element) {
  if (!m_last || element < m_last->first || element >= m_last->first + m_last->count)
    m_last = inpS_SurfaceElements::RunAt(m_runs, element);
  return m_last ? m_ofRuns[static_cast<std::size_t>(m_last - m_runs.data())] : -1;
}

// A set of a part stands in an instance behind the elements of others.
const cow_List<inpS_LoadedElements::Type>&
inpS_LoadedElements::TypesOf(const KvoSimPosition& record, std::size_t set) {
  const KvoSimDataRecord target = record.GetVector(eds_Member::Targets)[set].DataRecord();
  const KvoSimPosition named = target.GetReference(eds_Target_Set);
  const KvoSimPosition instance = target.GetReference(eds_Target_Instance);
  const auto [known, isNew] = m_ofTargets.try_emplace(
      std::pair(named.Object().Packed(), instance.IsNull() ? 0 : instance.Object().Packed()));
  if (isNew) known->second = TypesOf(named, instance);
  return known->second;
}

cow_List<inpS_LoadedElements::Type> inpS_LoadedElements::TypesOf(const KvoSimPosition& named,
                                                                 const KvoSimPosition& instance) {
  if (named.IsA(eds_RecordKind::Surface)) return TypesOf(KvoObjSurface(named), instance);
  const KvoSimDataRecord elements = named.DataRecord();
  const bool isOfPart = elements.GetReference(eds_ElementSet_Owner).IsA(eds_RecordKind::Part);
  const long long offset = isOfPart && !instance.IsNull()
                               ? instance.DataRecord().GetInt64(eds_Instance_FirstElement)
                               : 0;
  return TypesOf(elements, offset);
}

cow_List<inpS_LoadedElements::Type> inpS_LoadedElements::TypesOf(const KvoSimDataRecord& elements,
                                                                 long long offset) {
  const KvoSimCSet stored = elements.GetSet(eds_ElementSet_Membership);
  cow_List<char> isIn(m_types.size(), 0);
  if (!stored.IsNull()) Mark(stored.Set(), offset, isIn);
  return Marked(isIn);
}

cow_List<inpS_LoadedElements::Type> inpS_LoadedElements::TypesOf(const KvoObjSurface& surface,
                                                                 const KvoSimPosition& instance) {
  cow_List<char> isIn(m_types.size(), 0);
  const bool isOfPart = !instance.IsNull() && surface.Owner().IsA(eds_RecordKind::Part);
  const long long offset = isOfPart ? instance.DataRecord().GetInt64(eds_Instance_FirstElement) : 0;
  if (surface.Type() == eds_SurfaceType::Element)
    for (const KvoSurfaceFaces& faces : surface.Faces()) Mark(faces.elements, offset, isIn);
  return Marked(isIn);
}

void inpS_LoadedElements::Mark(const eds_MemberSet& members, long long offset,
                               cow_List<char>& isIn) {
  for (long long n = 0; n < members.Size(); ++n)
    if (const int type = TypeOf(members[n] + offset); type >= 0)
      isIn[static_cast<std::size_t>(type)] = 1;
}

cow_List<inpS_LoadedElements::Type> inpS_LoadedElements::Marked(const cow_List<char>& isIn) const {
  cow_List<Type> types;
  for (std::size_t n = 0; n < m_types.size(); ++n)
    if (isIn[n]) types.push_back(m_types[n]);
  return types;
}
