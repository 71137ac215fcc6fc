#include "inpS/properties/inpS_DistributionLinks.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimTransaction.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/properties/inpS_DistributionTable.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

cow_List<KvoSimPosition> ownersOf(const KvoObjModel& model) {
  cow_List<KvoSimPosition> owners = model.Parts();
  for (const KvoSimPosition& instance : model.Occurences()) owners.push_back(instance);
  if (const KvoSimPosition assembly = model.GetAssembly(); !assembly.IsNull())
    owners.push_back(assembly);
  return owners;
}

cow_List<KvoSimPosition> distributionsNamed(const cow_String& name, const KvoObjModel& model,
                                            const cow_List<KvoSimPosition>& others) {
  constexpr eds_Member member = eds_Member::NamedDistributions;
  const KvoSimPosition known = model.Position().FollowStringKey(member, name);
  if (!known.IsNull()) return {known};
  cow_List<KvoSimPosition> found;
  for (const KvoSimPosition& owner : others)
    if (const KvoSimPosition one = owner.FollowStringKey(member, name); !one.IsNull())
      found.push_back(one);
  return found;
}

void dropLines(const KvoSimPosition& kept) {
  if (kept.DataRecord().IsMemberNull(eds_KeptPart_Parameters))
    kept.Remove();
  else
    kept.DataRecord().UnsetMember(eds_KeptPart_Lines);
}

using Columns = cow_List<inpS_TableColumns::Column>;

// The field types that a column of the keyword may have, the usual one first; none: the language
// has no type for what it holds, and any single number will do.
cow_List<std::string_view> typesOf(inp_KeywordEnm keyword, const cow_String& column) {
  switch (keyword) {
  case inp_KwElastic:
    if (column.starts_with("nu")) return {"RATIO"};
    return {"MODULUS", "PRESSURE"}; // both are stresses
  case inp_KwPlastic:
    if (column == "PlasticStrain") return {"RATIO"};
    return {"PRESSURE", "MODULUS"};
  case inp_KwDensity:
    return {"DENSITY"};
  case inp_KwExpansion:
    return {"EXPANSION"};
  default:
    return {};
  }
}

bool fits(const inpS_DistributionTable& table, inp_KeywordEnm keyword, const Columns& columns) {
  const auto given = static_cast<std::size_t>(table.NumFieldTypes());
  const auto required = std::ranges::find_if(columns.rbegin(), columns.rend(),
                                             [](const auto& column) { return !column.optional; });
  if (given > columns.size() || given < static_cast<std::size_t>(columns.rend() - required))
    return false;
  for (std::size_t n = 0; n < given; ++n) {
    const int type = table.FieldType(static_cast<int>(n));
    if (inpS_DistributionTable::Components(type) != 1) return false;
    const auto types = typesOf(keyword, columns[n].name);
    if (!types.empty() &&
        std::ranges::find(types, inpS_DistributionTable::FieldTypeName(type)) == types.end())
      return false;
  }
  return true;
}

// "MODULUS, RATIO"
cow_String given(const inpS_DistributionTable& table) {
  cow_String text;
  for (int n = 0; n < table.NumFieldTypes(); ++n)
    text += (n > 0 ? ", " : "") + inpS_DistributionTable::FieldTypeName(table.FieldType(n));
  return text;
}

// "E (MODULUS), nu (RATIO)"
cow_String asked(inp_KeywordEnm keyword, const Columns& columns) {
  cow_String text;
  for (const inpS_TableColumns::Column& column : columns) {
    text += (text.empty() ? "" : ", ") + column.name;
    if (const auto types = typesOf(keyword, column.name); !types.empty())
      text += " (" + cow_String(types.front()) + ")";
  }
  return text;
}

// Why the distribution found cannot give the property's rows; empty: it can.
cow_String misfitOf(const inpS_DistributedProperty& one, const KvoSimPosition& distribution) {
  const inpS_Form* form = inpS_FormTable::Instance().Find(one.property.Object().RecordKind());
  const Columns columns = form->columns.Expand(inpS_Form::CountIn(one.keyword));
  const inpS_DistributionTable table = inpS_DistributionTable::Of(distribution);
  if (fits(table, one.keyword.Kind(), columns)) return {};
  return "whose table has " + given(table) + " where a row has " +
         asked(one.keyword.Kind(), columns);
}

} // namespace

void inpS_linkDistributions(const cow_List<inpS_DistributedProperty>& properties,
                            const KvoObjDocument& document, inp_Visitor& messages) {
  if (properties.empty()) return;
  KvoSimTransaction transaction(document.ContextID());
  const KvoObjModel model = document.GetModel();
  const cow_List<KvoSimPosition> owners = ownersOf(model);
  for (const inpS_DistributedProperty& one : properties) {
    const cow_String name = inp_Utils::Fold(one.keyword.Data().AsStringVerbatim(0, 0));
    const cow_List<KvoSimPosition> found = distributionsNamed(name, model, owners);
    const cow_String fault = found.empty()      ? "which is kept as text"
                             : found.size() > 1 ? "which is defined in several places"
                                                : misfitOf(one, found.front());
    if (fault.empty()) {
      one.property.SetPosition(eds_Member::ValuesFrom, found.front());
      dropLines(one.kept);
      continue;
    }
    messages.AddWarning(inp_Utils::MessageInKeyword(
        one.keyword, "*" + one.keyword.Name() + " takes its values from distribution \"" + name +
                         "\", " + fault +
                         "; its line is kept as it stands, and no values are made of it."));
  }
  transaction.Commit();
}
