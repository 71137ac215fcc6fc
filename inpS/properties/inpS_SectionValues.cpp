#include "inpS/properties/inpS_SectionValues.h"
#include "database/KvoObjField.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimCSet.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/properties/inpS_DistributedItem.h"
#include "inpS/properties/inpS_Distribution.h"
#include "parser/inp_Utils.h"
#include <algorithm>

namespace {

bool isName(const inp_DataArray& data, long long row, int col) {
  return col < data.Cols(row) && data.HasValue(row, col) && !data.IsNumber(row, col);
}

cow_String columnsOf(const inpS_DistributionTable& table) {
  cow_String text;
  for (int n = 0; n < table.NumFieldTypes(); ++n)
    text += (n > 0 ? ", " : "") + inpS_DistributionTable::FieldTypeName(table.FieldType(n));
  return text;
}

} // namespace

void inpS_SectionValues::Check(const inp_Keyword& keyword, const inpS_Form& form) {
  m_keyword = &keyword;
  m_elements.reset();
  m_nodes.reset();
  if (inpS_saysYes(keyword, "nodalthickness")) CheckNodal();
  for (std::size_t n = 0; n < form.parameters.size(); ++n)
    if (const inp_Item* item = keyword.Find(form.parameters[n].key); item && !item->IsFlag())
      CheckItem(*form.items[n], item->Verbatim(), {form.parameters[n].key});
  const inp_DataArray& data = keyword.Data();
  const auto check = [&](long long row, const cow_List<eds_FormItem>& items) {
    for (int col = 0; col < static_cast<int>(items.size()); ++col)
      if (isName(data, row, col))
        CheckItem(items[static_cast<std::size_t>(col)], cow_String(data.FieldText(row, col)),
                  {{}, row, col});
  };
  const auto own = static_cast<long long>(form.info->lines.size());
  for (long long row = 0; row < std::min(own, data.Rows()); ++row)
    check(row, form.info->lines[static_cast<std::size_t>(row)]);
  if (form.info->data != eds_FormData::Records || form.info->record != eds_FormKind::SectionPly)
    return;
  for (long long row = own; row < data.Rows(); ++row)
    check(row, eds_formOf(form.info->record)->lines.front());
}

// A name is that of the first thing that the item may name and that has it.
void inpS_SectionValues::CheckItem(const eds_FormItem& item, const cow_String& asWritten,
                                   const At& at) {
  const inpS_DistributedItem distributed = inpS_DistributedItem::Of(item);
  if (distributed.field < 0) return;
  if (distributed.boundAs == "thickness" && inpS_saysYes(*m_keyword, "nodalthickness")) return;
  for (const eds_FormItem::Alternative& one : item.alternatives) {
    if (!one.referable) continue;
    const inpS_SetVisitor::Found found = m_names.Find(*one.referable, asWritten);
    if (found.set.IsNull()) continue;
    if (one.referable->word != "distribution" || IsForeign(found)) return;
    if (HasColumn(found.set, distributed, at)) CheckCover(found, distributed, at);
    return;
  }
}

// One of an instance that the elements do not belong to is not taken, as has been told.
bool inpS_SectionValues::IsForeign(const inpS_SetVisitor::Found& found) const {
  if (found.instance.IsNull() || found.instance == m_place.Holder()) return false;
  const inp_Item* elset = m_keyword->Find("elset");
  const inpS_SetVisitor::Found elements =
      m_place.FindField(inpS_SetVisitor::Kind::Elements, elset->Verbatim());
  return !(elements.instance == found.instance);
}

// Of what is bound alone: others are for who knows what they are about.
void inpS_SectionValues::CheckCover(const inpS_SetVisitor::Found& found,
                                    const inpS_DistributedItem& item, const At& at) {
  const KvoSimPosition& distribution = found.set;
  const eds_FormInfo& form = *eds_formOf(distribution.Object().RecordKind());
  if (item.boundAs.empty() || !distribution.DataRecord().IsMemberNull(form.defaultsField)) return;
  const bool byNode = distribution.IsA(eds_FormKind::DistributionByNode);
  const Lacking lacking =
      LackingIn(Covered(distribution), byNode, distribution.Parent().IsA(eds_RecordKind::Part),
                found.instance.IsNull() ? m_place.Holder() : found.instance);
  if (lacking.count > 0)
    Tell(at, "Distribution \"" + distribution.Name() + "\" has neither a value nor a default for " +
                 FirstOf(lacking, byNode) + ".");
}

// What is missing is told.
bool inpS_SectionValues::HasColumn(const KvoSimPosition& distribution,
                                   const inpS_DistributedItem& item, const At& at) {
  const cow_String name = "Distribution \"" + distribution.Name() + "\"";
  if (distribution.IsA(eds_FormKind::DistributionOfNone)) {
    Tell(at, name + " is of no elements or nodes (LOCATION=NONE); no values are made of it.");
    return false;
  }
  const inpS_DistributionTable table = inpS_DistributionTable::Of(distribution);
  if (item.ComponentIn(table) >= 0) return true;
  cow_String wanted;
  for (const std::string_view type : item.types)
    wanted += (wanted.empty() ? "" : ", ") + cow_String(type);
  Tell(at, name + " has no column " + wanted + ", which is asked for here; its table has " +
               columnsOf(table) + ". No values are made of it.");
  return false;
}

