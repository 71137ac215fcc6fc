#include "inpS/history/inpS_AmplitudeForm.h"
#include "database/KvoSimDataRecord.h"

const cow_List<inpS_AmplitudeForm>& inpS_amplitudeForms() {
  using Kind = eds_RecordKind;
  using Data = inpS_AmplitudeForm::Data;
  static const cow_List<inpS_AmplitudeForm> forms = [] {
    cow_List<inpS_AmplitudeForm> rows = {
        {"TABULAR", Kind::AmplitudeTabular, Data::Pairs},
        {"EQUALLY SPACED", Kind::AmplitudeTabular, Data::Magnitudes},
        {"DECAY", Kind::AmplitudeDecay, Data::None},
        {"MODULATED", Kind::AmplitudeModulated, Data::None},
        {"PERIODIC", Kind::AmplitudePeriodic, Data::Coefficients},
        {"SMOOTH STEP", Kind::AmplitudeSmoothStep, Data::Pairs}};
    for (inpS_AmplitudeForm& row : rows) {
      const inpS_Form& form = *inpS_FormTable::Instance().Find(row.kind);
      row.timeSpan = eds_formField(row.kind, "time_span");
      row.name = eds_formField(row.kind, "name");
      for (const cow_List<eds_FormItem>& line : form.info->lines)
        for (const eds_FormItem& item : line)
          row.lineFields.push_back(item.alternatives.front().field);
      row.parameters = form.parameters;
      std::erase_if(row.parameters, [&](const auto& one) { return one.field == row.name; });
    }
    return rows;
  }();
  return forms;
}

const inpS_AmplitudeForm* inpS_amplitudeForm(const cow_String& definition) {
  for (const inpS_AmplitudeForm& form : inpS_amplitudeForms())
    if (inpS_bareWord(form.definition) == definition) return &form;
  return nullptr;
}

const inpS_AmplitudeForm* inpS_amplitudeForm(const KvoSimDataRecord& record) {
  const bool spaced =
      record.IsA(eds_RecordKind::AmplitudeTabular) &&
      record.GetBool(eds_formField(eds_RecordKind::AmplitudeTabular, "equally_spaced"));
  for (const inpS_AmplitudeForm& form : inpS_amplitudeForms())
    if (record.IsA(form.kind) && (form.data == inpS_AmplitudeForm::Data::Magnitudes) == spaced)
      return &form;
  return nullptr;
}
