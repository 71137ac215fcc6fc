#include "inpS/history/inpS_StepVisitor.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_ColumnReader.h"
#include "inpS/history/inpS_ConditionParameters.h"
#include "inpS/history/inpS_DegreeLines.h"
#include "inpS/history/inpS_GlobalDamping.h"
#include "inpS/history/inpS_ProcedureKind.h"
#include "inpS/history/inpS_TimePointsVisitor.h"
#include "inpS/history/inpS_ValueLines.h"
#include "inpS/keywords/inpS_Flag.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <optional>

namespace {

bool isProcedure(inp_KeywordEnm keyword) {
  const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(keyword);
  return row && row->role == inp_KeywordRole::Procedure;
}

bool isExplicitDynamics(const inp_Keyword& keyword) {
  if (keyword.Kind() != inp_KwDynamic)
    return keyword.Kind() == inp_KwDynamicTemperatureDisplacement;
  const inp_Item* isExplicit = keyword.Find("explicit");
  return isExplicit && inpS_flagValue(*isExplicit).value_or(true);
}

bool hasProcedure(const KvoSimPosition& step) {
  return std::ranges::any_of(
      step.FollowMap(eds_Member::StepKeywords),
      [](const KvoSimPosition& one) { return inpS_ProcedureKind::Of(one.Object().RecordKind()); });
}

// A step that is kept as text stands behind it.
bool isBeforeText(const KvoObjDocument& document, const KvoSimPosition& step) {
  return std::ranges::any_of(document.Context().GetRecords(eds_RecordKind::VerbatimKeyword),
                             [&](const KvoSimPosition& text) {
                               const KvoSimDataRecord record = text.DataRecord();
                               return record.GetReference(eds_VerbatimKeyword_Behind) == step &&
                                      record.GetString(eds_VerbatimKeyword_Keyword) == "STEP";
                             });
}

// Those that are kept as text counted.
long long countSteps(const KvoObjDocument& document) {
  const auto texts = document.Context().GetRecords(eds_RecordKind::VerbatimKeyword);
  return static_cast<long long>(
             document.GetModel().Position().GetVector(eds_Member::Steps).size()) +
         std::ranges::count_if(texts, [](const KvoSimPosition& text) {
           return text.DataRecord().GetString(eds_VerbatimKeyword_Keyword) == "STEP";
         });
}

bool isOfSubstructures(inp_KeywordEnm keyword) {
  return keyword == inp_KwSubstructureMatrixOutput || keyword == inp_KwElementMatrixOutput ||
         keyword == inp_KwElementOperatorOutput || keyword == inp_KwSubstructureOutput ||
         keyword == inp_KwElementRecoveryMatrix || keyword == inp_KwNodeRecoveryMatrix ||
         keyword == inp_KwRetainedNodalDofs || keyword == inp_KwRetainedEigenmodes ||
         keyword == inp_KwSubstructureLoadCase || keyword == inp_KwFlexibleBody;
}

cow_String extrapolationOf(const KvoSimPosition& step) {
  static const int field = eds_formField(eds_FormKind::Step, "extrapolation");
  return step.DataRecord().ReturnString(field);
}

// As a deck has it, in capitals without blanks.
cow_String bareOf(const eds_FormItem& item) {
  cow_String name;
  for (const char c : item.name)
    if (c != '_') name += static_cast<char>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
  return name;
}

// Of the node whose displacement an arc-length analysis watches.
cow_String textOfMissingNode(const cow_String& asWritten) {
  const cow_List<cow_String> parts = inp_Utils::SplitScopedField(asWritten);
  const cow_String& label = parts.empty() ? asWritten : parts.back();
  const cow_String instance =
      parts.size() > 1 ? " in instance " + parts[parts.size() - 2] : cow_String();
  return "Node " + label + instance +
         " at which to monitor displacement in a RIKS analysis does not exist.";
}

} // namespace

// ---- what is known of a step beforehand

void inpS_StepVisitor::Look(inp_KeywordListRef keywords) {
  m_facts.clear();
  m_first = nullptr;
  Facts* facts = nullptr;
  for (const inp_Keyword& keyword : keywords) {
    if (keyword.Kind() == inp_KwStep) {
      facts = &m_facts[keyword.Body().get()];
      if (!m_first) m_first = keyword.Body().get();
    }
    if (!facts || !isProcedure(keyword.Kind()) || keyword.IsSuboption()) continue;
    if (keyword.Scope().kind != inp_Scope::Kind::Step) continue;
    const bool isOfFlow = facts->procedure == inp_KwHeatTransfer && keyword.Kind() == inp_KwCfd;
    if (facts->procedure == inp_NullKeyword || isOfFlow) facts->procedure = keyword.Kind();
    facts->isExplicit = facts->isExplicit || isExplicitDynamics(keyword);
    facts->isFluid = facts->isFluid || keyword.Kind() == inp_KwCfd;
    if (!facts->isRefused) Judge(keyword, *facts);
  }
}

