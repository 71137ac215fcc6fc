#include "inpS/history/inpS_InitialConditionVisitor.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_Schema.h"
#include "inpS/forms/inpS_ColumnReader.h"
#include "inpS/forms/inpS_WrappedRows.h"
#include "inpS/history/inpS_ConditionParameters.h"
#include "inpS/history/inpS_DegreeLines.h"
#include "inpS/history/inpS_LoadedElements.h"
#include "inpS/history/inpS_NodalLines.h"
#include "inpS/history/inpS_ValueLines.h"
#include "inpS/keywords/inpS_KeywordReader.h"
#include <algorithm>

namespace {

// A rotation has a second line, of two points of its axis, where it does not give all in one.
bool hasSecondLines(const inp_DataArray& data) {
  constexpr int mostOfFirst = 5;
  constexpr int points = 6;
  return data.Rows() > 1 && data.Cols(0) <= mostOfFirst && data.Cols(1) >= points;
}

// A column of names that other keywords give.
struct Named {
  eds_RecordKind form;
  eds_RecordKind definer;
  const char* what;
};
constexpr Named named[] = {
    {eds_FormKind::InitialVolumeFraction, eds_FormKind::EulerianMaterial, "Material"},
    {eds_FormKind::InitialEnrichment, eds_FormKind::Enrichment, "Enrichment"},
    {eds_FormKind::InitialActivation, eds_FormKind::ElementProgressiveActivation,
     "Progressive activation"}};

} // namespace

// Decided here: what DEFINITION is the lines of a rotation tell where the keyword does not; one
// back stress fits into a line.
const inpS_Form* inpS_InitialConditionVisitor::Choose(const inp_Keyword& keyword,
                                                      const inp_Keyword* parent) {
  const inpS_FormTable& forms = inpS_FormTable::Instance();
  const inpS_Form* form = inpS_FormVisitor::Choose(keyword, parent);
  if (!form && keyword.Kind() == inp_KwInitialConditions && !keyword.HasParameter("type")) {
    TellRequired(keyword, "TYPE");
    SetToldOfNone();
  }
  if (!form) return form;
  if (form->kind == eds_FormKind::InitialRotatingVelocity && !keyword.HasParameter("definition") &&
      hasSecondLines(keyword.Data()))
    return forms.Find(eds_FormKind::InitialRotationByPoints);
  if (form->kind == eds_FormKind::InitialBackStressRows)
    if (const inp_Item* number = keyword.Find("numberbackstresses");
        number->IsInteger() && number->AsInt() == 1)
      return forms.Find(eds_FormKind::InitialHardening);
  return form;
}

bool inpS_InitialConditionVisitor::MayConvert(const inp_Keyword& keyword, const inpS_Form& form) {
  const bool isField =
      form.kind == eds_FormKind::InitialField || form.kind == eds_FormKind::InitialFieldAtPoints;
  inpS_checkConditionParameters(keyword, form, Names(), *this);
  if (form.kind == eds_FormKind::InitialRotatingVelocity && keyword.HasParameter("definition"))
    AddWarning(
        inp_Utils::MessageAtParameter(keyword, "definition",
                                      "DEFINITION=" + keyword.Find("definition")->Verbatim() +
                                          " is none of COORDS, NODES. It is kept as given."));
  if (form.info->data == eds_FormData::Columns && form.info->columnItems.back().perLine > 0 &&
      !HasBackStresses(keyword))
    return false;
  return !isField || inpS_hasVariable(keyword, *this);
}

// Without their number nobody knows which lines are an element's.
bool inpS_InitialConditionVisitor::HasBackStresses(const inp_Keyword& keyword) {
  const inp_Item* number = keyword.Find("numberbackstresses");
  if (number->IsInteger() && number->AsInt() >= 1) return true;
  AddError(
      inp_Utils::MessageAtParameter(keyword, "numberbackstresses",
                                    "NUMBER BACKSTRESSES=" + number->Verbatim() +
                                        ": there is one at least. The keyword is kept as text."));
  return false;
}

// Decided here: without the set that is not there the shape of all nodes counts, and stresses that
// are out of balance go as they do where nothing is said of them.
bool inpS_InitialConditionVisitor::MayLack(const inpS_Form& form, const eds_FormItem& item) const {
  return item.name == "unbalanced_stress" ||
         (form.kind == eds_FormKind::ImperfectionModes && item.name == "nset");
}

bool inpS_InitialConditionVisitor::ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                                               const KvoSimPosition& record) {
  if (keyword.Kind() == inp_KwBoundary) {
    inpS_BoundaryLines lines(keyword, false);
    const bool isWhole = lines.Read(form, record, Names(), *this);
    m_refused = lines.TakeRefused();
    return isWhole;
  }
  if (inpS_DegreeLines::Has(form.kind)) {
    inpS_DegreeLines lines(keyword, form.kind);
    return inpS_ColumnReader(keyword, form, record, Names(), *this, &lines).Read();
  }
  if (inpS_ValueLines::Has(keyword, form.kind)) {
    inpS_ValueLines lines(form.kind, Inventory().NumberSpatialDimensions());
    std::optional<inpS_LoadedElements> elements;
    if (form.kind == eds_FormKind::InitialEnrichment)
      lines.SetElements(elements.emplace(Inventory().GetDocument()), record);
    return inpS_ColumnReader(keyword, form, record, Names(), *this, &lines).Read();
  }
  const eds_FormItem& last = form.columnItems.back();
  const bool isOfElements =
      form.columnItems.front().alternatives.front().type == eds_FormType::Element;
  if (!last.isRepeated || !isOfElements)
    return inpS_FormVisitor::ReadColumns(keyword, form, record);
  inpS_WrappedRows rows(keyword, form, record, Names(), *this);
  rows.SetErrorToRefuse(true);
  if (last.perLine == 0) {
    rows.SetValuesPerRow(StateVariables());
    return rows.Read();
  }
  const inp_Item* number = keyword.Find("numberbackstresses");
  rows.SetLinesPerRow(number->AsInt(), "NUMBER BACKSTRESSES=" + number->Verbatim());
  return rows.Read();
}

