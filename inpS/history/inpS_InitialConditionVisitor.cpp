#include "inpS/history/inpS_InitialConditionVisitor.h"
#include "inpS/forms/inpS_ColumnReader.h"
#include "inpS/history/inpS_ConditionParameters.h"
#include "inpS/history/inpS_DegreeLines.h"
#include "inpS/history/inpS_NodalLines.h"
#include "inpS/history/inpS_ValueLines.h"

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
  if (!form && keyword.Kind() == inp_KwInitialConditions && !keyword.HasParameter("type"))
    TellRequired(keyword, "TYPE");
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
  inpS_checkConditionParameters(keyword, Names(), *this);
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
    inpS_ValueLines lines(form.kind);
    return inpS_ColumnReader(keyword, form, record, Names(), *this, &lines).Read();
  }
  return inpS_FormVisitor::ReadColumns(keyword, form, record);
}
