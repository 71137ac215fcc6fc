#include "inpS/history/inpS_BoundaryVisitor.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_ColumnReader.h"
#include "inpS/history/inpS_ConditionParameters.h"
#include "inpS/history/inpS_EmptyTargets.h"
#include "inpS/history/inpS_ExcitationKind.h"
#include "inpS/history/inpS_FluidLines.h"
#include "inpS/history/inpS_NodalLines.h"
#include "parser/inp_Utils.h"
#include <algorithm>

inpS_BoundaryVisitor::inpS_BoundaryVisitor(KvoObjLabeler& nodes, KvoObjLabeler& elements,
                                           const inpS_Inventory& inventory, inpS_Ledger& ledger)
    : inpS_FormVisitor(inpS_Phase::Boundaries, nodes, elements, inventory, ledger),
      m_fluidSteps(inventory.IsCFD()) {}

bool inpS_BoundaryVisitor::MayConvert(const inp_Keyword& keyword, const inpS_Form& form) {
  const bool isPhysical = form.kind == eds_FormKind::FluidBoundaryPhysical;
  Names().SetTextOfMissing("surface", isPhysical
                                          ? "invalid surface definition in PHYSICAL fluid boundary."
                                          : "Surface \"%s\" does not exist.");
  inpS_checkConditionParameters(keyword, form, Names(), *this);
  if (form.Binds("basename")) CheckBase(keyword);
  if (keyword.Kind() == inp_KwBaseMotion) return HasDegree(keyword);
  if (!isPhysical || !keyword.HasParameter("amplitude")) return true;
  wip_Message message = inp_Utils::MessageAtParameter(
      keyword, "amplitude",
      "The AMPLITUDE parameter cannot be used with a PHYSICAL fluid boundary type");
  message.notes.push_back({"The parameter counts as not given, and is kept as it stands.", {}});
  AddError(std::move(message));
  keyword.LeaveUnread("amplitude");
  return true;
}

// A base beside the first one is what a condition of an earlier step holds; it may be one of the
// analysis that this one goes on from.
void inpS_BoundaryVisitor::CheckBase(const inp_Keyword& keyword) {
  const inp_Item* base = keyword.Find("basename");
  if (!base) return;
  if (keyword.Kind() == inp_KwBoundary) return m_bases.push_back(base->AsString());
  if (keyword.Kind() != inp_KwBaseMotion ||
      std::ranges::find(m_bases, base->AsString()) != m_bases.end())
    return;
  AddWarning(inp_Utils::MessageAtParameter(
      keyword, "basename", "No *BOUNDARY before makes a base named \"" + base->AsString() + "\"."));
}

// Of the base, which moves as a rigid body.
bool inpS_BoundaryVisitor::HasDegree(const inp_Keyword& keyword) {
  constexpr int rigidMotions = 6;
  const inp_Item* degree = keyword.Find("dof");
  if (!degree) {
    TellRequired(keyword, "DOF");
    return false;
  }
  if (!keyword.HasParameter("amplitude") && !keyword.HasParameter("loadcase"))
    AddWarning(inp_Utils::MessageInKeyword(
        keyword, "*BASE MOTION names no AMPLITUDE; nothing tells how the base moves."));
  if (degree->IsInteger() && degree->AsInt() >= 1 && degree->AsInt() <= rigidMotions) return true;
  AddError(inp_Utils::MessageAtParameter(keyword, "dof",
                                         "DOF=" + degree->Verbatim() +
                                             " is none of 1 to 6. The keyword is kept as text."));
  return false;
}

// A condition that the analysis would go without.
bool inpS_BoundaryVisitor::IsErrorToLack(inp_KeywordEnm) const {
  return true;
}

bool inpS_BoundaryVisitor::ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                                       const KvoSimPosition& record) {
  if (keyword.Kind() == inp_KwBoundary) {
    inpS_BoundaryLines lines(keyword, m_fluidSteps.Has(OpenStep()));
    const bool isWhole = lines.Read(form, record, Names(), *this);
    m_refused = lines.TakeRefused();
    return isWhole;
  }
  inpS_FluidLines lines(keyword, form.kind, Names());
  inpS_ColumnReader reader(keyword, form, record, Names(), *this, &lines);
  const bool isWhole = reader.Read();
  m_refused = reader.Refused();
  return isWhole;
}

void inpS_BoundaryVisitor::Converted(const inp_Keyword& keyword, const inpS_Form& form,
                                     const KvoSimPosition& record) {
  const inpS_ExcitationKind* kind = inpS_ExcitationKind::Of(form.kind);
  const bool isTold = kind && (kind->twice == inpS_ExcitationKind::Twice::First ||
                               kind->key == inpS_ExcitationKind::Key::Words);
  if (m_places && isTold) m_places->Add(record, keyword, std::exchange(m_refused, {}));
  inpS_tellEmptyTargets(keyword, *form.info, record, Names(), *this);
  inpS_FormVisitor::Converted(keyword, form, record);
}
