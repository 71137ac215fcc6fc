#include "inpS/writer/inpS_PropertyWords.h"
#include "base/utl_Controls.h"
#include "base/utl_Stream.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/keywords/inpS_RecordParameters.h"
#include "inpS/materials/inpS_Behaviors.h"
#include "parser/inp_KeywordTable.h"

namespace {

struct FlagField {
  eds_RecordKind kind;
  inp_KeywordEnm keyword;
  int field;
};

// The few there are, looked up once.
const cow_List<FlagField>& flagFields() {
  static const cow_List<FlagField> fields = [] {
    cow_List<FlagField> found;
    for (const inpS_Form* behavior : inpS_behaviorForms())
      for (const inp_KeywordEnm keyword : {inp_KwNoCompression, inp_KwNoTension})
        if (const int field = inpS_flagField(behavior->kind, keyword); field >= 0)
          found.push_back({behavior->kind, keyword, field});
    return found;
  }();
  return fields;
}

} // namespace

void inpS_printVariant(utl_Stream& out, const inpS_Form& behavior, std::string_view kept) {
  out << '*' << inp_KeywordTable::Instance().Row(behavior.keyword)->name;
  for (const inpS_Form::Selector& selector : behavior.selectors) {
    if (!selector.IsPrinted(kept)) continue;
    out << ", " << selector.name;
    if (!selector.text.empty()) out << '=' << selector.text;
  }
}

void inpS_printOtherParameters(utl_Stream& out, const inpS_Form& behavior,
                               const KvoSimDataRecord& record) {
  inpS_printParameters(out, behavior.parameters, record);
  if (behavior.info->othersField >= 0)
    utl_printLines(out, record.GetString(behavior.info->othersField));
}

inpS_PropertySuboptions inpS_suboptionsOf(const KvoSimPosition& property,
                                          const cow_List<KvoSimPosition>& potentials) {
  inpS_PropertySuboptions suboptions;
  const eds_RecordKind kind = property.Object().RecordKind();
  static const int givenWith = eds_formField(eds_FormKind::Potential, "given_with");
  for (const FlagField& flag : flagFields())
    if (flag.kind == kind && property.DataRecord().GetBool(flag.field))
      suboptions.flags.push_back(flag.keyword);
  for (const KvoSimPosition& potential : potentials)
    if (potential.DataRecord().GetReference(givenWith) == property)
      suboptions.properties.push_back(potential);
  for (const KvoSimPosition& suboption : property.GetVector(eds_Member::Suboptions))
    suboptions.properties.push_back(suboption);
  return suboptions;
}

inpS_OwnedProperties::inpS_OwnedProperties(const KvoSimPosition& owner) {
  for (const KvoSimPosition& property : owner.GetVector(eds_Member::Properties))
    (property.IsA(eds_FormKind::Potential) ? potentials : properties).push_back(property);
}
