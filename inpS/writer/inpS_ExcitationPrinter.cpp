#include "inpS/writer/inpS_ExcitationPrinter.h"
#include "base/utl_Number.h"
#include "base/utl_Stream.h"
#include "database/KvoObjModel.h"
#include "database/KvoSimCSet.h"
#include "database/eds_Array.h"
#include "database/eds_DamagedModel.h"
#include "database/schema/eds_FormKind.h"
#include "inpS/forms/inpS_FormTable.h"
#include "inpS/history/inpS_GivenConditions.h"
#include "inpS/history/inpS_History.h"
#include "inpS/writer/inpS_AmplitudeSpan.h"
#include "inpS/writer/inpS_ConditionLines.h"
#include "inpS/writer/inpS_ExcitationDegrees.h"
#include "inpS/writer/inpS_OwnExcitations.h"
#include "inpS/writer/inpS_PrintPrimitives.h"
#include "inpS/writer/inpS_SetNames.h"
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <sstream>

namespace {

using Kind = inpS_ExcitationKind;
namespace Own = inpS_OwnExcitations;

cow_String numberText(double value) {
  if (!std::isfinite(value)) return {}; // no value
  char text[utl_doubleTextRoom];
  return {text, utl_printDouble(text, value)};
}

cow_String objectText(const KvoSimPosition& object) {
  return object.IsNull() ? "-" : std::to_string(object.Object().Packed());
}

std::optional<double> magnitudeOf(const KvoSimDataRecord& relay, const KvoSimDataRecord& of) {
  if (!relay.IsMemberNull(eds_Relay_Magnitude)) return relay.GetDouble(eds_Relay_Magnitude);
  if (!of.IsMemberNull(eds_Excitation_Magnitude)) return of.GetDouble(eds_Excitation_Magnitude);
  return std::nullopt;
}

cow_String componentsOf(const KvoSimDataRecord& relay, const KvoSimDataRecord& of) {
  const cow_String own = relay.ReturnString(eds_Relay_Components);
  return own.empty() ? of.ReturnString(eds_Excitation_Components) : own;
}

cow_String wholeText(const KvoSimDataRecord& excitation, int field) {
  return excitation.IsMemberNull(field) ? cow_String() : std::to_string(excitation.GetInt64(field));
}

long long numberAtEnd(const cow_String& field) {
  const std::size_t at = field.find_last_not_of("0123456789") + 1;
  long long number = 0;
  std::from_chars(field.data() + at, field.data() + field.size(), number);
  return number;
}

cow_String amplitudeParameter(const Kind& kind, const KvoSimDataRecord& excitation) {
  const bool isAcceleration = excitation.GetString(eds_Excitation_Field) == "ACCELERATION";
  const auto of = std::ranges::find_if(kind.amplitudes, [&](const Kind::Amplitude& one) {
    return one.isOfMagnitude && isAcceleration == one.parameter.starts_with("ACCELERATION");
  });
  return of == kind.amplitudes.end() ? "AMPLITUDE" : cow_String(of->parameter);
}

// A factor may stand as its magnitude, too.
void addBaseMotion(const Kind& kind, const KvoSimPosition& relay,
                   const KvoSimDataRecord& excitation, inpS_ParameterTexts& texts) {
  texts["DOF"] = std::to_string(Own::BaseDegree(kind, excitation));
  const std::string_view field = excitation.GetString(eds_Excitation_Field);
  if (field.starts_with("BASE_V")) texts["TYPE"] = "VELOCITY";
  if (field.starts_with("BASE_U")) texts["TYPE"] = "DISPLACEMENT";
  if (const auto magnitude = magnitudeOf(relay.DataRecord(), excitation))
    texts["SCALE"] = numberText(*magnitude);
}

void addProperty(const KvoSimDataRecord& excitation, inpS_ParameterTexts& texts) {
  if (const auto property = excitation.GetReference(eds_Excitation_Property); !property.IsNull())
    texts["PROPERTY"] = inpS_quoted(property.Name());
}

// Whence its values come, and what goes with them.
void addOrigin(const KvoSimDataRecord& excitation, inpS_ParameterTexts& texts) {
  const auto addNumber = [&](int field, const char* parameter) {
    if (!excitation.IsMemberNull(field))
      texts[parameter] = std::to_string(excitation.GetInt64(field));
  };
  if (const cow_String base = excitation.ReturnString(eds_Excitation_Base); !base.empty())
    texts["BASE NAME"] = inpS_quoted(base);
  if (excitation.GetBool(eds_Excitation_User)) texts["USER"] = "";
  if (!excitation.IsMemberNull(eds_Excitation_Scale))
    texts["SCALE"] = numberText(excitation.GetDouble(eds_Excitation_Scale));
  addProperty(excitation, texts);
  if (!excitation.GetBool(eds_Excitation_Submodel)) return;
  texts["SUBMODEL"] = "";
  addNumber(eds_Excitation_GlobalStep, "STEP");
  addNumber(eds_Excitation_GlobalIncrement, "INC");
  if (excitation.GetBool(eds_Excitation_TimeScale)) texts["TIME SCALE"] = "";
}

// The directions in which it acts; none: all.
cow_String reliefLine(const cow_String& components) {
  cow_String line;
  std::istringstream words(components);
  for (cow_String word; words >> word;) {
    const long long number = numberAtEnd(word);
    if (number < 1 || number > 3) continue;
    line += (line.empty() ? "" : ", ") +
            std::to_string(word.starts_with("C_ROT") ? number + 3 : number);
  }
  return line.empty() ? line : line + "\n";
}

// Behind which keyword of the step it stands: the last one that takes back what is before it.
KvoSimPosition reliefPlace(const KvoSimPosition& step, const KvoSimPosition& procedure) {
  KvoSimPosition place = procedure;
  bool isInLoadCase = false;
  for (const KvoSimPosition& one : inpS_keywordsInOrder(step)) {
    const eds_RecordKind form = one.Object().RecordKind();
    if (form == eds_FormKind::LoadCase || form == eds_FormKind::SubstructureLoadCase)
      isInLoadCase = true;
    if (form == eds_FormKind::EndLoadCase) isInLoadCase = false;
    if (form == eds_FormKind::InertiaRelief && !isInLoadCase &&
        one.DataRecord().GetBool(Kind::Of(form)->remove))
      place = one;
  }
  return place;
}

// In the flat mesh: those that are left of the region, else all of its set in the set's order.
cow_List<int32_t> membersOf(const KvoSimDataRecord& relay) {
  if (!relay.IsMemberNull(eds_Relay_Members))
    return relay.GetSet(eds_Relay_Members).OrderedMembers();
  const KvoSimPosition region = relay.GetReference(eds_Relay_Region);
  const KvoSimPosition instance = relay.GetReference(eds_Relay_Instance);
  const bool isNodes = region.IsA(eds_RecordKind::NodeSet);
  if (!isNodes && !region.IsA(eds_RecordKind::ElementSet)) return {};
  const KvoSimDataRecord set = region.DataRecord();
  const KvoSimCSet membership =
      set.GetSet(isNodes ? eds_NodeSet_Membership : eds_ElementSet_Membership);
  if (membership.IsNull()) return {};
  cow_List<int32_t> members = membership.OrderedMembers();
  if (instance.IsNull() || !set.GetReference(isNodes ? eds_NodeSet_Owner : eds_ElementSet_Owner)
                                .IsA(eds_RecordKind::Part))
    return members;
  const int64_t first =
      instance.DataRecord().GetInt64(isNodes ? eds_Instance_FirstNode : eds_Instance_FirstElement);
  for (int32_t& member : members) member += static_cast<int32_t>(first);
  return members;
}

cow_List<double> numbersOf(const KvoSimPosition& stored) {
  eds_ArrayReader array(eds_ArrayID{stored.Store(), stored.ID()});
  cow_List<double> numbers;
  if (array.ValueType() != eds_ValueType::Double) return numbers;
  numbers.resize(static_cast<std::size_t>(array.Count() * array.Width()));
  array.ReadPiece(0, std::span<double>(numbers));
  return numbers;
}

} // namespace