// What a restart's base leaves to its first step: its last steps may have no procedure. One that is
// kept as text has.
void inpS_StepVisitor::LookAtBase(const KvoSimPosition& firstStep) {
  const inpS_Form& form = *inpS_FormTable::Instance().Find(eds_FormKind::Step);
  const auto steps = Model().GetVector(eds_Member::Steps);
  std::optional<inpS_KeptParts> parts;
  for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
    if (*step == firstStep) continue;
    if (hasProcedure(*step) || isBeforeText(Inventory().GetDocument(), *step)) return;
    if (!parts) parts.emplace(Inventory().GetDocument().Context());
    const KvoSimDataRecord record = step->DataRecord();
    const cow_String& beside = parts->FirstOf(*step).parameters;
    for (const inpS_ParameterBinding& one : form.parameters) {
      if (one.key == "name" || std::ranges::find(m_left, one.name) != m_left.end()) continue;
      if (!record.IsMemberNull(one.field) || inpS_holdsParameter(beside, one.name))
        m_left.push_back(one.name);
    }
    if (m_extrapolation.empty()) m_extrapolation = extrapolationOf(*step);
  }
}

void inpS_StepVisitor::Judge(const inp_Keyword& procedure, Facts& facts) {
  Enter(procedure);
  facts.isRefused = IsLostByWords(procedure, nullptr) || !Choose(procedure, nullptr);
  if (!facts.isRefused) return;
  wip_Message message = inp_Utils::MessageInKeyword(
      procedure, "*" + procedure.Name() + " cannot be converted; its step is kept as text.");
  message.tellsKept = true;
  AddWarning(std::move(message));
}

void inpS_StepVisitor::VisitList(inp_KeywordListRef keywords) {
  Look(keywords);
  m_baseSteps = countSteps(Inventory().GetDocument());
  inpS_FormVisitor::VisitList(keywords);
  CloseLoadCase();
}

// In a step that generates matrices nothing but *MATRIX OUTPUT says what becomes of them.
void inpS_StepVisitor::Visit(const inp_Keyword& keyword) {
  inpS_FormVisitor::Visit(keyword);
  if (!m_open || m_open->procedure != inp_KwMatrixGenerate || !isOfSubstructures(keyword.Kind()))
    return;
  if (keyword.Scope().kind == inp_Scope::Kind::Step)
    Warning(keyword,
            inp_Utils::Format("Unsupported suboption: %s.", cow_String(keyword.Name()).c_str()));
}

// Steps are added behind all of the model's own, whichever of them the deck goes on from.
void inpS_StepVisitor::VisitRestart(const inp_Keyword& keyword) {
  const inp_Item* step = keyword.Find("step");
  if (m_baseSteps == 0 || IsNaming() || !keyword.HasParameter("read")) return;
  if (!step || !step->IsNumber() || step->AsInt() == m_baseSteps) return;
  const cow_String count = std::to_string(m_baseSteps);
  AddWarning(inp_Utils::MessageAtParameter(
      keyword, "step",
      step->AsInt() > m_baseSteps || step->AsInt() < 1
          ? "The model that is restarted has no step " + step->AsString() + ", but " + count +
                "; steps are added behind all of them."
          : "The model that is restarted has " + count + " steps; those behind step " +
                step->AsString() + " stay, and steps are added behind all of them."));
}

bool inpS_StepVisitor::IsOfPhase(const inp_Keyword& keyword) const {
  if (keyword.Kind() != inp_KwStep) return inpS_FormVisitor::IsOfPhase(keyword);
  const auto known = m_facts.find(keyword.Body().get());
  return known == m_facts.end() || !known->second.isRefused;
}

