#include "inpS/history/inpS_EmptyTargets.h"
#include "database/KvoObjSurface.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimDataRecord.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

bool isEmptySet(const KvoSimPosition& object, int field) {
  const KvoSimCSet set = object.DataRecord().GetSet(field);
  return set.IsNull() || set.Size() == 0;
}

// What there is to say of it: "Node set"; empty: it has members, or nobody knows.
const char* kindOfEmpty(const KvoSimPosition& object) {
  if (object.IsA(eds_RecordKind::NodeSet))
    return isEmptySet(object, eds_NodeSet_Membership) ? "Node set" : "";
  if (object.IsA(eds_RecordKind::ElementSet))
    return isEmptySet(object, eds_ElementSet_Membership) ? "Element set" : "";
  if (!object.IsA(eds_RecordKind::Surface)) return "";
  const KvoObjSurface surface(object);
  const auto isEmpty = [](const KvoSurfaceFaces& faces) { return faces.elements.Size() == 0; };
  return surface.Type() == eds_SurfaceType::Element && std::ranges::all_of(surface.Faces(), isEmpty)
             ? "Surface"
             : "";
}

// The first line that names it; -1: none does.
long long rowOf(const KvoSimPosition& object, const inp_DataArray& data, const eds_FormItem& item,
                const inpS_FormNames& names) {
  for (long long row = 0; row < data.Rows(); ++row) {
    if (!data.HasValue(row, 0) || data.Type(row, 0) != inp_FieldType::String) continue;
    const cow_String name = data.AsStringVerbatim(row, 0);
    for (const eds_FormItem::Alternative& one : item.alternatives)
      if (one.referable && names.Find(*one.referable, name).set == object) return row;
  }
  return -1;
}

} // namespace

void inpS_tellEmptyTargets(const inp_Keyword& keyword, const eds_FormInfo& form,
                           const KvoSimPosition& record, const inpS_FormNames& names,
                           inp_Visitor& messages) {
  if (form.columnItems.empty()) return;
  for (const KvoSimPosition& target : record.GetVector(eds_Member::Targets)) {
    const KvoSimPosition object = target.DataRecord().GetReference(eds_Target_Set);
    const cow_String kind = object.IsNull() ? "" : kindOfEmpty(object);
    if (kind.empty()) continue;
    const long long row = rowOf(object, keyword.Data(), form.columnItems.front(), names);
    if (row >= 0)
      messages.AddWarning(inp_Utils::MessageAtField(
          keyword, row, 0,
          kind + " \"" + keyword.Data().AsStringVerbatim(row, 0) +
              "\" has no members; what is prescribed of it acts on nothing."));
  }
}