inpS_ExcitationPrinter::inpS_ExcitationPrinter(const KvoObjDocument& document,
                                               const inpS_DeckLabels& labels,
                                               const inpS_KeptParts& parts)
    : m_document(document), m_labels(labels), m_parts(parts),
      m_repeated(m_document, labels, parts) {
  cow_Map<int64_t, KvoSimPosition> alone;
  for (const KvoSimPosition& one : document.Context().GetRecords(eds_RecordKind::Excitation))
    if (one.DataRecord().GetReference(eds_Excitation_Given).IsNull()) alone.emplace(one.ID(), one);
  if (alone.empty()) return;
  for (const KvoSimPosition& relay : document.Context().GetRecords(eds_RecordKind::Relay)) {
    const auto of = alone.find(relay.DataRecord().GetReference(eds_Relay_Excitation).ID());
    if (of == alone.end()) continue;
    const Kind* kind = Own::KindOf(of->second.DataRecord(), relay);
    if (Own::IsPrinted(kind, of->second.DataRecord(), relay))
      m_conditions.push_back(Read(relay, of->second, *kind));
  }
  cow_Map<std::pair<int, long long>, std::size_t> families;
  for (const Condition& condition : m_conditions) {
    if (!condition.loadCase.IsNull()) continue;
    const auto [known, isNew] =
        families.try_emplace({condition.kind->number, condition.variable}, m_families.size());
    if (isNew) m_families.emplace_back();
    m_families[known->second].push_back(&condition);
  }
  const bool hasRelief = std::ranges::any_of(m_families, [](const Some& family) {
    return family.front()->kind->form == eds_FormKind::InertiaRelief;
  });
  int previous = 0;
  for (const KvoSimPosition& one : document.Context().GetRecords(eds_RecordKind::HistoryStep)) {
    const KvoSimDataRecord record = one.DataRecord();
    const KvoSimPosition given = record.GetReference(eds_HistoryStep_Step);
    const KvoSimPosition procedure = record.GetReference(eds_HistoryStep_Procedure);
    const Step step{record.GetInt(eds_HistoryStep_Number), inpS_isPerturbation(record), previous,
                    procedure, hasRelief ? reliefPlace(given, procedure) : procedure};
    m_steps[given.Object().Packed()] = step;
    if (!step.isPerturbation) previous = step.number;
  }
}