// Decided here, for two layouts of the line of *BUCKLE are about: a line of a subspace iteration
// has two bounds where five values stand, or where the third one is spelt as a real (else it is the
// number of vectors); one of the Lanczos solver has one bound where that is spelt as a real and two
// whole numbers follow, and no fifth value.
const inpS_Form* inpS_StepVisitor::Choose(const inp_Keyword& keyword, const inp_Keyword* parent) {
  const inpS_Form* form = inpS_FormVisitor::Choose(keyword, parent);
  const inp_DataArray& data = keyword.Data();
  if (!form || keyword.Kind() != inp_KwBuckle || data.Rows() == 0) return form;
  const auto has = [&](int col) { return col < data.Cols(0) && data.HasValue(0, col); };
  const auto isSpelledReal = [&](int col) {
    return data.AsStringVerbatim(0, col).find_first_of(".eEdD") != cow_String::npos;
  };
  const auto isReal = [&](int col) {
    return has(col) && data.IsNumber(0, col) && isSpelledReal(col);
  };
  const auto isWhole = [&](int col) {
    return has(col) && data.IsNumber(0, col) && !isSpelledReal(col);
  };
  const bool hasTwoBounds = has(4) || isReal(2);
  const bool hasOneBound = !has(4) && isReal(1) && isWhole(2) && isWhole(3);
  if (form->kind == eds_FormKind::BuckleSubspace && hasTwoBounds)
    return inpS_FormTable::Instance().Find(eds_FormKind::BuckleSubspaceBounds);
  if (form->kind == eds_FormKind::BuckleLanczos && hasOneBound)
    return inpS_FormTable::Instance().Find(eds_FormKind::BuckleLanczosBound);
  return form;
}

// What a procedure says wrongly the analysis cannot go without; a condition it would.
bool inpS_StepVisitor::IsErrorToLack(inp_KeywordEnm kind) const {
  return isProcedure(kind) || kind == inp_KwTemperature || kind == inp_KwConnectorLoad ||
         kind == inp_KwConnectorMotion;
}

// A word that nobody knows is no reason to lose a step and all that acts in it, nor is a set that a
// procedure names and that is not there: without it the procedure is of the whole model, and that
// it should not be is an error. What chooses the variant of another keyword is a reason to lose it;
// what tells the meaning of the lines, for without it they mean nothing; and a set that is not
// there, for without it they are about the whole model.
bool inpS_StepVisitor::MayLack(const inpS_Form& form, const eds_FormItem& item) const {
  if (item.alternatives.front().referable) return isProcedure(form.keyword);
  if (std::ranges::any_of(form.selectors,
                          [&](const auto& one) { return inpS_bareWord(one.name) == bareOf(item); }))
    return false;
  const bool hasLines = form.info->data != eds_FormData::None || !form.info->lines.empty();
  const bool tellsLines =
      (item.name == "type" && form.keyword != inp_KwContourIntegral) || // the crack's, whatever
      item.name == "parameters" || item.name == "constraint_type";
  return isProcedure(form.keyword) || form.keyword == inp_KwStep || !(hasLines && tellsLines);
}

// ---- the step opens and closes

// What steps without a procedure leave to it.
void inpS_StepVisitor::Open(const inp_Keyword& keyword, const KvoSimPosition& record) {
  if (keyword.Body().get() == m_first) LookAtBase(record);
  const auto known = m_facts.find(keyword.Body().get());
  m_open = known == m_facts.end() ? nullptr : &known->second;
  m_procedure = m_lastProcedure = {};
  if (m_left.empty()) m_extrapolation.clear();
  if (cow_String own = extrapolationOf(record); !own.empty()) m_extrapolation = std::move(own);
  m_ofProcedures.clear();
  CloseLoadCase();
  m_loadCases.clear();
  m_given.clear();
  for (const inp_Parameter& parameter : keyword.Parameters())
    if (parameter.name != "name") m_given.push_back(inpS_spelledName(parameter));
  cow_String left;
  for (const cow_String& name : m_left) {
    if (std::ranges::find(m_given, name) != m_given.end()) continue;
    left += (left.empty() ? "" : ", ") + name;
    m_given.push_back(name);
  }
  m_left.clear();
  if (!left.empty())
    Warning(keyword,
            "The step before has no procedure; what it says holds in this one, too: " + left + ".");
}

// One that is kept as text has a procedure: it leaves nothing to the next one.
void inpS_StepVisitor::VisitStep(const inp_Keyword& keyword) {
  if (!IsOfPhase(keyword)) m_left.clear();
}

void inpS_StepVisitor::VisitEndStep(const inp_Keyword& keyword) {
  if (OpenStep().IsNull()) return;
  if (!m_open || m_open->procedure == inp_NullKeyword) {
    Warning(keyword, "No procedure is defined.");
    m_left = m_given;
  }
  SetDampings();
  CloseLoadCase();
  inpS_keepUnused(keyword, OpenStep(), *this, inpS_closingRow);
  Ledger().Take(keyword, OpenStep());
}

