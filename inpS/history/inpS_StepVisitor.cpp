#include "inpS/history/inpS_StepVisitor.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/history/inpS_GlobalDamping.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"

namespace {

bool isProcedure(inp_KeywordEnm keyword) {
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(keyword);
  return row && row->role == inp_KeywordRole::Procedure;
}

bool isExplicitDynamics(const inp_Keyword& keyword) {
  return keyword.Kind() == inp_KwDynamicTemperatureDisplacement ||
         (keyword.Kind() == inp_KwDynamic && keyword.HasParameter("explicit"));
}

} // namespace

// ---- what is known of a step beforehand

void inpS_StepVisitor::Look(inp_KeywordListRef keywords) {
  Facts* facts = nullptr;
  for (const inp_Keyword& keyword : keywords) {
    if (keyword.Kind() == inp_KwStep) facts = &m_facts[keyword.Body().get()];
    if (!facts || keyword.IsSuboption() || !isProcedure(keyword.Kind())) continue;
    if (keyword.Scope().kind != inp_Scope::Kind::Step) continue;
    if (facts->procedure == inp_NullKeyword) facts->procedure = keyword.Kind();
    facts->isExplicit = facts->isExplicit || isExplicitDynamics(keyword);
    if (facts->isRefused) continue;
    facts->isRefused = inpS_hasUnknownWord(keyword) || !Choose(keyword, nullptr);
    if (facts->isRefused) facts->culprit = keyword;
  }
}

void inpS_StepVisitor::VisitList(inp_KeywordListRef keywords) {
  Look(keywords);
  inpS_FormVisitor::VisitList(keywords);
}

bool inpS_StepVisitor::IsOfPhase(const inp_Keyword& keyword) const {
  if (keyword.Kind() != inp_KwStep) return inpS_FormVisitor::IsOfPhase(keyword);
  const auto known = m_facts.find(keyword.Body().get());
  return known == m_facts.end() || !known->second.isRefused;
}

// ---- the step closes

void inpS_StepVisitor::VisitEndStep(const inp_Keyword& keyword) {
  if (OpenStep().IsNull()) return;
  if (!m_open || m_open->procedure == inp_NullKeyword)
    Warning(keyword, "No procedure is defined. What the step's parameters say holds for the next "
                     "step too, where that does not say otherwise.");
  SetDamping();
  inpS_keepUnused(keyword, OpenStep(), *this, inpS_closingRow);
  Ledger().Take(keyword, OpenStep());
}

// At the step's end, for the procedure may stand behind. FIELD chooses the degrees of freedom that
// a keyword is for; without it, and with a word that is none, it is for all.
void inpS_StepVisitor::SetDamping() {
  const auto fieldOf = [](std::string_view column) {
    return eds_formField(eds_RecordKind::GlobalDamping, column);
  };
  for (const auto& [keyword, given] : m_dampings) {
    if (m_procedure.IsNull()) return; // told
    const KvoSimDataRecord record = given.DataRecord();
    const cow_String field = record.ReturnString(fieldOf("field"));
    double damping[6] = {};
    for (std::size_t n = 0; const char* column : {"alpha", "beta", "structural"}) {
      const double value = record.GetDouble(fieldOf(column));
      damping[n++] = field == "ACOUSTIC" ? 0 : value;
      damping[n++] = field == "MECHANICAL" ? 0 : value;
    }
    cow_List<cow_String> messages;
    inpS_SetGlobalDamping(OpenStep(), m_procedure, damping, messages);
    for (const cow_String& message : messages) Warning(keyword, message);
  }
}

// ---- what a row cannot say

void inpS_StepVisitor::Converted(const inp_Keyword& keyword, const inpS_Form& form,
                                 const KvoSimPosition& record) {
  if (m_procedure.IsNull() && !keyword.IsSuboption() && isProcedure(keyword.Kind()))
    m_procedure = record;
  switch (form.kind) {
  case eds_RecordKind::Step: {
    const auto known = m_facts.find(keyword.Body().get());
    m_open = known == m_facts.end() ? nullptr : &known->second;
    m_procedure = {};
    m_dampings.clear();
    return;
  }
  case eds_RecordKind::GlobalDamping:
    m_dampings.emplace_back(keyword, record);
    return;
  case eds_RecordKind::StaticRiks:
  case eds_RecordKind::DynamicImplicit:
    CheckExtrapolation(keyword);
    return CheckStatic(keyword);
  case eds_RecordKind::Static:
    return CheckStatic(keyword);
  case eds_RecordKind::BulkViscosity:
    if (m_open && !m_open->isExplicit)
      Warning(keyword, "The *BULK VISCOSITY option is only meaningful in a Trelvo/Explicit dynamic "
                       "analysis.");
    return;
  case eds_RecordKind::FixedMassScaling:
  case eds_RecordKind::VariableMassScaling:
    if (m_open && !m_open->isExplicit)
      Warning(keyword, "This keyword is not relevant for this step hence will be ignored.");
    return;
  case eds_RecordKind::SolverControls:
    if (m_open && m_open->isExplicit)
      Warning(keyword, "Solver Controls is not supported for this step.");
    return;
  default:
    return;
  }
}

void inpS_StepVisitor::CheckStatic(const inp_Keyword& keyword) {
  if (keyword.HasParameter("fullyplastic"))
    AddWarning(inp_Utils::MessageAtParameter(keyword, "fullyplastic",
                                             "parameter fullyplastic is not supported."));
}

void inpS_StepVisitor::CheckExtrapolation(const inp_Keyword& keyword) {
  static const int field = eds_formField(eds_RecordKind::Step, "extrapolation");
  if (OpenStep().DataRecord().ReturnString(field) == "NO")
    Warning(keyword, "EXTRAPOLATION=NO is not permitted with this step type. Default Extrapolation "
                     "will be used.");
}