inpS_ExcitationPrinter::Condition inpS_ExcitationPrinter::Read(const KvoSimPosition& relay,
                                                               const KvoSimPosition& excitation,
                                                               const Kind& kind) const {
  const KvoSimDataRecord record = relay.DataRecord();
  const KvoSimDataRecord of = excitation.DataRecord();
  Condition condition{excitation,
                      relay,
                      &kind,
                      0,
                      of.GetReference(eds_Excitation_LoadCase),
                      record.GetInt64(eds_Relay_FirstStep),
                      record.IsMemberNull(eds_Relay_LastStep)
                          ? std::numeric_limits<long long>::max()
                          : record.GetInt64(eds_Relay_LastStep),
                      {},
                      {}};
  const cow_String field = of.ReturnString(eds_Excitation_Field);
  if (kind.variable >= 0) condition.variable = std::max(1LL, numberAtEnd(field));
  condition.place =
      field + '\n' + componentsOf(record, of) + '\n' + of.ReturnString(eds_Excitation_Label) +
      '\n' +
      std::to_string(
          of.IsMemberNull(eds_Excitation_Restraint) ? -1 : of.GetSymb(eds_Excitation_Restraint)) +
      (of.GetBool(eds_Excitation_Imaginary) ? "i" : "r") +
      wholeText(of, eds_Excitation_LoadCaseNumber) + ' ' +
      wholeText(of, eds_Excitation_CyclicMode) + ' ' + of.ReturnString(eds_Excitation_Base) + ' ' +
      objectText(record.GetReference(eds_Relay_Region)) + ' ' +
      objectText(record.GetReference(eds_Relay_Instance)) + ' ' +
      (record.IsMemberNull(eds_Relay_Label) ? "-"
                                            : std::to_string(record.GetInt64(eds_Relay_Label)));
  // Members that are left are compared by nobody: such a relay has a place of its own.
  if (!record.IsMemberNull(eds_Relay_Members)) condition.place += " " + std::to_string(relay.ID());
  condition.self = condition.place + ' ' + std::to_string(excitation.ID());
  if (const auto magnitude = magnitudeOf(record, of))
    condition.self += ' ' + numberText(*magnitude);
  return condition;
}

