#include "database/KvoSimCSet.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/history/inpS_ProcedureKind.h"
#include "inpS/history/inpS_StepVisitor.h"
#include "inpS/keywords/inpS_Flag.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_Utils.h"
#include <algorithm>

// Values of a step that no analysis can go by: told, and kept as given.

namespace {

using Procedure = inpS_ProcedureKind;

constexpr const char* kKept = " is kept as given.";

int columnOf(const inpS_Form& form, int field) {
  if (form.info->lines.empty()) return 0;
  const cow_List<eds_FormItem>& items = form.info->lines.front();
  const auto found = std::ranges::find_if(items, [field](const eds_FormItem& item) {
    return item.alternatives.front().field == field;
  });
  return found == items.end() ? 0 : static_cast<int>(found - items.begin());
}

bool hasNumber(const inp_DataArray& data, long long row, int col) {
  return col < data.Cols(row) && data.HasValue(row, col) && data.IsNumber(row, col);
}

// An upper bound of zero is as good as none.
bool isReversed(double lower, double upper) {
  return upper != 0 && lower > upper;
}

} // namespace

void inpS_StepVisitor::CheckIncrements(const inp_Keyword& keyword, const KvoSimPosition& record) {
  static const int field = eds_formField(eds_FormKind::Step, "inc");
  const KvoSimDataRecord step = record.DataRecord();
  if (step.IsMemberNull(field) || step.GetInt64(field) > 0) return;
  AddWarning(inp_Utils::MessageAtParameter(
      keyword, "inc",
      "INC=" + std::to_string(step.GetInt64(field)) +
          " allows no increment: a step takes at least one; it" + kKept));
}

// Only a static one can be either; those about a base state are perturbations whatever *STEP says.
void inpS_StepVisitor::CheckPerturbation(const inp_Keyword& keyword, const inpS_Form& form) {
  const Procedure* of = Procedure::Of(form.kind);
  if (!of || of->registration != Procedure::Registration::Step || !IsPerturbation()) return;
  if (form.kind == eds_FormKind::Static) return;
  const bool isArc = form.kind == eds_FormKind::StaticRiks;
  Warning(keyword, "*" + keyword.Name() + (isArc ? ", RIKS" : "") +
                       " is no linear perturbation; its step is taken for one all the same, and "
                       "what it changes ends with it.");
}

void inpS_StepVisitor::CheckSolver(const inp_Keyword& keyword, const inpS_Form& form) {
  static const int field = eds_formField(eds_FormKind::Step, "solver");
  const Procedure* of = Procedure::Of(form.kind);
  if (!of || of->hasSolver || OpenStep().DataRecord().IsMemberNull(field)) return;
  Warning(keyword, "*" + keyword.Name() +
                       " has no equations for the SOLVER of *STEP; that is kept as given.");
}

void inpS_StepVisitor::CheckTimes(const inp_Keyword& keyword, const inpS_Form& form,
                                  const KvoSimPosition& record) {
  const Procedure* of = Procedure::Of(form.kind);
  if (!of) return;
  const KvoSimDataRecord values = record.DataRecord();
  if (Procedure::HasWord(values, of->end, "SS") && !Procedure::Real(values, of->rate))
    AddError(inp_Utils::MessageAtParameter(
        keyword, "end",
        "END=SS ends the step by the fifth value of the first data line, which is not there."));
  const auto lacks = [&](int field) {
    const int col = columnOf(form, field);
    return keyword.Data().Rows() == 0 || col >= keyword.Data().Cols(0) ||
           !keyword.Data().HasValue(0, col);
  };
  if (keyword.Kind() == inp_KwFrequency && lacks(of->count) && lacks(of->maximum))
    Warning(keyword, cow_String("*FREQUENCY tells neither how many modes nor up to which "
                                "frequency; it") +
                         kKept);
  if (keyword.Data().Rows() == 0) return;
  if (of->count >= 0 && !values.IsMemberNull(of->count) && values.GetInt64(of->count) < 0)
    AddWarning(
        inp_Utils::MessageAtField(keyword, 0, columnOf(form, of->count),
                                  cow_String("A number of modes is not negative; it") + kKept));
  if (of->family == Procedure::Family::Ranges) return CheckRanges(keyword);
  const auto tell = [&](int field, const char* before, const char* behind) {
    const int col = columnOf(form, field);
    AddWarning(inp_Utils::MessageAtField(
        keyword, 0, col, before + keyword.Data().AsStringVerbatim(0, col) + behind + kKept));
  };
  const bool isTime = of->family == Procedure::Family::Time;
  // A linear perturbation takes no time.
  const bool isEvent = IsPerturbation() && keyword.Kind() == inp_KwStatic;
  if (isTime && isEvent) return;
  const auto period = Procedure::Real(values, of->period);
  if (isTime && period && *period <= 0)
    tell(of->period, "The period ", " is not greater than zero; it");
  if (isTime) CheckIncrement(keyword, form, values);
  const auto least = Procedure::Real(values, of->minimum);
  const auto most = Procedure::Real(values, of->maximum);
  if (!least || !most || !isReversed(*least, *most)) return;
  if (!isTime)
    tell(of->minimum, "The lower bound ", " is greater than the upper one; it");
  else if (!of->IsFixed(form.kind, values))
    tell(of->minimum, "The minimum increment ", " is greater than the maximum one; it");
}

