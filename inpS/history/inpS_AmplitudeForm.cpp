#include "inpS/history/inpS_AmplitudeForm.h"
#include "database/KvoSimDataRecord.h"

const cow_List<inpS_AmplitudeForm>& inpS_amplitudeForms() {
  using Kind = eds_RecordKind;
  using Data = inpS_AmplitudeForm::Data;
  static const cow_List<inpS_AmplitudeForm> forms = [] {
    cow_List<inpS_AmplitudeForm> rows = {{"TABULAR",
                                          Kind::AmplitudeTabular,
                                          Data::Pairs,
                                          {},
                                          eds_AmplitudeTabular_TimeSpan,
                                          eds_AmplitudeTabular_Name},
                                         {"EQUALLY SPACED",
                                          Kind::AmplitudeTabular,
                                          Data::Magnitudes,
                                          {},
                                          eds_AmplitudeTabular_TimeSpan,
                                          eds_AmplitudeTabular_Name},
                                         {"DECAY",
                                          Kind::AmplitudeDecay,
                                          Data::None,
                                          {1, 2, 3, 4},
                                          eds_AmplitudeDecay_TimeSpan,
                                          eds_AmplitudeDecay_Name},
                                         // The crossed order of the record is intended.
                                         {"MODULATED",
                                          Kind::AmplitudeModulated,
                                          Data::None,
                                          {1, 2, 5, 3, 4},
                                          eds_AmplitudeModulated_TimeSpan,
                                          eds_AmplitudeModulated_Name},
                                         {"PERIODIC",
                                          Kind::AmplitudePeriodic,
                                          Data::Coefficients,
                                          {eds_AmplitudePeriodic_Terms, 2, 3, 1},
                                          eds_AmplitudePeriodic_TimeSpan,
                                          eds_AmplitudePeriodic_Name},
                                         {"SMOOTH STEP",
                                          Kind::AmplitudeSmoothStep,
                                          Data::Pairs,
                                          {},
                                          eds_AmplitudeSmoothStep_TimeSpan,
                                          eds_AmplitudeSmoothStep_Name}};
    for (inpS_AmplitudeForm& row : rows) {
      row.parameters = inpS_bindParameters(inp_KwAmplitude, row.kind);
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
  const bool spaced = record.IsA(eds_RecordKind::AmplitudeTabular) &&
                      record.GetBool(eds_AmplitudeTabular_EquallySpaced);
  for (const inpS_AmplitudeForm& form : inpS_amplitudeForms())
    if (record.IsA(form.kind) && (form.data == inpS_AmplitudeForm::Data::Magnitudes) == spaced)
      return &form;
  return nullptr;
}