// ---- what changes from step to step

// A perturbation step has conditions of the state it starts from, but none of its loads.
bool inpS_ExcitationPrinter::ActsIn(const Condition& condition, const Step& step) {
  if (condition.firstStep > step.number || condition.lastStep < step.number) return false;
  return !step.isPerturbation || condition.firstStep == step.number ||
         condition.kind->lasting == Kind::Lasting::Held;
}

inpS_ExcitationPrinter::Change inpS_ExcitationPrinter::ChangeOf(const Some& family,
                                                                const Step& step) const {
  const Step before{step.previous, false, 0, {}, {}};
  Change change;
  for (const Condition* condition : family) {
    // Outside of steps there are boundary conditions alone: others of that time begin in a step.
    const bool mayBeThere = step.previous > 0 || condition->kind->form == eds_FormKind::Boundary;
    const bool lasts = condition->kind->lasting != Kind::Lasting::OwnStep;
    const bool wasThere = mayBeThere && lasts && ActsIn(*condition, before);
    const bool isThere = ActsIn(*condition, step);
    const bool isOfBase =
        step.isPerturbation && condition->kind->lasting != Kind::Lasting::Held; // loads of the base
    if (isThere && wasThere) change.stays.push_back(condition);
    if (isThere && !wasThere) change.begins.push_back(condition);
    if (!isThere && wasThere && !isOfBase) change.ends.push_back(condition);
  }
  if (change.ends.empty() || change.begins.empty()) return change;
  // One that goes on under another relay, and one in whose place another begins.
  cow_Map<cow_String, const Condition*> ended, places;
  for (const Condition* condition : change.ends) {
    ended[condition->self] = condition;
    places[condition->place] = condition;
  }
  for (const Condition*& condition : change.begins) {
    if (const auto place = places.find(condition->place); place != places.end())
      std::erase_if(change.ends,
                    [&](const Condition* one) { return one->place == condition->place; });
    if (!ended.contains(condition->self)) continue;
    change.stays.push_back(condition);
    condition = nullptr;
  }
  std::erase(change.begins, nullptr);
  return change;
}

// Whether a keyword of the step itself does.
bool inpS_ExcitationPrinter::IsTakenBack(const Kind& kind, long long variable,
                                         const KvoSimPosition& step) {
  return std::ranges::any_of(step.FollowMap(eds_Member::StepKeywords),
                             [&](const KvoSimPosition& one) {
                               const Kind* given = Kind::Of(one.Object().RecordKind());
                               if (!given || given->number != kind.number) return false;
                               const KvoSimDataRecord record = one.DataRecord();
                               if (given->variable >= 0 && given->VariableOf(record) != variable)
                                 return false;
                               return (given->op >= 0 && record.GetString(given->op) == "NEW") ||
                                      (given->remove >= 0 && record.GetBool(given->remove));
                             });
}

// ---- printing

void inpS_ExcitationPrinter::PrintBeforeSteps(utl_Stream& out) const {
  Some some;
  for (const Condition& condition : m_conditions)
    if (condition.firstStep < 1 && condition.kind->form == eds_FormKind::Boundary)
      some.push_back(&condition);
  PrintSome(out, some, 0, false);
}