// It is the last procedure's that stands before it. At the step's end, for none may: then it is the
// first one's.
void inpS_StepVisitor::SetDampings() {
  if (m_procedure.IsNull()) return; // told
  for (const auto& [keyword, given, behind] : m_ofProcedures) {
    const KvoSimPosition& procedure = behind.IsNull() ? m_procedure : behind;
    KvoSimDataRecord record = given.DataRecord();
    record.SetReference(eds_formField(given.Object().RecordKind(), "procedure"), procedure);
    if (keyword.Kind() == inp_KwGlobalDamping) AddGlobalDamping(keyword, record, procedure);
  }
}

// FIELD chooses the degrees of freedom that a keyword is for; without it, and with a word that is
// none, it is for all.
void inpS_StepVisitor::AddGlobalDamping(const inp_Keyword& keyword, const KvoSimDataRecord& given,
                                        const KvoSimPosition& procedure) {
  const auto fieldOf = [](std::string_view column) {
    return eds_formField(eds_FormKind::GlobalDamping, column);
  };
  const cow_String field = given.ReturnString(fieldOf("field"));
  double damping[6] = {};
  for (std::size_t n = 0; const char* column : {"alpha", "beta", "structural"}) {
    const double value = given.GetDouble(fieldOf(column));
    damping[n++] = field == "ACOUSTIC" ? 0 : value;
    damping[n++] = field == "MECHANICAL" ? 0 : value;
  }
  cow_List<cow_String> messages;
  inpS_SetGlobalDamping(OpenStep(), procedure, damping, messages);
  for (const cow_String& message : messages) Warning(keyword, message);
}

// ---- what a row cannot say

bool inpS_StepVisitor::MayConvert(const inp_Keyword& keyword, const inpS_Form& form) {
  m_keyword = keyword;
  m_times = 0;
  Names().SetTextOfMissingNode(form.kind == eds_FormKind::StaticRiks ? textOfMissingNode : nullptr);
  if (inpS_DegreeLines::IsOfConnectors(form.kind) || keyword.Kind() == inp_KwTemperature)
    inpS_checkConditionParameters(keyword, form, Names(), *this);
  return true;
}

cow_String inpS_StepVisitor::FaultOfLine(const KvoSimPosition& line) {
  return inpS_TimePointsVisitor::FaultOfTimes(m_keyword, line, m_times);
}

bool inpS_StepVisitor::ReadColumns(const inp_Keyword& keyword, const eds_FormInfo& form,
                                   const KvoSimPosition& record) {
  if (inpS_ValueLines::Has(keyword, form.kind)) {
    inpS_ValueLines lines(form.kind);
    return inpS_ColumnReader(keyword, form, record, Names(), *this, &lines).Read();
  }
  if (!inpS_DegreeLines::Has(form.kind))
    return inpS_FormVisitor::ReadColumns(keyword, form, record);
  inpS_DegreeLines lines(keyword, form.kind);
  if (inpS_DegreeLines::IsOfConnectors(form.kind)) {
    if (!m_elements) m_elements.emplace(Inventory().GetDocument());
    lines.SetElements(*m_elements, record);
  }
  return inpS_ColumnReader(keyword, form, record, Names(), *this, &lines).Read();
}

