#include "inpS/history/inpS_LoadVisitor.h"
#include "inpS/forms/inpS_ColumnReader.h"
#include "inpS/history/inpS_ConditionParameters.h"
#include "inpS/history/inpS_DegreeLines.h"
#include "inpS/history/inpS_EmptyTargets.h"
#include "inpS/history/inpS_LoadLines.h"
#include "inpS/history/inpS_NodalLines.h"
#include "inpS/history/inpS_ValueLines.h"
#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_Utils.h"
#include <algorithm>

inpS_LoadVisitor::inpS_LoadVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                                   const inpS_Inventory& inventory, inpS_Ledger& ledger)
    : inpS_FormVisitor(inpS_Phase::Loads, nodes, elements, inventory, ledger),
      m_fluidSteps(inventory.IsCFD()) {}

// Decided here: a flux is given node by node where a routine of the user gives it, for each node
// one of its own; a magnitude for a label is a region of one node, and taken.
bool inpS_LoadVisitor::MayConvert(const inp_Keyword& keyword, const inpS_Form& form) {
  if (keyword.Kind() == inp_KwCflux && inpS_saysYes(keyword, "user")) {
    AddError(
        inp_Utils::MessageAtParameter(keyword, "user", "Node by node heat flux is not supported"));
    return false;
  }
  inpS_checkConditionParameters(keyword, form, Names(), *this);
  if (keyword.Kind() == inp_KwInertiaRelief) CheckRelief(keyword);
  if (keyword.Kind() == inp_KwField && !inpS_hasVariable(keyword, *this)) return false;
  if (keyword.Kind() != inp_KwCload || !keyword.HasParameter("type") ||
      !m_fluidSteps.Has(OpenStep()))
    return true;
  const cow_String type = keyword.StringOf("type", "");
  if (type == "FLOW") return true;
  AddError(inp_Utils::MessageAtParameter(
      keyword, "type",
      inp_Utils::Format("Unsupported *CLOAD type \"%s\" for flow step", type.c_str())));
  return false;
}

void inpS_LoadVisitor::CheckRelief(const inp_Keyword& keyword) {
  constexpr int rigidMotions = 6;
  const inp_DataArray& data = keyword.Data();
  for (int col = 0; data.Rows() > 0 && col < data.Cols(0); ++col) {
    if (data.Type(0, col) != inp_FieldType::Integer) continue;
    const int degree = data.AsInt(0, col);
    if (degree >= 1 && degree <= rigidMotions) continue;
    AddError(inp_Utils::MessageAtField(keyword, 0, col,
                                       "Degree of freedom " + std::to_string(degree) +
                                           " is none of 1 to 6. It is kept as given."));
  }
  if (inpS_saysYes(keyword, "fixed") && inpS_saysYes(keyword, "remove"))
    AddWarning(inp_Utils::MessageAtParameter(
        keyword, "fixed", "FIXED means nothing beside REMOVE. It is kept as given."));
}

void inpS_LoadVisitor::VisitFilmProperty(const inp_Keyword& keyword) {
  m_filmProperties.push_back(keyword.StringOf("name", ""));
}

// What film coefficients are named and not given: that of a model begun elsewhere may have it.
void inpS_LoadVisitor::CheckFilmProperties(const inp_Keyword& keyword, const eds_FormInfo& form,
                                           const KvoSimPosition& record) {
  const int field = form.columnItems.back().wordsField;
  for (const cow_String& name : inpS_ColumnWords::Stored(record.DataRecord(), field)) {
    if (std::ranges::find(m_filmProperties, name) != m_filmProperties.end()) continue;
    const inp_DataArray& data = keyword.Data();
    for (long long row = 0; row < data.Rows(); ++row) {
      int col = data.Cols(row) - 1;
      while (col > 0 && !data.HasValue(row, col)) --col; // behind it may be blank ones
      if (col < 0 || inp_Utils::Fold(data.AsStringVerbatim(row, col)) != name) continue;
      AddWarning(inp_Utils::MessageAtField(keyword, row, col,
                                           "Film property \"" + name + "\" has not been defined."));
      break;
    }
  }
}

// A load that the analysis would go without.
bool inpS_LoadVisitor::IsErrorToLack(inp_KeywordEnm) const {
  return true;
}

bool inpS_LoadVisitor::ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                                   const KvoSimPosition& record) {
  bool isWhole = false;
  if (keyword.Kind() == inp_KwCload) {
    inpS_ConcentratedLines lines(keyword, m_fluidSteps.Has(OpenStep()));
    isWhole = lines.Read(form, record, Names(), *this);
  } else if (inpS_DegreeLines::Has(form.kind)) {
    inpS_DegreeLines lines(keyword, form.kind);
    isWhole = inpS_ColumnReader(keyword, form, record, Names(), *this, &lines).Read();
  } else if (inpS_ValueLines::Has(keyword, form.kind)) {
    inpS_ValueLines lines(form.kind, Inventory().NumberSpatialDimensions());
    isWhole = inpS_ColumnReader(keyword, form, record, Names(), *this, &lines).Read();
  } else if (inpS_hasLoadLabels(keyword.Kind())) {
    if (!m_elements) m_elements.emplace(Inventory().GetDocument());
    inpS_LoadLines lines(keyword, record, Inventory().NumberSpatialDimensions(), *m_elements);
    isWhole = inpS_ColumnReader(keyword, form, record, Names(), *this, &lines).Read();
  } else {
    isWhole = inpS_FormVisitor::ReadColumns(keyword, form, record);
  }
  inpS_tellEmptyTargets(keyword, form, record, Names(), *this);
  if (inpS_endsInTexts(form.columnItems)) CheckFilmProperties(keyword, form, record);
  return isWhole;
}
