#include "inpS/writer/inpS_InForceDescription.h"
#include "database/KvoSimCSet.h"
#include "database/KvoSimDataRecord.h"
#include "database/schema/eds_Schema.h"
#include "inpS/history/inpS_ExcitationKind.h"
#include "inpS/history/inpS_GivenConditions.h"
#include "inpS/writer/inpS_AmplitudeSpan.h"
#include "inpS/writer/inpS_SetNames.h"
#include <algorithm>

namespace {

const inpS_ExcitationKind* kindOf(int number) {
  for (const inpS_ExcitationKind& kind : inpS_ExcitationKind::All())
    if (kind.number == number) return &kind;
  return nullptr; // of a newer version
}

cow_String symbolName(eds_Vocabulary vocabulary, int number) {
  for (const eds_SymbolInfo& symbol : eds_schemaSymbols(vocabulary))
    if (symbol.number == number) return cow_String(symbol.name);
  return {};
}

const char* memberKindOf(const inpS_ExcitationKind* kind) {
  if (kind && kind->IsOfNodes()) return "node";
  if (!kind || kind->target < 0 || kind->key == inpS_ExcitationKind::Key::Words) return "row";
  switch (kind->info->columnItems.front().alternatives.front().type) {
  case eds_FormType::Node:
    return "node";
  case eds_FormType::Element:
    return "element";
  default:
    return "row";
  }
}

long long sizeOf(const KvoSimDataRecord& record, int field) {
  const KvoSimCSet set = record.GetSet(field);
  return set.IsNull() ? 0 : set.Size();
}

} // namespace

inpS_InForceDescription::inpS_InForceDescription(const KvoObjDocument& document) {
  std::unordered_map<int64_t, std::size_t> places;
  for (const KvoSimPosition& one : document.Context().GetRecords(eds_RecordKind::Excitation)) {
    const KvoSimDataRecord record = one.DataRecord();
    const int number = record.GetSymb(eds_Excitation_Kind);
    const inpS_ExcitationKind* kind = kindOf(number);
    places.emplace(one.ID(), m_excitations.size());
    m_excitations.push_back({one, number, record.GetInt64(eds_Excitation_Step),
                             kind && kind->lasting == inpS_ExcitationKind::Lasting::Held});
  }
  for (const KvoSimPosition& one : document.Context().GetRecords(eds_RecordKind::HistoryStep))
    if (!inpS_isPerturbation(one.DataRecord()))
      m_firstGeneral =
          std::min<long long>(m_firstGeneral, one.DataRecord().GetInt64(eds_HistoryStep_Number));
  for (const KvoSimPosition& one : document.Context().GetRecords(eds_RecordKind::Relay)) {
    const KvoSimDataRecord record = one.DataRecord();
    const auto of = places.find(record.GetReference(eds_Relay_Excitation).ID());
    if (of == places.end()) continue;
    m_relays.push_back(
        {one, of->second, record.GetInt64(eds_Relay_FirstStep),
         record.IsMemberNull(eds_Relay_LastStep) ? kNever : record.GetInt64(eds_Relay_LastStep)});
  }
}

// A perturbation step has conditions of the state it starts from, but none of its loads.
void inpS_InForceDescription::ForAllIn(
    const KvoSimPosition& step, const Wanted& isWanted,
    const std::function<void(const inpS_ActingDescription&)>& take) {
  const long long number = step.DataRecord().GetInt64(eds_HistoryStep_Number);
  const bool isPerturbation = inpS_isPerturbation(step.DataRecord());
  cow_Map<int, cow_String> keywords;
  for (const Relay& relay : m_relays) {
    if (relay.firstStep > number || relay.lastStep < number) continue;
    const Excitation& excitation = m_excitations[relay.excitation];
    if (isPerturbation && !excitation.isHeld && excitation.step != number) continue;
    const auto [keyword, isNew] = keywords.try_emplace(excitation.kind);
    if (isNew) keyword->second = symbolName(eds_Vocabulary::ExcitationKind, excitation.kind);
    if (isWanted(keyword->second)) take(Describe(relay, number, isPerturbation));
  }
}