void inpS_ExcitationPrinter::PrintStep(utl_Stream& out, const KvoSimPosition& step,
                                       const KvoSimPosition& behind, const inpS_DeckScope& scope) {
  const auto known = m_steps.find(step.Object().Packed());
  if (m_families.empty() || known == m_steps.end()) return;
  const Step& at = known->second;
  for (const Some& family : m_families) {
    const bool isRelief = family.front()->kind->form == eds_FormKind::InertiaRelief;
    if (behind == (isRelief ? at.reliefPlace : at.procedure))
      PrintFamily(out, family, step, at, scope);
  }
}

void inpS_ExcitationPrinter::PrintFamily(utl_Stream& out, const Some& family,
                                         const KvoSimPosition& step, const Step& at,
                                         const inpS_DeckScope& scope) {
  const Kind& kind = *family.front()->kind;
  const long long variable = family.front()->variable;
  const Change change = ChangeOf(family, at);
  const bool isTakenBack = IsTakenBack(kind, variable, step);
  const bool isNew = !change.ends.empty() && !isTakenBack;
  if (!isNew && !isTakenBack) return PrintSome(out, change.begins, at.number, false);
  bool hasPrinted = false;
  if (isNew && (kind.op >= 0 || change.begins.empty()))
    hasPrinted = m_repeated.Print(out, kind, variable, at.number, at.isPerturbation, scope);
  Some all = change.stays;
  all.insert(all.end(), change.begins.begin(), change.begins.end());
  PrintSome(out, all, at.number, isNew);
  if (!isNew || hasPrinted || !all.empty()) return;
  inpS_ParameterTexts texts{{"OP", "NEW"}};
  if (kind.op < 0) texts = {{"REMOVE", ""}};
  if (kind.variable >= 0) texts["VARIABLE"] = std::to_string(variable);
  addProperty(change.ends.front()->excitation.DataRecord(), texts); // waves cannot do without
  inpS_printKeywordWith(out, *inpS_FormTable::Instance().Find(kind.form), {}, m_parts, texts);
}

void inpS_ExcitationPrinter::PrintLoadCase(utl_Stream& out, const KvoSimPosition& step,
                                           const KvoSimPosition& loadCase) const {
  const auto known = m_steps.find(step.Object().Packed());
  if (known == m_steps.end()) return;
  Some some;
  for (const Condition& condition : m_conditions)
    if (condition.loadCase == loadCase && ActsIn(condition, known->second))
      some.push_back(&condition);
  PrintSome(out, some, known->second.number, false);
}

// Those under one keyword that have its parameters and stand together.
void inpS_ExcitationPrinter::PrintSome(utl_Stream& out, const Some& some, int step,
                                       bool isNew) const {
  for (std::size_t n = 0; n < some.size();) {
    const Kind& kind = *some[n]->kind;
    const inpS_ParameterTexts texts = ParametersOf(*some[n], step, isNew);
    cow_String lines;
    for (;
         n < some.size() && some[n]->kind == &kind && ParametersOf(*some[n], step, isNew) == texts;
         ++n)
      lines += LinesOf(*some[n]);
    inpS_printKeywordWith(out, *inpS_FormTable::Instance().Find(kind.form), {}, m_parts, texts);
    out << lines;
  }
}