void inpS_StepVisitor::Converted(const inp_Keyword& keyword, const inpS_Form& form,
                                 const KvoSimPosition& record) {
  CheckNames(keyword);
  CheckOptions(keyword);
  if (!keyword.IsSuboption() && isProcedure(keyword.Kind())) {
    SetProcedure(keyword, record);
    CheckPerturbation(keyword, form);
    CheckSolver(keyword, form);
    CheckTimes(keyword, form, record);
    CheckStabilization(keyword, form);
  }
  switch (keyword.Kind()) {
  case inp_KwStep:
    Open(keyword, record);
    return CheckIncrements(keyword, record);
  case inp_KwModelChange:
    return CheckModelChange(keyword);
  case inp_KwLoadCase:
    return OpenLoadCase(keyword);
  case inp_KwEndLoadCase:
    if (!m_loadCase) Warning(keyword, "No *LOAD CASE is open; there is none to end.");
    m_loadCase.reset();
    return;
  case inp_KwGlobalDamping:
  case inp_KwModalDamping:
  case inp_KwCompositeModalDamping:
  case inp_KwDampingControls:
  case inp_KwMatrixOutput:
    m_ofProcedures.push_back(
        {keyword, record, keyword.IsSuboption() ? record.Parent() : m_lastProcedure});
    return;
  case inp_KwStatic:
  case inp_KwDynamic:
  case inp_KwHeatTransfer:
    return CheckProcedure(keyword, form, record);
  case inp_KwTimePoints:
    return inpS_TimePointsVisitor::CheckTimes(keyword, *this);
  case inp_KwCfd:
    return CheckCfd(keyword);
  case inp_KwMomentumEquationSolver:
  case inp_KwPressureEquationSolver:
  case inp_KwEnergyEquationSolver:
  case inp_KwTransportEquationSolver:
  case inp_KwTurbulenceEquationSolver:
    return CheckEquationSolver(keyword);
  case inp_KwTurbulenceModel:
    return CheckIsOfFlow(keyword);
  case inp_KwControls:
    return CheckControls(keyword, form);
  case inp_KwBulkViscosity:
    if (m_open && !m_open->isExplicit)
      Warning(keyword, "The *BULK VISCOSITY option is only meaningful in a Trelvo/Explicit dynamic "
                       "analysis.");
    return;
  case inp_KwFixedMassScaling:
  case inp_KwVariableMassScaling:
    if (m_open && !m_open->isExplicit) TellIrrelevant(keyword);
    return;
  case inp_KwSolverControls:
    if (m_open && (m_open->isExplicit || m_open->isFluid))
      Warning(keyword, "Solver Controls is not supported for this step.");
    return;
  default:
    return;
  }
}

// One that is not closed ends with the next one, or with its step.
void inpS_StepVisitor::OpenLoadCase(const inp_Keyword& keyword) {
  CloseLoadCase();
  m_loadCase = keyword;
  if (m_open && m_open->procedure != inp_NullKeyword && !IsLinear() && !IsPerturbation())
    Warning(keyword,
            "*LOAD CASE is for linear perturbations, and this step is none; what stands in "
            "it is of the load case all the same.");
  const inp_Item* name = keyword.Find("name");
  if (!name || name->AsString().empty())
    return Warning(keyword,
                   "*LOAD CASE has no NAME: its results cannot be told from those of others.");
  const auto known = std::ranges::find(m_loadCases, name->AsString());
  if (known == m_loadCases.end())
    m_loadCases.push_back(name->AsString());
  else
    AddWarning(inp_Utils::MessageAtParameter(keyword, "name",
                                             "The step has a load case \"" + name->AsString() +
                                                 "\" already; this is another one of that name."));
}

void inpS_StepVisitor::CloseLoadCase() {
  if (m_loadCase)
    Error(*m_loadCase, "*LOAD CASE is not closed by *END LOAD CASE; all that follows it, up to the "
                       "next *LOAD CASE or the end of its step, is of it.");
  m_loadCase.reset();
}

bool inpS_StepVisitor::IsPerturbation() const {
  return std::ranges::any_of(
      m_given, [](const cow_String& name) { return inpS_bareWord(name) == "PERTURBATION"; });
}

// About a base state.
bool inpS_StepVisitor::IsLinear() const {
  const auto kinds = inpS_FormTable::Instance().KindsOf(m_open->procedure);
  const inpS_ProcedureKind* of = kinds.empty() ? nullptr : inpS_ProcedureKind::Of(kinds.front());
  return of && (of->registration == inpS_ProcedureKind::Registration::Task ||
                (m_open->procedure == inp_KwStatic && IsPerturbation()));
}

// What fluid dynamics says of heat is no procedure of its own.
void inpS_StepVisitor::SetProcedure(const inp_Keyword& keyword, const KvoSimPosition& record) {
  if (m_open && m_open->isFluid && keyword.Kind() == inp_KwHeatTransfer) return;
  m_lastProcedure = record;
  if (m_procedure.IsNull()) {
    m_procedure = record;
    return;
  }
  const inpS_Form* first = inpS_FormTable::Instance().Find(m_procedure.Object().RecordKind());
  Warning(keyword, "The step has a procedure already, *" +
                       cow_String(inp_KeywordTable::Instance().Row(first->keyword)->name) +
                       ", which holds in the history; *" + keyword.Name() + " is kept beside it.");
}

void inpS_StepVisitor::TellIrrelevant(const inp_Keyword& keyword) {
  Warning(keyword, "This keyword is not relevant for this step hence will be ignored.");
}