inpS_ActingDescription inpS_InForceDescription::Describe(const Relay& relay, long long number,
                                                         bool isPerturbation) {
  const Excitation& excitation = m_excitations[relay.excitation];
  const KvoSimDataRecord of = excitation.record.DataRecord();
  const KvoSimDataRecord record = relay.record.DataRecord();
  inpS_ActingDescription told;
  told.excitation = of.ReturnString(eds_Excitation_Name);
  told.keyword = symbolName(eds_Vocabulary::ExcitationKind, excitation.kind);
  DescribeRegion(record, of, excitation.kind, told);
  told.field = of.ReturnString(eds_Excitation_Field);
  told.label = of.ReturnString(eds_Excitation_Label);
  told.components = record.ReturnString(eds_Relay_Components);
  if (told.components.empty()) told.components = of.ReturnString(eds_Excitation_Components);
  if (!of.IsMemberNull(eds_Excitation_Restraint))
    told.restraint =
        symbolName(eds_Vocabulary::RestraintType, of.GetSymb(eds_Excitation_Restraint));
  if (!record.IsMemberNull(eds_Relay_Magnitude))
    told.magnitude = record.GetDouble(eds_Relay_Magnitude);
  else if (!of.IsMemberNull(eds_Excitation_Magnitude))
    told.magnitude = of.GetDouble(eds_Excitation_Magnitude);
  told.fromStep = excitation.step;
  const bool isOfStep = excitation.step == number;
  const bool runs = isOfStep || (excitation.step < 1 && number <= m_firstGeneral);
  told.how = isOfStep ? "given" : isPerturbation ? "held" : "carried";
  if (const auto amplitude = of.GetReference(eds_Excitation_Amplitude); !amplitude.IsNull()) {
    told.amplitude = NameOf(amplitude);
    told.hasAmplitudeEnded = !runs && !inpS_isOverTotalTime(amplitude);
  }
  if (const auto given = of.GetReference(eds_Excitation_Given); !given.IsNull())
    DescribeGiven(given, runs, told);
  if (const auto loadCase = of.GetReference(eds_Excitation_LoadCase); !loadCase.IsNull())
    told.loadCase = NameOf(loadCase).empty() ? "unnamed" : NameOf(loadCase);
  if (!of.IsMemberNull(eds_Excitation_LoadCaseNumber))
    told.loadCaseNumber = of.GetInt64(eds_Excitation_LoadCaseNumber);
  if (!of.IsMemberNull(eds_Excitation_CyclicMode))
    told.cyclicMode = of.GetInt64(eds_Excitation_CyclicMode);
  told.isAlongLocalAxes = !of.GetReference(eds_Excitation_Transform).IsNull();
  told.isImaginary = of.GetBool(eds_Excitation_Imaginary);
  DescribeOrigin(of, told);
  return told;
}

void inpS_InForceDescription::DescribeOrigin(const KvoSimDataRecord& excitation,
                                             inpS_ActingDescription& to) {
  const auto number = [&](int field, std::optional<long long>& value) {
    if (!excitation.IsMemberNull(field)) value = excitation.GetInt64(field);
  };
  if (const cow_String own = excitation.ReturnString(eds_Excitation_Base); !own.empty())
    to.base = own;
  to.isFixed = excitation.GetBool(eds_Excitation_Fixed);
  to.isByUser = excitation.GetBool(eds_Excitation_User);
  to.isOfSubmodel = excitation.GetBool(eds_Excitation_Submodel);
  number(eds_Excitation_GlobalStep, to.globalStep);
  number(eds_Excitation_GlobalIncrement, to.globalIncrement);
  to.isTimeScaled = excitation.GetBool(eds_Excitation_TimeScale);
  if (!excitation.IsMemberNull(eds_Excitation_Scale))
    to.scale = excitation.GetDouble(eds_Excitation_Scale);
  if (const auto one = excitation.GetReference(eds_Excitation_Property); !one.IsNull())
    to.property = NameOf(one);
}

void inpS_InForceDescription::DescribeGiven(const KvoSimPosition& given, bool runs,
                                            inpS_ActingDescription& to) {
  const inpS_ExcitationKind* kind = inpS_ExcitationKind::Of(given.Object().RecordKind());
  if (!kind) return;
  if (kind->baseName >= 0) to.base = given.DataRecord().ReturnString(kind->baseName);
  for (const inpS_ExcitationKind::Amplitude& one : kind->amplitudes) {
    if (one.isOfMagnitude) continue;
    const KvoSimPosition amplitude = given.DataRecord().GetReference(one.field);
    if (amplitude.IsNull()) continue;
    to.filmAmplitude = NameOf(amplitude);
    to.hasFilmAmplitudeEnded = !runs && !inpS_isOverTotalTime(amplitude);
  }
}

void inpS_InForceDescription::DescribeRegion(const KvoSimDataRecord& relay,
                                             const KvoSimDataRecord& excitation, int kind,
                                             inpS_ActingDescription& to) {
  const KvoSimPosition region = relay.GetReference(eds_Relay_Region);
  const KvoSimPosition instance = relay.GetReference(eds_Relay_Instance);
  to.memberKind = memberKindOf(kindOf(kind));
  to.firstRow = relay.GetInt64(eds_Relay_FirstRow);
  to.rows = relay.GetInt64(eds_Relay_Rows);
  if (!instance.IsNull()) to.instance = NameOf(instance);
  if (!relay.IsMemberNull(eds_Relay_Members)) to.members = sizeOf(relay, eds_Relay_Members);
  if (!relay.IsMemberNull(eds_Relay_Label)) to.target = relay.GetInt64(eds_Relay_Label);
  if (!region.IsNull()) {
    to.region = NameOf(region);
    to.regionKind = region.IsA(eds_RecordKind::NodeSet)      ? "node set"
                    : region.IsA(eds_RecordKind::ElementSet) ? "element set"
                                                             : "surface";
  }
  // A row of a large keyword is told by its number alone, as are several together.
  to.isWhole =
      region.IsNull() && !to.target && !to.members && to.rows == 1 &&
      (!relay.IsMemberNull(eds_Relay_Magnitude) || excitation.GetInt64(eds_Excitation_Rows) <= 1);
}

const cow_String& inpS_InForceDescription::NameOf(const KvoSimPosition& object) {
  const auto [known, isNew] = m_names.try_emplace(object.Object().Packed());
  if (!isNew) return known->second;
  const bool isSet = object.IsA(eds_RecordKind::NodeSet) || object.IsA(eds_RecordKind::ElementSet);
  return known->second = isSet ? SetName(object) : object.Name();
}