inpS_ParameterTexts inpS_ExcitationPrinter::ParametersOf(const Condition& condition, int step,
                                                         bool isNew) const {
  const Kind& kind = *condition.kind;
  const KvoSimDataRecord record = condition.excitation.DataRecord();
  inpS_ParameterTexts texts;
  if (isNew && kind.op >= 0) texts["OP"] = "NEW";
  const KvoSimPosition amplitude = record.GetReference(eds_Excitation_Amplitude);
  const bool isOfStep = condition.firstStep == step || (condition.firstStep < 1 && step <= 1);
  if (!amplitude.IsNull() && (isOfStep || inpS_isOverTotalTime(amplitude)))
    texts[amplitudeParameter(kind, record)] = inpS_quoted(amplitude.Name());
  const bool isConnector = kind.form == eds_FormKind::ConnectorMotion;
  if (isConnector || kind.form == eds_FormKind::Boundary || kind.form == eds_FormKind::Motion) {
    std::string_view field = record.GetString(eds_Excitation_Field);
    if (isConnector && field.starts_with('C')) field.remove_prefix(1);
    if (field.starts_with("V_")) texts["TYPE"] = "VELOCITY";
    if (field.starts_with("A_")) texts["TYPE"] = "ACCELERATION";
  }
  if (kind.form == eds_FormKind::Motion) texts["TRANSLATION"] = "";
  if (kind.form == eds_FormKind::BaseMotion) addBaseMotion(kind, condition.relay, record, texts);
  if (kind.loadCase >= 0 && !record.IsMemberNull(eds_Excitation_LoadCaseNumber))
    texts["LOAD CASE"] = wholeText(record, eds_Excitation_LoadCaseNumber);
  if (kind.cyclicMode >= 0 && !record.IsMemberNull(eds_Excitation_CyclicMode))
    texts["CYCLIC MODE"] = wholeText(record, eds_Excitation_CyclicMode);
  if (kind.variable >= 0) texts["VARIABLE"] = std::to_string(condition.variable);
  if (record.GetBool(eds_Excitation_Imaginary)) texts["IMAGINARY"] = "";
  if (record.GetBool(eds_Excitation_Fixed)) texts["FIXED"] = "";
  addOrigin(record, texts);
  return texts;
}

cow_String inpS_ExcitationPrinter::LinesOf(const Condition& condition) const {
  const Kind& kind = *condition.kind;
  if (kind.form == eds_FormKind::InertiaRelief)
    return reliefLine(
        componentsOf(condition.relay.DataRecord(), condition.excitation.DataRecord()));
  if (kind.info->data != eds_FormData::Columns ||
      Own::ActsWithoutLines(kind, condition.excitation.DataRecord(), condition.relay))
    return {};
  const KvoSimDataRecord relay = condition.relay.DataRecord();
  const KvoSimDataRecord of = condition.excitation.DataRecord();
  cow_List<cow_String> fields(kind.info->columnItems.size());
  const auto put = [&](int column, const cow_String& text) {
    if (column >= 0) fields[static_cast<std::size_t>(column)] = text;
  };
  cow_String label = of.ReturnString(eds_Excitation_Label);
  if (kind.key == Kind::Key::Words) { // its first word stands in the place of a target
    const std::size_t blank = std::min(label.find(' '), label.size());
    put(kind.target, inpS_quoted(label.substr(0, blank)));
    label.erase(0, blank + (blank < label.size() ? 1 : 0));
  }
  put(kind.label, label.empty() ? label : inpS_quoted(label));
  const auto magnitude = magnitudeOf(relay, of);
  const bool isOfSubmodel = of.GetBool(eds_Excitation_Submodel); // which has the magnitudes
  cow_List<double> values;                                       // of each member
  if (isOfSubmodel)
    put(kind.value, {});
  else if (magnitude)
    put(kind.value, numberText(*magnitude));
  else if (const KvoSimPosition all = of.GetReference(eds_Excitation_Magnitudes); !all.IsNull())
    values = numbersOf(all);
  cow_List<std::pair<cow_String, cow_String>> degrees; // first and last
  const bool isRestraint = !of.IsMemberNull(eds_Excitation_Restraint);
  if (isRestraint) put(kind.value, {});
  if (isRestraint && componentsOf(relay, of).empty()) { // else some of its degrees are left
    degrees.emplace_back(inpS_restraintName(of.GetSymb(eds_Excitation_Restraint)), "");
  } else {
    const cow_String field = of.ReturnString(eds_Excitation_Field);
    const cow_String components = componentsOf(relay, of);
    const bool isOfAll = isOfSubmodel && field.empty() && components.empty(); // that there are
    const uint64_t bits = isOfAll ? 0 : inpS_degreesOf(kind, field, components);
    for (const auto& [first, last] : inpS_ConditionLines::Runs(bits))
      for (int one = first; one <= (kind.last < 0 ? last : first); ++one)
        degrees.emplace_back(std::to_string(one), std::to_string(last));
  }
  if (degrees.empty()) degrees.emplace_back();
  cow_String lines;
  const cow_List<cow_String> targets = TargetsOf(condition, !values.empty());
  for (std::size_t n = 0; n < targets.size(); ++n) {
    if (kind.key != Kind::Key::Words) put(kind.target, targets[n]);
    if (n < values.size()) put(kind.value, numberText(values[n]));
    for (const auto& [first, last] : degrees) {
      put(kind.first, first);
      put(kind.last, last);
      inpS_ConditionLines::Add(lines, fields);
    }
  }
  return lines;
}

