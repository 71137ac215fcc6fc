#include "inpS/history/inpS_AmplitudeForm.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"

const cow_List<inpS_AmplitudeForm>& inpS_amplitudeForms() {
  using Data = inpS_AmplitudeForm::Data;
  static const cow_List<inpS_AmplitudeForm> forms = [] {
    cow_List<inpS_AmplitudeForm> rows = {
        {"TABULAR", eds_FormKind::AmplitudeTabular, Data::Pairs},
        {"EQUALLY SPACED", eds_FormKind::AmplitudeTabular, Data::Magnitudes},
        {"DECAY", eds_FormKind::AmplitudeDecay, Data::None},
        {"MODULATED", eds_FormKind::AmplitudeModulated, Data::None},
        {"PERIODIC", eds_FormKind::AmplitudePeriodic, Data::Coefficients},
        {"SMOOTH STEP", eds_FormKind::AmplitudeSmoothStep, Data::Pairs}};
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
      record.IsA(eds_FormKind::AmplitudeTabular) &&
      record.GetBool(eds_formField(eds_FormKind::AmplitudeTabular, "equally_spaced"));
  for (const inpS_AmplitudeForm& form : inpS_amplitudeForms())
    if (record.IsA(form.kind) && (form.data == inpS_AmplitudeForm::Data::Magnitudes) == spaced)
      return &form;
  return nullptr;
}