// Of an axis in space, the two points of which are coordinates, or nodes.
cow_String inpS_InitialConditionVisitor::FaultOfAxis(const KvoSimPosition& line) const {
  const eds_RecordKind kind = line.Object().RecordKind();
  const KvoSimDataRecord record = line.DataRecord();
  const bool isOfNodes = kind == eds_FormKind::RotationByNodes;
  constexpr std::pair<const char*, const char*> points[] = {
      {"a_x", "b_x"}, {"a_y", "b_y"}, {"a_z", "b_z"}};
  const auto isSame = [&](const std::pair<const char*, const char*>& one) {
    return record.GetDouble(eds_formField(kind, one.first)) ==
           record.GetDouble(eds_formField(kind, one.second));
  };
  const bool isOnePoint = isOfNodes ? record.GetInt64(eds_formField(kind, "a")) ==
                                          record.GetInt64(eds_formField(kind, "b"))
                                    : std::ranges::all_of(points, isSame);
  const bool hasAxis = isOfNodes || Inventory().NumberSpatialDimensions() == 3;
  return hasAxis && isOnePoint ? "The two points of the axis are the same." : "";
}

// The nodes that are said to touch are a set's.
cow_String inpS_InitialConditionVisitor::FaultOfLine(const KvoSimPosition& line) {
  if (line.IsA(eds_FormKind::RotationByPoints) || line.IsA(eds_FormKind::RotationByNodes))
    return FaultOfAxis(line);
  if (!line.IsA(eds_FormKind::InitialContactPair)) return {};
  static const int field = eds_formField(eds_FormKind::InitialContactPair, "nodes");
  const cow_String nodes = line.DataRecord().ReturnString(field);
  const eds_Referable& nset = *std::ranges::find(eds_referables(), "nset", &eds_Referable::word);
  if (nodes.empty() || !Names().Find(nset, nodes).set.IsNull()) return {};
  return Names().TextOfMissing(nset, inp_Utils::Fold(nodes));
}

// A volume is filled with materials, to which an Eulerian section may give names of its own.
void inpS_InitialConditionVisitor::CheckNames(const inp_Keyword& keyword,
                                              const KvoSimPosition& record) {
  const auto row = std::ranges::find(named, record.Object().RecordKind(), &Named::form);
  if (row == std::end(named)) return;
  cow_List<cow_String> known;
  const int name = eds_formField(row->definer, "name");
  for (const KvoSimPosition& one : Inventory().GetDocument().Context().GetRecords(row->definer))
    known.push_back(inp_Utils::Fold(one.DataRecord().ReturnString(name)));
  const bool isOfMaterials = row->form == eds_FormKind::InitialVolumeFraction;
  if (isOfMaterials) known.emplace_back("VOID");
  const auto isKnown = [&](const cow_String& word) {
    return std::ranges::find(known, word) != known.end() ||
           (isOfMaterials && !Model().FollowStringKey(eds_Member::Materials, word).IsNull());
  };
  const auto& items = eds_formOf(row->form)->columnItems;
  const auto item =
      std::ranges::find_if(items, [](const eds_FormItem& one) { return one.wordsField >= 0; });
  if (std::ranges::all_of(inpS_ColumnWords::Stored(record.DataRecord(), item->wordsField), isKnown))
    return;
  const int column = static_cast<int>(item - items.begin());
  const inp_DataArray& data = keyword.Data();
  for (long long line = 0; line < data.Rows(); ++line) {
    if (data.Cols(line) <= column || !data.HasValue(line, column)) continue;
    const cow_String word = inp_Utils::Fold(data.AsStringVerbatim(line, column));
    if (isKnown(word)) continue;
    known.push_back(word); // told once
    AddWarning(inp_Utils::MessageAtField(
        keyword, line, column, cow_String(row->what) + " \"" + word + "\" has not been defined."));
  }
}

// As many as each material has that has some; 0: nobody knows, as materials differ, or elements of
// users have state variables of their own.
long long inpS_InitialConditionVisitor::StateVariables() {
  if (m_stateVariables) return *m_stateVariables;
  static const int count = eds_formField(eds_FormKind::Depvar, "count");
  long long known = 0;
  bool isKnown = true;
  for (const KvoSimPosition& material : Model().FollowMap(eds_Member::Materials))
    for (const KvoSimPosition& property : material.GetVector(eds_Member::Properties)) {
      if (!property.IsA(eds_FormKind::Depvar)) continue;
      const long long own = property.DataRecord().GetInt64(count);
      isKnown = isKnown && (known == 0 || own == known);
      known = own;
    }
  const inpS_LoadedElements elements(Inventory().GetDocument());
  const auto& types = elements.Types();
  isKnown = isKnown && std::ranges::find(types, nullptr) == types.end();
  m_stateVariables = isKnown ? known : 0;
  return *m_stateVariables;
}
