#include "inpS/history/inpS_LoadedElements.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/sets/inpS_SetVisitor.h"
#include "parser/inp_KeywordTable.h"
#include <algorithm>

inpS_LoadedElements::inpS_LoadedElements(const KvoObjDocument& document)
    : m_mesh(document.GetMesh()), m_elements(m_mesh), m_runs(m_elements.RunsOf({})) {
  for (const inpS_SurfaceElements::Run& run : m_runs) {
    m_ofRuns.push_back(inp_KeywordTable::Instance().FindElement(run.type));
    if (std::ranges::find(m_types, m_ofRuns.back()) == m_types.end())
      m_types.push_back(m_ofRuns.back());
  }
}

inpS_LoadedElements::Type inpS_LoadedElements::TypeOf(long long element) const {
  const inpS_SurfaceElements::Run* run = inpS_SurfaceElements::RunAt(m_runs, element);
  return run ? m_ofRuns[static_cast<std::size_t>(run - m_runs.data())] : nullptr;
}

// A set of a part stands in an instance behind the elements of others.
cow_List<inpS_LoadedElements::Type> inpS_LoadedElements::TypesOf(const KvoSimPosition& record,
                                                                 std::size_t set) {
  const KvoSimDataRecord target = record.GetVector(eds_Member::Targets)[set].DataRecord();
  const KvoSimDataRecord elements = target.GetReference(eds_Target_Set).DataRecord();
  const KvoSimPosition instance = target.GetReference(eds_Target_Instance);
  const bool isOfPart = elements.GetReference(eds_ElementSet_Owner).IsA(eds_RecordKind::Part);
  const long long offset = isOfPart && !instance.IsNull()
                               ? instance.DataRecord().GetInt64(eds_Instance_FirstElement)
                               : 0;
  const KvoSimCSet stored = elements.GetSet(eds_ElementSet_Membership);
  cow_List<Type> types;
  if (stored.IsNull()) return types;
  const eds_MemberSet& members = stored.Set();
  long long end = 0; // of the run that the last member lies in
  long long first = 0;
  for (long long n = 0; n < members.Size(); ++n) {
    const long long element = members[n] + offset;
    if (element >= first && element < end) continue;
    const inpS_SurfaceElements::Run* run = inpS_SurfaceElements::RunAt(m_runs, element);
    if (!run) continue;
    first = run->first;
    end = run->first + run->count;
    const Type type = m_ofRuns[static_cast<std::size_t>(run - m_runs.data())];
    if (std::ranges::find(types, type) == types.end()) types.push_back(type);
  }
  return types;
}