void inpS_StepVisitor::CheckProcedure(const inp_Keyword& keyword, const inpS_Form& form,
                                      const KvoSimPosition& record) {
  if (form.kind == eds_FormKind::StaticRiks) {
    CheckMonitoring(keyword);
    CheckWatchedSet(keyword, record);
  }
  if (form.kind == eds_FormKind::StaticRiks || form.kind == eds_FormKind::DynamicImplicit)
    CheckExtrapolation(keyword);
  if (keyword.Kind() == inp_KwStatic && keyword.HasParameter("fullyplastic"))
    AddWarning(inp_Utils::MessageAtParameter(keyword, "fullyplastic",
                                             "parameter fullyplastic is not supported."));
  if (keyword.Kind() != inp_KwHeatTransfer || !keyword.HasParameter("centering")) return;
  const bool isOfFlow = (m_open && m_open->isFluid) ||
                        inp_KeywordTable::BareWord(keyword.StringOf("type", "")) == "THERMALFLOW";
  if (!isOfFlow)
    AddWarning(inp_Utils::MessageAtParameter(
        keyword, "centering", "CENTERING means nothing without *CFD; it is kept as given."));
  else if (keyword.StringOf("centering", "") == "NODE")
    AddError(inp_Utils::MessageAtParameter(keyword, "centering",
                                           "Node-centered heat transfer in CFD is not supported."));
}

// Displacements and rotations are watched, nothing else: one of a node, up to a value.
void inpS_StepVisitor::CheckMonitoring(const inp_Keyword& keyword) {
  constexpr int nodeColumn = 5;
  constexpr int dofColumn = 6;
  constexpr int endColumn = 7;
  constexpr long long mostDof = 6;
  const inp_DataArray& data = keyword.Data();
  const auto has = [&](int col) {
    return data.Rows() > 0 && col < data.Cols(0) && data.HasValue(0, col);
  };
  const int given = has(nodeColumn) + has(dofColumn) + has(endColumn);
  if (given == 1 || given == 2)
    AddWarning(inp_Utils::MessageAtRow(
        keyword, 0,
        "An arc-length step watches a displacement by node, degree of freedom and value, and not "
        "all of them are given; they are kept as given."));
  if (data.Rows() == 0 || data.Cols(0) <= dofColumn || !data.IsInteger(0, dofColumn)) return;
  const long long dof = data.AsInt64(0, dofColumn);
  if (dof >= 1 && dof <= mostDof) return;
  AddError(inp_Utils::MessageAtField(
      keyword, 0, dofColumn,
      inp_Utils::Format(
          "Nodal dof %lld at which to monitor displacement in a RIKS analysis is invalid", dof)));
}

void inpS_StepVisitor::CheckExtrapolation(const inp_Keyword& keyword) {
  if (m_extrapolation == "NO")
    Warning(keyword, "EXTRAPOLATION=NO is not permitted with this step type. Default Extrapolation "
                     "will be used.");
}

// Explicit dynamics and what is linear about a base state have no iterations to control; fluid and
// structure are of fluid dynamics.
void inpS_StepVisitor::CheckControls(const inp_Keyword& keyword, const inpS_Form& form) {
  if (!m_open) return;
  const bool isFluidStructure = form.kind == eds_FormKind::ControlsFluidStructure;
  if (m_open->isExplicit || IsLinear() || isFluidStructure != m_open->isFluid)
    TellIrrelevant(keyword);
  if (isFluidStructure) CheckFluidStructure(keyword);
}

void inpS_StepVisitor::CheckFluidStructure(const inp_Keyword& keyword) {
  constexpr const char* notWhole[] = {"Minimum number of remesh increments must be an integer.",
                                      "Maximum number of remesh increments must be an integer."};
  constexpr const char* notPositive[] = {
      "Minimum number of remesh increments must be greater than 0",
      "Maximum number of remesh increments must be greater than 0",
      "FSI penalty scale factor must be greater than zero.",
      "Density ratio must be greater than zero.",
      "Linear convergence tolerance must be greater than zero."};
  const inp_DataArray& data = keyword.Data();
  if (data.Rows() == 0) return;
  for (int col = 0; col < std::min(data.Cols(0), static_cast<int>(std::size(notPositive))); ++col) {
    if (!data.HasValue(0, col)) continue;
    const char* fault = nullptr;
    if (col < static_cast<int>(std::size(notWhole)) && !data.IsInteger(0, col))
      fault = notWhole[col];
    else if (!(data.AsDouble(0, col) > 0))
      fault = notPositive[col];
    if (fault) AddError(inp_Utils::MessageAtField(keyword, 0, col, fault));
  }
}
