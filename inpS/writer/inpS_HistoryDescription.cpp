#include "inpS/writer/inpS_HistoryDescription.h"
#include "base/utl_Stream.h"
#include "database/KvoSimDataRecord.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/writer/inpS_PropertyWords.h"

cow_List<inpS_HistoryDescription> inpS_describeHistory(const KvoObjDocument& document) {
  cow_List<inpS_HistoryDescription> history;
  for (const KvoSimPosition& record : document.Context().GetRecords(eds_RecordKind::HistoryStep)) {
    inpS_HistoryDescription one{record, {}, 0};
    const KvoSimDataRecord fields = record.DataRecord();
    const KvoSimPosition procedure = fields.GetReference(eds_HistoryStep_Procedure);
    const KvoSimPosition step = fields.GetReference(eds_HistoryStep_Step);
    const inpS_Form* form = procedure.IsNull()
                                ? nullptr
                                : inpS_FormTable::Instance().Find(procedure.Object().RecordKind());
    if (form) {
      utl_Stream text(&one.procedure);
      inpS_printVariant(text, *form);
      text.Flush();
    }
    if (!step.IsNull()) one.keywords = step.MemberCount(eds_Member::StepKeywords);
    history.push_back(std::move(one));
  }
  return history;
}
