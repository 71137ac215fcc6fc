#include "inpS/writer/inpS_HistoryDescription.h"
#include "base/utl_Stream.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/history/inpS_History.h"
#include "inpS/writer/inpS_PropertyWords.h"

namespace {

using Description = inpS_HistoryDescription;

// Names of steps kept as text, by the record of the step that they stand behind; by the model's:
// before all.
using Texts = cow_Map<unsigned long long, cow_List<cow_String>>;

Texts textsOf(const KvoObjDocument& document) {
  Texts texts;
  const KvoSimPosition model = document.GetModel().Position();
  for (const KvoSimPosition& text :
       document.Context().GetRecords(eds_RecordKind::VerbatimKeyword)) {
    const KvoSimDataRecord record = text.DataRecord();
    if (record.GetString(eds_VerbatimKeyword_Keyword) != "STEP") continue;
    const KvoSimPosition behind = record.GetReference(eds_VerbatimKeyword_Behind);
    texts[(behind.IsNull() ? model : behind).Object().Packed()].push_back(
        inpS_nameOfStepText(record.GetString(eds_VerbatimKeyword_Text)));
  }
  return texts;
}

void addTexts(const Texts& texts, const KvoSimPosition& behind, cow_List<Description>& history) {
  const auto known = texts.find(behind.Object().Packed());
  if (known == texts.end()) return;
  for (const cow_String& name : known->second) {
    const auto number = static_cast<long long>(history.size()) + 1;
    history.push_back({{}, number, name.empty() ? "Step-" + std::to_string(number) : name, {}, 0});
  }
}

bool isGeneral(const KvoSimDataRecord& step) {
  constexpr int task = 1; // about a base state
  return !step.GetBool(eds_HistoryStep_Perturbation) &&
         step.GetSymb(eds_HistoryStep_Registration) != task;
}

// Time goes on by the steps of the model's sequence: not along an arc, and never back.
void setTimes(Description& one, double& total) {
  constexpr int sequence = 0;
  const KvoSimDataRecord fields = one.record.DataRecord();
  const KvoSimPosition procedure = fields.GetReference(eds_HistoryStep_Procedure);
  const bool isGiven = !fields.IsMemberNull(eds_HistoryStep_Period);
  const bool isOfSequence = fields.GetSymb(eds_HistoryStep_Registration) == sequence;
  if (procedure.IsNull() || (!isGiven && !isOfSequence)) return;
  const bool isArc = procedure.IsA(eds_FormKind::StaticRiks);
  const double period = isGiven ? fields.GetDouble(eds_HistoryStep_Period) : 0.;
  const double span = isArc || period < 0 ? 0. : period;
  one.begins = isOfSequence ? total : 0.;
  one.ends = *one.begins + span;
  if (isOfSequence) total = *one.ends;
}

Description describe(const KvoSimPosition& record, const KvoSimPosition& step) {
  const KvoSimDataRecord fields = record.DataRecord();
  Description one{record,
                  fields.GetInt64(eds_HistoryStep_Number),
                  fields.ReturnString(eds_HistoryStep_Name),
                  {},
                  0};
  const KvoSimPosition procedure = fields.GetReference(eds_HistoryStep_Procedure);
  const inpS_Form* form = procedure.IsNull()
                              ? nullptr
                              : inpS_FormTable::Instance().Find(procedure.Object().RecordKind());
  if (form) {
    utl_Stream text(&one.procedure);
    inpS_printVariant(text, *form);
    text.Flush();
  }
  if (!step.IsNull()) one.keywords = step.MemberCount(eds_Member::StepKeywords);
  return one;
}

} // namespace

cow_List<inpS_HistoryDescription> inpS_describeHistory(const KvoObjDocument& document) {
  const Texts texts = textsOf(document);
  cow_List<Description> history;
  addTexts(texts, document.GetModel().Position(), history);
  bool isNonlinear = false;
  double total = 0;
  for (const KvoSimPosition& record : document.Context().GetRecords(eds_RecordKind::HistoryStep)) {
    const KvoSimPosition step = record.DataRecord().GetReference(eds_HistoryStep_Step);
    history.push_back(describe(record, step));
    history.back().isNonlinearSince = isNonlinear;
    setTimes(history.back(), total);
    const KvoSimDataRecord fields = record.DataRecord();
    if (isGeneral(fields) && !fields.IsMemberNull(eds_HistoryStep_Nonlinear))
      isNonlinear = fields.GetBool(eds_HistoryStep_Nonlinear);
    if (!step.IsNull()) addTexts(texts, step, history);
  }
  return history;
}
