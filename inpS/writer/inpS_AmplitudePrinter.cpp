#include "inpS/writer/inpS_AmplitudePrinter.h"
#include "base/utl_Stream.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimDataRecord.h"
#include "database/KvoSimDistribution.h"
#include "database/KvoSrvFsmFTable.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/history/inpS_AmplitudeForm.h"
#include "inpS/keywords/inpS_KeptParts.h"
#include "inpS/writer/inpS_PrintPrimitives.h"
#include "inpS/writer/inpS_PropertyDescription.h"
#include <algorithm>

namespace {

using Data = inpS_AmplitudeForm::Data;
constexpr int kValuesPerLine = 8;

void printValues(utl_Stream& out, const cow_List<double>& values) {
  const int size = static_cast<int>(values.size());
  for (int first = 0; first < size; first += kValuesPerLine) {
    inpS_printArray(out, values.data() + first, std::min(kValuesPerLine, size - first));
    out << '\n';
  }
}

void printFirstLine(utl_Stream& out, const inpS_AmplitudeForm& form,
                    const KvoSimDataRecord& record) {
  for (std::size_t n = 0; n < form.lineFields.size(); ++n) {
    if (n > 0) out << ", ";
    if (form.kind == eds_FormKind::AmplitudePeriodic &&
        form.lineFields[n] == eds_formField(eds_FormKind::AmplitudePeriodic, "terms"))
      out << record.GetInt64(form.lineFields[n]);
    else
      out << record.GetDouble(form.lineFields[n]);
  }
  if (!form.lineFields.empty()) out << '\n';
}

cow_List<double> termsOf(const KvoSimPosition& amplitude) {
  cow_List<double> pairs;
  for (const KvoSimPosition& values : amplitude.GetVector(eds_Member::Distributions)) {
    const KvoSimDistribution distribution = values.AsDistribution();
    for (const int64_t drawer : distribution.DrawerIDArray()) {
      eds_ArrayReader reader(distribution.DrawerArray(drawer));
      const std::size_t before = pairs.size();
      pairs.resize(before + static_cast<std::size_t>(reader.Count() * reader.Width()));
      reader.ReadPiece(0, std::span(pairs).subspan(before));
    }
  }
  return pairs;
}

// Times and magnitudes, or coefficients, in turn.
cow_List<double> pairsOf(const KvoSimPosition& amplitude, const inpS_AmplitudeForm& form) {
  if (form.data == Data::Coefficients) return termsOf(amplitude);
  const KvoSrvFsmFTable table = amplitude.GetFTable();
  return table.IsNull() ? cow_List<double>() : table.Values();
}

void printKeyword(utl_Stream& out, const inpS_AmplitudeForm& form, const KvoSimDataRecord& record) {
  out << "*AMPLITUDE, NAME=" << inpS_quoted(record.ReturnString(form.name));
  if (&form != &inpS_amplitudeForms().front()) out << ", DEFINITION=" << form.definition;
  if (record.GetSymb(form.timeSpan) != 0) out << ", TIME=TOTAL TIME";
  inpS_printParameters(out, form.parameters, record);
  if (form.kind == eds_FormKind::AmplitudeTabular &&
      record.GetBool(eds_formField(eds_FormKind::AmplitudeTabular, "smoothing_given")))
    out << ", SMOOTH="
        << record.GetDouble(eds_formField(eds_FormKind::AmplitudeTabular, "smoothing"));
}

} // namespace

void inpS_printAmplitude(utl_Stream& out, const KvoSimPosition& amplitude,
                         const inpS_KeptParts& parts) {
  const KvoSimDataRecord record = amplitude.DataRecord();
  const inpS_AmplitudeForm* form = inpS_amplitudeForm(record);
  if (!form) return; // of a newer version's kind: nothing is known of it
  const inpS_KeptPart& part = parts.FirstOf(amplitude);
  printKeyword(out, *form, record);
  out << part.parameters << '\n' << part.lines;
  if (!part.lines.empty()) return;
  printFirstLine(out, *form, record);
  cow_List<double> values = pairsOf(amplitude, *form);
  if (form->data == Data::Magnitudes) {
    for (std::size_t n = 0; n < values.size() / 2; ++n) values[n] = values[2 * n + 1];
    values.resize(values.size() / 2);
  }
  printValues(out, values);
}

void inpS_printAmplitudes(utl_Stream& out, const KvoObjModel& model, const inpS_KeptParts& parts,
                          const inpS_FormPrinting& printing) {
  for (const KvoSimPosition& amplitude : model.Position().FollowMap(eds_Member::Amplitudes)) {
    inpS_printAmplitude(out, amplitude, parts);
    inpS_printSuboptions(out, amplitude, printing);
  }
}

inpS_AmplitudeDescription inpS_describeAmplitude(const KvoSimPosition& amplitude) {
  inpS_AmplitudeDescription description;
  const KvoSimDataRecord record = amplitude.DataRecord();
  const inpS_AmplitudeForm* form = inpS_amplitudeForm(record);
  if (!form) return description;
  utl_Stream out(&description.keyword);
  printKeyword(out, *form, record);
  out.Close();
  description.pairs = pairsOf(amplitude, *form);
  return description;
}