cow_List<cow_String> inpS_ExcitationPrinter::TargetsOf(const Condition& condition,
                                                       bool oneByOne) const {
  const KvoSimDataRecord relay = condition.relay.DataRecord();
  const KvoSimPosition region = relay.GetReference(eds_Relay_Region);
  const KvoSimPosition instance = relay.GetReference(eds_Relay_Instance);
  if (condition.kind->key == Kind::Key::Words) return {cow_String()};
  if (!region.IsNull() && !region.IsA(eds_RecordKind::Surface) &&
      !region.IsA(eds_RecordKind::NodeSet) && !region.IsA(eds_RecordKind::ElementSet))
    eds_tellDamaged(condition.relay, "its region is no set and no surface");
  if (!relay.IsMemberNull(eds_Relay_Label)) {
    const cow_String label = std::to_string(relay.GetInt64(eds_Relay_Label));
    if (instance.IsNull()) return {label};
    return {inpS_quoted(instance.DataRecord().ReturnString(eds_Instance_Name)) + "." + label};
  }
  if (!oneByOne && relay.IsMemberNull(eds_Relay_Members))
    return region.IsNull() ? cow_List<cow_String>{cow_String()} : NamesOf(region, instance);
  cow_List<cow_String> labels;
  const bool isNodes = inpS_ConditionLines::IsOfNodes(*condition.kind);
  for (const int32_t flat : membersOf(relay)) {
    labels.push_back(inpS_ConditionLines::Label(m_labels, isNodes, flat));
    if (labels.back().empty())
      eds_tellDamaged(condition.relay,
                      "it names member " + std::to_string(flat) + " of the mesh, which is nothing");
  }
  return labels;
}

// A set of a part that no instance is named with is that of each instance.
cow_List<cow_String> inpS_ExcitationPrinter::NamesOf(const KvoSimPosition& set,
                                                     const KvoSimPosition& instance) const {
  const bool isSurface = set.IsA(eds_RecordKind::Surface);
  const cow_String name = inpS_quoted(isSurface ? GetSurfaceName(set) : SetName(set));
  const auto scoped = [&](const KvoSimPosition& by) {
    return inpS_quoted(by.DataRecord().ReturnString(eds_Instance_Name)) + "." + name;
  };
  if (!instance.IsNull()) return {scoped(instance)};
  const KvoSimPosition owner =
      set.DataRecord().GetReference(isSurface                          ? eds_Surface_Owner
                                    : set.IsA(eds_RecordKind::NodeSet) ? eds_NodeSet_Owner
                                                                       : eds_ElementSet_Owner);
  if (owner.IsA(eds_RecordKind::Instance)) return {scoped(owner)};
  if (!owner.IsA(eds_RecordKind::Part)) return {name};
  cow_List<cow_String> names;
  for (const KvoSimPosition& one : m_document.GetModel().Occurences())
    if (one.DataRecord().GetReference(eds_Instance_Part) == owner) names.push_back(scoped(one));
  return names;
}