void inpS_SectionValues::CheckNodal() {
  const KvoObjField nodal = m_document.GetModel().GetNodalThicknessField();
  if (nodal.IsNull())
    return Tell({"nodalthickness"},
                "No node has a thickness, and NODAL THICKNESS leaves none to the section.");
  if (!m_withNodal) {
    m_withNodal.emplace();
    for (const KvoSimDistribution& data : nodal.GetData())
      for (const int64_t drawer : data.DrawerIDArray())
        m_withNodal = m_withNodal->Union(data.DrawerCSet(drawer).Set().AscendingSet());
  }
  const Lacking lacking = LackingIn(*m_withNodal, true, false, {});
  if (lacking.count > 0)
    Tell({"nodalthickness"},
         "NODAL THICKNESS leaves no thickness to " + FirstOf(lacking, true) + ".");
}

// Ascending, in the space of the distribution's owner.
const eds_MemberSet& inpS_SectionValues::Covered(const KvoSimPosition& distribution) {
  const auto [known, isNew] = m_covered.try_emplace(distribution.Object().Packed());
  if (isNew)
    if (const KvoSimCSet over = inpS_Distribution::Of(distribution).Over(); !over.IsNull())
      known->second = over.Set().AscendingSet();
  return known->second;
}

// ofPart: what is covered are ordinals of a part, the instance of which the section lies in;
// else flat ones. A section of a part lies in each instance.
inpS_SectionValues::Lacking inpS_SectionValues::LackingIn(const eds_MemberSet& covered, bool byNode,
                                                          bool ofPart,
                                                          const KvoSimPosition& instance) {
  const eds_MemberSet& members = byNode ? Nodes() : Elements();
  const bool isPart = m_place.Holder().IsA(eds_RecordKind::Part);
  const auto firstOf = [&](const KvoSimPosition& one) {
    const int field = byNode ? eds_Instance_FirstNode : eds_Instance_FirstElement;
    return one.IsA(eds_RecordKind::Instance) ? one.DataRecord().GetInt64(field) : 0;
  };
  cow_List<long long> offsets; // from the members to what is covered
  if (isPart == ofPart)
    offsets.push_back(0);
  else if (ofPart)
    offsets.push_back(-firstOf(instance));
  else
    for (const KvoSimPosition& one : m_document.GetModel().Occurences())
      if (one.DataRecord().GetReference(eds_Instance_Part) == m_place.Holder())
        offsets.push_back(firstOf(one));
  Lacking lacking;
  for (const long long offset : offsets)
    for (long long n = 0; n < members.Size(); ++n) {
      if (covered.IsMember(static_cast<int32_t>(members[n] + offset))) continue;
      if (lacking.count++ == 0) lacking.first = members[n];
    }
  lacking.all = members.Size() * std::ssize(offsets);
  return lacking;
}

const eds_MemberSet& inpS_SectionValues::Elements() {
  if (m_elements) return *m_elements;
  m_elements.emplace();
  if (const inp_Item* elset = m_keyword->Find("elset"))
    m_place.GetElementSetMembers(elset->Verbatim(), *m_elements);
  m_elements = m_elements->AscendingSet();
  return *m_elements;
}

const eds_MemberSet& inpS_SectionValues::Nodes() {
  if (m_nodes) return *m_nodes;
  const KvoSimPosition holder = m_place.Holder();
  const KvoSimPosition owner = holder.IsA(eds_RecordKind::Part) ? holder : m_place.Model();
  if (!m_data || !(m_data->Owner() == owner)) m_data.emplace(m_document, owner);
  m_nodes = m_data->NodesOf(Elements());
  return *m_nodes;
}

// "3 of its 10 elements, the first of them element 12"
cow_String inpS_SectionValues::FirstOf(const Lacking& lacking, bool byNode) const {
  const cow_String what = byNode ? "node" : "element";
  const cow_String first = what + " " +
                           std::to_string(byNode ? m_place.GetNodeLabel(lacking.first)
                                                 : m_place.GetElementLabel(lacking.first));
  if (lacking.count == 1) return first + " of the section";
  const cow_String ofAll = " of the section's " + std::to_string(lacking.all) + " " + what + "s";
  return lacking.count == lacking.all
             ? "any" + ofAll
             : std::to_string(lacking.count) + ofAll + ", the first of them " + first;
}

void inpS_SectionValues::Tell(const At& at, cow_String text) {
  m_place.AddWarning(at.row < 0
                         ? inp_Utils::MessageAtParameter(*m_keyword, at.parameter, std::move(text))
                         : inp_Utils::MessageAtField(*m_keyword, at.row, at.col, std::move(text)));
}
