#include "host/inps_ElementSections.h"

#include "database/KvoSimCSet.h"
#include "database/KvoSimDataRecord.h"
#include "host/inps_Fields.h"
#include "host/inps_Reporter.h"
#include "parser/inp_ElementInfo.h"
#include <algorithm>
#include <unordered_map>

namespace {

using Kind = eds_RecordKind;

// Members that follow one another.
template <class Take> void forStretches(const eds_MemberSet& members, Take take) {
  if (members.IsStrided() && members.Stride() == 1) {
    if (!members.IsEmpty()) take(int64_t{members.First()}, members.Size());
    return;
  }
  for (int64_t begin = 0; begin < members.Size();) {
    int64_t end = begin + 1;
    while (end < members.Size() && members[end] == members[end - 1] + 1) ++end;
    take(int64_t{members[begin]}, end - begin);
    begin = end;
  }
}

// A bit for each element of the flat mesh.
class Marks {
public:
  explicit Marks(int64_t count) : m_marks(static_cast<std::size_t>(count)) {}
  // What lies outside is passed over.
  void Add(int64_t first, int64_t count) {
    std::fill(At(first), std::max(At(first), At(first + count)), true);
  }
  int64_t CountUnmarked(int64_t first, int64_t count) const {
    return std::count(At(first), std::max(At(first), At(first + count)), false);
  }

private:
  std::vector<bool>::iterator At(int64_t place) { return m_marks.begin() + Within(place); }
  std::vector<bool>::const_iterator At(int64_t place) const {
    return m_marks.begin() + Within(place);
  }
  std::ptrdiff_t Within(int64_t place) const {
    return static_cast<std::ptrdiff_t>(
        std::clamp<int64_t>(place, 0, static_cast<int64_t>(m_marks.size())));
  }
  std::vector<bool> m_marks;
};

} // namespace

void inps_forAssignedElements(const KvoObjDocument& document,
                              const std::function<void(const KvoSimPosition& assignment,
                                                       int64_t first, int64_t count)>& take) {
  for (const KvoSimPosition& assignment : document.Context().GetRecords(Kind::SectionAssignment)) {
    const KvoSimDataRecord record = assignment.DataRecord();
    const KvoSimCSet members = record.GetSet(eds_SectionAssignment_Elements);
    if (members.IsNull()) continue;
    const int64_t offset = record.GetInt64(eds_SectionAssignment_Offset);
    forStretches(members.Set(),
                 [&](int64_t first, int64_t count) { take(assignment, first + offset, count); });
  }
}

bool inps_needsSection(const cow_String& type) {
  static const auto byName = [] {
    std::unordered_map<std::string_view, const inp_ElementInfo*> all;
    for (const inp_ElementInfo& info : inp_elementTable()) all.emplace(info.name, &info);
    return all;
  }();
  constexpr unsigned needs = inp_ElemBeam | inp_ElemShell | inp_ElemMembrane | inp_ElemTruss |
                             inp_ElemSolid | inp_ElemGasket | inp_ElemCohesive | inp_ElemConnector |
                             inp_ElemAcoustic | inp_ElemInfinite | inp_ElemSpring | inp_ElemMass;
  constexpr unsigned needsNone =
      inp_ElemRigid | inp_ElemContact | inp_ElemMeshOnly | inp_ElemCoupling;
  const auto known = byName.find(type);
  if (known == byName.end() || (known->second->flags & needsNone) != 0) return false;
  const inp_ElementInfo& info = *known->second;
  return (info.flags & needs) != 0 || (info.Is(inp_ElemFluid) && info.dimension == 3);
}

namespace {

// Whether it is more than a mesh: what is to be analysed, or has a section that could not be used.
bool isForAnalysis(const eds_ModelReader& model) {
  for (const Kind kind : {Kind::SectionAssignment, Kind::Material, Kind::HistoryStep})
    if (model.RecordCount(kind) > 0) return true;
  return std::ranges::any_of(model.RecordIDs(Kind::VerbatimKeyword), [&](int64_t id) {
    return inps_textOf(model, eds_VerbatimKeyword_Keyword, id).ends_with(" SECTION");
  });
}

} // namespace

inps_ModelSummary::Counts inps_elementsWithoutSection(const KvoObjDocument& document) {
  inps_ModelSummary::Counts without;
  const eds_ModelReader model(document);
  if (!isForAnalysis(model)) return without;
  int64_t elements = 0;
  for (const int64_t id : model.RecordIDs(Kind::ElementBlock))
    if (inps_intOf(model, eds_ElementBlock_FlatFirst, id) >= 0)
      elements += inps_intOf(model, eds_ElementBlock_Count, id);
  Marks marks(elements);
  inps_forAssignedElements(document, [&](const KvoSimPosition&, int64_t first, int64_t count) {
    marks.Add(first, count);
  });
  for (const int64_t id : model.RecordIDs(Kind::ElementBlock)) {
    const int64_t first = inps_intOf(model, eds_ElementBlock_FlatFirst, id);
    const eds_ObjectID spec = inps_refOf(model, eds_ElementBlock_Spec, id);
    if (first < 0 || spec.IsNull()) continue;
    const int64_t bare = marks.CountUnmarked(first, inps_intOf(model, eds_ElementBlock_Count, id));
    if (bare == 0) continue;
    const cow_String type = inps_textOf(model, eds_ElementSpec_Name, spec.id);
    if (!inps_needsSection(type)) continue;
    const auto known = std::ranges::find(without, type, &std::pair<cow_String, int64_t>::first);
    if (known == without.end())
      without.emplace_back(type, bare);
    else
      known->second += bare;
  }
  return without;
}

cow_String inps_withoutSectionText(const inps_ModelSummary::Counts& without) {
  int64_t all = 0;
  cow_String types;
  for (const auto& [type, count] : without) {
    all += count;
    types += (types.empty() ? "" : ", ") + type + " " + std::to_string(count);
  }
  if (all == 0) return {};
  return inps_counted(all, "element") + (all == 1 ? " has" : " have") + " no section (" + types +
         ")";
}