// Of an arc the whole length is the period, but without one there is no end to be beyond.
void inpS_StepVisitor::CheckIncrement(const inp_Keyword& keyword, const inpS_Form& form,
                                      const KvoSimDataRecord& values) {
  const Procedure& of = *Procedure::Of(form.kind);
  const auto tell = [&](int field, const char* what, const char* fault) {
    const int col = columnOf(form, field);
    AddWarning(inp_Utils::MessageAtField(
        keyword, 0, col, what + keyword.Data().AsStringVerbatim(0, col) + fault + kKept));
  };
  const auto initial = Procedure::Real(values, of.initial);
  const auto least = Procedure::Real(values, of.minimum);
  const auto most = Procedure::Real(values, of.maximum);
  const bool isByElements =
      of.IsByElements(form.kind, values) && !keyword.HasParameter("directusercontrol");
  if (least && *least < 0) tell(of.minimum, "The minimum increment ", " is negative; it");
  if (most && *most < 0) tell(of.maximum, "The maximum increment ", " is negative; it");
  if (!initial) return;
  if (isByElements)
    return tell(of.initial, "The increment ",
                " is not used without DIRECT USER CONTROL: the elements tell the increments; it");
  const bool isArc = form.kind == eds_FormKind::StaticRiks;
  const double period = Procedure::Real(values, of.period).value_or(isArc ? 0. : 1.);
  if (*initial < 0) return tell(of.initial, "The initial increment ", " is negative; it");
  // Of time it would be the whole period.
  if (isArc && *initial == 0 && of.IsFixed(form.kind, values))
    return tell(of.initial, "The fixed increment ", " of an arc goes nowhere; it");
  if (period > 0 && *initial > period)
    tell(of.initial, "The initial increment ", " is greater than the whole period; it");
  if (!of.IsFixed(form.kind, values) && least && *initial != 0 && *initial < *least)
    tell(of.initial, "The initial increment ", " is smaller than the minimum one; it");
}

// These go with STABILIZE alone, whose own value FACTOR replaces.
void inpS_StepVisitor::CheckStabilization(const inp_Keyword& keyword, const inpS_Form& form) {
  const Procedure* of = Procedure::Of(form.kind);
  if (!of || of->stabilize < 0) return;
  if (keyword.HasParameter("stabilize")) {
    if (keyword.Find("stabilize")->IsNumber() && keyword.HasParameter("factor"))
      AddWarning(inp_Utils::MessageAtParameter(
          keyword, "factor",
          "STABILIZE gives a dissipated energy fraction and FACTOR a damping factor: the damping "
          "factor holds; the fraction is kept as given."));
    return;
  }
  for (const char* one : {"allsdtol", "continue", "factor"})
    if (keyword.HasParameter(one))
      AddWarning(inp_Utils::MessageAtParameter(keyword, one,
                                               inp_KeywordTable::BareWord(one) +
                                                   " means nothing without STABILIZE; it" + kKept));
}

// An arc-length step watches one node.
void inpS_StepVisitor::CheckWatchedSet(const inp_Keyword& keyword, const KvoSimPosition& record) {
  constexpr int nodeColumn = 5;
  static const int field = eds_formField(eds_FormKind::StaticRiks, "node_nset");
  const KvoSimPosition watched = record.DataRecord().GetReference(field);
  if (watched.IsNull() || !watched.IsA(eds_RecordKind::NodeSet)) return;
  const int64_t size = watched.GetCSet(eds_NodeSet_Membership).Size();
  if (size != 1)
    AddWarning(inp_Utils::MessageAtField(keyword, 0, nodeColumn,
                                         "An arc-length step watches one node, and node set \"" +
                                             keyword.Data().AsStringVerbatim(0, nodeColumn) +
                                             "\" has " + std::to_string(size) + "; it" + kKept));
}

// A bias is of the points of a range: 1 spreads them evenly.
void inpS_StepVisitor::CheckRanges(const inp_Keyword& keyword) {
  constexpr int bias = 3;
  const inp_DataArray& data = keyword.Data();
  const auto tell = [&](long long row, int col, const char* what, const char* fault) {
    AddWarning(inp_Utils::MessageAtField(keyword, row, col,
                                         what + data.AsStringVerbatim(row, col) + fault + kKept));
  };
  for (long long row = 0; row < data.Rows(); ++row) {
    for (const int col : {0, 1})
      if (hasNumber(data, row, col) && data.AsDouble(row, col) < 0)
        tell(row, col, "The frequency ", " is negative; it");
    if (hasNumber(data, row, bias) && data.AsDouble(row, bias) <= 0)
      tell(row, bias, "The bias ", " is not greater than zero; it");
    if (!hasNumber(data, row, 0) || !hasNumber(data, row, 1)) continue;
    if (isReversed(data.AsDouble(row, 0), data.AsDouble(row, 1)))
      tell(row, 0, "The lower bound ", " is greater than the upper one; it");
  }
}

// ACTIVATE says that later steps will change the model, and changes nothing itself.
void inpS_StepVisitor::CheckModelChange(const inp_Keyword& keyword) {
  const auto says = [&](const char* parameter) {
    const inp_Item* item = keyword.Find(parameter);
    return item && inpS_flagValue(*item).value_or(true);
  };
  const bool adds = says("add");
  const bool removes = says("remove");
  if (adds && removes)
    Warning(keyword, cow_String("*MODEL CHANGE has both ADD and REMOVE; it") + kKept);
  else if (!adds && !removes && !says("activate"))
    Warning(keyword, cow_String("*MODEL CHANGE has neither ADD nor REMOVE; it") + kKept);
}
