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
  if (form->kind == eds_FormKind::InitialBackStresses)
    if (const inp_Item* number = keyword.Find("numberbackstresses");
        number->IsInteger() && number->AsInt() <= 1)
      return forms.Find(eds_FormKind::InitialHardening);
  return form;
}

bool inpS_InitialConditionVisitor::MayConvert(const inp_Keyword& keyword, const inpS_Form& form) {
  const bool isField =
      form.kind == eds_FormKind::InitialField || form.kind == eds_FormKind::InitialFieldAtPoints;
  inpS_checkConditionParameters(keyword, form, Names(), *this);
  return !isField || inpS_hasVariable(keyword, *this);
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
    return inpS_ColumnReader(keyword, form, record, Names(), *this, &lines).Read();
  }
  if (form.kind != eds_FormKind::InitialStateVariables)
    return inpS_FormVisitor::ReadColumns(keyword, form, record);
  inpS_WrappedRows rows(keyword, form, record, Names(), *this);
  rows.SetErrorToRefuse(true);
  rows.SetValuesPerRow(StateVariables());
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

// Of lines that are kept as they stand: their elements and sets must be there all the same.
void inpS_InitialConditionVisitor::CheckText(const inp_Keyword& keyword, const inpS_Form& form) {
  const inp_DataArray& data = keyword.Data();
  const auto isWord = [&](long long row, int col) {
    return col < data.Cols(row) && data.HasValue(row, col) &&
           data.Type(row, col) == inp_FieldType::String;
  };
  if (form.kind == eds_FormKind::InitialVolumeFraction) return CheckMaterials(keyword);
  const cow_String type = keyword.StringOf("type", "");
  if (form.kind == eds_FormKind::InitialOther)
    AddWarning(inp_Utils::MessageAtParameter(
        keyword, "type",
        "TYPE=" + type + " is none that is read here; its lines are kept as they stand."));
  if (form.kind == eds_FormKind::InitialBackStresses) return CheckBackStresses(keyword);
  const bool isOfRebars = form.kind == eds_FormKind::InitialSolution;
  const bool isOfElements =
      form.kind == eds_FormKind::InitialOther && (type == "ENRICHMENT" || type == "ACTIVATION");
  if (!isOfRebars && !isOfElements) return;
  // Behind the element or set of a rebar is its name, behind those of a crack the node's number.
  for (long long row = 0; row < data.Rows(); ++row)
    if (isOfElements || isWord(row, 0) || isWord(row, 1)) CheckTarget(keyword, row);
}

// A volume is filled with materials; an Eulerian section may give them names of its own.
void inpS_InitialConditionVisitor::CheckMaterials(const inp_Keyword& keyword) {
  constexpr int materialColumn = 1;
  static const int field = eds_formField(eds_FormKind::EulerianMaterial, "name");
  cow_List<cow_String> own;
  for (const KvoSimPosition& filled :
       Inventory().GetDocument().Context().GetRecords(eds_FormKind::EulerianMaterial))
    own.push_back(inp_Utils::Fold(filled.DataRecord().ReturnString(field)));
  const inp_DataArray& data = keyword.Data();
  for (long long row = 0; row < data.Rows(); ++row) {
    if (data.Cols(row) <= materialColumn || !data.HasValue(row, materialColumn)) continue;
    const cow_String name = inp_Utils::Fold(data.AsStringVerbatim(row, materialColumn));
    if (name == "VOID" || std::ranges::find(own, name) != own.end() ||
        !Model().FollowStringKey(eds_Member::Materials, name).IsNull())
      continue;
    AddWarning(inp_Utils::MessageAtField(keyword, row, materialColumn,
                                         "Material \"" + name + "\" has not been defined."));
  }
}

// As many lines for each element or set as it has back stresses.
void inpS_InitialConditionVisitor::CheckBackStresses(const inp_Keyword& keyword) {
  const inp_DataArray& data = keyword.Data();
  const inp_Item* item = keyword.Find("numberbackstresses");
  const long long number = item && item->IsInteger() ? item->AsInt() : 0;
  if (number < 1) return;
  long long lines = 0;
  for (long long row = 0; row < data.Rows(); ++row)
    if (!inpS_KeywordReader::IsBlankRow(data, row) && lines++ % number == 0)
      CheckTarget(keyword, row);
  if (lines % number != 0)
    AddWarning(inp_Utils::MessageAtRow(
        keyword, data.Rows() - 1,
        "NUMBER BACKSTRESSES=" + std::to_string(number) + " takes " + std::to_string(number) +
            " lines for each element or set; the last one has " + std::to_string(lines % number) +
            ". They are kept as they stand."));
}

void inpS_InitialConditionVisitor::CheckTarget(const inp_Keyword& keyword, long long row) {
  const inp_DataArray& data = keyword.Data();
  if (data.Cols(row) == 0 || !data.HasValue(row, 0)) return;
  const cow_String name = data.AsStringVerbatim(row, 0);
  const eds_Referable& elset = *std::ranges::find(eds_referables(), "elset", &eds_Referable::word);
  const inpS_FormNames::Label label = Names().FindLabel(eds_FormType::Element, name);
  if (label.isKnown || (!label.isNumber && !Names().Find(elset, name).set.IsNull())) return;
  const cow_String fault = label.isNumber ? "Element " + name + " does not exist."
                                          : Names().TextOfMissing(elset, inp_Utils::Fold(name));
  AddError(inp_Utils::MessageAtField(keyword, row, 0, fault + " The line is kept as it stands."));
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
